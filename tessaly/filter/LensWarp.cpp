/// \file
/// The numbers with which the lens filters warp the picture of one eye.

#include "LensWarp.h"

#include <cmath>

namespace tessaly
{

using osg::Vec2f;
using osg::Vec4f;

LensUniforms symmetricLensWarp(const LensSetup &setup)
{
    const Vec4f &k = setup.distortion;
    const float aspect = float(setup.width) / (float(setup.height) * 2.f);
    const float center = 1.f - setup.lensSeparation * 2.f / setup.screenWidth;
    // From the lens centre to the far edge of the half.
    const float r = -1.f - center;
    const float r2 = r * r;
    const float s = k[0] + k[1] * r2 + k[2] * r2 * r2 + k[3] * r2 * r2 * r2;

    LensUniforms uniforms;
    uniforms.scaleIn = Vec2f(1.f, 1.f / aspect);
    uniforms.scale = Vec2f(1.f / s, aspect / s);
    uniforms.lensCenter = Vec2f(setup.leftEye ? center : -center, 0.f);
    return uniforms;
}

LensUniforms unitLensWarp(const LensSetup &setup)
{
    const Vec4f &k = setup.distortion;
    const float center = (1.f - setup.lensSeparation * 2.f / setup.screenWidth) * 0.5f;
    // From the lens centre to the far corner, with half the height, 0.625, as the program scales it.
    const float r = std::sqrt((center + 0.5f) * (center + 0.5f) + 0.390625f);
    const float q = r * r;
    const float polynomial = ((k[3] * q + k[2]) * q + k[1]) * q + k[0];
    // Of the warped radius, the ratio to the plain one.
    const float s = 1.f / (polynomial * r / r) * 0.5f;

    LensUniforms uniforms;
    uniforms.scaleIn = Vec2f(2.f, 2.5f);
    uniforms.scale = Vec2f(s, s * 0.8f);
    uniforms.lensCenter = Vec2f(setup.leftEye ? 0.5f + center : 0.5f - center, 0.5f);
    return uniforms;
}

bool isNeutralChroma(const Vec4f &chroma)
{
    const Vec4f neutral(1.f, 0.f, 1.f, 0.f);
    for(int i = 0; i < 4; ++i)
        if(!(std::fabs(chroma[i] - neutral[i]) <= 1e-6f))
            return false;
    return true;
}

} // namespace tessaly
