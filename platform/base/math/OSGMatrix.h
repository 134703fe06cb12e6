#ifndef _OSGMATRIX_H_
#define _OSGMATRIX_H_

/// \file
/// The 4 by 4 matrix that moves points and vectors, in GL's memory order.

#include <iosfwd>

#include "OSGQuaternion.h"
#include "OSGVector.h"

OSG_BEGIN_NAMESPACE

/// A 4 by 4 matrix for column vectors: m * p. Stored column by column, so getValues() is what glLoadMatrix
/// takes, while constructor and setValue with 16 numbers read them row by row, as they stand on paper. m[i]
/// is column i, m[i][j] its row j; m[3] is the translation. The default is the identity. Plain values, any
/// thread.
/// The members are compiled for Real32 and Real64.
template <class ValueT>
class TransformationMatrix
{
  public:
    /// The type of a number.
    typedef ValueT ValueType;
    /// The types that it works with.
    typedef Vector<ValueT, 4> VectorType;
    typedef Vector<ValueT, 3> VectorType3f;
    typedef Point<ValueT, 4> PointType;
    typedef Point<ValueT, 3> PointType3f;
    typedef QuaternionBase<ValueT> QuaternionType;

    constexpr TransformationMatrix()
        : _matrix{VectorType(1, 0, 0, 0), VectorType(0, 1, 0, 0), VectorType(0, 0, 1, 0),
                  VectorType(0, 0, 0, 1)}
    {
    }

    /// From four columns.
    constexpr TransformationMatrix(const VectorType &c0, const VectorType &c1, const VectorType &c2,
                                   const VectorType &c3)
        : _matrix{c0, c1, c2, c3}
    {
    }

    /// From three columns and a translation, with the last row 0 0 0 1.
    constexpr TransformationMatrix(const VectorType3f &c0, const VectorType3f &c1, const VectorType3f &c2,
                                   const VectorType3f &translation = VectorType3f())
        : _matrix{VectorType(c0), VectorType(c1), VectorType(c2),
                  VectorType(translation.x(), translation.y(), translation.z(), 1)}
    {
    }

    /// Row by row: v01 is row 0, column 1.
    constexpr TransformationMatrix(ValueT v00, ValueT v01, ValueT v02, ValueT v03, //
                                   ValueT v10, ValueT v11, ValueT v12, ValueT v13, //
                                   ValueT v20, ValueT v21, ValueT v22, ValueT v23, //
                                   ValueT v30, ValueT v31, ValueT v32, ValueT v33)
        : _matrix{VectorType(v00, v10, v20, v30), VectorType(v01, v11, v21, v31),
                  VectorType(v02, v12, v22, v32), VectorType(v03, v13, v23, v33)}
    {
    }

    /// 1 on the diagonal.
    static constexpr TransformationMatrix identity() { return TransformationMatrix(); }

    /// Becomes the identity, or the same as rhs.
    constexpr void setIdentity() { *this = TransformationMatrix(); }
    constexpr void setValue(const TransformationMatrix &rhs) { *this = rhs; }
    /// Row by row: v01 is row 0, column 1.
    constexpr void setValue(ValueT v00, ValueT v01, ValueT v02, ValueT v03, //
                            ValueT v10, ValueT v11, ValueT v12, ValueT v13, //
                            ValueT v20, ValueT v21, ValueT v22, ValueT v23, //
                            ValueT v30, ValueT v31, ValueT v32, ValueT v33)
    {
        *this = TransformationMatrix(v00, v01, v02, v03, v10, v11, v12, v13, v20, v21, v22, v23, v30, v31,
                                     v32, v33);
    }
    /// From four columns.
    constexpr void setValue(const VectorType &c0, const VectorType &c1, const VectorType &c2,
                            const VectorType &c3)
    {
        *this = TransformationMatrix(c0, c1, c2, c3);
    }
    /// 16 values column by column, as getValues() gives them.
    constexpr void setValue(const ValueT *values)
    {
        for (UInt32 i = 0; i < 4; ++i)
            for (UInt32 j = 0; j < 4; ++j)
                _matrix[i][j] = values[4 * i + j];
    }
    /// 16 values row by row.
    constexpr void setValueTransposed(const ValueT *values)
    {
        for (UInt32 i = 0; i < 4; ++i)
            for (UInt32 j = 0; j < 4; ++j)
                _matrix[i][j] = values[4 * j + i];
    }

