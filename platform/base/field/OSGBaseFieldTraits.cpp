/// \file
/// The field traits of numbers, strings, vectors, points, colours, matrices, quaternions, planes and volumes.

#include "OSGBaseFieldTraits.h"

#include <cmath>
#include <cstring>

OSG_BEGIN_NAMESPACE

namespace
{

template <UInt32 N>
bool getNumbers(const Char8 *&in, Real32 (&numbers)[N])
{
    for(Real32 &number : numbers)
        if(!getNumberFromText(in, number))
            return false;
    return true;
}

void putNumbers(const Real32 *numbers, UInt32 n, std::string &out)
{
    for(UInt32 i = 0; i < n; ++i)
    {
        if(i != 0)
            out += ' ';
        putNumberToText(numbers[i], out);
    }
}

void planeToNumbers(const Plane &plane, Real32 (&numbers)[4])
{
    for(UInt32 i = 0; i < 3; ++i)
        numbers[i] = plane.getNormal()[i];
    numbers[3] = plane.getDistanceFromOrigin();
}

Plane planeFromNumbers(const Real32 (&numbers)[4])
{
    static_assert(std::is_trivially_copyable<Plane>::value && sizeof(Plane) == sizeof(numbers),
                  "a plane is its normal and its distance");
    const Vec3f normal(numbers[0], numbers[1], numbers[2]);
    if(std::fabs(normal.dot(normal) - 1.0f) > 1e-6f)
        return Plane(normal, numbers[3]);
    // Plane::set would divide by a length that isn't quite 1, and the last bits would change.
    Plane plane;
    std::memcpy(static_cast<void *>(&plane), numbers, sizeof(numbers));
    return plane;
}

/// How many numbers a kind of volume has; 0 for what isn't a kind.
UInt32 numVolumeNumbers(UInt16 type)
{
    return type == DynamicVolume::BOX_VOLUME ? 6 : type == DynamicVolume::SPHERE_VOLUME ? 4 : 0;
}

void volumeToNumbers(const DynamicVolume &volume, Real32 (&numbers)[6])
{
    if(volume.getType() == DynamicVolume::SPHERE_VOLUME)
    {
        const SphereVolume &sphere = static_cast<const SphereVolume &>(volume.getInstance());
        for(UInt32 i = 0; i < 3; ++i)
            numbers[i] = sphere.getCenter()[i];
        numbers[3] = sphere.getRadius();
        return;
    }
    const BoxVolume &box = static_cast<const BoxVolume &>(volume.getInstance());
    for(UInt32 i = 0; i < 3; ++i)
    {
        numbers[i] = box.getMin()[i];
        numbers[3 + i] = box.getMax()[i];
    }
}

void setVolumeNumbers(DynamicVolume &volume, const Real32 (&numbers)[6])
{
    const Pnt3f first(numbers[0], numbers[1], numbers[2]);
    if(volume.getType() == DynamicVolume::SPHERE_VOLUME)
        static_cast<SphereVolume &>(volume.getInstance()).setValue(first, numbers[3]);
    else
    {
        const Pnt3f second(numbers[3], numbers[4], numbers[5]);
        static_cast<BoxVolume &>(volume.getInstance()).setBounds(first, second);
    }
}

} // namespace

bool MatrixFieldTraits::getFromString(Matrix &out, const Char8 *&in)
{
    const Char8 *cursor = in;
    Real32 rows[16];
    if(!getNumbers(cursor, rows))
        return false;
    for(UInt32 row = 0; row < 4; ++row)
        for(UInt32 column = 0; column < 4; ++column)
            out[column][row] = rows[4 * row + column];
    in = cursor;
    return true;
}

void MatrixFieldTraits::putToString(const Matrix &in, std::string &out)
{
    Real32 rows[16];
    for(UInt32 row = 0; row < 4; ++row)
        for(UInt32 column = 0; column < 4; ++column)
            rows[4 * row + column] = in[column][row];
    putNumbers(rows, 16, out);
}

bool PlaneFieldTraits::getFromString(Plane &out, const Char8 *&in)
{
    const Char8 *cursor = in;
    Real32 numbers[4];
    if(!getNumbers(cursor, numbers))
        return false;
    out = planeFromNumbers(numbers);
    in = cursor;
    return true;
}

void PlaneFieldTraits::putToString(const Plane &in, std::string &out)
{
    Real32 numbers[4];
    planeToNumbers(in, numbers);
    putNumbers(numbers, 4, out);
}

void PlaneFieldTraits::copyToBin(BinaryDataHandler &memory, const Plane &value)
{
    Real32 numbers[4];
    planeToNumbers(value, numbers);
    memory.putValues(numbers, 4);
}

void PlaneFieldTraits::copyFromBin(BinaryDataHandler &memory, Plane &value)
{
    Real32 numbers[4];
    memory.getValues(numbers, 4);
    value = planeFromNumbers(numbers);
}

