#ifndef TESSALY_RAYTEXT_H
#define TESSALY_RAYTEXT_H

/// \file
/// GLSL of the ray generation strategies: where a ray starts and how long it is.
///
/// Both texts define getRayDirection and getRayStartPosition. They read frontTexture (rgb: entry point in the
/// unit cube), backTexture (rgb: unit direction, a: usable length, 0 for no ray) and stepSize, and declare
/// nothing.

namespace tessaly
{

/// Rays whose samples lie on a grid of stepSize anchored where the ray's line enters the unit cube.
extern const char *const simpleRayText;

/// The same rays, with their starts staggered over 2 x 2 pixels by 3, 5, 7 and 9 eighths of a step.
extern const char *const interleavedRayText;

} // namespace tessaly

#endif
