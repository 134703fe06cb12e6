#ifndef TESSALY_SHADINGTEXT_H
#define TESSALY_SHADINGTEXT_H

/// \file
/// GLSL of the shading functions: what happens to one sample on the ray.
///
/// Each text defines doShading, reads volume, and writes outColor, which the main function mixes over the
/// scene.

#include <string>

namespace tessaly
{

/// Emission and absorption; ends the ray at an opacity of 0.98. Declares kgc, kgs and kge in either case.
/// \param gradientModulation whether opacity is also weighted by kgc + kgs * |gradient| ^ kge; only then is
/// getNormal called
std::string dvrShadingText(bool gradientModulation);

/// The same with local illumination by the first light. Declares also emissiveColor, diffuseColor,
/// specularColor, exponent and the function shadeDVRSample; always calls getNormal.
std::string dvrShadingAndLightingText(bool gradientModulation);

/// The maximum along the ray, in white. Declares nothing, calls no hook.
extern const char *const mipShadingText;

/// The weighted sum along the ray, in white. Declares xRayIntensityFactor, calls no hook.
extern const char *const xRayShadingText;

} // namespace tessaly

#endif
