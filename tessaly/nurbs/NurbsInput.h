#ifndef TESSALY_NURBS_NURBSINPUT_H
#define TESSALY_NURBS_NURBSINPUT_H

/// \file
/// What GLU would read of control points, and whether it is there: GLU itself knows no array's end.

#include <string>
#include <vector>

#include <OpenSG/OSGGeoProperty.h>

namespace tessaly
{

/// Knots and order of one direction.
struct KnotRow
{
    const osg::Real32 *knots = nullptr;
    osg::UInt64 count = 0;
    osg::UInt32 order = 0;

    KnotRow(const std::vector<osg::Real32> &values, osg::UInt32 ofOrder)
        : knots(values.data()), count(values.size()), order(ofOrder)
    {
    }

    /// Whether GLU refuses the row, with an error of its own, ahead of any look at control points.
    bool isRefused() const { return order == 0 || count < 2 * osg::UInt64(order); }
    /// How many control points belong to the row; only for rows that are not refused.
    osg::UInt64 points() const { return count - order; }
};

/// Control points as floats, one point behind the other.
struct ControlValues
{
    const osg::Real32 *values = nullptr;
    osg::UInt64 points = 0;
    osg::UInt32 dimension = 0;  ///< floats from one point to the next
    osg::UInt32 components = 0; ///< floats that GLU reads of a point, which may be more than there are
};

/// The property's values, of which GLU is told to read `components` each. Without values if they are no floats.
ControlValues controlValues(const osg::GeoProperty &property, osg::UInt32 components);

// What is wrong, in a few words for the log, or "". What GLU reports by itself counts as right: orders that it does not know,
// too few knots, knots that fall.

std::string curveProblem(const KnotRow &row, const ControlValues &control);

/// `uDim` is the number of points from one row of the net to the next.
std::string surfaceProblem(const KnotRow &u, const KnotRow &v, osg::UInt32 uDim, const ControlValues &control);

/// For straight segments from point to point.
std::string polylineProblem(const ControlValues &control);

} // namespace tessaly

#endif
