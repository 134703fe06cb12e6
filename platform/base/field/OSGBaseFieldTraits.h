#ifndef _OSGBASEFIELDTRAITS_H_
#define _OSGBASEFIELDTRAITS_H_

/// \file
/// The field traits of numbers, strings, vectors, points, colours, matrices, quaternions, planes and volumes.
///
/// Text: numbers with a space between them, the shortest that read back as the same; commas and any white
/// space do as well when read. Reading moves the pointer behind the value and leaves value and pointer alone
/// on bad text; writing appends. Binary: the components one behind the other, as BinaryDataHandler writes
/// them.

#include <string>
#include <type_traits>

#include "OSGBaseTypes.h"
#include "OSGBinaryDataHandler.h"
#include "OSGColor.h"
#include "OSGDynamicVolume.h"
#include "OSGFieldDataTraits.h"
#include "OSGFieldText.h"
#include "OSGMatrix.h"
#include "OSGPlane.h"
#include "OSGQuaternion.h"
#include "OSGVector.h"

OSG_BEGIN_NAMESPACE

/// What all types have in common whose values are made of `N` numbers of type C, stored one behind the other
/// and nothing else, with getValues() as the way to the first. N is 1 for the numbers themselves.
template <class T, class C, UInt32 N>
struct ComponentFieldTraits
{
    static_assert(sizeof(T) == N * sizeof(C), "arrays of T are read and written as arrays of C");

    /// As FieldDataTraits has it.
    static T getDefault() { return T(); }

    /// As FieldDataTraits has it.
    static bool getFromString(T &out, const Char8 *&in)
    {
        const Char8 *cursor = in;
        T value = getDefault();
        for(UInt32 i = 0; i < N; ++i)
            if(!getNumberFromText(cursor, components(value)[i]))
                return false;
        out = value;
        in = cursor;
        return true;
    }

    /// As FieldDataTraits has it.
    static void putToString(const T &in, std::string &out)
    {
        for(UInt32 i = 0; i < N; ++i)
        {
            if(i != 0)
                out += ' ';
            putNumberToText(components(in)[i], out);
        }
    }

    /// As FieldDataTraits has it.
    static UInt32 getBinSize(const T &) { return static_cast<UInt32>(sizeof(T)); }
    static UInt32 getBinSize(const T *, UInt32 n) { return static_cast<UInt32>(sizeof(T)) * n; }
    static void copyToBin(BinaryDataHandler &memory, const T &value)
    {
        memory.putValues(components(value), N);
    }
    static void copyToBin(BinaryDataHandler &memory, const T *values, UInt32 n)
    {
        if(n != 0)
            memory.putValues(components(*values), n * N);
    }
    static void copyFromBin(BinaryDataHandler &memory, T &value) { memory.getValues(components(value), N); }
    static void copyFromBin(BinaryDataHandler &memory, T *values, UInt32 n)
    {
        if(n != 0)
            memory.getValues(components(*values), n * N);
    }

    /// The first of the numbers.
    static const C *components(const T &value)
    {
        if constexpr(std::is_same_v<T, C>)
            return &value;
        else
            return value.getValues();
    }
    static C *components(T &value)
    {
        if constexpr(std::is_same_v<T, C>)
            return &value;
        else
            return value.getValues();
    }
};

/// Colours of bytes: their text is that of the same colour in reals, 0 to 1; what lies outside is clamped
/// when read.
template <class T, UInt32 N>
struct ByteColorFieldTraits : ComponentFieldTraits<T, UInt8, N>
{
    /// As FieldDataTraits has it.
    static bool getFromString(T &out, const Char8 *&in)
    {
        const Char8 *cursor = in;
        T value;
        for(UInt32 i = 0; i < N; ++i)
        {
            Real32 real = 0.0f;
            if(!getNumberFromText(cursor, real))
                return false;
            // Written so that a NaN becomes 0.
            value[i] = static_cast<UInt8>(real > 0.0f ? (real < 1.0f ? real * 255.0f + 0.5f : 255.0f) : 0.0f);
        }
        out = value;
        in = cursor;
        return true;
    }

