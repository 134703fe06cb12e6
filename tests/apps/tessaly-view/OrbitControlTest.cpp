/// \file
/// Cameras under the hand, against closed forms.

#include "OrbitControl.h"

#include <gtest/gtest.h>

namespace
{

using namespace viewer;

CameraRequest camera(const Vec3 &position, const Vec3 &focalPoint = {0, 0, 0})
{
    CameraRequest request;
    request.position = position;
    request.focalPoint = focalPoint;
    request.viewUp = Vec3{0, 0, 1};
    return request;
}

void expectNear(const Vec3 &a, const Vec3 &b)
{
    for (std::size_t i = 0; i < 3; ++i)
    {
        EXPECT_NEAR(a[i], b[i], 1e-9) << i;
    }
}

TEST(OrbitControl, AQuarterTurnToTheRightGoesCounterClockwiseSeenFromAbove)
{
    // From +x, with z up, the camera's right is +y.
    expectNear(*orbited(camera({10, 0, 0}), 90.0, 0.0).position, {0, 10, 0});
    expectNear(*orbited(camera({11, 2, 3}, {1, 2, 3}), 90.0, 0.0).position, {1, 12, 3});
}

TEST(OrbitControl, UpwardsTheCameraRisesAndKeepsItsDistance)
{
    const double s = 10.0 * std::sqrt(0.5);
    expectNear(*orbited(camera({10, 0, 0}), 0.0, 45.0).position, {s, 0, s});
    expectNear(*orbited(camera({10, 0, 0}), 0.0, -45.0).position, {s, 0, -s});
}

TEST(OrbitControl, AtThePolesTheCameraStops)
{
    const CameraRequest top = orbited(camera({10, 0, 0}), 0.0, 500.0);
    const double margin = 0.5 * 3.14159265358979323846 / 180.0;
    expectNear(*top.position, {10 * std::sin(margin), 0, 10 * std::cos(margin)});
    EXPECT_EQ(checkCamera(top), "");
    expectNear(*orbited(top, 0.0, 100.0).position, *top.position);
    EXPECT_NEAR((*orbited(top, 0.0, -500.0).position)[2], -10 * std::cos(margin), 1e-9);
}

TEST(OrbitControl, ADragBackIsAWayBack)
{
    const CameraRequest start = camera({3, -7, 2}, {0.5, 0.25, -1});
    expectNear(*orbited(orbited(start, 33.0, 21.0), -33.0, -21.0).position, *start.position);
    expectNear(*panned(panned(start, 0.3, 0.1), -0.3, -0.1).focalPoint, *start.focalPoint);
    expectNear(*dollied(dollied(start, 0.5, 1e-6), 2.0, 1e-6).position, *start.position);
}

TEST(OrbitControl, APanOfOneHeightIsTheHeightOfThePictureThere)
{
    CameraRequest start = camera({10, 0, 0});
    start.viewAngle = 90.0; // the picture is 20 high in the distance of 10
    const CameraRequest right = panned(start, 1.0, 0.0);
    expectNear(*right.position, {10, 20, 0});
    expectNear(*right.focalPoint, {0, 20, 0});
    expectNear(*panned(start, 0.0, 0.5).focalPoint, {0, 0, 10});
    start.zoom = 2.0;
    expectNear(*panned(start, 0.0, 0.5).focalPoint, {0, 0, 5});
}

TEST(OrbitControl, NearerEndsAtTheSmallestDistance)
{
    expectNear(*dollied(camera({10, 0, 0}), 0.25, 1.0).position, {2.5, 0, 0});
    expectNear(*dollied(camera({10, 0, 0}), 1e-9, 1.0).position, {1, 0, 0});
}

TEST(OrbitControl, AxisViewsLookAlongTheAxisFromEitherSide)
{
    const CameraRequest start = camera({3, 4, 0});
    expectNear(*fromAxis(start, 0, true).position, {5, 0, 0});
    expectNear(*fromAxis(start, 1, false).position, {0, -5, 0});
    const CameraRequest top = fromAxis(start, 2, true);
    expectNear(*top.position, {0, 0, 5});
    EXPECT_EQ(*top.viewUp, (Vec3{0, 1, 0}));
    EXPECT_EQ(checkCamera(top), "");
    EXPECT_EQ(*fromAxis(start, 1, true).viewUp, (Vec3{0, 0, 1}));
}

TEST(OrbitControl, AFixedCameraSeesWhatTheRequestSees)
{
    const Box scene{{-1, -2, -3}, {1, 2, 3}};
    for (const double elevation : {0.0, 40.0, 80.0, 130.0, -100.0})
    {
        SCOPED_TRACE(elevation);
        CameraRequest request;
        request.azimuth = 25.0;
        request.elevation = elevation;
        request.zoom = 1.3;
        const CameraPlacement asked = placeCamera(request, cornersOf(scene), scene, 1.5);
        const CameraPlacement fixed = placeCamera(fixedCamera(request, asked), cornersOf(scene), scene, 1.5);
        expectNear(fixed.position, asked.position);
        expectNear(fixed.focalPoint, asked.focalPoint);
        expectNear(fixed.right, asked.right);
        expectNear(fixed.up, asked.up);
        EXPECT_NEAR(fixed.fieldOfView, asked.fieldOfView, 1e-12);
        EXPECT_NEAR(fixed.nearPlane, asked.nearPlane, 1e-9);
    }
}

TEST(OrbitControl, FromAPoleTheCameraCanBeMovedOn)
{
    const Box scene{{-1, -1, -1}, {1, 1, 1}};
    CameraRequest request;
    request.position = Vec3{0, 0, 10};
    request.focalPoint = Vec3{0, 0, 0};
    const CameraRequest fixed = fixedCamera(request, placeCamera(request, cornersOf(scene), scene, 1.0));
    EXPECT_EQ(checkCamera(fixed), "");
    EXPECT_EQ(checkCamera(orbited(fixed, 10.0, 10.0)), "");
}

} // namespace
