#ifndef TESSALY_VIEW_PRESETS_H
#define TESSALY_VIEW_PRESETS_H

/// \file
/// Looks for the usual kinds of scans.

#include "Histogram.h"
#include "Options.h"
#include "TransferPoints.h"

#include <string>
#include <vector>

namespace viewer
{

/// What the positions of a preset's points count.
enum class PresetScale
{
    Object, ///< 0 where the background ends, 1 at the value that all but a 200th of the object stays below
    Hounsfield, ///< the file's real values, Hounsfield units
};

/// A look by name.
struct Preset
{
    const char *name;
    const char *description;
    PresetScale scale;
    std::vector<OpacityPoint> opacity; ///< positions on the scale, ascending
    std::vector<ColorPoint> color;
    Shading shading;
};

/// In the order in which they are listed.
const std::vector<Preset> &presets();

/// The preset of that name, or null.
const Preset *findPreset(const std::string &name);

/// The preset that gives these options their transfer function, or null: their own points go ahead of it, and
/// so does a file.
const Preset *presetInUse(const Options &options);

/// From a preset's scale to the positions of a transfer function: offset + factor * value.
struct ScaleMap
{
    double offset = 0.0;
    double factor = 1.0;
};

/// The map of PresetScale::Object for a volume of this histogram.
ScaleMap objectScale(const Histogram &histogram);

/// Brings a preset's points to positions 0 to 1. What lies outside is cut off where its line crosses the end;
/// both lists begin at 0 and end at 1. \param map with a factor above 0
TransferPoints presetPoints(const Preset &preset, const ScaleMap &map);

} // namespace viewer

#endif
