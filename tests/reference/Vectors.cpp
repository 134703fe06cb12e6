// Matrices of the reference.
#include "reference/Vectors.h"

#include <utility>

namespace reference
{

Mat4 identity()
{
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
}

Mat4 translation(double x, double y, double z)
{
    return {1, 0, 0, x, 0, 1, 0, y, 0, 0, 1, z, 0, 0, 0, 1};
}

Mat4 scaling(double x, double y, double z)
{
    return {x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1};
}

Mat4 rotation(int axis, double angle)
{
    Mat4 result = identity();
    const int u = (axis + 1) % 3;
    const int v = (axis + 2) % 3;
    result[u * 4 + u] = std::cos(angle);
    result[u * 4 + v] = -std::sin(angle);
    result[v * 4 + u] = std::sin(angle);
    result[v * 4 + v] = std::cos(angle);
    return result;
}

Mat4 operator*(const Mat4 &a, const Mat4 &b)
{
    Mat4 result{};
    for(int row = 0; row < 4; ++row)
        for(int column = 0; column < 4; ++column)
            for(int k = 0; k < 4; ++k)
                result[row * 4 + column] += a[row * 4 + k] * b[k * 4 + column];
    return result;
}

Mat4 inverse(const Mat4 &matrix)
{
    // Gauss and Jordan with the greatest pivot of each column.
    Mat4 left = matrix;
    Mat4 right = identity();
    for(int column = 0; column < 4; ++column)
    {
        int pivot = column;
        for(int row = column + 1; row < 4; ++row)
            if(std::abs(left[row * 4 + column]) > std::abs(left[pivot * 4 + column]))
                pivot = row;
        if(left[pivot * 4 + column] == 0.0)
            return identity();
        for(int k = 0; k < 4; ++k)
        {
            std::swap(left[pivot * 4 + k], left[column * 4 + k]);
            std::swap(right[pivot * 4 + k], right[column * 4 + k]);
        }
        const double scale = 1.0 / left[column * 4 + column];
        for(int k = 0; k < 4; ++k)
        {
            left[column * 4 + k] *= scale;
            right[column * 4 + k] *= scale;
        }
        for(int row = 0; row < 4; ++row)
        {
            if(row == column)
                continue;
            const double factor = left[row * 4 + column];
            for(int k = 0; k < 4; ++k)
            {
                left[row * 4 + k] -= factor * left[column * 4 + k];
                right[row * 4 + k] -= factor * right[column * 4 + k];
            }
        }
    }
    return right;
}

Vec3d transform(const Mat4 &m, const Vec3d &v, double w)
{
    Vec3d result;
    for(int row = 0; row < 3; ++row)
        result[row] = m[row * 4] * v[0] + m[row * 4 + 1] * v[1] + m[row * 4 + 2] * v[2] + m[row * 4 + 3] * w;
    return result;
}

Mat4 lookAt(const Vec3d &from, const Vec3d &at, const Vec3d &up)
{
    const auto cross = [](const Vec3d &a, const Vec3d &b) {
        return Vec3d{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    };
    const auto normalised = [](const Vec3d &a) { return (1.0 / length(a)) * a; };
    const Vec3d back = normalised(from - at);
    const Vec3d right = normalised(cross(up, back));
    const Vec3d top = cross(back, right);
    return {right[0], top[0], back[0], from[0], right[1], top[1], back[1], from[1],
            right[2], top[2], back[2], from[2], 0,        0,      0,       1};
}

}
