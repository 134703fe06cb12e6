#ifndef TESSALY_NORMALTEXT_H
#define TESSALY_NORMALTEXT_H

/// \file
/// GLSL of the normal strategies.
///
/// Each text defines getNormal, which sets current.normal at current.position. The online texts read volume
/// and texelSize, declare nothing, and do not normalise: the shading functions use the length.

namespace tessaly
{

/// Central differences of six samples, divided by 6.
extern const char *const onlineCentralDiffNormalText;

/// A three-dimensional Sobel filter over 26 neighbours, divided by 32.
extern const char *const onlineSobelNormalText;

/// A look-up in normalVolume, which it declares, from 0 to 1 stretched to -1 to 1.
extern const char *const preCentralDiffNormalText;

} // namespace tessaly

#endif
