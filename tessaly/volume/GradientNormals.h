#ifndef TESSALY_GRADIENTNORMALS_H
#define TESSALY_GRADIENTNORMALS_H

/// \file
/// Central differences of a volume of bytes, written as an image of chosen channels.

#include <cstddef>
#include <cstdint>
#include <string>

#include "VoxelPasses.h"

namespace tessaly
{

/// \param channels number of channels of an image
/// \return GL name of the pixel format: GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_RGB or GL_RGBA for 1 to 4, 0 for
/// any other
std::uint32_t pixelFormatOfChannels(std::size_t channels);

/// \return whether each character of \a channels names a channel that writeGradientChannels() knows
bool areGradientChannels(const std::string &channels);

/// Writes one pixel of bytes per voxel, with one channel for each character:
/// - s: the voxel;
/// - S: the voxel, and 0 on the outer voxels of the volume;
/// - x, y, z: a component of the unit gradient n, as n * 127 + 127 cut towards zero; without a gradient 127;
/// - g: the length of the gradient, divided by the square root of 3 and cut; 255 up to 255, and modulo 256
/// above;
/// - t: the polar angle acos(nz) / pi, times 255, cut;
/// - p: the azimuth of (nx, ny) / 2 pi, times 255, cut.
/// The gradient is the voxel before minus the voxel behind on each axis, so it points to lower values; voxels
/// outside the volume count as 0.
/// \param voxels x fastest, then y, then z
/// \param pixels room for as many pixels, in the same order
/// \return false, with nothing written, if \a channels has a character that is not listed or is not 1 to 4
/// long
bool writeGradientChannels(const std::uint8_t *voxels, const Sides &sides, const std::string &channels,
                           std::uint8_t *pixels);

} // namespace tessaly

#endif
