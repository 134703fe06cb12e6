/// \file
/// The numbers behind the filters, without GL, and the tables of the classes.

#include "FilterScene.h"

#include <Tessaly/OSGImprovedColorDisplayFilter.h>
#include <Tessaly/OSGOculusRiftFilter.h>
#include <Tessaly/OSGOculusRiftFilter2.h>

#include <filter/LensWarp.h>
#include <filter/ShadingTable.h>

#include <limits>
#include <random>

OSG_USING_NAMESPACE
using namespace filter_test;

namespace
{

tessaly::LensSetup defaults()
{
    tessaly::LensSetup setup;
    setup.distortion = Vec4f(1.f, 0.22f, 0.24f, 0.f);
    setup.width = 1280;
    setup.height = 800;
    setup.lensSeparation = 0.064f;
    setup.screenWidth = 0.14976f;
    return setup;
}

} // namespace

TEST(LensWarp, TheDefaultsGiveThePromisedNumbers)
{
    tessaly::LensUniforms uniforms = tessaly::symmetricLensWarp(defaults());
    EXPECT_NEAR(uniforms.scaleIn[0], 1.f, 1e-5);
    EXPECT_NEAR(uniforms.scaleIn[1], 1.25f, 1e-5);
    EXPECT_NEAR(uniforms.scale[0], 0.58771, 1e-5);
    EXPECT_NEAR(uniforms.scale[1], 0.47017, 1e-5);
    EXPECT_NEAR(uniforms.lensCenter[0], 0.14530, 1e-5);
    EXPECT_EQ(uniforms.lensCenter[1], 0.f);
    uniforms = tessaly::unitLensWarp(defaults());
    EXPECT_NEAR(uniforms.scale[0], 0.39002, 1e-5);
    EXPECT_NEAR(uniforms.scale[1], 0.31201, 1e-5);
    EXPECT_NEAR(uniforms.lensCenter[0], 0.57265, 1e-5);
    EXPECT_EQ(uniforms.lensCenter[1], 0.5f);
}

TEST(LensWarp, TheOtherEyeIsTheMirroredOne)
{
    tessaly::LensSetup right = defaults();
    right.leftEye = false;
    const tessaly::LensUniforms symmetric = tessaly::symmetricLensWarp(right);
    EXPECT_EQ(symmetric.lensCenter[0], -tessaly::symmetricLensWarp(defaults()).lensCenter[0]);
    EXPECT_EQ(symmetric.scale, tessaly::symmetricLensWarp(defaults()).scale);
    EXPECT_EQ(symmetric.scaleIn, tessaly::symmetricLensWarp(defaults()).scaleIn);
    const tessaly::LensUniforms unit = tessaly::unitLensWarp(right);
    EXPECT_NEAR(unit.lensCenter[0], 0.42735, 1e-5);
    EXPECT_EQ(unit.scale, tessaly::unitLensWarp(defaults()).scale);
}

TEST(LensWarp, TheFarEdgeAndTheFarCornerKeepTheirPlaces)
{
    const unsigned seed = 7;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> some(0.f, 0.5f);
    for(int i = 0; i < 100; ++i)
    {
        tessaly::LensSetup setup = defaults();
        setup.distortion = Vec4f(1.f + some(random), some(random), some(random), some(random));
        setup.lensSeparation = 0.04f + 0.06f * some(random);
        setup.screenWidth = 0.1f + 0.2f * some(random);
        setup.width = 200 + UInt32(2000 * some(random));
        const Vec4f &k = setup.distortion;
        const auto polynomial = [&](double q) { return k[0] + q * (k[1] + q * (k[2] + q * double(k[3]))); };

        // The middle of the edge at -1.
        const tessaly::LensUniforms symmetric = tessaly::symmetricLensWarp(setup);
        const double theta = (-1.0 - symmetric.lensCenter[0]) * symmetric.scaleIn[0];
        EXPECT_NEAR(symmetric.lensCenter[0] + symmetric.scale[0] * theta * polynomial(theta * theta), -1.0,
                    1e-5);
        EXPECT_NEAR(symmetric.scale[1] / symmetric.scale[0] * symmetric.scaleIn[1], 1.0, 1e-5);

        // The corner at 0, 0, as far from the centre as the program sees it, up to the factor of its half
        // picture.
        const tessaly::LensUniforms unit = tessaly::unitLensWarp(setup);
        const double c = unit.lensCenter[0] - 0.5;
        const double q = (c + 0.5) * (c + 0.5) + 0.390625;
        EXPECT_NEAR(unit.scale[0] * polynomial(q), 0.5, 1e-5);
        EXPECT_NEAR(unit.scale[1], 0.8 * unit.scale[0], 1e-6);
    }
}

