// What happens to one sample: normal, classification, correction, light, composition.
#include "reference/RayCaster.h"

#include <algorithm>
#include <cmath>

namespace reference
{

namespace
{

// A weight below which a doubtful sample can't be seen.
constexpr float visible = 1.0f / 255.0f;
constexpr float correctionFactor = 200.0f;

Vec4f mix(const Vec4f &a, const Vec4f &b, float t)
{
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.z + (b.z - a.z) * t, a.w + (b.w - a.w) * t};
}

struct Texel
{
    int low;
    int high;
    float part;
};

// The two texels of a row of 256 that a linear lookup clamped to the edge mixes.
Texel linearTexel(float coordinate)
{
    const float u = coordinate * 256.0f - 0.5f;
    const float low = std::floor(u);
    const int index = static_cast<int>(std::clamp(low, -1.0f, 256.0f));
    return {std::clamp(index, 0, 255), std::clamp(index + 1, 0, 255), u - low};
}

Vec4f linear1(const std::vector<Vec4f> &table, float coordinate)
{
    const Texel x = linearTexel(coordinate);
    return mix(table[x.low], table[x.high], x.part);
}

Vec4f linear2(const std::vector<Vec4f> &table, float column, float row)
{
    const Texel x = linearTexel(column);
    const Texel y = linearTexel(row);
    return mix(mix(table[y.low * 256 + x.low], table[y.low * 256 + x.high], x.part),
               mix(table[y.high * 256 + x.low], table[y.high * 256 + x.high], x.part), y.part);
}

Vec4f nearest2(const std::vector<Vec4f> &table, float column, float row)
{
    const auto texel = [](float coordinate) {
        return static_cast<int>(std::clamp(std::floor(coordinate * 256.0f), 0.0f, 255.0f));
    };
    return table[texel(row) * 256 + texel(column)];
}

// A 16-bit value as a place in a table of 256 rows: column and row in unit coordinates.
std::array<float, 2> split(float value)
{
    const float scaled = value * 256.0f;
    const float row = std::floor(scaled);
    return {scaled - row, row / 256.0f};
}

}

Vec3f RayCaster::normalAt(const Vec3f &p) const
{
    const auto at = [&](int x, int y, int z) {
        return _voxels.sample({p[0] + static_cast<float>(x) * _texelSize[0],
                               p[1] + static_cast<float>(y) * _texelSize[1],
                               p[2] + static_cast<float>(z) * _texelSize[2]});
    };
    if(_scene.normal == NormalType::Precomputed)
        return {2.0f * _normals.sample(p, 0) - 1.0f, 2.0f * _normals.sample(p, 1) - 1.0f,
                2.0f * _normals.sample(p, 2) - 1.0f};
    if(_scene.normal == NormalType::CentralDifferences)
        return {-(at(1, 0, 0) - at(-1, 0, 0)) / 6.0f, -(at(0, 1, 0) - at(0, -1, 0)) / 6.0f,
                -(at(0, 0, 1) - at(0, 0, -1)) / 6.0f};
    Vec3f gradient{};
    for(int z = -1; z <= 1; ++z)
        for(int y = -1; y <= 1; ++y)
            for(int x = -1; x <= 1; ++x)
            {
                if(x == 0 && y == 0 && z == 0)
                    continue;
                const float value = at(x, y, z);
                const std::array<int, 3> offset = {x, y, z};
                for(int axis = 0; axis < 3; ++axis)
                {
                    const int off = std::abs(offset[(axis + 1) % 3]) + std::abs(offset[(axis + 2) % 3]);
                    const float weight = off == 0 ? 4.0f : off == 1 ? 2.0f : 1.0f;
                    gradient[axis] += static_cast<float>(offset[axis]) * weight * value;
                }
            }
    return {-gradient[0] / 32.0f, -gradient[1] / 32.0f, -gradient[2] / 32.0f};
}

void RayCaster::classify(Walk &walk) const
{
    const float value = walk.current.value;
    const float before = walk.previous.value;
    if(!_scene.preintegrated)
    {
        if(!_wide)
        {
            walk.current.color = linear1(_table, value);
            return;
        }
        const auto [column, row] = split(value);
        walk.current.color = linear2(_table, column, row);
        return;
    }
    if(!_wide)
    {
        walk.current.color = linear2(_integral, value, before);
        return;
    }
    if(std::abs(value - before) <= 1.0f / 65535.0f)
    {
        const auto [column, row] = split(value);
        Vec4f color = nearest2(_table, column, row);
        color.x *= color.w;
        color.y *= color.w;
        color.z *= color.w;
        walk.current.color = color;
        return;
    }
    const auto [column1, row1] = split(value);
    const auto [column2, row2] = split(before);
    const Vec4f one = nearest2(_integral, column1, row1);
    const Vec4f two = nearest2(_integral, column2, row2);
    const float weight = 1.0f / (65536.0f * (value - before));
    walk.current.color = {weight * (one.x - two.x), weight * (one.y - two.y), weight * (one.z - two.z),
                          weight * (one.w - two.w)};
    // Whole entries are subtracted but the exact distance divides: over a few entries the quotient jumps.
    const float entries = std::abs(value - before) * 65536.0f;
    const float weightInPicture = walk.current.color.w * (1.0f - walk.result.color.w);
    if(entries < 32.0f && weightInPicture * _scene.stepSize * correctionFactor / entries > 0.05f * visible)
        walk.result.imprecise = true;
}

