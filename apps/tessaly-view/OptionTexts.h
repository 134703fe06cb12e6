#ifndef TESSALY_VIEW_OPTIONTEXTS_H
#define TESSALY_VIEW_OPTIONTEXTS_H

/// \file
/// Values of options as texts, and back.

#include "Geometry.h"
#include "TransferPoints.h"

#include <string>
#include <vector>

namespace viewer
{

/// The shortest text that is read as the same number.
std::string numberText(double value);
std::string numberText(float value);

/// "x,y,z"
std::string tripleText(const Vec3 &values);

/// "position,opacity,position,opacity,..."
std::string opacityPointsText(const std::vector<OpacityPoint> &points);
/// "position,red,green,blue,..."
std::string colorPointsText(const std::vector<ColorPoint> &points);

/// Read such a list: at least one point, all numbers 0 to 1, positions that don't descend. What is wrong,
/// without the option's name, or "".
std::string opacityPointsFrom(const std::string &text, std::vector<OpacityPoint> &points);
std::string colorPointsFrom(const std::string &text, std::vector<ColorPoint> &points);

} // namespace viewer

#endif
