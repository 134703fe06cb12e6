#ifndef TESSALY_VIEW_TRANSFEREDITOR_H
#define TESSALY_VIEW_TRANSFEREDITOR_H

/// \file
/// The part of the panel in which a transfer function is drawn with the mouse.

#include "Histogram.h"
#include "Presets.h"
#include "TransferPoints.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace viewer
{

/// Heights of `bars` bars over the values from 0 on, 0 to 1 by the logarithm of the counts. \param share of
/// the values that the bars stand for, above 0 and at most 1
std::vector<float> histogramBars(const Histogram &histogram, std::size_t bars, double share);

/// Draws histogram, curve and colours into the present Dear ImGui window, and lets them be edited: a click
/// adds a point, a drag moves it, a click with the right button removes it.
class TransferEditor
{
public:
    /// To be called when another volume is shown.
    void show(const Histogram &histogram);
    /// \param real from real values to positions, where they are known
    /// \return whether the points changed
    bool build(TransferPoints &points, const std::optional<ScaleMap> &real);

private:
    bool buildCurve(TransferPoints &points, const std::optional<ScaleMap> &real);
    bool buildColors(TransferPoints &points);

    std::vector<float> _bars;
    double _share = 1.0; ///< of the positions that is shown, from 0 on
    std::optional<std::size_t> _heldOpacity;
    std::optional<std::size_t> _heldColor;
    std::size_t _pickedColor = 0;
};

} // namespace viewer

#endif
