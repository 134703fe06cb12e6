/// \file
/// A camera that looks at a point and is moved around it, in plain numbers.

#include "OrbitCamera.h"

#include <algorithm>
#include <limits>

namespace viewer
{

namespace
{

/// Of a head whose x runs to its right, y to its nose and z to its crown: front, side and a little above.
constexpr Vec3 defaultDirection{1.0, 0.8, 0.45};

/// The near plane is at least this share of the far plane away: the depth buffer has 24 bits.
constexpr double nearestShare = 1.0 / 2000.0;

/// Below this sine two directions count as one line.
constexpr double parallelSine = 1e-6;

/// The middle of the box around the points.
Vec3 middleOf(const std::vector<Vec3> &points)
{
    Box box{points.front(), points.front()};
    for (const Vec3 &point : points)
    {
        for (std::size_t axis = 0; axis < 3; ++axis)
        {
            box.low[axis] = std::min(box.low[axis], point[axis]);
            box.high[axis] = std::max(box.high[axis], point[axis]);
        }
    }
    return 0.5 * (box.low + box.high);
}

bool parallel(const Vec3 &a, const Vec3 &b)
{
    return length(cross(normalized(a), normalized(b))) < parallelSine;
}

/// From the focal point to the camera, ahead of azimuth and elevation.
Vec3 startDirection(const CameraRequest &request, const Vec3 &focalPoint)
{
    return request.position ? *request.position - focalPoint : defaultDirection;
}

Vec3 viewUp(const CameraRequest &request, const Vec3 &direction)
{
    if (request.viewUp)
    {
        return normalized(*request.viewUp);
    }
    const Vec3 z{0, 0, 1};
    return parallel(direction, z) ? Vec3{0, 1, 0} : z;
}

} // namespace

std::string checkCamera(const CameraRequest &request)
{
    const Vec3 direction = startDirection(request, request.focalPoint.value_or(Vec3{}));
    if (!(length(direction) > 0.0))
    {
        return "the camera position is the focal point, there is no direction to look in";
    }
    if (request.viewUp && !(length(*request.viewUp) > 0.0))
    {
        return "the camera's view-up direction has no length";
    }
    if (request.viewUp && parallel(direction, *request.viewUp))
    {
        return "the camera's view-up direction lies along its line of sight";
    }
    return {};
}

std::vector<Vec3> cornersOf(const Box &box)
{
    std::vector<Vec3> corners;
    for (int corner = 0; corner < 8; ++corner)
    {
        corners.push_back({(corner & 1) ? box.high[0] : box.low[0], (corner & 2) ? box.high[1] : box.low[1],
                           (corner & 4) ? box.high[2] : box.low[2]});
    }
    return corners;
}

CameraPlacement placeCamera(const CameraRequest &request, const std::vector<Vec3> &framed, const Box &scene,
                            double aspect)
{
    CameraPlacement camera;
    camera.focalPoint = request.focalPoint.value_or(request.position ? Vec3{} : middleOf(framed));

    // Around the focal point: first about the view-up direction, then about the camera's right. The elevation
    // takes the up direction along, so that it may pass a pole.
    const Vec3 start = startDirection(request, camera.focalPoint);
    const Vec3 about = viewUp(request, start);
    const Vec3 turned = rotated(normalized(start), about, request.azimuth * pi / 180.0);
    camera.right = normalized(cross(about, turned));
    camera.back = normalized(rotated(turned, camera.right, -request.elevation * pi / 180.0));
    camera.up = cross(camera.back, camera.right);

    // The distance at which each point lies within the four sides of the frustum.
    const double slope = std::tan(request.viewAngle * pi / 360.0);
    double distance = 0.0;
    if (request.position)
    {
        distance = length(start);
    }
    else
    {
        for (const Vec3 &point : framed)
        {
            const Vec3 offset = point - camera.focalPoint;
            const double across = std::abs(dot(offset, camera.right)) / (frameShare * slope * aspect);
            const double upwards = std::abs(dot(offset, camera.up)) / (frameShare * slope);
            distance = std::max(distance, dot(offset, camera.back) + std::max(across, upwards));
        }
    }
    // Points that all lie behind the focal point ask for none; a camera on it sees nothing.
    distance = std::max(distance, 1e-6);
    camera.position = camera.focalPoint + distance * camera.back;
    camera.fieldOfView = 2.0 * std::atan(slope / request.zoom);

    double nearest = std::numeric_limits<double>::max();
    double farthest = 0.0;
    for (const Vec3 &corner : cornersOf(scene))
    {
        const double depth = dot(camera.position - corner, camera.back);
        nearest = std::min(nearest, depth);
        farthest = std::max(farthest, depth);
    }
    // A scene behind the camera still needs planes, though there is nothing between them.
    camera.farPlane = farthest > 0.0 ? 1.01 * farthest : std::max(distance, 1e-3);
    camera.nearPlane = std::max(0.99 * nearest, nearestShare * camera.farPlane);
    return camera;
}

} // namespace viewer
