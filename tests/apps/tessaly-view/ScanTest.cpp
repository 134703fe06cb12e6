/// \file
/// Volumes taken from images: what is known about them, and what is refused.

#include "Scan.h"

#include <OpenSG/OSGConfig.h>

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

namespace
{

using namespace viewer;

class ScanTest : public ::testing::Test
{
protected:
    void SetUp() override { osg::osgInit(0, nullptr); }

    template <typename Voxel>
    static osg::ImagePtr image(int width, int height, int depth, const std::vector<Voxel> &voxels)
    {
        osg::ImagePtr made = osg::Image::create();
        const osg::Int32 type =
            sizeof(Voxel) == 1 ? osg::Image::OSG_UINT8_IMAGEDATA : osg::Image::OSG_UINT16_IMAGEDATA;
        made->set(osg::Image::OSG_L_PF, width, height, depth, 1, 1, 0.0, nullptr, type);
        std::memcpy(made->editData(), voxels.data(), voxels.size() * sizeof(Voxel));
        return made;
    }

    /// Scans of 2 x 2 x 2 voxels.
    template <typename Voxel>
    static Scan scan(const std::vector<Voxel> &voxels, const char *valueScale = nullptr)
    {
        const osg::ImagePtr made = image(2, 2, 2, voxels);
        if (valueScale != nullptr)
        {
            made->setAttachmentField("ValueScale", valueScale);
            made->setAttachmentField("ValueUnit", "HU");
        }
        Scan taken;
        std::string error;
        EXPECT_TRUE(taken.take(made, "cube", error)) << error;
        return taken;
    }
};

TEST_F(ScanTest, TellsWhatTheImageSays)
{
    const osg::ImagePtr made = image(2, 3, 4, std::vector<std::uint16_t>(24, 7));
    made->setAttachmentField("SliceThickness", "0.500000 1.000000 2.000000");
    made->setAttachmentField("ValueScale", "2 -1024");
    made->setAttachmentField("ValueUnit", "HU");
    Scan taken;
    std::string error;
    ASSERT_TRUE(taken.take(made, "cube", error)) << error;
    const VolumeFacts &facts = taken.facts();
    EXPECT_EQ(facts.voxels, (std::array<int, 3>{2, 3, 4}));
    EXPECT_EQ(facts.bits, 16);
    EXPECT_EQ(facts.spacing, (Vec3{0.5, 1, 2}));
    EXPECT_EQ(facts.extent, (Vec3{1, 3, 8}));
    EXPECT_EQ(facts.bytes, 48u);
    ASSERT_TRUE(facts.real);
    EXPECT_EQ(facts.real->factor, 2.0);
    EXPECT_EQ(facts.real->offset, -1024.0);
    EXPECT_EQ(facts.unit, "HU");
}

TEST_F(ScanTest, AScaleThatIsNoneIsPassedOver)
{
    for (const char *text : {"", "1", "0 5", "-1 5", "x 5", "1 x"})
    {
        EXPECT_FALSE(scan(std::vector<std::uint8_t>(8, 1), text).facts().real) << text;
    }
    EXPECT_FALSE(scan(std::vector<std::uint8_t>(8, 1)).facts().real);
}

TEST_F(ScanTest, WhatIsNoVolumeIsRefusedAndTheScanBeforeStays)
{
    Scan taken = scan(std::vector<std::uint8_t>(8, 1));
    std::string error;
    EXPECT_FALSE(taken.take(image(4, 4, 1, std::vector<std::uint8_t>(16)), "flat", error));
    EXPECT_EQ(error, "flat: has 4 x 4 x 1 voxels, a volume has at least 2 along each axis");
    osg::ImagePtr colours = osg::Image::create();
    colours->set(osg::Image::OSG_RGB_PF, 2, 2, 2);
    EXPECT_FALSE(taken.take(colours, "colours", error));
    EXPECT_EQ(error, "colours: has 3 samples a voxel, only one can be drawn");
    osg::ImagePtr floats = osg::Image::create();
    floats->set(osg::Image::OSG_L_PF, 2, 2, 2, 1, 1, 0.0, nullptr, osg::Image::OSG_FLOAT32_IMAGEDATA);
    EXPECT_FALSE(taken.take(floats, "floats", error));
    EXPECT_EQ(error,
              "floats: has voxels of a type that can't be drawn, only 8 and 16 bits without a sign can");
    EXPECT_EQ(taken.name(), "cube");
    EXPECT_FALSE(taken.empty());
}

TEST_F(ScanTest, TwelveBitValuesCountAsTheyAreDrawn)
{
    const Scan dark = scan(std::vector<std::uint16_t>{0, 1, 4095, 7, 7, 7, 7, 7});
    EXPECT_EQ(drawnFactor(dark.histogram()), 16);
    const Histogram drawn = dark.drawnValues().histogram;
    EXPECT_EQ(drawn.counts[0], 1u);
    EXPECT_EQ(drawn.counts[16], 1u);
    EXPECT_EQ(drawn.counts[16 * 7], 5u);
    EXPECT_EQ(drawn.counts[16 * 4095], 1u);
    EXPECT_EQ(drawn.total, 8u);

    const Scan bright = scan(std::vector<std::uint16_t>{0, 1, 4096, 7, 7, 7, 7, 7});
    EXPECT_EQ(drawnFactor(bright.histogram()), 1);
    EXPECT_EQ(bright.drawnValues().histogram.counts[7], 5u);
    EXPECT_EQ(drawnFactor(scan(std::vector<std::uint8_t>(8, 1)).histogram()), 1)
        << "8 bits are drawn as they are";
}

TEST_F(ScanTest, RealValuesHaveTheirPositions)
{
    const auto position = [](const ScaleMap &map, double value) { return map.offset + map.factor * value; };
    // 12 bits: stored 1024 stands for 0.
    const ScaleMap twelve =
        *scan(std::vector<std::uint16_t>{0, 1024, 4095, 7, 7, 7, 7, 7}, "1 -1024").drawnValues().real;
    EXPECT_NEAR(position(twelve, 0.0), 16.0 * 1024 / 65536, 1e-12);
    EXPECT_NEAR(position(twelve, -1024.0), 0.0, 1e-12);
    const ScaleMap sixteen =
        *scan(std::vector<std::uint16_t>{0, 40000, 4095, 7, 7, 7, 7, 7}, "0.5 10").drawnValues().real;
    EXPECT_NEAR(position(sixteen, 10.0 + 0.5 * 40000), 40000.0 / 65536, 1e-12);
    const ScaleMap eight = *scan(std::vector<std::uint8_t>(8, 1), "2 -100").drawnValues().real;
    EXPECT_NEAR(position(eight, 100.0), 100.0 / 256, 1e-12);
}

TEST_F(ScanTest, BytesOf16BitsAreSwapped)
{
    Scan taken = scan(std::vector<std::uint16_t>{0x0102, 0xfffe, 3, 4, 5, 6, 7, 8});
    taken.swapBytes();
    std::uint16_t first[2];
    std::memcpy(first, taken.image()->getData(), sizeof(first));
    EXPECT_EQ(first[0], 0x0201);
    EXPECT_EQ(first[1], 0xfeff);
    Scan bytes = scan(std::vector<std::uint8_t>{1, 2, 3, 4, 5, 6, 7, 8});
    bytes.swapBytes();
    EXPECT_EQ(bytes.image()->getData()[0], 1);
}

TEST_F(ScanTest, AReducedScanKeepsItsExtentAndSaysBothSizes)
{
    Scan taken;
    std::string error;
    std::string notice;
    const osg::ImagePtr made = image(5, 4, 2, std::vector<std::uint8_t>(40, 9));
    made->setAttachmentField("SliceThickness", "1.000000 2.000000 3.000000");
    ASSERT_TRUE(taken.take(made, "slab", error)) << error;
    ASSERT_TRUE(taken.reduce({4, 0}, 1, notice, error)) << error;
    EXPECT_EQ(notice, "slab: 5 x 4 x 2 voxels reduced to 3 x 4 x 2, this machine's GL takes 4 along an axis");
    EXPECT_EQ(taken.facts().extent, (Vec3{5, 8, 6}));
    EXPECT_EQ(taken.facts().spacing, (Vec3{5.0 / 3.0, 2, 3}));
    EXPECT_EQ(taken.facts().bytes, 24u);
    EXPECT_EQ(taken.image()->getWidth(), 3);
    EXPECT_EQ(taken.image()->getData()[0], 9);
    ASSERT_TRUE(taken.reduce({4, 0}, 1, notice, error));
    EXPECT_EQ(notice, "");
}

TEST_F(ScanTest, AMovedScanIsEmpty)
{
    Scan from = scan(std::vector<std::uint8_t>(8, 1));
    const Scan to = std::move(from);
    EXPECT_TRUE(from.empty());
    EXPECT_EQ(to.name(), "cube");
    EXPECT_EQ(to.histogram().counts[1], 8u);
}

} // namespace
