#ifndef TESSALY_VIEW_TRANSFEREDIT_H
#define TESSALY_VIEW_TRANSFEREDIT_H

/// \file
/// A transfer function under the mouse: which point is meant, and what becomes of the list.

#include "TransferPoints.h"

#include <cstddef>
#include <optional>

namespace viewer
{

/// Opens a list for editing: it begins at position 0 and ends at 1, and points stay in order. What was drawn
/// before is drawn behind, too. Other operations take lists that went through this.
void makeEditable(TransferPoints &points);

/// The opacity point next to a place, if it is within the radii in position and opacity; the later of two.
std::optional<std::size_t> opacityPointAt(const TransferPoints &points, float position, float opacity,
                                          float positionRadius, float opacityRadius);
/// The colour point next to a position, if it is within the radius.
std::optional<std::size_t> colorPointAt(const TransferPoints &points, float position, float radius);

/// Add a point, of the colour that the list has there, and give its index. Neither is ahead of the first nor
/// behind the last.
std::size_t addOpacityPoint(TransferPoints &points, float position, float opacity);
std::size_t addColorPoint(TransferPoints &points, float position);

/// Move a point; it stays between its neighbours, the first at 0 and the last at 1.
void moveOpacityPoint(TransferPoints &points, std::size_t index, float position, float opacity);
void moveColorPoint(TransferPoints &points, std::size_t index, float position);

/// Remove a point; the first and the last stay. \return whether it went
bool removeOpacityPoint(TransferPoints &points, std::size_t index);
bool removeColorPoint(TransferPoints &points, std::size_t index);

} // namespace viewer

#endif
