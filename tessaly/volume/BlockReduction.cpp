#include "BlockReduction.h"

#include <algorithm>
#include <limits>
#include <vector>

// gcc vectorises loops of unknown length only at this level.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC optimize("O3", "no-tree-slp-vectorize")
#endif

// The loops are plain; on this processor family they are compiled once more for wider vectors, chosen at run
// time. What is always inlined takes over the instruction set of the function that it ends up in.
#define TESSALY_INLINE inline __attribute__((always_inline))
#if defined(__x86_64__)
#define TESSALY_WIDE 1
#else
#define TESSALY_WIDE 0
#endif

namespace tessaly
{

namespace
{

struct Least
{
    template <class Voxel>
    TESSALY_INLINE Voxel operator()(Voxel a, Voxel b) const
    {
        return a < b ? a : b;
    }
};

struct Greatest
{
    template <class Voxel>
    TESSALY_INLINE Voxel operator()(Voxel a, Voxel b) const
    {
        return a > b ? a : b;
    }
};

/// Merges Rows rows of the volume, one behind the other, into the lines of least and greatest values.
/// The number of rows is a constant, so that their values meet in registers.
template <std::size_t Rows, class Voxel>
TESSALY_INLINE void mergeSomeRows(const Voxel *first, std::size_t width, Voxel *__restrict lows,
                                  Voxel *__restrict highs)
{
    for(std::size_t x = 0; x < width; ++x) {
        Voxel low = lows[x];
        Voxel high = highs[x];
        for(std::size_t row = 0; row < Rows; ++row) {
            const Voxel voxel = first[row * width + x];
            low = Least()(low, voxel);
            high = Greatest()(high, voxel);
        }
        lows[x] = low;
        highs[x] = high;
    }
}

/// mergeSomeRows() for any number of rows; ten are those of a block of edge 8 and its neighbours.
template <class Voxel>
TESSALY_INLINE void mergeRows(const Voxel *first, std::size_t width, std::size_t rows, Voxel *__restrict lows,
                              Voxel *__restrict highs)
{
    for(; rows >= 10; rows -= 10, first += 10 * width)
        mergeSomeRows<10>(first, width, lows, highs);
    for(; rows >= 3; rows -= 3, first += 3 * width)
        mergeSomeRows<3>(first, width, lows, highs);
    for(; rows >= 1; rows -= 1, first += width)
        mergeSomeRows<1>(first, width, lows, highs);
}

/// Combines a line over a sliding window and keeps the result at the start of each block.
/// The window of a block begins one value before it and ends one behind.
template <class Voxel, class Combine>
class BlockWindow
{
public:
    BlockWindow(std::size_t width, std::size_t edge, Voxel neutral)
        : _width(width),
          _edge(edge),
          _neutral(neutral),
          _count((width + whole) / whole * whole),
          _line(_count + edge + 2, neutral),
          _other(_line)
    {
    }

    /// \param a, b two lines, combined value by value
    /// \param ranges where the first block's value goes; those of the others follow at every second place
    TESSALY_INLINE void operator()(const Voxel *a, const Voxel *b, std::size_t blocks, Voxel *ranges)
    {
        // Bytes may alias anything, members too, so the loops work on locals.
        const std::size_t width = _width;
        const std::size_t edge = _edge;
        const std::size_t count = _count;
        Voxel *__restrict line = _line.data() + 1;
        for(std::size_t x = 0; x < width; ++x)
            line[x] = Combine()(a[x], b[x]);
        _line.front() = _neutral;

        // The window grows by doubling; each pass leaves at x what lies in the window that begins there. What
        // lies behind the line is neutral before and after each pass.
        const std::size_t length = edge + 2;
        Voxel *from = _line.data();
        Voxel *to = _other.data();
        for(std::size_t done = 1; done < length;) {
            const std::size_t step = std::min(done, length - done);
            const Voxel *__restrict near = from;
            const Voxel *__restrict far = from + step;
            Voxel *__restrict grown = to;
            for(std::size_t x = 0; x < count; ++x)
                grown[x] = Combine()(near[x], far[x]);
            std::swap(from, to);
            done += step;
        }

        for(std::size_t block = 0; block < blocks; ++block)
            ranges[block * 2] = from[block * edge];
    }

private:
    /// Passes over so many values, or a multiple, leave nothing over for a slow end.
    static constexpr std::size_t whole = 64;

