// The seeded test volumes.
#include "reference/Volumes.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

namespace reference
{

namespace
{

// A number in [0, 1) from the generator's bits alone: the library's distributions differ between standard
// libraries.
double unit(std::mt19937 &random)
{
    return random() / 4294967296.0;
}

template <class Value>
Volume fill(int width, int height, int depth, int bits, Value value)
{
    Volume volume;
    volume.width = width;
    volume.height = height;
    volume.depth = depth;
    volume.bits = bits;
    volume.voxels.reserve(static_cast<std::size_t>(width) * height * depth);
    for(int z = 0; z < depth; ++z)
        for(int y = 0; y < height; ++y)
            for(int x = 0; x < width; ++x)
                volume.voxels.push_back(value(x, y, z));
    return volume;
}

std::uint16_t scaled(double value, std::uint16_t top)
{
    return static_cast<std::uint16_t>(std::lround(std::clamp(value, 0.0, 1.0) * top));
}

}

std::vector<std::uint8_t> Volume::bytes() const
{
    std::vector<std::uint8_t> result;
    if(bits == 8)
    {
        result.assign(voxels.begin(), voxels.end());
        return result;
    }
    result.resize(voxels.size() * 2);
    if(!voxels.empty())
        std::memcpy(result.data(), voxels.data(), result.size());
    return result;
}

Volume constantVolume(int width, int height, int depth, int bits, std::uint16_t value)
{
    return fill(width, height, depth, bits, [=](int, int, int) { return value; });
}

Volume rampVolume(int width, int height, int depth, int bits, int axis, std::uint16_t top)
{
    const int sides[3] = {width, height, depth};
    const int last = std::max(1, sides[axis] - 1);
    return fill(width, height, depth, bits, [=](int x, int y, int z) {
        const int along[3] = {x, y, z};
        return scaled(static_cast<double>(along[axis]) / last, top);
    });
}

Volume blobVolume(int width, int height, int depth, int bits, std::uint16_t top, std::uint32_t seed)
{
    struct Bump
    {
        double x, y, z, radius, weight;
    };
    std::mt19937 random(seed);
    std::vector<Bump> bumps;
    for(int i = 0; i < 5; ++i)
    {
        Bump bump;
        bump.x = 0.3 + 0.4 * unit(random);
        bump.y = 0.3 + 0.4 * unit(random);
        bump.z = 0.3 + 0.4 * unit(random);
        bump.radius = 0.08 + 0.08 * unit(random);
        bump.weight = 0.4 + 0.6 * unit(random);
        bumps.push_back(bump);
    }
    const auto density = [&](int x, int y, int z) {
        double sum = 0.0;
        for(const Bump &bump : bumps)
        {
            const double dx = (x + 0.5) / width - bump.x;
            const double dy = (y + 0.5) / height - bump.y;
            const double dz = (z + 0.5) / depth - bump.z;
            sum += bump.weight * std::exp(-(dx * dx + dy * dy + dz * dz) / (2.0 * bump.radius * bump.radius));
        }
        return sum;
    };
    double greatest = 1e-12;
    for(int z = 0; z < depth; ++z)
        for(int y = 0; y < height; ++y)
            for(int x = 0; x < width; ++x)
                greatest = std::max(greatest, density(x, y, z));
    return fill(width, height, depth, bits,
                [&](int x, int y, int z) { return scaled(density(x, y, z) / greatest, top); });
}

Volume shellVolume(int width, int height, int depth, int bits, std::uint16_t top)
{
    const double shortest = std::min({width, height, depth});
    return fill(width, height, depth, bits, [=](int x, int y, int z) {
        const double dx = x + 0.5 - 0.5 * width;
        const double dy = y + 0.5 - 0.5 * height;
        const double dz = z + 0.5 - 0.5 * depth;
        const double off = (std::sqrt(dx * dx + dy * dy + dz * dz) / shortest - 0.35) / 0.06;
        return scaled(std::exp(-off * off), top);
    });
}

Volume noiseVolume(int width, int height, int depth, int bits, std::uint16_t top, std::uint32_t seed)
{
    std::mt19937 random(seed);
    return fill(width, height, depth, bits, [&](int, int, int) {
        return static_cast<std::uint16_t>(unit(random) * (static_cast<double>(top) + 1.0));
    });
}

Volume cloudVolume(int width, int height, int depth, int bits, std::uint16_t top, int cell,
                   std::uint32_t seed)
{
    const int w = width / cell + 2;
    const int h = height / cell + 2;
    const int d = depth / cell + 2;
    std::mt19937 random(seed);
    std::vector<double> lattice(static_cast<std::size_t>(w) * h * d);
    for(double &value : lattice)
        value = unit(random);
    return fill(width, height, depth, bits, [&](int x, int y, int z) {
        const double fx = static_cast<double>(x % cell) / cell;
        const double fy = static_cast<double>(y % cell) / cell;
        const double fz = static_cast<double>(z % cell) / cell;
        double sum = 0.0;
        for(int corner = 0; corner < 8; ++corner)
        {
            const int cx = corner & 1;
            const int cy = (corner >> 1) & 1;
            const int cz = corner >> 2;
            const double weight = (cx ? fx : 1.0 - fx) * (cy ? fy : 1.0 - fy) * (cz ? fz : 1.0 - fz);
            sum += weight *
                   lattice[(static_cast<std::size_t>(z / cell + cz) * h + y / cell + cy) * w + x / cell + cx];
        }
        return scaled(sum, top);
    });
}

}
