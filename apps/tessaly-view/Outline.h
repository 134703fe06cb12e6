#ifndef TESSALY_VIEW_OUTLINE_H
#define TESSALY_VIEW_OUTLINE_H

/// \file
/// Points around what can be seen of a volume, for framing it.

#include "Geometry.h"

#include <array>
#include <cstdint>
#include <vector>

namespace viewer
{

/// Voxels as they lie in memory: x fastest, then y, then z.
struct VoxelView
{
    const std::uint8_t *voxels = nullptr; ///< at any alignment
    int bits = 8;                         ///< of a voxel: 8 or 16
    std::array<int, 3> sides{};           ///< along x, y, z
};

/// The two ends of what is visible of rows along x: of each row in volumes of less than 128 voxels along y
/// and z, of about 64 to 128 in each direction in larger ones. Empty where nothing is visible. \param visible
/// for each value that a voxel can have, 256 or 65536, whether it can be seen \return points in voxels from
/// the volume's low corner
std::vector<Vec3> outlineOf(const VoxelView &volume, const std::vector<bool> &visible);

} // namespace viewer

#endif
