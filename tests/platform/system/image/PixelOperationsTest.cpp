#include <OpenSG/OSGPixelOperations.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include <OpenSG/OSGReal16.h>

#include "VolumeFiles.h"

using namespace osg;

namespace
{

template <class T>
std::vector<T> reformatted(std::vector<T> from, UInt32 fromFormat, UInt32 toFormat, Int32 type)
{
    const std::size_t count = from.size() / formatChannels(fromFormat);
    std::vector<T> to(count * formatChannels(toFormat));
    EXPECT_TRUE(reformatPixels(reinterpret_cast<const UInt8 *>(from.data()), fromFormat,
                               reinterpret_cast<UInt8 *>(to.data()), toFormat, type, count));
    return to;
}

template <class To, class From>
std::vector<To> converted(std::vector<From> from, Int32 fromType, Int32 toType)
{
    std::vector<To> to(from.size());
    EXPECT_TRUE(convertPixelType(reinterpret_cast<const UInt8 *>(from.data()), fromType,
                                 reinterpret_cast<UInt8 *>(to.data()), toType, from.size()));
    return to;
}

} // namespace

TEST(PixelOperations, FormatsAndTypesHaveTheirSizes)
{
    EXPECT_EQ(formatChannels(6409), 1u);
    EXPECT_EQ(formatChannels(6410), 2u);
    EXPECT_EQ(formatChannels(6407), 3u);
    EXPECT_EQ(formatChannels(32993), 4u);
    EXPECT_EQ(formatChannels(33777), 0u);
    EXPECT_EQ(formatChannels(7), 0u);
    EXPECT_EQ(formatBlockBytes(33776), 8u);
    EXPECT_EQ(formatBlockBytes(33779), 16u);
    EXPECT_EQ(typeBytes(5121), 1u);
    EXPECT_EQ(typeBytes(5131), 2u);
    EXPECT_EQ(typeBytes(5126), 4u);
    EXPECT_EQ(typeBytes(34042), 4u);
    EXPECT_EQ(typeBytes(0), 0u);
}

TEST(PixelOperations, ColoursBecomeTheirMean)
{
    EXPECT_EQ(reformatted<UInt8>({1, 2, 5, 255, 255, 255}, 6407, 6409, 5121), (Bytes{2, 255}));
    EXPECT_EQ(reformatted<UInt16>({65535, 65535, 65534, 7}, 6408, 6410, 5123),
              (std::vector<UInt16>{65534, 7}));
    EXPECT_EQ(reformatted<float>({0.25f, 0.5f, 0.75f}, 6407, 6409, 5126), (std::vector<float>{0.5f}));
}

TEST(PixelOperations, GreyBecomesThreeEqualColoursAndAFullAlpha)
{
    EXPECT_EQ(reformatted<UInt8>({9, 7}, 6409, 6408, 5121), (Bytes{9, 9, 9, 255, 7, 7, 7, 255}));
    EXPECT_EQ(reformatted<float>({0.5f}, 6409, 6410, 5126), (std::vector<float>{0.5f, 1.f}));
    EXPECT_EQ(reformatted<Real16>({Real16(0.5f)}, 6409, 6410, 5131)[1].bits(), 0x3C00);
    EXPECT_EQ(reformatted<UInt16>({3, 4}, 6410, 6408, 5123), (std::vector<UInt16>{3, 3, 3, 4}));
}

TEST(PixelOperations, TheOrderOfColoursIsTurned)
{
    EXPECT_EQ(reformatted<UInt8>({1, 2, 3, 4}, 6408, 32993, 5121), (Bytes{3, 2, 1, 4}));
    EXPECT_EQ(reformatted<UInt8>({1, 2, 3}, 32992, 6408, 5121), (Bytes{3, 2, 1, 255}));
}

TEST(PixelOperations, AlphaAloneIsTheAlphaOrElseTheGrey)
{
    EXPECT_EQ(reformatted<UInt8>({1, 2, 3, 4}, 6408, 6406, 5121), (Bytes{4}));
    EXPECT_EQ(reformatted<UInt8>({8}, 6409, 6406, 5121), (Bytes{8}));
    EXPECT_EQ(reformatted<UInt8>({3, 3, 6}, 6407, 6406, 5121), (Bytes{4}));
}

