#ifndef _OSGCOLOR_H_
#define _OSGCOLOR_H_

/// \file
/// Colours of three and four channels, of reals (0 to 1, not clamped) or bytes (0 to 255), laid out as bare
/// arrays.

#include <iosfwd>
#include <type_traits>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// What both kinds of colour have in common. Plain values: any thread, no allocation, the array and nothing
/// else. Arithmetic goes channel by channel, alpha too; bytes wrap around, as their type does.
template <class DerivedT, class ValueT, UInt32 SizeI>
class ColorBase
{
  public:
    /// The type of a channel.
    typedef ValueT ValueType;

    enum
    {
        _iSize = SizeI
    };

    /// The channels, one behind the other.
    constexpr const ValueT *getValues() const { return _values; }
    constexpr ValueT *getValues() { return _values; }

    /// Channels in the order red, green, blue, alpha; i is not checked.
    constexpr ValueT operator[](UInt32 i) const { return _values[i]; }
    constexpr ValueT &operator[](UInt32 i) { return _values[i]; }

    /// A channel.
    constexpr ValueT red() const { return _values[0]; }
    constexpr ValueT green() const { return _values[1]; }
    constexpr ValueT blue() const { return _values[2]; }

    /// All channels 0, alpha too.
    constexpr void clear()
    {
        for (ValueT &value : _values)
            value = 0;
    }

