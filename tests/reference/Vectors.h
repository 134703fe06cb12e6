// Small vectors and matrices of the reference: floats where the shaders use them, doubles elsewhere.
#ifndef TESSALY_TESTS_REFERENCE_VECTORS_H
#define TESSALY_TESTS_REFERENCE_VECTORS_H

#include <array>
#include <cmath>

namespace reference
{

struct Color
{
    float r = 0.0f;
    float g = 0.0f;
    float b = 0.0f;
};

struct Vec4f
{
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
    float w = 0.0f;
};

using Vec3f = std::array<float, 3>;
using Vec3d = std::array<double, 3>;

/// A 4 x 4 matrix for column vectors, stored row after row.
using Mat4 = std::array<double, 16>;

template <class T>
std::array<T, 3> operator+(const std::array<T, 3> &a, const std::array<T, 3> &b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

template <class T>
std::array<T, 3> operator-(const std::array<T, 3> &a, const std::array<T, 3> &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

template <class T>
std::array<T, 3> operator*(T scale, const std::array<T, 3> &a)
{
    return {scale * a[0], scale * a[1], scale * a[2]};
}

template <class T>
T dot(const std::array<T, 3> &a, const std::array<T, 3> &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

template <class T>
T length(const std::array<T, 3> &a)
{
    return std::sqrt(dot(a, a));
}

inline Vec3f toFloat(const Vec3d &a)
{
    return {static_cast<float>(a[0]), static_cast<float>(a[1]), static_cast<float>(a[2])};
}

Mat4 identity();
Mat4 translation(double x, double y, double z);
Mat4 scaling(double x, double y, double z);
/// Rotation by `angle` radians about the axis 0 x, 1 y or 2 z, counter-clockwise seen against the axis.
Mat4 rotation(int axis, double angle);
Mat4 operator*(const Mat4 &a, const Mat4 &b);
/// The inverse; a singular matrix gives the identity.
Mat4 inverse(const Mat4 &matrix);
/// The point or (w 0) direction, without a division by w.
Vec3d transform(const Mat4 &matrix, const Vec3d &v, double w);
/// Eye-to-world matrix of an eye at `from` that looks at `at`.
Mat4 lookAt(const Vec3d &from, const Vec3d &at, const Vec3d &up);

}

#endif
