#ifndef _OSGQUATERNION_H_
#define _OSGQUATERNION_H_

/// \file
/// Rotations as unit quaternions.

#include <iosfwd>

#include "OSGVector.h"

OSG_BEGIN_NAMESPACE

template <class ValueT>
class TransformationMatrix;

/// A quaternion x i + y j + z k + w, kept as (x, y, z, w). The operations that speak of rotations take it to
/// have length 1, as everything that is set from an angle, a matrix or two vectors has. Plain values, any
/// thread. The members are compiled for Real32 and Real64.
template <class ValueT>
class QuaternionBase
{
  public:
    /// The type of a number.
    typedef ValueT ValueType;
    /// The types that it works with.
    typedef Vector<ValueT, 3> VectorType;
    typedef TransformationMatrix<ValueT> MatrixType;

    enum
    {
        _iSize = 4
    };

    /// No rotation.
    constexpr QuaternionBase() = default;
    /// By angle, in radians, about axis, which need not have length 1.
    QuaternionBase(const VectorType &axis, ValueT angle) { setValueAsAxisRad(axis, angle); }
    /// The shortest rotation that turns rotateFrom into rotateTo.
    QuaternionBase(const VectorType &rotateFrom, const VectorType &rotateTo)
    {
        setValue(rotateFrom, rotateTo);
    }
    /// The rotation of the matrix.
    explicit QuaternionBase(const MatrixType &matrix) { setValue(matrix); }
    /// From the four numbers, as they are.
    constexpr QuaternionBase(ValueT x, ValueT y, ValueT z, ValueT w) : _quat{x, y, z, w} {}

    /// No rotation.
    static constexpr QuaternionBase identity() { return QuaternionBase(); }

    /// Becomes no rotation.
    constexpr void setIdentity() { *this = QuaternionBase(); }
    /// Sets the four numbers, w the real one, without bringing them to length 1.
    constexpr void setValueAsQuat(ValueT x, ValueT y, ValueT z, ValueT w)
    {
        *this = QuaternionBase(x, y, z, w);
    }
    /// Four values, in the order x, y, z, w.
    constexpr void setValueAsQuat(const ValueT *values)
    {
        *this = QuaternionBase(values[0], values[1], values[2], values[3]);
    }
    /// By angle, in radians. An axis of length 0 gives no rotation.
    void setValueAsAxisRad(const VectorType &axis, ValueT angle);
    void setValueAsAxisRad(ValueT x, ValueT y, ValueT z, ValueT angle)
    {
        setValueAsAxisRad(VectorType(x, y, z), angle);
    }
    /// By angle, in degrees. An axis of length 0 gives no rotation.
    void setValueAsAxisDeg(const VectorType &axis, ValueT angle);
    void setValueAsAxisDeg(ValueT x, ValueT y, ValueT z, ValueT angle)
    {
        setValueAsAxisDeg(VectorType(x, y, z), angle);
    }
    /// The rotation of the matrix, whose upper left 3 by 3 part has to be a rotation.
    void setValue(const MatrixType &matrix);
    /// The shortest rotation that turns rotateFrom into rotateTo; no rotation where one of them has length 0.
    void setValue(const VectorType &rotateFrom, const VectorType &rotateTo);
    /// Euler angles in radians: first about x by alpha, then about the fixed y by beta, then about the fixed
    /// z by gamma.
    void setValue(ValueT alpha, ValueT beta, ValueT gamma);

    /// The numbers x, y, z, w; w is the real one.
    constexpr const ValueT *getValues() const { return _quat; }
    constexpr ValueT *getValues() { return _quat; }
    constexpr ValueT operator[](UInt32 i) const { return _quat[i]; }
    constexpr ValueT &operator[](UInt32 i) { return _quat[i]; }
    constexpr ValueT x() const { return _quat[0]; }
    constexpr ValueT y() const { return _quat[1]; }
    constexpr ValueT z() const { return _quat[2]; }
    constexpr ValueT w() const { return _quat[3]; }

