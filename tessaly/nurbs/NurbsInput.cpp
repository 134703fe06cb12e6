#include "NurbsInput.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <OpenSG/OSGGL.h>

using namespace osg;

namespace tessaly
{

namespace
{

/// The largest number that GLU takes for a count or a stride.
constexpr UInt64 largestInt = UInt64(std::numeric_limits<Int32>::max());

bool areFinite(const Real32 *values, UInt64 count)
{
    return std::all_of(values, values + count, [](Real32 value) { return std::isfinite(value); });
}

/// Behind the last float that GLU reads if point `last` is the last one that it looks at.
UInt64 floatsUpTo(UInt64 last, const ControlValues &control)
{
    return last * control.dimension + control.components;
}

std::string valuesProblem(const ControlValues &control, UInt64 last)
{
    if(control.values == nullptr && control.points != 0)
        return "the control points are no floats";
    if(floatsUpTo(last, control) > control.points * control.dimension)
        return "there are " + std::to_string(control.points) + " control points of " +
               std::to_string(control.dimension) + " values, and " + std::to_string(control.components) +
               " values are needed up to the one of number " + std::to_string(last + 1);
    if(!areFinite(control.values, control.points * control.dimension))
        return "a control point is not finite";
    return "";
}

} // namespace

ControlValues controlValues(const GeoProperty &property, UInt32 components)
{
    ControlValues control;
    control.points = property.getSize();
    control.dimension = property.getDimension();
    control.components = components;
    if(property.getFormat() == GL_FLOAT)
        control.values = reinterpret_cast<const Real32 *>(property.getData());
    return control;
}

std::string curveProblem(const KnotRow &row, const ControlValues &control)
{
    if(!areFinite(row.knots, row.count))
        return "a knot is not finite";
    if(row.isRefused())
        return "";
    if(row.count > largestInt)
        return "there are too many knots";
    return valuesProblem(control, row.points() - 1);
}

std::string surfaceProblem(const KnotRow &u, const KnotRow &v, UInt32 uDim, const ControlValues &control)
{
    if(!areFinite(u.knots, u.count) || !areFinite(v.knots, v.count))
        return "a knot is not finite";
    if(u.isRefused() || v.isRefused())
        return "";
    if(u.count > largestInt || v.count > largestInt)
        return "there are too many knots";
    if(UInt64(uDim) * control.dimension > largestInt)
        return "uDim is " + std::to_string(uDim) + ", which is too much";
    return valuesProblem(control, (v.points() - 1) * uDim + u.points() - 1);
}

std::string polylineProblem(const ControlValues &control)
{
    if(control.points == 0)
        return "there are no control points";
    return valuesProblem(control, control.points - 1);
}

} // namespace tessaly
