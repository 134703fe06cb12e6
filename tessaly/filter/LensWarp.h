#ifndef TESSALY_FILTER_LENSWARP_H
#define TESSALY_FILTER_LENSWARP_H

/// \file
/// The numbers with which the lens filters warp the picture of one eye.

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGVector.h>

namespace tessaly
{

/// A display, its lenses and their distortion.
struct LensSetup
{
    osg::Vec4f distortion; ///< coefficients of r^0, r^2, r^4, r^6, r being the distance from the lens centre
    osg::UInt32 width = 0; ///< pixels of the display, both eyes
    osg::UInt32 height = 0;
    float lensSeparation = 0; ///< metres
    float screenWidth = 0;    ///< metres, both eyes
    bool leftEye = true;
};

/// Uniforms of the warp. A screen width, or a polynomial, of 0 makes them infinite or no numbers.
struct LensUniforms
{
    osg::Vec2f scaleIn;
    osg::Vec2f scale;
    osg::Vec2f lensCenter;
};

/// For coordinates from -1 to 1. The far edge of the eye's half of the display keeps its place.
LensUniforms symmetricLensWarp(const LensSetup &setup);

/// For coordinates from 0 to 1, on a half of the display of 4 to 5: `scaleIn` is what the program has as its
/// constant. The far corner of the half keeps its place.
LensUniforms unitLensWarp(const LensSetup &setup);

/// Whether a chromatic correction is (1, 0, 1, 0) within 1e-6: none.
bool isNeutralChroma(const osg::Vec4f &chroma);

} // namespace tessaly

#endif
