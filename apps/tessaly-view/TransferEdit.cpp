/// \file
/// Lists of points, edited in order.

#include "TransferEdit.h"

#include <algorithm>
#include <cmath>

namespace viewer
{

namespace
{

/// Between the neighbours of `index`; the ends of a list don't move.
template <typename Point>
float boundedPosition(const std::vector<Point> &list, std::size_t index, float position)
{
    if (index == 0 || index + 1 == list.size())
    {
        return list[index].position;
    }
    return std::clamp(position, list[index - 1].position, list[index + 1].position);
}

/// Where a point of that position goes: behind those that are not behind it, ahead of the last.
template <typename Point>
std::size_t placeOf(const std::vector<Point> &list, float position)
{
    const auto behind = std::upper_bound(list.begin(), list.end(), position,
                                         [](float p, const Point &point) { return p < point.position; });
    const std::size_t place = static_cast<std::size_t>(behind - list.begin());
    return std::clamp<std::size_t>(place, 1, list.size() - 1);
}

template <typename Point>
bool removePoint(std::vector<Point> &list, std::size_t index)
{
    if (index == 0 || index + 1 >= list.size())
    {
        return false;
    }
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

template <typename Point>
void makeWhole(std::vector<Point> &list)
{
    if (list.front().position > 0.0f || list.size() == 1)
    {
        Point first = list.front();
        first.position = 0.0f;
        list.insert(list.begin(), first);
    }
    if (list.back().position < 1.0f)
    {
        Point last = list.back();
        last.position = 1.0f;
        list.push_back(last);
    }
}

} // namespace

void makeEditable(TransferPoints &points)
{
    // Opacities that end below 1 stand for a table of the last one alone.
    if (points.opacity.back().position < 1.0f)
    {
        points.opacity = {{0.0f, points.opacity.back().opacity}, {1.0f, points.opacity.back().opacity}};
    }
    makeWhole(points.opacity);
    makeWhole(points.color);
}

std::optional<std::size_t> opacityPointAt(const TransferPoints &points, float position, float opacity,
                                          float positionRadius, float opacityRadius)
{
    std::optional<std::size_t> found;
    float nearest = 1.0f;
    for (std::size_t i = 0; i < points.opacity.size(); ++i)
    {
        const float across = (points.opacity[i].position - position) / positionRadius;
        const float upwards = (points.opacity[i].opacity - opacity) / opacityRadius;
        const float distance = across * across + upwards * upwards;
        if (distance <= nearest)
        {
            nearest = distance;
            found = i;
        }
    }
    return found;
}

std::optional<std::size_t> colorPointAt(const TransferPoints &points, float position, float radius)
{
    std::optional<std::size_t> found;
    float nearest = radius;
    for (std::size_t i = 0; i < points.color.size(); ++i)
    {
        const float distance = std::abs(points.color[i].position - position);
        if (distance <= nearest)
        {
            nearest = distance;
            found = i;
        }
    }
    return found;
}

std::size_t addOpacityPoint(TransferPoints &points, float position, float opacity)
{
    const float place = std::clamp(position, 0.0f, 1.0f);
    const std::size_t index = placeOf(points.opacity, place);
    points.opacity.insert(points.opacity.begin() + static_cast<std::ptrdiff_t>(index),
                          {place, std::clamp(opacity, 0.0f, 1.0f)});
    return index;
}

std::size_t addColorPoint(TransferPoints &points, float position)
{
    const ColorPoint point = pointAt(points.color, std::clamp(position, 0.0f, 1.0f));
    const std::size_t index = placeOf(points.color, point.position);
    points.color.insert(points.color.begin() + static_cast<std::ptrdiff_t>(index), point);
    return index;
}

void moveOpacityPoint(TransferPoints &points, std::size_t index, float position, float opacity)
{
    points.opacity[index] = {boundedPosition(points.opacity, index, position),
                             std::clamp(opacity, 0.0f, 1.0f)};
}

void moveColorPoint(TransferPoints &points, std::size_t index, float position)
{
    points.color[index].position = boundedPosition(points.color, index, position);
}

bool removeOpacityPoint(TransferPoints &points, std::size_t index)
{
    return removePoint(points.opacity, index);
}

bool removeColorPoint(TransferPoints &points, std::size_t index)
{
    return removePoint(points.color, index);
}

} // namespace viewer
