// The tables behind the picture.
#include "reference/Tables.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace reference
{

float throughHalf(float value)
{
    if(std::isnan(value) || std::isinf(value) || value == 0.0f)
        return value;
    // 11 significant bits, but never finer than the last bit of the subnormal numbers.
    int exponent = 0;
    std::frexp(value, &exponent);
    const int lastBit = std::max(exponent - 11, -24);
    const double rounded =
        std::ldexp(std::nearbyint(std::ldexp(static_cast<double>(value), -lastBit)), lastBit);
    if(std::abs(rounded) > 65504.0)
        return std::copysign(std::numeric_limits<float>::infinity(), value);
    return static_cast<float>(rounded);
}

Volume normalised(const Volume &raw, bool swapped)
{
    Volume result = raw;
    if(raw.bits != 16)
        return result;
    int greatest = 0;
    for(std::uint16_t &voxel : result.voxels)
    {
        if(swapped)
            voxel = static_cast<std::uint16_t>((voxel << 8) | (voxel >> 8));
        greatest = std::max<int>(greatest, voxel);
    }
    if(greatest < 4096)
        for(std::uint16_t &voxel : result.voxels)
            voxel = static_cast<std::uint16_t>(voxel * 16);
    return result;
}

Volume padded(const Volume &volume, bool &changed)
{
    const auto up = [](int side) { return (side + 7) / 8 * 8; };
    Volume result;
    result.width = up(volume.width);
    result.height = up(volume.height);
    result.depth = up(volume.depth);
    result.bits = volume.bits;
    changed = result.width != volume.width || result.height != volume.height || result.depth != volume.depth;
    result.voxels.assign(static_cast<std::size_t>(result.width) * result.height * result.depth, 0);
    for(int z = 0; z < volume.depth; ++z)
        for(int y = 0; y < volume.height; ++y)
            for(int x = 0; x < volume.width; ++x)
                result.voxels[result.index(x, y, z)] = volume.at(x, y, z);
    return result;
}

namespace
{

// What the table keeps of a value: a byte, cut and wrapped, or a half float.
double kept(float value, bool wide)
{
    if(wide)
        return throughHalf(value);
    return static_cast<std::uint8_t>(static_cast<int>(value * 255.0));
}

// The walk over control points, the same for opacity and for each colour channel. `position(n)` and
// `value(n)` give the n-th point. The last fill of opacity covers the whole channel, that of colour only the
// rest: both are meant.
template <class Position, class Value>
void fillChannel(std::vector<Entry> &table, int channel, std::size_t points, bool wide, bool fillAll,
                 Position position, Value value)
{
    const int entries = static_cast<int>(table.size());
    const float scale = static_cast<float>(entries);
    const auto put = [&](int entry, float what) {
        if(entry >= 0 && entry < entries)
            table[entry][channel] = kept(what, wide);
    };
    if(points == 0)
        return;
    int i = static_cast<int>(scale * position(0));
    float a = value(0);
    for(int entry = 0; entry < i; ++entry)
        put(entry, a);
    for(std::size_t n = 1; n < points; ++n)
    {
        const int j = static_cast<int>(scale * position(n));
        const float b = value(n);
        const float step = j != i ? 1.0f / static_cast<float>(j - i) : 0.0f;
        float t = 0.0f;
        for(int entry = i; entry < j; ++entry)
        {
            put(entry, (1.0f - t) * a + t * b);
            t += step;
        }
        i = j;
        a = b;
    }
    if(i < entries)
        for(int entry = fillAll ? 0 : i; entry < entries; ++entry)
            put(entry, a);
}

}

std::vector<Entry> transferTable(const TransferSource &source, int bits)
{
    const bool wide = bits == 16;
    std::vector<Entry> table(wide ? 65536 : 256, Entry{});
    if(!wide && source.bytes.size() == 1024)
    {
        for(std::size_t i = 0; i < source.bytes.size(); ++i)
            table[i / 4][i % 4] = source.bytes[i];
        return table;
    }
    if(wide && source.halves.size() == 262144)
    {
        for(std::size_t i = 0; i < source.halves.size(); ++i)
            table[i / 4][i % 4] = throughHalf(source.halves[i]);
        return table;
    }
    const auto &alphas = source.alphaPoints;
    const auto &colors = source.colorPoints;
    fillChannel(
        table, 3, alphas.size(), wide, true, [&](std::size_t n) { return alphas[n].position; },
        [&](std::size_t n) { return alphas[n].alpha; });
    const auto position = [&](std::size_t n) { return colors[n].position; };
    fillChannel(table, 0, colors.size(), wide, false, position, [&](std::size_t n) { return colors[n].red; });
    fillChannel(table, 1, colors.size(), wide, false, position,
                [&](std::size_t n) { return colors[n].green; });
    fillChannel(table, 2, colors.size(), wide, false, position,
                [&](std::size_t n) { return colors[n].blue; });
    return table;
}

std::vector<float> opacitySum(const std::vector<Entry> &table)
{
    std::vector<float> sums;
    float sum = 0.0f;
    for(const Entry &entry : table)
    {
        sum += static_cast<float>(entry[3]);
        sums.push_back(sum);
    }
    return sums;
}

std::vector<Entry> storedTable(const std::vector<Entry> &table)
{
    const bool wide = table.size() != 256;
    std::vector<Entry> stored = table;
    for(Entry &entry : stored)
        for(double &channel : entry)
            channel =
                wide ? std::nearbyint(std::clamp(channel, 0.0, 1.0) * 65535.0) / 65535.0 : channel / 255.0;
    return stored;
}

std::vector<Entry> pairTable(const std::vector<Entry> &table)
{
    // The trapezoid rule afresh for each pair would be cubic; the running integral gives the same numbers.
    const auto weighted = [&](int k, int channel) {
        const double alpha = table[k][3] / 255.0;
        return channel == 3 ? alpha : table[k][channel] / 255.0 * alpha;
    };
    std::vector<Entry> integral(256, Entry{});
    for(int k = 1; k < 256; ++k)
        for(int channel = 0; channel < 4; ++channel)
            integral[k][channel] =
                integral[k - 1][channel] + 0.5 * (weighted(k - 1, channel) + weighted(k, channel));
    std::vector<Entry> pairs(65536);
    for(int row = 0; row < 256; ++row)
        for(int column = 0; column < 256; ++column)
            for(int channel = 0; channel < 4; ++channel)
            {
                const int low = std::min(row, column);
                const int high = std::max(row, column);
                const double average =
                    low == high ? weighted(low, channel)
                                : (integral[high][channel] - integral[low][channel]) / (high - low);
                pairs[row * 256 + column][channel] = throughHalf(static_cast<float>(std::max(0.0, average)));
            }
    return pairs;
}

std::vector<Entry> integralTable(const std::vector<Entry> &table)
{
    std::vector<Entry> integral(table.size(), Entry{});
    Entry sum{};
    for(std::size_t k = 1; k < table.size(); ++k)
    {
        const double a0 = table[k - 1][3];
        const double a1 = table[k][3];
        for(int channel = 0; channel < 3; ++channel)
            sum[channel] += 0.5 * (table[k - 1][channel] * a0 + table[k][channel] * a1);
        sum[3] += 0.5 * (a0 + a1);
        for(int channel = 0; channel < 4; ++channel)
            integral[k][channel] = static_cast<float>(sum[channel]);
    }
    return integral;
}

BlockGrid blockVerdicts(const Volume &volume, const std::vector<float> &sum)
{
    BlockGrid grid;
    grid.sides = {volume.width / 8, volume.height / 8, volume.depth / 8};
    for(int bz = 0; bz < grid.sides[2]; ++bz)
        for(int by = 0; by < grid.sides[1]; ++by)
            for(int bx = 0; bx < grid.sides[0]; ++bx)
            {
                // Interpolation within the block reads one voxel beyond it on every side.
                int low = 65535;
                int high = 0;
                for(int z = std::max(0, bz * 8 - 1); z <= std::min(volume.depth - 1, bz * 8 + 8); ++z)
                    for(int y = std::max(0, by * 8 - 1); y <= std::min(volume.height - 1, by * 8 + 8); ++y)
                        for(int x = std::max(0, bx * 8 - 1); x <= std::min(volume.width - 1, bx * 8 + 8); ++x)
                        {
                            low = std::min<int>(low, volume.at(x, y, z));
                            high = std::max<int>(high, volume.at(x, y, z));
                        }
                bool visible = true;
                if(low != high)
                {
                    const float difference = sum[high] - sum[low];
                    const bool flat = static_cast<double>(difference) < 1e-6;
                    visible = !(flat && (volume.bits == 8 || sum[high] == 0.0f));
                }
                else if(high != 0)
                {
                    const float difference = sum[high] - sum[high - 1];
                    visible = static_cast<double>(difference) > 1e-4;
                }
                grid.verdicts.push_back(visible ? 255 : 0);
            }
    return grid;
}

std::vector<std::uint8_t> normalBytes(const Volume &volume)
{
    const auto value = [&](int x, int y, int z) -> int {
        if(x < 0 || y < 0 || z < 0 || x >= volume.width || y >= volume.height || z >= volume.depth)
            return 0;
        return volume.bits == 16 ? (volume.at(x, y, z) * 2 + 257) / 514 : volume.at(x, y, z);
    };
    std::vector<std::uint8_t> bytes;
    bytes.reserve(volume.voxels.size() * 3);
    for(int z = 0; z < volume.depth; ++z)
        for(int y = 0; y < volume.height; ++y)
            for(int x = 0; x < volume.width; ++x)
            {
                std::array<float, 3> gradient = {static_cast<float>(value(x - 1, y, z) - value(x + 1, y, z)),
                                                 static_cast<float>(value(x, y - 1, z) - value(x, y + 1, z)),
                                                 static_cast<float>(value(x, y, z - 1) - value(x, y, z + 1))};
                const float size = std::sqrt(gradient[0] * gradient[0] + gradient[1] * gradient[1] +
                                             gradient[2] * gradient[2]);
                for(float component : gradient)
                {
                    if(size >= 1e-6f)
                        component /= size;
                    bytes.push_back(static_cast<std::uint8_t>(component * 127.0f + 127.0f));
                }
            }
    return bytes;
}

}
