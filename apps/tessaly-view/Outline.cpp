/// \file
/// Points around what can be seen of a volume, for framing it.

#include "Outline.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace viewer
{

namespace
{

/// Rows that are left out cost no time; what they would add is at most a 64th of the side.
int rowStep(int side)
{
    return std::max(1, side / 64);
}

template <typename Voxel>
std::vector<Vec3> outline(const VoxelView &volume, const std::vector<bool> &visible)
{
    const int width = volume.sides[0];
    const std::size_t rowBytes = static_cast<std::size_t>(width) * sizeof(Voxel);
    std::vector<Vec3> points;
    for (int z = 0; z < volume.sides[2]; z += rowStep(volume.sides[2]))
    {
        for (int y = 0; y < volume.sides[1]; y += rowStep(volume.sides[1]))
        {
            const std::size_t row = static_cast<std::size_t>(z) * static_cast<std::size_t>(volume.sides[1]) +
                                    static_cast<std::size_t>(y);
            const std::uint8_t *bytes = volume.voxels + row * rowBytes;
            const auto seen = [&](int x)
            {
                Voxel voxel;
                std::memcpy(&voxel, bytes + static_cast<std::size_t>(x) * sizeof(Voxel), sizeof(Voxel));
                return visible[voxel];
            };

            int first = 0;
            while (first < width && !seen(first))
            {
                ++first;
            }
            if (first == width)
            {
                continue;
            }
            int last = width - 1;
            while (!seen(last))
            {
                --last;
            }
            points.push_back({static_cast<double>(first), y + 0.5, z + 0.5});
            points.push_back({last + 1.0, y + 0.5, z + 0.5});
        }
    }
    return points;
}

} // namespace

std::vector<Vec3> outlineOf(const VoxelView &volume, const std::vector<bool> &visible)
{
    return volume.bits == 8 ? outline<std::uint8_t>(volume, visible)
                            : outline<std::uint16_t>(volume, visible);
}

} // namespace viewer
