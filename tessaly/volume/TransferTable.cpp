#include "TransferTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <istream>

// gcc vectorises loops of unknown length only at this level.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC optimize("O3", "no-tree-slp-vectorize")
#endif

namespace tessaly
{

namespace
{

void store(std::uint8_t &entry, float value)
{
    entry = wrappedByte(value);
}

void store(osg::Real16 &entry, float value)
{
    entry = osg::Real16(value);
}

/// The index of a position, within 0 to \a entries; the negated test sends not-a-number to 0.
std::size_t indexOf(float position, std::size_t entries)
{
    const float index = static_cast<float>(entries) * position;
    if(!(index > 0.0f))
        return 0;
    return index >= static_cast<float>(entries) ? entries : static_cast<std::size_t>(index);
}

/// A control point of Channels adjacent channels of the table.
template <std::size_t Channels>
struct Knot
{
    std::size_t index;
    std::array<float, Channels> value;
};

Knot<1> knotOf(const AlphaPoint &point, std::size_t entries)
{
    return {indexOf(point.position, entries), {point.alpha}};
}

Knot<3> knotOf(const ColorPoint &point, std::size_t entries)
{
    return {indexOf(point.position, entries), {point.red, point.green, point.blue}};
}

template <std::size_t Channels, class Entry>
void fillConstant(Entry *channels, std::size_t first, std::size_t end,
                  const std::array<float, Channels> &value)
{
    for(std::size_t entry = first; entry < end; ++entry)
        for(std::size_t channel = 0; channel < Channels; ++channel)
            store(channels[entry * 4 + channel], value[channel]);
}

/// Fills everything but what follows the last point.
/// \param channels the first of the channels in entry 0
/// \return the last point
template <std::size_t Channels, class Point, class Entry>
Knot<Channels> fillRamps(const std::list<Point> &points, Entry *channels, std::size_t entries)
{
    Knot<Channels> from = knotOf(points.front(), entries);
    fillConstant(channels, 0, from.index, from.value);

    for(auto point = std::next(points.begin()); point != points.end(); ++point) {
        const Knot<Channels> to = knotOf(*point, entries);
        if(to.index > from.index) {
            const float step = 1.0f / static_cast<float>(to.index - from.index);
            float t = 0.0f;
            for(std::size_t entry = from.index; entry < to.index; ++entry, t += step)
                for(std::size_t channel = 0; channel < Channels; ++channel)
                    store(channels[entry * 4 + channel],
                          (1.0f - t) * from.value[channel] + t * to.value[channel]);
        }
        from = to;
    }
    return from;
}

template <class Entry>
void fillOpacityOf(const std::list<AlphaPoint> &points, Entry *table, std::size_t entries)
{
    Entry *opacity = table + 3;
    if(points.empty()) {
        fillConstant<1>(opacity, 0, entries, {0.0f});
        return;
    }
    const Knot<1> last = fillRamps<1>(points, opacity, entries);
    // From entry 0 on, not from the last point: meant, see the header.
    if(last.index < entries)
        fillConstant(opacity, 0, entries, last.value);
}

template <class Entry>
void fillColorOf(const std::list<ColorPoint> &points, Entry *table, std::size_t entries)
{
    if(points.empty()) {
        fillConstant<3>(table, 0, entries, {0.0f, 0.0f, 0.0f});
        return;
    }
    const Knot<3> last = fillRamps<3>(points, table, entries);
    fillConstant(table, last.index, entries, last.value);
}

template <class Entry>
void sumOpacityOf(const Entry *table, std::size_t entries, float *sums)
{
    float sum = 0.0f;
    for(std::size_t entry = 0; entry < entries; ++entry) {
        sum += static_cast<float>(table[entry * 4 + 3]);
        sums[entry] = sum;
    }
}

} // namespace

TransferPoints defaultTransferPoints()
{
    return {{{0.0f, 0.0f}, {1.0f, 1.0f}}, {{0.0f, 0.0f, 0.0f, 0.0f}, {1.0f, 1.0f, 1.0f, 1.0f}}};
}

TransferPoints readTransferPoints(std::istream &text)
{
    TransferPoints points;

    long count = 0;
    text >> count;
    for(AlphaPoint point; count > 0 && text >> point.position >> point.alpha; --count)
        points.alpha.push_back(point);

    count = 0;
    text >> count;
    for(ColorPoint point; count > 0 && text >> point.position >> point.red >> point.green >> point.blue;
        --count)
        points.color.push_back(point);

    if(points.alpha.empty())
        points.alpha = defaultTransferPoints().alpha;
    if(points.color.empty())
        points.color = defaultTransferPoints().color;
    return points;
}

std::uint8_t wrappedByte(float value)
{
    const double scaled = static_cast<double>(value) * 255.0;
    if(!std::isfinite(scaled))
        return 0;
    // The remainder is exact and keeps the sign, so the cut and the wrap may follow it.
    return static_cast<std::uint8_t>(static_cast<int>(std::fmod(scaled, 256.0)));
}

void fillOpacity(const std::list<AlphaPoint> &points, std::uint8_t *table, std::size_t entries)
{
    fillOpacityOf(points, table, entries);
}

void fillOpacity(const std::list<AlphaPoint> &points, osg::Real16 *table, std::size_t entries)
{
    fillOpacityOf(points, table, entries);
}

void fillColor(const std::list<ColorPoint> &points, std::uint8_t *table, std::size_t entries)
{
    fillColorOf(points, table, entries);
}

void fillColor(const std::list<ColorPoint> &points, osg::Real16 *table, std::size_t entries)
{
    fillColorOf(points, table, entries);
}

void sumOpacity(const std::uint8_t *table, std::size_t entries, float *sums)
{
    sumOpacityOf(table, entries, sums);
}

void sumOpacity(const osg::Real16 *table, std::size_t entries, float *sums)
{
    sumOpacityOf(table, entries, sums);
}

void intervalMaxima(const std::uint8_t *table, std::size_t width, std::uint8_t *maxima)
{
    std::fill(maxima, maxima + width * width, std::uint8_t(0));
    for(std::size_t y = 0; y < width; ++y) {
        const std::uint8_t opacity = table[y * 4 + 3];
        std::uint8_t *row = maxima + y * width;
        // An interval that ends one entry further takes in just that entry.
        for(std::size_t x = 0; x < y; ++x) {
            const std::uint8_t shorter = (row - width)[x];
            row[x] = shorter > opacity ? shorter : opacity;
        }
        row[y] = opacity;
    }
}

} // namespace tessaly
