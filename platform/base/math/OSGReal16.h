#ifndef _OSGREAL16_H_
#define _OSGREAL16_H_

/// \file
/// The half float of IEEE 754 (binary16), as images and textures hold it.

#include <iosfwd>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// A number of 16 bits: 1 sign, 5 exponent, 10 mantissa. It is stored and converted; arithmetic happens in
/// Real32. Two bytes and nothing else, so an array of it is the data of a GL_HALF_FLOAT image.
class OSG_BASELIB_DLLMAPPING Real16
{
  public:
    /// The largest finite value.
    static constexpr Real32 Max = 65504.0f;
    /// The smallest normal value above 0, 2 to the power of -14.
    static constexpr Real32 NormMin = 6.103515625e-05f;
    /// The smallest value above 0, 2 to the power of -24.
    static constexpr Real32 Min = 5.9604644775390625e-08f;

    /// 0.
    constexpr Real16() = default;
    /// Rounds to nearest, ties to even; what is too large becomes infinite.
    Real16(Real32 value) : _bits(fromReal32(value)) {}

    /// Without loss.
    operator Real32() const { return toReal32(_bits); }

    /// Rounded to the nearest.
    Real16 &operator=(Real32 value)
    {
        _bits = fromReal32(value);
        return *this;
    }
    /// Computed as Real32, then rounded.
    Real16 &operator+=(Real32 value) { return *this = toReal32(_bits) + value; }
    Real16 &operator-=(Real32 value) { return *this = toReal32(_bits) - value; }
    Real16 &operator*=(Real32 value) { return *this = toReal32(_bits) * value; }
    Real16 &operator/=(Real32 value) { return *this = toReal32(_bits) / value; }

    /// The other sign, of 0, infinity and NaN too.
    Real16 operator-() const { return fromBits(static_cast<UInt16>(_bits ^ 0x8000u)); }

    /// The 16 bits as they are.
    constexpr UInt16 bits() const { return _bits; }
    constexpr void setBits(UInt16 bits) { _bits = bits; }

    /// The number of these bits.
    static constexpr Real16 fromBits(UInt16 bits)
    {
        Real16 result;
        result._bits = bits;
        return result;
    }

    /// What kind of number it is.
    constexpr bool isNegative() const { return (_bits & 0x8000u) != 0; }
    constexpr bool isZero() const { return (_bits & 0x7fffu) == 0; }
    constexpr bool isFinite() const { return (_bits & 0x7c00u) != 0x7c00u; }
    constexpr bool isInfinity() const { return (_bits & 0x7fffu) == 0x7c00u; }
    constexpr bool isNan() const { return (_bits & 0x7fffu) > 0x7c00u; }
    constexpr bool isDenormalized() const { return (_bits & 0x7c00u) == 0 && !isZero(); }
    constexpr bool isNormalized() const { return (_bits & 0x7c00u) != 0 && isFinite(); }

    /// Infinities, and a quiet NaN.
    static constexpr Real16 posInf() { return fromBits(0x7c00u); }
    static constexpr Real16 negInf() { return fromBits(0xfc00u); }
    static constexpr Real16 qNan() { return fromBits(0x7e00u); }

    /// The value of a half's bits, exact. A signalling NaN comes back quiet, with its payload.
    static Real32 toReal32(UInt16 bits);
    /// The half's bits nearest to value, ties to even. A NaN stays one, quiet, with the upper bits of its
    /// payload.
    static UInt16 fromReal32(Real32 value);

  private:
    UInt16 _bits = 0;
};

static_assert(sizeof(Real16) == 2);

/// As the Real32 of the same value.
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, Real16 value);
OSG_BASELIB_DLLMAPPING std::istream &operator>>(std::istream &is, Real16 &value);

OSG_END_NAMESPACE

#endif
