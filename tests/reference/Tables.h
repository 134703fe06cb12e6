// The tables behind the picture: normalised voxels, transfer tables, block verdicts, normals.
#ifndef TESSALY_TESTS_REFERENCE_TABLES_H
#define TESSALY_TESTS_REFERENCE_TABLES_H

#include "reference/Volumes.h"

#include <array>
#include <cstdint>
#include <vector>

namespace reference
{

struct AlphaPoint
{
    float position;
    float alpha;
};

struct ColorPoint
{
    float position;
    float red, green, blue;
};

/// Where the transfer table comes from: the control points, unless a finished table of the right form is
/// given.
struct TransferSource
{
    std::vector<AlphaPoint> alphaPoints{{0.0f, 0.0f}, {1.0f, 1.0f}};
    std::vector<ColorPoint> colorPoints{{0.0f, 0.0f, 0.0f, 0.0f}, {1.0f, 1.0f, 1.0f, 1.0f}};
    std::vector<std::uint8_t> bytes; ///< for 8-bit voxels: 256 entries of red, green, blue, opacity
    std::vector<float> halves;       ///< for 16-bit voxels: 65536 entries, put through half floats
};

/// One table entry: red, green, blue, opacity.
using Entry = std::array<double, 4>;

/// The value nearest to `value` that a half float can hold, ties to even; too great ones give infinity.
float throughHalf(float value);

/// Voxels ready for ray casting: bytes exchanged, 12-bit data brought to 16 bits.
Volume normalised(const Volume &raw, bool swapped);
/// The volume with zeros behind its voxels up to multiples of 8; `changed` says whether any side grew.
Volume padded(const Volume &volume, bool &changed);

/// The table of 256 (8-bit voxels) or 65536 (16-bit voxels) entries: bytes as 0..255, or half floats.
std::vector<Entry> transferTable(const TransferSource &source, int bits);
/// The running sum of opacity over the entries of `transferTable`, in floats.
std::vector<float> opacitySum(const std::vector<Entry> &table);
/// What a 16-bit normalised texture gives back for the entries of `transferTable`, 0..1.
std::vector<Entry> storedTable(const std::vector<Entry> &table);
/// The averages for each pair of values, 256 x 256, column fastest, through half floats.
std::vector<Entry> pairTable(const std::vector<Entry> &table);
/// The running integral over 65536 entries, rounded to floats.
std::vector<Entry> integralTable(const std::vector<Entry> &table);

/// A grid of blocks with the verdict for each, x fastest; 0 is a block to skip, 255 one to sample.
struct BlockGrid
{
    std::array<int, 3> sides{};
    std::vector<std::uint8_t> verdicts;

    bool occupied(int x, int y, int z) const
    {
        if(x < 0 || y < 0 || z < 0 || x >= sides[0] || y >= sides[1] || z >= sides[2])
            return false;
        return verdicts[(static_cast<std::size_t>(z) * sides[1] + y) * sides[0] + x] != 0;
    }
};

/// Verdicts for the blocks of 8 x 8 x 8 voxels of a padded volume.
BlockGrid blockVerdicts(const Volume &volume, const std::vector<float> &sum);

/// Unit gradients towards lower values as bytes, three per voxel; 16-bit voxels count as the nearest of 256
/// equal fractions, which is how images change from 16 to 8 bits.
std::vector<std::uint8_t> normalBytes(const Volume &volume);

}

#endif
