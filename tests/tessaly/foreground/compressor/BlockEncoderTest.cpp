/// \file
/// Every form of the encoder against the reference, byte by byte.

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <random>
#include <string>

#include <foreground/BlockEncoder.h>

#include "ReferenceBlocks.h"

using namespace tessaly;
using test::BlockPixels;
using test::Bytes;

namespace
{

const BlockFormat bothFormats[] = {BlockFormat::Dxt1, BlockFormat::Dxt5};
const PixelOrder allOrders[] = {PixelOrder::Rgb, PixelOrder::Rgba, PixelOrder::Bgr, PixelOrder::Bgra};

std::vector<BlockCode> runnableCodes()
{
    std::vector<BlockCode> codes;
    for(const BlockCode code : {BlockCode::Portable, BlockCode::Avx2, BlockCode::Avx512})
        if(canRun(code))
            codes.push_back(code);
    return codes;
}

std::string nameOf(BlockCode code, BlockFormat format)
{
    const char *codes[] = {"portable", "AVX2", "AVX512"};
    return std::string(codes[int(code)]) + (format == BlockFormat::Dxt1 ? ", DXT1" : ", DXT5");
}

Bytes encoded(const Bytes &pixels, std::size_t width, std::size_t height, BlockFormat format, BlockCode code,
              PixelOrder order = PixelOrder::Rgba)
{
    Bytes blocks(width * height / 16 * blockBytes(format));
    EXPECT_EQ(encodeBlocks(pixels.data(), width, height, order, format, blocks.data(), code), blocks.size());
    return blocks;
}

/// A picture of one block, as often as to fill the widest lanes, one behind the other.
Bytes rowOf(const BlockPixels &block, std::size_t blocks)
{
    Bytes pixels(blocks * 64);
    for(std::size_t y = 0; y < 4; ++y)
        for(std::size_t x = 0; x < blocks * 4; ++x)
            for(std::size_t channel = 0; channel < 4; ++channel)
                pixels[(y * blocks * 4 + x) * 4 + channel] = block[y * 4 + x % 4][channel];
    return pixels;
}

/// Expects this block from every form, alone and in a row.
void expectBlock(const BlockPixels &pixels, BlockFormat format, const Bytes &expected)
{
    for(const BlockCode code : runnableCodes())
        for(const std::size_t blocks : {1, 7}) {
            SCOPED_TRACE(nameOf(code, format) + ", row of " + std::to_string(blocks));
            const Bytes all = encoded(rowOf(pixels, blocks), blocks * 4, 4, format, code);
            for(std::size_t i = 0; i < blocks; ++i)
                ASSERT_EQ(Bytes(all.begin() + long(i * expected.size()),
                                all.begin() + long((i + 1) * expected.size())),
                          expected);
        }
}

BlockPixels filledWith(const std::array<std::uint8_t, 4> &pixel)
{
    BlockPixels pixels;
    pixels.fill(pixel);
    return pixels;
}

/// Writes one pixel of a row of blocks after the other, block by block.
void putBlock(Bytes &picture, std::size_t width, std::size_t block, const BlockPixels &pixels)
{
    const std::size_t left = block % (width / 4) * 4;
    const std::size_t top = block / (width / 4) * 4;
    for(std::size_t pixel = 0; pixel < 16; ++pixel)
        std::memcpy(&picture[((top + pixel / 4) * width + left + pixel % 4) * 4], pixels[pixel].data(), 4);
}

/// Expects the bytes of the reference for a picture, from every form, in both formats.
void expectAsReference(const Bytes &pixels, std::size_t width, std::size_t height)
{
    for(const BlockFormat format : bothFormats) {
        const Bytes expected = test::referenceEncoded(pixels, width, height, format == BlockFormat::Dxt5);
        for(const BlockCode code : runnableCodes()) {
            const Bytes actual = encoded(pixels, width, height, format, code);
            const auto differ = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
            ASSERT_TRUE(actual == expected) << nameOf(code, format) << ", first at block "
                                            << std::size_t(differ.first - actual.begin()) / blockBytes(format)
                                            << " of width " << width / 4;
        }
    }
}

/// Kinds of blocks that the encoder tells apart.
BlockPixels randomBlock(std::mt19937 &random, unsigned kind)
{
    const auto below = [&](unsigned count) { return unsigned(random() % count); };
    std::array<unsigned, 4> low, high;
    for(std::size_t channel = 0; channel < 4; ++channel) {
        const unsigned a = below(256), b = below(256);
        low[channel] = kind == 0 ? 0 : std::min(a, b);
        high[channel] = kind == 0 ? 255 : std::max(a, b);
        // Ranges that are not moved inwards, and ranges of which less than a 5:6:5 step is left.
        if(kind == 2)
            high[channel] = std::min(low[channel] + below(16), 255u);
        if(kind == 3)
            high[channel] = std::min(low[channel] + below(4), 255u);
        // Some channels of one value.
        if(kind == 4 && below(2))
            high[channel] = low[channel];
    }
    BlockPixels pixels;
    for(auto &pixel : pixels) {
        const unsigned along = below(256);
        for(std::size_t channel = 0; channel < 4; ++channel) {
            const unsigned range = high[channel] - low[channel];
            unsigned value = low[channel] + below(range + 1);
            if(kind == 5) // the ends only
                value = below(2) ? low[channel] : high[channel];
            if(kind == 6) // a line through the colours
                value = low[channel] + range * along / 255;
            if(kind == 7) // a line across the box's diagonal
                value =
                    channel == 1 ? high[channel] - range * along / 255 : low[channel] + range * along / 255;
            pixel[channel] = std::uint8_t(value);
        }
    }
    return pixels;
}

TEST(BlockEncoder, GivesABlockOfOneColourEqualEndsAndOnlyIndicesOfZero)
{
    // 25 << 11 | 25 << 5 | 6
    expectBlock(filledWith({200, 100, 50, 77}), BlockFormat::Dxt1, {0x26, 0xCB, 0x26, 0xCB, 0, 0, 0, 0});
    expectBlock(filledWith({0, 0, 0, 0}), BlockFormat::Dxt1, {0, 0, 0, 0, 0, 0, 0, 0});
    expectBlock(filledWith({255, 255, 255, 255}), BlockFormat::Dxt1, {255, 255, 255, 255, 0, 0, 0, 0});
}

TEST(BlockEncoder, GivesABlockOfOneAlphaTheIndexOfTheLesserAlpha)
{
    // All seven thresholds are that alpha, so it is counted by each of them: index 1, in three bits.
    for(const int alpha : {0, 1, 77, 254, 255}) {
        const auto a = std::uint8_t(alpha);
        expectBlock(filledWith({200, 100, 50, a}), BlockFormat::Dxt5,
                    {a, a, 0x49, 0x92, 0x24, 0x49, 0x92, 0x24, 0x26, 0xCB, 0x26, 0xCB, 0, 0, 0, 0});
    }
}

TEST(BlockEncoder, MovesTheEndsInwardsByASixteenthAndWritesTheGreaterFirst)
{
    // Black and white become 15 and 240: 1, 3, 1 and 30, 60, 30. The upper half is white: index 0; black:
    // index 1.
    BlockPixels pixels = filledWith({0, 0, 0, 255});
    for(std::size_t i = 0; i < 8; ++i)
        pixels[i] = {255, 255, 255, 255};
    expectBlock(pixels, BlockFormat::Dxt1, {0x9E, 0xF7, 0x61, 0x08, 0x00, 0x00, 0x55, 0x55});

    // A range below 16 stays.
    pixels = filledWith({0, 0, 0, 255});
    pixels[0] = {15, 15, 15, 255};
    const Bytes block = test::referenceEncoded(pixels, false);
    EXPECT_EQ(Bytes(block.begin(), block.begin() + 4), (Bytes{0x61, 0x08, 0, 0}));
    expectBlock(pixels, BlockFormat::Dxt1, block);
}

TEST(BlockEncoder, OrdersTheIndicesOfARampOfColours)
{
    // Ends of 15 and 240 are decoded to 8 and 247, with 87 and 167 between; in green to 12 and 243, with 89
    // and 166. Half way, over the three channels, lie 48.5, 127.2 and 206.2.
    BlockPixels pixels;
    const std::uint8_t greys[16] = {0, 30, 48, 49, 70, 87, 126, 127, 128, 150, 167, 180, 205, 206, 207, 255};
    const std::uint32_t indices[16] = {1, 1, 1, 3, 3, 3, 3, 3, 2, 2, 2, 2, 2, 2, 0, 0};
    std::uint32_t packed = 0;
    for(std::size_t i = 0; i < 16; ++i) {
        pixels[i] = {greys[i], greys[i], greys[i], 255};
        packed |= indices[i] << 2 * i;
    }
    Bytes expected{0x9E, 0xF7, 0x61, 0x08};
    test::appendLittle(expected, packed, 4);
    EXPECT_EQ(test::referenceEncoded(pixels, false), expected) << "the reference itself";
    expectBlock(pixels, BlockFormat::Dxt1, expected);
}

TEST(BlockEncoder, OrdersTheIndicesOfARampOfAlphas)
{
    // Ends of 15 and 240 make thresholds of 31, 63, 95, 127, 159, 191 and 223.
    BlockPixels pixels = filledWith({8, 8, 8, 0});
    const std::uint8_t alphas[16] = {0, 31, 32, 63, 64, 95, 96, 127, 128, 159, 160, 191, 192, 223, 224, 255};
    const std::uint64_t order[8] = {1, 7, 6, 5, 4, 3, 2, 0};
    std::uint64_t packed = 0;
    for(std::size_t i = 0; i < 16; ++i) {
        pixels[i][3] = alphas[i];
        packed |= order[i / 2] << 3 * i;
    }
    Bytes expected{240, 15};
    test::appendLittle(expected, packed, 6);
    const Bytes colours = test::referenceEncoded(filledWith({8, 8, 8, 0}), false);
    expected.insert(expected.end(), colours.begin(), colours.end());
    expectBlock(pixels, BlockFormat::Dxt5, expected);
}

TEST(BlockEncoder, GivesTheBytesOfTheReferenceForEveryPairOfLeastAndGreatestAndAllValuesBetween)
{
    // Each channel and the alpha take the values between a pair of ends, 14 to a block; the channels run in
    // different directions, so that they disagree about the index.
    constexpr std::size_t width = 1024;
    std::vector<BlockPixels> blocks;
    const auto flush = [&] {
        while(blocks.size() % (width / 4) != 0)
            blocks.push_back(blocks.back());
        const std::size_t height = blocks.size() / (width / 4) * 4;
        Bytes picture(width * height * 4);
        for(std::size_t i = 0; i < blocks.size(); ++i)
            putBlock(picture, width, i, blocks[i]);
        blocks.clear();
        expectAsReference(picture, width, height);
    };
    for(int low = 0; low < 256; ++low) {
        for(int high = low; high < 256; ++high)
            for(int from = low; from <= high; from += 14) {
                BlockPixels pixels;
                for(int i = 0; i < 16; ++i) {
                    const int value = i == 0 ? low : i == 1 ? high : std::min(from + i - 2, high);
                    const int mirrored = low + high - value;
                    pixels[std::size_t(i)] = {
                        std::uint8_t(value), std::uint8_t(from % 3 == 0 ? mirrored : value),
                        std::uint8_t(from % 3 == 1 ? mirrored : low), std::uint8_t(value)};
                }
                blocks.push_back(pixels);
            }
        if(low % 16 == 15)
            flush();
        if(HasFatalFailure())
            return;
    }
}

TEST(BlockEncoder, GivesTheBytesOfTheReferenceForAMillionSeededBlocksOfAllKinds)
{
    constexpr unsigned seed = 20240817;
    constexpr std::size_t width = 1024, height = 1024;
    std::mt19937 random(seed);
    std::size_t count = 0;
    for(int picture = 0; picture < 16; ++picture) {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", picture " + std::to_string(picture));
        Bytes pixels(width * height * 4);
        for(std::size_t block = 0; block < width * height / 16; ++block, ++count)
            putBlock(pixels, width, block, randomBlock(random, unsigned(block % 8)));
        expectAsReference(pixels, width, height);
        if(HasFatalFailure())
            return;
    }
    EXPECT_GE(count, 1000000u);
}

