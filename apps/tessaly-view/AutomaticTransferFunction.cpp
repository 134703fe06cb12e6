/// \file
/// A transfer function for a volume that nothing is known about but its histogram.

#include "AutomaticTransferFunction.h"

#include <algorithm>

namespace viewer
{

TransferPoints automaticTransferFunction(const Histogram &histogram)
{
    const std::size_t values = histogram.counts.size();
    const std::size_t background = backgroundThreshold(histogram);
    const std::size_t object = std::min(background + 1, values - 1);

    const auto place = [values](std::size_t value)
    { return static_cast<float>(static_cast<double>(value) / static_cast<double>(values)); };
    const float end = place(background);
    const float dark = place(quantile(histogram, 0.05, object));
    const float middle = place(quantile(histogram, 0.50, object));
    const float bright = place(quantile(histogram, 0.98, object));

    // Where object and background meet, interpolation makes every value between the two: a ramp that begins
    // low gives that seam little weight, and the surface is drawn where the object's own values begin.
    TransferPoints points;
    points.opacity = {{0.0f, 0.0f},    {end, 0.0f},     {dark, 0.15f},
                      {middle, 0.65f}, {bright, 0.95f}, {1.0f, 0.95f}};
    points.color = {{0.0f, 0.25f, 0.06f, 0.04f},   {end, 0.25f, 0.06f, 0.04f},
                    {dark, 0.72f, 0.38f, 0.30f},   {middle, 0.90f, 0.68f, 0.54f},
                    {bright, 1.00f, 0.95f, 0.86f}, {1.0f, 1.00f, 1.00f, 1.00f}};
    return points;
}

} // namespace viewer
