#ifndef _OSGVECTOR_H_
#define _OSGVECTOR_H_

/// \file
/// Vectors and points of two to four components, laid out as bare arrays so that they can be handed to GL.

#include <cmath>
#include <iosfwd>
#include <type_traits>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

template <class ValueT, UInt32 SizeI>
class Vector;
template <class ValueT, UInt32 SizeI>
class Point;

/// What lengths and products of a component type are computed in: Real64 for Real64, Real32 for all others.
template <class ValueT>
using RealReturnType = std::conditional_t<std::is_same_v<ValueT, Real64>, Real64, Real32>;

/// What vectors and points have in common. Plain values: any thread, no allocation, the array and nothing
/// else. DerivedT is the class itself, which the operations return.
template <class DerivedT, class ValueT, UInt32 SizeI>
class TupleBase
{
    static_assert(SizeI >= 1 && SizeI <= 4, "one to four components");

  public:
    /// The type of a component.
    typedef ValueT ValueType;
    /// The type of lengths and products: a real.
    typedef osg::RealReturnType<ValueT> RealReturnType;

    enum
    {
        _iSize = SizeI
    };

    /// The components, one behind the other.
    constexpr const ValueT *getValues() const { return _values; }
    constexpr ValueT *getValues() { return _values; }

    /// i is below the number of components and is not checked.
    constexpr ValueT operator[](UInt32 i) const { return _values[i]; }
    constexpr ValueT &operator[](UInt32 i) { return _values[i]; }

    /// A component. One that there is none of does not compile.
    constexpr ValueT x() const { return _values[0]; }
    constexpr ValueT y() const { return component<1>(); }
    constexpr ValueT z() const { return component<2>(); }
    constexpr ValueT w() const { return component<3>(); }

    /// All components 0.
    constexpr void setNull() { fill(ValueT(0)); }

    /// Sets every component to v.
    constexpr void fill(ValueT v)
    {
        for (ValueT &value : _values)
            value = v;
    }

    /// The same as rhs.
    constexpr void setValue(const DerivedT &rhs) { self() = rhs; }

