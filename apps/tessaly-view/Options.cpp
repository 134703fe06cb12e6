/// \file
/// The command line of the viewer.

#include "Options.h"

#include "NumberText.h"
#include "OptionTexts.h"
#include "Presets.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <map>
#include <vector>

namespace viewer
{

namespace
{

/// What the command line gives as text and is read with messages of our own.
struct Texts
{
    std::string size;
    std::string position;
    std::string focalPoint;
    std::string viewUp;
    std::string viewAngle;
    std::string azimuth;
    std::string elevation;
    std::string zoom;
    std::string step;
    std::string retained;
    std::string boundary;
    std::string factor;
    std::string background;
    std::string opaqueSize;
    std::string opaqueCenter;
    std::string opaqueColor;
    std::string emissive;
    std::string diffuse;
    std::string specular;
    std::string shininess;
    std::string opacityPoints;
    std::string colorPoints;
    std::string maxMemory;
    std::string turntable;
};

/// Collects the first thing that is wrong.
class Checks
{
public:
    const std::string &error() const { return _error; }

    void fail(const std::string &what)
    {
        if (_error.empty())
        {
            _error = what;
        }
    }

    /// A number in a range; an open end excludes its bound. An empty text leaves the value.
    void number(const char *option, const std::string &text, double &value, double low, double high,
                const char *range)
    {
        double read = 0.0;
        if (text.empty())
        {
            return;
        }
        if (!numberFrom(text, read))
        {
            fail(std::string(option) + ": '" + text + "' is not a number");
        }
        else if (read < low || read > high)
        {
            fail(std::string(option) + ": " + text + " is out of range, it must be " + range);
        }
        else
        {
            value = read;
        }
    }

    bool triple(const char *option, const char *form, const std::string &text, Vec3 &value)
    {
        if (text.empty())
        {
            return false;
        }
        Vec3 read{};
        if (!numbersFrom(text, read.data(), read.size()))
        {
            fail(std::string(option) + ": '" + text + "' is not " + form);
            return false;
        }
        // What is farther away has no place in single precision.
        if (std::any_of(read.begin(), read.end(), [](double v) { return std::abs(v) > 1e9; }))
        {
            fail(std::string(option) + ": " + text + " is out of range, each number must be -1e9 to 1e9");
            return false;
        }
        value = read;
        return true;
    }

    void color(const char *option, const std::string &text, Vec3 &value)
    {
        Vec3 read{};
        if (!triple(option, "r,g,b", text, read))
        {
            return;
        }
        if (std::any_of(read.begin(), read.end(), [](double c) { return c < 0.0 || c > 1.0; }))
        {
            fail(std::string(option) + ": " + text + " is out of range, each number must be 0 to 1");
            return;
        }
        value = read;
    }

    void size(const std::string &text, int &width, int &height)
    {
        if (text.empty())
        {
            return;
        }
        double read[2] = {};
        if (!numbersFrom(text, read, 2) || read[0] != std::floor(read[0]) || read[1] != std::floor(read[1]))
        {
            fail("--size: '" + text + "' is not W,H in whole pixels");
            return;
        }
        for (const double side : read)
        {
            if (side < 1.0 || side > Options::maxSide)
            {
                fail("--size: " + text + " is out of range, each side must be 1 to " +
                     std::to_string(Options::maxSide) + " pixels");
                return;
            }
        }
        width = static_cast<int>(read[0]);
        height = static_cast<int>(read[1]);
    }

    /// Both lists or none.
    void points(const std::string &opacity, const std::string &color, std::optional<TransferPoints> &points)
    {
        if (opacity.empty() && color.empty())
        {
            return;
        }
        if (opacity.empty() || color.empty())
        {
            fail("--opacity-points and --color-points go together");
            return;
        }
        TransferPoints read;
        std::string wrong = opacityPointsFrom(opacity, read.opacity);
        if (!wrong.empty())
        {
            fail("--opacity-points: " + wrong);
            return;
        }
        wrong = colorPointsFrom(color, read.color);
        if (!wrong.empty())
        {
            fail("--color-points: " + wrong);
            return;
        }
        points = read;
    }

