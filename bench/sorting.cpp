/// \file
/// What putting sorted primitives in order costs, in units of std::sort on ready records of the same.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include <primitives/PrimitiveOrder.h>

namespace
{

constexpr std::size_t count = 1000000;

struct Record
{
    float distance;
    std::int32_t index;
    float height;
};

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

template <class Work>
double secondsOf(Work &&work)
{
    const double begin = now();
    work();
    benchmark::ClobberMemory();
    return now() - begin;
}

/// Points in a cube, seen from beside it, without occluders.
struct Scene
{
    std::vector<float> points;
    std::vector<Record> records; ///< of the points, in their order
    std::vector<Record> sorted;
    std::vector<std::int32_t> order;
    tessaly::OrderView view;
    std::size_t split = 0;

    explicit Scene(float threshold) : points(3 * count), records(count), sorted(count), order(count)
    {
        std::mt19937 random(1);
        std::uniform_real_distribution<float> coordinate(-1.f, 1.f);
        for(float &value : points)
            value = coordinate(random);
        view.eye = osg::Pnt3f(0.3f, 0.5f, 2.f);
        view.threshold = threshold;
        split = tessaly::splitWithin(tessaly::splitPosition(count, count, threshold), count);
        std::vector<float> distances(count);
        std::vector<float> heights(count);
        tessaly::measurePrimitives(points.data(), count, view, distances.data(), heights.data());
        for(std::size_t i = 0; i < count; ++i)
            records[i] = {distances[i], std::int32_t(i), heights[i]};
    }

    /// From the points to the order.
    double ours()
    {
        return secondsOf([&] { tessaly::orderPrimitives(points.data(), count, view, order.data()); });
    }
    /// All records by distance, no more.
    double sortOnce()
    {
        sorted = records;
        return secondsOf([&] {
            std::sort(sorted.begin(), sorted.end(),
                      [](const Record &a, const Record &b) { return a.distance < b.distance; });
        });
    }
    /// The whole order: by distance, then the nearer ones by height.
    double sortTwice()
    {
        return sortOnce() + secondsOf([&] {
            std::sort(sorted.begin() + std::ptrdiff_t(split), sorted.end(),
                      [](const Record &a, const Record &b) { return a.height < b.height; });
        });
    }

    /// Whether our order has the keys of std::sort's, one by one. Primitives of the same distance at the
    /// split may lie on either side of it, so heights are compared with those of the primitives that are
    /// there.
    bool isSameOrder()
    {
        sortOnce();
        for(std::size_t i = 0; i < split; ++i)
            if(records[std::size_t(order[i])].distance != sorted[i].distance)
                return false;
        std::vector<float> heights;
        for(std::size_t i = split; i < count; ++i)
            heights.push_back(records[std::size_t(order[i])].height);
        std::vector<std::int32_t> numbers(order);
        std::sort(numbers.begin(), numbers.end());
        const bool isEachOnce = std::adjacent_find(numbers.begin(), numbers.end()) == numbers.end();
        return isEachOnce && std::is_sorted(heights.begin(), heights.end());
    }
};

/// Ratios to a yardstick, which is measured on either side of the work: median, quartiles and limit.
void order(benchmark::State &state, double (Scene::*yardstick)(), float threshold)
{
    Scene scene(threshold);
    scene.ours();
    if(!scene.isSameOrder())
    {
        std::fprintf(stderr, "the order is not that of std::sort\n");
        std::exit(1);
    }
    std::vector<double> ratios;
    for([[maybe_unused]] auto round : state)
    {
        const double before = (scene.*yardstick)();
        const double taken = scene.ours();
        const double behind = (scene.*yardstick)();
        ratios.push_back(2.0 * taken / (before + behind));
        state.SetIterationTime(taken);
    }
    std::sort(ratios.begin(), ratios.end());
    const double last = double(ratios.size() - 1);
    const auto at = [&](double share) { return ratios[std::size_t(share * last + 0.5)]; };
    state.counters["ratio"] = at(0.5);
    state.counters["low"] = at(0.25);
    state.counters["high"] = at(0.75);
    state.counters["limit"] = 0.2;
}

BENCHMARK_CAPTURE(order, both, &Scene::sortTwice, 0.85f)
    ->Name("ordering 1000000 primitives, distance and height / std::sort of ready records by both")
    ->Iterations(21)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(order, once, &Scene::sortOnce, 0.85f)
    ->Name("ordering 1000000 primitives, distance and height / std::sort of ready records by distance")
    ->Iterations(21)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(order, distance, &Scene::sortOnce, -1.f)
    ->Name("ordering 1000000 primitives, distance alone / std::sort of ready records by distance")
    ->Iterations(21)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
