#ifndef _OSGVALUEFIELDS_H_
#define _OSGVALUEFIELDS_H_

/// \file
/// The field types of plain values.

#include "OSGBaseFieldTraits.h"
#include "OSGMField.h"
#include "OSGSField.h"

OSG_BEGIN_NAMESPACE

/// Field of one value and of many values of type T.
#define OSG_VALUE_FIELDS(Name, T)   \
    extern template class SField<T>; \
    extern template class MField<T>; \
    typedef SField<T> SF##Name;      \
    typedef MField<T> MF##Name;

// A sequence of bool has no array of bool behind it; there is no multi field of it.
extern template class SField<bool>;
/// Field of one value.
typedef SField<bool> SFBool;

OSG_VALUE_FIELDS(Int8, Int8)
OSG_VALUE_FIELDS(UInt8, UInt8)
OSG_VALUE_FIELDS(Int16, Int16)
OSG_VALUE_FIELDS(UInt16, UInt16)
OSG_VALUE_FIELDS(Int32, Int32)
OSG_VALUE_FIELDS(UInt32, UInt32)
OSG_VALUE_FIELDS(Int64, Int64)
OSG_VALUE_FIELDS(UInt64, UInt64)
OSG_VALUE_FIELDS(Real32, Real32)
OSG_VALUE_FIELDS(Real64, Real64)
OSG_VALUE_FIELDS(String, std::string)
OSG_VALUE_FIELDS(Vec2f, Vec2f)
OSG_VALUE_FIELDS(Vec3f, Vec3f)
OSG_VALUE_FIELDS(Vec4f, Vec4f)
OSG_VALUE_FIELDS(Vec2s, Vec2s)
OSG_VALUE_FIELDS(Vec2us, Vec2us)
OSG_VALUE_FIELDS(Vec3us, Vec3us)
OSG_VALUE_FIELDS(Vec4ub, Vec4ub)
OSG_VALUE_FIELDS(Pnt2f, Pnt2f)
OSG_VALUE_FIELDS(Pnt3f, Pnt3f)
OSG_VALUE_FIELDS(Pnt4f, Pnt4f)
OSG_VALUE_FIELDS(Color3f, Color3f)
OSG_VALUE_FIELDS(Color4f, Color4f)
OSG_VALUE_FIELDS(Color3ub, Color3ub)
OSG_VALUE_FIELDS(Color4ub, Color4ub)
OSG_VALUE_FIELDS(Matrix, Matrix)
OSG_VALUE_FIELDS(Quaternion, Quaternion)
OSG_VALUE_FIELDS(Plane, Plane)
OSG_VALUE_FIELDS(DynamicVolume, DynamicVolume)

#undef OSG_VALUE_FIELDS

/// Field of that type.
typedef SField<Time> SFTime;
typedef SField<BitVector> SFBitVector;
typedef MField<BitVector> MFBitVector;

OSG_END_NAMESPACE

#endif
