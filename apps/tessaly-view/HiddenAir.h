#ifndef VIEWER_HIDDENAIR_H
#define VIEWER_HIDDENAIR_H

/// \file
/// Lets rays skip the air of an 8-bit scan.
///
/// The library always samples a block of voxels that are all 0, whatever the transfer function says, so the
/// air around a head, which most scans store as 0, costs as much as the head. Air of value 1 is skipped where
/// the function hides it. Raised by one, it looks the same: a voxel of value 0 or 1 takes no part in the
/// picture, only in the slope of the voxels beside it.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace viewer
{

/// Whether a table of 256 RGBA entries hides the values 0 and 1 and those that lie between the two.
bool hidesAir(const std::vector<std::uint8_t> &table);

/// Raises voxels of value 0 to 1.
void liftAir(std::uint8_t *voxels, std::size_t count);

} // namespace viewer

#endif
