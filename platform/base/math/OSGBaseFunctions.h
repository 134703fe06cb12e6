#ifndef _OSGBASEFUNCTIONS_H_
#define _OSGBASEFUNCTIONS_H_

/// \file
/// Small functions on numbers under the platform's names.

#include <cmath>
#include <limits>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// The smaller one.
template <class T>
constexpr const T &osgMin(const T &a, const T &b)
{
    return b < a ? b : a;
}

/// The larger one.
template <class T>
constexpr const T &osgMax(const T &a, const T &b)
{
    return a < b ? b : a;
}

/// val, but not below min nor above max; max wins where they are crossed.
template <class T>
constexpr const T &osgClamp(const T &min, const T &val, const T &max)
{
    return osgMin(max, osgMax(min, val));
}

/// Without the sign.
template <class T>
constexpr T osgAbs(T v)
{
    return v < T(0) ? static_cast<T>(-v) : v;
}

/// Swaps the two.
template <class T>
void osgSwap(T &a, T &b)
{
    const T kept = a;
    a = b;
    b = kept;
}

/// As the standard library has it, angles in radians.
inline Real32 osgSqrt(Real32 v) { return std::sqrt(v); }
inline Real64 osgSqrt(Real64 v) { return std::sqrt(v); }
inline Real32 osgPow(Real32 base, Real32 exponent) { return std::pow(base, exponent); }
inline Real64 osgPow(Real64 base, Real64 exponent) { return std::pow(base, exponent); }
inline Real32 osgExp(Real32 v) { return std::exp(v); }
inline Real64 osgExp(Real64 v) { return std::exp(v); }
/// The natural logarithm.
inline Real32 osgLog(Real32 v) { return std::log(v); }
inline Real64 osgLog(Real64 v) { return std::log(v); }
/// As the standard library has it.
inline Real32 osgFloor(Real32 v) { return std::floor(v); }
inline Real64 osgFloor(Real64 v) { return std::floor(v); }
inline Real32 osgCeil(Real32 v) { return std::ceil(v); }
inline Real64 osgCeil(Real64 v) { return std::ceil(v); }

/// As the standard library has it, angles in radians.
inline Real32 osgSin(Real32 v) { return std::sin(v); }
inline Real64 osgSin(Real64 v) { return std::sin(v); }
inline Real32 osgCos(Real32 v) { return std::cos(v); }
inline Real64 osgCos(Real64 v) { return std::cos(v); }
inline Real32 osgTan(Real32 v) { return std::tan(v); }
inline Real64 osgTan(Real64 v) { return std::tan(v); }
inline Real32 osgASin(Real32 v) { return std::asin(v); }
inline Real64 osgASin(Real64 v) { return std::asin(v); }
inline Real32 osgACos(Real32 v) { return std::acos(v); }
inline Real64 osgACos(Real64 v) { return std::acos(v); }
inline Real32 osgATan(Real32 v) { return std::atan(v); }
inline Real64 osgATan(Real64 v) { return std::atan(v); }
inline Real32 osgATan2(Real32 y, Real32 x) { return std::atan2(y, x); }
inline Real64 osgATan2(Real64 y, Real64 x) { return std::atan2(y, x); }

/// From one unit of angles to the other.
constexpr Real32 osgDegree2Rad(Real32 degrees) { return degrees * (Pi / 180.0f); }
constexpr Real64 osgDegree2Rad(Real64 degrees) { return degrees * (3.14159265358979323846 / 180.0); }
constexpr Real32 osgRad2Degree(Real32 radians) { return radians * (180.0f / Pi); }
constexpr Real64 osgRad2Degree(Real64 radians) { return radians * (180.0 / 3.14159265358979323846); }

/// The nearest integer, halves upwards; held at the ends of Int32, and 0 for what is not a number.
inline Int32 osgRound2Int(Real64 v)
{
    const Real64 rounded = std::floor(v + 0.5);
    if (!(rounded == rounded))
        return 0;
    if (rounded <= static_cast<Real64>(std::numeric_limits<Int32>::min()))
        return std::numeric_limits<Int32>::min();
    if (rounded >= static_cast<Real64>(std::numeric_limits<Int32>::max()))
        return std::numeric_limits<Int32>::max();
    return static_cast<Int32>(rounded);
}

/// True for 1, 2, 4, 8 and so on; false for 0.
constexpr bool osgIsPower2(UInt32 v) { return v != 0 && (v & (v - 1)) == 0; }

/// The smallest power of 2 that is not below v; 1 for 0, and 0 where 32 bits can't hold it.
constexpr UInt32 osgNextPower2(UInt32 v)
{
    UInt32 power = 1;
    while (power < v && power != 0)
        power <<= 1;
    return power;
}

OSG_END_NAMESPACE

#endif
