// Where each ray starts and ends: bounding shape, near plane and the depth of the opaque scene.
#ifndef TESSALY_TESTS_REFERENCE_SETUP_H
#define TESSALY_TESTS_REFERENCE_SETUP_H

#include "reference/Reference.h"

namespace reference
{

/// The line of sight through a point of the window, in volume coordinates: `eye + t * direction`, where t is
/// the depth before the eye in eye units.
struct Sight
{
    Vec3d eye;
    Vec3d direction;
};

/// Matrices and sizes of one frame.
struct Frame
{
    Mat4 unitToWorld;     ///< the unit cube's to-world matrix, placement included
    Mat4 eyeToVolume;     ///< eye coordinates to the unit cube
    double halfWidth = 1; ///< half the picture's width at eye distance 1
    double halfHeight = 1;

    /// The line through window position (x, y), in pixels from the lower left corner.
    Sight sight(const Scene &scene, double x, double y) const;
};

/// `resolution` is that of the voxels after padding.
Frame frameOf(const Scene &scene, const std::array<int, 3> &resolution);

/// What the bounding shape gives a line of sight.
struct Crossing
{
    bool covered = false;  ///< a front or back face lies between near and far plane
    bool hasExit = false;  ///< a back face does
    bool fromNear = false; ///< the ray starts at the near plane
    double entry = 0.0;    ///< depth of the start
    double exit = 0.0;     ///< depth of the farthest back face
    Vec3f entryPoint{};    ///< in volume coordinates; the near-plane point where nothing is covered
    Vec3f exitPoint{};
    bool tie = false; ///< nearest front and nearest back face are equally far
};

/// Crosses the surface of the occupied blocks of `shape`; a box is a grid of one occupied block.
Crossing cross(const BlockGrid &shape, const Sight &sight, double nearPlane, double farPlane);

/// The nearest opaque box on a line of sight.
struct Opaque
{
    int box = -1;          ///< index in the scene, -1 for none
    double distance = 0.0; ///< depth before the eye
};

Opaque nearestBox(const Scene &scene, double x, double y, const Frame &frame);

/// The depth buffer's value for a depth before the eye, in 24 bits.
float windowDepth(double distance, double nearPlane, double farPlane);

/// Direction and length of the ray at window position (x, y), cut at the scene, as the back pass leaves them.
Vec4f backValue(const Scene &scene, const Frame &frame, const Crossing &crossing, double x, double y,
                float depth);

}

#endif
