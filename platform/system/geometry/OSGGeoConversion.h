#ifndef _OSGGEOCONVERSION_H_
#define _OSGGEOCONVERSION_H_

/// \file
/// The layout of the values that properties store, and their conversions from and to what properties are
/// asked in.

#include "OSGColor.h"
#include "OSGGL.h"
#include "OSGVector.h"

OSG_BEGIN_NAMESPACE

/// What GL asks about a value: the format, bytes and number of its components.
template <UInt32 formatV, class ComponentT, UInt32 dimensionV>
struct GeoValueLayout
{
    static constexpr UInt32 format = formatV; ///< the GL type of a component
    static constexpr UInt32 componentBytes = sizeof(ComponentT); ///< bytes of a component
    static constexpr UInt32 dimension = dimensionV; ///< components
};

/// How GL sees a stored value.
template <class StoredT>
struct GeoValueTraits;

template <> struct GeoValueTraits<Real32> : GeoValueLayout<GL_FLOAT, Real32, 1> {};
template <> struct GeoValueTraits<Pnt2f> : GeoValueLayout<GL_FLOAT, Real32, 2> {};
template <> struct GeoValueTraits<Pnt3f> : GeoValueLayout<GL_FLOAT, Real32, 3> {};
template <> struct GeoValueTraits<Pnt4f> : GeoValueLayout<GL_FLOAT, Real32, 4> {};
template <> struct GeoValueTraits<Vec2f> : GeoValueLayout<GL_FLOAT, Real32, 2> {};
template <> struct GeoValueTraits<Vec3f> : GeoValueLayout<GL_FLOAT, Real32, 3> {};
template <> struct GeoValueTraits<Vec4f> : GeoValueLayout<GL_FLOAT, Real32, 4> {};
template <> struct GeoValueTraits<Color3f> : GeoValueLayout<GL_FLOAT, Real32, 3> {};
template <> struct GeoValueTraits<Color4f> : GeoValueLayout<GL_FLOAT, Real32, 4> {};
template <> struct GeoValueTraits<Color3ub> : GeoValueLayout<GL_UNSIGNED_BYTE, UInt8, 3> {};
template <> struct GeoValueTraits<Color4ub> : GeoValueLayout<GL_UNSIGNED_BYTE, UInt8, 4> {};
template <> struct GeoValueTraits<UInt8> : GeoValueLayout<GL_UNSIGNED_BYTE, UInt8, 1> {};
template <> struct GeoValueTraits<UInt16> : GeoValueLayout<GL_UNSIGNED_SHORT, UInt16, 1> {};
template <> struct GeoValueTraits<UInt32> : GeoValueLayout<GL_UNSIGNED_INT, UInt32, 1> {};

/// Colour components: 0 to 1 as a byte, rounded; what is beyond (and no number) goes to the nearer end (to
/// 0).
inline UInt8 colorByte(Real32 value)
{
    return value > 0.f ? UInt8((value < 1.f ? value : 1.f) * 255.f + 0.5f) : UInt8(0);
}

/// The same type: a copy.
template <class T>
inline void convertGeoValue(const T &from, T &to)
{
    to = from;
}

/// From what is stored to what is asked for, and back: what is too much is cut off, what lacks is 0, a w 1.
inline void convertGeoValue(const Pnt2f &from, Pnt3f &to) { to.setValues(from[0], from[1], 0.f); }
inline void convertGeoValue(const Pnt3f &from, Pnt2f &to) { to.setValues(from[0], from[1]); }
// The homogeneous component is left alone, as it is no matter of a single vertex: control points carry
// weights in it.
/// The homogeneous component is cut off as it is, without a division; where it lacks it is 1.
inline void convertGeoValue(const Pnt4f &from, Pnt3f &to) { to.setValues(from[0], from[1], from[2]); }
inline void convertGeoValue(const Pnt3f &from, Pnt4f &to) { to.setValues(from[0], from[1], from[2], 1.f); }

/// From what is stored to what is asked for, and back: what is too much is cut off, what lacks is 0, a w 1.
inline void convertGeoValue(const Real32 &from, Vec2f &to) { to.setValues(from, 0.f); }
inline void convertGeoValue(const Vec2f &from, Real32 &to) { to = from[0]; }
inline void convertGeoValue(const Vec3f &from, Vec2f &to) { to.setValues(from[0], from[1]); }
inline void convertGeoValue(const Vec2f &from, Vec3f &to) { to.setValues(from[0], from[1], 0.f); }
inline void convertGeoValue(const Vec4f &from, Vec2f &to) { to.setValues(from[0], from[1]); }
inline void convertGeoValue(const Vec2f &from, Vec4f &to) { to.setValues(from[0], from[1], 0.f, 1.f); }

/// Alpha that lacks is opaque.
inline void convertGeoValue(const Color4f &from, Color3f &to) { to.setValuesRGB(from[0], from[1], from[2]); }
inline void convertGeoValue(const Color3f &from, Color4f &to)
{
    to.setValuesRGBA(from[0], from[1], from[2], 1.f);
}
inline void convertGeoValue(const Color3ub &from, Color3f &to)
{
    to.setValuesRGB(Real32(from[0]) / 255.f, Real32(from[1]) / 255.f, Real32(from[2]) / 255.f);
}
inline void convertGeoValue(const Color3f &from, Color3ub &to)
{
    to.setValuesRGB(colorByte(from[0]), colorByte(from[1]), colorByte(from[2]));
}
inline void convertGeoValue(const Color4ub &from, Color3f &to)
{
    to.setValuesRGB(Real32(from[0]) / 255.f, Real32(from[1]) / 255.f, Real32(from[2]) / 255.f);
}
inline void convertGeoValue(const Color3f &from, Color4ub &to)
{
    to.setValuesRGBA(colorByte(from[0]), colorByte(from[1]), colorByte(from[2]), 255);
}

/// Without loss.
inline void convertGeoValue(const UInt8 &from, UInt32 &to) { to = from; }
inline void convertGeoValue(const UInt16 &from, UInt32 &to) { to = from; }
/// Only the low bits are kept, which is meant: types and lengths from libraries come as wider integers.
inline void convertGeoValue(const UInt32 &from, UInt8 &to) { to = UInt8(from & 0xFFu); }
inline void convertGeoValue(const UInt32 &from, UInt16 &to) { to = UInt16(from & 0xFFFFu); }

OSG_END_NAMESPACE

#endif
