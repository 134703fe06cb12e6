#ifndef TESSALY_SHADER_STATEDEFINES_H
#define TESSALY_SHADER_STATEDEFINES_H

/// \file
/// The text that tells a shader about lights, eye and fog.

#include <cstdint>
#include <string>

namespace tessaly
{

/// What of the rendering state a shader is told.
struct RenderingState
{
    std::uint32_t lights = 0; ///< bit i is set while light i shines
    int eye = -1;             ///< -1 without stereo, 0 the right, 1 the left
    int fog = 0;              ///< 0 off, 1 linear, 2 exponential, 3 squared exponential
};

/// One number for a state. Lights from 8 on fall onto the bits of eye and fog, which is meant: there are only
/// 8.
std::uint32_t stateKey(const RenderingState &state);

/// Twelve lines, each with its line end: whether each of lights 0 to 7 shines, how many of these do, the
/// whole mask, eye and fog.
std::string stateDefines(const RenderingState &state);

} // namespace tessaly

#endif
