/// \file
/// How often each value occurs in a volume, and what follows from that.

#include "Histogram.h"

#include <algorithm>
#include <cstring>

namespace viewer
{

namespace
{

/// Several tables, because neighbours are often equal and would wait for each other's count.
constexpr std::size_t lanes = 4;

template <typename Voxel>
std::size_t voxelAt(const std::uint8_t *voxels, std::size_t i)
{
    Voxel voxel;
    std::memcpy(&voxel, voxels + i * sizeof(Voxel), sizeof(Voxel));
    return voxel;
}

template <typename Voxel>
Histogram count(const std::uint8_t *voxels, std::size_t number)
{
    const std::size_t values = std::size_t(1) << (8 * sizeof(Voxel));
    std::vector<std::uint64_t> tables(lanes * values);

    std::size_t i = 0;
    for (; i + lanes <= number; i += lanes)
    {
        for (std::size_t lane = 0; lane < lanes; ++lane)
        {
            ++tables[lane * values + voxelAt<Voxel>(voxels, i + lane)];
        }
    }
    for (; i < number; ++i)
    {
        ++tables[voxelAt<Voxel>(voxels, i)];
    }

    Histogram result;
    result.counts.assign(tables.begin(), tables.begin() + static_cast<std::ptrdiff_t>(values));
    for (std::size_t lane = 1; lane < lanes; ++lane)
    {
        for (std::size_t value = 0; value < values; ++value)
        {
            result.counts[value] += tables[lane * values + value];
        }
    }
    result.total = number;
    return result;
}

} // namespace

std::size_t Histogram::lowest() const
{
    for (std::size_t value = 0; value < counts.size(); ++value)
    {
        if (counts[value] != 0)
        {
            return value;
        }
    }
    return 0;
}

std::size_t Histogram::highest() const
{
    for (std::size_t value = counts.size(); value > 0; --value)
    {
        if (counts[value - 1] != 0)
        {
            return value - 1;
        }
    }
    return 0;
}

Histogram histogramOf8(const std::uint8_t *voxels, std::size_t number)
{
    return count<std::uint8_t>(voxels, number);
}

Histogram histogramOf16(const std::uint8_t *voxels, std::size_t number)
{
    return count<std::uint16_t>(voxels, number);
}

std::size_t quantile(const Histogram &histogram, double share, std::size_t from)
{
    std::uint64_t above = 0;
    for (std::size_t value = from; value < histogram.counts.size(); ++value)
    {
        above += histogram.counts[value];
    }
    if (above == 0)
    {
        return from;
    }

    const double wanted = std::clamp(share, 0.0, 1.0) * static_cast<double>(above);
    std::uint64_t sum = 0;
    std::size_t last = from;
    for (std::size_t value = from; value < histogram.counts.size(); ++value)
    {
        if (histogram.counts[value] == 0)
        {
            continue;
        }
        sum += histogram.counts[value];
        last = value;
        if (static_cast<double>(sum) >= wanted)
        {
            break;
        }
    }
    return last;
}

std::size_t backgroundThreshold(const Histogram &histogram)
{
    const std::size_t low = histogram.lowest();
    const std::size_t high = histogram.highest();
    if (low == high)
    {
        return low;
    }

    // Values above the cut count as the cut. A cut at the lowest value would leave nothing to divide.
    std::size_t cut = quantile(histogram, 0.999);
    if (cut == low)
    {
        cut = high;
    }
    double allCount = 0.0;
    double allSum = 0.0;
    for (std::size_t value = low; value <= high; ++value)
    {
        const double n = static_cast<double>(histogram.counts[value]);
        allCount += n;
        allSum += n * static_cast<double>(std::min(value, cut));
    }

    double best = -1.0;
    std::size_t first = low;
    std::size_t last = low;
    double count = 0.0;
    double sum = 0.0;
    for (std::size_t value = low; value < cut; ++value)
    {
        const double n = static_cast<double>(histogram.counts[value]);
        count += n;
        sum += n * static_cast<double>(value);
        const double rest = allCount - count;
        const double apart = sum / count - (allSum - sum) / rest;
        const double variance = count * rest * apart * apart;
        if (variance > best)
        {
            best = variance;
            first = value;
            last = value;
        }
        else if (n == 0.0 && last + 1 == value)
        {
            last = value;
        }
    }
    return (first + last) / 2;
}

} // namespace viewer
