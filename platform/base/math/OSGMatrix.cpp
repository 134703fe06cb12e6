/// \file
/// The 4 by 4 matrix, compiled for Real32 and Real64. Determinants, inverses and decompositions are computed
/// in Real64.

#include "OSGMatrix.h"

#include <cmath>
#include <ostream>

OSG_BEGIN_NAMESPACE

namespace
{

/// A 3 by 3 matrix, row by row.
struct Matrix3
{
    Real64 m[3][3];
};

Matrix3 product(const Matrix3 &a, const Matrix3 &b)
{
    Matrix3 result;
    for (UInt32 i = 0; i < 3; ++i)
        for (UInt32 j = 0; j < 3; ++j)
            result.m[i][j] = a.m[i][0] * b.m[0][j] + a.m[i][1] * b.m[1][j] + a.m[i][2] * b.m[2][j];
    return result;
}

Matrix3 transpose3(const Matrix3 &a)
{
    Matrix3 result;
    for (UInt32 i = 0; i < 3; ++i)
        for (UInt32 j = 0; j < 3; ++j)
            result.m[i][j] = a.m[j][i];
    return result;
}

/// The cofactors; over the determinant they are the transposed inverse.
Matrix3 cofactors(const Matrix3 &a)
{
    Matrix3 result;
    for (UInt32 i = 0; i < 3; ++i)
    {
        const UInt32 i1 = (i + 1) % 3;
        const UInt32 i2 = (i + 2) % 3;
        for (UInt32 j = 0; j < 3; ++j)
        {
            const UInt32 j1 = (j + 1) % 3;
            const UInt32 j2 = (j + 2) % 3;
            result.m[i][j] = a.m[i1][j1] * a.m[i2][j2] - a.m[i1][j2] * a.m[i2][j1];
        }
    }
    return result;
}

Real64 determinant(const Matrix3 &a, const Matrix3 &cofactor)
{
    return a.m[0][0] * cofactor.m[0][0] + a.m[0][1] * cofactor.m[0][1] + a.m[0][2] * cofactor.m[0][2];
}

Real64 frobenius(const Matrix3 &a)
{
    Real64 sum = 0.0;
    for (const auto &row : a.m)
        for (const Real64 v : row)
            sum += v * v;
    return std::sqrt(sum);
}

/// The orthogonal factor of a, by Newton's iteration with scaling (N. Higham, 1986). False for a singular
/// matrix.
bool orthogonalFactor(const Matrix3 &a, Matrix3 &u)
{
    u = a;
    for (UInt32 step = 0; step < 64; ++step)
    {
        const Matrix3 cofactor = cofactors(u);
        const Real64 det = determinant(u, cofactor);
        if (det == 0.0 || !std::isfinite(det))
            return false;

        const Real64 gamma = std::sqrt(frobenius(cofactor) / std::abs(det) / frobenius(u));
        Matrix3 next;
        Matrix3 change;
        for (UInt32 i = 0; i < 3; ++i)
            for (UInt32 j = 0; j < 3; ++j)
            {
                next.m[i][j] = 0.5 * (gamma * u.m[i][j] + cofactor.m[i][j] / (det * gamma));
                change.m[i][j] = next.m[i][j] - u.m[i][j];
            }
        u = next;
        // it converges quadratically, so the next change would be below what a Real64 holds
        if (frobenius(change) < 1e-10)
            return true;
    }
    return std::isfinite(frobenius(u));
}

/// The eigenvalues of the symmetric matrix a, and a rotation whose columns are its eigenvectors, by Jacobi's
/// rotations. Of a diagonal matrix the rotation is the identity.
void eigenSystem(Matrix3 a, Real64 *values, Matrix3 &vectors)
{
    vectors = {{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
    const Real64 tiny = 1e-16 * frobenius(a);
    for (UInt32 sweep = 0; sweep < 50; ++sweep)
    {
        if (std::abs(a.m[0][1]) + std::abs(a.m[0][2]) + std::abs(a.m[1][2]) <= tiny)
            break;
        for (UInt32 p = 0; p < 2; ++p)
            for (UInt32 q = p + 1; q < 3; ++q)
            {
                if (std::abs(a.m[p][q]) <= 0.25 * tiny)
                    continue;

                // the rotation in the plane of p and q by the smaller angle that clears their element
                const Real64 theta = (a.m[q][q] - a.m[p][p]) / (2.0 * a.m[p][q]);
                const Real64 t = (theta < 0.0 ? -1.0 : 1.0) / (std::abs(theta) + std::hypot(theta, 1.0));
                const Real64 c = 1.0 / std::hypot(t, 1.0);
                const Real64 s = t * c;
                for (UInt32 i = 0; i < 3; ++i)
                {
                    const Real64 ip = a.m[i][p];
                    const Real64 iq = a.m[i][q];
                    a.m[i][p] = c * ip - s * iq;
                    a.m[i][q] = s * ip + c * iq;
                }
                for (UInt32 i = 0; i < 3; ++i)
                {
                    const Real64 pi = a.m[p][i];
                    const Real64 qi = a.m[q][i];
                    a.m[p][i] = c * pi - s * qi;
                    a.m[q][i] = s * pi + c * qi;
                }
                for (UInt32 i = 0; i < 3; ++i)
                {
                    const Real64 ip = vectors.m[i][p];
                    const Real64 iq = vectors.m[i][q];
                    vectors.m[i][p] = c * ip - s * iq;
                    vectors.m[i][q] = s * ip + c * iq;
                }
            }
    }
    for (UInt32 i = 0; i < 3; ++i)
        values[i] = a.m[i][i];
}

template <class ValueT>
Matrix3 upperLeft(const TransformationMatrix<ValueT> &matrix)
{
    Matrix3 result;
    for (UInt32 i = 0; i < 3; ++i)
        for (UInt32 j = 0; j < 3; ++j)
            result.m[i][j] = matrix[j][i];
    return result;
}

template <class ValueT>
void setUpperLeft(TransformationMatrix<ValueT> &matrix, const Matrix3 &part)
{
    for (UInt32 i = 0; i < 3; ++i)
        for (UInt32 j = 0; j < 3; ++j)
            matrix[j][i] = static_cast<ValueT>(part.m[i][j]);
}

template <class ValueT>
Vector<ValueT, 4> linearCombination(const TransformationMatrix<ValueT> &m, ValueT x, ValueT y, ValueT z,
                                    ValueT w)
{
    Vector<ValueT, 4> result;
    for (UInt32 j = 0; j < 4; ++j)
        result[j] = m[0][j] * x + m[1][j] * y + m[2][j] * z + m[3][j] * w;
    return result;
}

/// The 2 by 2 determinants of the upper and of the lower two rows, from which all cofactors of a 4 by 4
/// matrix follow.
struct Minors
{
    template <class ValueT>
    explicit Minors(const TransformationMatrix<ValueT> &matrix)
    {
        for (UInt32 i = 0; i < 4; ++i)
            for (UInt32 j = 0; j < 4; ++j)
                a[i][j] = matrix[j][i];
        s[0] = a[0][0] * a[1][1] - a[1][0] * a[0][1];
        s[1] = a[0][0] * a[1][2] - a[1][0] * a[0][2];
        s[2] = a[0][0] * a[1][3] - a[1][0] * a[0][3];
        s[3] = a[0][1] * a[1][2] - a[1][1] * a[0][2];
        s[4] = a[0][1] * a[1][3] - a[1][1] * a[0][3];
        s[5] = a[0][2] * a[1][3] - a[1][2] * a[0][3];
        c[5] = a[2][2] * a[3][3] - a[3][2] * a[2][3];
        c[4] = a[2][1] * a[3][3] - a[3][1] * a[2][3];
        c[3] = a[2][1] * a[3][2] - a[3][1] * a[2][2];
        c[2] = a[2][0] * a[3][3] - a[3][0] * a[2][3];
        c[1] = a[2][0] * a[3][2] - a[3][0] * a[2][2];
        c[0] = a[2][0] * a[3][1] - a[3][0] * a[2][1];
    }

    Real64 determinant() const
    {
        return s[0] * c[5] - s[1] * c[4] + s[2] * c[3] + s[3] * c[2] - s[4] * c[1] + s[5] * c[0];
    }

    Real64 a[4][4]; // row, column
    Real64 s[6];
    Real64 c[6];
};

} // namespace

template <class ValueT>
void TransformationMatrix<ValueT>::setTransform(const VectorType3f &t)
{
    setIdentity();
    setTranslate(t);
}

template <class ValueT>
void TransformationMatrix<ValueT>::setTransform(const QuaternionType &r)
{
    r.getValue(*this);
}

template <class ValueT>
void TransformationMatrix<ValueT>::setTransform(const VectorType3f &t, const QuaternionType &r)
{
    r.getValue(*this);
    setTranslate(t);
}

template <class ValueT>
void TransformationMatrix<ValueT>::setTransform(const VectorType3f &t, const QuaternionType &r,
                                                const VectorType3f &s)
{
    r.getValue(*this);
    for (UInt32 i = 0; i < 3; ++i)
        _matrix[i] *= s[i];
    setTranslate(t);
}

template <class ValueT>
void TransformationMatrix<ValueT>::setTransform(const VectorType3f &t, const QuaternionType &r,
                                                const VectorType3f &s, const QuaternionType &so)
{
    setTransform(VectorType3f(), r * so, s);
    TransformationMatrix back;
    so.inverse().getValue(back);
    mult(back);
    setTranslate(t);
}

template <class ValueT>
void TransformationMatrix<ValueT>::setTransform(const VectorType3f &t, const QuaternionType &r,
                                                const VectorType3f &s, const QuaternionType &so,
                                                const VectorType3f &center)
{
    setTransform(VectorType3f(), r, s, so);
    setTranslate(t + center - *this * center);
}

template <class ValueT>
void TransformationMatrix<ValueT>::getTransform(VectorType3f &t, QuaternionType &r, VectorType3f &s,
                                                QuaternionType &so) const
{
    TransformationMatrix orientation;
    TransformationMatrix rotation;
    TransformationMatrix projection;
    if (factor(orientation, s, rotation, t, projection))
    {
        r.setValue(rotation);
        so.setValue(orientation);
        return;
    }
    t = VectorType3f(_matrix[3]);
    r.setIdentity();
    so.setIdentity();
    for (UInt32 i = 0; i < 3; ++i)
        s[i] = VectorType3f(_matrix[i]).length();
}

template <class ValueT>
void TransformationMatrix<ValueT>::getTransform(VectorType3f &t, QuaternionType &r, VectorType3f &s,
                                                QuaternionType &so, const VectorType3f &center) const
{
    // moved to the center and back, what is left is the transform about the origin
    TransformationMatrix moved(*this);
    moved.setTranslate(VectorType3f(_matrix[3]) + *this * center - center);
    moved.getTransform(t, r, s, so);
}

template <class ValueT>
bool TransformationMatrix<ValueT>::factor(TransformationMatrix &r, VectorType3f &s, TransformationMatrix &u,
                                          VectorType3f &t, TransformationMatrix &proj) const
{
    const Matrix3 a = upperLeft(*this);
    Matrix3 orthogonal;
    if (!orthogonalFactor(a, orthogonal))
        return false;

    // what stretches is the symmetric rest
    Matrix3 stretch = product(transpose3(orthogonal), a);
    for (UInt32 i = 0; i < 3; ++i)
        for (UInt32 j = 0; j < i; ++j)
            stretch.m[i][j] = stretch.m[j][i] = 0.5 * (stretch.m[i][j] + stretch.m[j][i]);
    Real64 values[3];
    Matrix3 vectors;
    eigenSystem(stretch, values, vectors);

    // a mirroring goes into the scale, so that the rotation is one
    const Real64 sign = determinant(orthogonal, cofactors(orthogonal)) < 0.0 ? -1.0 : 1.0;
    for (auto &row : orthogonal.m)
        for (Real64 &v : row)
            v *= sign;

    const VectorType3f translation(_matrix[3]);
    r.setIdentity();
    setUpperLeft(r, vectors);
    u.setIdentity();
    setUpperLeft(u, orthogonal);
    proj.setIdentity();
    for (UInt32 i = 0; i < 3; ++i)
        s[i] = static_cast<ValueT>(sign * values[i]);
    t = translation;
    return true;
}

template <class ValueT>
void TransformationMatrix<ValueT>::mult(const TransformationMatrix &rhs)
{
    TransformationMatrix result;
    for (UInt32 i = 0; i < 4; ++i)
        result._matrix[i] = *this * rhs._matrix[i];
    *this = result;
}

template <class ValueT>
void TransformationMatrix<ValueT>::multLeft(const TransformationMatrix &lhs)
{
    TransformationMatrix result(lhs);
    result.mult(*this);
    *this = result;
}

template <class ValueT>
void TransformationMatrix<ValueT>::mult(const VectorType &src, VectorType &dst) const
{
    dst = *this * src;
}

template <class ValueT>
void TransformationMatrix<ValueT>::mult(const PointType &src, PointType &dst) const
{
    dst = *this * src;
}

template <class ValueT>
typename TransformationMatrix<ValueT>::VectorType
TransformationMatrix<ValueT>::operator*(const VectorType &v) const
{
    return linearCombination(*this, v.x(), v.y(), v.z(), v.w());
}

template <class ValueT>
typename TransformationMatrix<ValueT>::PointType
TransformationMatrix<ValueT>::operator*(const PointType &p) const
{
    return PointType(linearCombination(*this, p.x(), p.y(), p.z(), p.w()));
}

template <class ValueT>
typename TransformationMatrix<ValueT>::PointType3f
TransformationMatrix<ValueT>::operator*(const PointType3f &p) const
{
    return PointType3f(linearCombination(*this, p.x(), p.y(), p.z(), ValueT(1)));
}

template <class ValueT>
typename TransformationMatrix<ValueT>::VectorType3f
TransformationMatrix<ValueT>::operator*(const VectorType3f &v) const
{
    VectorType3f result;
    for (UInt32 j = 0; j < 3; ++j)
        result[j] = _matrix[0][j] * v.x() + _matrix[1][j] * v.y() + _matrix[2][j] * v.z();
    return result;
}

template <class ValueT>
void TransformationMatrix<ValueT>::multFullMatrixPnt(const PointType3f &src, PointType3f &dst) const
{
    const VectorType full = linearCombination(*this, src.x(), src.y(), src.z(), ValueT(1));
    dst = PointType3f(full.x() / full.w(), full.y() / full.w(), full.z() / full.w());
}

template <class ValueT>
bool TransformationMatrix<ValueT>::inverse(TransformationMatrix &result) const
{
    const Minors minors(*this);
    const Real64(&a)[4][4] = minors.a;
    const Real64(&s)[6] = minors.s;
    const Real64(&c)[6] = minors.c;
    const Real64 det = minors.determinant();
    if (det == 0.0 || !std::isfinite(det))
    {
        result.setIdentity();
        return false;
    }

    const Real64 adjoint[4][4] = {
        {a[1][1] * c[5] - a[1][2] * c[4] + a[1][3] * c[3], -a[0][1] * c[5] + a[0][2] * c[4] - a[0][3] * c[3],
         a[3][1] * s[5] - a[3][2] * s[4] + a[3][3] * s[3], -a[2][1] * s[5] + a[2][2] * s[4] - a[2][3] * s[3]},
        {-a[1][0] * c[5] + a[1][2] * c[2] - a[1][3] * c[1], a[0][0] * c[5] - a[0][2] * c[2] + a[0][3] * c[1],
         -a[3][0] * s[5] + a[3][2] * s[2] - a[3][3] * s[1], a[2][0] * s[5] - a[2][2] * s[2] + a[2][3] * s[1]},
        {a[1][0] * c[4] - a[1][1] * c[2] + a[1][3] * c[0], -a[0][0] * c[4] + a[0][1] * c[2] - a[0][3] * c[0],
         a[3][0] * s[4] - a[3][1] * s[2] + a[3][3] * s[0], -a[2][0] * s[4] + a[2][1] * s[2] - a[2][3] * s[0]},
        {-a[1][0] * c[3] + a[1][1] * c[1] - a[1][2] * c[0], a[0][0] * c[3] - a[0][1] * c[1] + a[0][2] * c[0],
         -a[3][0] * s[3] + a[3][1] * s[1] - a[3][2] * s[0],
         a[2][0] * s[3] - a[2][1] * s[1] + a[2][2] * s[0]}};
    for (UInt32 i = 0; i < 4; ++i)
        for (UInt32 j = 0; j < 4; ++j)
            result._matrix[j][i] = static_cast<ValueT>(adjoint[i][j] / det);
    return true;
}

template <class ValueT>
bool TransformationMatrix<ValueT>::inverse3(TransformationMatrix &result) const
{
    const Matrix3 a = upperLeft(*this);
    const Matrix3 cofactor = cofactors(a);
    const Real64 det = determinant(a, cofactor);
    result.setIdentity();
    if (det == 0.0 || !std::isfinite(det))
        return false;
    for (UInt32 i = 0; i < 3; ++i)
        for (UInt32 j = 0; j < 3; ++j)
            result._matrix[i][j] = static_cast<ValueT>(cofactor.m[i][j] / det);
    return true;
}

template <class ValueT>
TransformationMatrix<ValueT> TransformationMatrix<ValueT>::transposed() const
{
    TransformationMatrix result;
    result.setValueTransposed(getValues());
    return result;
}

template <class ValueT>
ValueT TransformationMatrix<ValueT>::det() const
{
    return static_cast<ValueT>(Minors(*this).determinant());
}

template <class ValueT>
ValueT TransformationMatrix<ValueT>::det3() const
{
    const Matrix3 a = upperLeft(*this);
    return static_cast<ValueT>(determinant(a, cofactors(a)));
}

template <class ValueT>
ValueT TransformationMatrix<ValueT>::norm1() const
{
    ValueT largest = 0;
    for (const VectorType &column : _matrix)
        largest = std::fmax(largest, std::abs(column.x()) + std::abs(column.y()) + std::abs(column.z()) +
                                         std::abs(column.w()));
    return largest;
}

template <class ValueT>
ValueT TransformationMatrix<ValueT>::norm2() const
{
    ValueT sum = 0;
    for (const VectorType &column : _matrix)
        sum += column.squareLength();
    return std::sqrt(sum);
}

template <class ValueT>
ValueT TransformationMatrix<ValueT>::normInfinity() const
{
    return transposed().norm1();
}

template <class ValueT>
void TransformationMatrix<ValueT>::add(const TransformationMatrix &rhs)
{
    addScaled(rhs, ValueT(1));
}

template <class ValueT>
void TransformationMatrix<ValueT>::scale(ValueT s)
{
    for (VectorType &column : _matrix)
        column *= s;
}

template <class ValueT>
void TransformationMatrix<ValueT>::addScaled(const TransformationMatrix &rhs, ValueT s)
{
    for (UInt32 i = 0; i < 4; ++i)
        _matrix[i] += rhs._matrix[i] * s;
}

template <class ValueT>
std::ostream &operator<<(std::ostream &os, const TransformationMatrix<ValueT> &matrix)
{
    for (UInt32 row = 0; row < 4; ++row)
        os << matrix[0][row] << ' ' << matrix[1][row] << ' ' << matrix[2][row] << ' ' << matrix[3][row]
           << '\n';
    return os;
}

template class TransformationMatrix<Real32>;
template class TransformationMatrix<Real64>;
template OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &, const Matrix4f &);
template OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &, const Matrix4d &);

OSG_END_NAMESPACE
