// Entry, exit and length of rays against geometry done by hand.
#include "reference/SetUp.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace reference;

namespace
{

// A cube of 2 x 2 x 2 units about the origin, seen from +z.
Scene cubeScene(double eyeDistance)
{
    Scene scene;
    scene.volume = constantVolume(16, 16, 16, 8, 100);
    scene.dimensions = {2.0, 2.0, 2.0};
    scene.geometry = GeometryType::Box;
    scene.camera.beaconToWorld = translation(0.0, 0.0, eyeDistance);
    scene.camera.nearPlane = 0.5;
    scene.camera.farPlane = 20.0;
    scene.width = 33;
    scene.height = 33;
    return scene;
}

BlockGrid wholeBox()
{
    return {{1, 1, 1}, {255}};
}

Crossing middle(const Scene &scene, const BlockGrid &shape)
{
    const Frame frame = frameOf(scene, {16, 16, 16});
    return cross(shape, frame.sight(scene, 16.5, 16.5), scene.camera.nearPlane, scene.camera.farPlane);
}

}

TEST(ReferenceSetUp, MatrixTimesItsInverseIsTheIdentity)
{
    const Mat4 matrix = translation(1, 2, 3) * rotation(0, 0.3) * rotation(1, 1.1) * scaling(2, 3, 0.5);
    const Mat4 product = matrix * inverse(matrix);
    const Mat4 one = identity();
    for(int i = 0; i < 16; ++i)
        EXPECT_NEAR(product[i], one[i], 1e-12) << i;
}

TEST(ReferenceSetUp, LookAtPutsTheTargetOnTheNegativeAxis)
{
    const Mat4 toEye = inverse(lookAt({1, 2, 3}, {4, -1, 0}, {0, 1, 0}));
    const Vec3d target = transform(toEye, {4, -1, 0}, 1.0);
    EXPECT_NEAR(target[0], 0.0, 1e-12);
    EXPECT_NEAR(target[1], 0.0, 1e-12);
    EXPECT_NEAR(target[2], -std::sqrt(27.0), 1e-12);
}

TEST(ReferenceSetUp, UnitCubeIsCrossedFromFaceToFace)
{
    const Crossing crossing = middle(cubeScene(5.0), wholeBox());
    EXPECT_TRUE(crossing.covered);
    EXPECT_FALSE(crossing.fromNear);
    EXPECT_NEAR(crossing.entry, 4.0, 1e-12);
    EXPECT_NEAR(crossing.exit, 6.0, 1e-12);
    EXPECT_EQ(crossing.entryPoint, (Vec3f{0.5f, 0.5f, 1.0f}));
    EXPECT_EQ(crossing.exitPoint, (Vec3f{0.5f, 0.5f, 0.0f}));
}

TEST(ReferenceSetUp, CameraInsideStartsAtTheNearPlane)
{
    const Crossing crossing = middle(cubeScene(0.25), wholeBox());
    EXPECT_TRUE(crossing.covered);
    EXPECT_TRUE(crossing.fromNear);
    EXPECT_NEAR(crossing.entryPoint[2], (1.0 - 0.25) / 2.0, 1e-6); // z = -0.25
    EXPECT_NEAR(crossing.exit, 1.25, 1e-12);
}

TEST(ReferenceSetUp, NearPlaneInsideTheVolumeClipsItsFrontFace)
{
    const Crossing crossing = middle(cubeScene(1.25), wholeBox());
    EXPECT_TRUE(crossing.fromNear);
    EXPECT_NEAR(crossing.entry, 0.5, 1e-12);
}

TEST(ReferenceSetUp, SightBesideTheCubeIsNotCovered)
{
    const Scene scene = cubeScene(5.0);
    const Frame frame = frameOf(scene, {16, 16, 16});
    const Crossing crossing = cross(wholeBox(), frame.sight(scene, 0.5, 16.5), 0.5, 20.0);
    EXPECT_FALSE(crossing.covered);
    const Vec4f back = backValue(scene, frame, crossing, 0.5, 16.5, 1.0f);
    EXPECT_EQ(back.w, 0.0f);
}

TEST(ReferenceSetUp, FarPlaneBeforeTheBackFaceLeavesNoExit)
{
    Scene scene = cubeScene(5.0);
    scene.camera.farPlane = 5.0;
    const Crossing crossing = middle(scene, wholeBox());
    EXPECT_TRUE(crossing.covered);
    EXPECT_FALSE(crossing.hasExit);
}

TEST(ReferenceSetUp, OneRayCrossesTheGapBetweenTwoBlocks)
{
    const BlockGrid shape = {{1, 1, 4}, {255, 0, 0, 255}};
    const Crossing crossing = middle(cubeScene(5.0), shape);
    EXPECT_NEAR(crossing.entry, 4.0, 1e-12);
    EXPECT_NEAR(crossing.exit, 6.0, 1e-12);
}

