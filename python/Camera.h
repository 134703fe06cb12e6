#ifndef TESSALY_PYTHON_CAMERA_H
#define TESSALY_PYTHON_CAMERA_H

/// \file
/// The camera that a caller asks for, as an object of Python that doesn't change.

#include "OrbitCamera.h"

#include <string>

#include <pybind11/pybind11.h>

namespace binding
{

using Camera = viewer::CameraRequest;

/// A camera of keyword arguments position, focal_point, view_up, view_angle, azimuth, elevation, zoom; what
/// is left out is that of `base`, and None that of a new camera. Throws TypeError for other names and types.
Camera cameraOf(const pybind11::dict &arguments, const Camera &base = Camera());

/// "Camera(position=(0.0, -400.0, 0.0), zoom=2.0)": what differs from a new camera.
std::string textOf(const Camera &camera);

/// Adds the class to the module.
void addCamera(pybind11::module_ &module);

} // namespace binding

#endif