TEST(BlockEncoder, AlwaysMakesBlocksThatAreReadWithFourColoursAndEightAlphas)
{
    constexpr unsigned seed = 99;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for(unsigned i = 0; i < 20000; ++i) {
        const Bytes pixels = rowOf(randomBlock(random, i % 8), 4);
        const Bytes block = encoded(pixels, 16, 4, BlockFormat::Dxt5, bestBlockCode());
        const int color0 = block[8] | block[9] << 8, color1 = block[10] | block[11] << 8;
        ASSERT_GE(block[0], block[1]);
        ASSERT_GE(color0, color1);
        if(color0 == color1) {
            ASSERT_EQ(block[12] | block[13] | block[14] | block[15], 0);
        }
    }
}

TEST(BlockEncoder, ReadsEveryOrderOfBytesFromAnyAddressAndWritesToAnyAddress)
{
    constexpr unsigned seed = 7;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const std::size_t sizes[][2] = {{4, 4}, {8, 4}, {12, 8}, {16, 4}, {20, 12}, {36, 8}, {4, 20}};
    for(const auto &size : sizes)
        for(const PixelOrder order : allOrders) {
            const std::size_t width = size[0], height = size[1];
            const std::size_t pixelBytes = order == PixelOrder::Rgba || order == PixelOrder::Bgra ? 4 : 3;
            Bytes source(width * height * pixelBytes);
            for(std::uint8_t &byte : source)
                byte = std::uint8_t(random());
            Bytes rgba;
            for(std::size_t i = 0; i < source.size(); i += pixelBytes) {
                const bool isSwapped = order == PixelOrder::Bgr || order == PixelOrder::Bgra;
                rgba.insert(rgba.end(),
                            {source[i + (isSwapped ? 2 : 0)], source[i + 1], source[i + (isSwapped ? 0 : 2)],
                             order == PixelOrder::Rgba ? source[i + 3] : std::uint8_t(255)});
            }
            for(const BlockFormat format : bothFormats) {
                const Bytes expected =
                    test::referenceEncoded(rgba, width, height, format == BlockFormat::Dxt5);
                for(const BlockCode code : runnableCodes())
                    for(std::size_t offset = 0; offset < 16; ++offset) {
                        Bytes in(source.size() + 16), out(expected.size() + 32, 0xA5);
                        std::copy(source.begin(), source.end(), in.begin() + long(offset));
                        const std::size_t at = 15 - offset;
                        EXPECT_EQ(encodeBlocks(in.data() + offset, width, height, order, format,
                                               out.data() + at, code),
                                  expected.size());
                        Bytes whole(expected.size() + 32, 0xA5);
                        std::copy(expected.begin(), expected.end(), whole.begin() + long(at));
                        ASSERT_EQ(out, whole) << nameOf(code, format) << ", order " << int(order) << ", "
                                              << width << " x " << height << ", offset " << offset;
                    }
            }
        }
}