    /// 16 values, column by column.
    constexpr const ValueT *getValues() const { return _matrix[0].getValues(); }
    constexpr ValueT *getValues() { return _matrix[0].getValues(); }

    /// A column.
    constexpr const VectorType &operator[](UInt32 column) const { return _matrix[column]; }
    constexpr VectorType &operator[](UInt32 column) { return _matrix[column]; }

    /// Sets the translation only; the rest stays.
    constexpr void setTranslate(ValueT x, ValueT y, ValueT z)
    {
        _matrix[3][0] = x;
        _matrix[3][1] = y;
        _matrix[3][2] = z;
    }
    constexpr void setTranslate(const VectorType3f &t) { setTranslate(t.x(), t.y(), t.z()); }
    constexpr void setTranslate(const PointType3f &t) { setTranslate(t.x(), t.y(), t.z()); }
    /// Sets the upper left 3 by 3 part only.
    void setRotate(const QuaternionType &q) { q.getValuesOnly(*this); }
    /// Sets the first three numbers of the diagonal only; the rest stays.
    constexpr void setScale(ValueT x, ValueT y, ValueT z)
    {
        _matrix[0][0] = x;
        _matrix[1][1] = y;
        _matrix[2][2] = z;
    }
    constexpr void setScale(ValueT s) { setScale(s, s, s); }
    constexpr void setScale(const VectorType3f &s) { setScale(s.x(), s.y(), s.z()); }

    /// The whole matrix, from what is given: T * C * R * O * S * inverse(O) * inverse(C), with translation T,
    /// rotation R, scale S along axes turned by the scale orientation O, and C the translation to center.
    void setTransform(const VectorType3f &t);
    void setTransform(const QuaternionType &r);
    void setTransform(const VectorType3f &t, const QuaternionType &r);
    void setTransform(const VectorType3f &t, const QuaternionType &r, const VectorType3f &s);
    void setTransform(const VectorType3f &t, const QuaternionType &r, const VectorType3f &s,
                      const QuaternionType &so);
    void setTransform(const VectorType3f &t, const QuaternionType &r, const VectorType3f &s,
                      const QuaternionType &so, const VectorType3f &center);

    /// What setTransform would need to give this matrix. A mirroring is in the signs of s: all three are
    /// negative. A singular matrix gives its translation, no rotations, and the lengths of its columns as s.
    void getTransform(VectorType3f &t, QuaternionType &r, VectorType3f &s, QuaternionType &so) const;
    void getTransform(VectorType3f &t, QuaternionType &r, VectorType3f &s, QuaternionType &so,
                      const VectorType3f &center) const;

    /// Polar decomposition (N. Higham, 1986): this = T(t) * u * r * S(s) * transpose(r), with rotations u and
    /// r. proj becomes the identity; the last row of this is taken to be 0 0 0 1. False, with nothing set, if
    /// the upper left 3 by 3 part is singular.
    bool factor(TransformationMatrix &r, VectorType3f &s, TransformationMatrix &u, VectorType3f &t,
                TransformationMatrix &proj) const;

    /// this = this * rhs: rhs acts first. rhs may be this.
    void mult(const TransformationMatrix &rhs);
    /// this = lhs * this: lhs acts last. lhs may be this.
    void multLeft(const TransformationMatrix &lhs);

    /// All 16 numbers count. src and dst may be the same, here and below.
    void mult(const VectorType &src, VectorType &dst) const;
    void mult(const PointType &src, PointType &dst) const;
    void mult(const PointType3f &src, PointType3f &dst) const { multMatrixPnt(src, dst); }
    void mult(const VectorType3f &src, VectorType3f &dst) const { multMatrixVec(src, dst); }
    VectorType operator*(const VectorType &v) const;
    PointType operator*(const PointType &p) const;
    PointType3f operator*(const PointType3f &p) const;
    VectorType3f operator*(const VectorType3f &v) const;

