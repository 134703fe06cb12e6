#ifndef TESTS_TESSALY_FOREGROUND_REFERENCEBLOCKS_H
#define TESTS_TESSALY_FOREGROUND_REFERENCEBLOCKS_H

/// \file
/// The block encoder and a decoder of the S3TC formats, step by step and pixel by pixel, to compare with.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace test
{

using Bytes = std::vector<std::uint8_t>;
/// 16 pixels of 4 channels, row by row.
using BlockPixels = std::array<std::array<std::uint8_t, 4>, 16>;

/// The channels of a 5:6:5 colour of which the lower bits are gone, brought back to 8 bits.
inline std::array<int, 3> referenceExpanded(const std::array<int, 4> &colour)
{
    const int red = colour[0] & 0xF8, green = colour[1] & 0xFC, blue = colour[2] & 0xF8;
    return {red | red >> 5, green | green >> 6, blue | blue >> 5};
}

/// Appends the bits of a number to a block, lowest byte first.
inline void appendLittle(Bytes &block, std::uint64_t value, int bytes)
{
    for(int i = 0; i < bytes; ++i)
        block.push_back(std::uint8_t(value >> 8 * i));
}

inline Bytes referenceEncoded(const BlockPixels &pixels, bool withAlpha)
{
    std::array<int, 4> least{255, 255, 255, 255}, greatest{0, 0, 0, 0};
    for(const auto &pixel : pixels)
        for(std::size_t channel = 0; channel < 4; ++channel) {
            least[channel] = std::min(least[channel], int(pixel[channel]));
            greatest[channel] = std::max(greatest[channel], int(pixel[channel]));
        }
    for(std::size_t channel = 0; channel < 4; ++channel) {
        const int inset = (greatest[channel] - least[channel]) >> 4;
        least[channel] = std::min(least[channel] + inset, 255);
        greatest[channel] = std::max(greatest[channel] - inset, 0);
    }

    Bytes block;
    if(withAlpha) {
        const int max = greatest[3], min = least[3];
        const int mid = (max - min) / 14;
        const std::uint8_t thresholds[7] = {
            std::uint8_t(min + mid),
            std::uint8_t((6 * max + 1 * min) / 7 + mid),
            std::uint8_t((5 * max + 2 * min) / 7 + mid),
            std::uint8_t((4 * max + 3 * min) / 7 + mid),
            std::uint8_t((3 * max + 4 * min) / 7 + mid),
            std::uint8_t((2 * max + 5 * min) / 7 + mid),
            std::uint8_t((1 * max + 6 * min) / 7 + mid),
        };
        std::uint64_t indices = 0;
        for(std::size_t pixel = 0; pixel < 16; ++pixel) {
            int index = 1;
            for(const std::uint8_t threshold : thresholds)
                if(pixels[pixel][3] <= threshold)
                    ++index;
            index &= 7;
            if(index < 2)
                index ^= 1;
            indices |= std::uint64_t(index) << 3 * pixel;
        }
        appendLittle(block, std::uint64_t(max), 1);
        appendLittle(block, std::uint64_t(min), 1);
        appendLittle(block, indices, 6);
    }

    for(const auto &end : {greatest, least})
        appendLittle(block, std::uint64_t((end[0] >> 3) << 11 | (end[1] >> 2) << 5 | end[2] >> 3), 2);
    const std::array<int, 3> c0 = referenceExpanded(greatest), c1 = referenceExpanded(least);
    std::array<int, 3> c2, c3;
    for(std::size_t channel = 0; channel < 3; ++channel) {
        c2[channel] = (2 * c0[channel] + c1[channel]) * 0x5556 >> 16;
        c3[channel] = (c0[channel] + 2 * c1[channel]) * 0x5556 >> 16;
    }
    std::uint32_t indices = 0;
    for(std::size_t pixel = 0; pixel < 16; ++pixel) {
        const auto distance = [&](const std::array<int, 3> &colour) {
            int sum = 0;
            for(std::size_t channel = 0; channel < 3; ++channel)
                sum += std::abs(int(pixels[pixel][channel]) - colour[channel]);
            return sum;
        };
        const int d0 = distance(c0), d1 = distance(c1), d2 = distance(c2), d3 = distance(c3);
        const bool bit0 = d2 > d3 && d0 > d3;
        const bool bit1 = (d1 > d2 && d0 > d2) || (d1 > d3 && d0 > d3);
        indices |= (std::uint32_t(bit0) | std::uint32_t(bit1) << 1) << 2 * pixel;
    }
    appendLittle(block, indices, 4);
    return block;
}

/// Decodes one block as the standard tells: three colours and black where the first colour is not the
/// greater, six alphas, 0 and 255 where the first alpha is not. A block without alphas is opaque.
inline BlockPixels referenceDecoded(const std::uint8_t *block, bool withAlpha)
{
    const auto bitsOf = [](const std::uint8_t *bytes, int count) {
        std::uint64_t value = 0;
        for(int i = 0; i < count; ++i)
            value |= std::uint64_t(bytes[i]) << 8 * i;
        return value;
    };
    BlockPixels pixels;
    const std::uint8_t *colours = withAlpha ? block + 8 : block;
    std::array<std::array<int, 3>, 4> palette{};
    std::array<int, 2> packed{};
    for(std::size_t end = 0; end < 2; ++end) {
        packed[end] = int(bitsOf(colours + 2 * end, 2));
        const int red = packed[end] >> 11, green = packed[end] >> 5 & 63, blue = packed[end] & 31;
        palette[end] = {red << 3 | red >> 2, green << 2 | green >> 4, blue << 3 | blue >> 2};
    }
    for(std::size_t channel = 0; channel < 3; ++channel) {
        const int a = palette[0][channel], b = palette[1][channel];
        const bool four = withAlpha || packed[0] > packed[1];
        palette[2][channel] = four ? (2 * a + b) / 3 : (a + b) / 2;
        palette[3][channel] = four ? (a + 2 * b) / 3 : 0;
    }
    const std::uint64_t indices = bitsOf(colours + 4, 4);
    for(std::size_t pixel = 0; pixel < 16; ++pixel) {
        const std::size_t index = indices >> 2 * pixel & 3;
        for(std::size_t channel = 0; channel < 3; ++channel)
            pixels[pixel][channel] = std::uint8_t(palette[index][channel]);
        pixels[pixel][3] = 255;
    }
    if(!withAlpha)
        return pixels;

    const int first = block[0], second = block[1];
    const std::uint64_t alphas = bitsOf(block + 2, 6);
    for(std::size_t pixel = 0; pixel < 16; ++pixel) {
        const int index = int(alphas >> 3 * pixel & 7);
        int alpha = index == 0 ? first : second;
        if(index > 1 && first > second)
            alpha = ((8 - index) * first + (index - 1) * second) / 7;
        else if(index > 1)
            alpha = index == 6 ? 0 : index == 7 ? 255 : ((6 - index) * first + (index - 1) * second) / 5;
        pixels[pixel][3] = std::uint8_t(alpha);
    }
    return pixels;
}

/// The pixels of a picture's block. \param pixels RGBA, rows of `width` pixels
inline BlockPixels blockAt(const std::uint8_t *pixels, std::size_t width, std::size_t left, std::size_t top)
{
    BlockPixels block;
    for(std::size_t pixel = 0; pixel < 16; ++pixel)
        for(std::size_t channel = 0; channel < 4; ++channel)
            block[pixel][channel] = pixels[((top + pixel / 4) * width + left + pixel % 4) * 4 + channel];
    return block;
}

/// A whole picture, blocks from left to right, row by row. \param pixels RGBA
inline Bytes referenceEncoded(const Bytes &pixels, std::size_t width, std::size_t height, bool withAlpha)
{
    Bytes blocks;
    blocks.reserve(width * height);
    for(std::size_t y = 0; y < height; y += 4)
        for(std::size_t x = 0; x < width; x += 4) {
            const Bytes block = referenceEncoded(blockAt(pixels.data(), width, x, y), withAlpha);
            blocks.insert(blocks.end(), block.begin(), block.end());
        }
    return blocks;
}

/// A whole picture as RGBA.
inline Bytes referenceDecoded(const Bytes &blocks, std::size_t width, std::size_t height, bool withAlpha)
{
    Bytes pixels(width * height * 4);
    const std::uint8_t *block = blocks.data();
    for(std::size_t y = 0; y < height; y += 4)
        for(std::size_t x = 0; x < width; x += 4, block += withAlpha ? 16 : 8) {
            const BlockPixels decoded = referenceDecoded(block, withAlpha);
            for(std::size_t pixel = 0; pixel < 16; ++pixel)
                for(std::size_t channel = 0; channel < 4; ++channel)
                    pixels[((y + pixel / 4) * width + x + pixel % 4) * 4 + channel] = decoded[pixel][channel];
        }
    return pixels;
}

} // namespace test

#endif