TEST(BlockEncoder, WritesNothingForNoPixels)
{
    for(const BlockCode code : runnableCodes())
        for(const PixelOrder order : allOrders)
            for(const BlockFormat format : bothFormats) {
                EXPECT_EQ(encodeBlocks(nullptr, 0, 8, order, format, nullptr, code), 0u);
                EXPECT_EQ(encodeBlocks(nullptr, 8, 0, order, format, nullptr, code), 0u);
            }
}

/// Bytes that end where a page begins that can't be touched, and begin behind one.
class FencedBytes
{
public:
    explicit FencedBytes(std::size_t size) : _page(std::size_t(sysconf(_SC_PAGESIZE)))
    {
        _inner = (size + _page - 1) / _page * _page;
        _all = static_cast<std::uint8_t *>(
            mmap(nullptr, _inner + 2 * _page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        EXPECT_NE(static_cast<void *>(_all), MAP_FAILED);
        EXPECT_EQ(mprotect(_all + _page, _inner, PROT_READ | PROT_WRITE), 0);
        _size = size;
    }
    FencedBytes(const FencedBytes &) = delete;
    FencedBytes &operator=(const FencedBytes &) = delete;
    ~FencedBytes() { munmap(_all, _inner + 2 * _page); }

    std::uint8_t *first() { return _all + _page; }
    std::uint8_t *last() { return _all + _page + _inner - _size; }

private:
    std::size_t _page;
    std::size_t _inner = 0;
    std::size_t _size = 0;
    std::uint8_t *_all = nullptr;
};

TEST(BlockEncoder, TouchesNothingOutsideOfItsPixelsAndItsBlocks)
{
    for(const std::size_t width : {4, 8, 12, 16, 20, 28, 64})
        for(const std::size_t height : {4, 8})
            for(const PixelOrder order : allOrders)
                for(const BlockFormat format : bothFormats)
                    for(const BlockCode code : runnableCodes()) {
                        const std::size_t pixelBytes =
                            order == PixelOrder::Rgba || order == PixelOrder::Bgra ? 4 : 3;
                        FencedBytes in(width * height * pixelBytes);
                        FencedBytes out(width * height / 16 * blockBytes(format));
                        encodeBlocks(in.first(), width, height, order, format, out.first(), code);
                        encodeBlocks(in.last(), width, height, order, format, out.last(), code);
                    }
}

TEST(BlockEncoder, ChoosesACodeThatTheMachineCanRun)
{
    EXPECT_TRUE(canRun(BlockCode::Portable));
    EXPECT_TRUE(canRun(bestBlockCode()));
    if(canRun(BlockCode::Avx2)) {
        EXPECT_NE(bestBlockCode(), BlockCode::Portable);
    }
}

} // namespace
