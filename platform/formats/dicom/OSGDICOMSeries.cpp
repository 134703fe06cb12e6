/// \file
/// Choosing, ordering and measuring of slices.

#include "OSGDICOMSeries.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <tuple>

OSG_BEGIN_NAMESPACE

namespace
{

/// Slices nearer than this, in mm, lie at one place.
constexpr double SamePlace = 1e-3;

/// Distances that agree to this share are one distance.
constexpr double SameDistance = 0.01;

using Indices = std::vector<std::size_t>;

std::string counted(std::size_t count, const char *one, const char *many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string text(double value)
{
    char buffer[40];
    std::snprintf(buffer, sizeof(buffer), "%g", value);
    return buffer;
}

/// Text of a file, fit for one line of a log.
std::string quoted(const std::string &words)
{
    std::string shown = words.substr(0, 64);
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < 32 || c == 127; },
        '?');
    return "\"" + shown + "\"";
}

/// The series with most frames.
Indices chooseSeries(const std::vector<DICOMFrame> &frames, const std::string &name,
                     std::vector<std::string> &notices)
{
    std::map<std::pair<std::string, std::string>, Indices> series;
    std::map<std::string, std::string> descriptionOf;
    for(const DICOMFrame &frame : frames)
        descriptionOf.emplace(frame.series, frame.description);
    for(std::size_t i = 0; i < frames.size(); ++i)
        series[{descriptionOf[frames[i].series], frames[i].series}].push_back(i);
    auto best = series.begin();
    for(auto at = series.begin(); at != series.end(); ++at)
        if(at->second.size() > best->second.size())
            best = at;
    if(series.size() > 1)
        notices.push_back(name + ": holds " + std::to_string(series.size()) + " series, " +
                          quoted(best->first.first) + " with " +
                          counted(best->second.size(), "slice", "slices") + " is taken");
    return best->second;
}

/// The frames of the size, direction and kind that most of them have.
Indices chooseKind(const std::vector<DICOMFrame> &frames, const Indices &from, const std::string &name,
                   std::vector<std::string> &notices)
{
    using Kind = std::tuple<int, int, std::string, std::vector<long>>;
    std::map<Kind, Indices> kinds;
    for(std::size_t i : from)
    {
        const DICOMFrame &frame = frames[i];
        std::vector<long> direction;
        for(const auto &axis : {frame.across, frame.down})
            for(int j = 0; j < 3; ++j)
                direction.push_back(std::lround(axis[j] * 100.0));
        kinds[{frame.columns, frame.rows, frame.kind, direction}].push_back(i);
    }
    const auto best = std::max_element(kinds.begin(), kinds.end(), [](const auto &a, const auto &b) {
        return a.second.size() < b.second.size();
    });
    if(best->second.size() < from.size())
        notices.push_back(name + ": " + counted(from.size() - best->second.size(), "slice", "slices") +
                          " of another size, direction or kind left out");
    return best->second;
}

/// The place of a frame along the normal.
double depthOf(const DICOMFrame &frame)
{
    const double(&a)[3] = frame.across;
    const double(&d)[3] = frame.down;
    const double normal[3] = {a[1] * d[2] - a[2] * d[1], a[2] * d[0] - a[0] * d[2],
                              a[0] * d[1] - a[1] * d[0]};
    double depth = 0.0;
    for(int i = 0; i < 3; ++i)
        depth += normal[i] * frame.position[i];
    return depth;
}

/// Orders by position and drops doubles; returns the distance of the slices, or 0 where there is one slice.
double orderByPlace(const std::vector<DICOMFrame> &frames, Indices &order, const std::string &name,
                    std::vector<std::string> &notices)
{
    std::vector<double> depths(frames.size());
    for(std::size_t i : order)
        depths[i] = depthOf(frames[i]);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return std::fabs(depths[a] - depths[b]) > 0.0 ? depths[a] < depths[b]
                                                      : frames[a].number < frames[b].number;
    });
    const std::size_t all = order.size();
    Indices kept;
    for(std::size_t i : order)
    {
        if(kept.empty() || depths[i] - depths[kept.back()] > SamePlace)
            kept.push_back(i);
        else if(frames[i].number < frames[kept.back()].number)
            kept.back() = i;
    }
    order.swap(kept);
    if(order.size() < all)
        notices.push_back(name + ": " + counted(all - order.size(), "slice lies", "slices lie") +
                          " where another one does, left out");
    if(order.size() < 2)
        return 0.0;

    std::vector<double> distances;
    for(std::size_t i = 1; i < order.size(); ++i)
        distances.push_back(depths[order[i]] - depths[order[i - 1]]);
    std::vector<double> sorted = distances;
    std::sort(sorted.begin(), sorted.end());
    const double median = sorted[(sorted.size() - 1) / 2];
    const auto differs = [median](double d) { return std::fabs(d - median) > SameDistance * median; };
    const auto odd = std::count_if(distances.begin(), distances.end(), differs);
    if(odd == 0)
        return (depths[order.back()] - depths[order.front()]) / double(distances.size());
    notices.push_back(
        name + ": " + counted(std::size_t(odd), "distance of slices differs", "distances of slices differ") +
        " from the usual " + text(median) + " mm, the largest is " + text(sorted.back()) + " mm");
    return median;
}

} // namespace

DICOMPlan planDICOMVolume(const std::vector<DICOMFrame> &frames, const std::string &name)
{
    DICOMPlan plan;
    if(frames.empty())
        return plan;
    plan.order = chooseKind(frames, chooseSeries(frames, name, plan.notices), name, plan.notices);

    const bool placed = std::all_of(plan.order.begin(), plan.order.end(),
                                    [&](std::size_t i) { return frames[i].hasPosition; });
    double apart = 0.0;
    if(placed)
        apart = orderByPlace(frames, plan.order, name, plan.notices);
    else
    {
        std::stable_sort(plan.order.begin(), plan.order.end(), [&](std::size_t a, std::size_t b) {
            return std::make_tuple(frames[a].number, frames[a].frame) <
                   std::make_tuple(frames[b].number, frames[b].frame);
        });
        if(plan.order.size() > 1)
            plan.notices.push_back(name + ": slices without positions, in the order of their numbers");
    }
    const DICOMFrame &first = frames[plan.order.front()];
    const double sides[3] = {first.pixelSpacing[0], first.pixelSpacing[1], apart > 0.0 ? apart : first.apart};
    for(int i = 0; i < 3; ++i)
        if(sides[i] > 1e-30 && sides[i] < 1e30)
        {
            plan.hasSpacing = true;
            plan.spacing[i] = static_cast<float>(sides[i]);
        }
    return plan;
}

OSG_END_NAMESPACE