void RayCaster::correctOpacity(Walk &walk) const
{
    Vec4f &color = walk.current.color;
    const float oldAlpha = color.w;
    if(1.0f - oldAlpha < 0.0f)
        walk.result.undefined = true;
    color.w = 1.0f - std::pow(1.0f - color.w, _scene.stepSize * correctionFactor);
    // Colours of the pre-integrated tables carry their opacity already.
    const float scale = _scene.preintegrated ? color.w / oldAlpha : color.w;
    color.x *= scale;
    color.y *= scale;
    color.z *= scale;
}

void RayCaster::light(Walk &walk) const
{
    Vec4f &color = walk.current.color;
    Vec3f &normal = walk.current.normal;
    const float size = length(normal);
    if(!(size > 1e-9f))
        walk.result.undefined = true;
    else
        normal = (1.0f / size) * normal;
    if(size < 0.0013f && color.w * (1.0f - walk.result.color.w) > visible)
        walk.result.imprecise = true;

    const Vec3f between = _light - walk.direction;
    const Vec3f half = (1.0f / length(between)) * between;
    const float ndotl = std::clamp(dot(_light, normal), 0.000001f, 1.0f);
    const float ndoth = std::clamp(dot(half, normal), 0.000001f, 1.0f);
    const float shine = std::pow(ndoth, _scene.exponent) * color.w;
    const LightSource &source = _scene.light;
    const auto lit = [&](float base, float emissive, float diffuse, float specular, float lightDiffuse,
                         float lightSpecular) {
        return emissive * base + diffuse * base * ndotl * lightDiffuse + specular * shine * lightSpecular;
    };
    color.x = lit(color.x, _scene.emissiveColor.r, _scene.diffuseColor.r, _scene.specularColor.r,
                  source.diffuse.r, source.specular.r);
    color.y = lit(color.y, _scene.emissiveColor.g, _scene.diffuseColor.g, _scene.specularColor.g,
                  source.diffuse.g, source.specular.g);
    color.z = lit(color.z, _scene.emissiveColor.b, _scene.diffuseColor.b, _scene.specularColor.b,
                  source.diffuse.b, source.specular.b);
}

void RayCaster::shadeDvr(Walk &walk) const
{
    Sample &current = walk.current;
    Vec4f &out = walk.result.color;
    current.value = _voxels.sample(current.position);
    classify(walk);
    if(!(current.color.w > 0.0f))
        return;
    correctOpacity(walk);
    const bool lighting = _scene.shading == ShadingType::LitDvr;
    if(lighting || _scene.gradientModulation)
        current.normal = normalAt(current.position);
    if(_scene.gradientModulation)
    {
        const float oldAlpha = current.color.w;
        current.color.w *= _scene.kgc + _scene.kgs * std::pow(length(current.normal), _scene.kge);
        const float scale = current.color.w / oldAlpha;
        if(oldAlpha == 0.0f)
            walk.result.undefined = true;
        current.color.x *= scale;
        current.color.y *= scale;
        current.color.z *= scale;
    }
    if(lighting)
        light(walk);

    const float left = 1.0f - out.w;
    out.x += left * current.color.x;
    out.y += left * current.color.y;
    out.z += left * current.color.z;
    out.w += left * current.color.w;
    walk.active = out.w < 0.98f;
    if(std::abs(out.w - 0.98f) < 1e-3f)
    {
        walk.result.thresholdDoubtful = true;
        if(walk.turn.threshold)
            walk.active = !walk.active;
    }
}

void RayCaster::shade(Walk &walk) const
{
    ++walk.result.samples;
    Vec4f &out = walk.result.color;
    switch(_scene.shading)
    {
    case ShadingType::Dvr:
    case ShadingType::LitDvr:
        shadeDvr(walk);
        break;
    case ShadingType::Mip:
        walk.current.value = _voxels.sample(walk.current.position);
        out = {1.0f, 1.0f, 1.0f, std::max(out.w, walk.current.value)};
        break;
    case ShadingType::XRay:
        walk.current.value = _scene.stepSize * 2.0f * _voxels.sample(walk.current.position);
        out = {1.0f, 1.0f, 1.0f, out.w + walk.current.value};
        break;
    }
}

}
