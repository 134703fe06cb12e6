/// \file
/// The bars behind the curve of a transfer function.

#include "window/TransferEditor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <utility>
#include <vector>

namespace
{

using namespace viewer;

Histogram histogram(std::size_t values, std::initializer_list<std::pair<std::size_t, std::uint64_t>> counts)
{
    Histogram made;
    made.counts.resize(values);
    for (const auto &[value, count] : counts)
    {
        made.counts[value] = count;
        made.total += count;
    }
    return made;
}

TEST(HistogramBars, HeightsGoWithTheLogarithmOfTheCounts)
{
    const std::vector<float> bars = histogramBars(histogram(256, {{0, 99}, {255, 9}}), 256, 1.0);
    EXPECT_FLOAT_EQ(bars[0], 1.0f);
    EXPECT_FLOAT_EQ(bars[255], static_cast<float>(std::log(10.0) / std::log(100.0)));
    EXPECT_EQ(bars[100], 0.0f);
}

TEST(HistogramBars, ABarSumsTheValuesThatItStandsForAndLeavesOutWhatIsNotShown)
{
    const std::vector<float> bars =
        histogramBars(histogram(65536, {{0, 4}, {4095, 5}, {4096, 9}, {8191, 0}, {8192, 1000}}), 2, 0.125);
    EXPECT_FLOAT_EQ(bars[0], 1.0f);
    EXPECT_FLOAT_EQ(bars[1], 1.0f);
}

TEST(HistogramBars, NothingCountedIsNothingShown)
{
    EXPECT_EQ(histogramBars(histogram(256, {}), 3, 1.0), (std::vector<float>{0.0f, 0.0f, 0.0f}));
}

} // namespace
