#ifndef TESSALY_VIEW_TRANSFERPOINTS_H
#define TESSALY_VIEW_TRANSFERPOINTS_H

/// \file
/// A transfer function as control points, and the tables that a volume node takes.

#include <cstdint>
#include <tuple>
#include <vector>

namespace viewer
{

struct OpacityPoint
{
    float position; ///< 0 to 1 over the values that a voxel can have
    float opacity;  ///< 0 to 1

    friend bool operator==(const OpacityPoint &a, const OpacityPoint &b)
    {
        return std::tie(a.position, a.opacity) == std::tie(b.position, b.opacity);
    }
};

struct ColorPoint
{
    float position; ///< 0 to 1
    float red;      ///< 0 to 1, as the others
    float green;
    float blue;

    friend bool operator==(const ColorPoint &a, const ColorPoint &b)
    {
        return std::tie(a.position, a.red, a.green, a.blue) == std::tie(b.position, b.red, b.green, b.blue);
    }
};

/// Both lists have at least one point, with ascending positions.
struct TransferPoints
{
    std::vector<OpacityPoint> opacity;
    std::vector<ColorPoint> color;

    friend bool operator==(const TransferPoints &a, const TransferPoints &b)
    {
        return a.opacity == b.opacity && a.color == b.color;
    }
};

/// A list at a position: straight between its points, the first and the last going on outside; of several
/// points in one place the last.
OpacityPoint pointAt(const std::vector<OpacityPoint> &points, float position);
ColorPoint pointAt(const std::vector<ColorPoint> &points, float position);

/// 256 entries of red, green, blue, opacity: what volumes of 8 bits take. A point stands at the entry 256 *
/// position, cut to a whole number; between points the values run straight. A value is stored as value * 255,
/// cut. Behind the last colour that colour goes on; opacities that end below position 1 make the whole table
/// as opaque as the last of them, as the library does with such a list.
std::vector<std::uint8_t> byteTable(const TransferPoints &points);

/// 65536 entries of red, green, blue, opacity, as the bits of half floats: what volumes of 16 bits take, as
/// an image of 256 x 256.
std::vector<std::uint16_t> halfTable(const TransferPoints &points);

} // namespace viewer

#endif
