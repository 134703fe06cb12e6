/// \file
/// The detail of moving frames.

#include "MotionDetail.h"

#include <algorithm>
#include <cmath>

namespace viewer
{

Detail MotionDetail::moving() const
{
    const double surplus = _fullSeconds / targetSeconds;
    Detail detail;
    if (surplus > coarsestStep)
    {
        const double shrink = std::ceil(std::sqrt(surplus / coarsestStep));
        detail.shrink = static_cast<int>(std::min(shrink, static_cast<double>(smallest)));
    }
    const double step = surplus / (detail.shrink * detail.shrink);
    detail.step = std::clamp(std::round(4.0 * step) / 4.0, 1.0, coarsestStep);
    return detail;
}

void MotionDetail::drawn(const Detail &detail, double seconds)
{
    if (!(seconds > 0.0))
    {
        return;
    }
    // A frame takes about as long as its rays have steps. Half the way there, so that one odd frame does not
    // make the picture jump.
    const double full = seconds * detail.step * detail.shrink * detail.shrink;
    _fullSeconds = std::clamp(std::sqrt(_fullSeconds * full), 1e-3, 1e3);
}

} // namespace viewer
