/// \file
/// The encoder on vectors of 256 bits.

#include "BlockRows.h"

#if TESSALY_BLOCK_LANES

#include <immintrin.h>

// From here on the compiler may use these instructions. Nothing of the standard library may be instantiated
// below: the linker could take that copy for all.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC target("avx2")
#endif

namespace tessaly
{

namespace
{

/// The operations on 256 bits. Bytes are unsigned; what rearranges bytes does so within lanes of 16.
struct Operations
{
    using V = __m256i;
    static constexpr std::size_t blocks = 2;

    static V load(const std::uint8_t *p) { return _mm256_loadu_si256(reinterpret_cast<const V *>(p)); }
    static void store(std::uint8_t *p, V v) { _mm256_storeu_si256(reinterpret_cast<V *>(p), v); }
    /// The lower 8 bytes of each lane, one behind the other.
    static void storeHalves(std::uint8_t *p, V v)
    {
        const __m128i halves = _mm256_castsi256_si128(_mm256_permute4x64_epi64(v, 0x08));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(p), halves);
    }
    static V zero() { return _mm256_setzero_si256(); }
    /// The same 16 bytes in each lane.
    static V lanes(long long low, long long high) { return _mm256_set_epi64x(high, low, high, low); }

    static V least(V a, V b) { return _mm256_min_epu8(a, b); }
    static V greatest(V a, V b) { return _mm256_max_epu8(a, b); }
    static V add(V a, V b) { return _mm256_add_epi8(a, b); }
    static V sub(V a, V b) { return _mm256_sub_epi8(a, b); }
    static V addSaturated(V a, V b) { return _mm256_adds_epu8(a, b); }
    static V subSaturated(V a, V b) { return _mm256_subs_epu8(a, b); }
    static V addWords(V a, V b) { return _mm256_add_epi16(a, b); }
    static V product(V a, V b) { return _mm256_mullo_epi16(a, b); }
    /// The upper halves of the products of words.
    static V highProduct(V a, V b) { return _mm256_mulhi_epu16(a, b); }
    /// Sums of two neighbouring products of bytes, as words.
    static V weighedSums(V bytes, V weights) { return _mm256_maddubs_epi16(bytes, weights); }
    /// Sums of two neighbouring products of words, as double words.
    static V pairSums(V words, V weights) { return _mm256_madd_epi16(words, weights); }
    /// Adds 1 where a value is not above the limit.
    static V countUpTo(V count, V values, V limit)
    {
        return _mm256_sub_epi8(count, _mm256_cmpeq_epi8(_mm256_min_epu8(values, limit), values));
    }

    static V both(V a, V b) { return _mm256_and_si256(a, b); }
    static V either(V a, V b) { return _mm256_or_si256(a, b); }
    static V exclusive(V a, V b) { return _mm256_xor_si256(a, b); }
    /// The bits of b that a has not.
    static V without(V a, V b) { return _mm256_andnot_si256(a, b); }
    template <int Bits>
    static V rightWords(V v)
    {
        return _mm256_srli_epi16(v, Bits);
    }
    template <int Bits>
    static V rightDoubles(V v)
    {
        return _mm256_srli_epi32(v, Bits);
    }
    template <int Bits>
    static V leftDoubles(V v)
    {
        return _mm256_slli_epi32(v, Bits);
    }
    template <int Bits>
    static V rightQuads(V v)
    {
        return _mm256_srli_epi64(v, Bits);
    }

    static V pick(V bytes, V places) { return _mm256_shuffle_epi8(bytes, places); }
    template <int Places>
    static V order(V doubles)
    {
        return _mm256_shuffle_epi32(doubles, Places);
    }
    static V lowBytes(V a, V b) { return _mm256_unpacklo_epi8(a, b); }
    static V lowDoubles(V a, V b) { return _mm256_unpacklo_epi32(a, b); }
    static V highDoubles(V a, V b) { return _mm256_unpackhi_epi32(a, b); }
    static V lowQuads(V a, V b) { return _mm256_unpacklo_epi64(a, b); }
    static V highQuads(V a, V b) { return _mm256_unpackhi_epi64(a, b); }
    /// Words to bytes, saturated.
    static V bytesOf(V a, V b) { return _mm256_packus_epi16(a, b); }
};

#include "BlockLanes.inl"

} // namespace

void encodeRowAvx2(const BlockRow &row)
{
    encodeRowOfLanes(row);
}

} // namespace tessaly

#if defined(__clang__)
#pragma clang attribute pop
#endif

#endif
