#ifndef TESSALY_VIEW_ORBITCONTROL_H
#define TESSALY_VIEW_ORBITCONTROL_H

/// \file
/// What a hand on the mouse does to a camera, in plain numbers.

#include "OrbitCamera.h"

namespace viewer
{

/// The same view with position, focal point and up direction said outright, as the operations below want it.
CameraRequest fixedCamera(const CameraRequest &request, const CameraPlacement &placed);

/// Around the focal point: `right` and `up` in degrees are the way the camera goes. The up direction stays;
/// near to it the camera stops.
CameraRequest orbited(const CameraRequest &fixed, double right, double up);

/// Sideways, with the focal point: shares of the picture's height at the focal point's distance, to the right
/// and upwards, by which the camera goes.
CameraRequest panned(const CameraRequest &fixed, double right, double up);

/// Nearer to the focal point where `factor` is below 1, which is what its distance is multiplied with. \param
/// smallest distance that is left
CameraRequest dollied(const CameraRequest &fixed, double factor, double smallest);

/// Looks from that side along an axis, at the same distance. \param axis 0 to 2 for x, y, z \param positive
/// whether the camera stands on the axis's positive side
CameraRequest fromAxis(const CameraRequest &fixed, int axis, bool positive);

} // namespace viewer

#endif
