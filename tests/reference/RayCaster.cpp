// The start of a ray and its walk.
#include "reference/RayCaster.h"

#include <algorithm>
#include <cmath>

namespace reference
{

namespace
{

// How far the rounding of another machine may move a point of the volume.
constexpr float pointSlack = 1e-5f;

float fract(float value)
{
    return value - std::floor(value);
}

}

void Texture3::set(const std::array<int, 3> &sides, int channels, const std::vector<float> &values, bool edge)
{
    _sides = sides;
    _padded = {sides[0] + 3, sides[1] + 3, sides[2] + 3};
    _channels = channels;
    _texels.assign(static_cast<std::size_t>(_padded[0]) * _padded[1] * _padded[2] * channels, 0.0f);
    std::size_t out = 0;
    for(int z = -1; z < sides[2] + 2; ++z)
        for(int y = -1; y < sides[1] + 2; ++y)
            for(int x = -1; x < sides[0] + 2; ++x)
                for(int channel = 0; channel < channels; ++channel, ++out)
                {
                    const int cx = std::clamp(x, 0, sides[0] - 1);
                    const int cy = std::clamp(y, 0, sides[1] - 1);
                    const int cz = std::clamp(z, 0, sides[2] - 1);
                    if(edge || (cx == x && cy == y && cz == z))
                        _texels[out] =
                            values[((static_cast<std::size_t>(cz) * sides[1] + cy) * sides[0] + cx) *
                                       channels +
                                   channel];
                }
}

float Texture3::sample(const Vec3f &position, int channel) const
{
    std::array<std::size_t, 3> cell{};
    std::array<float, 3> part{};
    for(int axis = 0; axis < 3; ++axis)
    {
        float u = position[axis] * static_cast<float>(_sides[axis]) - 0.5f;
        // A position that is no number samples the rim; its pixel is marked elsewhere.
        u = u > -1.0f ? std::min(u, static_cast<float>(_sides[axis])) : -1.0f;
        const float low = std::floor(u);
        part[axis] = u - low;
        cell[axis] = static_cast<std::size_t>(static_cast<int>(low) + 1);
    }
    const std::size_t stepX = _channels;
    const std::size_t stepY = stepX * _padded[0];
    const std::size_t stepZ = stepY * _padded[1];
    const float *texel = _texels.data() + cell[2] * stepZ + cell[1] * stepY + cell[0] * stepX + channel;
    const auto between = [](float a, float b, float t) { return a + (b - a) * t; };
    const float y0z0 = between(texel[0], texel[stepX], part[0]);
    const float y1z0 = between(texel[stepY], texel[stepY + stepX], part[0]);
    const float y0z1 = between(texel[stepZ], texel[stepZ + stepX], part[0]);
    const float y1z1 = between(texel[stepZ + stepY], texel[stepZ + stepY + stepX], part[0]);
    return between(between(y0z0, y1z0, part[1]), between(y0z1, y1z1, part[1]), part[2]);
}

RayCaster::RayCaster(const Scene &scene, const Volume &volume, bool edge, const std::vector<Entry> &table,
                     const BlockGrid &blocks, const Vec3f &lightDirection)
    : _scene(scene), _blocks(blocks), _wide(volume.bits == 16), _light(lightDirection)
{
    const std::array<int, 3> sides = {volume.width, volume.height, volume.depth};
    const float top = _wide ? 65535.0f : 255.0f;
    std::vector<float> values(volume.voxels.begin(), volume.voxels.end());
    for(float &value : values)
        value /= top;
    _voxels.set(sides, 1, values, edge);
    for(int axis = 0; axis < 3; ++axis)
        _texelSize[axis] = 1.0f / static_cast<float>(sides[axis]);

    if(scene.normal == NormalType::Precomputed)
    {
        const std::vector<std::uint8_t> bytes = normalBytes(volume);
        std::vector<float> normals(bytes.begin(), bytes.end());
        for(float &component : normals)
            component /= 255.0f;
        _normals.set(sides, 3, normals, true);
    }

    const auto narrowed = [](const std::vector<Entry> &entries) {
        std::vector<Vec4f> result;
        for(const Entry &entry : entries)
            result.push_back({static_cast<float>(entry[0]), static_cast<float>(entry[1]),
                              static_cast<float>(entry[2]), static_cast<float>(entry[3])});
        return result;
    };
    _table = narrowed(storedTable(table));
    if(scene.preintegrated)
        _integral = narrowed(_wide ? integralTable(table) : pairTable(table));
}

void RayCaster::start(Walk &walk, int x, int y) const
{
    const float step = _scene.stepSize;
    float nearest = 0.0f;
    float steepness = 0.0f;
    for(int axis = 0; axis < 3; ++axis)
    {
        const float direction = walk.direction[axis];
        const float here = -walk.origin[axis] / direction;
        const float there = (1.0f - walk.origin[axis]) / direction;
        const float least = std::min(here, there);
        if(direction == 0.0f && (walk.origin[axis] == 0.0f || walk.origin[axis] == 1.0f))
            walk.result.undefined = true;
        if(axis == 0 || least > nearest)
        {
            nearest = least;
            steepness = std::abs(direction);
        }
    }
    float offset = fract(nearest / step);
    const float slack = std::min(0.45f, pointSlack / (std::max(steepness, 1e-6f) * step));
    walk.result.startDoubtful = offset < slack || offset > 1.0f - slack;
    if(walk.result.startDoubtful && walk.turn.start)
        offset = offset < 0.5f ? 1.0f : 0.0f;
    float tnear = offset * step - step;
    walk.origin = walk.origin + tnear * walk.direction;
    tnear = 0.0f;
    walk.length = walk.tfar - tnear;
    if(_scene.ray == RayType::Interleaved)
    {
        // Fragments lie at pixel centres, so the remainders are 0.5 and 1.5: this is meant.
        const float moduloX = static_cast<float>(x % 2) + 0.5f;
        const float moduloY = static_cast<float>(y % 2) + 0.5f;
        const float rayOffset = (moduloX * 2.0f + moduloY) * step / 4.0f;
        walk.origin = walk.origin + rayOffset * walk.direction;
        walk.length = walk.tfar - (tnear + rayOffset);
    }
}

RayResult RayCaster::cast(const Vec4f &front, const Vec4f &back, int x, int y, const Turn &turn) const
{
    Walk walk;
    walk.turn = turn;
    walk.direction = {back.x, back.y, back.z};
    walk.tfar = back.w;
    walk.active = back.w > 0.0f;
    if(!walk.active)
        return walk.result;
    walk.origin = {front.x, front.y, front.z};
    start(walk, x, y);

    // A length within rounding of a whole number of steps can count one step more or fewer.
    float &limit = _scene.traversal == TraversalType::Simple ? walk.length : walk.tfar;
    const float steps = limit / _scene.stepSize;
    const float whole = std::round(steps);
    const float slack = std::min(0.45f, 2.0f * pointSlack / _scene.stepSize + 1e-6f * std::abs(steps));
    walk.result.endDoubtful = std::abs(steps - whole) < slack;
    if(walk.result.endDoubtful && turn.end)
        limit = (whole + (steps >= whole ? -slack : slack)) * _scene.stepSize;

    if(_scene.traversal == TraversalType::Simple)
        walkSimply(walk);
    else
        walkBlocks(walk);

    const Vec4f &color = walk.result.color;
    if(!std::isfinite(color.x) || !std::isfinite(color.y) || !std::isfinite(color.z) ||
       !std::isfinite(color.w))
    {
        walk.result.undefined = true;
        walk.result.color = {};
    }
    return walk.result;
}

void RayCaster::walkSimply(Walk &walk) const
{
    const float step = _scene.stepSize;
    const int numSteps = static_cast<int>(std::clamp(walk.length / step, -1.0f, 1e6f));
    const Vec3f advance = step * walk.direction;
    int k = 0;
    walk.current.position = walk.origin;
    walk.current.t = 0.0f;
    for(int i = 0; i < 42 && walk.active; ++i)
        for(int j = 0; j < 42 && walk.active; ++j)
        {
            ++k;
            shade(walk);
            walk.previous = walk.current;
            walk.current.position = walk.current.position + advance;
            walk.current.t += step;
            walk.active = walk.active && k < numSteps;
        }
}

bool RayCaster::skipped(const Vec3f &index) const
{
    std::array<int, 3> block{};
    for(int axis = 0; axis < 3; ++axis)
    {
        const float size = static_cast<float>(_blocks.sides[axis]);
        const float coordinate = (index[axis] + 0.5f) * (1.0f / size);
        // An index that is no number, from a ray along an axis, reads the first block; the walk marks it.
        const float texel = coordinate * size;
        block[axis] = texel > 0.0f ? static_cast<int>(std::floor(std::min(texel, size - 1.0f))) : 0;
    }
    return !_blocks.occupied(block[0], block[1], block[2]);
}

void RayCaster::walkBlocks(Walk &walk) const
{
    const float step = _scene.stepSize;
    const float invStep = 1.0f / step;
    const Vec3f advance = step * walk.direction;
    Vec3f scaledOrigin{};
    Vec3f scaledInverse{};
    Vec3f size{};
    bool flat = false;
    for(int axis = 0; axis < 3; ++axis)
    {
        size[axis] = static_cast<float>(_blocks.sides[axis]);
        const float forward = walk.direction[axis] > 0.0f ? 1.0f : 0.0f;
        scaledOrigin[axis] = walk.origin[axis] * size[axis] - forward;
        scaledInverse[axis] = (1.0f / walk.direction[axis]) * (1.0f / size[axis]);
        flat = flat || std::abs(walk.direction[axis]) < 1e-6f;
    }
    walk.current.position = walk.origin;
    walk.current.t = 0.0f;
    for(int i = 0; i < 255 && walk.active; ++i)
    {
        // The push ahead is in volume units although the position is in blocks: this is meant.
        Vec3f index{};
        bool between = false;
        for(int axis = 0; axis < 3; ++axis)
        {
            const float place = walk.current.position[axis] * size[axis] + advance[axis];
            index[axis] = std::floor(place);
            between = between || std::abs(place - std::round(place)) < pointSlack * size[axis];
        }
        if(skipped(index))
        {
            // Without a travel along an axis the distance to its next block is no number or infinite.
            walk.result.undefined = walk.result.undefined || flat;
            float next = 0.0f;
            for(int axis = 0; axis < 3; ++axis)
            {
                const float exit = (index[axis] - scaledOrigin[axis]) * scaledInverse[axis];
                next = axis == 0 ? exit : std::min(next, exit);
            }
            const float before = walk.current.t;
            walk.current.t = std::ceil(next * invStep) * step;
            walk.current.position = walk.origin + walk.current.t * walk.direction;
            walk.active = walk.active && walk.current.t < walk.tfar;
            // A skip that does not get on stands on a block's face, where rounding decides whether it ever
            // leaves.
            if(walk.active && !(walk.current.t > before) && between)
                walk.result.undefined = true;
            continue;
        }
        for(int j = 0; j < 8 && walk.active; ++j)
        {
            shade(walk);
            walk.previous = walk.current;
            walk.current.position = walk.current.position + advance;
            walk.current.t += step;
            walk.active = walk.active && walk.current.t < walk.tfar;
        }
    }
}

}
