/// \file
/// The table of looks, and how a look is fitted to a scan.

#include "Presets.h"

#include <algorithm>

namespace viewer
{

namespace
{

template <typename Point>
std::vector<Point> fitted(std::vector<Point> points, const ScaleMap &map)
{
    for (Point &point : points)
    {
        point.position = static_cast<float>(map.offset + map.factor * point.position);
    }
    std::vector<Point> inside{pointAt(points, 0.0f)};
    std::copy_if(points.begin(), points.end(), std::back_inserter(inside),
                 [](const Point &point) { return point.position > 0.0f && point.position < 1.0f; });
    inside.push_back(pointAt(points, 1.0f));
    return inside;
}

} // namespace

const std::vector<Preset> &presets()
{
    // Hounsfield units: air -1000, fat -100, water 0, muscle 50, blood with contrast 200 to 500, bone 300 to
    // 2000.
    static const std::vector<Preset> table{
        {"mri",
         "MRI of a head: skin and brain, lit",
         PresetScale::Object,
         {{0.0f, 0.0f}, {0.15f, 0.08f}, {0.5f, 0.5f}, {1.0f, 0.95f}},
         {{0.0f, 0.25f, 0.06f, 0.04f},
          {0.25f, 0.72f, 0.38f, 0.30f},
          {0.6f, 0.90f, 0.68f, 0.54f},
          {1.0f, 1.0f, 0.95f, 0.86f}},
         Shading::Lit},
        {"mri-vessels",
         "MR angiography: the brightest value along each ray",
         PresetScale::Object,
         {{0.0f, 0.0f}, {1.0f, 1.0f}},
         {{0.0f, 0.0f, 0.0f, 0.0f}, {0.5f, 0.6f, 0.15f, 0.1f}, {1.0f, 1.0f, 0.95f, 0.85f}},
         Shading::Mip},
        {"ct-bone",
         "CT: bone",
         PresetScale::Hounsfield,
         {{150.0f, 0.0f}, {250.0f, 0.15f}, {500.0f, 0.6f}, {1200.0f, 0.95f}},
         {{150.0f, 0.55f, 0.25f, 0.15f},
          {350.0f, 0.85f, 0.60f, 0.40f},
          {700.0f, 0.95f, 0.88f, 0.75f},
          {1500.0f, 1.0f, 1.0f, 0.95f}},
         Shading::Lit},
        {"ct-skin",
         "CT: the skin",
         PresetScale::Hounsfield,
         {{-600.0f, 0.0f}, {-300.0f, 0.35f}, {-100.0f, 0.8f}, {100.0f, 0.95f}},
         {{-600.0f, 0.60f, 0.35f, 0.27f}, {-200.0f, 0.87f, 0.62f, 0.50f}, {200.0f, 0.95f, 0.78f, 0.66f}},
         Shading::Lit},
        {"ct-vessels",
         "CT with contrast medium: vessels red, bone white",
         PresetScale::Hounsfield,
         {{130.0f, 0.0f}, {200.0f, 0.25f}, {350.0f, 0.6f}, {700.0f, 0.6f}, {1500.0f, 0.9f}},
         {{130.0f, 0.60f, 0.05f, 0.05f},
          {350.0f, 0.90f, 0.20f, 0.12f},
          {500.0f, 0.95f, 0.75f, 0.60f},
          {800.0f, 1.0f, 0.97f, 0.90f}},
         Shading::Lit},
        {"microscopy",
         "Fluorescence: glowing, not lit",
         PresetScale::Object,
         {{0.0f, 0.0f}, {0.3f, 0.04f}, {1.0f, 0.5f}},
         {{0.0f, 0.0f, 0.08f, 0.04f}, {0.5f, 0.1f, 0.8f, 0.3f}, {1.0f, 0.85f, 1.0f, 0.75f}},
         Shading::Dvr},
    };
    return table;
}

const Preset *findPreset(const std::string &name)
{
    const auto found = std::find_if(presets().begin(), presets().end(),
                                    [&](const Preset &preset) { return name == preset.name; });
    return found == presets().end() ? nullptr : &*found;
}

const Preset *presetInUse(const Options &options)
{
    return options.points || !options.transferFunction.empty() ? nullptr : findPreset(options.preset);
}

ScaleMap objectScale(const Histogram &histogram)
{
    const std::size_t values = histogram.counts.size();
    const std::size_t background = backgroundThreshold(histogram);
    const std::size_t object = std::min(background + 1, values - 1);
    const std::size_t brightest = std::max(quantile(histogram, 0.995, object), background + 1);
    const double step = 1.0 / static_cast<double>(values);
    return {static_cast<double>(background) * step, static_cast<double>(brightest - background) * step};
}

TransferPoints presetPoints(const Preset &preset, const ScaleMap &map)
{
    return {fitted(preset.opacity, map), fitted(preset.color, map)};
}

} // namespace viewer
