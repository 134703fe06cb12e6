#ifndef TESSALY_VIEW_ORBITCAMERA_H
#define TESSALY_VIEW_ORBITCAMERA_H

/// \file
/// A camera that looks at a point and is moved around it, in plain numbers.

#include "Geometry.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace viewer
{

/// What a user asks of the camera. Positions are in the scene's units; what is left out is framed.
struct CameraRequest
{
    std::optional<Vec3>
        position; ///< left out: in front, to the side and a little above, so that all is in the picture
    std::optional<Vec3>
        focalPoint;             ///< left out: the origin, and without a position the middle of what is framed
    std::optional<Vec3> viewUp; ///< left out: +z, or +y where the camera looks along z
    double viewAngle = 30.0;    ///< full vertical angle in degrees, above 0 and below 180
    double azimuth = 0.0;   ///< degrees around the view-up direction; positive takes the camera to its right
    double elevation = 0.0; ///< degrees upwards, after the azimuth
    double zoom = 1.0;      ///< above 0; magnifies the picture so many times without moving the camera

    friend bool operator==(const CameraRequest &a, const CameraRequest &b)
    {
        return std::tie(a.position, a.focalPoint, a.viewUp, a.viewAngle, a.azimuth, a.elevation, a.zoom) ==
               std::tie(b.position, b.focalPoint, b.viewUp, b.viewAngle, b.azimuth, b.elevation, b.zoom);
    }
};

/// Where the camera stands: an orthonormal frame and what a perspective camera needs.
struct CameraPlacement
{
    Vec3 position{};
    Vec3 focalPoint{};
    Vec3 right{1, 0, 0};
    Vec3 up{0, 1, 0};
    Vec3 back{0, 0, 1};       ///< from the focal point to the camera
    double fieldOfView = 0.0; ///< full vertical angle in radians
    double nearPlane = 0.0;   ///< distance, above 0
    double farPlane = 0.0;    ///< distance, above nearPlane
};

/// What makes a request impossible, in one line, or "": a position on the focal point, a view-up direction of
/// no length or along the line of sight.
std::string checkCamera(const CameraRequest &request);

/// How much of half the picture's width or height a framed scene takes; the rest is margin.
constexpr double frameShare = 0.9;

std::vector<Vec3> cornersOf(const Box &box);

/// Places the camera. A position that isn't given has the distance at which the points `framed` just fit into
/// frameShare of the picture, without zoom; the planes enclose `scene`, or begin just before the camera where
/// that is inside of it. \param request one that checkCamera() has no complaint about \param framed at least
/// one point \param aspect width over height of the picture
CameraPlacement placeCamera(const CameraRequest &request, const std::vector<Vec3> &framed, const Box &scene,
                            double aspect);

} // namespace viewer

#endif
