/// \file
/// Values of options as texts, and the file of options that is made of them.

#include "OptionTexts.h"

#include "NumberText.h"
#include "Options.h"
#include "Presets.h"

#include <algorithm>
#include <charconv>

namespace viewer
{

namespace
{

template <typename Number>
std::string shortest(Number value)
{
    char text[64];
    const std::to_chars_result end = std::to_chars(text, text + sizeof(text), value);
    return std::string(text, end.ptr);
}

/// Groups of `size` numbers 0 to 1, the first of each a position.
std::string groupsFrom(const std::string &text, std::size_t size, std::vector<double> &values)
{
    values.resize(static_cast<std::size_t>(std::count(text.begin(), text.end(), ',')) + 1);
    if (values.size() % size != 0 || !numbersFrom(text, values.data(), values.size()))
    {
        return "not groups of " + std::to_string(size) + " numbers with commas in between";
    }
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        if (values[i] < 0.0 || values[i] > 1.0)
        {
            return numberText(values[i]) + " is out of range, each number must be 0 to 1";
        }
        if (i % size == 0 && i > 0 && values[i] < values[i - size])
        {
            return "position " + numberText(values[i]) + " comes behind " + numberText(values[i - size]);
        }
    }
    return {};
}

const char *word(Shading shading)
{
    switch (shading)
    {
    case Shading::Dvr:
        return "dvr";
    case Shading::Lit:
        return "lit";
    case Shading::Mip:
        return "mip";
    case Shading::Xray:
        return "xray";
    }
    return "";
}

const char *word(Normals normals)
{
    switch (normals)
    {
    case Normals::Precomputed:
        return "pre";
    case Normals::Central:
        return "central";
    case Normals::Sobel:
        return "sobel";
    }
    return "";
}

/// Lines of "name=value".
class Lines
{
public:
    void add(const char *name, const std::string &value)
    {
        // The reader knows no escapes, so a text is enclosed in the quotes that it doesn't hold.
        const char quote = value.find('"') == std::string::npos ? '"' : '\'';
        const bool kept = value.find(quote) == std::string::npos && value.find('\n') == std::string::npos;
        if (kept)
        {
            _text += std::string(name) + "=" + quote + value + quote + "\n";
        }
        else
        {
            _text += std::string("# ") + name + ": a text with both kinds of quotes can't be kept\n";
        }
    }
    void add(const char *name, double value) { _text += std::string(name) + "=" + numberText(value) + "\n"; }
    void add(const char *name, const Vec3 &value) { add(name, tripleText(value)); }
    void flag(const char *name, bool value)
    {
        if (value)
        {
            _text += std::string(name) + "=true\n";
        }
    }
    const std::string &text() const { return _text; }

private:
    std::string _text;
};

void addCamera(const CameraRequest &camera, Lines &lines)
{
    if (camera.position)
    {
        lines.add("camera-position", *camera.position);
    }
    if (camera.focalPoint)
    {
        lines.add("camera-focal-point", *camera.focalPoint);
    }
    if (camera.viewUp)
    {
        lines.add("camera-view-up", *camera.viewUp);
    }
    lines.add("camera-view-angle", camera.viewAngle);
    lines.add("azimuth", camera.azimuth);
    lines.add("elevation", camera.elevation);
    lines.add("zoom", camera.zoom);
}

void addLook(const Options &options, Lines &lines)
{
    lines.add("shading", word(options.shading));
    lines.add("emissive", options.material.emissive);
    lines.add("diffuse", options.material.diffuse);
    lines.add("specular", options.material.specular);
    lines.add("shininess", options.material.shininess);
    if (!options.preset.empty())
    {
        lines.add("preset", options.preset);
    }
    if (options.points)
    {
        lines.add("opacity-points", opacityPointsText(options.points->opacity));
        lines.add("color-points", colorPointsText(options.points->color));
    }
    else if (!options.transferFunction.empty())
    {
        lines.add("transfer-function", options.transferFunction);
    }
    if (options.gradientModulation.enabled)
    {
        lines.flag("gradient-modulation", true);
        lines.add("retained-opacity", options.gradientModulation.retained);
        lines.add("boundary-opacity", options.gradientModulation.boundary);
        lines.add("opacity-factor", options.gradientModulation.factor);
    }
}

void addOpaque(const OpaqueBox &opaque, Lines &lines)
{
    if (!opaque.enabled)
    {
        return;
    }
    lines.flag("opaque", true);
    if (!opaque.file.empty())
    {
        lines.add("opaque-file", opaque.file);
    }
    lines.add("opaque-size", opaque.size);
    lines.add("opaque-center", opaque.center);
    lines.add("opaque-color", opaque.color);
}

} // namespace

