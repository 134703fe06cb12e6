// Seeded voxel volumes that the tests share: raw voxels, as a host would hand them in.
#ifndef TESSALY_TESTS_REFERENCE_VOLUMES_H
#define TESSALY_TESTS_REFERENCE_VOLUMES_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace reference
{

/// Raw voxels of one channel: width x height x depth, x fastest, then y, then z. `bits` is 8 or 16; 8-bit
/// voxels keep to 0..255.
struct Volume
{
    int width = 0;
    int height = 0;
    int depth = 0;
    int bits = 8;
    std::vector<std::uint16_t> voxels;

    std::size_t index(int x, int y, int z) const
    {
        return (static_cast<std::size_t>(z) * height + y) * width + x;
    }
    std::uint16_t at(int x, int y, int z) const { return voxels[index(x, y, z)]; }

    /// The voxels as the bytes of an image: one byte each, or two in the machine's own order.
    std::vector<std::uint8_t> bytes() const;
};

/// Every voxel has the value `value`.
Volume constantVolume(int width, int height, int depth, int bits, std::uint16_t value);
/// A ramp from 0 at the first to `top` at the last voxel of `axis` (0 x, 1 y, 2 z); a side of one voxel is
/// all 0.
Volume rampVolume(int width, int height, int depth, int bits, int axis, std::uint16_t top);
/// The sum of five seeded Gaussian bumps, scaled so that the greatest voxel is `top`; falls to 0 at the
/// borders.
Volume blobVolume(int width, int height, int depth, int bits, std::uint16_t top, std::uint32_t seed);
/// A soft spherical shell of radius 0.35 of the shortest side about the middle, greatest value `top`.
Volume shellVolume(int width, int height, int depth, int bits, std::uint16_t top);
/// Independent seeded voxels, evenly spread over 0..top.
Volume noiseVolume(int width, int height, int depth, int bits, std::uint16_t top, std::uint32_t seed);
/// Smooth seeded value noise over 0..top with a lattice of `cell` voxels; neighbouring voxels differ almost
/// everywhere, so that gradients are rarely zero.
Volume cloudVolume(int width, int height, int depth, int bits, std::uint16_t top, int cell,
                   std::uint32_t seed);

}

#endif
