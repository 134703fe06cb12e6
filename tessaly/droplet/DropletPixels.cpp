#include "DropletPixels.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace tessaly
{

bool fillSplat(float contactAngle, std::uint8_t *rgb)
{
    std::fill(rgb, rgb + std::size_t(splatSize) * splatSize * 3, std::uint8_t(0));
    if(!std::isfinite(contactAngle))
        return false;
    const double t = std::tan(contactAngle); // of floats, which is meant
    const double c = -1.0 / std::sqrt(t * t + 1.0);
    const double sine2 = 1.0 - c * c;
    if(!(sine2 > 0.0))
        return false;

    for(int j = 0; j < splatSize; ++j)
        for(int i = 0; i < splatSize; ++i, rgb += 3) {
            const double u = (i + 0.5) * 0.0078125 * 2.0 - 1.0;
            const double v = (j + 0.5) * 0.0078125 * 2.0 - 1.0;
            const double r = std::min(std::sqrt(u * u + v * v), 1.0);
            const double height = (std::sqrt(1.0 - sine2 * r * r) + c) / std::sqrt(sine2);
            rgb[2] = std::uint8_t(std::clamp(height, 0.0, 1.0) * 255.0);
        }
    return true;
}

void fillNoise(std::uint8_t *bytes, std::size_t count)
{
    // Systems differ in RAND_MAX; every one has 15 bits.
    for(std::size_t i = 0; i < count; ++i)
        bytes[i] = std::uint8_t((std::rand() & 0x7fff) / 32767.0 * 255.0);
}

std::array<float, 16> inverseOrIdentity(const float *matrix)
{
    std::array<double, 16> m;
    std::copy(matrix, matrix + 16, m.begin());
    const auto at = [&m](int row, int column) { return m[std::size_t((row & 3) * 4 + (column & 3))]; };
    // The determinant of what is left without a row and a column, with its sign. The cyclic order of rows and
    // columns brings the sign of a minor with it, except for the parity of row + column.
    const auto cofactor = [&at](int row, int column) {
        const int a = row + 1, b = row + 2, c = row + 3;
        const int d = column + 1, e = column + 2, f = column + 3;
        const double minor = at(a, d) * (at(b, e) * at(c, f) - at(b, f) * at(c, e)) -
                             at(a, e) * (at(b, d) * at(c, f) - at(b, f) * at(c, d)) +
                             at(a, f) * (at(b, d) * at(c, e) - at(b, e) * at(c, d));
        return (row + column) % 2 == 0 ? minor : -minor;
    };

    double determinant = 0.0;
    for(int column = 0; column < 4; ++column)
        determinant += at(0, column) * cofactor(0, column);
    if(!(std::abs(determinant) >= 1e-30) || !std::isfinite(determinant))
        return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

    std::array<float, 16> inverse;
    for(int row = 0; row < 4; ++row)
        for(int column = 0; column < 4; ++column)
            inverse[std::size_t(row * 4 + column)] = narrowed(cofactor(column, row) / determinant);
    return inverse;
}

int cellsOf(float side)
{
    if(std::isnan(side))
        return 0;
    // The float nearest to the largest int is beyond it.
    if(side >= 2147483648.0f)
        return std::numeric_limits<int>::max();
    if(side <= -2147483648.0f)
        return std::numeric_limits<int>::min();
    return int(side);
}

float narrowed(double value)
{
    const double largest = double(std::numeric_limits<float>::max());
    return std::isnan(value) ? std::numeric_limits<float>::quiet_NaN()
                             : float(std::clamp(value, -largest, largest));
}

} // namespace tessaly
