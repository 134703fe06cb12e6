#ifndef TESSALY_BLOCKENCODER_H
#define TESSALY_BLOCKENCODER_H

/// \file
/// Encoding of RGBA pixels to S3TC blocks, fast and without any search, on plain arrays.

#include <cstddef>
#include <cstdint>

namespace tessaly
{

/// What a block of 4 x 4 pixels becomes.
enum class BlockFormat
{
    Dxt1, ///< 8 bytes: two colours in 5:6:5, the greater first, and 16 indices of 2 bits
    Dxt5  ///< 16 bytes: two alphas, the greater first, and 16 indices of 3 bits, then a block as of Dxt1
};

/// Which code encodes. All give the same bytes.
enum class BlockCode
{
    Portable, ///< plain loops; runs everywhere
    Avx2,     ///< two blocks at a time
    Avx512    ///< four blocks at a time
};

/// The order of a pixel's bytes in memory.
enum class PixelOrder
{
    Rgb,
    Rgba,
    Bgr,
    Bgra ///< its alpha is not used
};

/// Whether this machine, and this build, can run that code.
bool canRun(BlockCode code);

/// The fastest code that this machine can run.
BlockCode bestBlockCode();

/// \return bytes of a block
constexpr std::size_t blockBytes(BlockFormat format)
{
    return format == BlockFormat::Dxt1 ? 8 : 16;
}

/// Encodes a picture. Per block and channel the end values are the least and the greatest one, both moved
/// inwards by a sixteenth of their distance; each pixel then takes the nearest of the four colours (by the
/// sum of absolute differences, decided by five comparisons) and of the eight alphas (by thresholds half
/// way between them).
/// \param pixels of any alignment; rows lie one behind the other
/// \param width, height in pixels, multiples of 4; nothing is done where one is 0
/// \param order of the bytes; what has no alpha that counts is encoded with alpha 255
/// \param blocks room for blockBytes() per block, of any alignment, apart from the pixels. Blocks follow
/// each other from left to right, rows of blocks as the rows of pixels.
/// \param code one that canRun()
/// \return bytes written
std::size_t encodeBlocks(const std::uint8_t *pixels, std::size_t width, std::size_t height, PixelOrder order,
                         BlockFormat format, std::uint8_t *blocks, BlockCode code = bestBlockCode());

/// Writes RGBA pixels; alpha is 255 but for RGBA. \param rgba room for 4 * count bytes, apart from the pixels
void widenPixels(const std::uint8_t *pixels, std::size_t count, PixelOrder order, std::uint8_t *rgba);

} // namespace tessaly

#endif
