#include "VoxelPasses.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

// gcc vectorises loops of unknown length only at this level.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC optimize("O3", "no-tree-slp-vectorize")
#endif

namespace tessaly
{

namespace
{

constexpr std::uint32_t glUnsignedShort = 5123;
constexpr std::uint32_t glAlpha = 6406;
constexpr std::uint32_t glLuminance = 6409;
constexpr std::uint32_t glIntensity = 32841;

/// The least maximum of data that really uses 16 bits.
constexpr std::uint16_t sixteenBitThreshold = 4096;

} // namespace

std::size_t voxelCount(const Sides &sides)
{
    return static_cast<std::size_t>(sides[0]) * sides[1] * sides[2];
}

std::uint16_t swapAndFindMaximum(std::uint16_t *voxels, std::size_t count, bool swapped)
{
    std::uint16_t maximum = 0;
    if(swapped) {
        for(std::size_t i = 0; i < count; ++i) {
            const auto voxel = static_cast<std::uint16_t>((voxels[i] << 8) | (voxels[i] >> 8));
            voxels[i] = voxel;
            maximum = voxel > maximum ? voxel : maximum;
        }
    }
    else {
        for(std::size_t i = 0; i < count; ++i)
            maximum = voxels[i] > maximum ? voxels[i] : maximum;
    }
    return maximum;
}

void scaleTwelveBits(std::uint16_t *voxels, std::size_t count)
{
    for(std::size_t i = 0; i < count; ++i)
        voxels[i] = static_cast<std::uint16_t>(voxels[i] << 4);
}

bool normaliseSixteenBits(std::uint16_t *voxels, std::size_t count, bool swapped)
{
    if(swapAndFindMaximum(voxels, count, swapped) >= sixteenBitThreshold)
        return false;
    scaleTwelveBits(voxels, count);
    return true;
}

std::uint32_t singleChannelFormat(std::uint32_t dataType, std::uint32_t pixelFormat)
{
    if(dataType == glUnsignedShort)
        return glLuminance;
    const bool single = pixelFormat == glLuminance || pixelFormat == glIntensity || pixelFormat == glAlpha;
    return single ? pixelFormat : glLuminance;
}

std::array<float, 3> parseSliceThickness(const char *text)
{
    double x = 1.0;
    double y = 1.0;
    double z = 1.0;
    if(text != nullptr)
        std::sscanf(text, "%lf %lf %lf", &x, &y, &z);
    return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}

std::array<float, 3> objectSize(const std::array<float, 3> &thickness, const Sides &resolution)
{
    // An empty volume must not divide by zero.
    const auto largest = static_cast<float>(*std::max_element(resolution.begin(), resolution.end()));
    const double factor = 4.0 / std::max(largest, std::numeric_limits<float>::min());

    std::array<float, 3> size;
    for(int axis = 0; axis < 3; ++axis)
        size[axis] = static_cast<float>(static_cast<double>(thickness[axis]) * factor * resolution[axis]);
    return size;
}

std::uint32_t paddedSide(std::uint32_t side, std::uint32_t edge)
{
    const std::uint32_t remainder = edge == 0 ? 0 : side % edge;
    return remainder == 0 ? side : side + edge - remainder;
}

Sides paddedSides(const Sides &sides, std::uint32_t edge)
{
    return {paddedSide(sides[0], edge), paddedSide(sides[1], edge), paddedSide(sides[2], edge)};
}

void copyPadded(const std::uint8_t *from, const Sides &sides, std::size_t bytesPerVoxel, std::uint8_t *to,
                const Sides &newSides)
{
    const std::size_t bytes = voxelCount(newSides) * bytesPerVoxel;
    if(bytes == 0)
        return;
    std::memset(to, 0, bytes);
    const std::size_t row = sides[0] * bytesPerVoxel;
    if(row == 0)
        return;

    for(std::size_t z = 0; z < sides[2]; ++z) {
        for(std::size_t y = 0; y < sides[1]; ++y) {
            const std::uint8_t *source = from + (z * sides[1] + y) * row;
            std::memcpy(to + (z * newSides[1] + y) * newSides[0] * bytesPerVoxel, source, row);
        }
    }
}

std::array<float, 16> placementMatrix(const std::array<float, 3> &size,
                                      const std::array<float, 3> &dimensions, const Sides &resolution,
                                      const std::array<float, 3> &thickness)
{
    const bool given = dimensions[0] >= 0.0f && dimensions[1] >= 0.0f && dimensions[2] >= 0.0f;

    std::array<float, 16> matrix{};
    for(int axis = 0; axis < 3; ++axis) {
        const float extent =
            given ? dimensions[axis] : static_cast<float>(resolution[axis]) * thickness[axis];
        const float factor = extent / size[axis];
        matrix[axis * 4 + axis] = factor * size[axis];
        matrix[12 + axis] = factor * (-size[axis] / 2.0f);
    }
    matrix[15] = 1.0f;
    return matrix;
}

} // namespace tessaly
