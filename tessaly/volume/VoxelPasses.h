#ifndef TESSALY_VOXELPASSES_H
#define TESSALY_VOXELPASSES_H

/// \file
/// The passes over plain voxel arrays and the size arithmetic that make an image ready for ray casting.

#include <array>
#include <cstddef>
#include <cstdint>

namespace tessaly
{

/// Width, height and depth in voxels or blocks.
using Sides = std::array<std::uint32_t, 3>;

/// \param sides width, height and depth
/// \return their product
std::size_t voxelCount(const Sides &sides);

/// Goes once over the voxels: swaps the two bytes of each if \a swapped is true, and looks for the greatest.
/// \param voxels \a count values, changed in place; may be null if \a count is 0
/// \return the greatest value after the swap, 0 if there is no voxel
std::uint16_t swapAndFindMaximum(std::uint16_t *voxels, std::size_t count, bool swapped);

/// Multiplies each voxel by 16, so that 12-bit data fills 16 bits; what does not fit in 16 bits is lost.
void scaleTwelveBits(std::uint16_t *voxels, std::size_t count);

/// Brings 16-bit voxels to the full range: swaps bytes on demand, then takes the data as 12-bit and scales it
/// by 16 if no voxel reaches 4096. Run twice, it can scale twice.
/// \return whether the data was taken as 12-bit; true also without voxels
bool normaliseSixteenBits(std::uint16_t *voxels, std::size_t count, bool swapped);

/// \param dataType GL name of the type of a voxel
/// \param pixelFormat GL name of the present pixel format
/// \return the pixel format that the ray caster reads: GL_LUMINANCE for 16-bit voxels; otherwise \a
/// pixelFormat if it is GL_LUMINANCE, GL_INTENSITY or GL_ALPHA, and GL_LUMINANCE if not
std::uint32_t singleChannelFormat(std::uint32_t dataType, std::uint32_t pixelFormat);

/// Reads three numbers, separated by white space.
/// \param text may be null
/// \return the spacing of the voxels on x, y and z; a number that is missing or broken, and each behind it,
/// is 1
std::array<float, 3> parseSliceThickness(const char *text);

/// The extent of a volume in object space: at a thickness of 1 the longest side has length 4.
/// Computed in double precision as thickness * (4 / longest side) * side, then rounded.
/// \param thickness spacing of the voxels per axis
/// \param resolution sides in voxels; all zero gives a size of 0
std::array<float, 3> objectSize(const std::array<float, 3> &thickness, const Sides &resolution);

/// \return \a side, or the next greater multiple of \a edge if it is none; \a side itself for an edge of 0
std::uint32_t paddedSide(std::uint32_t side, std::uint32_t edge);

/// paddedSide() on each axis.
Sides paddedSides(const Sides &sides, std::uint32_t edge);

/// Copies a volume into the low corner of a larger one, whose other voxels become 0.
/// \param from voxels, x fastest, then y, then z
/// \param sides of \a from
/// \param bytesPerVoxel size of one voxel in both
/// \param to room for voxelCount(newSides) voxels; must not overlap \a from
/// \param newSides each at least as large as in \a sides
void copyPadded(const std::uint8_t *from, const Sides &sides, std::size_t bytesPerVoxel, std::uint8_t *to,
                const Sides &newSides);

/// The matrix that places the unit cube in the scene: a box centred on the origin, of extent \a dimensions if
/// none of its components is negative, and of extent \a resolution times \a thickness otherwise. The product
/// of scale(f) with the matrix of scale \a size and translation -size / 2, where f is the wanted extent
/// divided by \a size. An axis of size 0 has no finite place.
/// \return 16 numbers, column after column
std::array<float, 16> placementMatrix(const std::array<float, 3> &size,
                                      const std::array<float, 3> &dimensions, const Sides &resolution,
                                      const std::array<float, 3> &thickness);

} // namespace tessaly

#endif
