#ifndef TESSALY_BLOCKROWS_H
#define TESSALY_BLOCKROWS_H

/// \file
/// The forms of the encoder, each of which does one row of blocks.

#include <cstddef>
#include <cstdint>

#include "BlockEncoder.h"

#if defined(__x86_64__)
#define TESSALY_BLOCK_LANES 1
#else
#define TESSALY_BLOCK_LANES 0
#endif

namespace tessaly
{

/// Four rows of RGBA pixels and what becomes of them.
struct BlockRow
{
    const std::uint8_t *pixels; ///< the first of 4 * blocks pixels
    std::size_t stride;         ///< bytes from row to row
    std::size_t blocks;
    BlockFormat format;
    std::uint8_t *out; ///< room for the blocks
};

void encodeRowPortable(const BlockRow &row);

#if TESSALY_BLOCK_LANES
/// A row that is too short for the lanes is done by encodeRowPortable().
void encodeRowAvx2(const BlockRow &row);
void encodeRowAvx512(const BlockRow &row);
#endif

} // namespace tessaly

#endif