bool VolumeFieldTraits::getFromString(DynamicVolume &out, const Char8 *&in)
{
    const Char8 *cursor = in;
    std::string word;
    if(!getWordFromText(cursor, word) || (word != "BoxVolume" && word != "SphereVolume"))
        return false;
    DynamicVolume value(word == "BoxVolume" ? DynamicVolume::BOX_VOLUME : DynamicVolume::SPHERE_VOLUME);

    const Char8 *behindWord = cursor;
    if(getWordFromText(behindWord, word) && (word == "empty" || word == "infinite"))
    {
        value.setEmpty(word == "empty");
        value.setInfinite(word == "infinite");
        cursor = behindWord;
    }
    else
    {
        Real32 numbers[6] = {};
        const UInt32 count = numVolumeNumbers(static_cast<UInt16>(value.getType()));
        for(UInt32 i = 0; i < count; ++i)
            if(!getNumberFromText(cursor, numbers[i]))
                return false;
        setVolumeNumbers(value, numbers);
    }
    out = value;
    in = cursor;
    return true;
}

void VolumeFieldTraits::putToString(const DynamicVolume &in, std::string &out)
{
    out += in.getType() == DynamicVolume::BOX_VOLUME ? "BoxVolume " : "SphereVolume ";
    if(in.isInfinite())
        out += "infinite";
    else if(in.isEmpty())
        out += "empty";
    else
    {
        Real32 numbers[6] = {};
        volumeToNumbers(in, numbers);
        putNumbers(numbers, numVolumeNumbers(static_cast<UInt16>(in.getType())), out);
    }
}

UInt32 VolumeFieldTraits::getBinSize(const DynamicVolume &value)
{
    const UInt32 count = numVolumeNumbers(static_cast<UInt16>(value.getType()));
    return static_cast<UInt32>(2 * sizeof(UInt16) + count * sizeof(Real32));
}

void VolumeFieldTraits::copyToBin(BinaryDataHandler &memory, const DynamicVolume &value)
{
    const UInt16 type = static_cast<UInt16>(value.getType());
    Real32 numbers[6] = {};
    volumeToNumbers(value, numbers);
    memory.putValue(type);
    memory.putValue(value.getState());
    memory.putValues(numbers, numVolumeNumbers(type));
}

void VolumeFieldTraits::copyFromBin(BinaryDataHandler &memory, DynamicVolume &value)
{
    UInt16 type = 0;
    UInt16 state = 0;
    memory.getValue(type);
    memory.getValue(state);
    const UInt32 count = numVolumeNumbers(type);
    value = DynamicVolume();
    if(count == 0)
        return;

    Real32 numbers[6] = {};
    memory.getValues(numbers, count);
    if(type == DynamicVolume::SPHERE_VOLUME)
        value.setVolumeType(DynamicVolume::SPHERE_VOLUME);
    setVolumeNumbers(value, numbers);
    value.setState(state);
}

#define OSG_BASE_DATA_TYPE(T, Name) DataType FieldDataTraits<T>::_type(Name, "None");

OSG_BASE_DATA_TYPE(bool, "bool")
OSG_BASE_DATA_TYPE(Int8, "Int8")
OSG_BASE_DATA_TYPE(UInt8, "UInt8")
OSG_BASE_DATA_TYPE(Int16, "Int16")
OSG_BASE_DATA_TYPE(UInt16, "UInt16")
OSG_BASE_DATA_TYPE(Int32, "Int32")
OSG_BASE_DATA_TYPE(UInt32, "UInt32")
OSG_BASE_DATA_TYPE(Int64, "Int64")
OSG_BASE_DATA_TYPE(UInt64, "UInt64")
OSG_BASE_DATA_TYPE(Real32, "Real32")
OSG_BASE_DATA_TYPE(Real64, "Real64")
OSG_BASE_DATA_TYPE(std::string, "string")
OSG_BASE_DATA_TYPE(Vec2f, "Vec2f")
OSG_BASE_DATA_TYPE(Vec3f, "Vec3f")
OSG_BASE_DATA_TYPE(Vec4f, "Vec4f")
OSG_BASE_DATA_TYPE(Vec2d, "Vec2d")
OSG_BASE_DATA_TYPE(Vec3d, "Vec3d")
OSG_BASE_DATA_TYPE(Vec4d, "Vec4d")
OSG_BASE_DATA_TYPE(Vec2s, "Vec2s")
OSG_BASE_DATA_TYPE(Vec2us, "Vec2us")
OSG_BASE_DATA_TYPE(Vec3us, "Vec3us")
OSG_BASE_DATA_TYPE(Vec4ub, "Vec4ub")
OSG_BASE_DATA_TYPE(Pnt2f, "Pnt2f")
OSG_BASE_DATA_TYPE(Pnt3f, "Pnt3f")
OSG_BASE_DATA_TYPE(Pnt4f, "Pnt4f")
OSG_BASE_DATA_TYPE(Pnt2d, "Pnt2d")
OSG_BASE_DATA_TYPE(Pnt3d, "Pnt3d")
OSG_BASE_DATA_TYPE(Color3f, "Color3f")
OSG_BASE_DATA_TYPE(Color4f, "Color4f")
OSG_BASE_DATA_TYPE(Color3ub, "Color3ub")
OSG_BASE_DATA_TYPE(Color4ub, "Color4ub")
OSG_BASE_DATA_TYPE(Matrix, "Matrix")
OSG_BASE_DATA_TYPE(Quaternion, "Quaternion")
OSG_BASE_DATA_TYPE(Plane, "Plane")
OSG_BASE_DATA_TYPE(DynamicVolume, "Volume")

#undef OSG_BASE_DATA_TYPE

namespace
{

/// Time is Real64 to the compiler, yet a type of its own to who looks one up by name.
const DataType timeType("Time", "None");

} // namespace

OSG_END_NAMESPACE
