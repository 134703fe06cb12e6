/// \file
/// Pictures of volumes of many kinds: forms, depths of voxels, tables, extents.

#include "Subjects.h"
#include "VolumeStage.h"

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGImage.h>

using namespace reference;
using test::VolumeStage;

namespace
{

constexpr int side = 48;

class VolumeSubject : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { osg::osgInit(0, nullptr); }

    /// Both geometries with both traversals, pre-integrated or not.
    void compareAll(VolumeStage &stage, Scene scene, const std::string &name, double judged = 0.6)
    {
        for(const bool preintegrated : {false, true})
        {
            for(const GeometryType geometry : {GeometryType::Box, GeometryType::Boundary})
            {
                scene.preintegrated = preintegrated;
                scene.geometry = geometry;
                scene.traversal =
                    geometry == GeometryType::Box ? TraversalType::BlockSkipping : TraversalType::Simple;
                const std::string which = std::string(preintegrated ? "-pairs" : "-single") +
                                          (geometry == GeometryType::Box ? "-box" : "-boundary");
                EXPECT_TRUE(stage.matches(scene, name + which, judged));
            }
        }
    }
};

TEST_F(VolumeSubject, OfEveryFormAndDepthIsDrawnAsTheReferenceDrawsIt)
{
    VolumeStage stage(side, side);
    const osg::LogCapture log;
    for(const int bits : {8, 16})
    {
        const std::uint16_t top = bits == 8 ? 255 : 65535;
        const std::pair<const char *, Volume> subjects[] = {
            {"constant", constantVolume(16, 16, 16, bits, std::uint16_t(top / 2))},
            {"ramp", rampVolume(32, 17, 9, bits, 0, top)},
            {"blob", blobVolume(40, 24, 24, bits, top, 3)},
            {"shell", shellVolume(33, 33, 33, bits, top)},
            {"noise", noiseVolume(12, 12, 12, bits, top, 5)},
            {"least", noiseVolume(2, 2, 2, bits, top, 9)},
        };
        for(const auto &[name, volume] : subjects)
        {
            Scene scene = test::sceneOf(bits, side);
            scene.volume = volume;
            compareAll(stage, scene, std::to_string(bits) + "-" + name);
        }
    }
    EXPECT_EQ(test::complaintsIn(log), "");
}

TEST_F(VolumeSubject, WithoutATableShowsAGreyRamp)
{
    VolumeStage stage(side, side);
    for(const int bits : {8, 16})
    {
        Scene scene = test::sceneOf(bits, side);
        scene.transfer = TransferSource();
        compareAll(stage, scene, std::to_string(bits) + "-ramp-table");
    }
}

TEST_F(VolumeSubject, OfTwelveBitsFillsTheRangeOfSixteen)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(16, side);
    scene.volume = cloudVolume(24, 24, 24, 16, 4095, 6, 21);
    compareAll(stage, scene, "twelve-bits");
    // One more, and it is true 16-bit data: almost nothing is seen.
    for(std::uint16_t &voxel : scene.volume.voxels)
        voxel = std::max<std::uint16_t>(voxel, 1);
    scene.volume.voxels[0] = 4096;
    scene.transfer = TransferSource();
    compareAll(stage, scene, "thirteen-bits");
}

TEST_F(VolumeSubject, WithSwappedBytesIsPutRight)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(16, side);
    for(std::uint16_t &voxel : scene.volume.voxels)
        voxel = std::uint16_t((voxel << 8) | (voxel >> 8));
    scene.swapped = true;
    compareAll(stage, scene, "swapped");
    const test::RgbaImage right = stage.picture();
    Scene plain = test::sceneOf(16, side);
    plain.preintegrated = true;
    plain.geometry = GeometryType::Boundary;
    stage.show(plain);
    EXPECT_EQ(right.bytes, stage.picture().bytes);
}

TEST_F(VolumeSubject, TakesItsExtentFromDimensionsOrFromVoxelsTimesThickness)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(8, side);
    const struct
    {
        const char *name;
        Vec3d dimensions;
        Vec3d thickness;
    } extents[] = {{"long", {2.4, 0.7, 0.9}, {1, 1, 1}},
                   {"dimensions-over-thickness", {1, 1, 1}, {0.3, 2, 1}},
                   {"voxels", {-1, -1, -1}, {1, 1, 1}},
                   {"thick-slices", {-1, -1, -1}, {1, 1, 2.5}},
                   {"one-negative", {2, -1, 2}, {0.5, 1, 1.5}}};
    for(const auto &extent : extents)
    {
        scene.dimensions = extent.dimensions;
        scene.sliceThickness = extent.thickness;
        // Voxels times thickness counts the padding; a scale above brings it to the size of the others.
        const Vec3d &given = extent.dimensions;
        const bool inVoxels = std::min({given[0], given[1], given[2]}) < 0.0;
        scene.nodeToWorld = rotation(0, 0.3) * rotation(1, 0.5);
        if(inVoxels)
            scene.nodeToWorld = scene.nodeToWorld * scaling(0.04, 0.04, 0.04);
        compareAll(stage, scene, std::string("extent-") + extent.name);
    }
}

