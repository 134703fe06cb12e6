#ifndef TESSALY_PRIMITIVES_PRIMITIVEORDER_H
#define TESSALY_PRIMITIVES_PRIMITIVEORDER_H

/// \file
/// In which order primitives are drawn, and the index buffer that follows from it; on plain arrays.

#include <cstddef>
#include <cstdint>

#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGVector.h>

namespace tessaly
{

/// What an order depends on beside the primitives' points.
struct OrderView
{
    osg::Pnt3f eye;      ///< in the coordinates of the points
    osg::Matrix toWorld; ///< from the coordinates of the points to the world's
    float threshold = 0; ///< -1 to 1, see splitPosition
    const osg::Vec4f *occluders = nullptr; ///< spheres: centre and radius
    std::size_t numOccluders = 0;
};

/// Whether the view has the occluders looked at. Otherwise the order is of points alone.
inline bool usesOccluders(const OrderView &view, std::size_t count)
{
    return count != 0 && view.threshold > 0.0f;
}

/// Distances and heights of `count` points, three floats each: the negated squared distance from the eye, and
/// the y coordinate, in the world where occluders are used and in the points' own coordinates otherwise.
/// Either array may be null.
void measurePrimitives(const float *points, std::size_t count, const OrderView &view, float *distances,
                       float *heights);

/// How many points no occluder hides. The line of sight starts at the eye in the points' coordinates and runs
/// to the point in the world; this mix of spaces is meant. It has no far end, so what lies behind a point
/// hides it too.
std::size_t countVisible(const float *points, std::size_t count, const OrderView &view);

/// Where the order by height begins, as a fraction that is not cut to an integer yet. Without use of
/// occluders -threshold * count, else (1 - visible / count * threshold) * count. Not within 0 to count for
/// thresholds beyond -1 to 1.
float splitPosition(std::size_t visible, std::size_t count, float threshold);

/// The position cut to an integer and brought within 0 to count; what is not a number becomes 0.
std::size_t splitWithin(float position, std::size_t count);

/// Writes the numbers 0 to count - 1 in their order: the `split` ones of least distance by ascending
/// distance, the others by ascending height. Equal keys may come in either order; numbers that are no numbers
/// come at one of the ends.
///
/// Radix sorts of keys made from the floats' bits: time and memory in proportion to `count`, at most 2^31.
void orderByKeys(const float *distances, const float *heights, std::size_t count, std::size_t split,
                 std::int32_t *order);

/// All of the above. Returns the split position.
float orderPrimitives(const float *points, std::size_t count, const OrderView &view, std::int32_t *order);

/// The master list of indices, primitive after primitive.
struct IndexLists
{
    const std::int32_t *indices = nullptr;
    std::size_t numIndices = 0;
    /// Primitive p has the indices from entry p on, up to entry p + 1.
    const std::int32_t *offsets = nullptr;
    std::size_t numOffsets = 0;
};

/// How the indices of a primitive are copied.
enum class IndexCopy
{
    /// As they are.
    Block,
    /// In groups of three: a number that is no multiple of 3 is rounded up, into what lies behind in the list.
    Triples
};

/// Which primitives go into the buffer.
struct IndexSelection
{
    const std::int32_t *order = nullptr; ///< numbers of primitives, `count` of them; null for 0, 1, 2 ...
    std::size_t count = 0;
    std::size_t first = 0; ///< so many are passed over at the front
};

/// count * lowerBound cut to an integer, 0 where that is negative or not a number, count where it is not
/// below.
std::size_t firstDrawn(std::size_t count, float lowerBound);

struct IndexCount
{
    std::size_t indices = 0; ///< that will be written
    std::size_t leftOut = 0; ///< primitives that don't have a range within the lists
};

/// How many indices fillIndices writes.
IndexCount countIndices(const IndexLists &lists, const IndexSelection &selection, IndexCopy copy);

/// Writes the indices to `result`, which has room for countIndices. Primitives without a range within the
/// lists are left out. Where a group of three reaches behind the end of the list the last index stands in for
/// what is missing.
void fillIndices(const IndexLists &lists, const IndexSelection &selection, IndexCopy copy,
                 std::uint32_t *result);

/// The largest of them, 0 if there are none.
std::uint32_t largestIndex(const std::uint32_t *indices, std::size_t count);

} // namespace tessaly

#endif
