#include "PrimitiveOrder.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGSphereVolume.h>

// gcc vectorises loops of unknown length only at this level.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC optimize("O3", "no-tree-slp-vectorize")
#endif

namespace tessaly
{

namespace
{

/// A key and, in the low half, the number of the primitive.
using KeyedPrimitive = std::uint64_t;

constexpr unsigned digitBits = 11;
constexpr std::size_t digitValues = std::size_t(1) << digitBits;
constexpr unsigned numDigits = 3; ///< 33 bits hold a key of 32

/// An unsigned number that compares as the float does: negative floats have all their bits turned, others the
/// sign bit only.
inline std::uint32_t keyOf(float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    const auto negative = static_cast<std::uint32_t>(static_cast<std::int32_t>(bits) >> 31);
    return bits ^ (negative | 0x80000000u);
}

inline KeyedPrimitive keyed(std::uint32_t key, std::size_t primitive)
{
    return (KeyedPrimitive(key) << 32) | KeyedPrimitive(primitive);
}

inline std::size_t digitOf(KeyedPrimitive value, unsigned digit)
{
    return std::size_t(value >> (32 + digit * digitBits)) & (digitValues - 1);
}

/// Sorts by key and writes the numbers of the primitives. Both arrays have room for `count`; their contents
/// are lost.
void radixSort(KeyedPrimitive *values, KeyedPrimitive *other, std::size_t count, std::int32_t *order)
{
    // How often each value of each digit occurs.
    std::vector<std::uint32_t> counts(numDigits * digitValues, 0);
    std::uint32_t *const low = counts.data();
    std::uint32_t *const middle = low + digitValues;
    std::uint32_t *const high = middle + digitValues;
    for(std::size_t i = 0; i < count; ++i)
    {
        ++low[digitOf(values[i], 0)];
        ++middle[digitOf(values[i], 1)];
        ++high[digitOf(values[i], 2)];
    }

    // Digit by digit from the least; a digit that all have in common changes nothing.
    for(unsigned digit = 0; digit < numDigits; ++digit)
    {
        std::uint32_t *const places = low + digit * digitValues;
        if(count == 0 || places[digitOf(values[0], digit)] == count)
            continue;
        std::uint32_t next = 0;
        for(std::size_t value = 0; value < digitValues; ++value)
        {
            const std::uint32_t here = places[value];
            places[value] = next;
            next += here;
        }
        for(std::size_t i = 0; i < count; ++i)
            other[places[digitOf(values[i], digit)]++] = values[i];
        std::swap(values, other);
    }
    for(std::size_t i = 0; i < count; ++i)
        order[i] = static_cast<std::int32_t>(values[i] & 0xFFFFFFFFu);
}

/// Brings the `split` primitives of least distance to the front of `values`, in no particular order, with
/// their distances as keys; the others stand behind them with their heights.
void splitByDistance(const float *distances, const float *heights, std::size_t count, std::size_t split,
                     KeyedPrimitive *values)
{
    // Intervals of the range of keys that occurs, and how many primitives each has.
    std::uint32_t least = 0xFFFFFFFFu;
    std::uint32_t largest = 0;
    for(std::size_t i = 0; i < count; ++i)
    {
        const std::uint32_t key = keyOf(distances[i]);
        least = std::min(least, key);
        largest = std::max(largest, key);
    }
    unsigned shift = 0;
    while(((largest - least) >> shift) >= digitValues)
        ++shift;
    std::vector<std::uint32_t> counts(digitValues, 0);
    for(std::size_t i = 0; i < count; ++i)
        ++counts[(keyOf(distances[i]) - least) >> shift];

    // The interval in which the split lies.
    std::size_t below = 0;
    std::uint32_t border = 0;
    while(below + counts[border] < split)
        below += counts[border++];

    // What is below it goes to the front, what is above to the back; both places are written, one of them
    // counts.
    std::vector<KeyedPrimitive> undecided;
    undecided.reserve(counts[border]);
    std::size_t front = 0;
    std::size_t back = below + counts[border];
    for(std::size_t i = 0; i < count; ++i)
    {
        const std::uint32_t key = keyOf(distances[i]);
        const std::uint32_t interval = (key - least) >> shift;
        if(interval < border)
            values[front++] = keyed(key, i);
        else if(interval > border)
            values[back++] = keyed(keyOf(heights[i]), i);
        else
            undecided.push_back(keyed(key, i));
    }
    const std::size_t wanted = split - below;
    if(wanted < undecided.size())
        std::nth_element(undecided.begin(), undecided.begin() + std::ptrdiff_t(wanted), undecided.end());
    for(std::size_t i = 0; i < undecided.size(); ++i)
    {
        const std::size_t primitive = undecided[i] & 0xFFFFFFFFu;
        values[below + i] = i < wanted ? undecided[i] : keyed(keyOf(heights[primitive]), primitive);
    }
}

/// A primitive's part of the list; empty where it has none.
struct Range
{
    std::size_t begin = 0;
    std::size_t end = 0;
    bool isValid = false;
};

inline Range rangeOf(const IndexLists &lists, std::int64_t primitive)
{
    if(primitive < 0 || std::uint64_t(primitive) + 1 >= lists.numOffsets)
        return {};
    const std::int32_t begin = lists.offsets[primitive];
    const std::int32_t end = lists.offsets[primitive + 1];
    if(begin < 0 || end < begin || std::size_t(end) > lists.numIndices)
        return {};
    return {std::size_t(begin), std::size_t(end), true};
}

inline Range rangeAt(const IndexLists &lists, const IndexSelection &selection, std::size_t position)
{
    return rangeOf(lists, selection.order != nullptr ? std::int64_t(selection.order[position])
                                                     : std::int64_t(position));
}

inline std::size_t lengthOf(const Range &range, IndexCopy copy)
{
    const std::size_t length = range.end - range.begin;
    return copy == IndexCopy::Block ? length : (length + 2) / 3 * 3;
}

} // namespace

void measurePrimitives(const float *points, std::size_t count, const OrderView &view, float *distances,
                       float *heights)
{
    const float x = view.eye[0];
    const float y = view.eye[1];
    const float z = view.eye[2];
    if(distances != nullptr)
        for(std::size_t i = 0; i < count; ++i)
        {
            const float dx = x - points[3 * i];
            const float dy = y - points[3 * i + 1];
            const float dz = z - points[3 * i + 2];
            distances[i] = -(dx * dx + dy * dy + dz * dz);
        }
    if(heights == nullptr)
        return;
    if(usesOccluders(view, count))
    {
        const float a = view.toWorld[0][1];
        const float b = view.toWorld[1][1];
        const float c = view.toWorld[2][1];
        const float d = view.toWorld[3][1];
        for(std::size_t i = 0; i < count; ++i)
            heights[i] = a * points[3 * i] + b * points[3 * i + 1] + c * points[3 * i + 2] + d;
    }
    else
        for(std::size_t i = 0; i < count; ++i)
            heights[i] = points[3 * i + 1];
}

std::size_t countVisible(const float *points, std::size_t count, const OrderView &view)
{
    if(view.numOccluders == 0)
        return count;
    std::vector<osg::SphereVolume> spheres;
    spheres.reserve(view.numOccluders);
    for(std::size_t i = 0; i < view.numOccluders; ++i)
    {
        const osg::Vec4f &sphere = view.occluders[i];
        spheres.emplace_back(osg::Pnt3f(sphere[0], sphere[1], sphere[2]), sphere[3]);
    }
    std::size_t visible = 0;
    for(std::size_t i = 0; i < count; ++i)
    {
        const osg::Pnt3f point(points[3 * i], points[3 * i + 1], points[3 * i + 2]);
        osg::Pnt3f inWorld;
        view.toWorld.multMatrixPnt(point, inWorld);
        // From the eye in the points' coordinates to the point in the world: this mix is meant.
        const osg::Line sight(view.eye, inWorld);
        const bool hidden = std::any_of(spheres.begin(), spheres.end(), [&](const osg::SphereVolume &sphere) {
            return sight.intersect(sphere);
        });
        visible += hidden ? 0 : 1;
    }
    return visible;
}

float splitPosition(std::size_t visible, std::size_t count, float threshold)
{
    const float n = static_cast<float>(count);
    if(count == 0 || !(threshold > 0.0f))
        return threshold * (n * -1.0f);
    return (1.0f - (static_cast<float>(visible) / n) * threshold) * n;
}

std::size_t splitWithin(float position, std::size_t count)
{
    if(!(position > 0.0f))
        return 0;
    if(position >= static_cast<float>(count))
        return count;
    return std::min(static_cast<std::size_t>(position), count);
}

void orderByKeys(const float *distances, const float *heights, std::size_t count, std::size_t split,
                 std::int32_t *order)
{
    split = std::min(split, count);
    // One allocation that nobody clears: the values and as much room to sort them in.
    const std::unique_ptr<KeyedPrimitive[]> memory(new KeyedPrimitive[2 * count]);
    KeyedPrimitive *const values = memory.get();
    if(split == 0)
        for(std::size_t i = 0; i < count; ++i)
            values[i] = keyed(keyOf(heights[i]), i);
    else if(split == count)
        for(std::size_t i = 0; i < count; ++i)
            values[i] = keyed(keyOf(distances[i]), i);
    else
        splitByDistance(distances, heights, count, split, values);
    radixSort(values, values + count, split, order);
    radixSort(values + split, values + count, count - split, order + split);
}

float orderPrimitives(const float *points, std::size_t count, const OrderView &view, std::int32_t *order)
{
    const std::size_t visible = usesOccluders(view, count) ? countVisible(points, count, view) : count;
    const float position = splitPosition(visible, count, view.threshold);
    const std::size_t split = splitWithin(position, count);

    const std::unique_ptr<float[]> keys(new float[2 * count]);
    float *const distances = split == 0 ? nullptr : keys.get();
    float *const heights = split == count ? nullptr : keys.get() + count;
    measurePrimitives(points, count, view, distances, heights);
    orderByKeys(distances, heights, count, split, order);
    return position;
}

std::size_t firstDrawn(std::size_t count, float lowerBound)
{
    return splitWithin(static_cast<float>(count) * lowerBound, count);
}

IndexCount countIndices(const IndexLists &lists, const IndexSelection &selection, IndexCopy copy)
{
    IndexCount result;
    for(std::size_t i = selection.first; i < selection.count; ++i)
    {
        const Range range = rangeAt(lists, selection, i);
        result.indices += lengthOf(range, copy);
        result.leftOut += range.isValid ? 0 : 1;
    }
    return result;
}

void fillIndices(const IndexLists &lists, const IndexSelection &selection, IndexCopy copy,
                 std::uint32_t *result)
{
    for(std::size_t i = selection.first; i < selection.count; ++i)
    {
        const Range range = rangeAt(lists, selection, i);
        const std::size_t length = lengthOf(range, copy);
        const std::size_t there = std::min(length, lists.numIndices - range.begin);
        for(std::size_t j = 0; j < there; ++j)
            result[j] = static_cast<std::uint32_t>(lists.indices[range.begin + j]);
        for(std::size_t j = there; j < length; ++j)
            result[j] = static_cast<std::uint32_t>(lists.indices[lists.numIndices - 1]);
        result += length;
    }
}

std::uint32_t largestIndex(const std::uint32_t *indices, std::size_t count)
{
    std::uint32_t largest = 0;
    for(std::size_t i = 0; i < count; ++i)
        largest = std::max(largest, indices[i]);
    return largest;
}

} // namespace tessaly
