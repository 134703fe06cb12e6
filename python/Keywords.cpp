/// \file
/// Keyword arguments as the options of the viewer's command line, and back.

#include "Keywords.h"

#include "Camera.h"
#include "OptionTexts.h"

#include <algorithm>
#include <regex>
#include <sstream>
#include <vector>

#include <pybind11/numpy.h>

namespace py = pybind11;

namespace binding
{

namespace
{

enum class Kind
{
    Flag,
    Number,
    Numbers,
    Word,
    Path,
};

/// The options that the pictures of a viewer depend on.
const std::map<std::string, Kind> &kinds()
{
    static const std::map<std::string, Kind> all{
        {"size", Kind::Numbers},
        {"background", Kind::Numbers},
        {"camera-position", Kind::Numbers},
        {"camera-focal-point", Kind::Numbers},
        {"camera-view-up", Kind::Numbers},
        {"camera-view-angle", Kind::Number},
        {"azimuth", Kind::Number},
        {"elevation", Kind::Number},
        {"zoom", Kind::Number},
        {"shading", Kind::Word},
        {"preset", Kind::Word},
        {"transfer-function", Kind::Path},
        {"opacity-points", Kind::Numbers},
        {"color-points", Kind::Numbers},
        {"emissive", Kind::Numbers},
        {"diffuse", Kind::Numbers},
        {"specular", Kind::Numbers},
        {"shininess", Kind::Number},
        {"gradient-modulation", Kind::Flag},
        {"retained-opacity", Kind::Number},
        {"boundary-opacity", Kind::Number},
        {"opacity-factor", Kind::Number},
        {"step", Kind::Number},
        {"ray", Kind::Word},
        {"geometry", Kind::Word},
        {"traversal", Kind::Word},
        {"normals", Kind::Word},
        {"pre-integrated", Kind::Flag},
        {"opaque", Kind::Flag},
        {"opaque-file", Kind::Path},
        {"opaque-size", Kind::Numbers},
        {"opaque-center", Kind::Numbers},
        {"opaque-color", Kind::Numbers},
        {"swapped", Kind::Flag},
        {"max-memory", Kind::Number},
    };
    return all;
}

std::string dashed(std::string name)
{
    std::replace(name.begin(), name.end(), '_', '-');
    return name;
}

std::string underscored(std::string name)
{
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

std::string typeName(const py::handle &value)
{
    return py::str(py::type::handle_of(value).attr("__name__"));
}

bool isBool(const py::handle &value)
{
    return py::isinstance<py::bool_>(value) || typeName(value) == "bool_" || typeName(value) == "bool";
}

std::string numberOf(const std::string &name, const py::handle &value)
{
    const double number =
        isBool(value) || py::isinstance<py::str>(value) ? -1.0 : PyFloat_AsDouble(value.ptr());
    if (isBool(value) || py::isinstance<py::str>(value) || PyErr_Occurred() != nullptr)
    {
        PyErr_Clear();
        throw py::type_error(name + ": must be a number, not " + typeName(value));
    }
    return viewer::numberText(number);
}

/// Numbers in any nesting, so that points may be lists of pairs, and arrays.
void addNumbers(const std::string &name, const py::handle &value, std::string &text)
{
    const bool isList = py::hasattr(value, "__iter__") && !py::isinstance<py::str>(value) &&
                        !py::isinstance<py::bytes>(value) && !py::isinstance<py::dict>(value);
    // An array without dimensions has the operation, too, and refuses it.
    if (!isList || (py::isinstance<py::array>(value) && py::cast<py::array>(value).ndim() == 0))
    {
        text += (text.empty() ? "" : ",") + numberOf(name, value);
        return;
    }
    for (const py::handle item : py::iter(value))
    {
        addNumbers(name, item, text);
    }
}

std::string numbersOf(const std::string &name, const py::handle &value)
{
    if (!py::hasattr(value, "__iter__") || py::isinstance<py::str>(value) || py::isinstance<py::bytes>(value))
    {
        throw py::type_error(name + ": must be a sequence of numbers, not " + typeName(value));
    }
    std::string text;
    addNumbers(name, value, text);
    return text;
}

void take(Keywords &keywords, const std::string &option, Kind kind, const py::handle &value)
{
    const std::string name = underscored(option);
    switch (kind)
    {
    case Kind::Flag:
        if (!isBool(value))
        {
            throw py::type_error(name + ": must be True or False, not " + typeName(value));
        }
        // Left out is what the command line knows for False.
        keywords.erase(option);
        if (py::cast<bool>(py::bool_(py::reinterpret_borrow<py::object>(value))))
        {
            keywords[option] = "true";
        }
        break;
    case Kind::Number:
        keywords[option] = numberOf(name, value);
        break;
    case Kind::Numbers:
        keywords[option] = numbersOf(name, value);
        break;
    case Kind::Word:
        if (!py::isinstance<py::str>(value))
        {
            throw py::type_error(name + ": must be a str, not " + typeName(value));
        }
        keywords[option] = py::cast<std::string>(value);
        break;
    case Kind::Path:
        keywords[option] = pathOf(value);
        break;
    }
}

void forgetCamera(Keywords &keywords)
{
    for (const char *name : {"camera-position", "camera-focal-point", "camera-view-up", "camera-view-angle",
                             "azimuth", "elevation", "zoom"})
    {
        keywords.erase(name);
    }
}

void forgetPoints(Keywords &keywords)
{
    for (const char *name : {"transfer-function", "opacity-points", "color-points"})
    {
        keywords.erase(name);
    }
}

void takeCamera(Keywords &keywords, const py::handle &value)
{
    forgetCamera(keywords);
    const Camera camera =
        py::isinstance<py::dict>(value) ? cameraOf(py::cast<py::dict>(value))
        : py::isinstance<Camera>(value)
            ? py::cast<Camera>(value)
            : throw py::type_error("camera: must be a Camera or a dict, not " + typeName(value));
    const auto triple = [&](const char *name, const std::optional<viewer::Vec3> &numbers) {
        if (numbers)
        {
            keywords[name] = viewer::tripleText(*numbers);
        }
    };
    triple("camera-position", camera.position);
    triple("camera-focal-point", camera.focalPoint);
    triple("camera-view-up", camera.viewUp);
    keywords["camera-view-angle"] = viewer::numberText(camera.viewAngle);
    keywords["azimuth"] = viewer::numberText(camera.azimuth);
    keywords["elevation"] = viewer::numberText(camera.elevation);
    keywords["zoom"] = viewer::numberText(camera.zoom);
}

/// Rows of red, green, blue, opacity: the first at the lowest value that a voxel can have, the last at the
/// highest.
void takeTable(Keywords &keywords, const py::array &table, int bits)
{
    if (table.ndim() != 2 || table.shape(1) != 4 || table.shape(0) < 2)
    {
        throw py::value_error(
            "transfer_function: an array must have the shape (N, 4), red, green, blue and opacity, "
            "with N at least 2");
    }
    const bool bytes = table.dtype().kind() == 'u' && table.itemsize() == 1;
    if (!bytes && table.dtype().kind() != 'f')
    {
        throw py::type_error("transfer_function: an array must hold floats of 0 to 1, or uint8");
    }
    const auto rows = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(table);
    const auto row = rows.unchecked<2>();
    const double values = bits == 8 ? 256.0 : 65536.0;
    // The tables of 8 bits are cut to whole numbers: a little more keeps a byte the same byte.
    const double more = bytes && bits == 8 ? 0.25 : 0.0;
    const auto value = [&](py::ssize_t i, py::ssize_t c) {
        return viewer::numberText(bytes ? std::min((row(i, c) + more) / 255.0, 1.0) : row(i, c));
    };

    std::string opacity;
    std::string color;
    const py::ssize_t count = row.shape(0);
    for (py::ssize_t i = 0; i <= count; ++i)
    {
        // Both lists end at position 1, behind the last value: opacities that end ahead of it fill all.
        const py::ssize_t at = std::min(i, count - 1);
        const double share = static_cast<double>(at) / static_cast<double>(count - 1);
        const std::string position = viewer::numberText(i == count ? 1.0 : share * (values - 1.0) / values);
        const char *const comma = i == 0 ? "" : ",";
        opacity += comma + position + "," + value(at, 3);
        color += comma + position + "," + value(at, 0) + "," + value(at, 1) + "," + value(at, 2);
    }
    keywords["opacity-points"] = opacity;
    keywords["color-points"] = color;
}

void takeTransferFunction(Keywords &keywords, const py::handle &value, int bits)
{
    forgetPoints(keywords);
    if (py::isinstance<py::array>(value))
    {
        takeTable(keywords, py::cast<py::array>(value), bits);
        return;
    }
    if (py::isinstance<py::str>(value) || py::isinstance<py::bytes>(value) ||
        py::hasattr(value, "__fspath__"))
    {
        keywords["transfer-function"] = pathOf(value);
        return;
    }
    py::object opacity;
    py::object color;
    if (py::isinstance<py::dict>(value))
    {
        const py::dict dict = py::cast<py::dict>(value);
        if (dict.size() != 2 || !dict.contains("opacity") || !dict.contains("color"))
        {
            throw py::value_error("transfer_function: a dict must have just the keys 'opacity' and 'color'");
        }
        opacity = dict["opacity"];
        color = dict["color"];
    }
    else if (py::isinstance<py::tuple>(value) && py::len(value) == 2)
    {
        opacity = py::cast<py::tuple>(value)[0];
        color = py::cast<py::tuple>(value)[1];
    }
    else
    {
        throw py::type_error(
            "transfer_function: must be None, a dict or tuple of opacity and colour points, an array "
            "of shape (N, 4), or a file's name, not " +
            typeName(value));
    }
    keywords["opacity-points"] = numbersOf("transfer_function", opacity);
    keywords["color-points"] = numbersOf("transfer_function", color);
}

viewer::CommandLine parse(const std::vector<std::string> &arguments)
{
    std::vector<const char *> argv;
    for (const std::string &argument : arguments)
    {
        argv.push_back(argument.c_str());
    }
    viewer::CommandLine line = viewer::parseCommandLine(static_cast<int>(argv.size()), argv.data());
    if (!line.run)
    {
        throw py::value_error(inKeywords(line.text));
    }
    // What stands here in place of a scan and a picture is none.
    line.options.input.clear();
    line.options.output.clear();
    return line;
}

const std::vector<std::string> begin{"tessaly", "scan", "--output=picture.png"};

py::object numbersFrom(const std::string &text)
{
    py::list numbers;
    std::istringstream parts(text);
    for (std::string part; std::getline(parts, part, ',');)
    {
        numbers.append(py::float_(py::str(part)));
    }
    return py::tuple(numbers);
}

/// Name and value of each line of a state, comments left out.
std::vector<std::pair<std::string, std::string>> linesOf(const viewer::Options &options)
{
    std::vector<std::pair<std::string, std::string>> lines;
    std::istringstream text(viewer::stateText(options));
    for (std::string line; std::getline(text, line);)
    {
        const std::size_t equals = line.find('=');
        if (line.empty() || line[0] == '#' || equals == std::string::npos)
        {
            continue;
        }
        std::string value = line.substr(equals + 1);
        if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
            value.back() == value.front())
        {
            value = value.substr(1, value.size() - 2);
        }
        lines.emplace_back(line.substr(0, equals), value);
    }
    return lines;
}

} // namespace

std::string inKeywords(const std::string &message)
{
    static const std::regex list("see --list-presets");
    static const std::regex option("--([a-z]+(-[a-z]+)*)");
    std::string text = std::regex_replace(message, list, "see tessaly.presets()");
    std::smatch match;
    std::string out;
    while (std::regex_search(text, match, option))
    {
        out += match.prefix().str() + underscored(match[1].str());
        text = match.suffix().str();
    }
    return out + text;
}

std::string pathOf(const py::handle &path)
{
    const py::object bytes = py::module_::import("os").attr("fsencode")(path);
    return py::cast<std::string>(bytes);
}

void enter(Keywords &keywords, const py::dict &arguments, int bits, const char *who)
{
    // What comprises several options goes ahead of the single ones, whatever their order.
    const auto isGiven = [&](const char *name) {
        return arguments.contains(name) && !arguments[name].is_none();
    };
    if (arguments.contains("camera"))
    {
        forgetCamera(keywords);
    }
    if (arguments.contains("transfer_function") || isGiven("preset"))
    {
        forgetPoints(keywords);
    }
    if (isGiven("camera"))
    {
        takeCamera(keywords, arguments["camera"]);
    }
    if (isGiven("transfer_function"))
    {
        takeTransferFunction(keywords, arguments["transfer_function"], bits);
    }
    for (const auto &[key, value] : arguments)
    {
        const std::string name = py::cast<std::string>(key);
        if (name == "camera" || name == "transfer_function")
        {
            continue;
        }
        const auto found = name.find('-') == std::string::npos ? kinds().find(dashed(name)) : kinds().end();
        if (found == kinds().end())
        {
            throw py::type_error(std::string(who) + "() got an unexpected keyword argument '" + name + "'");
        }
        if (value.is_none())
        {
            keywords.erase(found->first);
        }
        else
        {
            take(keywords, found->first, found->second, value);
        }
    }
}

viewer::Options optionsOf(const Keywords &keywords)
{
    std::vector<std::string> arguments = begin;
    for (const auto &[name, text] : keywords)
    {
        arguments.push_back("--" + name + "=" + text);
    }
    return parse(arguments).options;
}

Keywords keywordsOfState(const std::string &fileName)
{
    std::vector<std::string> arguments = begin;
    arguments.push_back("--load-state=" + fileName);
    Keywords keywords;
    for (const auto &[name, text] : linesOf(parse(arguments).options))
    {
        keywords[name] = text;
    }
    return keywords;
}

py::dict dictOf(const viewer::Options &options)
{
    py::dict dict;
    for (const auto &[name, text] : linesOf(options))
    {
        const auto found = kinds().find(name);
        if (found == kinds().end())
        {
            continue;
        }
        const py::str key(underscored(name));
        switch (found->second)
        {
        case Kind::Flag:
            dict[key] = py::bool_(true);
            break;
        case Kind::Number:
            dict[key] = py::float_(py::str(text));
            break;
        case Kind::Numbers:
            dict[key] = numbersFrom(text);
            break;
        case Kind::Word:
            dict[key] = py::str(text);
            break;
        case Kind::Path:
            dict[key] = py::module_::import("os").attr("fsdecode")(py::bytes(text));
            break;
        }
    }
    dict["size"] = py::make_tuple(options.width, options.height);
    return dict;
}

py::dict dictOf(const viewer::TransferPoints &points)
{
    py::array_t<float> opacity({static_cast<py::ssize_t>(points.opacity.size()), py::ssize_t(2)});
    auto pair = opacity.mutable_unchecked<2>();
    for (std::size_t i = 0; i < points.opacity.size(); ++i)
    {
        const py::ssize_t row = static_cast<py::ssize_t>(i);
        pair(row, 0) = points.opacity[i].position;
        pair(row, 1) = points.opacity[i].opacity;
    }
    py::array_t<float> color({static_cast<py::ssize_t>(points.color.size()), py::ssize_t(4)});
    auto four = color.mutable_unchecked<2>();
    for (std::size_t i = 0; i < points.color.size(); ++i)
    {
        const py::ssize_t row = static_cast<py::ssize_t>(i);
        four(row, 0) = points.color[i].position;
        four(row, 1) = points.color[i].red;
        four(row, 2) = points.color[i].green;
        four(row, 3) = points.color[i].blue;
    }
    py::dict dict;
    dict["opacity"] = opacity;
    dict["color"] = color;
    return dict;
}

} // namespace binding
