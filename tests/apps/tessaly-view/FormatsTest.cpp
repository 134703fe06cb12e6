/// \file
/// What the program makes of the files that modules read.

#include "Program.h"

#include "platform/formats/dicom/DICOMFiles.h"
#include "support/Png.h"

#include <cmath>
#include <fstream>

namespace
{

using program::Outcome;

class Formats : public program::ProgramTest
{
protected:
    /// A folder of CT slices: a ball of bone (700 HU) in a ball of muscle (50 HU) in air, of 32 voxels along
    /// each axis, 4 mm apart. The files' names say nothing of their order.
    void writeSeries()
    {
        constexpr int side = 32;
        for (int z = 0; z < side; ++z)
        {
            std::vector<std::int16_t> samples;
            for (int y = 0; y < side; ++y)
            {
                for (int x = 0; x < side; ++x)
                {
                    const double r = std::hypot(x - 15.5, y - 15.5, z - 15.5);
                    samples.push_back(static_cast<std::int16_t>(r < 6.0 ? 700 : r < 13.0 ? 50 : -1000));
                }
            }
            DICOMFile slice(side, side, samples);
            slice.place("0\\0\\" + std::to_string(4 * z), "1\\0\\0\\0\\1\\0", "4\\4");
            slice.set(0x00080018, "UI", text("1.2.3.4." + std::to_string(z)));
            const Bytes bytes = slice.bytes();
            std::ofstream(path("slice" + std::to_string((z * 7) % side) + ".dcm"), std::ios::binary)
                .write(reinterpret_cast<const char *>(bytes.data()),
                       static_cast<std::streamsize>(bytes.size()));
        }
    }

    /// How many pixels of a picture are not as its corner is.
    std::size_t seen(const std::string &name)
    {
        test::RgbaImage image;
        EXPECT_TRUE(test::readPng(path(name), image));
        std::size_t count = 0;
        for (int y = 0; y < image.height; ++y)
        {
            for (int x = 0; x < image.width; ++x)
            {
                count += image.at(x, y) != image.at(0, 0);
            }
        }
        return count;
    }
};

TEST_F(Formats, AFolderOfDicomSlicesIsAVolumeInHounsfieldUnits)
{
    writeSeries();
    const Outcome info = run({".", "--info"});
    EXPECT_EQ(info.status, 0) << info.err;
    EXPECT_NE(info.out.find("voxels      32 x 32 x 32\n"), std::string::npos) << info.out;
    EXPECT_NE(info.out.find("stand for   -1000 to 700 HU\n"), std::string::npos) << info.out;

    // From so far away that a voxel of 4 mm is about 2 pixels, with the same camera for both.
    const std::vector<std::string> view{
        "--size", "96,96", "--camera-position", "0,-300,0", "--camera-focal-point", "0,0,0"};
    std::vector<std::string> bone{".", "-o", "bone.png", "--preset", "ct-bone"};
    std::vector<std::string> skin{".", "-o", "skin.png", "--preset", "ct-skin"};
    bone.insert(bone.end(), view.begin(), view.end());
    skin.insert(skin.end(), view.begin(), view.end());
    const Outcome boneOutcome = run(bone);
    EXPECT_EQ(boneOutcome.status, 0) << boneOutcome.err;
    EXPECT_EQ(boneOutcome.err, "") << "the file names its unit";
    EXPECT_EQ(run(skin).status, 0);
    // Areas go with the squares of the radii.
    const double perVoxel = 4.0 * 96.0 / (2.0 * 300.0 * std::tan(15.0 * 3.14159265358979323846 / 180.0));
    const double pi = 3.14159265358979323846;
    EXPECT_NEAR(std::sqrt(static_cast<double>(seen("bone.png")) / pi), 6.0 * perVoxel, 1.5);
    EXPECT_NEAR(std::sqrt(static_cast<double>(seen("skin.png")) / pi), 13.0 * perVoxel, 2.5);
}

TEST_F(Formats, AFolderWithoutDicomIsToldInOneLine)
{
    std::ofstream(path("notes.txt")) << "nothing";
    const Outcome outcome = run({".", "-o", "out.png"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "tessaly-view: .: no DICOM files in this folder\n");
}

} // namespace