TEST(LensWarp, AScreenWithoutWidthGivesNumbersThatAreNone)
{
    tessaly::LensSetup setup = defaults();
    setup.screenWidth = 0.f;
    EXPECT_TRUE(std::isinf(tessaly::symmetricLensWarp(setup).lensCenter[0]));
    EXPECT_TRUE(std::isinf(tessaly::unitLensWarp(setup).lensCenter[0]));
    setup = defaults();
    setup.distortion = Vec4f(0, 0, 0, 0);
    EXPECT_TRUE(std::isinf(tessaly::symmetricLensWarp(setup).scale[0]));
}

TEST(LensWarp, ChromaIsNeutralWithinAMillionth)
{
    EXPECT_TRUE(tessaly::isNeutralChroma(Vec4f(1, 0, 1, 0)));
    EXPECT_TRUE(tessaly::isNeutralChroma(Vec4f(1, 9e-7f, 1, -9e-7f)));
    for(int i = 0; i < 4; ++i)
    {
        Vec4f chroma(1, 0, 1, 0);
        chroma[UInt32(i)] += 2e-6f;
        EXPECT_FALSE(tessaly::isNeutralChroma(chroma)) << i;
    }
    EXPECT_FALSE(tessaly::isNeutralChroma(Vec4f(0, 0, 0, 0)));
}

TEST(ShadingTable, EntriesBecomeTruncatedBytesInTheirOrder)
{
    tessaly::ShadingTable table;
    const std::vector<Vec3f> entries = {Vec3f(0, 0.5f, 1), Vec3f(0.999f, 0.004f, 0.003f),
                                        Vec3f(0.1f, 0.2f, 0.3f), Vec3f(1, 1, 1)};
    EXPECT_TRUE(tessaly::makeShadingTable(entries, 2, 1, 2, table));
    EXPECT_EQ(table.width, 2u);
    EXPECT_EQ(table.height, 1u);
    EXPECT_EQ(table.depth, 2u);
    EXPECT_EQ(table.bytes, (std::vector<UInt8>{0, 127, 255, 254, 1, 0, 25, 51, 76, 255, 255, 255}));
}

TEST(ShadingTable, WhatIsOutOfRangeOverflowsItsByte)
{
    tessaly::ShadingTable table;
    const Real32 nan = std::numeric_limits<Real32>::quiet_NaN();
    EXPECT_TRUE(
        tessaly::makeShadingTable({Vec3f(1.5f, 2.f, -0.1f), Vec3f(nan, 1e30f, -1e30f)}, 1, 1, 2, table));
    ASSERT_EQ(table.bytes.size(), 6u);
    EXPECT_EQ(table.bytes[0], 382 - 256);
    EXPECT_EQ(table.bytes[1], 510 - 256);
    EXPECT_EQ(table.bytes[2], 256 - 25);
    EXPECT_EQ(table.bytes[3], 0);
}

TEST(ShadingTable, SizesThatDontFitGiveTheIdentity)
{
    const std::vector<Vec3f> six(6, Vec3f(0.5f, 0.5f, 0.5f));
    struct Case
    {
        UInt32 width, height, depth;
        bool fits;
    };
    for(const Case &c :
        {Case{1, 2, 3, true}, Case{6, 1, 1, true}, Case{2, 2, 2, false}, Case{0, 3, 2, false},
         Case{6, 1, 0, false}, Case{4294967295u, 4294967295u, 6, false}, Case{2147483648u, 2, 6, false}})
    {
        tessaly::ShadingTable table;
        EXPECT_EQ(tessaly::makeShadingTable(six, c.width, c.height, c.depth, table), c.fits);
        if(!c.fits)
        {
            EXPECT_EQ(table.bytes, (std::vector<UInt8>{0, 0, 0, 255, 255, 255}));
            EXPECT_EQ(table.width * 100 + table.height * 10 + table.depth, 112u);
        }
    }
    tessaly::ShadingTable table;
    EXPECT_FALSE(tessaly::makeShadingTable({}, 65536, 65536, 1, table));
}