TEST(ReferenceSetUp, EyeInAGapStartsAtTheNextFrontFaceButInABlockAtTheNearPlane)
{
    const BlockGrid shape = {{1, 1, 4}, {255, 0, 0, 255}};
    Scene scene = cubeScene(0.0);
    scene.camera.nearPlane = 0.1;
    const Crossing gap = middle(scene, shape); // z = -0.5 is the far block's front face
    EXPECT_FALSE(gap.fromNear);
    EXPECT_NEAR(gap.entry, 0.5, 1e-12);
    scene.camera.beaconToWorld = translation(0.0, 0.0, 0.75);
    const Crossing block = middle(scene, shape); // its own back face comes first
    EXPECT_TRUE(block.fromNear);
    EXPECT_NEAR(block.exit, 1.75, 1e-12);
}

TEST(ReferenceSetUp, NothingOccupiedCoversNothing)
{
    EXPECT_FALSE(middle(cubeScene(5.0), {{2, 1, 1}, {0, 0}}).covered);
}

TEST(ReferenceSetUp, PlacementFallsBackToVoxelsTimesThickness)
{
    Scene scene = cubeScene(5.0);
    scene.dimensions = {-1.0, 1.0, 1.0};
    scene.sliceThickness = {0.5, 1.0, 2.0};
    const Frame frame = frameOf(scene, {16, 24, 8});
    const Vec3d low = transform(frame.unitToWorld, {0, 0, 0}, 1.0);
    const Vec3d high = transform(frame.unitToWorld, {1, 1, 1}, 1.0);
    EXPECT_EQ(low, (Vec3d{-4.0, -12.0, -8.0}));
    EXPECT_EQ(high, (Vec3d{4.0, 12.0, 8.0}));
}

TEST(ReferenceSetUp, WindowDepthRunsFromNearToFarHyperbolically)
{
    EXPECT_EQ(windowDepth(0.5, 0.5, 20.0), 0.0f);
    EXPECT_EQ(windowDepth(20.0, 0.5, 20.0), 1.0f);
    EXPECT_NEAR(windowDepth(1.0, 0.5, 20.0), 20.0 / 19.5 * 0.5, 1e-6);
}

TEST(ReferenceSetUp, OpaqueBoxInTheVolumeCutsTheRayAtItsFace)
{
    Scene scene = cubeScene(5.0);
    OpaqueBox box;
    box.low = {-0.2, -0.2, -0.9};
    box.high = {0.2, 0.2, 0.5};
    scene.boxes = {box};
    const Picture picture = render(scene);
    const std::size_t at = picture.index(16, 16);
    // From z = 1 to z = 0.5 in a cube of edge 2.
    EXPECT_NEAR(picture.back[at].w, 0.25f, 1e-5f);
    EXPECT_NEAR(picture.back[at].z, -1.0f, 1e-6f);
    EXPECT_EQ(picture.sceneColor[at].r, 1.0f);
    // Beside the box the ray goes the whole way, a little longer for its slope.
    const std::size_t beside = picture.index(16 + 4, 16);
    const double slope = 4.0 / 16.5 * std::tan(0.5);
    EXPECT_NEAR(picture.back[beside].w, std::sqrt(1.0 + slope * slope), 1e-5);
    EXPECT_EQ(picture.sceneDepth[beside], 1.0f);
}

TEST(ReferenceSetUp, OpaqueBoxBeforeTheVolumeLeavesNoRay)
{
    Scene scene = cubeScene(5.0);
    OpaqueBox box;
    box.toWorld = translation(0.0, 0.0, 2.0);
    box.color = {0.25f, 0.5f, 0.75f};
    scene.boxes = {box};
    const Picture picture = render(scene);
    const std::size_t at = picture.index(16, 16);
    EXPECT_EQ(picture.back[at].w, 0.0f);
    EXPECT_EQ(picture.samples[at], 0);
    EXPECT_EQ(picture.pixels[at].g, 0.5f);
}

TEST(ReferenceSetUp, OpaqueBoxBehindTheVolumeLeavesTheRayWhole)
{
    Scene scene = cubeScene(5.0);
    OpaqueBox box;
    box.toWorld = translation(0.0, 0.0, -3.0);
    scene.boxes = {box};
    const Picture picture = render(scene);
    EXPECT_NEAR(picture.back[picture.index(16, 16)].w, 1.0f, 1e-6f);
}

TEST(ReferenceSetUp, SilhouettesAreMarkedAndTheMiddleIsNot)
{
    Scene scene = cubeScene(5.0);
    const Picture picture = render(scene);
    int marked = 0;
    for(int x = 0; x < scene.width; ++x)
        marked += (picture.reasons[picture.index(x, 16)] & Edge) != 0;
    EXPECT_EQ(marked, 2); // one pixel on the left, one on the right
    EXPECT_FALSE(picture.reasons[picture.index(16, 16)] & Edge);
}
