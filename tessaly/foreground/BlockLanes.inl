/// \file
/// The encoder on vectors, one block to each lane of 16 bytes. Included by one source per width of
/// vectors, behind its class of Operations and inside of its namespace, with the instruction set already
/// chosen.
///
/// The four distances of a pixel are never formed. Clamping a pixel's channel to the range of the two end
/// colours changes all four by the same amount, so only where it lies within that range counts: how far it
/// reaches into the three sections c1 to c3, c3 to c2 and c2 to c0. With U31, U23, U02 these reaches and
/// W31, W23, W02 the sections' widths, both summed over the channels,
///     d0 > d2  is  2 U02 < W02                  d1 > d3  is  2 U31 > W31
///     d0 > d3  is  2 (U02 + U23) < W02 + W23    d1 > d2  is  2 (U31 + U23) > W31 + W23
///     d2 > d3  is  2 U23 < W23
/// End colours are at most 239 apart, as they are moved inwards before they are rounded, so a section is at
/// most 80 wide and every sum that is compared fits into a byte, or saturates where that does not matter.

using V = Operations::V;

#define TESSALY_INLINE static inline __attribute__((always_inline))

/// The number whose bytes or words, lowest first, are these.
template <class... Parts>
constexpr long long quad(int first, Parts... rest)
{
    constexpr int count = 1 + int(sizeof...(rest));
    constexpr int bits = 64 / count;
    const int parts[] = {first, int(rest)...};
    std::uint64_t value = 0;
    for(int i = 0; i < count; ++i)
        value |= (std::uint64_t(parts[i]) & ((std::uint64_t(1) << bits) - 1)) << (bits * i);
    return static_cast<long long>(value);
}

/// The same 16 bytes in each lane.
TESSALY_INLINE V lanes(int b0, int b1, int b2, int b3, int b4, int b5, int b6, int b7, int b8, int b9,
                       int b10, int b11, int b12, int b13, int b14, int b15)
{
    return Operations::lanes(quad(b0, b1, b2, b3, b4, b5, b6, b7),
                             quad(b8, b9, b10, b11, b12, b13, b14, b15));
}

/// The same 8 words in each lane.
TESSALY_INLINE V lanes(int w0, int w1, int w2, int w3, int w4, int w5, int w6, int w7)
{
    return Operations::lanes(quad(w0, w1, w2, w3), quad(w4, w5, w6, w7));
}

/// The same byte, word or double word everywhere.
TESSALY_INLINE V bytes(int b)
{
    return Operations::lanes(quad(b, b, b, b, b, b, b, b), quad(b, b, b, b, b, b, b, b));
}
TESSALY_INLINE V words(int w)
{
    return Operations::lanes(quad(w, w, w, w), quad(w, w, w, w));
}
TESSALY_INLINE V doubles(unsigned d)
{
    return Operations::lanes(quad(int(d), int(d)), quad(int(d), int(d)));
}

/// One byte of each lane, in all of its bytes.
template <int Byte>
TESSALY_INLINE V spread(V v)
{
    return Operations::pick(v, bytes(Byte));
}

/// The pixels of the blocks, channel by channel, row by row.
struct Planes
{
    V red;
    V green;
    V blue;
    V alpha;
};

