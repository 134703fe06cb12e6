/// \file
/// Rotations as unit quaternions, compiled for Real32 and Real64. Angles and square roots are computed in
/// Real64.

#include "OSGQuaternion.h"

#include <cmath>
#include <ostream>

#include "OSGBaseFunctions.h"
#include "OSGMatrix.h"

OSG_BEGIN_NAMESPACE

template <class ValueT>
void QuaternionBase<ValueT>::setValueAsAxisRad(const VectorType &axis, ValueT angle)
{
    Vec3d unit(axis);
    unit.normalize();
    if (unit == Vec3d::Null)
    {
        setIdentity();
        return;
    }
    const Real64 s = std::sin(0.5 * angle);
    *this = QuaternionBase(static_cast<ValueT>(unit.x() * s), static_cast<ValueT>(unit.y() * s),
                           static_cast<ValueT>(unit.z() * s), static_cast<ValueT>(std::cos(0.5 * angle)));
}

template <class ValueT>
void QuaternionBase<ValueT>::setValueAsAxisDeg(const VectorType &axis, ValueT angle)
{
    setValueAsAxisRad(axis, osgDegree2Rad(angle));
}

/// By the largest of trace and diagonal, which keeps the root away from 0 (S. Shepperd, 1978).
template <class ValueT>
void QuaternionBase<ValueT>::setValue(const MatrixType &matrix)
{
    Real64 m[3][3]; // row, column
    for (UInt32 i = 0; i < 3; ++i)
        for (UInt32 j = 0; j < 3; ++j)
            m[i][j] = matrix[j][i];

    Real64 q[4];
    const Real64 trace = m[0][0] + m[1][1] + m[2][2];
    if (trace > 0.0)
    {
        const Real64 s = 2.0 * std::sqrt(trace + 1.0);
        q[3] = 0.25 * s;
        q[0] = (m[2][1] - m[1][2]) / s;
        q[1] = (m[0][2] - m[2][0]) / s;
        q[2] = (m[1][0] - m[0][1]) / s;
    }
    else
    {
        UInt32 i = m[1][1] > m[0][0] ? 1 : 0;
        i = m[2][2] > m[i][i] ? 2 : i;
        const UInt32 j = (i + 1) % 3;
        const UInt32 k = (i + 2) % 3;
        const Real64 s = 2.0 * std::sqrt(1.0 + m[i][i] - m[j][j] - m[k][k]);
        q[i] = 0.25 * s;
        q[j] = (m[j][i] + m[i][j]) / s;
        q[k] = (m[k][i] + m[i][k]) / s;
        q[3] = (m[k][j] - m[j][k]) / s;
    }
    *this = QuaternionBase(static_cast<ValueT>(q[0]), static_cast<ValueT>(q[1]), static_cast<ValueT>(q[2]),
                           static_cast<ValueT>(q[3]));
    normalize();
}

template <class ValueT>
void QuaternionBase<ValueT>::setValue(const VectorType &rotateFrom, const VectorType &rotateTo)
{
    Vec3d from(rotateFrom);
    Vec3d to(rotateTo);
    from.normalize();
    to.normalize();
    if (from == Vec3d::Null || to == Vec3d::Null)
    {
        setIdentity();
        return;
    }

    // the product of from and the vector half-way turns by twice their angle
    Vec3d half = from + to;
    if (half.squareLength() < 1e-20)
    {
        // opposite vectors: half a turn about whatever stands across them
        const Vec3d axis =
            std::abs(from.x()) < 0.6 ? from.cross(Vec3d(1.0, 0.0, 0.0)) : from.cross(Vec3d(0.0, 1.0, 0.0));
        setValueAsAxisRad(VectorType(axis), static_cast<ValueT>(3.14159265358979323846));
        return;
    }
    half.normalize();
    const Vec3d axis = from.cross(half);
    *this = QuaternionBase(static_cast<ValueT>(axis.x()), static_cast<ValueT>(axis.y()),
                           static_cast<ValueT>(axis.z()), static_cast<ValueT>(from.dot(half)));
}

template <class ValueT>
void QuaternionBase<ValueT>::setValue(ValueT alpha, ValueT beta, ValueT gamma)
{
    const QuaternionBase aboutX(VectorType(1, 0, 0), alpha);
    const QuaternionBase aboutY(VectorType(0, 1, 0), beta);
    const QuaternionBase aboutZ(VectorType(0, 0, 1), gamma);
    *this = aboutZ * aboutY * aboutX;
}

template <class ValueT>
void QuaternionBase<ValueT>::getValueAsAxisRad(VectorType &axis, ValueT &angle) const
{
    const Vec3d imaginary(_quat[0], _quat[1], _quat[2]);
    const Real64 s = imaginary.length();
    if (!(s > 0.0))
    {
        axis = VectorType(0, 0, 1);
        angle = 0;
        return;
    }
    axis = VectorType(imaginary / s);
    angle = static_cast<ValueT>(2.0 * std::atan2(s, static_cast<Real64>(_quat[3])));
}

template <class ValueT>
void QuaternionBase<ValueT>::getValueAsAxisRad(ValueT &x, ValueT &y, ValueT &z, ValueT &angle) const
{
    VectorType axis;
    getValueAsAxisRad(axis, angle);
    x = axis.x();
    y = axis.y();
    z = axis.z();
}

template <class ValueT>
void QuaternionBase<ValueT>::getValueAsAxisDeg(VectorType &axis, ValueT &angle) const
{
    getValueAsAxisRad(axis, angle);
    angle = osgRad2Degree(angle);
}

template <class ValueT>
void QuaternionBase<ValueT>::getValueAsAxisDeg(ValueT &x, ValueT &y, ValueT &z, ValueT &angle) const
{
    getValueAsAxisRad(x, y, z, angle);
    angle = osgRad2Degree(angle);
}

