/// \file
/// Every combination of strategies, drawn and compared with a naive picture computed on the processor.

#include "Subjects.h"
#include "VolumeStage.h"

#include <OpenSG/OSGBaseInitFunctions.h>

using namespace reference;

namespace
{

constexpr int side = 40;

struct ShadingCase
{
    const char *name;
    ShadingType type;
    bool modulated;
    bool usesNormals;
};

const ShadingCase shadings[] = {
    {"Dvr", ShadingType::Dvr, false, false},   {"DvrModulated", ShadingType::Dvr, true, true},
    {"Lit", ShadingType::LitDvr, false, true}, {"LitModulated", ShadingType::LitDvr, true, true},
    {"Mip", ShadingType::Mip, false, false},   {"XRay", ShadingType::XRay, false, false}};

struct Case
{
    int bits;
    ShadingCase shading;
};

std::vector<Case> cases()
{
    std::vector<Case> all;
    for(const int bits : {8, 16})
    {
        for(const ShadingCase &shading : shadings)
            all.push_back({bits, shading});
    }
    return all;
}

std::string nameOf(const Scene &scene, const Case &shown, bool opaque, bool within)
{
    const char *const normals[] = {"pre", "central", "sobel"};
    return std::to_string(shown.bits) + "-" + shown.shading.name + "-" + normals[int(scene.normal)] +
           (scene.preintegrated ? "-pairs" : "-single") +
           (scene.ray == RayType::Simple ? "-plain" : "-staggered") +
           (scene.traversal == TraversalType::Simple ? "-all" : "-blocks") +
           (scene.geometry == GeometryType::Box ? "-box" : "-boundary") + (opaque ? "-opaque" : "") +
           (within ? "-within" : "");
}

/// How gtest prints a case.
void PrintTo(const Case &shown, std::ostream *out)
{
    *out << shown.bits << " bits, " << shown.shading.name;
}

class VolumePicture : public ::testing::TestWithParam<Case>
{
protected:
    static void SetUpTestSuite() { osg::osgInit(0, nullptr); }
};

TEST_P(VolumePicture, OfEachCombinationAgreesWithTheReference)
{
    const Case &shown = GetParam();
    Scene scene = test::sceneOf(shown.bits, side);
    scene.shading = shown.shading.type;
    scene.gradientModulation = shown.shading.modulated;
    test::VolumeStage stage(side, side);
    const osg::LogCapture log;
    int pictures = 0;
    // With opaque boxes and without, from outside and from within.
    const auto compareViews = [&](int views)
    {
        for(int view = 0; view < views; ++view)
        {
            const bool opaque = view % 2 == 0;
            const bool within = view / 2 == 1;
            scene.boxes = opaque ? test::twoBoxes() : std::vector<OpaqueBox>();
            scene.camera = within ? test::inside() : test::outside();
            EXPECT_TRUE(stage.matches(scene, nameOf(scene, shown, opaque, within), 0.75));
            ++pictures;
        }
    };
    for(const NormalType normal :
        {NormalType::Precomputed, NormalType::CentralDifferences, NormalType::Sobel})
    {
        scene.normal = normal;
        for(const bool preintegrated : {false, true})
        {
            scene.preintegrated = preintegrated;
            for(const RayType ray : {RayType::Simple, RayType::Interleaved})
            {
                scene.ray = ray;
                for(const TraversalType traversal : {TraversalType::Simple, TraversalType::BlockSkipping})
                {
                    scene.traversal = traversal;
                    for(const GeometryType geometry : {GeometryType::Box, GeometryType::Boundary})
                    {
                        scene.geometry = geometry;
                        // A shading that reads no normals shows all of them alike: once each is enough.
                        const bool full =
                            shown.shading.usesNormals || normal == NormalType::CentralDifferences;
                        compareViews(full ? 4 : 1);
                    }
                }
            }
        }
    }
    EXPECT_EQ(pictures, shown.shading.usesNormals ? 192 : 96);
    EXPECT_EQ(test::complaintsIn(log), "");
}

INSTANTIATE_TEST_SUITE_P(Shading, VolumePicture, ::testing::ValuesIn(cases()),
                         [](const auto &info)
                         { return std::string(info.param.shading.name) + std::to_string(info.param.bits); });

} // namespace
