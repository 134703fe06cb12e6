#ifndef TESSALY_VIEW_OPTIONS_H
#define TESSALY_VIEW_OPTIONS_H

/// \file
/// What a user can ask of the viewer, and the command line that says it.

#include "Geometry.h"
#include "OrbitCamera.h"

#include <string>

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

/// Opacity is multiplied by retained + boundary * |gradient| ^ factor.
struct GradientModulation
{
    bool enabled = false;
    double retained = 0.1;
    double boundary = 0.9;
    double factor = 0.5;
};

/// A box in the scene that the rays stop at. The numbers are shares of the volume's extent, from its middle.
struct OpaqueBox
{
    bool enabled = false;
    Vec3 size{1.4, 0.06, 0.06};
    Vec3 center{0, 0, 0};
    Vec3 color{0.30, 0.50, 0.75};
};

struct Options
{
    static constexpr int maxSide = 8192;
    static constexpr double minStep = 0.0001;

    std::string input;
    std::string output; ///< "" only with `info`
    int width = 1024;
    int height = 768;
    CameraRequest camera;
    Shading shading = Shading::Lit;
    std::string transferFunction; ///< a file, or "" for one from the histogram
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

} // namespace viewer

#endif
