/// \file
/// Looks by name, and how their points are fitted to a scan.

#include "Options.h"
#include "Presets.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using namespace viewer;

TEST(Presets, TheUsualKindsOfScansHaveOne)
{
    std::vector<std::string> names;
    for (const Preset &preset : presets())
    {
        names.push_back(preset.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"mri", "mri-vessels", "ct-bone", "ct-skin", "ct-vessels",
                                               "microscopy"}));
    EXPECT_EQ(presetList(), "mri          MRI of a head: skin and brain, lit\n"
                            "mri-vessels  MR angiography: the brightest value along each ray\n"
                            "ct-bone      CT: bone\n"
                            "ct-skin      CT: the skin\n"
                            "ct-vessels   CT with contrast medium: vessels red, bone white\n"
                            "microscopy   Fluorescence: glowing, not lit\n");
}

TEST(Presets, AreFoundByTheirWholeNameOnly)
{
    ASSERT_NE(findPreset("ct-bone"), nullptr);
    EXPECT_STREQ(findPreset("ct-bone")->name, "ct-bone");
    EXPECT_EQ(findPreset("ct"), nullptr);
    EXPECT_EQ(findPreset(""), nullptr);
}

TEST(Presets, HaveAscendingPointsWithinTheRangesOfATransferFunction)
{
    for (const Preset &preset : presets())
    {
        SCOPED_TRACE(preset.name);
        EXPECT_EQ(preset.opacity.front().opacity, 0.0f) << "what lies below is not shown";
        for (std::size_t i = 1; i < preset.opacity.size(); ++i)
        {
            EXPECT_LT(preset.opacity[i - 1].position, preset.opacity[i].position);
        }
        for (std::size_t i = 1; i < preset.color.size(); ++i)
        {
            EXPECT_LT(preset.color[i - 1].position, preset.color[i].position);
        }
        for (const ColorPoint &point : preset.color)
        {
            for (const float part : {point.red, point.green, point.blue})
            {
                EXPECT_GE(part, 0.0f);
                EXPECT_LE(part, 1.0f);
            }
        }
    }
}

TEST(Presets, BoneBeginsAt150HounsfieldUnits)
{
    // Stored values are the units and 1024, in 12 bits that are drawn 16 times as large.
    const double perUnit = 16.0 / 65536.0;
    const TransferPoints points = presetPoints(*findPreset("ct-bone"), {1024 * perUnit, perUnit});
    ASSERT_EQ(points.opacity.size(), 6u);
    EXPECT_EQ(points.opacity.front(), (OpacityPoint{0.0f, 0.0f}));
    EXPECT_FLOAT_EQ(points.opacity[1].position, static_cast<float>((1024 + 150) * perUnit));
    EXPECT_EQ(points.opacity[1].opacity, 0.0f);
    EXPECT_FLOAT_EQ(points.opacity[2].position, static_cast<float>((1024 + 250) * perUnit));
    EXPECT_EQ(points.opacity[2].opacity, 0.15f);
    EXPECT_EQ(points.opacity.back(), (OpacityPoint{1.0f, 0.95f})) << "the last opacity goes on";
    EXPECT_EQ(points.color.front().position, 0.0f);
    EXPECT_EQ(points.color.back().position, 1.0f);
}

TEST(Presets, APointOutsideIsCutOffWhereItsLineCrossesTheEnd)
{
    const Preset ramp{"ramp",
                      "",
                      PresetScale::Object,
                      {{-1.0f, 0.0f}, {1.0f, 1.0f}, {2.0f, 0.0f}},
                      {{0.5f, 1.0f, 0.5f, 0.0f}},
                      Shading::Dvr};
    const TransferPoints points = presetPoints(ramp, {0.0, 2.0 / 3.0});
    // Positions -2/3, 2/3 and 4/3: halfway up at 0, down to a half at 1.
    ASSERT_EQ(points.opacity.size(), 3u);
    EXPECT_EQ(points.opacity[0].position, 0.0f);
    EXPECT_NEAR(points.opacity[0].opacity, 0.5f, 1e-6);
    EXPECT_NEAR(points.opacity[1].position, 2.0 / 3.0, 1e-6);
    EXPECT_EQ(points.opacity[1].opacity, 1.0f);
    EXPECT_EQ(points.opacity[2].position, 1.0f);
    EXPECT_NEAR(points.opacity[2].opacity, 0.5f, 1e-6);
    ASSERT_EQ(points.color.size(), 3u);
    for (const ColorPoint &point : points.color)
    {
        EXPECT_EQ(point.red, 1.0f);
        EXPECT_EQ(point.green, 0.5f);
        EXPECT_EQ(point.blue, 0.0f);
    }
}

TEST(Presets, TheObjectScaleRunsFromTheBackgroundToTheBrightest)
{
    Histogram histogram;
    histogram.counts.resize(256);
    histogram.counts[10] = 9000;
    histogram.counts[100] = 900;
    histogram.counts[200] = 100;
    histogram.total = 10000;
    const ScaleMap map = objectScale(histogram);
    const double background = static_cast<double>(backgroundThreshold(histogram));
    EXPECT_GE(background, 10.0);
    EXPECT_LT(background, 100.0);
    EXPECT_DOUBLE_EQ(map.offset, background / 256.0);
    EXPECT_DOUBLE_EQ(map.offset + map.factor, 200.0 / 256.0);
}

TEST(Presets, AVolumeOfOneValueHasAScaleThatCanBeUsed)
{
    Histogram histogram;
    histogram.counts.resize(256);
    histogram.counts[255] = 8;
    histogram.total = 8;
    const ScaleMap map = objectScale(histogram);
    EXPECT_GT(map.factor, 0.0);
    const TransferPoints points = presetPoints(*findPreset("mri"), map);
    EXPECT_EQ(points.opacity.front().position, 0.0f);
    EXPECT_EQ(points.opacity.back().position, 1.0f);
}

} // namespace