template <class ValueT>
void QuaternionBase<ValueT>::getValue(MatrixType &matrix) const
{
    matrix.setIdentity();
    getValuesOnly(matrix);
}

template <class ValueT>
void QuaternionBase<ValueT>::getValuesOnly(MatrixType &matrix) const
{
    const ValueT x = _quat[0];
    const ValueT y = _quat[1];
    const ValueT z = _quat[2];
    const ValueT w = _quat[3];

    matrix[0][0] = 1 - 2 * (y * y + z * z);
    matrix[0][1] = 2 * (x * y + z * w);
    matrix[0][2] = 2 * (z * x - y * w);
    matrix[1][0] = 2 * (x * y - z * w);
    matrix[1][1] = 1 - 2 * (z * z + x * x);
    matrix[1][2] = 2 * (y * z + x * w);
    matrix[2][0] = 2 * (z * x + y * w);
    matrix[2][1] = 2 * (y * z - x * w);
    matrix[2][2] = 1 - 2 * (y * y + x * x);
}

template <class ValueT>
void QuaternionBase<ValueT>::getEulerAngleRad(VectorType &angles) const
{
    MatrixType matrix;
    getValue(matrix);
    const Real64 cosine = std::hypot(static_cast<Real64>(matrix[0][0]), static_cast<Real64>(matrix[0][1]));
    const Real64 beta = std::atan2(-static_cast<Real64>(matrix[0][2]), cosine);

    // at the poles only the sum of the outer angles shows, and x takes it
    const bool atPole = cosine < (sizeof(ValueT) == 4 ? 1e-6 : 1e-14);
    const Real64 alpha =
        atPole ? std::atan2(-static_cast<Real64>(matrix[2][1]), static_cast<Real64>(matrix[1][1]))
               : std::atan2(static_cast<Real64>(matrix[1][2]), static_cast<Real64>(matrix[2][2]));
    const Real64 gamma =
        atPole ? 0.0 : std::atan2(static_cast<Real64>(matrix[0][1]), static_cast<Real64>(matrix[0][0]));
    angles = VectorType(static_cast<ValueT>(alpha), static_cast<ValueT>(beta), static_cast<ValueT>(gamma));
}

template <class ValueT>
void QuaternionBase<ValueT>::getEulerAngleDeg(VectorType &angles) const
{
    getEulerAngleRad(angles);
    for (UInt32 i = 0; i < 3; ++i)
        angles[i] = osgRad2Degree(angles[i]);
}

template <class ValueT>
ValueT QuaternionBase<ValueT>::length() const
{
    return std::sqrt(_quat[0] * _quat[0] + _quat[1] * _quat[1] + _quat[2] * _quat[2] + _quat[3] * _quat[3]);
}

template <class ValueT>
void QuaternionBase<ValueT>::normalize()
{
    const ValueT l = length();
    if (!(l > 0))
    {
        setIdentity();
        return;
    }
    for (ValueT &value : _quat)
        value /= l;
}

template <class ValueT>
QuaternionBase<ValueT> QuaternionBase<ValueT>::inverse() const
{
    const ValueT square =
        _quat[0] * _quat[0] + _quat[1] * _quat[1] + _quat[2] * _quat[2] + _quat[3] * _quat[3];
    if (!(square > 0))
        return *this;
    return QuaternionBase(-_quat[0] / square, -_quat[1] / square, -_quat[2] / square, _quat[3] / square);
}

/// q v conj(q), written as v + 2 w (u x v) + 2 u x (u x v) with the imaginary part u.
template <class ValueT>
void QuaternionBase<ValueT>::multVec(const VectorType &src, VectorType &dst) const
{
    const VectorType u(_quat[0], _quat[1], _quat[2]);
    const VectorType t = u.cross(src) * ValueT(2);
    dst = src + t * _quat[3] + u.cross(t);
}

template <class ValueT>
void QuaternionBase<ValueT>::scaleAngle(ValueT s)
{
    VectorType axis;
    ValueT angle;
    getValueAsAxisRad(axis, angle);
    setValueAsAxisRad(axis, angle * s);
}

template <class ValueT>
QuaternionBase<ValueT> QuaternionBase<ValueT>::slerp(const QuaternionBase &rot0, const QuaternionBase &rot1,
                                                     ValueT t)
{
    // the shorter of the two arcs
    Real64 cosine = 0.0;
    for (UInt32 i = 0; i < 4; ++i)
        cosine += static_cast<Real64>(rot0[i]) * rot1[i];
    const Real64 sign = cosine < 0.0 ? -1.0 : 1.0;
    cosine *= sign;

    // where the arc is too short for its sine, the chord is as good
    Real64 scale0 = 1.0 - t;
    Real64 scale1 = t;
    if (cosine < 1.0 - 1e-12)
    {
        const Real64 angle = std::acos(cosine);
        const Real64 sine = std::sin(angle);
        scale0 = std::sin((1.0 - t) * angle) / sine;
        scale1 = std::sin(t * angle) / sine;
    }

    QuaternionBase result;
    for (UInt32 i = 0; i < 4; ++i)
        result[i] = static_cast<ValueT>(scale0 * rot0[i] + sign * scale1 * rot1[i]);
    return result;
}

template <class ValueT>
std::ostream &operator<<(std::ostream &os, const QuaternionBase<ValueT> &q)
{
    return os << q.x() << ' ' << q.y() << ' ' << q.z() << ' ' << q.w();
}

template class QuaternionBase<Real32>;
template class QuaternionBase<Real64>;
template OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &, const Quaternion &);
template OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &, const Quaterniond &);

OSG_END_NAMESPACE