    /// Reads as many values as there are channels.
    constexpr void setValue(const ValueT *values)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            _values[i] = values[i];
    }

    /// Alpha stays.
    constexpr void setValuesRGB(ValueT red, ValueT green, ValueT blue)
    {
        _values[0] = red;
        _values[1] = green;
        _values[2] = blue;
    }

    /// The channels without alpha.
    constexpr void getValuesRGB(ValueT &red, ValueT &green, ValueT &blue) const
    {
        red = _values[0];
        green = _values[1];
        blue = _values[2];
    }

    /// Hue in degrees (any number, taken round the circle), saturation and value 0 to 1. Alpha stays.
    void setValuesHSV(Real32 hue, Real32 saturation, Real32 value)
    {
        Real32 rgb[3];
        convertFromHSV(rgb, hue, saturation, value);
        for (UInt32 i = 0; i < 3; ++i)
            _values[i] = fromReal(rgb[i]);
    }

    /// Hue in degrees, from 0 to below 360, 0 for greys; saturation and value 0 to 1.
    void getValuesHSV(Real32 &hue, Real32 &saturation, Real32 &value) const
    {
        const Real32 rgb[3] = {toReal(_values[0]), toReal(_values[1]), toReal(_values[2])};
        convertToHSV(rgb, hue, saturation, value);
    }

    /// The conversions of setValuesHSV and getValuesHSV, on three reals.
    static void convertFromHSV(Real32 *rgb, Real32 hue, Real32 saturation, Real32 value);
    static void convertToHSV(const Real32 *rgb, Real32 &hue, Real32 &saturation, Real32 &value);

    /// Channel by channel.
    constexpr DerivedT &operator+=(const DerivedT &rhs)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            _values[i] = static_cast<ValueT>(_values[i] + rhs[i]);
        return self();
    }
    constexpr DerivedT &operator-=(const DerivedT &rhs)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            _values[i] = static_cast<ValueT>(_values[i] - rhs[i]);
        return self();
    }
    constexpr DerivedT &operator*=(const DerivedT &rhs)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            _values[i] = static_cast<ValueT>(_values[i] * rhs[i]);
        return self();
    }
    constexpr DerivedT &operator*=(ValueT s)
    {
        for (ValueT &value : _values)
            value = static_cast<ValueT>(value * s);
        return self();
    }
    constexpr DerivedT &operator/=(ValueT s)
    {
        for (ValueT &value : _values)
            value = static_cast<ValueT>(value / s);
        return self();
    }

    /// Channel by channel.
    friend constexpr DerivedT operator+(DerivedT lhs, const DerivedT &rhs) { return lhs += rhs; }
    friend constexpr DerivedT operator-(DerivedT lhs, const DerivedT &rhs) { return lhs -= rhs; }
    friend constexpr DerivedT operator*(DerivedT lhs, const DerivedT &rhs) { return lhs *= rhs; }
    friend constexpr DerivedT operator*(DerivedT lhs, ValueT s) { return lhs *= s; }
    friend constexpr DerivedT operator*(ValueT s, DerivedT rhs) { return rhs *= s; }
    friend constexpr DerivedT operator/(DerivedT lhs, ValueT s) { return lhs /= s; }

    /// True if no channel differs by more than tolerance.
    constexpr bool equals(const DerivedT &rhs, Real32 tolerance) const
    {
        for (UInt32 i = 0; i < SizeI; ++i)
        {
            const Real32 difference = static_cast<Real32>(_values[i]) - static_cast<Real32>(rhs[i]);
            if (!(difference <= tolerance && difference >= -tolerance))
                return false;
        }
        return true;
    }

    /// The same channels.
    friend constexpr bool operator==(const DerivedT &lhs, const DerivedT &rhs)
    {
        for (UInt32 i = 0; i < SizeI; ++i)
            if (!(lhs[i] == rhs[i]))
                return false;
        return true;
    }
    friend constexpr bool operator!=(const DerivedT &lhs, const DerivedT &rhs) { return !(lhs == rhs); }

    /// Lexicographic, so that colours can be keys of ordered containers.
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

    /// A channel as a real, bytes as a fraction of 255.
    static constexpr Real32 toReal(ValueT v)
    {
        if constexpr (std::is_floating_point_v<ValueT>)
            return static_cast<Real32>(v);
        else
            return static_cast<Real32>(v) / 255.0f;
    }

    /// The channel nearest to v; bytes are held within 0 to 255, and 0 for what is not a number.
    static constexpr ValueT fromReal(Real32 v)
    {
        if constexpr (std::is_floating_point_v<ValueT>)
            return static_cast<ValueT>(v);
        else
            return static_cast<ValueT>(v > 0 ? (v < 1 ? v * 255.0f + 0.5f : 255.0f) : 0.0f);
    }

  protected:
    constexpr ColorBase() = default;
    /// This, as the derived type.
    constexpr DerivedT &self() { return static_cast<DerivedT &>(*this); }

    /// The channel as a byte at its place in a packed colour.
    constexpr UInt32 packed(UInt32 i) const
    {
        if constexpr (std::is_floating_point_v<ValueT>)
        {
            const Real32 v = static_cast<Real32>(_values[i]);
            return static_cast<UInt32>(v > 0 ? (v < 1 ? v * 255.0f + 0.5f : 255.0f) : 0.0f) << (8 * i);
        }
        else
            return static_cast<UInt32>(_values[i]) << (8 * i);
    }

    /// The channel from its place in a packed colour.
    constexpr void unpack(UInt32 i, UInt32 pack)
    {
        const UInt32 byte = (pack >> (8 * i)) & 255u;
        if constexpr (std::is_floating_point_v<ValueT>)
            _values[i] = static_cast<ValueT>(byte) / 255;
        else
            _values[i] = static_cast<ValueT>(byte);
    }

    ValueT _values[SizeI] = {}; ///< red, green, blue, alpha
};

/// Red, green and blue. The default is black.
template <class ValueT>
class Color3 : public ColorBase<Color3<ValueT>, ValueT, 3>
{
  public:
    static const Color3 Null; ///< black

    constexpr Color3() = default;
    /// The channels that are given.
    constexpr Color3(ValueT red, ValueT green, ValueT blue) { this->setValuesRGB(red, green, blue); }

    /// Red in the lowest byte, then green and blue; the highest byte is not looked at.
    constexpr void setRGB(UInt32 pack)
    {
        for (UInt32 i = 0; i < 3; ++i)
            this->unpack(i, pack);
    }