std::string numberText(double value)
{
    return shortest(value);
}

std::string numberText(float value)
{
    return shortest(value);
}

std::string tripleText(const Vec3 &values)
{
    return numberText(values[0]) + "," + numberText(values[1]) + "," + numberText(values[2]);
}

std::string opacityPointsText(const std::vector<OpacityPoint> &points)
{
    std::string text;
    for (const OpacityPoint &point : points)
    {
        text += (text.empty() ? "" : ",") + numberText(point.position) + "," + numberText(point.opacity);
    }
    return text;
}

std::string colorPointsText(const std::vector<ColorPoint> &points)
{
    std::string text;
    for (const ColorPoint &point : points)
    {
        text += (text.empty() ? "" : ",") + numberText(point.position) + "," + numberText(point.red) + "," +
                numberText(point.green) + "," + numberText(point.blue);
    }
    return text;
}

std::string opacityPointsFrom(const std::string &text, std::vector<OpacityPoint> &points)
{
    std::vector<double> values;
    const std::string wrong = groupsFrom(text, 2, values);
    points.clear();
    for (std::size_t i = 0; wrong.empty() && i < values.size(); i += 2)
    {
        points.push_back({static_cast<float>(values[i]), static_cast<float>(values[i + 1])});
    }
    return wrong;
}

std::string colorPointsFrom(const std::string &text, std::vector<ColorPoint> &points)
{
    std::vector<double> values;
    const std::string wrong = groupsFrom(text, 4, values);
    points.clear();
    for (std::size_t i = 0; wrong.empty() && i < values.size(); i += 4)
    {
        points.push_back({static_cast<float>(values[i]), static_cast<float>(values[i + 1]),
                          static_cast<float>(values[i + 2]), static_cast<float>(values[i + 3])});
    }
    return wrong;
}

std::string stateText(const Options &options)
{
    Lines lines;
    if (!options.input.empty())
    {
        lines.add("scan", options.input);
    }
    lines.add("size", std::to_string(options.width) + "," + std::to_string(options.height));
    lines.add("background", options.background);
    addCamera(options.camera, lines);
    addLook(options, lines);
    lines.add("step", options.step);
    lines.add("ray", options.ray == Ray::Simple ? "simple" : "interleaved");
    lines.add("geometry", options.geometry == BoundingGeometry::Box ? "box" : "boundary");
    lines.add("traversal", options.traversal == Traversal::Simple ? "simple" : "block");
    lines.add("normals", word(options.normals));
    lines.flag("pre-integrated", options.preIntegrated);
    addOpaque(options.opaque, lines);
    lines.flag("swapped", options.swapped);
    if (options.maxMemory > 0.0)
    {
        lines.add("max-memory", options.maxMemory);
    }
    return lines.text();
}

std::string presetList()
{
    std::size_t longest = 0;
    for (const Preset &preset : presets())
    {
        longest = std::max(longest, std::string(preset.name).size());
    }
    std::string text;
    for (const Preset &preset : presets())
    {
        const std::string name = preset.name;
        text += name + std::string(longest + 2 - name.size(), ' ') + preset.description + "\n";
    }
    return text;
}

} // namespace viewer