    /// Reads as many values as there are components.
    constexpr void setValue(const ValueT *values)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            _values[i] = values[i];
    }

    /// Sets all components: as many values as there are.
    constexpr void setValues(ValueT x, ValueT y)
    {
        static_assert(SizeI == 2, "as many values as components");
        _values[0] = x;
        component<1>() = y;
    }

    /// Sets all components: as many values as there are.
    constexpr void setValues(ValueT x, ValueT y, ValueT z)
    {
        static_assert(SizeI == 3, "as many values as components");
        _values[0] = x;
        component<1>() = y;
        component<2>() = z;
    }

    /// Sets all components: as many values as there are.
    constexpr void setValues(ValueT x, ValueT y, ValueT z, ValueT w)
    {
        static_assert(SizeI == 4, "as many values as components");
        _values[0] = x;
        component<1>() = y;
        component<2>() = z;
        component<3>() = w;
    }

    /// Component by component.
    constexpr DerivedT &operator*=(ValueT s)
    {
        for (ValueT &value : _values)
            value = static_cast<ValueT>(value * s);
        return self();
    }

    /// A division by 0 follows the rules of the component type.
    constexpr DerivedT &operator/=(ValueT s)
    {
        for (ValueT &value : _values)
            value = static_cast<ValueT>(value / s);
        return self();
    }

    /// Component by component.
    friend constexpr DerivedT operator*(const DerivedT &lhs, ValueT s)
    {
        DerivedT result(lhs);
        result *= s;
        return result;
    }

    /// Component by component.
    friend constexpr DerivedT operator*(ValueT s, const DerivedT &rhs)
    {
        DerivedT result(rhs);
        result *= s;
        return result;
    }

    /// Component by component.
    friend constexpr DerivedT operator/(const DerivedT &lhs, ValueT s)
    {
        DerivedT result(lhs);
        result /= s;
        return result;
    }

    /// Each component with the other sign.
    constexpr DerivedT operator-() const
    {
        DerivedT result(self());
        for (UInt32 i = 0; i < SizeI; ++i)
            result[i] = static_cast<ValueT>(-_values[i]);
        return result;
    }

    /// Each component becomes the smaller of the two.
    constexpr void minInPlace(const DerivedT &rhs)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            _values[i] = rhs[i] < _values[i] ? rhs[i] : _values[i];
    }

    /// Each component becomes the larger of the two.
    constexpr void maxInPlace(const DerivedT &rhs)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            _values[i] = _values[i] < rhs[i] ? rhs[i] : _values[i];
    }

    /// True if no component is farther than Eps from 0.
    constexpr bool isZero() const
    {
        for (const ValueT value : _values)
            if (!(static_cast<RealReturnType>(value) <= Eps && static_cast<RealReturnType>(value) >= -Eps))
                return false;
        return true;
    }

    /// True if no component differs by more than tolerance; false where one is not a number.
    constexpr bool equals(const DerivedT &rhs, RealReturnType tolerance) const
    {
        for (UInt32 i = 0; i < SizeI; ++i)
        {
            const RealReturnType difference =
                static_cast<RealReturnType>(_values[i]) - static_cast<RealReturnType>(rhs[i]);
            if (!(difference <= tolerance && difference >= -tolerance))
                return false;
        }
        return true;
    }

    /// The same components, bit patterns of zero and of what is not a number apart.
    friend constexpr bool operator==(const DerivedT &lhs, const DerivedT &rhs)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            if (!(lhs[i] == rhs[i]))
                return false;
        return true;
    }

    /// Whether any component differs.
    friend constexpr bool operator!=(const DerivedT &lhs, const DerivedT &rhs) { return !(lhs == rhs); }

    /// Lexicographic, so that tuples can be keys of ordered containers.
    friend constexpr bool operator<(const DerivedT &lhs, const DerivedT &rhs)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
        {
            if (lhs[i] < rhs[i])
                return true;
            if (rhs[i] < lhs[i])
                return false;
        }
        return false;
    }

    /// The sum of the products of the components.
    template <class OtherT>
    constexpr RealReturnType dot(const Vector<OtherT, SizeI> &rhs) const
    {
        return sumOfProducts(rhs);
    }

    /// The sum of the products of the components.
    template <class OtherT>
    constexpr RealReturnType dot(const Point<OtherT, SizeI> &rhs) const
    {
        return sumOfProducts(rhs);
    }

  protected:
    constexpr TupleBase() = default;

    /// The component of that index.
    template <UInt32 I>
    constexpr const ValueT &component() const
    {
        static_assert(I < SizeI, "no such component");
        return _values[I < SizeI ? I : 0];
    }

    /// The component of that index.
    template <UInt32 I>
    constexpr ValueT &component()
    {
        static_assert(I < SizeI, "no such component");
        return _values[I < SizeI ? I : 0];
    }

    /// This, as the derived type.
    constexpr DerivedT &self() { return static_cast<DerivedT &>(*this); }
    constexpr const DerivedT &self() const { return static_cast<const DerivedT &>(*this); }

    /// What dot returns.
    template <class OtherT>
    constexpr RealReturnType sumOfProducts(const OtherT &rhs) const
    {
        RealReturnType sum = 0;
        for (UInt32 i = 0; i < SizeI; ++i)
            sum += static_cast<RealReturnType>(_values[i]) * static_cast<RealReturnType>(rhs[i]);
        return sum;
    }

    /// Takes over what both have; the components that other lacks become missing, from index 3 on last.
    template <class OtherT>
    constexpr void convertFrom(const OtherT &other, UInt32 otherSize, ValueT last)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            _values[i] = i < otherSize ? static_cast<ValueT>(other[i < otherSize ? i : 0])
                                       : (i == 3 ? last : ValueT(0));
    }

    /// Sets a component if there is one of that index.
    constexpr void assign(UInt32 i, ValueT v)
    {
        if (i < SizeI)
            _values[i] = v;
    }

    ValueT _values[SizeI] = {}; ///< x, y, z, w
};

