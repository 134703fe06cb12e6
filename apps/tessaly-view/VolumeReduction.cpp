/// \file
/// Box means over blocks of voxels.

#include "VolumeReduction.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace viewer
{

namespace
{

std::uint64_t voxelsOf(const std::array<int, 3> &sides)
{
    return static_cast<std::uint64_t>(sides[0]) * static_cast<std::uint64_t>(sides[1]) *
           static_cast<std::uint64_t>(sides[2]);
}

/// Adds a row of voxels to the sums of its blocks.
template <typename Voxel>
void addRow(const std::uint8_t *row, int width, int factor, std::vector<std::uint64_t> &sums)
{
    for (int x = 0, block = 0; x < width; ++block)
    {
        const int end = std::min(x + factor, width);
        std::uint64_t sum = 0;
        for (; x < end; ++x)
        {
            Voxel voxel;
            std::memcpy(&voxel, row + static_cast<std::size_t>(x) * sizeof(Voxel), sizeof(Voxel));
            sum += voxel;
        }
        sums[static_cast<std::size_t>(block)] += sum;
    }
}

template <typename Voxel>
std::vector<std::uint8_t> reduced(const std::uint8_t *voxels, const std::array<int, 3> &sides,
                                  const std::array<int, 3> &factors)
{
    const std::array<int, 3> small = reducedSides(sides, factors);
    std::vector<std::uint8_t> result(static_cast<std::size_t>(voxelsOf(small)) * sizeof(Voxel));
    std::vector<std::uint64_t> sums(static_cast<std::size_t>(small[0]));
    std::uint8_t *out = result.data();
    for (int z = 0; z < sides[2]; z += factors[2])
    {
        const int zEnd = std::min(z + factors[2], sides[2]);
        for (int y = 0; y < sides[1]; y += factors[1])
        {
            const int yEnd = std::min(y + factors[1], sides[1]);
            std::fill(sums.begin(), sums.end(), 0);
            for (int zz = z; zz < zEnd; ++zz)
            {
                for (int yy = y; yy < yEnd; ++yy)
                {
                    const std::size_t row =
                        static_cast<std::size_t>(zz) * static_cast<std::size_t>(sides[1]) +
                        static_cast<std::size_t>(yy);
                    addRow<Voxel>(voxels + row * static_cast<std::size_t>(sides[0]) * sizeof(Voxel), sides[0],
                                  factors[0], sums);
                }
            }
            for (int x = 0; x < small[0]; ++x, out += sizeof(Voxel))
            {
                const int across = std::min(factors[0], sides[0] - x * factors[0]);
                const std::uint64_t count = static_cast<std::uint64_t>(across) *
                                            static_cast<std::uint64_t>(yEnd - y) *
                                            static_cast<std::uint64_t>(zEnd - z);
                const Voxel mean =
                    static_cast<Voxel>((sums[static_cast<std::size_t>(x)] + count / 2) / count);
                std::memcpy(out, &mean, sizeof(Voxel));
            }
        }
    }
    return result;
}

} // namespace

std::array<int, 3> reducedSides(const std::array<int, 3> &sides, const std::array<int, 3> &factors)
{
    std::array<int, 3> small{};
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        small[axis] = (sides[axis] + factors[axis] - 1) / factors[axis];
    }
    return small;
}

std::array<int, 3> reductionFactors(const std::array<int, 3> &sides, std::uint64_t bytesPerVoxel,
                                    const VolumeLimits &limits)
{
    std::array<int, 3> factors{1, 1, 1};
    while (true)
    {
        const std::array<int, 3> small = reducedSides(sides, factors);
        const auto longest = std::max_element(small.begin(), small.end());
        const bool fits = (limits.side == 0 || *longest <= limits.side) &&
                          (limits.bytes == 0 || voxelsOf(small) * bytesPerVoxel <= limits.bytes);
        if (fits || *longest <= 2)
        {
            return factors;
        }
        ++factors[static_cast<std::size_t>(longest - small.begin())];
    }
}

std::vector<std::uint8_t> reducedVoxels(const std::uint8_t *voxels, int bits, const std::array<int, 3> &sides,
                                        const std::array<int, 3> &factors)
{
    return bits == 8 ? reduced<std::uint8_t>(voxels, sides, factors)
                     : reduced<std::uint16_t>(voxels, sides, factors);
}

} // namespace viewer
