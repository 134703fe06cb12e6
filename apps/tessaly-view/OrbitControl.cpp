/// \file
/// Cameras moved around, along and towards what they look at.

#include "OrbitControl.h"

#include <algorithm>

namespace viewer
{

namespace
{

/// How near to the up direction, or to its opposite, the line of sight may come: degrees.
constexpr double poleMargin = 0.5;

} // namespace

CameraRequest fixedCamera(const CameraRequest &request, const CameraPlacement &placed)
{
    CameraRequest fixed;
    fixed.position = placed.position;
    fixed.focalPoint = placed.focalPoint;
    fixed.viewAngle = request.viewAngle;
    fixed.zoom = request.zoom;

    // The up direction that was asked for goes on, upside down where the elevation had passed a pole.
    Vec3 up = request.viewUp ? normalized(*request.viewUp) : Vec3{0, 0, 1};
    if (length(cross(up, placed.back)) < 1e-3)
    {
        up = placed.up;
    }
    fixed.viewUp = dot(up, placed.up) < 0.0 ? -1.0 * up : up;
    return fixed;
}

CameraRequest orbited(const CameraRequest &fixed, double right, double up)
{
    const Vec3 about = normalized(*fixed.viewUp);
    const Vec3 offset = *fixed.position - *fixed.focalPoint;
    const double distance = length(offset);
    const Vec3 turned = rotated((1.0 / distance) * offset, about, right * pi / 180.0);

    const double polar = std::acos(std::clamp(dot(turned, about), -1.0, 1.0)) * 180.0 / pi;
    const double wanted = std::clamp(polar - up, poleMargin, 180.0 - poleMargin);
    const Vec3 side = normalized(cross(about, turned));

    CameraRequest result = fixed;
    result.position = *fixed.focalPoint + distance * rotated(turned, side, (wanted - polar) * pi / 180.0);
    return result;
}

CameraRequest panned(const CameraRequest &fixed, double right, double up)
{
    const Vec3 offset = *fixed.position - *fixed.focalPoint;
    const Vec3 back = normalized(offset);
    const Vec3 sideways = normalized(cross(*fixed.viewUp, back));
    const Vec3 upwards = cross(back, sideways);
    const double height = 2.0 * length(offset) * std::tan(fixed.viewAngle * pi / 360.0) / fixed.zoom;
    const Vec3 shift = (right * height) * sideways + (up * height) * upwards;

    CameraRequest result = fixed;
    result.position = *fixed.position + shift;
    result.focalPoint = *fixed.focalPoint + shift;
    return result;
}

CameraRequest dollied(const CameraRequest &fixed, double factor, double smallest)
{
    const Vec3 offset = *fixed.position - *fixed.focalPoint;
    const double distance = length(offset);
    CameraRequest result = fixed;
    result.position = *fixed.focalPoint + (std::max(distance * factor, smallest) / distance) * offset;
    return result;
}

CameraRequest fromAxis(const CameraRequest &fixed, int axis, bool positive)
{
    Vec3 direction{};
    direction[static_cast<std::size_t>(axis)] = positive ? 1.0 : -1.0;
    CameraRequest result = fixed;
    result.position = *fixed.focalPoint + length(*fixed.position - *fixed.focalPoint) * direction;
    result.viewUp = axis == 2 ? Vec3{0, 1, 0} : Vec3{0, 0, 1};
    return result;
}

} // namespace viewer
