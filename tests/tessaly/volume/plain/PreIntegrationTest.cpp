#include "volume/PreIntegration.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{

using osg::Real16;

std::vector<std::uint8_t> randomTransfer(unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<std::uint8_t> transfer(1024);
    for(auto &byte : transfer)
        byte = static_cast<std::uint8_t>(random());
    return transfer;
}

float half(double value)
{
    return Real16(static_cast<float>(value));
}

/// A source entry, with colour weighted by opacity.
double weighted(const std::vector<std::uint8_t> &transfer, std::size_t entry, std::size_t channel)
{
    const double alpha = transfer[entry * 4 + 3] / 255.0;
    return channel == 3 ? alpha : transfer[entry * 4 + channel] / 255.0 * alpha;
}

TEST(PreIntegration, TheDiagonalIsThePremultipliedSource)
{
    const auto transfer = randomTransfer(1);
    std::vector<Real16> table(65536 * 4);
    tessaly::averageIntervals(transfer.data(), 256, table.data());
    for(std::size_t k = 0; k < 256; ++k)
        for(std::size_t channel = 0; channel < 4; ++channel)
            ASSERT_EQ(static_cast<float>(table[(k * 256 + k) * 4 + channel]),
                      half(weighted(transfer, k, channel)));
}

TEST(PreIntegration, TheTableIsSymmetric)
{
    const auto transfer = randomTransfer(2);
    std::vector<Real16> table(65536 * 4);
    tessaly::averageIntervals(transfer.data(), 256, table.data());
    for(std::size_t row = 0; row < 256; ++row)
        for(std::size_t column = 0; column < row; ++column)
            for(std::size_t channel = 0; channel < 4; ++channel)
                ASSERT_EQ(static_cast<float>(table[(row * 256 + column) * 4 + channel]),
                          static_cast<float>(table[(column * 256 + row) * 4 + channel]));
}

TEST(PreIntegration, AConstantSourceAveragesToItself)
{
    std::vector<std::uint8_t> transfer;
    for(int k = 0; k < 256; ++k)
        transfer.insert(transfer.end(), {255, 51, 0, 102});
    std::vector<Real16> table(65536 * 4);
    tessaly::averageIntervals(transfer.data(), 256, table.data());
    for(std::size_t entry = 0; entry < 65536; ++entry) {
        // Half floats below 1 are at most 1/2048 apart.
        ASSERT_NEAR(static_cast<float>(table[entry * 4]), 0.4, 1.0 / 4096) << entry;
        ASSERT_NEAR(static_cast<float>(table[entry * 4 + 1]), 0.08, 1.0 / 4096) << entry;
        ASSERT_EQ(static_cast<float>(table[entry * 4 + 2]), 0.0f) << entry;
        ASSERT_NEAR(static_cast<float>(table[entry * 4 + 3]), 0.4, 1.0 / 4096) << entry;
    }
}

TEST(PreIntegration, AveragesAgreeWithTrapezoidsSummedPerInterval)
{
    const unsigned seed = 3;
    SCOPED_TRACE(seed);
    const auto transfer = randomTransfer(seed);
    std::vector<Real16> table(65536 * 4);
    tessaly::averageIntervals(transfer.data(), 256, table.data());
    for(std::size_t low = 0; low < 256; low += 5)
        for(std::size_t high = low + 1; high < 256; high += 3)
            for(std::size_t channel = 0; channel < 4; ++channel) {
                double sum = 0.0;
                for(std::size_t k = low; k < high; ++k)
                    sum += 0.5 * (weighted(transfer, k, channel) + weighted(transfer, k + 1, channel));
                // The two ways of summing may fall on neighbouring half floats.
                ASSERT_NEAR(static_cast<float>(table[(low * 256 + high) * 4 + channel]),
                            sum / static_cast<double>(high - low), 1.0 / 2048);
            }
}

TEST(PreIntegration, ANarrowSourceWritesOnlyItsOwnTable)
{
    const std::vector<std::uint8_t> transfer(4 * 4, 255);
    std::vector<Real16> table(4 * 4 * 4 + 8, Real16(5.0f));
    tessaly::averageIntervals(transfer.data(), 4, table.data());
    EXPECT_EQ(static_cast<float>(table[0]), 1.0f);
    for(std::size_t i = 64; i < table.size(); ++i)
        EXPECT_EQ(static_cast<float>(table[i]), 5.0f);
}