    void whole(const char *option, const std::string &text, int &value, int low, int high)
    {
        double read = value;
        number(option, text, read, low, high, (std::to_string(low) + " to " + std::to_string(high)).c_str());
        if (read != std::floor(read))
        {
            fail(std::string(option) + ": " + text + " is not a whole number");
            return;
        }
        value = static_cast<int>(read);
    }

private:
    std::string _error;
};

constexpr double smallest = 1e-6;

/// Turns texts into options. What is wrong is one line, or "".
std::string readTexts(const Texts &texts, Options &options)
{
    Checks checks;
    checks.size(texts.size, options.width, options.height);

    CameraRequest &camera = options.camera;
    Vec3 v{};
    if (checks.triple("--camera-position", "x,y,z", texts.position, v))
    {
        camera.position = v;
    }
    if (checks.triple("--camera-focal-point", "x,y,z", texts.focalPoint, v))
    {
        camera.focalPoint = v;
    }
    if (checks.triple("--camera-view-up", "x,y,z", texts.viewUp, v))
    {
        camera.viewUp = v;
    }
    checks.number("--camera-view-angle", texts.viewAngle, camera.viewAngle, 0.01, 179.0,
                  "0.01 to 179 degrees");
    checks.number("--azimuth", texts.azimuth, camera.azimuth, -1e6, 1e6, "-1e6 to 1e6 degrees");
    checks.number("--elevation", texts.elevation, camera.elevation, -1e6, 1e6, "-1e6 to 1e6 degrees");
    checks.number("--zoom", texts.zoom, camera.zoom, 0.001, 1000.0, "0.001 to 1000");
    if (checks.error().empty())
    {
        // The volume's middle is the origin of the scene.
        const std::string wrong = checkCamera(camera);
        if (!wrong.empty())
        {
            checks.fail(wrong);
        }
    }

    checks.number("--step", texts.step, options.step, Options::minStep, 1.0, "0.0001 to 1");
    GradientModulation &modulation = options.gradientModulation;
    checks.number("--retained-opacity", texts.retained, modulation.retained, 0.0, 1e6, "0 to 1e6");
    checks.number("--boundary-opacity", texts.boundary, modulation.boundary, 0.0, 1e6, "0 to 1e6");
    checks.number("--opacity-factor", texts.factor, modulation.factor, 0.0, 1e6, "0 to 1e6");
    checks.color("--background", texts.background, options.background);

    if (checks.triple("--opaque-size", "x,y,z", texts.opaqueSize, v))
    {
        if (std::any_of(v.begin(), v.end(), [](double side) { return side < smallest || side > 100.0; }))
        {
            checks.fail("--opaque-size: " + texts.opaqueSize +
                        " is out of range, each number must be above 0, and at most 100");
        }
        options.opaque.size = v;
    }
    if (checks.triple("--opaque-center", "x,y,z", texts.opaqueCenter, v))
    {
        if (std::any_of(v.begin(), v.end(), [](double c) { return std::abs(c) > 100.0; }))
        {
            checks.fail("--opaque-center: " + texts.opaqueCenter +
                        " is out of range, each number must be -100 to 100");
        }
        options.opaque.center = v;
    }
    checks.color("--opaque-color", texts.opaqueColor, options.opaque.color);

    Material &material = options.material;
    checks.color("--emissive", texts.emissive, material.emissive);
    checks.color("--diffuse", texts.diffuse, material.diffuse);
    checks.color("--specular", texts.specular, material.specular);
    checks.number("--shininess", texts.shininess, material.shininess, 0.0, 1.0, "0 to 1");
    checks.points(texts.opacityPoints, texts.colorPoints, options.points);
    checks.number("--max-memory", texts.maxMemory, options.maxMemory, 0.0, 1e9, "0 to 1e9 MiB");
    checks.whole("--turntable", texts.turntable, options.turntable, 1, 9999);
    return checks.error();
}

/// What single options can't see.
std::string checkTogether(const Options &options)
{
    const bool window = !options.info && options.output.empty();
    if (!window && options.input.empty())
    {
        return "scan is required";
    }
    if (window && options.turntable > 0)
    {
        return "--turntable needs --output";
    }
    if (!options.preset.empty() && findPreset(options.preset) == nullptr)
    {
        return "--preset: '" + options.preset + "' is none, see --list-presets";
    }
    const bool composited = options.shading == Shading::Dvr || options.shading == Shading::Lit;
    if (options.gradientModulation.enabled && !composited)
    {
        return "--gradient-modulation works with --shading dvr and lit only";
    }
    if (options.preIntegrated && !composited)
    {
        return "--pre-integrated works with --shading dvr and lit only";
    }
    return {};
}

template <typename Value>
CLI::Option *addChoice(CLI::App &app, const std::string &name, Value &value,
                       const std::map<std::string, Value> &choices, const std::string &help)
{
    std::string words;
    for (const auto &choice : choices)
    {
        words += (words.empty() ? "" : "|") + choice.first;
    }
    const auto check = [choices, words](std::string &text) -> std::string
    {
        const auto found = choices.find(text);
        if (found == choices.end())
        {
            return "'" + text + "' is not one of " + words;
        }
        text = std::to_string(static_cast<int>(found->second));
        return {};
    };
    return app.add_option(name, value, help)->transform(CLI::Validator(check, ""))->type_name(words);
}

/// What is said twice counts as it was said last; what is said must not be empty.
void checkAll(CLI::App &app)
{
    for (CLI::Option *option :
         app.get_options([](const CLI::Option *o) { return o->get_items_expected_max() > 0; }))
    {
        option->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
        option->check(CLI::Validator(
            [](std::string &text) { return std::string(text.empty() ? "is empty" : ""); }, ""));
    }
}

/// CLI11's words, on one line.
std::string oneLine(std::string text)
{
    while (!text.empty() && text.back() == '\n')
    {
        text.pop_back();
    }
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

const char *const footer =
    "The scene's units are those of the scan's voxel size, mostly millimetres; the volume's middle is the "
    "origin, x, y and z\n"
    "run along the voxel axes. Without camera options a head is seen from its front and side.\n"
    "Exit status: 0 success, 1 something could not be read, drawn or written, 2 the command line is wrong.";

} // namespace

CommandLine parseCommandLine(int argc, const char *const *argv)
{
    CommandLine result;
    Options &options = result.options;
    Texts texts;

    CLI::App app{"Ray casts a scan: in a window, or with --output into a picture, without a display.",
                 "tessaly-view"};
    app.footer(footer);
    app.get_formatter()->column_width(34);
    app.set_version_flag("--version", std::string("tessaly-view ") + TESSALY_VERSION,
                         "Print the version and end");

    app.add_option("scan", options.input,
                   "The volume: NIfTI, .dat with .raw, NRRD, a TIFF stack, a folder of DICOM; a window "
                   "begins without")
        ->type_name("FILE");
    app.add_option("-o,--output", options.output, "The picture, a .png file [a window]")->type_name("FILE");
    app.add_option("--turntable", texts.turntable,
                   "So many pictures all around the volume: picture-000.png and on for --output picture.png")
        ->type_name("N");
    app.add_option("--size", texts.size, "Pixels of picture or window [1024,768]")->type_name("W,H");
    app.add_option("--background", texts.background, "Colour behind the volume, each 0 to 1")
        ->type_name("R,G,B");

    const std::string cameraGroup = "Camera";
    const auto cameraOption = [&](const char *name, std::string &text, const char *form, const char *help)
    { app.add_option(name, text, help)->type_name(form)->group(cameraGroup); };
    cameraOption("--camera-position", texts.position, "X,Y,Z",
                 "Where it stands [so that the volume fits the picture]");
    cameraOption("--camera-focal-point", texts.focalPoint, "X,Y,Z",
                 "What it looks at [the middle: of the volume with a position, of what is visible without]");
    cameraOption("--camera-view-up", texts.viewUp, "X,Y,Z", "What is up in the picture [0,0,1]");
    cameraOption("--camera-view-angle", texts.viewAngle, "DEGREES", "Full vertical angle of view [30]");
    cameraOption("--azimuth", texts.azimuth, "DEGREES", "Turn it around the volume, to its right [0]");
    cameraOption("--elevation", texts.elevation, "DEGREES", "Turn it around the volume, upwards [0]");
    cameraOption("--zoom", texts.zoom, "FACTOR", "Magnify the picture [1]");

    const std::string lookGroup = "Look";
    addChoice<Shading>(
        app, "--shading", options.shading,
        {{"dvr", Shading::Dvr}, {"lit", Shading::Lit}, {"mip", Shading::Mip}, {"xray", Shading::Xray}},
        "Emission and absorption, the same lit, maximum intensity, or sum [lit]")
        ->group(lookGroup);
    app.add_option("--preset", options.preset,
                   "Transfer function and shading for a kind of scan; other options go ahead of it")
        ->type_name("NAME")
        ->group(lookGroup);
    bool listPresets = false;
    app.add_flag("--list-presets", listPresets, "Print the presets and end")->group(lookGroup);
    app.add_option("--transfer-function", options.transferFunction,
                   "Text file with opacity and colour points [made from the histogram]")
        ->type_name("FILE")
        ->group(lookGroup);
    const auto lookOption = [&](const char *name, std::string &text, const char *form, const char *help)
    { app.add_option(name, text, help)->type_name(form)->group(lookGroup); };
    lookOption(
        "--opacity-points", texts.opacityPoints, "P,A,...",
        "The opacity points themselves: position and opacity of each, 0 to 1; goes with --color-points");
    lookOption("--color-points", texts.colorPoints, "P,R,G,B,...",
               "The colour points: position and colour of each");
    lookOption("--emissive", texts.emissive, "R,G,B", "Lit: what a sample gives off itself [0.28,0.28,0.28]");
    lookOption("--diffuse", texts.diffuse, "R,G,B", "Lit: what it scatters [1,1,1]");
    lookOption("--specular", texts.specular, "R,G,B", "Lit: its highlight [0.22,0.22,0.22]");
    lookOption("--shininess", texts.shininess, "NUMBER",
               "Lit: sharpness of the highlight, 0 to 1, not with --gradient-modulation [0.1953125]");
    CLI::Option *modulation = app.add_flag("--gradient-modulation", options.gradientModulation.enabled,
                                           "Multiply opacity by retained + boundary * |gradient|^factor")
                                  ->group(lookGroup);
    const auto modulationOption = [&](const char *name, std::string &text, const char *help)
    { app.add_option(name, text, help)->type_name("NUMBER")->group(lookGroup)->needs(modulation); };
    modulationOption("--retained-opacity", texts.retained, "The constant term [0.1]");
    modulationOption("--boundary-opacity", texts.boundary, "The share of boundaries [0.9]");
    modulationOption("--opacity-factor", texts.factor, "The exponent [0.5]");

    const std::string raysGroup = "Rays";
    app.add_option("--step", texts.step,
                   "Step along a ray, as a share of the volume's edge; below 0.001 long rays end early "
                   "[0.005]")
        ->type_name("NUMBER")
        ->group(raysGroup);
    addChoice<Ray>(app, "--ray", options.ray, {{"simple", Ray::Simple}, {"interleaved", Ray::Interleaved}},
                   "Where rays begin: alike, or staggered over 2 x 2 pixels [simple]")
        ->group(raysGroup);
    addChoice<BoundingGeometry>(
        app, "--geometry", options.geometry,
        {{"box", BoundingGeometry::Box}, {"boundary", BoundingGeometry::Boundary}},
        "Rays run through the whole box, or from the first visible block to the last [boundary]")
        ->group(raysGroup);
    addChoice<Traversal>(app, "--traversal", options.traversal,
                         {{"simple", Traversal::Simple}, {"block", Traversal::Block}},
                         "Step by step, or leaping over empty blocks [simple]")
        ->group(raysGroup);
    addChoice<Normals>(
        app, "--normals", options.normals,
        {{"pre", Normals::Precomputed}, {"central", Normals::Central}, {"sobel", Normals::Sobel}},
        "Gradients: precomputed (three bytes a voxel), central differences, or Sobel [central]")
        ->group(raysGroup);
    app.add_flag("--pre-integrated", options.preIntegrated, "Classify stretches of a ray instead of points")
        ->group(raysGroup);

    const std::string opaqueGroup = "Opaque object";
    CLI::Option *opaque =
        app.add_flag("--opaque", options.opaque.enabled, "Put a box into the scene, that the rays stop at")
            ->group(opaqueGroup);
    app.add_option("--opaque-file", options.opaque.file, "A mesh instead of the box: glTF, OBJ, PLY or STL")
        ->type_name("FILE")
        ->group(opaqueGroup)
        ->needs(opaque);
    const auto opaqueOption = [&](const char *name, std::string &text, const char *form, const char *help)
    { app.add_option(name, text, help)->type_name(form)->group(opaqueGroup)->needs(opaque); };
    opaqueOption("--opaque-size", texts.opaqueSize, "X,Y,Z",
                 "Its sides, as shares of the volume's [1.4,0.06,0.06]");
    opaqueOption("--opaque-center", texts.opaqueCenter, "X,Y,Z",
                 "Its middle, as shares of the volume's sides from the volume's middle [0,0,0]");
    opaqueOption("--opaque-color", texts.opaqueColor, "R,G,B", "Its colour, each 0 to 1 [0.3,0.5,0.75]");

    app.add_flag("--swapped", options.swapped, "Swap the bytes of 16-bit voxels");
    app.add_option("--max-memory", texts.maxMemory,
                   "Reduce the volume until it takes no more on the GPU [no limit]")
        ->type_name("MIB");
    app.add_flag("!--no-panel", options.panel, "The window begins without its panel");
    app.add_option("--save-transfer-function", options.saveFunction,
                   "Write the transfer function of the picture, at the end, to a text file")
        ->type_name("FILE");
    app.add_option("--save-state", options.saveState,
                   "Write the options of the picture, at the end, to a file")
        ->type_name("FILE");
    app.set_config("--load-state", "", "Read options from such a file; those of the command line go ahead")
        ->type_name("FILE");
    app.allow_config_extras(CLI::config_extras_mode::error);
    CLI::Option *info = app.add_flag("--info", options.info, "Print what was read, draw nothing");
    CLI::Option *quiet =
        app.add_flag("-q,--quiet", options.quiet, "Print nothing but errors")->excludes(info);
    app.add_flag("-v,--verbose", options.verbose, "Print what happens, on standard error")->excludes(quiet);

    checkAll(app);

    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::CallForHelp &)
    {
        result.text = app.help();
        return result;
    }
    catch (const CLI::CallForVersion &version)
    {
        result.text = std::string(version.what()) + "\n";
        return result;
    }
    catch (const CLI::ParseError &error)
    {
        result.exitStatus = ExitUsage;
        result.text = oneLine(error.what());
        return result;
    }

    if (listPresets)
    {
        result.text = presetList();
        return result;
    }
    if (const Preset *preset = findPreset(options.preset); preset != nullptr && app.count("--shading") == 0)
    {
        options.shading = preset->shading;
    }
    std::string wrong = readTexts(texts, options);
    if (wrong.empty())
    {
        wrong = checkTogether(options);
    }
    if (!wrong.empty())
    {
        result.exitStatus = ExitUsage;
        result.text = wrong;
        return result;
    }
    result.run = true;
    return result;
}

} // namespace viewer
