#ifndef TESTS_APPS_TESSALY_VIEW_PROGRAM_H
#define TESTS_APPS_TESSALY_VIEW_PROGRAM_H

/// \file
/// Runs the program as a shell does, in a folder of the test's own, on volumes that the test writes.

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace program
{

/// What a run left behind.
struct Outcome
{
    int status = -1; ///< the exit status, or -1 where the program did not end by itself
    std::string out;
    std::string err;
};

/// A value for each voxel.
using Field = std::function<int(int x, int y, int z)>;

/// A folder that goes with its files when the test ends.
class ProgramTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Runs tessaly-view with these arguments; relative names lie in the test's folder.
    Outcome run(const std::vector<std::string> &arguments) const;

    /// Writes a NIfTI-1 file of 8 or 16 bits; packed where the name ends in .gz.
    /// \param bytes how many of the file's bytes are written, for files that are cut
    void writeNifti(const std::string &name, std::array<int, 3> sides, std::array<float, 3> spacing, int bits,
                    const Field &field, std::size_t bytes = SIZE_MAX) const;

    /// The path of a file in the folder.
    std::string path(const std::string &name) const { return folder + "/" + name; }
    bool exists(const std::string &name) const;

    std::string folder;
};

/// A ball in the middle of a volume, brighter towards its middle, in faint noise.
Field ball(std::array<int, 3> sides, int background, int object);

} // namespace program

#endif