    std::size_t _width;
    std::size_t _edge;
    Voxel _neutral;
    std::size_t _count; ///< at least one value more than the width
    std::vector<Voxel> _line;
    std::vector<Voxel> _other;
};

/// For each row of blocks in one layer of them, a line of least and a line of greatest values over y and z.
template <class Voxel>
struct LayerLines
{
    explicit LayerLines(std::size_t size) : lows(size), highs(size)
    {
        clear();
    }

    void clear()
    {
        std::fill(lows.begin(), lows.end(), std::numeric_limits<Voxel>::max());
        std::fill(highs.begin(), highs.end(), Voxel(0));
    }

    std::vector<Voxel> lows;
    std::vector<Voxel> highs;
};

/// Asks for memory that is read soon: the rows of a block are walked side by side, which the processor does
/// not foresee.
template <class Voxel>
TESSALY_INLINE void prefetch(const Voxel *voxels, std::size_t count)
{
    for(std::size_t i = 0; i < count; i += 64 / sizeof(Voxel))
        __builtin_prefetch(voxels + i);
}

/// The volume as the reduction sees it.
template <class Voxel>
struct Source
{
    const Voxel *begin;
    const Voxel *end;
    std::size_t width;
    std::size_t height;
    std::size_t edge;
    std::size_t blockRows;
};

/// Merges a plane of voxels, of which each row of blocks takes in one row of voxels more on either side.
template <class Voxel>
TESSALY_INLINE void mergePlane(const Source<Voxel> &source, std::size_t z, LayerLines<Voxel> &lines)
{
    const std::size_t width = source.width;
    const Voxel *plane = source.begin + z * source.height * width;
    for(std::size_t by = 0; by < source.blockRows; ++by) {
        const std::size_t firstRow = by == 0 ? 0 : by * source.edge - 1;
        const std::size_t endRow = std::min(source.height, (by + 1) * source.edge + 1);
        // Two rows of blocks ahead, so each is asked for twice, which measures faster than once.
        const auto left = static_cast<std::size_t>(source.end - plane) - endRow * width;
        prefetch(plane + endRow * width, std::min(left, 2 * source.edge * width));
        mergeRows(plane + firstRow * width, width, endRow - firstRow, lines.lows.data() + by * width,
                  lines.highs.data() + by * width);
    }
}

template <class Voxel>
TESSALY_INLINE void reduce(const Voxel *voxels, const Sides &sides, std::uint32_t edge, Voxel *ranges)
{
    const Sides blocks = blockSides(sides, edge);
    if(voxelCount(blocks) == 0)
        return;
    const std::size_t width = sides[0];
    const Source<Voxel> source{voxels, voxels + voxelCount(sides), width, sides[1], edge, blocks[1]};

    BlockWindow<Voxel, Least> leastOf(width, edge, std::numeric_limits<Voxel>::max());
    BlockWindow<Voxel, Greatest> greatestOf(width, edge, Voxel(0));

    // The last plane of a layer of blocks and the first of the next are the seam: both layers take them in.
    // So a layer is the seam before it, the planes between and the seam behind it.
    LayerLines<Voxel> before(width * blocks[1]);
    LayerLines<Voxel> behind(width * blocks[1]);
    mergePlane(source, 0, before);
    for(std::size_t layer = 0; layer < blocks[2]; ++layer) {
        const std::size_t next = (layer + 1) * edge;
        for(std::size_t z = layer * edge + 1; z + 1 < next; ++z)
            mergePlane(source, z, before);
        behind.clear();
        mergePlane(source, next - 1, behind);
        if(next < sides[2])
            mergePlane(source, next, behind);

        for(std::size_t by = 0; by < blocks[1]; ++by) {
            const std::size_t line = by * width;
            Voxel *row = ranges + (layer * blocks[1] + by) * blocks[0] * 2;
            leastOf(before.lows.data() + line, behind.lows.data() + line, blocks[0], row);
            greatestOf(before.highs.data() + line, behind.highs.data() + line, blocks[0], row + 1);
        }
        std::swap(before, behind);
    }
}

#if TESSALY_WIDE
__attribute__((target("avx2"))) void reduceWide(const std::uint8_t *voxels, const Sides &sides,
                                                std::uint32_t edge, std::uint8_t *ranges)
{
    reduce(voxels, sides, edge, ranges);
}

__attribute__((target("avx2"))) void reduceWide(const std::uint16_t *voxels, const Sides &sides,
                                                std::uint32_t edge, std::uint16_t *ranges)
{
    reduce(voxels, sides, edge, ranges);
}
#endif

template <class Voxel>
void reduceBest(const Voxel *voxels, const Sides &sides, std::uint32_t edge, Voxel *ranges)
{
#if TESSALY_WIDE
    if(__builtin_cpu_supports("avx2")) {
        reduceWide(voxels, sides, edge, ranges);
        return;
    }
#endif
    reduce(voxels, sides, edge, ranges);
}

/// \param exact whether a block of differing values must also have no opacity at all up to its greatest value
template <class Voxel>
void judge(const Voxel *ranges, std::size_t blocks, const float *sums, std::size_t sumCount, bool exact,
           std::uint8_t *verdicts)
{
    constexpr std::uint8_t sampled = 255;
    constexpr std::uint8_t skipped = 0;
    if(sumCount == 0) {
        std::fill(verdicts, verdicts + blocks, sampled);
        return;
    }

    const auto sum = [&](std::size_t value) { return sums[std::min(value, sumCount - 1)]; };
    for(std::size_t block = 0; block < blocks; ++block) {
        const std::size_t low = ranges[block * 2];
        const std::size_t high = ranges[block * 2 + 1];
        if(low != high) {
            // The opacity of the lowest value itself is not part of the difference: meant.
            const float difference = sum(high) - sum(low);
            const bool empty = difference < 1e-6 && (!exact || sum(high) == 0.0f);
            verdicts[block] = empty ? skipped : sampled;
        }
        else if(high == 0) {
            // A block of zeros is always sampled: meant, whatever opacity the value 0 has.
            verdicts[block] = sampled;
        }
        else {
            const float difference = sum(high) - sum(high - 1);
            verdicts[block] = difference > 1e-4 ? sampled : skipped;
        }
    }
}

} // namespace

Sides blockSides(const Sides &sides, std::uint32_t edge)
{
    if(edge == 0)
        return {0, 0, 0};
    return {sides[0] / edge, sides[1] / edge, sides[2] / edge};
}

void reduceBlocks(const std::uint8_t *voxels, const Sides &sides, std::uint32_t edge, std::uint8_t *ranges)
{
    reduceBest(voxels, sides, edge, ranges);
}

void reduceBlocks(const std::uint16_t *voxels, const Sides &sides, std::uint32_t edge, std::uint16_t *ranges)
{
    reduceBest(voxels, sides, edge, ranges);
}

void judgeBlocks(const std::uint8_t *ranges, std::size_t blocks, const float *sums, std::size_t sumCount,
                 std::uint8_t *verdicts)
{
    judge(ranges, blocks, sums, sumCount, false, verdicts);
}

void judgeBlocks(const std::uint16_t *ranges, std::size_t blocks, const float *sums, std::size_t sumCount,
                 std::uint8_t *verdicts)
{
    judge(ranges, blocks, sums, sumCount, true, verdicts);
}

} // namespace tessaly
