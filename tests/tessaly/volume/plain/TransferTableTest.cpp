#include "volume/TransferTable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>
#include <vector>

namespace
{

using osg::Real16;
using Bytes = std::vector<std::uint8_t>;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

/// A table with guard entries behind it that no fill may touch.
template <class Entry>
struct GuardedTable
{
    explicit GuardedTable(std::size_t count) : entries(count), values(count * 4 + 64, Entry(guard))
    {
    }

    float at(std::size_t entry, std::size_t channel) const
    {
        return static_cast<float>(values[entry * 4 + channel]);
    }

    void expectGuards() const
    {
        for(std::size_t i = entries * 4; i < values.size(); ++i)
            ASSERT_EQ(static_cast<float>(values[i]), guard) << i;
    }

    static constexpr float guard = 77.0f;
    std::size_t entries;
    std::vector<Entry> values;
};

GuardedTable<std::uint8_t> byteTable(const std::list<AlphaPoint> &alpha, const std::list<ColorPoint> &color)
{
    GuardedTable<std::uint8_t> table(256);
    tessaly::fillOpacity(alpha, table.values.data());
    tessaly::fillColor(color, table.values.data());
    table.expectGuards();
    return table;
}

GuardedTable<Real16> halfTable(const std::list<AlphaPoint> &alpha, const std::list<ColorPoint> &color)
{
    GuardedTable<Real16> table(65536);
    tessaly::fillOpacity(alpha, table.values.data());
    tessaly::fillColor(color, table.values.data());
    table.expectGuards();
    return table;
}

TEST(TransferTable, DefaultPointsAreTwoRamps)
{
    const tessaly::TransferPoints points = tessaly::defaultTransferPoints();
    ASSERT_EQ(points.alpha.size(), 2u);
    EXPECT_EQ(points.alpha.front().position, 0.0f);
    EXPECT_EQ(points.alpha.front().alpha, 0.0f);
    EXPECT_EQ(points.alpha.back().position, 1.0f);
    EXPECT_EQ(points.alpha.back().alpha, 1.0f);
    ASSERT_EQ(points.color.size(), 2u);
    EXPECT_EQ(points.color.front().position, 0.0f);
    EXPECT_EQ(points.color.front().red, 0.0f);
    EXPECT_EQ(points.color.front().green, 0.0f);
    EXPECT_EQ(points.color.front().blue, 0.0f);
    EXPECT_EQ(points.color.back().position, 1.0f);
    EXPECT_EQ(points.color.back().red, 1.0f);
    EXPECT_EQ(points.color.back().green, 1.0f);
    EXPECT_EQ(points.color.back().blue, 1.0f);
}

TEST(TransferTable, DefaultPointsGiveAGreyRampWhoseTopEntryIs254)
{
    const auto points = tessaly::defaultTransferPoints();
    const auto table = byteTable(points.alpha, points.color);
    for(std::size_t entry = 0; entry < 256; ++entry) {
        // Steps of 1/256 add up without rounding, so the ramp has a closed form.
        const auto expected = static_cast<float>(entry * 255 / 256);
        for(std::size_t channel = 0; channel < 4; ++channel)
            ASSERT_EQ(table.at(entry, channel), expected) << entry << ' ' << channel;
    }
    EXPECT_EQ(table.at(0, 0), 0.0f);
    EXPECT_EQ(table.at(255, 3), 254.0f);
}

TEST(TransferTable, DefaultPointsInHalfFloatsAreTheEntryOver65536)
{
    const auto points = tessaly::defaultTransferPoints();
    const auto table = halfTable(points.alpha, points.color);
    for(std::size_t entry = 0; entry < 65536; ++entry) {
        const float expected = Real16(static_cast<float>(entry) / 65536.0f);
        for(std::size_t channel = 0; channel < 4; ++channel)
            ASSERT_EQ(table.at(entry, channel), expected) << entry << ' ' << channel;
    }
}

TEST(TransferTable, OpacityThatEndsBelowOneBecomesConstant)
{
    const auto table =
        byteTable({{0.0f, 0.0f}, {0.5f, 1.0f}}, {{0.0f, 0.0f, 0.0f, 0.0f}, {0.5f, 1.0f, 0.5f, 0.25f}});
    for(std::size_t entry = 0; entry < 256; ++entry)
        ASSERT_EQ(table.at(entry, 3), 255.0f) << entry;
}

TEST(TransferTable, ColourThatEndsBelowOneFillsOnlyTheRest)
{
    const auto table =
        byteTable({{0.0f, 0.0f}, {0.5f, 1.0f}}, {{0.0f, 0.0f, 0.0f, 0.0f}, {0.5f, 1.0f, 0.5f, 0.25f}});
    for(std::size_t entry = 0; entry < 256; ++entry) {
        const bool rest = entry >= 128;
        ASSERT_EQ(table.at(entry, 0), rest ? 255.0f : static_cast<float>(entry * 255 / 128)) << entry;
        ASSERT_EQ(table.at(entry, 1), rest ? 127.0f : static_cast<float>(entry * 255 / 256)) << entry;
        ASSERT_EQ(table.at(entry, 2), rest ? 63.0f : static_cast<float>(entry * 255 / 512)) << entry;
    }
}

TEST(TransferTable, HalfFloatTablesHaveTheSameTwoEndings)
{
    const auto table =
        halfTable({{0.0f, 0.0f}, {0.5f, 1.0f}}, {{0.0f, 0.0f, 0.0f, 0.0f}, {0.5f, 1.0f, 0.5f, 0.25f}});
    for(std::size_t entry = 0; entry < 65536; ++entry) {
        ASSERT_EQ(table.at(entry, 3), 1.0f) << entry;
        const float red = entry >= 32768 ? 1.0f : static_cast<float>(entry) / 32768.0f;
        ASSERT_EQ(table.at(entry, 0), static_cast<float>(Real16(red))) << entry;
    }
}

TEST(TransferTable, EntriesBeforeTheFirstPointTakeItsValue)
{
    const auto table =
        byteTable({{0.25f, 0.2f}, {1.0f, 0.2f}}, {{0.25f, 0.4f, 0.6f, 0.8f}, {1.0f, 0.4f, 0.6f, 0.8f}});
    for(std::size_t entry = 0; entry < 64; ++entry) {
        EXPECT_EQ(table.at(entry, 0), 102.0f);
        EXPECT_EQ(table.at(entry, 1), 153.0f);
        EXPECT_EQ(table.at(entry, 2), 204.0f);
        EXPECT_EQ(table.at(entry, 3), 51.0f);
    }
}

TEST(TransferTable, EqualPositionsMakeAJumpWithoutEntries)
{
    const auto table =
        byteTable({{0.0f, 0.0f}, {0.5f, 0.0f}, {0.5f, 1.0f}, {1.0f, 1.0f}}, {{0.0f, 0.0f, 0.0f, 0.0f},
                                                                             {0.5f, 0.0f, 0.0f, 0.0f},
                                                                             {0.5f, 1.0f, 1.0f, 1.0f},
                                                                             {1.0f, 1.0f, 1.0f, 1.0f}});
    for(std::size_t entry = 0; entry < 256; ++entry)
        for(std::size_t channel = 0; channel < 4; ++channel)
            ASSERT_EQ(table.at(entry, channel), entry < 128 ? 0.0f : 255.0f) << entry;
}

TEST(TransferTable, APositionBetweenEntriesIsCutToTheLowerOne)
{
    // 0.999 * 256 is 255.7: the last index is 255, below the end, so the opacity becomes constant.
    const auto table =
        byteTable({{0.0f, 0.0f}, {0.999f, 1.0f}}, {{0.0f, 0.0f, 0.0f, 0.0f}, {0.999f, 1.0f, 1.0f, 1.0f}});
    EXPECT_EQ(table.at(0, 3), 255.0f);
    EXPECT_EQ(table.at(254, 0), 254.0f);
    EXPECT_EQ(table.at(255, 0), 255.0f);
}

TEST(TransferTable, PositionsOutsideTheTableNeverWriteOutsideIt)
{
    const std::vector<float> positions = {-1.0f,    -1e30f,    2.0f, 1e30f, nan,
                                          infinity, -infinity, 0.3f, 1.0f,  0.0f};
    for(float a : positions)
        for(float b : positions)
            for(float c : positions) {
                byteTable({{a, 0.1f}, {b, 0.5f}, {c, 0.9f}},
                          {{a, 0.1f, 0, 0}, {b, 0, 0.5f, 0}, {c, 0, 0, 0.9f}});
                GuardedTable<Real16> small(16);
                tessaly::fillOpacity({{a, 0.1f}, {b, 0.5f}, {c, 0.9f}}, small.values.data(), 16);
                tessaly::fillColor({{a, 0.1f, 0, 0}, {b, 0, 0.5f, 0}, {c, 0, 0, 0.9f}}, small.values.data(),
                                   16);
                small.expectGuards();
            }
}

TEST(TransferTable, DescendingPositionsGiveNoRamp)
{
    const auto table = byteTable({{1.0f, 0.4f}, {0.5f, 0.2f}, {1.0f, 0.2f}},
                                 {{1.0f, 0.4f, 0.4f, 0.4f}, {0.5f, 1.0f, 1.0f, 1.0f}});
    EXPECT_EQ(table.at(0, 3), 102.0f);
    EXPECT_EQ(table.at(127, 3), 102.0f);
    EXPECT_EQ(table.at(128, 3), 51.0f);
    EXPECT_EQ(table.at(127, 0), 102.0f);
    EXPECT_EQ(table.at(128, 0), 255.0f);
}

TEST(TransferTable, WithoutPointsTheChannelsAreZero)
{
    const auto table = byteTable({}, {});
    for(std::size_t i = 0; i < 1024; ++i)
        ASSERT_EQ(table.values[i], 0);
}

TEST(TransferTable, BytesAreCutAndWrapAround)
{
    EXPECT_EQ(tessaly::wrappedByte(0.0f), 0);
    EXPECT_EQ(tessaly::wrappedByte(1.0f), 255);
    EXPECT_EQ(tessaly::wrappedByte(0.5f), 127);
    EXPECT_EQ(tessaly::wrappedByte(2.0f), 254);        // 510
    EXPECT_EQ(tessaly::wrappedByte(-1.0f), 1);         // -255
    EXPECT_EQ(tessaly::wrappedByte(-0.5f), 256 - 127); // cut towards zero, not down
    EXPECT_EQ(tessaly::wrappedByte(-0.001f), 0);
    EXPECT_EQ(tessaly::wrappedByte(256.0f / 255.0f), 0);
    EXPECT_EQ(tessaly::wrappedByte(16777216.0f), 0); // 2^24 * 255
    EXPECT_EQ(tessaly::wrappedByte(16777215.0f), 1); // (2^24 - 1) * 255
    EXPECT_EQ(tessaly::wrappedByte(-16777215.0f), 255);
    EXPECT_EQ(tessaly::wrappedByte(std::numeric_limits<float>::max()), 0);
    EXPECT_EQ(tessaly::wrappedByte(infinity), 0);
    EXPECT_EQ(tessaly::wrappedByte(-infinity), 0);
    EXPECT_EQ(tessaly::wrappedByte(nan), 0);
}

/// The fill as told, entry by entry, in single precision.
std::vector<float> naiveChannel(const std::vector<std::pair<float, float>> &points, std::size_t count,
                                bool wholeRest)
{
    std::vector<float> channel(count, -1.0f);
    auto from = static_cast<std::size_t>(static_cast<float>(count) * points[0].first);
    float value = points[0].second;
    std::fill(channel.begin(), channel.begin() + static_cast<long>(from), value);
    for(std::size_t p = 1; p < points.size(); ++p) {
        const auto to = static_cast<std::size_t>(static_cast<float>(count) * points[p].first);
        float t = 0.0f;
        for(std::size_t i = from; i < to; ++i) {
            channel[i] = (1 - t) * value + t * points[p].second;
            t += 1.0f / static_cast<float>(to - from);
        }
        from = to;
        value = points[p].second;
    }
    if(from < count)
        std::fill(channel.begin() + (wholeRest ? 0 : static_cast<long>(from)), channel.end(), value);
    return channel;
}

TEST(TransferTable, RandomAscendingPointsAgreeWithTheNaiveFill)
{
    const unsigned seed = 4711;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    for(int round = 0; round < 40; ++round) {
        std::vector<float> positions(1 + random() % 6);
        for(float &position : positions)
            position = unit(random);
        std::sort(positions.begin(), positions.end());
        if(round % 2 == 0)
            positions.back() = 1.0f;

        std::vector<std::vector<std::pair<float, float>>> knots(4);
        std::list<AlphaPoint> alpha;
        std::list<ColorPoint> color;
        for(float position : positions) {
            for(auto &channel : knots)
                channel.emplace_back(position, unit(random));
            alpha.push_back({position, knots[3].back().second});
            color.push_back(
                {position, knots[0].back().second, knots[1].back().second, knots[2].back().second});
        }
        const auto bytes = byteTable(alpha, color);
        const auto halves = halfTable(alpha, color);
        for(std::size_t channel = 0; channel < 4; ++channel) {
            const auto inBytes = naiveChannel(knots[channel], 256, channel == 3);
            for(std::size_t i = 0; i < 256; ++i)
                ASSERT_EQ(bytes.at(i, channel), std::trunc(static_cast<double>(inBytes[i]) * 255.0))
                    << round << ' ' << i;
            const auto inHalves = naiveChannel(knots[channel], 65536, channel == 3);
            for(std::size_t i = 0; i < 65536; i += 7)
                ASSERT_EQ(halves.at(i, channel), static_cast<float>(Real16(inHalves[i])))
                    << round << ' ' << i;
        }
    }
}

tessaly::TransferPoints read(const std::string &text)
{
    std::istringstream stream(text);
    return tessaly::readTransferPoints(stream);
}

TEST(TransferReader, ReadsBothListsInTheirOrder)
{
    const auto points = read("3\n0 0.1  0.75 0.2\n0.5 0.3\n\t2 0 1 2 3\n1 0.5 0.25 0.125\n");
    ASSERT_EQ(points.alpha.size(), 3u);
    auto alpha = points.alpha.begin();
    EXPECT_EQ(alpha->position, 0.0f);
    EXPECT_EQ(alpha->alpha, 0.1f);
    ++alpha;
    EXPECT_EQ(alpha->position, 0.75f);
    EXPECT_EQ(alpha->alpha, 0.2f);
    ++alpha;
    EXPECT_EQ(alpha->position, 0.5f);
    EXPECT_EQ(alpha->alpha, 0.3f);
    ASSERT_EQ(points.color.size(), 2u);
    EXPECT_EQ(points.color.front().position, 0.0f);
    EXPECT_EQ(points.color.front().red, 1.0f);
    EXPECT_EQ(points.color.front().green, 2.0f);
    EXPECT_EQ(points.color.front().blue, 3.0f);
    EXPECT_EQ(points.color.back().position, 1.0f);
    EXPECT_EQ(points.color.back().red, 0.5f);
    EXPECT_EQ(points.color.back().green, 0.25f);
    EXPECT_EQ(points.color.back().blue, 0.125f);
}

void expectDefaultAlpha(const tessaly::TransferPoints &points)
{
    ASSERT_EQ(points.alpha.size(), 2u);
    EXPECT_EQ(points.alpha.front().alpha, 0.0f);
    EXPECT_EQ(points.alpha.back().position, 1.0f);
    EXPECT_EQ(points.alpha.back().alpha, 1.0f);
}

void expectDefaultColor(const tessaly::TransferPoints &points)
{
    ASSERT_EQ(points.color.size(), 2u);
    EXPECT_EQ(points.color.front().red, 0.0f);
    EXPECT_EQ(points.color.back().position, 1.0f);
    EXPECT_EQ(points.color.back().blue, 1.0f);
}

TEST(TransferReader, AMissingListBecomesTheDefaultOne)
{
    for(const char *text : {"", " \n", "words", "0", "0 0", "-4 -1", "99999999999999999999999"}) {
        SCOPED_TRACE(text);
        expectDefaultAlpha(read(text));
        expectDefaultColor(read(text));
    }

    const auto noColor = read("1 0.5 0.5");
    ASSERT_EQ(noColor.alpha.size(), 1u);
    EXPECT_EQ(noColor.alpha.front().alpha, 0.5f);
    expectDefaultColor(noColor);

    const auto noAlpha = read("0 1 0.5 0.25 0.5 0.75");
    expectDefaultAlpha(noAlpha);
    ASSERT_EQ(noAlpha.color.size(), 1u);
    EXPECT_EQ(noAlpha.color.front().blue, 0.75f);
}

TEST(TransferReader, ReadingEndsAtTheFirstBrokenNumber)
{
    const auto inAlpha = read("3 0 0.5 0.25 x 1 1 1 0 0.5 0.5 0.5");
    ASSERT_EQ(inAlpha.alpha.size(), 1u);
    EXPECT_EQ(inAlpha.alpha.front().alpha, 0.5f);
    expectDefaultColor(inAlpha);

    const auto inColor = read("1 0 1 2 0 0.5 0.5 0.5 1 1 1");
    ASSERT_EQ(inColor.color.size(), 1u);
    EXPECT_EQ(inColor.color.front().red, 0.5f);
}

TEST(TransferReader, AnAbsurdCountReadsOnlyWhatIsThere)
{
    const auto points = read("2000000000 0 0.25 1 0.75");
    ASSERT_EQ(points.alpha.size(), 2u);
    EXPECT_EQ(points.alpha.back().alpha, 0.75f);
    expectDefaultColor(points);
}

TEST(SummedOpacity, ZeroOpacityGivesZeros)
{
    const Bytes table(1024, 0);
    std::vector<float> sums(256, -1.0f);
    tessaly::sumOpacity(table.data(), 256, sums.data());
    EXPECT_EQ(sums, std::vector<float>(256, 0.0f));
}

TEST(SummedOpacity, FullOpacityGives65280AtTheEnd)
{
    Bytes table(1024, 0);
    for(std::size_t i = 0; i < 256; ++i)
        table[i * 4 + 3] = 255;
    std::vector<float> sums(256);
    tessaly::sumOpacity(table.data(), 256, sums.data());
    for(std::size_t i = 0; i < 256; ++i)
        ASSERT_EQ(sums[i], 255.0f * static_cast<float>(i + 1));
    EXPECT_EQ(sums[255], 65280.0f);
}

TEST(SummedOpacity, HalfFloatsAreSummedThroughAllRows)
{
    std::vector<Real16> table(65536 * 4, Real16(9.0f));
    for(std::size_t i = 0; i < 65536; ++i)
        table[i * 4 + 3] = Real16(i % 2 == 0 ? 0.5f : 0.25f);
    std::vector<float> sums(65536);
    tessaly::sumOpacity(table.data(), 65536, sums.data());
    for(std::size_t i = 0; i < 65536; ++i)
        ASSERT_EQ(sums[i], static_cast<float>(i / 2) * 0.75f + (i % 2 == 0 ? 0.5f : 0.75f)) << i;
}

TEST(IntervalMaxima, AgreesWithTheGreatestOpacityOfEachInterval)
{
    const unsigned seed = 99;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for(std::size_t width : {1u, 2u, 33u, 256u}) {
        Bytes table(width * 4);
        for(auto &byte : table)
            byte = static_cast<std::uint8_t>(random());
        Bytes maxima(width * width + 16, 0xab);
        tessaly::intervalMaxima(table.data(), width, maxima.data());
        for(std::size_t y = 0; y < width; ++y)
            for(std::size_t x = 0; x < width; ++x) {
                std::uint8_t expected = 0;
                for(std::size_t k = x; k <= y; ++k)
                    expected = std::max(expected, table[k * 4 + 3]);
                ASSERT_EQ(maxima[y * width + x], expected) << x << ' ' << y;
            }
        for(std::size_t i = width * width; i < maxima.size(); ++i)
            ASSERT_EQ(maxima[i], 0xab);
    }
}

} // namespace
