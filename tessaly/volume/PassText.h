#ifndef TESSALY_PASSTEXT_H
#define TESSALY_PASSTEXT_H

/// \file
/// GLSL of the passes that find the start and the end of each ray before the ray casting runs.

namespace tessaly
{

/// Lifts the screen quad to the near plane and takes it to the unit cube. Uniform: viewToVolume (mat4).
extern const char *const planeVertexText;

/// Writes the near plane's point in rgb, and 0 in a: no ray yet.
extern const char *const planeFragmentText;

/// Draws the bounding geometry, whose vertices are positions in the unit cube.
extern const char *const faceVertexText;

/// Writes the position on the bounding geometry in rgb, and 1 in a.
extern const char *const faceFragmentText;

/// Draws the bounding geometry for the end of the rays.
extern const char *const exitVertexText;

/// Writes the ray's unit direction in rgb and its length in a, cut at the scene's depth. Uniforms:
/// textureSize (vec2, pixels), depthRange (vec2, distances of the near and the far plane of a perspective
/// camera), startImage (the entry points), sceneDepth.
extern const char *const exitFragmentText;

} // namespace tessaly

#endif
