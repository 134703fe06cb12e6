/// \file
/// Hue, saturation and value of colours, and their stream output.

#include "OSGColor.h"

#include <cmath>
#include <ostream>

OSG_BEGIN_NAMESPACE

/// The hexcone model of A. R. Smith, "Color Gamut Transform Pairs", 1978.
template <class DerivedT, class ValueT, UInt32 SizeI>
void ColorBase<DerivedT, ValueT, SizeI>::convertFromHSV(Real32 *rgb, Real32 hue, Real32 saturation,
                                                        Real32 value)
{
    // the sextant of the circle, and how far into it
    Real32 turns = hue / 360.0f;
    turns -= std::floor(turns);
    const Real32 sextants = turns >= 0.0f && turns < 1.0f ? turns * 6.0f : 0.0f;
    const UInt32 sextant = static_cast<UInt32>(sextants) % 6u;
    const Real32 f = sextants - std::floor(sextants);

    const Real32 low = value * (1.0f - saturation);
    const Real32 falling = value * (1.0f - saturation * f);
    const Real32 rising = value * (1.0f - saturation * (1.0f - f));

    const Real32 table[6][3] = {{value, rising, low},  {falling, value, low}, {low, value, rising},
                                {low, falling, value}, {rising, low, value},  {value, low, falling}};
    for (UInt32 i = 0; i < 3; ++i)
        rgb[i] = table[sextant][i];
}

template <class DerivedT, class ValueT, UInt32 SizeI>
void ColorBase<DerivedT, ValueT, SizeI>::convertToHSV(const Real32 *rgb, Real32 &hue, Real32 &saturation,
                                                      Real32 &value)
{
    const Real32 r = rgb[0];
    const Real32 g = rgb[1];
    const Real32 b = rgb[2];
    const Real32 high = std::fmax(r, std::fmax(g, b));
    const Real32 low = std::fmin(r, std::fmin(g, b));
    const Real32 range = high - low;

    value = high;
    saturation = high > 0.0f ? range / high : 0.0f;
    hue = 0.0f;
    if (!(range > 0.0f))
        return;

    // the sextant follows from the strongest channel
    if (r == high)
        hue = (g - b) / range;
    else if (g == high)
        hue = 2.0f + (b - r) / range;
    else
        hue = 4.0f + (r - g) / range;
    hue *= 60.0f;
    if (hue < 0.0f)
        hue += 360.0f;
    if (hue >= 360.0f)
        hue = 0.0f;
}

template <class ValueT>
std::ostream &operator<<(std::ostream &os, const Color3<ValueT> &color)
{
    // the plus makes numbers of bytes, which would come out as characters
    return os << +color.red() << ' ' << +color.green() << ' ' << +color.blue();
}

template <class ValueT>
std::ostream &operator<<(std::ostream &os, const Color4<ValueT> &color)
{
    return os << +color.red() << ' ' << +color.green() << ' ' << +color.blue() << ' ' << +color.alpha();
}

template class ColorBase<Color3f, Real32, 3>;
template class ColorBase<Color4f, Real32, 4>;
template class ColorBase<Color3ub, UInt8, 3>;
template class ColorBase<Color4ub, UInt8, 4>;

template OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &, const Color3f &);
template OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &, const Color4f &);
template OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &, const Color3ub &);
template OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &, const Color4ub &);

OSG_END_NAMESPACE