    /// Red in the lowest byte, then green and blue; the highest byte is 0.
    constexpr UInt32 getRGB() const { return this->packed(0) | this->packed(1) | this->packed(2); }

    /// The same as setValuesRGB.
    constexpr void setColorRGB(ValueT red, ValueT green, ValueT blue)
    {
        this->setValuesRGB(red, green, blue);
    }
};

/// Red, green, blue and alpha. The default is 0 throughout.
template <class ValueT>
class Color4 : public ColorBase<Color4<ValueT>, ValueT, 4>
{
  public:
    static const Color4 Null; ///< transparent black

    constexpr Color4() = default;
    /// The channels that are given.
    constexpr Color4(ValueT red, ValueT green, ValueT blue, ValueT alpha)
    {
        setValuesRGBA(red, green, blue, alpha);
    }
    constexpr explicit Color4(const Color3<ValueT> &rgb, ValueT alpha = Opaque)
    {
        setValuesRGBA(rgb.red(), rgb.green(), rgb.blue(), alpha);
    }

    /// A channel.
    constexpr ValueT alpha() const { return this->_values[3]; }

    /// Sets all channels.
    constexpr void setValuesRGBA(ValueT red, ValueT green, ValueT blue, ValueT alpha)
    {
        this->setValuesRGB(red, green, blue);
        this->_values[3] = alpha;
    }

    /// All channels.
    constexpr void getValuesRGBA(ValueT &red, ValueT &green, ValueT &blue, ValueT &alpha) const
    {
        this->getValuesRGB(red, green, blue);
        alpha = this->_values[3];
    }

    /// Red in the lowest byte, then green, blue and alpha in the highest.
    constexpr void setRGBA(UInt32 pack)
    {
        for (UInt32 i = 0; i < 4; ++i)
            this->unpack(i, pack);
    }

    /// Red in the lowest byte, then green, blue and alpha in the highest; reals are rounded and held within 0
    /// to 1.
    constexpr UInt32 getRGBA() const
    {
        return this->packed(0) | this->packed(1) | this->packed(2) | this->packed(3);
    }

    /// The same as setValuesRGBA.
    constexpr void setColorRGBA(ValueT red, ValueT green, ValueT blue, ValueT alpha)
    {
        setValuesRGBA(red, green, blue, alpha);
    }

    /// The alpha of an opaque colour.
    static constexpr ValueT Opaque = std::is_floating_point_v<ValueT> ? ValueT(1) : static_cast<ValueT>(255);
};

template <class ValueT>
inline constexpr Color3<ValueT> Color3<ValueT>::Null{};
template <class ValueT>
inline constexpr Color4<ValueT> Color4<ValueT>::Null{};

/// The channels as numbers, separated by one space, without a newline.
template <class ValueT>
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, const Color3<ValueT> &color);
template <class ValueT>
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, const Color4<ValueT> &color);

/// Colour of reals (f) or bytes (ub).
typedef Color3<Real32> Color3f;
typedef Color4<Real32> Color4f;
typedef Color3<UInt8> Color3ub;
typedef Color4<UInt8> Color4ub;

extern template class OSG_BASELIB_DLLMAPPING ColorBase<Color3f, Real32, 3>;
extern template class OSG_BASELIB_DLLMAPPING ColorBase<Color4f, Real32, 4>;
extern template class OSG_BASELIB_DLLMAPPING ColorBase<Color3ub, UInt8, 3>;
extern template class OSG_BASELIB_DLLMAPPING ColorBase<Color4ub, UInt8, 4>;

static_assert(sizeof(Color3f) == 12 && sizeof(Color4f) == 16 && sizeof(Color3ub) == 3 &&
              sizeof(Color4ub) == 4);
static_assert(std::is_trivially_copyable_v<Color4f>);

OSG_END_NAMESPACE

#endif
