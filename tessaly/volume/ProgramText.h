#ifndef TESSALY_PROGRAMTEXT_H
#define TESSALY_PROGRAMTEXT_H

/// \file
/// The fixed texts of the ray-casting program, and the join of the fragment program from the strategies'
/// texts.
///
/// GLSL has no prototypes here, so a text may call only what stands before it. The lines of all texts
/// are kept to the letter, also where they end in a blank.

#include <string>

namespace tessaly
{

/// Declares Ray, SamplePoint, initSamplePoint, storeSamplePoint and the nine uniforms that every piece may
/// read: volume, sceneColor, sceneDepth, frontTexture, backTexture, volumeSize, volumeResolution, texelSize,
/// stepSize.
extern const char *const programHeaderText;

/// The main function: one ray per pixel, mixed over the scene's colour.
/// Calls getRayDirection, getRayStartPosition, traverseVolume.
extern const char *const programMainText;

/// The vertex program: takes vertices as clip coordinates, so its quad covers the viewport under any
/// transform.
extern const char *const programVertexText;

/// Joins the fragment program: the header, the five pieces in the order of the arguments, the main function,
/// without anything between them. Each argument is the whole GLSL text of one strategy.
std::string joinFragmentProgram(const std::string &rayGeneration, const std::string &normalVolume,
                                const std::string &transferfunction, const std::string &shadingFunctions,
                                const std::string &traversalFunctions);

} // namespace tessaly

#endif
