/// \file
/// The transfer function in the panel.

#include "TransferEditor.h"

#include "TransferEdit.h"

#include <imgui.h>

#include <algorithm>
#include <cmath>

namespace viewer
{

namespace
{

constexpr std::size_t barCount = 256;
constexpr float curveHeight = 150.0f;
constexpr float stripHeight = 22.0f;
constexpr float grabPixels = 8.0f;
constexpr float dotPixels = 4.5f;

ImU32 shade(float red, float green, float blue, float alpha = 1.0f)
{
    return ImGui::ColorConvertFloat4ToU32(ImVec4(red, green, blue, alpha));
}

/// Between positions of a transfer function and pixels of the canvas.
struct Canvas
{
    ImVec2 low; ///< upper left corner
    ImVec2 size;
    float share = 1.0f; ///< the position at the right edge

    float x(float position) const { return low.x + size.x * std::min(position / share, 1.0f); }
    float y(float opacity) const { return low.y + size.y * (1.0f - opacity); }
    float position(float pixel) const { return std::clamp((pixel - low.x) / size.x, 0.0f, 1.0f) * share; }
    float opacity(float pixel) const { return std::clamp(1.0f - (pixel - low.y) / size.y, 0.0f, 1.0f); }
};

/// A canvas as wide as the window, with a button of that size that takes the mouse.
Canvas beginCanvas(const char *name, float height, double share)
{
    Canvas canvas;
    canvas.low = ImGui::GetCursorScreenPos();
    canvas.size = ImVec2(std::max(ImGui::GetContentRegionAvail().x, 64.0f), height);
    canvas.share = static_cast<float>(share);
    ImGui::InvisibleButton(name, canvas.size,
                           ImGuiButtonFlags_MouseButtonLeft | ImGuiButtonFlags_MouseButtonRight);
    return canvas;
}

} // namespace

std::vector<float> histogramBars(const Histogram &histogram, std::size_t bars, double share)
{
    std::vector<double> counts(bars, 0.0);
    const double shown = share * static_cast<double>(histogram.counts.size());
    for (std::size_t value = 0; value < histogram.counts.size() && static_cast<double>(value) < shown;
         ++value)
    {
        const double at = static_cast<double>(value) / shown * static_cast<double>(bars);
        counts[std::min(static_cast<std::size_t>(at), bars - 1)] +=
            static_cast<double>(histogram.counts[value]);
    }
    const double highest = std::log1p(*std::max_element(counts.begin(), counts.end()));
    std::vector<float> heights(bars, 0.0f);
    if (highest > 0.0)
    {
        std::transform(counts.begin(), counts.end(), heights.begin(),
                       [&](double count) { return static_cast<float>(std::log1p(count) / highest); });
    }
    return heights;
}

void TransferEditor::show(const Histogram &histogram)
{
    const double values = static_cast<double>(histogram.counts.size());
    _share = std::clamp(1.05 * static_cast<double>(histogram.highest() + 1) / values, 1.0 / 256.0, 1.0);
    _bars = histogramBars(histogram, barCount, _share);
    _heldOpacity.reset();
    _heldColor.reset();
    _pickedColor = 0;
}

bool TransferEditor::buildCurve(TransferPoints &points, const std::optional<ScaleMap> &real)
{
    const Canvas canvas = beginCanvas("opacity", curveHeight, _share);
    const ImVec2 mouse = ImGui::GetIO().MousePos;
    const float position = canvas.position(mouse.x);
    const float opacity = canvas.opacity(mouse.y);
    const auto pointHere = [&]
    {
        return opacityPointAt(points, position, opacity, grabPixels / canvas.size.x * canvas.share,
                              grabPixels / canvas.size.y);
    };

    bool changed = false;
    if (ImGui::IsItemActivated() && ImGui::IsMouseClicked(ImGuiMouseButton_Left))
    {
        _heldOpacity = pointHere();
        if (!_heldOpacity)
        {
            _heldOpacity = addOpacityPoint(points, position, opacity);
            changed = true;
        }
    }
    if (ImGui::IsItemHovered() && ImGui::IsMouseClicked(ImGuiMouseButton_Right))
    {
        if (const std::optional<std::size_t> here = pointHere())
        {
            changed = removeOpacityPoint(points, *here) || changed;
        }
    }
    if (_heldOpacity && ImGui::IsMouseDown(ImGuiMouseButton_Left))
    {
        const OpacityPoint before = points.opacity[*_heldOpacity];
        moveOpacityPoint(points, *_heldOpacity, position, opacity);
        changed = changed || !(points.opacity[*_heldOpacity] == before);
    }
    else
    {
        _heldOpacity.reset();
    }

    ImDrawList *const draw = ImGui::GetWindowDrawList();
    const ImVec2 high(canvas.low.x + canvas.size.x, canvas.low.y + canvas.size.y);
    draw->AddRectFilled(canvas.low, high, shade(0.08f, 0.08f, 0.10f));
    for (std::size_t i = 0; i < _bars.size(); ++i)
    {
        const float left =
            canvas.low.x + canvas.size.x * static_cast<float>(i) / static_cast<float>(_bars.size());
        const float right = left + canvas.size.x / static_cast<float>(_bars.size());
        draw->AddRectFilled(ImVec2(left, canvas.y(_bars[i])), ImVec2(right, high.y),
                            shade(0.30f, 0.32f, 0.38f));
    }
    for (std::size_t i = 1; i < points.opacity.size(); ++i)
    {
        const OpacityPoint &a = points.opacity[i - 1];
        OpacityPoint b = points.opacity[i];
        if (a.position >= canvas.share)
        {
            break;
        }
        if (b.position > canvas.share)
        {
            const float t = (canvas.share - a.position) / (b.position - a.position);
            b = {canvas.share, a.opacity + t * (b.opacity - a.opacity)};
        }
        draw->AddLine(ImVec2(canvas.x(a.position), canvas.y(a.opacity)),
                      ImVec2(canvas.x(b.position), canvas.y(b.opacity)), shade(0.95f, 0.95f, 0.95f), 1.5f);
    }
    for (const OpacityPoint &point : points.opacity)
    {
        if (point.position <= canvas.share)
        {
            const ColorPoint color = pointAt(points.color, point.position);
            const ImVec2 middle(canvas.x(point.position), canvas.y(point.opacity));
            draw->AddCircleFilled(middle, dotPixels, shade(color.red, color.green, color.blue));
            draw->AddCircle(middle, dotPixels, shade(1.0f, 1.0f, 1.0f));
        }
    }
    if (ImGui::IsItemHovered())
    {
        if (real)
        {
            ImGui::SetTooltip("value %.4g, opacity %.3f", (position - real->offset) / real->factor, opacity);
        }
        else
        {
            ImGui::SetTooltip("position %.3f, opacity %.3f", position, opacity);
        }
    }
    return changed;
}

bool TransferEditor::buildColors(TransferPoints &points)
{
    const Canvas canvas = beginCanvas("colours", stripHeight, _share);
    const float position = canvas.position(ImGui::GetIO().MousePos.x);
    const float radius = grabPixels / canvas.size.x * canvas.share;

    bool changed = false;
    if (ImGui::IsItemActivated() && ImGui::IsMouseClicked(ImGuiMouseButton_Left))
    {
        _heldColor = colorPointAt(points, position, radius);
        if (!_heldColor)
        {
            _heldColor = addColorPoint(points, position);
            changed = true;
        }
        _pickedColor = *_heldColor;
    }
    if (ImGui::IsItemHovered() && ImGui::IsMouseClicked(ImGuiMouseButton_Right))
    {
        if (const std::optional<std::size_t> here = colorPointAt(points, position, radius))
        {
            changed = removeColorPoint(points, *here) || changed;
        }
    }
    if (_heldColor && ImGui::IsMouseDown(ImGuiMouseButton_Left))
    {
        const float before = points.color[*_heldColor].position;
        moveColorPoint(points, *_heldColor, position);
        changed = changed || points.color[*_heldColor].position != before;
    }
    else
    {
        _heldColor.reset();
    }
    _pickedColor = std::min(_pickedColor, points.color.size() - 1);

    ImDrawList *const draw = ImGui::GetWindowDrawList();
    constexpr int strips = 64;
    for (int i = 0; i < strips; ++i)
    {
        const float left = canvas.low.x + canvas.size.x * static_cast<float>(i) / strips;
        const float right = canvas.low.x + canvas.size.x * static_cast<float>(i + 1) / strips;
        const ColorPoint a = pointAt(points.color, canvas.position(left));
        const ColorPoint b = pointAt(points.color, canvas.position(right));
        const ImU32 from = shade(a.red, a.green, a.blue);
        const ImU32 to = shade(b.red, b.green, b.blue);
        draw->AddRectFilledMultiColor(ImVec2(left, canvas.low.y), ImVec2(right, canvas.low.y + canvas.size.y),
                                      from, to, to, from);
    }
    for (std::size_t i = 0; i < points.color.size(); ++i)
    {
        if (points.color[i].position <= canvas.share)
        {
            const float x = canvas.x(points.color[i].position);
            draw->AddRect(ImVec2(x - 3.0f, canvas.low.y), ImVec2(x + 3.0f, canvas.low.y + canvas.size.y),
                          i == _pickedColor ? shade(1.0f, 1.0f, 1.0f) : shade(0.0f, 0.0f, 0.0f), 0.0f, 0,
                          2.0f);
        }
    }

    ColorPoint &picked = points.color[_pickedColor];
    float color[3] = {picked.red, picked.green, picked.blue};
    if (ImGui::ColorEdit3("colour", color, ImGuiColorEditFlags_Float))
    {
        picked = {picked.position, color[0], color[1], color[2]};
        changed = true;
    }
    return changed;
}

bool TransferEditor::build(TransferPoints &points, const std::optional<ScaleMap> &real)
{
    makeEditable(points);
    const bool curve = buildCurve(points, real);
    const bool colors = buildColors(points);
    return curve || colors;
}

} // namespace viewer