TEST_F(VolumeSubject, KeepsItsOpacityWhenTheStepChangesAndFollowsEachStep)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(16, side);
    for(const float step : {0.05f, 0.02f, 0.009f, 0.004f})
    {
        scene.stepSize = step;
        EXPECT_TRUE(stage.matches(scene, "step-" + std::to_string(step)));
    }
    // The middle of the picture hardly changes from a step of 0.009 to one of 0.004.
    const test::RgbaImage fine = stage.picture();
    scene.stepSize = 0.009f;
    stage.show(scene);
    const test::RgbaImage coarse = stage.picture();
    for(std::size_t channel = 0; channel < 3; ++channel)
        EXPECT_NEAR(fine.at(side / 2, side / 2)[channel], coarse.at(side / 2, side / 2)[channel], 4);
}

TEST_F(VolumeSubject, WithNothingVisibleShowsTheSceneAlone)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(8, side);
    scene.transfer.bytes.assign(1024, 0);
    scene.boxes = test::twoBoxes();
    for(std::uint16_t &voxel : scene.volume.voxels)
        voxel = std::max<std::uint16_t>(voxel, 1);
    compareAll(stage, scene, "nothing");
    const test::RgbaImage picture = stage.picture();
    const std::vector<float> back = stage.floats(test::StageTexture::Back, 4);
    // The boundary is that of the padding alone: its blocks hold zeros beside the voxels and can't be told
    // empty.
    EXPECT_EQ(picture.at(0, 0), (test::RgbaImage::Pixel{32, 64, 128, 255}));
    EXPECT_EQ(back[3], 0.0f);
}

TEST_F(VolumeSubject, ShinesWithTheStylesExponentUntilTheNextProgramAndThenWith25)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(8, side);
    scene.shading = ShadingType::LitDvr;
    scene.specularColor = {1.0f, 0.9f, 0.8f};
    EXPECT_TRUE(stage.matches(scene, "exponent-25"));

    osg::beginEditCP(stage.style);
    stage.style->setShininess(2.0f / 128.0f);
    osg::endEditCP(stage.style, osg::BasicVolumeShadingStyle::ShininessFieldMask);
    scene.exponent = 2.0f;
    EXPECT_TRUE(test::agrees(stage.picture(), render(scene), "exponent-2"));

    // Another ray generation builds the program anew.
    scene.ray = RayType::Interleaved;
    scene.exponent = 25.0f;
    EXPECT_TRUE(stage.matches(scene, "exponent-back"));
}

TEST_F(VolumeSubject, TakesFinishedNormalsAsTheyAre)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(8, side);
    scene.shading = ShadingType::LitDvr;
    scene.normal = NormalType::Precomputed;
    EXPECT_TRUE(stage.matches(scene, "computed-normals"));
    const test::RgbaImage computed = stage.picture();

    bool grew = false;
    const Volume padding = padded(scene.volume, grew);
    ASSERT_TRUE(grew);
    std::vector<std::uint8_t> bytes = normalBytes(padding);
    const auto give = [&]
    {
        const osg::ImagePtr image = osg::Image::create();
        osg::beginEditCP(image);
        image->set(osg::Image::OSG_RGB_PF, padding.width, padding.height, padding.depth, 1, 1, 0.0,
                   bytes.data());
        osg::endEditCP(image);
        const osg::TextureChunkPtr normals = osg::TextureChunk::create();
        osg::beginEditCP(normals);
        normals->setImage(image);
        osg::endEditCP(normals);
        osg::beginEditCP(stage.volume, osg::VolumeNode::NormalsFieldMask);
        stage.volume->setNormals(normals);
        osg::endEditCP(stage.volume, osg::VolumeNode::NormalsFieldMask);
        return stage.picture();
    };
    EXPECT_EQ(give().bytes, computed.bytes);
    // Turned round they leave the lit side dark.
    for(std::uint8_t &byte : bytes)
        byte = std::uint8_t(254 - byte);
    EXPECT_NE(give().bytes, computed.bytes);
}

TEST_F(VolumeSubject, IsLitByTheColoursOfItsStyle)
{
    VolumeStage stage(side, side);
    Scene scene = test::sceneOf(16, side);
    scene.shading = ShadingType::LitDvr;
    scene.emissiveColor = {0.1f, 0.6f, 0.2f};
    scene.diffuseColor = {0.9f, 0.1f, 0.4f};
    scene.specularColor = {0.0f, 0.3f, 1.0f};
    EXPECT_TRUE(stage.matches(scene, "colours"));
}

} // namespace
