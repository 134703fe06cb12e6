#ifndef TESSALY_VIEW_OPTIONS_H
#define TESSALY_VIEW_OPTIONS_H

/// \file
/// What a user can ask of the viewer, and the command line that says it.

#include "Geometry.h"
#include "OrbitCamera.h"
#include "TransferPoints.h"

#include <optional>
#include <string>
#include <tuple>

namespace viewer
{

enum class Shading
{
    Dvr,  ///< emission and absorption
    Lit,  ///< the same, lit
    Mip,  ///< maximum intensity
    Xray, ///< sum of intensities
};

enum class Ray
{
    Simple,
    Interleaved,
};

enum class BoundingGeometry
{
    Box,
    Boundary,
};

enum class Traversal
{
    Simple,
    Block,
};

enum class Normals
{
    Precomputed,
    Central,
    Sobel,
};

/// How a lit sample answers to the light; only Shading::Lit uses it.
struct Material
{
    Vec3 emissive{0.28, 0.28, 0.28};
    Vec3 diffuse{1.0, 1.0, 1.0};
    Vec3 specular{0.22, 0.22, 0.22};
    double shininess = defaultShininess; ///< 0 to 1; the highlight's exponent is 128 times this

    /// The exponent that every program of the library begins with.
    static constexpr double defaultShininess = 25.0 / 128.0;

    friend bool operator==(const Material &a, const Material &b)
    {
        return std::tie(a.emissive, a.diffuse, a.specular, a.shininess) ==
               std::tie(b.emissive, b.diffuse, b.specular, b.shininess);
    }
};

/// Opacity is multiplied by retained + boundary * |gradient| ^ factor.
struct GradientModulation
{
    bool enabled = false;
    double retained = 0.1;
    double boundary = 0.9;
    double factor = 0.5;

    friend bool operator==(const GradientModulation &a, const GradientModulation &b)
    {
        return std::tie(a.enabled, a.retained, a.boundary, a.factor) ==
               std::tie(b.enabled, b.retained, b.boundary, b.factor);
    }
};

/// A box or a mesh in the scene that the rays stop at. The numbers are shares of the volume's extent, from
/// its middle.
struct OpaqueBox
{
    bool enabled = false;
    std::string file; ///< a mesh instead of the box, in the scene's units and place; "" for the box
    Vec3 size{1.4, 0.06, 0.06};
    Vec3 center{0, 0, 0};
    Vec3 color{0.30, 0.50, 0.75};

    friend bool operator==(const OpaqueBox &a, const OpaqueBox &b)
    {
        return std::tie(a.enabled, a.file, a.size, a.center, a.color) ==
               std::tie(b.enabled, b.file, b.size, b.center, b.color);
    }
};

struct Options
{
    static constexpr int maxSide = 8192;
    static constexpr double minStep = 0.0001;

    std::string input;  ///< "" only for a window that waits for a file
    std::string output; ///< "" for a window, and with `info`
    int width = 1024;
    int height = 768;
    CameraRequest camera;
    Shading shading = Shading::Lit;
    Material material;
    std::string preset;                   ///< the name of one, or ""
    std::string transferFunction;         ///< a file, or ""
    std::optional<TransferPoints> points; ///< ahead of the file, which is ahead of the preset
    double step = 0.005; ///< of the volume's edge; at this one a sample has just the opacity of the table
    Ray ray = Ray::Simple;
    BoundingGeometry geometry = BoundingGeometry::Boundary;
    Traversal traversal = Traversal::Simple;
    Normals normals = Normals::Central;
    bool preIntegrated = false;
    GradientModulation gradientModulation;
    OpaqueBox opaque;
    Vec3 background{0.07, 0.08, 0.11};
    bool swapped = false;
    double maxMemory = 0.0;   ///< MiB that the volume may take on the GPU; 0 for no limit
    int turntable = 0;        ///< pictures around the volume; 0 for one picture
    bool panel = true;        ///< whether the window begins with its panel
    std::string saveFunction; ///< a file, or ""
    std::string saveState;    ///< a file, or ""
    bool info = false;
    bool quiet = false;
    bool verbose = false;
};

/// Exit statuses of the program.
enum ExitStatus
{
    ExitSuccess = 0,
    ExitFailure = 1, ///< something could not be read, drawn or written
    ExitUsage = 2,   ///< the command line is wrong
};

/// What a command line comes to.
struct CommandLine
{
    bool run = false; ///< whether there is work to do, as `options` tell
    Options options;
    int exitStatus = ExitSuccess; ///< where there is none
    std::string text; ///< for standard output with ExitSuccess (help, version); else one line without its end
};

/// Reads the arguments, the program's name first, and checks all that can be known without looking at a file.
CommandLine parseCommandLine(int argc, const char *const *argv);

/// The options that a picture depends on, as the lines "name=value" that --load-state reads: everything but
/// where the picture goes and what is printed. Numbers are written so that they are read as the same numbers.
std::string stateText(const Options &options);

/// What a user is shown by --list-presets: name, two blanks at least, and what it is for, a line each.
std::string presetList();

} // namespace viewer

#endif
