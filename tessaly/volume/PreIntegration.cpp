#include "PreIntegration.h"

#include <algorithm>
#include <array>

namespace tessaly
{

namespace
{

constexpr std::size_t values = 256;

/// Red, green and blue, weighted by opacity, and opacity.
using Premultiplied = std::array<double, 4>;

Premultiplied premultiplied(double red, double green, double blue, double alpha)
{
    return {red * alpha, green * alpha, blue * alpha, alpha};
}

Premultiplied premultiplied(const osg::Real16 *entry)
{
    return premultiplied(static_cast<float>(entry[0]), static_cast<float>(entry[1]),
                         static_cast<float>(entry[2]), static_cast<float>(entry[3]));
}

} // namespace

void averageIntervals(const std::uint8_t *transfer, std::size_t width, osg::Real16 *table)
{
    std::array<Premultiplied, values> source{};
    for(std::size_t k = 0; k < std::min(width, values); ++k) {
        const std::uint8_t *entry = transfer + k * 4;
        source[k] = premultiplied(entry[0] / 255.0, entry[1] / 255.0, entry[2] / 255.0, entry[3] / 255.0);
    }

    std::array<Premultiplied, values> integral{};
    for(std::size_t k = 1; k < values; ++k)
        for(std::size_t channel = 0; channel < 4; ++channel)
            integral[k][channel] =
                integral[k - 1][channel] + 0.5 * (source[k - 1][channel] + source[k][channel]);

    const std::size_t end = std::min(width * width, values * values);
    for(std::size_t entry = 0; entry < end; ++entry) {
        const std::size_t row = entry / values;
        const std::size_t column = entry % values;
        const std::size_t low = std::min(row, column);
        const std::size_t high = std::max(row, column);
        const double reciprocal = low == high ? 0.0 : 1.0 / static_cast<double>(high - low);
        for(std::size_t channel = 0; channel < 4; ++channel) {
            const double average = low == high
                                       ? source[low][channel]
                                       : (integral[high][channel] - integral[low][channel]) * reciprocal;
            table[entry * 4 + channel] = osg::Real16(static_cast<float>(std::max(average, 0.0)));
        }
    }
}

void integrateEntries(const osg::Real16 *transfer, std::size_t entries, float *table)
{
    if(entries == 0)
        return;
    Premultiplied sum{};
    Premultiplied previous = premultiplied(transfer);
    std::fill(table, table + 4, 0.0f);
    for(std::size_t k = 1; k < entries; ++k) {
        const Premultiplied current = premultiplied(transfer + k * 4);
        for(std::size_t channel = 0; channel < 4; ++channel) {
            sum[channel] += 0.5 * (previous[channel] + current[channel]);
            table[k * 4 + channel] = static_cast<float>(sum[channel]);
        }
        previous = current;
    }
}

} // namespace tessaly