/// A direction or a difference of points.
template <class ValueT, UInt32 SizeI>
class Vector : public TupleBase<Vector<ValueT, SizeI>, ValueT, SizeI>
{
    using Inherited = TupleBase<Vector, ValueT, SizeI>;

  public:
    /// The type of lengths and products: a real.
    using typename Inherited::RealReturnType;
    /// The point of the same kind.
    using PointType = Point<ValueT, SizeI>;

    static const Vector Null; ///< all components 0
    static const Vector One;  ///< all components 1

    /// All components 0.
    constexpr Vector() = default;

    /// All components v.
    constexpr explicit Vector(ValueT v) { this->fill(v); }

    /// Components that are not given are 0.
    constexpr Vector(ValueT x, ValueT y)
    {
        static_assert(SizeI >= 2, "too many values");
        this->assign(0, x);
        this->assign(1, y);
    }

    /// Components that are not given are 0.
    constexpr Vector(ValueT x, ValueT y, ValueT z)
    {
        static_assert(SizeI >= 3, "too many values");
        this->assign(0, x);
        this->assign(1, y);
        this->assign(2, z);
    }

    /// All four components.
    constexpr Vector(ValueT x, ValueT y, ValueT z, ValueT w)
    {
        static_assert(SizeI >= 4, "too many values");
        this->assign(0, x);
        this->assign(1, y);
        this->assign(2, z);
        this->assign(3, w);
    }

    /// Reads as many values as there are components. A template, so that the number 0 is never taken for an
    /// array.
    template <class T, class = std::enable_if_t<std::is_same_v<T, ValueT>>>
    constexpr explicit Vector(const T *values)
    {
        this->setValue(values);
    }

    /// From another size or type: what is too much is cut off, what lacks is 0.
    template <class OtherT, UInt32 OtherSizeI>
    constexpr explicit Vector(const Vector<OtherT, OtherSizeI> &other)
    {
        this->convertFrom(other, OtherSizeI, ValueT(0));
    }

    /// From a point in the same way.
    template <class OtherT, UInt32 OtherSizeI>
    constexpr explicit Vector(const Point<OtherT, OtherSizeI> &other)
    {
        this->convertFrom(other, OtherSizeI, ValueT(0));
    }

    /// The length, and its square.
    constexpr RealReturnType squareLength() const { return this->dot(*this); }
    /// The length.
    RealReturnType length() const { return std::sqrt(squareLength()); }

    /// To length 1. A vector of length 0 stays as it is.
    void normalize()
    {
        static_assert(std::is_floating_point_v<ValueT>, "only vectors of reals have a unit vector");
        const RealReturnType l = length();
        if (l > 0)
            *this /= l;
    }

    /// The cross product, of three components only.
    constexpr Vector cross(const Vector &rhs) const
    {
        static_assert(SizeI == 3, "the cross product needs three components");
        const Vector &a = *this;
        return Vector(static_cast<ValueT>(a.y() * rhs.z() - a.z() * rhs.y()),
                      static_cast<ValueT>(a.z() * rhs.x() - a.x() * rhs.z()),
                      static_cast<ValueT>(a.x() * rhs.y() - a.y() * rhs.x()));
    }

    /// Becomes the cross product with rhs.
    constexpr void crossThis(const Vector &rhs) { *this = cross(rhs); }

    /// The cross product.
    constexpr Vector operator%(const Vector &rhs) const { return cross(rhs); }

    /// Becomes its projection onto toVec, which need not have length 1 but has to have a length.
    /// Returns the signed length of the projection along toVec.
    RealReturnType projectTo(const Vector &toVec)
    {
        const RealReturnType product = this->dot(toVec);
        const RealReturnType square = toVec.squareLength();
        *this = toVec * static_cast<ValueT>(product / square);
        return product / std::sqrt(square);
    }

    /// The angle between the two in radians, 0 to Pi; 0 where one of them has length 0.
    RealReturnType enclosedAngle(const Vector &rhs) const
    {
        const RealReturnType lengths = length() * rhs.length();
        if (!(lengths > 0))
            return 0;
        const RealReturnType cosine = this->dot(rhs) / lengths;
        return std::acos(cosine < -1 ? RealReturnType(-1) : cosine > 1 ? RealReturnType(1) : cosine);
    }

