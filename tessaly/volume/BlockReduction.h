#ifndef TESSALY_BLOCKREDUCTION_H
#define TESSALY_BLOCKREDUCTION_H

/// \file
/// Reduction of a volume to the least and greatest value of each block, and the verdict which blocks can be
/// seen.

#include <cstddef>
#include <cstdint>

#include "VoxelPasses.h"

namespace tessaly
{

/// \return whole blocks of \a edge voxels per axis; zeros for an edge of 0
Sides blockSides(const Sides &sides, std::uint32_t edge);

/// Reduces a volume to two values per block: the least and the greatest voxel of the block and of the one
/// layer of voxels around it, which trilinear sampling near the block's border reads. Voxels outside the
/// volume do not take part. Every voxel is read from memory once. Nothing is done without a whole block.
/// \param voxels x fastest, then y, then z
/// \param sides of the volume; what is left over behind the last whole block counts only as its neighbour
/// \param edge voxels per block and axis
/// \param ranges room for two values per block, least and greatest, x fastest, then y, then z
void reduceBlocks(const std::uint8_t *voxels, const Sides &sides, std::uint32_t edge, std::uint8_t *ranges);

/// reduceBlocks() for 16-bit voxels.
void reduceBlocks(const std::uint16_t *voxels, const Sides &sides, std::uint32_t edge, std::uint16_t *ranges);

/// Says for each block whether it must be sampled (255) or can be skipped (0), from its least value lo, its
/// greatest value hi and the running sum of opacity T:
/// - lo differs from hi: 0 if T[hi] - T[lo] is below 1e-6, otherwise 255;
/// - both are 0: 255, whatever T says;
/// - equal and not 0: 255 if T[hi] - T[hi - 1] is above 1e-4, otherwise 0.
/// A sum that is too short for the values is never read behind its end: greater values count as its last
/// entry. Without any entry every block is 255.
/// \param ranges two values per block, as reduceBlocks() writes them
/// \param blocks number of blocks
/// \param sums running sum of opacity, one entry per voxel value
/// \param sumCount entries of \a sums
/// \param verdicts room for \a blocks bytes
void judgeBlocks(const std::uint8_t *ranges, std::size_t blocks, const float *sums, std::size_t sumCount,
                 std::uint8_t *verdicts);

/// judgeBlocks() for 16-bit voxels, with one more condition: a block whose values differ is 0 only if also
/// T[hi] is 0, so an interval of zero opacity above a visible range keeps its blocks.
void judgeBlocks(const std::uint16_t *ranges, std::size_t blocks, const float *sums, std::size_t sumCount,
                 std::uint8_t *verdicts);

} // namespace tessaly

#endif