TEST(PreIntegration, FullOpacityIntegratesTo65535)
{
    const std::vector<Real16> transfer(65536 * 4, Real16(1.0f));
    std::vector<float> table(65536 * 4, -1.0f);
    tessaly::integrateEntries(transfer.data(), 65536, table.data());
    for(std::size_t k = 0; k < 65536; ++k)
        for(std::size_t channel = 0; channel < 4; ++channel)
            ASSERT_EQ(table[k * 4 + channel], static_cast<float>(k)) << k;
    EXPECT_EQ(table[65535 * 4 + 3], 65535.0f);
}

TEST(PreIntegration, ALinearOpacityIntegratesToItsSquare)
{
    // Opacity k / 65536 is rounded to half floats only from 2048 on, so the first entries have the closed
    // form.
    std::vector<Real16> transfer(65536 * 4, Real16(0.0f));
    for(std::size_t k = 0; k < 65536; ++k)
        transfer[k * 4 + 3] = Real16(static_cast<float>(k) / 65536.0f);
    std::vector<float> table(65536 * 4);
    tessaly::integrateEntries(transfer.data(), 65536, table.data());
    for(std::size_t k = 0; k <= 2048; ++k)
        ASSERT_EQ(table[k * 4 + 3], static_cast<float>(0.5 * static_cast<double>(k * k) / 65536.0)) << k;
}

TEST(PreIntegration, RunningIntegralsAgreeWithANaiveSumAndAreNotClipped)
{
    const unsigned seed = 5;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> value(-2.0f, 1.0f);
    std::vector<Real16> transfer(65536 * 4);
    for(auto &entry : transfer)
        entry = Real16(value(random));
    std::vector<float> table(65536 * 4);
    tessaly::integrateEntries(transfer.data(), 65536, table.data());

    const auto at = [&](std::size_t k, std::size_t channel) {
        const double alpha = static_cast<float>(transfer[k * 4 + 3]);
        return channel == 3 ? alpha : static_cast<float>(transfer[k * 4 + channel]) * alpha;
    };
    bool negative = false;
    for(std::size_t channel = 0; channel < 4; ++channel) {
        double sum = 0.0;
        EXPECT_EQ(table[channel], 0.0f);
        for(std::size_t k = 1; k < 65536; ++k) {
            sum += 0.5 * (at(k - 1, channel) + at(k, channel));
            ASSERT_EQ(table[k * 4 + channel], static_cast<float>(sum)) << k << ' ' << channel;
            negative = negative || sum < 0.0;
        }
    }
    EXPECT_TRUE(negative);
}

TEST(PreIntegration, TheDifferenceOfTwoIntegralsIsTheAverageOfTheInterval)
{
    // The same opacities through both tables: entry 256 * k of the long one stands for entry k of the short
    // one.
    std::vector<std::uint8_t> bytes(1024, 0);
    std::vector<Real16> halves(65536 * 4, Real16(0.0f));
    for(std::size_t k = 0; k < 65536; ++k) {
        const std::size_t alpha = k / 256 < 128 ? 0 : 255;
        bytes[k / 256 * 4 + 3] = static_cast<std::uint8_t>(alpha);
        halves[k * 4 + 3] = Real16(alpha == 0 ? 0.0f : 1.0f);
    }
    std::vector<Real16> averages(65536 * 4);
    std::vector<float> integrals(65536 * 4);
    tessaly::averageIntervals(bytes.data(), 256, averages.data());
    tessaly::integrateEntries(halves.data(), 65536, integrals.data());
    for(std::size_t low = 0; low < 255; low += 15)
        for(std::size_t high = low + 15; high < 256; high += 15) {
            const double difference = integrals[high * 256 * 4 + 3] - integrals[low * 256 * 4 + 3];
            // The step from 0 to 1 is 256 times as wide in the short table, which moves half an entry.
            ASSERT_NEAR(static_cast<float>(averages[(high * 256 + low) * 4 + 3]),
                        difference / static_cast<double>((high - low) * 256),
                        0.5 / static_cast<double>(high - low) + 1e-3);
        }
}

} // namespace
