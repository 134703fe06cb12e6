/// \file
/// Runs the program as a shell does, in a folder of the test's own, on volumes that the test writes.

#include "Program.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fstream>
#include <iterator>
#include <sys/wait.h>
#include <unistd.h>

namespace program
{

namespace
{

std::string quoted(const std::string &word)
{
    return "'" + word + "'";
}

std::string contentOf(const std::string &fileName)
{
    std::ifstream file(fileName, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

template <typename Value>
void put(std::vector<std::uint8_t> &bytes, std::size_t at, Value value)
{
    std::memcpy(bytes.data() + at, &value, sizeof(value));
}

} // namespace

void ProgramTest::SetUp()
{
    std::string pattern = testing::TempDir() + "tessaly-view-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = pattern;
}

void ProgramTest::TearDown()
{
    if (DIR *all = opendir(folder.c_str()))
    {
        while (const dirent *entry = readdir(all))
        {
            std::remove(path(entry->d_name).c_str());
        }
        closedir(all);
    }
    rmdir(folder.c_str());
}

Outcome ProgramTest::run(const std::vector<std::string> &arguments) const
{
    std::string command = "cd " + quoted(folder) + " && " + quoted(TESSALY_VIEW);
    for (const std::string &argument : arguments)
    {
        command += " " + quoted(argument);
    }
    command += " > .out 2> .err < /dev/null";

    Outcome outcome;
    const int status = std::system(command.c_str());
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    outcome.out = contentOf(path(".out"));
    outcome.err = contentOf(path(".err"));
    return outcome;
}

void ProgramTest::writeNifti(const std::string &name, std::array<int, 3> sides, std::array<float, 3> spacing,
                             int bits, const Field &field, std::size_t bytes) const
{
    const std::size_t begin = 352;
    const std::size_t count = static_cast<std::size_t>(sides[0]) * static_cast<std::size_t>(sides[1]) *
                              static_cast<std::size_t>(sides[2]);
    std::vector<std::uint8_t> file(begin + count * static_cast<std::size_t>(bits / 8));
    put<std::int32_t>(file, 0, 348);
    const std::int16_t dim[8] = {3,
                                 static_cast<std::int16_t>(sides[0]),
                                 static_cast<std::int16_t>(sides[1]),
                                 static_cast<std::int16_t>(sides[2]),
                                 1,
                                 1,
                                 1,
                                 1};
    std::memcpy(file.data() + 40, dim, sizeof(dim));
    put<std::int16_t>(file, 70, bits == 8 ? 2 : 512); // unsigned
    put<std::int16_t>(file, 72, static_cast<std::int16_t>(bits));
    const float pixdim[8] = {1, spacing[0], spacing[1], spacing[2], 0, 0, 0, 0};
    std::memcpy(file.data() + 76, pixdim, sizeof(pixdim));
    put<float>(file, 108, static_cast<float>(begin));
    put<float>(file, 112, 1.0f);
    file[123] = 2; // millimetres
    std::memcpy(file.data() + 344, "n+1", 4);

    std::size_t at = begin;
    for (int z = 0; z < sides[2]; ++z)
    {
        for (int y = 0; y < sides[1]; ++y)
        {
            for (int x = 0; x < sides[0]; ++x)
            {
                const int value = field(x, y, z);
                file[at++] = static_cast<std::uint8_t>(value & 255);
                if (bits == 16)
                {
                    file[at++] = static_cast<std::uint8_t>(value >> 8);
                }
            }
        }
    }
    file.resize(std::min(bytes, file.size()));

    // Without packing zlib writes the bytes as they are.
    const bool packed = name.size() > 3 && name.compare(name.size() - 3, 3, ".gz") == 0;
    const gzFile out = gzopen(path(name).c_str(), packed ? "wb" : "wbT");
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(gzwrite(out, file.data(), static_cast<unsigned>(file.size())), static_cast<int>(file.size()));
    EXPECT_EQ(gzclose(out), Z_OK);
}

bool ProgramTest::exists(const std::string &name) const
{
    return access(path(name).c_str(), F_OK) == 0;
}

Field ball(std::array<int, 3> sides, int background, int object)
{
    return [=](int x, int y, int z)
    {
        const double dx = (x + 0.5) / sides[0] - 0.5;
        const double dy = (y + 0.5) / sides[1] - 0.5;
        const double dz = (z + 0.5) / sides[2] - 0.5;
        const double r = std::sqrt(dx * dx + dy * dy + dz * dz);
        const int noise = (x * 7 + y * 13 + z * 29) % 5;
        return r < 0.4 ? object + static_cast<int>(object * (0.4 - r)) : background * noise / 4;
    };
}

} // namespace program
