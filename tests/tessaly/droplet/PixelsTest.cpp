/// \file
/// The bytes of splat and noise, the inverse and the sizes.

#include "droplet/DropletPixels.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace
{

std::vector<std::uint8_t> splatOf(float angle)
{
    std::vector<std::uint8_t> bytes(128 * 128 * 3, 77);
    EXPECT_TRUE(tessaly::fillSplat(angle, bytes.data()));
    return bytes;
}

int heightAt(const std::vector<std::uint8_t> &bytes, int x, int y)
{
    return bytes[std::size_t((y * 128 + x) * 3 + 2)];
}

} // namespace

TEST(DropletSplat, IsHalfABallAtTheRightAngle)
{
    const std::vector<std::uint8_t> bytes = splatOf(1.570796f);
    EXPECT_EQ(heightAt(bytes, 64, 64), 254);
    EXPECT_EQ(heightAt(bytes, 63, 63), 254);
    // Close to 0 at the rim: the middle of the last pixel lies at 127/128.
    EXPECT_LT(heightAt(bytes, 127, 64), 255 / 7);
    for(int y = 0; y < 128; ++y)
        for(int x = 0; x < 128; ++x)
        {
            const double u = (x + 0.5) / 64 - 1, v = (y + 0.5) / 64 - 1;
            const double square = 1 - u * u - v * v;
            // c is -3.3e-7 here, not 0: that is less than a hundredth of a byte.
            const double ball = square > 0 ? 255 * std::sqrt(square) : 0;
            EXPECT_LE(heightAt(bytes, x, y), ball);
            EXPECT_GE(heightAt(bytes, x, y), std::floor(ball - 0.01)) << x << ", " << y;
            EXPECT_EQ(bytes[std::size_t((y * 128 + x) * 3)], 0);
            EXPECT_EQ(bytes[std::size_t((y * 128 + x) * 3 + 1)], 0);
        }
}

TEST(DropletSplat, IsTheCapOfItsContactAngle)
{
    for(const float angle : {0.1f, 0.5f, 1.0f, 1.3f, 2.0f, 89.999f})
    {
        const std::vector<std::uint8_t> bytes = splatOf(angle);
        // A ball of radius 1 / sin, cut so that its rim is the unit circle.
        const double sine = std::abs(std::sin(double(angle))), cosine = std::abs(std::cos(double(angle)));
        for(int y = 0; y < 128; ++y)
            for(int x = 0; x < 128; ++x)
            {
                const double u = (x + 0.5) / 64 - 1, v = (y + 0.5) / 64 - 1;
                const double r2 = u * u + v * v;
                const double cap = r2 < 1 ? std::sqrt(1 / (sine * sine) - r2) - cosine / sine : 0;
                EXPECT_NEAR(heightAt(bytes, x, y) + 0.5, cap * 255, 0.501)
                    << angle << " at " << x << ", " << y;
            }
    }
    // Flat at small angles, with a low middle: the height is the tangent of half the angle.
    EXPECT_EQ(heightAt(splatOf(0.5f), 64, 64), int(255 * std::tan(0.25) - 0.02));
}

TEST(DropletSplat, IsEmptyForAnAngleWithoutACap)
{
    for(const float angle :
        {0.0f, 1e-12f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()})
    {
        std::vector<std::uint8_t> bytes(128 * 128 * 3, 77);
        EXPECT_FALSE(tessaly::fillSplat(angle, bytes.data()));
        EXPECT_EQ(bytes, std::vector<std::uint8_t>(128 * 128 * 3, 0));
    }
}

TEST(DropletNoise, IsTheLowFifteenBitsOfRand)
{
    std::vector<std::uint8_t> bytes(3000);
    std::srand(5);
    tessaly::fillNoise(bytes.data(), bytes.size());
    std::srand(5);
    int largest = 0;
    for(const std::uint8_t byte : bytes)
    {
        const int value = std::rand() % 32768;
        // Truncated; in whole numbers, so that no rounding is shared.
        EXPECT_NEAR(byte, value * 255 / 32767, value * 255 % 32767 == 0 ? 1 : 0);
        largest = std::max(largest, int(byte));
    }
    EXPECT_GE(largest, 250);
}

TEST(DropletInverse, TimesItsMatrixIsTheIdentity)
{
    std::mt19937 random(1234);
    std::uniform_real_distribution<float> values(-2.0f, 2.0f);
    for(int i = 0; i < 200; ++i)
    {
        SCOPED_TRACE("seed 1234, matrix " + std::to_string(i));
        float m[16];
        for(float &value : m)
            value = values(random);
        const auto inverse = tessaly::inverseOrIdentity(m);
        float largest = 1.0f;
        for(const float value : inverse)
            largest = std::max(largest, std::abs(value));
        for(int row = 0; row < 4; ++row)
            for(int column = 0; column < 4; ++column)
            {
                double sum = 0;
                for(int k = 0; k < 4; ++k)
                    sum += double(m[row * 4 + k]) * double(inverse[std::size_t(k * 4 + column)]);
                EXPECT_NEAR(sum, row == column ? 1.0 : 0.0, 1e-6 * double(largest));
            }
    }
}

TEST(DropletInverse, OfASingularMatrixIsTheIdentity)
{
    const std::array<float, 16> identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const float flat[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 3, 4, 5, 1};
    EXPECT_EQ(tessaly::inverseOrIdentity(flat), identity);
    // The limit is at a determinant of 1e-30.
    float tiny[16] = {0.9e-10f, 0, 0, 0, 0, 1e-10f, 0, 0, 0, 0, 1e-10f, 0, 0, 0, 0, 1};
    EXPECT_EQ(tessaly::inverseOrIdentity(tiny), identity);
    tiny[0] = 1.1e-10f;
    EXPECT_FLOAT_EQ(tessaly::inverseOrIdentity(tiny)[0], 1 / 1.1e-10f);
    float broken[16] = {std::numeric_limits<float>::quiet_NaN(), 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    EXPECT_EQ(tessaly::inverseOrIdentity(broken), identity);
}

TEST(DropletSizes, AreTruncatedAndKeptInRange)
{
    EXPECT_EQ(tessaly::cellsOf(256.0f), 256);
    EXPECT_EQ(tessaly::cellsOf(31.99f), 31);
    EXPECT_EQ(tessaly::cellsOf(0.99f), 0);
    EXPECT_EQ(tessaly::cellsOf(-3.7f), -3);
    EXPECT_EQ(tessaly::cellsOf(std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(tessaly::cellsOf(1e30f), std::numeric_limits<int>::max());
    EXPECT_EQ(tessaly::cellsOf(-1e30f), std::numeric_limits<int>::min());
    EXPECT_EQ(tessaly::narrowed(0.4), 0.4f);
    EXPECT_EQ(tessaly::narrowed(1e300), std::numeric_limits<float>::max());
    EXPECT_TRUE(std::isnan(tessaly::narrowed(std::numeric_limits<double>::quiet_NaN())));
}
