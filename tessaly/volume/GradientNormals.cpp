#include "GradientNormals.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

// gcc vectorises loops of unknown length only at this level, and square roots only without errno.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC optimize("O3", "no-tree-slp-vectorize", "no-math-errno")
#endif

namespace tessaly
{

namespace
{

/// One row of voxels and what is derived from it.
struct GradientRow
{
    explicit GradientRow(std::size_t width) : zeros(width), length(width)
    {
        for(auto &component : normal)
            component.resize(width);
    }

    std::vector<std::uint8_t> zeros; ///< what lies outside the volume
    std::array<std::vector<float>, 3> normal;
    std::vector<float> length;
    const std::uint8_t *voxels = nullptr;
    bool outer = false; ///< whether the whole row lies on the volume's border
};

void subtract(const std::uint8_t *before, const std::uint8_t *behind, std::size_t count, float *difference)
{
    for(std::size_t x = 0; x < count; ++x)
        difference[x] = static_cast<float>(static_cast<int>(before[x]) - static_cast<int>(behind[x]));
}

void subtractAlong(const std::uint8_t *voxels, std::size_t width, float *difference)
{
    if(width == 1) {
        difference[0] = 0.0f;
        return;
    }
    difference[0] = -static_cast<float>(voxels[1]);
    if(width > 2)
        subtract(voxels, voxels + 2, width - 2, difference + 1);
    difference[width - 1] = static_cast<float>(voxels[width - 2]);
}

/// Divides the differences by their length; the sum of their squares is a whole number that single precision
/// holds.
void normalise(GradientRow &row)
{
    float *x = row.normal[0].data();
    float *y = row.normal[1].data();
    float *z = row.normal[2].data();
    float *length = row.length.data();
    const std::size_t width = row.length.size();
    for(std::size_t i = 0; i < width; ++i)
        length[i] = std::sqrt(x[i] * x[i] + y[i] * y[i] + z[i] * z[i]);
    for(std::size_t i = 0; i < width; ++i) {
        const float divisor = length[i] >= 1e-6f ? length[i] : 1.0f;
        x[i] /= divisor;
        y[i] /= divisor;
        z[i] /= divisor;
    }
}

void writeComponent(const std::vector<float> &component, std::size_t stride, std::uint8_t *pixels)
{
    for(std::size_t x = 0; x < component.size(); ++x)
        pixels[x * stride] = static_cast<std::uint8_t>(static_cast<int>(component[x] * 127.0 + 127.0));
}

/// \return an azimuth of 0 to 1
float azimuth(float x, float y)
{
    const float radius = std::sqrt(y * y + x * x);
    // On the axis the angle is that of the radius itself, a quarter turn: meant.
    float angle = std::acos(radius != 0.0f ? x / radius : radius);
    if(y < 0.0f)
        angle = 6.2831855f - angle;
    return angle / 6.2831855f;
}

void writeChannel(char channel, const GradientRow &row, std::size_t stride, std::uint8_t *pixels)
{
    const std::size_t width = row.length.size();
    switch(channel) {
    case 's':
    case 'S':
        for(std::size_t x = 0; x < width; ++x)
            pixels[x * stride] = row.voxels[x];
        if(channel == 'S') {
            pixels[0] = 0;
            pixels[(width - 1) * stride] = 0;
            for(std::size_t x = 0; row.outer && x < width; ++x)
                pixels[x * stride] = 0;
        }
        break;
    case 'x':
    case 'y':
    case 'z':
        writeComponent(row.normal[static_cast<std::size_t>(channel - 'x')], stride, pixels);
        break;
    case 'g':
        for(std::size_t x = 0; x < width; ++x) {
            const int length = static_cast<int>(row.length[x] * 0.57735026f);
            // The clamp works the wrong way round: meant, so that ordinary lengths all give 255.
            pixels[x * stride] = length > 255 ? static_cast<std::uint8_t>(length % 256) : std::uint8_t(255);
        }
        break;
    case 't':
        for(std::size_t x = 0; x < width; ++x) {
            const float theta = std::acos(row.normal[2][x]) / 3.1415927f;
            pixels[x * stride] = static_cast<std::uint8_t>(static_cast<int>(theta * 255.0f));
        }
        break;
    case 'p':
        for(std::size_t x = 0; x < width; ++x) {
            const float phi = azimuth(row.normal[0][x], row.normal[1][x]);
            pixels[x * stride] = static_cast<std::uint8_t>(static_cast<int>(phi * 255.0f));
        }
        break;
    default:
        break;
    }
}

} // namespace

std::uint32_t pixelFormatOfChannels(std::size_t channels)
{
    constexpr std::array<std::uint32_t, 5> formats = {0, 6409, 6410, 6407, 6408};
    return channels < formats.size() ? formats[channels] : 0;
}

bool areGradientChannels(const std::string &channels)
{
    return channels.find_first_not_of("sSxyzgtp") == std::string::npos;
}

bool writeGradientChannels(const std::uint8_t *voxels, const Sides &sides, const std::string &channels,
                           std::uint8_t *pixels)
{
    if(pixelFormatOfChannels(channels.size()) == 0 || !areGradientChannels(channels))
        return false;
    if(voxelCount(sides) == 0)
        return true;

    const std::size_t width = sides[0];
    const std::size_t height = sides[1];
    const std::size_t depth = sides[2];
    const std::size_t plane = width * height;
    GradientRow row(width);
    for(std::size_t z = 0; z < depth; ++z) {
        for(std::size_t y = 0; y < height; ++y) {
            const std::size_t first = z * plane + y * width;
            const std::uint8_t *zeros = row.zeros.data();
            row.voxels = voxels + first;
            row.outer = y == 0 || y + 1 == height || z == 0 || z + 1 == depth;

            subtractAlong(row.voxels, width, row.normal[0].data());
            subtract(y == 0 ? zeros : row.voxels - width, y + 1 == height ? zeros : row.voxels + width, width,
                     row.normal[1].data());
            subtract(z == 0 ? zeros : row.voxels - plane, z + 1 == depth ? zeros : row.voxels + plane, width,
                     row.normal[2].data());
            normalise(row);

            for(std::size_t channel = 0; channel < channels.size(); ++channel)
                writeChannel(channels[channel], row, channels.size(),
                             pixels + first * channels.size() + channel);
        }
    }
    return true;
}

} // namespace tessaly
