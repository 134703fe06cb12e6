/// \file
/// The tables of a transfer function.

#include "TransferPoints.h"

#include <OpenSG/OSGReal16.h>

#include <algorithm>
#include <cstddef>

namespace viewer
{

namespace
{

/// One channel of one control point.
struct Knot
{
    float position;
    float value;
};

std::size_t entryOf(const Knot &knot, std::size_t entries)
{
    const float index = static_cast<float>(entries) * std::clamp(knot.position, 0.0f, 1.0f);
    return static_cast<std::size_t>(index);
}

/// Straight lines between the knots, in single precision as the library computes them. The step is added up,
/// not multiplied, for the same reason.
std::vector<float> channel(const std::vector<Knot> &knots, std::size_t entries, bool lastFillsAll)
{
    std::vector<float> values(entries, 0.0f);
    std::size_t at = entryOf(knots.front(), entries);
    float value = knots.front().value;
    std::fill_n(values.begin(), at, value);
    for (std::size_t k = 1; k < knots.size(); ++k)
    {
        const std::size_t next = entryOf(knots[k], entries);
        if (next > at)
        {
            const float step = 1.0f / static_cast<float>(next - at);
            float t = 0.0f;
            for (std::size_t i = at; i < next; ++i, t += step)
            {
                values[i] = (1.0f - t) * value + t * knots[k].value;
            }
        }
        at = next;
        value = knots[k].value;
    }
    if (at < entries)
    {
        std::fill(values.begin() + static_cast<std::ptrdiff_t>(lastFillsAll ? 0 : at), values.end(), value);
    }
    return values;
}

/// Red, green, blue, opacity of every entry.
std::vector<float> channels(const TransferPoints &points, std::size_t entries)
{
    std::vector<Knot> knots[4];
    for (const ColorPoint &point : points.color)
    {
        knots[0].push_back({point.position, point.red});
        knots[1].push_back({point.position, point.green});
        knots[2].push_back({point.position, point.blue});
    }
    for (const OpacityPoint &point : points.opacity)
    {
        knots[3].push_back({point.position, point.opacity});
    }

    std::vector<float> table(4 * entries);
    for (std::size_t c = 0; c < 4; ++c)
    {
        const std::vector<float> values = channel(knots[c], entries, c == 3);
        for (std::size_t i = 0; i < entries; ++i)
        {
            table[4 * i + c] = values[i];
        }
    }
    return table;
}

OpacityPoint mixed(const OpacityPoint &a, const OpacityPoint &b, float t)
{
    return {0.0f, a.opacity + t * (b.opacity - a.opacity)};
}

ColorPoint mixed(const ColorPoint &a, const ColorPoint &b, float t)
{
    return {0.0f, a.red + t * (b.red - a.red), a.green + t * (b.green - a.green),
            a.blue + t * (b.blue - a.blue)};
}

template <typename Point>
Point onLine(const std::vector<Point> &points, float position)
{
    const auto behind = std::upper_bound(points.begin(), points.end(), position,
                                         [](float p, const Point &point) { return p < point.position; });
    Point value = behind == points.begin() ? *behind : *(behind - 1);
    if (behind != points.begin() && behind != points.end())
    {
        value = mixed(value, *behind, (position - value.position) / (behind->position - value.position));
    }
    value.position = position;
    return value;
}

} // namespace

OpacityPoint pointAt(const std::vector<OpacityPoint> &points, float position)
{
    return onLine(points, position);
}

ColorPoint pointAt(const std::vector<ColorPoint> &points, float position)
{
    return onLine(points, position);
}

std::vector<std::uint8_t> byteTable(const TransferPoints &points)
{
    const std::vector<float> values = channels(points, 256);
    std::vector<std::uint8_t> table(values.size());
    std::transform(values.begin(), values.end(), table.begin(),
                   [](float value)
                   { return static_cast<std::uint8_t>(std::clamp(value, 0.0f, 1.0f) * 255.0f); });
    return table;
}

std::vector<std::uint16_t> halfTable(const TransferPoints &points)
{
    const std::vector<float> values = channels(points, 65536);
    std::vector<std::uint16_t> table(values.size());
    std::transform(values.begin(), values.end(), table.begin(),
                   [](float value) { return osg::Real16::fromReal32(value); });
    return table;
}

} // namespace viewer