    /// As FieldDataTraits has it.
    static void putToString(const T &in, std::string &out)
    {
        for(UInt32 i = 0; i < N; ++i)
        {
            if(i != 0)
                out += ' ';
            putNumberToText(static_cast<Real32>(in[i]) / 255.0f, out);
        }
    }
};

/// Matrices: text row by row, as on paper; binary column by column, as in memory.
struct OSG_BASELIB_DLLMAPPING MatrixFieldTraits : ComponentFieldTraits<Matrix, Real32, 16>
{
    /// As FieldDataTraits has it.
    static bool getFromString(Matrix &out, const Char8 *&in);
    static void putToString(const Matrix &in, std::string &out);
};

/// bool: "true" or "false"; one byte, 0 or 1.
struct BoolFieldTraits
{
    /// As FieldDataTraits has it.
    static bool getDefault() { return false; }
    static bool getFromString(bool &out, const Char8 *&in) { return getBoolFromText(in, out); }
    static void putToString(const bool &in, std::string &out) { out += in ? "true" : "false"; }
    static UInt32 getBinSize(const bool &) { return 1; }
    static UInt32 getBinSize(const bool *, UInt32 n) { return n; }
    static void copyToBin(BinaryDataHandler &memory, const bool &value) { memory.putValues(&value, 1); }
    static void copyToBin(BinaryDataHandler &memory, const bool *values, UInt32 n)
    {
        memory.putValues(values, n);
    }
    static void copyFromBin(BinaryDataHandler &memory, bool &value) { memory.getValues(&value, 1); }
    static void copyFromBin(BinaryDataHandler &memory, bool *values, UInt32 n)
    {
        memory.getValues(values, n);
    }
};

/// The array forms of a type whose values differ in size or don't lie in memory as they are written. D has
/// the rest.
template <class D, class T>
struct EachFieldTraits
{
    /// As FieldDataTraits has it.
    static T getDefault() { return T(); }
    /// The array forms of getBinSize, copyToBin and copyFromBin.
    static UInt32 getArrayBinSize(const T *values, UInt32 n)
    {
        UInt32 size = 0;
        for(UInt32 i = 0; i < n; ++i)
            size += D::getBinSize(values[i]);
        return size;
    }
    static void putArray(BinaryDataHandler &memory, const T *values, UInt32 n)
    {
        for(UInt32 i = 0; i < n; ++i)
            D::copyToBin(memory, values[i]);
    }
    static void getArray(BinaryDataHandler &memory, T *values, UInt32 n)
    {
        for(UInt32 i = 0; i < n; ++i)
            D::copyFromBin(memory, values[i]);
    }
};

/// Strings: text in double quotes, read without them as well; binary as BinaryDataHandler writes strings.
struct OSG_BASELIB_DLLMAPPING StringFieldTraits : EachFieldTraits<StringFieldTraits, std::string>
{
    /// As FieldDataTraits has it.
    static bool getFromString(std::string &out, const Char8 *&in) { return getStringFromText(in, out); }
    static void putToString(const std::string &in, std::string &out) { putStringToText(in, out); }
    static UInt32 getBinSize(const std::string &value)
    {
        return static_cast<UInt32>(sizeof(UInt32) + value.size() + 1);
    }
    static UInt32 getBinSize(const std::string *values, UInt32 n) { return getArrayBinSize(values, n); }
    static void copyToBin(BinaryDataHandler &memory, const std::string &value) { memory.putValue(value); }
    static void copyToBin(BinaryDataHandler &memory, const std::string *values, UInt32 n)
    {
        putArray(memory, values, n);
    }
    static void copyFromBin(BinaryDataHandler &memory, std::string &value) { memory.getValue(value); }
    static void copyFromBin(BinaryDataHandler &memory, std::string *values, UInt32 n)
    {
        getArray(memory, values, n);
    }
};