    /// The point that lies at this vector from the origin.
    constexpr PointType addToZero() const { return PointType(*this); }

    /// Component by component.
    constexpr Vector &operator+=(const Vector &rhs)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            this->_values[i] = static_cast<ValueT>(this->_values[i] + rhs[i]);
        return *this;
    }

    /// Component by component.
    constexpr Vector &operator-=(const Vector &rhs)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            this->_values[i] = static_cast<ValueT>(this->_values[i] - rhs[i]);
        return *this;
    }

    /// Component by component.
    constexpr Vector operator+(const Vector &rhs) const { return Vector(*this) += rhs; }
    /// Component by component.
    constexpr Vector operator-(const Vector &rhs) const { return Vector(*this) -= rhs; }
    using Inherited::operator-;
};

/// A position.
template <class ValueT, UInt32 SizeI>
class Point : public TupleBase<Point<ValueT, SizeI>, ValueT, SizeI>
{
    using Inherited = TupleBase<Point, ValueT, SizeI>;

  public:
    /// The type of distances: a real.
    using typename Inherited::RealReturnType;
    /// The vector of the same kind.
    using VectorType = Vector<ValueT, SizeI>;

    static const Point Null; ///< all components 0
    static const Point One;  ///< all components 1

    /// All components 0, w too.
    constexpr Point() = default;

    /// All components v.
    constexpr explicit Point(ValueT v) { this->fill(v); }

    /// A z that is not given is 0, a w 1.
    constexpr Point(ValueT x, ValueT y)
    {
        static_assert(SizeI >= 2, "too many values");
        this->assign(0, x);
        this->assign(1, y);
        this->assign(3, ValueT(1));
    }

    /// A w that is not given is 1.
    constexpr Point(ValueT x, ValueT y, ValueT z)
    {
        static_assert(SizeI >= 3, "too many values");
        this->assign(0, x);
        this->assign(1, y);
        this->assign(2, z);
        this->assign(3, ValueT(1));
    }

    /// All four components.
    constexpr Point(ValueT x, ValueT y, ValueT z, ValueT w)
    {
        static_assert(SizeI >= 4, "too many values");
        this->assign(0, x);
        this->assign(1, y);
        this->assign(2, z);
        this->assign(3, w);
    }

    /// Reads as many values as there are components. A template, so that the number 0 is never taken for an
    /// array.
    template <class T, class = std::enable_if_t<std::is_same_v<T, ValueT>>>
    constexpr explicit Point(const T *values)
    {
        this->setValue(values);
    }

    /// From another size or type: what is too much is cut off, what lacks is 0, but a lacking w is 1.
    template <class OtherT, UInt32 OtherSizeI>
    constexpr explicit Point(const Vector<OtherT, OtherSizeI> &other)
    {
        this->convertFrom(other, OtherSizeI, ValueT(1));
    }

    /// From a point in the same way.
    template <class OtherT, UInt32 OtherSizeI>
    constexpr explicit Point(const Point<OtherT, OtherSizeI> &other)
    {
        this->convertFrom(other, OtherSizeI, ValueT(1));
    }

    /// Euclidean distance.
    RealReturnType dist(const Point &rhs) const { return std::sqrt(dist2(rhs)); }
    /// Squared distance.
    constexpr RealReturnType dist2(const Point &rhs) const
    {
        RealReturnType sum = 0;
        for (UInt32 i = 0; i < SizeI; ++i)
        {
            const RealReturnType d =
                static_cast<RealReturnType>(this->_values[i]) - static_cast<RealReturnType>(rhs[i]);
            sum += d * d;
        }
        return sum;
    }

    /// The vector from the origin to this point.
    constexpr VectorType subZero() const { return VectorType(*this); }

