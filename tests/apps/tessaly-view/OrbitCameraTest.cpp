/// \file
/// The camera's placement against closed forms.

#include "OrbitCamera.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace
{

using namespace viewer;

constexpr double pi = 3.14159265358979323846;

void expectNear(const Vec3 &a, const Vec3 &b, double slack = 1e-12)
{
    EXPECT_NEAR(a[0], b[0], slack);
    EXPECT_NEAR(a[1], b[1], slack);
    EXPECT_NEAR(a[2], b[2], slack);
}

const Box cube{{-1, -1, -1}, {1, 1, 1}};

CameraRequest from(const Vec3 &position)
{
    CameraRequest request;
    request.position = position;
    return request;
}

TEST(OrbitCamera, FromTheFrontZIsUpAndXIsToTheLeft)
{
    const CameraPlacement c = placeCamera(from({0, 10, 0}), cornersOf(cube), cube, 1.0);
    expectNear(c.position, {0, 10, 0});
    expectNear(c.back, {0, 1, 0});
    expectNear(c.up, {0, 0, 1});
    expectNear(c.right, {-1, 0, 0});
}

TEST(OrbitCamera, AnAzimuthOfNinetyDegreesTakesTheCameraToItsRight)
{
    CameraRequest request = from({0, -10, 0});
    request.azimuth = 90.0;
    // Seen from -y with z up, the camera's right is +x.
    expectNear(placeCamera(request, cornersOf(cube), cube, 1.0).position, {10, 0, 0}, 1e-12);
}

TEST(OrbitCamera, AnElevationOfNinetyDegreesLooksDownFromThePoleWithAnUprightFrame)
{
    CameraRequest request = from({0, -10, 0});
    request.elevation = 90.0;
    const CameraPlacement c = placeCamera(request, cornersOf(cube), cube, 1.0);
    expectNear(c.position, {0, 0, 10}, 1e-12);
    expectNear(c.up, {0, 1, 0}, 1e-12);
    expectNear(c.right, {1, 0, 0}, 1e-12);
}

TEST(OrbitCamera, AnElevationKeepsTheDistanceAndRaisesByItsSine)
{
    CameraRequest request = from({3, 4, 0});
    request.elevation = 30.0;
    const CameraPlacement c = placeCamera(request, cornersOf(cube), cube, 1.0);
    EXPECT_NEAR(length(c.position), 5.0, 1e-12);
    EXPECT_NEAR(c.position[2], 2.5, 1e-12);
}

TEST(OrbitCamera, WithoutAPositionTheBoxJustFitsThePicture)
{
    CameraRequest request;
    request.viewAngle = 40.0;
    const double slope = std::tan(20.0 * pi / 180.0);
    for (const double aspect : {0.5, 1.0, 2.0})
    {
        const Box box{{-3, -1, -2}, {1, 4, 5}};
        const CameraPlacement c = placeCamera(request, cornersOf(box), box, aspect);
        expectNear(c.focalPoint, {-1, 1.5, 1.5});
        double fullest = 0.0;
        for (int corner = 0; corner < 8; ++corner)
        {
            const Vec3 p{(corner & 1) ? 1.0 : -3.0, (corner & 2) ? 4.0 : -1.0, (corner & 4) ? 5.0 : -2.0};
            const double depth = dot(c.position - p, c.back);
            const double x = dot(p - c.position, c.right) / (depth * slope * aspect);
            const double y = dot(p - c.position, c.up) / (depth * slope);
            EXPECT_GT(depth, c.nearPlane);
            EXPECT_LT(depth, c.farPlane);
            EXPECT_LE(std::abs(x), frameShare + 1e-9);
            EXPECT_LE(std::abs(y), frameShare + 1e-9);
            fullest = std::max({fullest, std::abs(x), std::abs(y)});
        }
        EXPECT_NEAR(fullest, frameShare, 1e-9) << "the box touches the margin";
    }
}

TEST(OrbitCamera, WithAPositionTheFocalPointIsTheOriginWhateverIsFramed)
{
    const std::vector<Vec3> framed{{5, 5, 5}, {6, 7, 8}};
    expectNear(placeCamera(from({0, 10, 0}), framed, cube, 1.0).focalPoint, {0, 0, 0});
}

TEST(OrbitCamera, TheDefaultViewShowsFrontSideAndTop)
{
    const CameraPlacement c = placeCamera(CameraRequest(), cornersOf(cube), cube, 1.0);
    EXPECT_GT(c.back[0], 0.2);
    EXPECT_GT(c.back[1], 0.2);
    EXPECT_GT(c.back[2], 0.2);
    EXPECT_GT(c.up[2], 0.5);
}

TEST(OrbitCamera, ZoomNarrowsTheAngleSoThatThePictureGrowsByTheFactor)
{
    CameraRequest request = from({0, 10, 0});
    request.viewAngle = 60.0;
    const double wide = std::tan(placeCamera(request, cornersOf(cube), cube, 1.0).fieldOfView / 2);
    EXPECT_NEAR(wide, std::tan(pi / 6), 1e-12);
    request.zoom = 4.0;
    EXPECT_NEAR(std::tan(placeCamera(request, cornersOf(cube), cube, 1.0).fieldOfView / 2), wide / 4, 1e-12);
}

TEST(OrbitCamera, ThePlanesEncloseTheSceneAlongTheLineOfSight)
{
    const CameraPlacement c = placeCamera(from({0, 10, 0}), cornersOf(cube), cube, 1.0);
    EXPECT_NEAR(c.nearPlane, 0.99 * 9.0, 1e-12);
    EXPECT_NEAR(c.farPlane, 1.01 * 11.0, 1e-12);
}

TEST(OrbitCamera, InsideOfTheSceneTheNearPlaneStaysAheadOfTheCamera)
{
    const CameraPlacement c = placeCamera(from({0, 0.5, 0}), cornersOf(cube), cube, 1.0);
    EXPECT_NEAR(c.farPlane, 1.01 * 1.5, 1e-12);
    EXPECT_NEAR(c.nearPlane, c.farPlane / 2000, 1e-12);
}

TEST(OrbitCamera, ASceneBehindTheCameraStillHasPlanesInOrder)
{
    CameraRequest request = from({0, 10, 0});
    request.focalPoint = Vec3{0, 20, 0};
    const CameraPlacement c = placeCamera(request, cornersOf(cube), cube, 1.0);
    EXPECT_GT(c.nearPlane, 0.0);
    EXPECT_GT(c.farPlane, c.nearPlane);
}

TEST(OrbitCamera, LookingAlongZWithoutAViewUpTakesY)
{
    const CameraPlacement c = placeCamera(from({0, 0, 10}), cornersOf(cube), cube, 1.0);
    expectNear(c.up, {0, 1, 0});
    expectNear(c.right, {1, 0, 0});
}

TEST(OrbitCamera, TheFrameIsOrthonormalAndRightHandedForEveryRequest)
{
    constexpr unsigned seed = 20261120;
    RecordProperty("seed", static_cast<int>(seed));
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> number(-5.0, 5.0);
    std::uniform_real_distribution<double> angle(-400.0, 400.0);
    for (int i = 0; i < 1000; ++i)
    {
        CameraRequest request = from({number(random), number(random), number(random)});
        request.focalPoint = Vec3{number(random), number(random), number(random)};
        request.viewUp = Vec3{number(random), number(random), number(random)};
        request.azimuth = angle(random);
        request.elevation = angle(random);
        ASSERT_EQ(checkCamera(request), "") << "seed " << seed << ", request " << i;
        const CameraPlacement c = placeCamera(request, cornersOf(cube), cube, 1.5);
        EXPECT_NEAR(length(c.right), 1.0, 1e-9);
        EXPECT_NEAR(length(c.up), 1.0, 1e-9);
        EXPECT_NEAR(dot(c.right, c.up), 0.0, 1e-9);
        EXPECT_NEAR(dot(c.right, c.back), 0.0, 1e-9);
        expectNear(cross(c.right, c.up), c.back, 1e-9);
        EXPECT_NEAR(length(c.position - *request.focalPoint), length(*request.position - *request.focalPoint),
                    1e-9);
        EXPECT_NEAR(dot(normalized(*request.focalPoint - c.position), c.back), -1.0, 1e-9);
    }
}

TEST(OrbitCamera, ImpossibleRequestsAreTold)
{
    EXPECT_EQ(checkCamera(CameraRequest()), "");
    EXPECT_EQ(checkCamera(from({0, 0, 0})),
              "the camera position is the focal point, there is no direction to look in");
    EXPECT_EQ(checkCamera(from({1, 0, 0})), "");
    CameraRequest request = from({0, 0, 7});
    request.viewUp = Vec3{0, 0, -2};
    EXPECT_EQ(checkCamera(request), "the camera's view-up direction lies along its line of sight");
    request.viewUp = Vec3{0, 0, 0};
    EXPECT_EQ(checkCamera(request), "the camera's view-up direction has no length");
}

} // namespace