TESSALY_INLINE Planes planesOf(V row0, V row1, V row2, V row3)
{
    using O = Operations;
    const V byChannel = lanes(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    const V p0 = O::pick(row0, byChannel);
    const V p1 = O::pick(row1, byChannel);
    const V p2 = O::pick(row2, byChannel);
    const V p3 = O::pick(row3, byChannel);
    const V redGreen01 = O::lowDoubles(p0, p1);
    const V redGreen23 = O::lowDoubles(p2, p3);
    const V blueAlpha01 = O::highDoubles(p0, p1);
    const V blueAlpha23 = O::highDoubles(p2, p3);
    return {O::lowQuads(redGreen01, redGreen23), O::highQuads(redGreen01, redGreen23),
            O::lowQuads(blueAlpha01, blueAlpha23), O::highQuads(blueAlpha01, blueAlpha23)};
}

/// \return the lesser end colour twice, then the greater twice
TESSALY_INLINE V endColours(V row0, V row1, V row2, V row3)
{
    using O = Operations;
    const V least = O::least(O::least(row0, row1), O::least(row2, row3));
    const V greatest = O::greatest(O::greatest(row0, row1), O::greatest(row2, row3));
    // The greatest is sought as the least complement, so that both go the same way.
    const V inverse = O::exclusive(greatest, bytes(0xFF));
    V ends = O::least(O::lowQuads(least, inverse), O::highQuads(least, inverse));
    ends = O::least(ends, O::template order<0xB1>(ends));
    // The sum of least and inverse is the complement of their distance.
    const V near = O::add(ends, O::template order<0x4E>(ends));
    const V inset = O::without(O::template rightWords<4>(near), bytes(0x0F));
    return O::exclusive(O::add(ends, inset), Operations::lanes(0, -1));
}

/// How far a channel of the pixels reaches into each section between the reference colours.
struct Reach
{
    V in31;
    V in23;
    V in02;
};

/// \param sections per lane 4 x RGB0: the widths of the sections 31, 23, 02, then the lesser colour
template <int Channel>
TESSALY_INLINE Reach reachOf(V pixels, V sections)
{
    using O = Operations;
    const V wide31 = spread<Channel>(sections);
    const V wide23 = spread<4 + Channel>(sections);
    const V wide02 = spread<8 + Channel>(sections);
    const V above1 = O::subSaturated(pixels, spread<12 + Channel>(sections));
    const V above3 = O::subSaturated(above1, wide31);
    const V above2 = O::subSaturated(above3, wide23);
    return {O::least(above1, wide31), O::least(above3, wide23), O::least(above2, wide02)};
}

TESSALY_INLINE V sumOf(V a, V b, V c)
{
    return Operations::add(Operations::add(a, b), c);
}

/// \return per lane 8 bytes: the two colours and the indices; the other 8 bytes are 0
/// \param ends as of endColours()
TESSALY_INLINE V colourBlocks(V ends, const Planes &planes)
{
    using O = Operations;
    // Colours as 5:6:5, and expanded to bytes again.
    const V coarse = O::both(ends, doubles(0x00F8FCF8u));
    const V packed = O::either(
        O::either(O::both(O::template leftDoubles<8>(coarse), doubles(0xF800u)),
                  O::both(O::template rightDoubles<5>(coarse), doubles(0x07E0u))),
        O::template rightDoubles<19>(coarse));
    const V colours = O::either(
        coarse,
        O::either(O::both(O::template rightWords<5>(coarse), doubles(0x00070007u)),
                  O::both(O::template rightWords<6>(coarse), doubles(0x0300u))));

    // The sections' widths: c3 is a third, c2 are two thirds of the way up from c1, cut.
    const V range = O::subSaturated(O::template order<0x4E>(colours), colours);
    const V thirds = O::highProduct(O::lowBytes(range, O::zero()),
                                    lanes(0x5556, 0x5556, 0x5556, 0x5556, 0xAAAC, 0xAAAC, 0xAAAC, 0xAAAC));
    const V steps = O::lowQuads(O::bytesOf(thirds, thirds), O::lowDoubles(range, colours));
    const V before = O::pick(steps, lanes(-1, -1, -1, -1, 0, 1, 2, 3, 4, 5, 6, 7, -1, -1, -1, -1));
    const V sections = O::sub(steps, before);

    // Halves of the widths' sums, in words: rounded down those of 31, 31 + 23, rounded up those of 23, 02,
    // 02 + 23.
    const V ones = bytes(1);
    const V sums = O::pairSums(O::weighedSums(sections, ones), words(1));
    const V firsts = O::pick(sums, lanes(0, 1, 0, 1, 4, 5, 8, 9, 8, 9, -1, -1, -1, -1, -1, -1));
    const V seconds = O::pick(sums, lanes(-1, -1, 4, 5, -1, -1, -1, -1, 4, 5, -1, -1, -1, -1, -1, -1));
    const V halves =
        O::template rightWords<1>(O::addWords(O::addWords(firsts, seconds), lanes(0, 0, 1, 1, 1, 0, 0, 0)));

    const Reach red = reachOf<0>(planes.red, sections);
    const Reach green = reachOf<1>(planes.green, sections);
    const Reach blue = reachOf<2>(planes.blue, sections);
    const V in31 = sumOf(red.in31, green.in31, blue.in31);
    const V in23 = sumOf(red.in23, green.in23, blue.in23);
    const V in02 = sumOf(red.in02, green.in02, blue.in02);

    // Each is not 0 where the comparison it is named after holds.
    const V d1AboveD3 = O::subSaturated(in31, spread<0>(halves));
    const V d1AboveD2 = O::subSaturated(O::addSaturated(in31, in23), spread<2>(halves));
    const V d2AboveD3 = O::subSaturated(spread<4>(halves), in23);
    const V d0AboveD2 = O::subSaturated(spread<6>(halves), in02);
    const V d0AboveD3 = O::subSaturated(spread<8>(halves), O::addSaturated(in02, in23));

    const V bit0 = O::least(O::least(d2AboveD3, d0AboveD3), ones);
    const V bit1 = O::least(O::either(O::least(d1AboveD2, d0AboveD2), O::least(d1AboveD3, d0AboveD3)), ones);
    const V indices = O::add(bit0, O::add(bit1, bit1));

    // Four indices to a byte, which is the lowest of its double word.
    const V pairs = O::weighedSums(indices, doubles(0x04010401u));
    const V fours = O::pairSums(pairs, doubles(0x00100001u));
    return O::either(O::pick(packed, lanes(8, 9, 0, 1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1)),
                     O::pick(fours, lanes(-1, -1, -1, -1, 0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1)));
}

/// \return per lane 8 bytes: the two alphas and the indices; the other 8 bytes are 0
/// \param ends as of endColours()
TESSALY_INLINE V alphaBlocks(V ends, V alpha)
{
    using O = Operations;
    // In words: the range, in sevenths, cut, from the least alpha on, and half a seventh more. The
    // fourteenth and the sevenths are products with 65536 / 14 and 65536 / 7, rounded up, exact for these
    // numbers.
    const V range = O::pick(O::subSaturated(O::template order<0x4E>(ends), ends),
                            lanes(3, -1, 3, -1, 3, -1, 3, -1, 3, -1, 3, -1, 3, -1, 3, -1));
    const V low = O::pick(ends, lanes(3, -1, 3, -1, 3, -1, 3, -1, 3, -1, 3, -1, 3, -1, 3, -1));
    const V sevenths = O::highProduct(O::product(range, lanes(0, 6, 5, 4, 3, 2, 1, 0)), words(9363));
    const V middle = O::highProduct(range, words(4682));
    const V thresholds = O::addWords(O::addWords(sevenths, middle), low);

    V count = O::zero();
    count = O::countUpTo(count, alpha, spread<0>(thresholds));
    count = O::countUpTo(count, alpha, spread<2>(thresholds));
    count = O::countUpTo(count, alpha, spread<4>(thresholds));
    count = O::countUpTo(count, alpha, spread<6>(thresholds));
    count = O::countUpTo(count, alpha, spread<8>(thresholds));
    count = O::countUpTo(count, alpha, spread<10>(thresholds));
    count = O::countUpTo(count, alpha, spread<12>(thresholds));
    const V indices = O::pick(lanes(0, 2, 3, 4, 5, 6, 7, 1, 0, 0, 0, 0, 0, 0, 0, 0), count);

    // Eight indices to three bytes, which are the lowest of their quad word.
    const V pairs = O::weighedSums(indices, doubles(0x08010801u));
    const V fours = O::pairSums(pairs, doubles(0x00400001u));
    const V eights = O::either(fours, O::template rightQuads<20>(fours));
    return O::either(O::pick(ends, lanes(15, 3, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1)),
                     O::pick(eights, lanes(-1, -1, 0, 1, 2, 8, 9, 10, -1, -1, -1, -1, -1, -1, -1, -1)));
}

template <BlockFormat Format>
TESSALY_INLINE void encodeSome(const std::uint8_t *pixels, std::size_t stride, std::uint8_t *out)
{
    const V row0 = Operations::load(pixels);
    const V row1 = Operations::load(pixels + stride);
    const V row2 = Operations::load(pixels + 2 * stride);
    const V row3 = Operations::load(pixels + 3 * stride);
    const V ends = endColours(row0, row1, row2, row3);
    const Planes planes = planesOf(row0, row1, row2, row3);
    const V colours = colourBlocks(ends, planes);
    if(Format == BlockFormat::Dxt1)
        Operations::storeHalves(out, colours);
    else
        Operations::store(out, Operations::lowQuads(alphaBlocks(ends, planes.alpha), colours));
}

template <BlockFormat Format>
TESSALY_INLINE void encodeRow(const BlockRow &row)
{
    constexpr std::size_t atOnce = Operations::blocks;
    constexpr std::size_t bytes = blockBytes(Format);
    std::size_t block = 0;
    for(; block + atOnce <= row.blocks; block += atOnce)
        encodeSome<Format>(row.pixels + block * 16, row.stride, row.out + block * bytes);
    // What is left over is done together with blocks that are done already.
    if(block < row.blocks) {
        block = row.blocks - atOnce;
        encodeSome<Format>(row.pixels + block * 16, row.stride, row.out + block * bytes);
    }
}

TESSALY_INLINE void encodeRowOfLanes(const BlockRow &row)
{
    if(row.blocks < Operations::blocks)
        encodeRowPortable(row);
    else if(row.format == BlockFormat::Dxt1)
        encodeRow<BlockFormat::Dxt1>(row);
    else
        encodeRow<BlockFormat::Dxt5>(row);
}

#undef TESSALY_INLINE
