/// \file
/// The encoder on vectors of 512 bits.

#include "BlockRows.h"

#if TESSALY_BLOCK_LANES

#include <immintrin.h>

// gcc 12 warns of the values that its own header leaves open where a mask takes in everything.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

// From here on the compiler may use these instructions. Nothing of the standard library may be instantiated
// below: the linker could take that copy for all.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx512f,avx512bw"))), apply_to = function)
#else
#pragma GCC target("avx512f,avx512bw")
#endif

namespace tessaly
{

namespace
{

/// The operations on 512 bits. Bytes are unsigned; what rearranges bytes does so within lanes of 16.
struct Operations
{
    using V = __m512i;
    static constexpr std::size_t blocks = 4;

    static V load(const std::uint8_t *p) { return _mm512_loadu_si512(p); }
    static void store(std::uint8_t *p, V v) { _mm512_storeu_si512(p, v); }
    /// The lower 8 bytes of each lane, one behind the other.
    static void storeHalves(std::uint8_t *p, V v)
    {
        const V order = _mm512_setr_epi64(0, 2, 4, 6, 0, 2, 4, 6);
        const __m256i halves = _mm512_castsi512_si256(_mm512_permutexvar_epi64(order, v));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(p), halves);
    }
    static V zero() { return _mm512_setzero_si512(); }
    /// The same 16 bytes in each lane.
    static V lanes(long long low, long long high)
    {
        return _mm512_set_epi64(high, low, high, low, high, low, high, low);
    }

    static V least(V a, V b) { return _mm512_min_epu8(a, b); }
    static V greatest(V a, V b) { return _mm512_max_epu8(a, b); }
    static V add(V a, V b) { return _mm512_add_epi8(a, b); }
    static V sub(V a, V b) { return _mm512_sub_epi8(a, b); }
    static V addSaturated(V a, V b) { return _mm512_adds_epu8(a, b); }
    static V subSaturated(V a, V b) { return _mm512_subs_epu8(a, b); }
    static V addWords(V a, V b) { return _mm512_add_epi16(a, b); }
    static V product(V a, V b) { return _mm512_mullo_epi16(a, b); }
    /// The upper halves of the products of words.
    static V highProduct(V a, V b) { return _mm512_mulhi_epu16(a, b); }
    /// Sums of two neighbouring products of bytes, as words.
    static V weighedSums(V bytes, V weights) { return _mm512_maddubs_epi16(bytes, weights); }
    /// Sums of two neighbouring products of words, as double words.
    static V pairSums(V words, V weights) { return _mm512_madd_epi16(words, weights); }
    /// Adds 1 where a value is not above the limit.
    static V countUpTo(V count, V values, V limit)
    {
        return _mm512_mask_add_epi8(count, _mm512_cmple_epu8_mask(values, limit), count, _mm512_set1_epi8(1));
    }

    static V both(V a, V b) { return _mm512_and_si512(a, b); }
    static V either(V a, V b) { return _mm512_or_si512(a, b); }
    static V exclusive(V a, V b) { return _mm512_xor_si512(a, b); }
    /// The bits of b that a has not.
    static V without(V a, V b) { return _mm512_andnot_si512(a, b); }
    template <int Bits>
    static V rightWords(V v)
    {
        return _mm512_srli_epi16(v, Bits);
    }
    template <int Bits>
    static V rightDoubles(V v)
    {
        return _mm512_srli_epi32(v, Bits);
    }
    template <int Bits>
    static V leftDoubles(V v)
    {
        return _mm512_slli_epi32(v, Bits);
    }
    template <int Bits>
    static V rightQuads(V v)
    {
        return _mm512_srli_epi64(v, Bits);
    }

    static V pick(V bytes, V places) { return _mm512_shuffle_epi8(bytes, places); }
    template <int Places>
    static V order(V doubles)
    {
        return _mm512_shuffle_epi32(doubles, _MM_PERM_ENUM(Places));
    }
    static V lowBytes(V a, V b) { return _mm512_unpacklo_epi8(a, b); }
    static V lowDoubles(V a, V b) { return _mm512_unpacklo_epi32(a, b); }
    static V highDoubles(V a, V b) { return _mm512_unpackhi_epi32(a, b); }
    static V lowQuads(V a, V b) { return _mm512_unpacklo_epi64(a, b); }
    static V highQuads(V a, V b) { return _mm512_unpackhi_epi64(a, b); }
    /// Words to bytes, saturated.
    static V bytesOf(V a, V b) { return _mm512_packus_epi16(a, b); }
};

#include "BlockLanes.inl"

} // namespace

void encodeRowAvx512(const BlockRow &row)
{
    encodeRowOfLanes(row);
}

} // namespace tessaly

#if defined(__clang__)
#pragma clang attribute pop
#endif

#endif
