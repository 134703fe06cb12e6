#ifndef TESSALY_VIEW_HISTOGRAM_H
#define TESSALY_VIEW_HISTOGRAM_H

/// \file
/// How often each value occurs in a volume, and what follows from that.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace viewer
{

/// One count for each value that a voxel can have.
struct Histogram
{
    std::vector<std::uint64_t> counts; ///< 256 or 65536
    std::uint64_t total = 0;

    /// The lowest and the highest value that occurs; 0 without voxels.
    std::size_t lowest() const;
    std::size_t highest() const;
};

/// Counts `count` voxels of 8 bits. `voxels` may be null where `count` is 0.
Histogram histogramOf8(const std::uint8_t *voxels, std::size_t count);

/// Counts `count` voxels of 16 bits in the machine's byte order, two bytes each, at any alignment.
Histogram histogramOf16(const std::uint8_t *voxels, std::size_t count);

/// The smallest value from `from` on up to which at least the share `share` (0 to 1) of the voxels from
/// `from` on lies. Where none is that high, `from`.
std::size_t quantile(const Histogram &histogram, double share, std::size_t from = 0);

/// The value that divides background from object: both sides are as unlike as can be (N. Otsu, A threshold
/// selection method from gray-level histograms, 1979). Where that holds for a range of values, because none
/// of them occurs, it is the middle of the range. The thousandth part of the voxels with the highest values
/// counts as if it were darker, so that a few outliers decide nothing. With less than two values, the lowest
/// one. \return the highest value of the background; the object begins above
std::size_t backgroundThreshold(const Histogram &histogram);

} // namespace viewer

#endif
