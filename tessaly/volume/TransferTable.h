#ifndef TESSALY_TRANSFERTABLE_H
#define TESSALY_TRANSFERTABLE_H

/// \file
/// Control points of a transfer function, the tables filled from them, and the two tables derived from those.

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <list>

#include <OpenSG/OSGReal16.h>

/// A control point of opacity.
struct AlphaPoint
{
    float position; ///< place in the table, 0 to 1
    float alpha;    ///< opacity, 0 to 1
};

/// A control point of colour.
struct ColorPoint
{
    float position; ///< place in the table, 0 to 1
    float red;      ///< 0 to 1, as the two others
    float green;
    float blue;
};

namespace tessaly
{

/// Entries of the table of one byte per channel.
constexpr std::size_t byteTableEntries = 256;

/// Entries of the table of one half float per channel, 256 rows of 256.
constexpr std::size_t halfTableEntries = 65536;

/// The two lists of control points of one transfer function.
struct TransferPoints
{
    std::list<AlphaPoint> alpha;
    std::list<ColorPoint> color;
};

/// \return opacity (0, 0), (1, 1) and colour (0, 0, 0, 0), (1, 1, 1, 1)
TransferPoints defaultTransferPoints();

/// Reads the two lists from text: a count, as many pairs of position and opacity, a count, as many quadruples
/// of position, red, green and blue, all separated by white space. The points keep their order and their
/// values. Reading ends at the first number that is missing or broken: the complete points before it count,
/// the point that it belongs to and all behind it do not. A count is never trusted for an allocation. A list
/// that has no point in the end, by a count of 0 or less or for want of text, becomes that of
/// defaultTransferPoints().
TransferPoints readTransferPoints(std::istream &text);

/// Takes a channel value into a byte: value * 255.0 cut towards zero and wrapped modulo 256, so values
/// outside 0 to 1 wrap around. Infinite values and not-a-number give 0.
std::uint8_t wrappedByte(float value);

/// Fills the fourth channel of a table of \a entries RGBA entries with straight ramps between the points, in
/// their order. A point has the index entries * position, cut towards zero and held within 0 to \a entries
/// (not-a-number gives 0); points that do not ascend give no ramp. Entries before the first point take its
/// opacity. If the last index is below \a entries, the whole channel, not only the rest behind it, takes the
/// last point's opacity. That is meant: a list that ends below position 1 stands for a constant opacity.
/// Without points the channel becomes 0.
/// \param table \a entries times four values
void fillOpacity(const std::list<AlphaPoint> &points, std::uint8_t *table,
                 std::size_t entries = byteTableEntries);

/// fillOpacity() for the table of half floats.
void fillOpacity(const std::list<AlphaPoint> &points, osg::Real16 *table,
                 std::size_t entries = halfTableEntries);

/// Fills the first three channels as fillOpacity() fills the fourth, but for one thing: the last point's
/// colour goes only into the entries from its index on.
void fillColor(const std::list<ColorPoint> &points, std::uint8_t *table,
               std::size_t entries = byteTableEntries);

/// fillColor() for the table of half floats.
void fillColor(const std::list<ColorPoint> &points, osg::Real16 *table,
               std::size_t entries = halfTableEntries);

/// The running sum of opacity: sums[i] is the sum of the opacities of entries 0 to i, in single precision.
/// Bytes count as whole numbers from 0 to 255.
/// \param table \a entries RGBA entries
/// \param sums room for \a entries values
void sumOpacity(const std::uint8_t *table, std::size_t entries, float *sums);

/// sumOpacity() for the table of half floats: one sum through all entries, row after row.
void sumOpacity(const osg::Real16 *table, std::size_t entries, float *sums);

/// The greatest opacity of each interval of values: byte y * width + x is the greatest opacity of the entries
/// x to y, both included, and 0 where x is greater than y.
/// \param table \a width RGBA entries of four bytes
/// \param maxima room for \a width times \a width bytes
void intervalMaxima(const std::uint8_t *table, std::size_t width, std::uint8_t *maxima);

} // namespace tessaly

#endif