    /// Axis of length 1 and angle in radians, 0 to 2 Pi; (0, 0, 1) and 0 where nothing is rotated.
    void getValueAsAxisRad(VectorType &axis, ValueT &angle) const;
    void getValueAsAxisRad(ValueT &x, ValueT &y, ValueT &z, ValueT &angle) const;
    /// The same with the angle in degrees.
    void getValueAsAxisDeg(VectorType &axis, ValueT &angle) const;
    void getValueAsAxisDeg(ValueT &x, ValueT &y, ValueT &z, ValueT &angle) const;
    /// Sets the whole matrix: the rotation, and for the rest the identity.
    void getValue(MatrixType &matrix) const;
    /// Sets the upper left 3 by 3 part of the matrix only.
    void getValuesOnly(MatrixType &matrix) const;
    /// Angles about x, y, z in radians, in the convention of setValue(alpha, beta, gamma); y is within
    /// +-Pi/2.
    void getEulerAngleRad(VectorType &angles) const;
    void getEulerAngleDeg(VectorType &angles) const;

    /// The root of the sum of the squares.
    ValueT length() const;
    /// To length 1; a quaternion of length 0 becomes the identity.
    void normalize();
    /// The inverse: conjugate over squared length; of length 0, itself.
    QuaternionBase inverse() const;
    /// Becomes its inverse.
    void invert() { *this = inverse(); }
    /// The conjugate: the inverse, of length 1.
    constexpr QuaternionBase conj() const
    {
        return QuaternionBase(-_quat[0], -_quat[1], -_quat[2], _quat[3]);
    }

    /// src rotated; works in place too.
    void multVec(const VectorType &src, VectorType &dst) const;
    /// this = this * rhs: rhs rotates first.
    void mult(const QuaternionBase &rhs) { *this = *this * rhs; }
    /// this = lhs * this: lhs rotates last.
    void multLeft(const QuaternionBase &lhs) { *this = lhs * *this; }
    /// this = this * rhs: rhs rotates first.
    constexpr QuaternionBase &operator*=(const QuaternionBase &rhs) { return *this = *this * rhs; }

    /// The angle is multiplied by s, about the same axis.
    void scaleAngle(ValueT s);

    /// Between the two along the shorter arc, at constant speed: rot0 at t = 0, rot1 at t = 1. (K. Shoemake,
    /// 1985.)
    static QuaternionBase slerp(const QuaternionBase &rot0, const QuaternionBase &rot1, ValueT t);
    /// this = slerp(rot0, rot1, t); each may be this.
    void slerpThis(const QuaternionBase &rot0, const QuaternionBase &rot1, ValueT t)
    {
        *this = slerp(rot0, rot1, t);
    }

    /// True if no component differs by more than tolerance. q and -q rotate alike but are not equal here.
    constexpr bool equals(const QuaternionBase &rhs, ValueT tolerance) const
    {
        for (UInt32 i = 0; i < 4; ++i)
        {
            const ValueT difference = _quat[i] - rhs._quat[i];
            if (!(difference <= tolerance && difference >= -tolerance))
                return false;
        }
        return true;
    }

    /// The same numbers: a rotation has two quaternions, which are not the same.
    friend constexpr bool operator==(const QuaternionBase &lhs, const QuaternionBase &rhs)
    {
        return lhs[0] == rhs[0] && lhs[1] == rhs[1] && lhs[2] == rhs[2] && lhs[3] == rhs[3];
    }
    friend constexpr bool operator!=(const QuaternionBase &lhs, const QuaternionBase &rhs)
    {
        return !(lhs == rhs);
    }

    /// The rotation b, then the rotation a.
    friend constexpr QuaternionBase operator*(const QuaternionBase &a, const QuaternionBase &b)
    {
        return QuaternionBase(a.w() * b.x() + a.x() * b.w() + a.y() * b.z() - a.z() * b.y(),
                              a.w() * b.y() + a.y() * b.w() + a.z() * b.x() - a.x() * b.z(),
                              a.w() * b.z() + a.z() * b.w() + a.x() * b.y() - a.y() * b.x(),
                              a.w() * b.w() - a.x() * b.x() - a.y() * b.y() - a.z() * b.z());
    }

  private:
    ValueT _quat[4] = {0, 0, 0, 1};
};

/// x y z w, separated by one space, without a newline.
template <class ValueT>
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, const QuaternionBase<ValueT> &q);

/// Quaternion of reals (d: Real64).
typedef QuaternionBase<Real32> Quaternion;
typedef QuaternionBase<Real64> Quaterniond;

extern template class OSG_BASELIB_DLLMAPPING QuaternionBase<Real32>;
extern template class OSG_BASELIB_DLLMAPPING QuaternionBase<Real64>;

OSG_END_NAMESPACE

#endif
