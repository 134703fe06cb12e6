// A naive picture of a volume, computed on the processor: what the passes on the graphics card have to come
// up with.
#ifndef TESSALY_TESTS_REFERENCE_REFERENCE_H
#define TESSALY_TESTS_REFERENCE_REFERENCE_H

#include "reference/Tables.h"
#include "reference/Vectors.h"
#include "reference/Volumes.h"

#include <array>
#include <cstdint>
#include <vector>

namespace reference
{

enum class RayType { Simple, Interleaved };
enum class GeometryType { Box, Boundary };
enum class TraversalType { Simple, BlockSkipping };
enum class NormalType { Precomputed, CentralDifferences, Sobel };
enum class ShadingType { Dvr, LitDvr, Mip, XRay };

/// An opaque, unlit box of one colour that stands in the scene beside the volume: `low`..`high` in its own
/// coordinates, which `toWorld` takes to the world. Both sides of its faces are drawn.
struct OpaqueBox
{
    Mat4 toWorld = identity();
    Vec3d low{-0.5, -0.5, -0.5};
    Vec3d high{0.5, 0.5, 0.5};
    Color color{1.0f, 1.0f, 1.0f};
};

/// A perspective camera: `beaconToWorld` takes eye coordinates (looking down -z, y up) to the world; `fov` is
/// the whole vertical angle in radians; the aspect is that of the viewport. `nearPlane` and `farPlane` are
/// positive distances.
struct CameraView
{
    Mat4 beaconToWorld = identity();
    double fov = 1.0;
    double nearPlane = 0.1;
    double farPlane = 100.0;
};

/// The first light: position in eye coordinates, taken as a direction towards the light (w is 0).
struct LightSource
{
    Vec3f position{0.0f, 0.0f, 1.0f};
    Color diffuse{1.0f, 1.0f, 1.0f};
    Color specular{1.0f, 1.0f, 1.0f};
};

/// Everything that the picture depends on. The defaults are those of a fresh volume node where it has one.
struct Scene
{
    Volume volume;                       ///< raw voxels; 16-bit ones are normalised by the reference
    bool swapped = false;                ///< the two bytes of 16-bit voxels are exchanged
    Vec3d sliceThickness{1.0, 1.0, 1.0}; ///< voxel spacing
    Vec3d dimensions{-1.0, -1.0, -1.0};  ///< extent in the scene; any negative one: voxels times thickness
    Mat4 nodeToWorld = identity();       ///< to-world matrix of the node above the volume

    TransferSource transfer;    ///< control points or a finished table
    bool preintegrated = false; ///< classify by pairs of values

    RayType ray = RayType::Simple;
    GeometryType geometry = GeometryType::Boundary;
    TraversalType traversal = TraversalType::Simple;
    NormalType normal = NormalType::CentralDifferences;
    ShadingType shading = ShadingType::Dvr;

    bool gradientModulation = false;
    float kgc = 0.5f;
    float kgs = 0.5f;
    float kge = 4.0f;
    Color emissiveColor{0.5f, 0.5f, 0.5f};
    Color diffuseColor{0.75f, 0.75f, 0.75f};
    Color specularColor{1.0f, 1.0f, 1.0f};
    float exponent = 25.0f; ///< what the uniform holds, which is not always the member's value

    float stepSize = 0.004f;
    CameraView camera;
    int width = 64; ///< viewport, in pixels
    int height = 64;
    LightSource light;
    Color background{0.0f, 0.0f, 0.0f};
    std::vector<OpaqueBox> boxes;
};

/// Why a pixel may differ from the reference, as bits of a mask; 0 is none: the pixel is to agree within
/// rounding.
enum Reason : std::uint8_t
{
    Exact = 0,
    Undefined = 1,       ///< no defined result: zero normal, power of a negative base, division by zero
    Alternative = 2,     ///< rounding decides the start, the end or giving up: see Picture::alternatives
    Edge = 4,            ///< a silhouette passes within half a pixel: coverage may differ
    TexturePrecision = 8 ///< small texture differences are blown up: near-zero normals, close table entries
};

/// The other colours that a pixel may take, `count` of them.
struct Alternatives
{
    int count = 0;
    std::array<Color, 8> colors{};
};

/// The picture and, for tests of the single passes, what the passes leave behind. All images are width x
/// height, x fastest, the lowest row first, as the window's coordinates run.
struct Picture
{
    int width = 0;
    int height = 0;
    std::vector<Color> pixels;         ///< what the window shows, 0..1
    std::vector<std::uint8_t> reasons; ///< bits of Reason
    std::vector<Alternatives> alternatives;
    std::vector<Vec4f> front;      ///< entry point and coverage
    std::vector<Vec4f> back;       ///< direction and length; all 0 where no back face is
    std::vector<Color> sceneColor; ///< the opaque scene, through half floats
    std::vector<float> sceneDepth; ///< 0..1, multiples of 1 / (2^24 - 1)
    std::vector<int> samples;      ///< samples that the ray of the pixel took

    std::size_t index(int x, int y) const { return static_cast<std::size_t>(y) * width + x; }
};

/// Renders the scene pixel by pixel. The volume has to have at least one voxel and 8 or 16 bits; the viewport
/// at least one pixel; otherwise the picture is empty.
Picture render(const Scene &scene);

/// How a shown picture compares with the reference.
struct Comparison
{
    int judged = 0;     ///< pixels that must agree: those with no reason to be left out
    int agreeing = 0;   ///< of these, within the tolerance of the reference or one of its alternatives
    int undefined = 0;  ///< left out as undefined
    int edge = 0;       ///< left out as edge (and not undefined)
    int precision = 0;  ///< left out for precision (and none of the two above)
    float worst = 0.0f; ///< greatest channel difference of a judged pixel
    int worstX = 0;
    int worstY = 0;
    double mean = 0.0; ///< mean channel difference of the judged pixels

    /// Share of the judged pixels that agree; 0 where none was judged, so that an empty comparison never
    /// passes.
    double share() const { return judged > 0 ? static_cast<double>(agreeing) / judged : 0.0; }
};

/// Compares bytes read from a window, `channels` (3 or 4) per pixel, lowest row first, tightly packed, of the
/// picture's size, with the picture. `tolerance` is per channel, of 255. Pixels with a reason in `leaveOut`
/// are counted but not judged; a renderer that filters in full floats needs no TexturePrecision there.
Comparison compare(const Picture &picture, const std::uint8_t *shown, int channels, float tolerance,
                   std::uint8_t leaveOut = Undefined | Edge | TexturePrecision);

}

#endif
