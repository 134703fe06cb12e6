/// \file
/// Counting voxels, and telling background from object.

#include "Histogram.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

namespace
{

using namespace viewer;

/// A histogram of 256 values from pairs of value and count.
Histogram histogram(std::initializer_list<std::pair<std::size_t, std::uint64_t>> counts,
                    std::size_t values = 256)
{
    Histogram h;
    h.counts.assign(values, 0);
    for (const auto &entry : counts)
    {
        h.counts[entry.first] += entry.second;
        h.total += entry.second;
    }
    return h;
}

TEST(Histogram, BytesAreCountedForEveryLength)
{
    constexpr unsigned seed = 7;
    RecordProperty("seed", static_cast<int>(seed));
    std::mt19937 random(seed);
    for (std::size_t n : {0, 1, 3, 4, 5, 1000})
    {
        std::vector<std::uint8_t> voxels(n);
        std::generate(voxels.begin(), voxels.end(), [&] { return static_cast<std::uint8_t>(random() % 7); });
        const Histogram h = histogramOf8(voxels.data(), n);
        ASSERT_EQ(h.counts.size(), 256u);
        EXPECT_EQ(h.total, n);
        for (std::size_t value = 0; value < 256; ++value)
        {
            EXPECT_EQ(h.counts[value], static_cast<std::uint64_t>(std::count(
                                           voxels.begin(), voxels.end(), static_cast<std::uint8_t>(value))));
        }
    }
}

TEST(Histogram, ShortsAreCountedAtAnyAlignment)
{
    const std::vector<std::uint16_t> values{0, 65535, 4095, 4095, 258, 4095, 0};
    std::vector<std::uint8_t> bytes(2 * values.size() + 1);
    std::memcpy(bytes.data() + 1, values.data(), 2 * values.size());
    const Histogram h = histogramOf16(bytes.data() + 1, values.size());
    ASSERT_EQ(h.counts.size(), 65536u);
    EXPECT_EQ(h.counts[0], 2u);
    EXPECT_EQ(h.counts[258], 1u);
    EXPECT_EQ(h.counts[4095], 3u);
    EXPECT_EQ(h.counts[65535], 1u);
    EXPECT_EQ(h.total, 7u);
}

TEST(Histogram, LowestAndHighestAreValuesThatOccur)
{
    EXPECT_EQ(histogram({{3, 1}, {200, 5}}).lowest(), 3u);
    EXPECT_EQ(histogram({{3, 1}, {200, 5}}).highest(), 200u);
    EXPECT_EQ(histogram({}).lowest(), 0u);
    EXPECT_EQ(histogram({}).highest(), 0u);
}

TEST(Quantile, IsTheSmallestValueUpToWhichTheShareLies)
{
    const Histogram h = histogram({{10, 50}, {20, 30}, {30, 20}});
    EXPECT_EQ(quantile(h, 0.0), 10u);
    EXPECT_EQ(quantile(h, 0.5), 10u);
    EXPECT_EQ(quantile(h, 0.51), 20u);
    EXPECT_EQ(quantile(h, 0.8), 20u);
    EXPECT_EQ(quantile(h, 0.81), 30u);
    EXPECT_EQ(quantile(h, 1.0), 30u);
    EXPECT_EQ(quantile(h, 0.5, 11), 20u);
    EXPECT_EQ(quantile(h, 0.5, 31), 31u) << "nothing is that high";
}

TEST(BackgroundThreshold, LiesInTheMiddleOfTheGapBetweenTwoPeaks)
{
    EXPECT_EQ(backgroundThreshold(histogram({{0, 900}, {101, 100}})), 50u);
    EXPECT_EQ(backgroundThreshold(histogram({{10, 500}, {12, 500}, {110, 300}, {120, 300}})),
              (12u + 109u) / 2);
}

TEST(BackgroundThreshold, OfOneValueOnlyIsThatValue)
{
    EXPECT_EQ(backgroundThreshold(histogram({{42, 100}})), 42u);
    EXPECT_EQ(backgroundThreshold(histogram({})), 0u);
}

TEST(BackgroundThreshold, AFewOutliersDecideNothing)
{
    Histogram h = histogram({}, 65536);
    for (std::size_t v = 0; v < 100; ++v)
    {
        h.counts[v] = 1000;
        h.counts[1000 + v] = 400;
        h.total += 1400;
    }
    const std::size_t without = backgroundThreshold(h);
    EXPECT_GE(without, 99u);
    EXPECT_LT(without, 1000u);
    h.counts[65535] = 100;
    h.total += 100;
    EXPECT_EQ(backgroundThreshold(h), without);
}

/// The threshold by its definition: both classes' counts and means are computed anew for every candidate.
std::size_t naiveThreshold(const std::vector<double> &counts)
{
    double best = -1.0;
    std::size_t at = 0;
    for (std::size_t t = 0; t + 1 < counts.size(); ++t)
    {
        double n[2] = {0, 0};
        double sum[2] = {0, 0};
        for (std::size_t v = 0; v < counts.size(); ++v)
        {
            n[v > t] += counts[v];
            sum[v > t] += counts[v] * static_cast<double>(v);
        }
        if (n[0] == 0.0 || n[1] == 0.0)
        {
            continue;
        }
        const double apart = sum[0] / n[0] - sum[1] / n[1];
        const double variance = n[0] * n[1] * apart * apart;
        if (variance > best * (1.0 + 1e-12))
        {
            best = variance;
            at = t;
        }
    }
    return at;
}

TEST(BackgroundThreshold, AgreesWithItsDefinitionWhereEveryValueOccurs)
{
    for (unsigned seed = 1; seed <= 20; ++seed)
    {
        std::mt19937 random(seed);
        Histogram h;
        h.counts.resize(256);
        std::vector<double> counts(256);
        for (std::size_t v = 0; v < 256; ++v)
        {
            h.counts[v] = 1 + random() % 1000;
            h.total += h.counts[v];
        }
        // As many of the brightest as are cut count as the value where the cut is.
        const std::size_t cut = quantile(h, 0.999);
        for (std::size_t v = 0; v < 256; ++v)
        {
            counts[std::min(v, cut)] += static_cast<double>(h.counts[v]);
        }
        EXPECT_EQ(backgroundThreshold(h), naiveThreshold(counts)) << "seed " << seed;
    }
}

} // namespace