/// Planes: the three numbers of the normal, then the distance from the origin. A normal that has length 1 to
/// within rounding is taken as it stands, so that planes come back bit by bit; any other one is brought to
/// length 1.
struct OSG_BASELIB_DLLMAPPING PlaneFieldTraits : EachFieldTraits<PlaneFieldTraits, Plane>
{
    /// As FieldDataTraits has it.
    static bool getFromString(Plane &out, const Char8 *&in);
    static void putToString(const Plane &in, std::string &out);
    static UInt32 getBinSize(const Plane &) { return 4 * sizeof(Real32); }
    static UInt32 getBinSize(const Plane *values, UInt32 n) { return getArrayBinSize(values, n); }
    static void copyToBin(BinaryDataHandler &memory, const Plane &value);
    static void copyToBin(BinaryDataHandler &memory, const Plane *values, UInt32 n)
    {
        putArray(memory, values, n);
    }
    static void copyFromBin(BinaryDataHandler &memory, Plane &value);
    static void copyFromBin(BinaryDataHandler &memory, Plane *values, UInt32 n)
    {
        getArray(memory, values, n);
    }
};

/// Volumes: text BoxVolume with the least and the greatest corner, or SphereVolume with centre and radius; in
/// place of the numbers one that bounds nothing has `empty`, one that bounds everything `infinite`. Binary:
/// the kind and the state, each as UInt16, then the same numbers, always; a kind that isn't one reads as an
/// empty box.
struct OSG_BASELIB_DLLMAPPING VolumeFieldTraits : EachFieldTraits<VolumeFieldTraits, DynamicVolume>
{
    /// As FieldDataTraits has it.
    static bool getFromString(DynamicVolume &out, const Char8 *&in);
    static void putToString(const DynamicVolume &in, std::string &out);
    static UInt32 getBinSize(const DynamicVolume &value);
    static UInt32 getBinSize(const DynamicVolume *values, UInt32 n) { return getArrayBinSize(values, n); }
    static void copyToBin(BinaryDataHandler &memory, const DynamicVolume &value);
    static void copyToBin(BinaryDataHandler &memory, const DynamicVolume *values, UInt32 n)
    {
        putArray(memory, values, n);
    }
    static void copyFromBin(BinaryDataHandler &memory, DynamicVolume &value);
    static void copyFromBin(BinaryDataHandler &memory, DynamicVolume *values, UInt32 n)
    {
        getArray(memory, values, n);
    }
};

/// The traits of type T, with its field names SF<Name> and MF<Name>; the rest is inherited.
#define OSG_BASE_FIELD_TRAITS(T, Name, ...)                             \
    template <>                                                         \
    struct OSG_BASELIB_DLLMAPPING FieldDataTraits<T> : __VA_ARGS__      \
    {                                                                   \
        static DataType _type;                                          \
        static DataType &getType() { return _type; }                    \
        static const Char8 *getSName() { return "SF" Name; }            \
        static const Char8 *getMName() { return "MF" Name; }            \
    };

OSG_BASE_FIELD_TRAITS(bool, "Bool", BoolFieldTraits)
OSG_BASE_FIELD_TRAITS(Int8, "Int8", ComponentFieldTraits<Int8, Int8, 1>)
OSG_BASE_FIELD_TRAITS(UInt8, "UInt8", ComponentFieldTraits<UInt8, UInt8, 1>)
OSG_BASE_FIELD_TRAITS(Int16, "Int16", ComponentFieldTraits<Int16, Int16, 1>)
OSG_BASE_FIELD_TRAITS(UInt16, "UInt16", ComponentFieldTraits<UInt16, UInt16, 1>)
OSG_BASE_FIELD_TRAITS(Int32, "Int32", ComponentFieldTraits<Int32, Int32, 1>)
OSG_BASE_FIELD_TRAITS(UInt32, "UInt32", ComponentFieldTraits<UInt32, UInt32, 1>)
OSG_BASE_FIELD_TRAITS(Int64, "Int64", ComponentFieldTraits<Int64, Int64, 1>)
OSG_BASE_FIELD_TRAITS(UInt64, "UInt64", ComponentFieldTraits<UInt64, UInt64, 1>)
OSG_BASE_FIELD_TRAITS(Real32, "Real32", ComponentFieldTraits<Real32, Real32, 1>)
// Time is the same type, so that its fields are these too.
OSG_BASE_FIELD_TRAITS(Real64, "Real64", ComponentFieldTraits<Real64, Real64, 1>)
OSG_BASE_FIELD_TRAITS(std::string, "String", StringFieldTraits)

