// One ray through the voxels: sampling, classification, shading and the walk, in the shaders' own order of
// operations.
#ifndef TESSALY_TESTS_REFERENCE_RAYCASTER_H
#define TESSALY_TESTS_REFERENCE_RAYCASTER_H

#include "reference/Reference.h"

namespace reference
{

/// A three-dimensional texture of floats with a rim of one texel, so that sampling outside needs no case of
/// its own: the rim holds 0 (border) or the outermost texels (edge).
class Texture3
{
public:
    /// `values` are `channels` floats per texel of a `sides` grid, x fastest.
    void set(const std::array<int, 3> &sides, int channels, const std::vector<float> &values, bool edge);
    /// Linear lookup of one channel at unit coordinates.
    float sample(const Vec3f &position, int channel = 0) const;

private:
    std::array<int, 3> _sides{};
    std::array<int, 3> _padded{};
    int _channels = 1;
    std::vector<float> _texels;
};

/// Which of the decisions that rounding may turn are turned.
struct Turn
{
    bool start = false;     ///< the start moves by one whole step
    bool end = false;       ///< the walk's length falls on the other side of a whole number of steps
    bool threshold = false; ///< opacity beside the early end is judged the other way
};

struct RayResult
{
    Vec4f color; ///< premultiplied, before the mix with the scene
    int samples = 0;
    bool startDoubtful = false;
    bool endDoubtful = false;
    bool thresholdDoubtful = false;
    bool undefined = false;
    bool imprecise = false;
};

/// All that the rays of one picture share. Built once, then read only.
class RayCaster
{
public:
    /// `volume` is normalised and padded; `edge` says that its texture is clamped to the edge.
    /// `lightDirection` is the unit direction to the light in volume coordinates.
    RayCaster(const Scene &scene, const Volume &volume, bool edge, const std::vector<Entry> &table,
              const BlockGrid &blocks, const Vec3f &lightDirection);

    /// Casts the ray of pixel (x, y) from the two textures' values. A length that is not above 0 takes no
    /// sample.
    RayResult cast(const Vec4f &front, const Vec4f &back, int x, int y, const Turn &turn) const;

private:
    struct Sample
    {
        Vec3f position{};
        float t = 0.0f;
        Vec3f normal{0.0f, 1.0f, 0.0f};
        float value = 0.0f;
        Vec4f color;
    };
    struct Walk
    {
        Vec3f origin{};
        Vec3f direction{};
        float tfar = 0.0f;
        float length = 0.0f;
        bool active = false;
        Sample current;
        Sample previous;
        RayResult result;
        Turn turn;
    };

    void start(Walk &walk, int x, int y) const;
    void walkSimply(Walk &walk) const;
    void walkBlocks(Walk &walk) const;
    void shade(Walk &walk) const;
    void shadeDvr(Walk &walk) const;
    void classify(Walk &walk) const;
    void correctOpacity(Walk &walk) const;
    void light(Walk &walk) const;
    Vec3f normalAt(const Vec3f &position) const;
    bool skipped(const Vec3f &index) const;

    const Scene &_scene;
    const BlockGrid &_blocks;
    bool _wide;
    Texture3 _voxels;
    Texture3 _normals;
    Vec3f _texelSize;
    Vec3f _light;
    std::vector<Vec4f> _table;
    std::vector<Vec4f> _integral;
};

}

#endif