TEST_F(FilterTest, TheTablesOfTheClassesAreAsPromised)
{
    foreground_test::checkClass("ImprovedColorDisplayFilter", "DisplayFilter",
                                {{"gamma", "SFReal32", 3, "2.4"},
                                 {"matrix", "SFMatrix", 4, "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"},
                                 {"width", "SFUInt32", 5, "1"},
                                 {"height", "SFUInt32", 6, "1"},
                                 {"depth", "SFUInt32", 7, "2"},
                                 {"table", "MFVec3f", 8, ""},
                                 {"debugColor", "SFVec4f", 9, "0 0 0 1"},
                                 {"debugMode", "SFInt32", 10, "0"}});
    for(const char *const name : {"OculusRiftFilter", "OculusRiftFilter2"})
        foreground_test::checkClass(name, "DisplayFilter",
                                    {{"distortionK", "SFVec4f", 3, "1 0.22 0.24 0"},
                                     {"chromaAbCorrection", "SFVec4f", 4, "1 0 1 0"},
                                     {"width", "SFUInt32", 5, "1280"},
                                     {"height", "SFUInt32", 6, "800"},
                                     {"lensSeparationDistance", "SFReal32", 7, "0.064"},
                                     {"hScreenSize", "SFReal32", 8, "0.14976"},
                                     {"vScreenSize", "SFReal32", 9, "0.0935"},
                                     {"leftEye", "SFBool", 10, "true"}});
    foreground_test::checkClass("DisplayFilterForeground", "Foreground",
                                {{"filter", "MFDisplayFilterPtr", 3, ""}});
    EXPECT_EQ(UInt32(DisplayFilter::NextFieldId), 3u);
    EXPECT_EQ(UInt32(ImprovedColorDisplayFilter::NextFieldId), 11u);
    EXPECT_EQ(UInt32(OculusRiftFilter::NextFieldId), 11u);
    EXPECT_EQ(UInt32(OculusRiftFilter2::NextFieldId), 11u);
}

TEST_F(FilterTest, BinaryDataBringsTheFieldsAcross)
{
    const Held<ImprovedColorDisplayFilterPtr> color, colorCopy;
    color->setGamma(1.5f);
    color->setMatrix(Matrix(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16));
    color->setWidth(3);
    color->editMFTable()->setValues({Vec3f(1, 2, 3), Vec3f(4, 5, 6)});
    color->setDebugMode(-2);
    BitVector mask = 0;
    for(UInt32 id = 3; id < 11; ++id)
        mask |= BitVector(1) << id;
    MemoryDataHandler memory;
    color->copyToBin(memory, mask);
    EXPECT_EQ(memory.getData().size(), 4u + 64u + 3u * 4u + (4u + 2u * 12u) + 16u + 4u);
    EXPECT_EQ(color->getBinSize(mask), memory.getData().size());
    colorCopy->copyFromBin(memory, mask);
    EXPECT_TRUE(colorCopy->getMatrix() == color->getMatrix());
    EXPECT_EQ(colorCopy->getTable(1), Vec3f(4, 5, 6));
    EXPECT_EQ(colorCopy->getDebugMode(), -2);
    EXPECT_EQ(colorCopy->getWidth(), 3u);

    const Held<OculusRiftFilter2Ptr> lens, lensCopy;
    lens->setDistortionK(Vec4f(4, 3, 2, 1));
    lens->setVScreenSize(0.5f);
    lens->setLeftEye(false);
    MemoryDataHandler lensMemory;
    lens->copyToBin(lensMemory, mask);
    EXPECT_EQ(lensMemory.getData().size(), 16u + 16u + 4u + 4u + 4u + 4u + 4u + 1u);
    lensCopy->copyFromBin(lensMemory, mask);
    EXPECT_EQ(lensCopy->getDistortionK(), Vec4f(4, 3, 2, 1));
    EXPECT_EQ(lensCopy->getVScreenSize(), 0.5f);
    EXPECT_FALSE(lensCopy->getLeftEye());
    lensCopy->changed(mask, ChangedOrigin::Sync);
}