OSG_BASE_FIELD_TRAITS(Vec2f, "Vec2f", ComponentFieldTraits<Vec2f, Real32, 2>)
OSG_BASE_FIELD_TRAITS(Vec3f, "Vec3f", ComponentFieldTraits<Vec3f, Real32, 3>)
OSG_BASE_FIELD_TRAITS(Vec4f, "Vec4f", ComponentFieldTraits<Vec4f, Real32, 4>)
OSG_BASE_FIELD_TRAITS(Vec2d, "Vec2d", ComponentFieldTraits<Vec2d, Real64, 2>)
OSG_BASE_FIELD_TRAITS(Vec3d, "Vec3d", ComponentFieldTraits<Vec3d, Real64, 3>)
OSG_BASE_FIELD_TRAITS(Vec4d, "Vec4d", ComponentFieldTraits<Vec4d, Real64, 4>)
OSG_BASE_FIELD_TRAITS(Vec2s, "Vec2s", ComponentFieldTraits<Vec2s, Int16, 2>)
OSG_BASE_FIELD_TRAITS(Vec2us, "Vec2us", ComponentFieldTraits<Vec2us, UInt16, 2>)
OSG_BASE_FIELD_TRAITS(Vec3us, "Vec3us", ComponentFieldTraits<Vec3us, UInt16, 3>)
OSG_BASE_FIELD_TRAITS(Vec4ub, "Vec4ub", ComponentFieldTraits<Vec4ub, UInt8, 4>)

OSG_BASE_FIELD_TRAITS(Pnt2f, "Pnt2f", ComponentFieldTraits<Pnt2f, Real32, 2>)
OSG_BASE_FIELD_TRAITS(Pnt3f, "Pnt3f", ComponentFieldTraits<Pnt3f, Real32, 3>)
OSG_BASE_FIELD_TRAITS(Pnt4f, "Pnt4f", ComponentFieldTraits<Pnt4f, Real32, 4>)
OSG_BASE_FIELD_TRAITS(Pnt2d, "Pnt2d", ComponentFieldTraits<Pnt2d, Real64, 2>)
OSG_BASE_FIELD_TRAITS(Pnt3d, "Pnt3d", ComponentFieldTraits<Pnt3d, Real64, 3>)

OSG_BASE_FIELD_TRAITS(Color3f, "Color3f", ComponentFieldTraits<Color3f, Real32, 3>)
OSG_BASE_FIELD_TRAITS(Color4f, "Color4f", ComponentFieldTraits<Color4f, Real32, 4>)
OSG_BASE_FIELD_TRAITS(Color3ub, "Color3ub", ByteColorFieldTraits<Color3ub, 3>)
OSG_BASE_FIELD_TRAITS(Color4ub, "Color4ub", ByteColorFieldTraits<Color4ub, 4>)

OSG_BASE_FIELD_TRAITS(Matrix, "Matrix", MatrixFieldTraits)
OSG_BASE_FIELD_TRAITS(Quaternion, "Quaternion", ComponentFieldTraits<Quaternion, Real32, 4>)
OSG_BASE_FIELD_TRAITS(Plane, "Plane", PlaneFieldTraits)
OSG_BASE_FIELD_TRAITS(DynamicVolume, "Volume", VolumeFieldTraits)

#undef OSG_BASE_FIELD_TRAITS

OSG_END_NAMESPACE

#endif
