/// \file
/// The encoder's portable form, and the choice between the forms.

#include "BlockEncoder.h"

#include <cstring>
#include <vector>

#include "BlockRows.h"

// gcc vectorises short loops only at this level.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC optimize("O3", "no-tree-slp-vectorize")
#endif

namespace tessaly
{

namespace
{

using std::size_t;
using std::int16_t;
using std::uint16_t;
using std::uint32_t;
using std::uint64_t;
using std::uint8_t;

constexpr size_t blockPixels = 16;

/// The pixels of a block, channel by channel, row by row.
struct Block
{
    uint8_t channels[4][blockPixels];
};

/// The end values of each channel, already moved inwards.
struct Ends
{
    uint8_t low[4];
    uint8_t high[4];
};

Block gather(const uint8_t *pixels, size_t stride)
{
    Block block;
    for(size_t y = 0; y < 4; ++y)
        for(size_t x = 0; x < 4; ++x)
            for(size_t channel = 0; channel < 4; ++channel)
                block.channels[channel][y * 4 + x] = pixels[y * stride + x * 4 + channel];
    return block;
}

Ends endsOf(const Block &block)
{
    Ends ends;
    for(size_t channel = 0; channel < 4; ++channel) {
        uint8_t low = 255;
        uint8_t high = 0;
        for(const uint8_t value : block.channels[channel]) {
            low = value < low ? value : low;
            high = value > high ? value : high;
        }
        const int inset = (high - low) >> 4;
        ends.low[channel] = uint8_t(low + inset);
        ends.high[channel] = uint8_t(high - inset);
    }
    return ends;
}

uint8_t *writeLittle(uint64_t value, size_t bytes, uint8_t *out)
{
    for(size_t i = 0; i < bytes; ++i)
        *out++ = uint8_t(value >> (8 * i));
    return out;
}

uint32_t packed565(const uint8_t *colour)
{
    return uint32_t(colour[0] >> 3) << 11 | uint32_t(colour[1] >> 2) << 5 | uint32_t(colour[2] >> 3);
}

/// What a decoder makes of the channel of a 5:6:5 colour.
int expanded(uint8_t value, size_t channel)
{
    return channel == 1 ? (value & 0xFC) | value >> 6 : (value & 0xF8) | value >> 5;
}

uint8_t *writeColours(const Block &block, const Ends &ends, uint8_t *out)
{
    int16_t distances[4][blockPixels] = {};
    for(size_t channel = 0; channel < 3; ++channel) {
        const int c0 = expanded(ends.high[channel], channel);
        const int c1 = expanded(ends.low[channel], channel);
        const int references[4] = {c0, c1, (2 * c0 + c1) / 3, (c0 + 2 * c1) / 3};
        for(size_t i = 0; i < 4; ++i) {
            const int16_t reference = int16_t(references[i]);
            for(size_t pixel = 0; pixel < blockPixels; ++pixel) {
                const int16_t difference = int16_t(block.channels[channel][pixel] - reference);
                distances[i][pixel] += difference < 0 ? int16_t(-difference) : difference;
            }
        }
    }

    uint16_t each[blockPixels];
    for(size_t pixel = 0; pixel < blockPixels; ++pixel) {
        const int16_t d0 = distances[0][pixel], d1 = distances[1][pixel];
        const int16_t d2 = distances[2][pixel], d3 = distances[3][pixel];
        const uint16_t bit0 = uint16_t((d2 > d3) & (d0 > d3));
        const uint16_t bit1 = uint16_t(((d1 > d2) & (d0 > d2)) | ((d1 > d3) & (d0 > d3)));
        each[pixel] = uint16_t(bit0 + bit1 + bit1);
    }
    uint32_t indices = 0;
    for(size_t pixel = blockPixels; pixel-- > 0;)
        indices = indices << 2 | each[pixel];
    out = writeLittle(packed565(ends.high), 2, out);
    out = writeLittle(packed565(ends.low), 2, out);
    return writeLittle(indices, 4, out);
}

uint8_t *writeAlphas(const Block &block, const Ends &ends, uint8_t *out)
{
    const int low = ends.low[3];
    const int high = ends.high[3];
    const int middle = (high - low) / 14;
    uint8_t above[blockPixels] = {};
    for(int step = 0; step < 7; ++step) {
        const uint8_t threshold = uint8_t((step * high + (7 - step) * low) / 7 + middle);
        for(size_t pixel = 0; pixel < blockPixels; ++pixel)
            above[pixel] += block.channels[3][pixel] > threshold;
    }

    // By the thresholds that the value lies above. Of a block of one alpha it lies above none, so all its
    // indices are 1.
    static constexpr uint8_t order[8] = {1, 7, 6, 5, 4, 3, 2, 0};
    uint64_t indices = 0;
    for(size_t pixel = 0; pixel < blockPixels; ++pixel)
        indices |= uint64_t(order[above[pixel]]) << (3 * pixel);
    *out++ = ends.high[3];
    *out++ = ends.low[3];
    return writeLittle(indices, 6, out);
}

void encodeRow(const BlockRow &row, BlockCode code)
{
#if TESSALY_BLOCK_LANES
    if(code == BlockCode::Avx512)
        encodeRowAvx512(row);
    else if(code == BlockCode::Avx2)
        encodeRowAvx2(row);
    else
#endif
        encodeRowPortable(row);
    static_cast<void>(code);
}

template <size_t Bytes, size_t Red, size_t Blue>
void widenColours(const uint8_t *__restrict pixels, size_t count, uint8_t *__restrict rgba)
{
    for(size_t i = 0; i < count; ++i) {
        rgba[i * 4] = pixels[i * Bytes + Red];
        rgba[i * 4 + 1] = pixels[i * Bytes + 1];
        rgba[i * 4 + 2] = pixels[i * Bytes + Blue];
        rgba[i * 4 + 3] = 255;
    }
}

} // namespace

void encodeRowPortable(const BlockRow &row)
{
    uint8_t *out = row.out;
    for(size_t i = 0; i < row.blocks; ++i) {
        const Block block = gather(row.pixels + i * 16, row.stride);
        const Ends ends = endsOf(block);
        if(row.format == BlockFormat::Dxt5)
            out = writeAlphas(block, ends, out);
        out = writeColours(block, ends, out);
    }
}

bool canRun(BlockCode code)
{
#if TESSALY_BLOCK_LANES
    if(code == BlockCode::Avx2)
        return __builtin_cpu_supports("avx2");
    if(code == BlockCode::Avx512)
        return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw");
#endif
    return code == BlockCode::Portable;
}

BlockCode bestBlockCode()
{
    for(const BlockCode code : {BlockCode::Avx512, BlockCode::Avx2})
        if(canRun(code))
            return code;
    return BlockCode::Portable;
}

size_t encodeBlocks(const uint8_t *pixels, size_t width, size_t height, PixelOrder order, BlockFormat format,
                    uint8_t *blocks, BlockCode code)
{
    if(width == 0)
        return 0;
    const size_t rowBytes = width / 4 * blockBytes(format);
    const size_t pixelBytes = order == PixelOrder::Rgb || order == PixelOrder::Bgr ? 3 : 4;
    // Other orders are brought to RGBA a row of blocks at a time, which stays in the cache.
    std::vector<uint8_t> rgba(order == PixelOrder::Rgba ? 0 : width * 16);
    const uint8_t *end = blocks;
    for(size_t y = 0; y + 4 <= height; y += 4) {
        const uint8_t *rows = pixels + y * width * pixelBytes;
        if(order != PixelOrder::Rgba) {
            widenPixels(rows, width * 4, order, rgba.data());
            rows = rgba.data();
        }
        uint8_t *out = blocks + y / 4 * rowBytes;
        encodeRow({rows, width * 4, width / 4, format, out}, code);
        end = out + rowBytes;
    }
    return size_t(end - blocks);
}

void widenPixels(const uint8_t *pixels, size_t count, PixelOrder order, uint8_t *rgba)
{
    switch(order) {
    case PixelOrder::Rgb:
        return widenColours<3, 0, 2>(pixels, count, rgba);
    case PixelOrder::Bgr:
        return widenColours<3, 2, 0>(pixels, count, rgba);
    case PixelOrder::Bgra:
        // Meant: the alpha of these sources does not reach the encoder.
        return widenColours<4, 2, 0>(pixels, count, rgba);
    case PixelOrder::Rgba:
        std::memcpy(rgba, pixels, count * 4);
    }
}

} // namespace tessaly