    /// Moved along a vector.
    constexpr Point &operator+=(const VectorType &rhs)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            this->_values[i] = static_cast<ValueT>(this->_values[i] + rhs[i]);
        return *this;
    }

    /// Moved along a vector, backwards.
    constexpr Point &operator-=(const VectorType &rhs)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            this->_values[i] = static_cast<ValueT>(this->_values[i] - rhs[i]);
        return *this;
    }

    /// Moved along a vector.
    constexpr Point operator+(const VectorType &rhs) const { return Point(*this) += rhs; }
    /// Moved along a vector, backwards.
    constexpr Point operator-(const VectorType &rhs) const { return Point(*this) -= rhs; }

    /// The vector that leads from rhs to here.
    constexpr VectorType operator-(const Point &rhs) const
    {
        VectorType result;
        for (UInt32 i = 0; i < SizeI; ++i)
            result[i] = static_cast<ValueT>(this->_values[i] - rhs[i]);
        return result;
    }
    using Inherited::operator-;
};

template <class ValueT, UInt32 SizeI>
inline constexpr Vector<ValueT, SizeI> Vector<ValueT, SizeI>::Null{};
template <class ValueT, UInt32 SizeI>
inline constexpr Vector<ValueT, SizeI> Vector<ValueT, SizeI>::One{ValueT(1)};
template <class ValueT, UInt32 SizeI>
inline constexpr Point<ValueT, SizeI> Point<ValueT, SizeI>::Null{};
template <class ValueT, UInt32 SizeI>
inline constexpr Point<ValueT, SizeI> Point<ValueT, SizeI>::One{ValueT(1)};

/// The components as numbers, separated by one space, without a newline.
template <class ValueT, UInt32 SizeI>
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, const Vector<ValueT, SizeI> &v);
template <class ValueT, UInt32 SizeI>
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, const Point<ValueT, SizeI> &p);

/// Vector of numbers of a type: b Int8, s Int16, i Int32, with u ahead of it without a sign; f Real32, d
/// Real64.
typedef Vector<Int8, 2> Vec2b;
typedef Vector<Int8, 3> Vec3b;
typedef Vector<Int8, 4> Vec4b;
typedef Vector<UInt8, 2> Vec2ub;
typedef Vector<UInt8, 3> Vec3ub;
typedef Vector<UInt8, 4> Vec4ub;
typedef Vector<Int16, 2> Vec2s;
typedef Vector<Int16, 3> Vec3s;
typedef Vector<Int16, 4> Vec4s;
typedef Vector<UInt16, 2> Vec2us;
typedef Vector<UInt16, 3> Vec3us;
typedef Vector<UInt16, 4> Vec4us;
typedef Vector<Int32, 2> Vec2i;
typedef Vector<Int32, 3> Vec3i;
typedef Vector<Int32, 4> Vec4i;
typedef Vector<UInt32, 2> Vec2ui;
typedef Vector<UInt32, 3> Vec3ui;
typedef Vector<UInt32, 4> Vec4ui;
typedef Vector<Real32, 2> Vec2f;
typedef Vector<Real32, 3> Vec3f;
typedef Vector<Real32, 4> Vec4f;
typedef Vector<Real64, 2> Vec2d;
typedef Vector<Real64, 3> Vec3d;
typedef Vector<Real64, 4> Vec4d;

/// Point of numbers of a type, as for vectors.
typedef Point<Int16, 2> Pnt2s;
typedef Point<Int16, 3> Pnt3s;
typedef Point<Int16, 4> Pnt4s;
typedef Point<Int32, 2> Pnt2i;
typedef Point<Int32, 3> Pnt3i;
typedef Point<Int32, 4> Pnt4i;
typedef Point<Real32, 2> Pnt2f;
typedef Point<Real32, 3> Pnt3f;
typedef Point<Real32, 4> Pnt4f;
typedef Point<Real64, 2> Pnt2d;
typedef Point<Real64, 3> Pnt3d;
typedef Point<Real64, 4> Pnt4d;

static_assert(sizeof(Vec3f) == 12 && alignof(Vec3f) == 4 && std::is_trivially_copyable_v<Vec3f>);
static_assert(sizeof(Pnt3f) == 12 && alignof(Pnt3f) == 4 && std::is_trivially_copyable_v<Pnt3f>);
static_assert(sizeof(Vec4ub) == 4 && alignof(Vec4ub) == 1);

OSG_END_NAMESPACE

#endif
