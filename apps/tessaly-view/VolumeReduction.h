#ifndef TESSALY_VIEW_VOLUMEREDUCTION_H
#define TESSALY_VIEW_VOLUMEREDUCTION_H

/// \file
/// Makes a volume small enough for the machine, in plain memory.

#include <array>
#include <cstdint>
#include <vector>

namespace viewer
{

/// What bounds a volume that is to be drawn.
struct VolumeLimits
{
    int side = 0;            ///< voxels along an axis that GL takes; 0 for no limit
    std::uint64_t bytes = 0; ///< memory that it may take; 0 for no limit
};

/// How many voxels along each axis become one: the smallest factors that keep the limits, with the axis of
/// most voxels reduced first. A side never goes below 2 voxels, so that a limit of a few bytes is kept as
/// far as can be. \param bytesPerVoxel of all that is made of a voxel
std::array<int, 3> reductionFactors(const std::array<int, 3> &sides, std::uint64_t bytesPerVoxel,
                                    const VolumeLimits &limits);

/// The sides behind a reduction: whole blocks; what is left over at the end of an axis makes one voxel more.
std::array<int, 3> reducedSides(const std::array<int, 3> &sides, const std::array<int, 3> &factors);

/// Replaces each block of voxels by its rounded mean; blocks at the end of an axis may be smaller.
/// \param voxels width x height x depth of 8 or 16 bits, x fastest, 16 bits in the machine's byte order
/// \param bits 8 or 16
std::vector<std::uint8_t> reducedVoxels(const std::uint8_t *voxels, int bits, const std::array<int, 3> &sides,
                                        const std::array<int, 3> &factors);

} // namespace viewer

#endif