TEST(PixelOperations, BytesAndWordsStandForTheSameFractions)
{
    Bytes bytes(256);
    for(std::size_t i = 0; i < 256; ++i)
        bytes[i] = static_cast<UInt8>(i);
    const std::vector<UInt16> words = converted<UInt16>(bytes, 5121, 5123);
    for(std::size_t i = 0; i < 256; ++i)
        EXPECT_EQ(words[i], i * 257);
    EXPECT_EQ(converted<UInt8>(words, 5123, 5121), bytes);
    // 128 / 257 of the way to 1 is rounded down, 129 / 257 up.
    EXPECT_EQ(converted<UInt8>(std::vector<UInt16>{128, 129}, 5123, 5121), (Bytes{0, 1}));
    EXPECT_EQ(converted<UInt32>(Bytes{0, 255}, 5121, 5125), (std::vector<UInt32>{0, 4294967295u}));
}

TEST(PixelOperations, FloatsAreClampedOnTheirWayToIntegers)
{
    EXPECT_EQ(converted<UInt8>(std::vector<float>{-1.f, 0.f, 0.5f, 1.f, 7.f, NAN}, 5126, 5121),
              (Bytes{0, 0, 128, 255, 255, 0}));
    EXPECT_EQ(converted<Int16>(std::vector<float>{-2.f, -1.f, NAN, 1.f}, 5126, 5122),
              (std::vector<Int16>{-32767, -32767, 0, 32767}));
    EXPECT_EQ(converted<float>(std::vector<Real16>{Real16(2.5f)}, 5131, 5126), (std::vector<float>{2.5f}));
    EXPECT_EQ(converted<Real16>(Bytes{255}, 5121, 5131)[0].bits(), 0x3C00);
}

TEST(PixelOperations, ScalingTakesTheNearestPixelAsANaiveLoopDoes)
{
    const unsigned seed = 3;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for(int round = 0; round < 50; ++round)
    {
        const auto side = [&random] { return UInt32(1 + random() % 6); };
        const PixelSize from = {side(), side(), side()}, to = {side(), side(), side()};
        Bytes source(from.width * from.height * from.depth * 3);
        for(UInt8 &b : source)
            b = static_cast<UInt8>(random());
        Bytes target(to.width * to.height * to.depth * 3);
        scalePixels(source.data(), from, target.data(), to, 3);
        for(UInt32 z = 0; z < to.depth; ++z)
            for(UInt32 y = 0; y < to.height; ++y)
                for(UInt32 x = 0; x < to.width; ++x)
                    for(UInt32 c = 0; c < 3; ++c)
                    {
                        const UInt32 sx = x * from.width / to.width, sy = y * from.height / to.height,
                                     sz = z * from.depth / to.depth;
                        ASSERT_EQ(target[((z * to.height + y) * to.width + x) * 3 + c],
                                  source[((sz * from.height + sy) * from.width + sx) * 3 + c]);
                    }
    }
}

TEST(PixelOperations, HalvingTakesTheRoundedMean)
{
    Bytes from = {0, 10, 99, 1, 2, 99};
    Bytes to(1);
    ASSERT_TRUE(halvePixels(from.data(), {3, 2, 1}, to.data(), 1, 5121));
    EXPECT_EQ(to, (Bytes{3})); // (0 + 10 + 1 + 2) / 4 = 3.25, the odd column left out
    from = {1, 2, 3, 4, 5, 6, 7, 9};
    ASSERT_TRUE(halvePixels(from.data(), {2, 2, 2}, to.data(), 1, 5121));
    EXPECT_EQ(to, (Bytes{5})); // 37 / 8 = 4.625
    const std::vector<float> floats = {1.f, 2.f};
    float mean = 0.f;
    ASSERT_TRUE(halvePixels(reinterpret_cast<const UInt8 *>(floats.data()), {2, 1, 1},
                            reinterpret_cast<UInt8 *>(&mean), 1, 5126));
    EXPECT_EQ(mean, 1.5f);
    EXPECT_FALSE(halvePixels(from.data(), {2, 2, 2}, to.data(), 1, 34042));
}