    /// With the translation, without the division: the last row does not count.
    void multMatrixPnt(const PointType3f &src, PointType3f &dst) const { dst = *this * src; }
    void multMatrixPnt(PointType3f &pnt) const { pnt = *this * pnt; }
    void multMatrixPnt(const PointType &src, PointType &dst) const { mult(src, dst); }
    /// With the translation and the division by w. A w of 0 gives infinities.
    void multFullMatrixPnt(const PointType3f &src, PointType3f &dst) const;
    void multFullMatrixPnt(PointType3f &pnt) const { multFullMatrixPnt(pnt, pnt); }
    /// The upper left 3 by 3 part only.
    void multMatrixVec(const VectorType3f &src, VectorType3f &dst) const { dst = *this * src; }
    void multMatrixVec(VectorType3f &vec) const { vec = *this * vec; }
    void multMatrixVec(const VectorType &src, VectorType &dst) const { mult(src, dst); }
    /// The upper left 3 by 3 part on a point: no translation.
    void mult3x3(const PointType3f &src, PointType3f &dst) const
    {
        dst = PointType3f(*this * VectorType3f(src));
    }

    /// False, with the identity as the result, if the determinant is 0 or not finite. result may be this.
    bool inverse(TransformationMatrix &result) const;
    /// Becomes the inverse, its own or that of matrix, and returns what inverse does.
    bool invert() { return inverse(*this); }
    bool invertFrom(const TransformationMatrix &matrix) { return matrix.inverse(*this); }
    /// The inverse of the upper left 3 by 3 part, with the rest of the identity; false as inverse is.
    bool inverse3(TransformationMatrix &result) const;
    /// Becomes that inverse, its own or that of matrix.
    bool invert3() { return inverse3(*this); }
    bool invertFrom3(const TransformationMatrix &matrix) { return matrix.inverse3(*this); }

    /// Rows become columns. The result is true always.
    void transpose() { *this = transposed(); }
    TransformationMatrix transposed() const;
    bool transposed(TransformationMatrix &result) const
    {
        result = transposed();
        return true;
    }
    bool transposeFrom(const TransformationMatrix &matrix) { return matrix.transposed(*this); }

    /// The determinant of all, and of the upper left 3 by 3 part.
    ValueT det() const;
    ValueT det3() const;

    /// The largest column sum, the root of the sum of squares, and the largest row sum, of absolute values.
    ValueT norm1() const;
    ValueT norm2() const;
    ValueT normInfinity() const;

    /// Number by number.
    void add(const TransformationMatrix &rhs);
    void scale(ValueT s);
    void addScaled(const TransformationMatrix &rhs, ValueT s);
    void negate() { scale(ValueT(-1)); }

    /// True if no number differs by more than tolerance.
    constexpr bool equals(const TransformationMatrix &rhs, ValueT tolerance) const
    {
        for (UInt32 i = 0; i < 4; ++i)
            if (!_matrix[i].equals(rhs._matrix[i], tolerance))
                return false;
        return true;
    }

    /// The same numbers.
    friend constexpr bool operator==(const TransformationMatrix &lhs, const TransformationMatrix &rhs)
    {
        return lhs[0] == rhs[0] && lhs[1] == rhs[1] && lhs[2] == rhs[2] && lhs[3] == rhs[3];
    }
    friend constexpr bool operator!=(const TransformationMatrix &lhs, const TransformationMatrix &rhs)
    {
        return !(lhs == rhs);
    }

  private:
    VectorType _matrix[4]; // columns
};

/// Row by row, numbers separated by one space, each row ended by a newline.
template <class ValueT>
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, const TransformationMatrix<ValueT> &matrix);

/// A matrix of reals (4f, 4d).
typedef TransformationMatrix<Real32> Matrix;
typedef TransformationMatrix<Real32> Matrix4f;
typedef TransformationMatrix<Real64> Matrix4d;

extern template class OSG_BASELIB_DLLMAPPING TransformationMatrix<Real32>;
extern template class OSG_BASELIB_DLLMAPPING TransformationMatrix<Real64>;

static_assert(sizeof(Matrix) == 64 && std::is_trivially_copyable_v<Matrix>);

OSG_END_NAMESPACE

#endif
