/// \file
/// The conversions of half floats, by tables over sign and exponent.

#include "OSGReal16.h"

#include <cstring>
#include <istream>
#include <ostream>

OSG_BEGIN_NAMESPACE

namespace
{

/// From half to float: bits = mantissa[offset[h >> 10] + (h & 0x3ff)] + exponent[h >> 10]. The scheme is that
/// of van der Zijp, "Fast Half Float Conversions", with a third block of mantissas, for NaNs, which come out
/// quiet.
struct ToReal32Tables
{
    UInt32 mantissa[3 * 1024];
    UInt32 exponent[64];
    UInt16 offset[64];
};

/// From float to half: the sign and exponent of the float (its upper 9 bits) select what is added and how far
/// the mantissa, with its hidden bit, is shifted out.
struct FromReal32Tables
{
    UInt16 base[512];
    UInt8 shift[512];
};

constexpr ToReal32Tables makeToReal32Tables()
{
    ToReal32Tables t{};

    // denormals: moved up until the hidden bit stands, the exponent going down with each step
    for (UInt32 i = 1; i < 1024; ++i)
    {
        UInt32 mantissa = i << 13;
        UInt32 exponent = 113u << 23;
        while ((mantissa & 0x800000u) == 0)
        {
            mantissa <<= 1;
            exponent -= 1u << 23;
        }
        t.mantissa[i] = (mantissa & 0x7fffffu) | exponent;
    }
    for (UInt32 i = 0; i < 1024; ++i)
    {
        t.mantissa[1024 + i] = i << 13;
        t.mantissa[2048 + i] = i == 0 ? 0u : (i << 13) | 0x400000u;
    }

    for (UInt32 i = 0; i < 64; ++i)
    {
        const UInt32 sign = (i & 32u) << 26;
        const UInt32 exponent = i & 31u;
        t.exponent[i] = sign | (exponent == 0 ? 0u : exponent == 31u ? 0x7f800000u : (exponent + 112u) << 23);
        t.offset[i] = static_cast<UInt16>(exponent == 0 ? 0 : exponent == 31u ? 2048 : 1024);
    }
    return t;
}

constexpr FromReal32Tables makeFromReal32Tables()
{
    // a shift that leaves nothing of the 24 bits and rounds to nothing
    constexpr UInt8 Vanish = 26;

    FromReal32Tables t{};
    for (UInt32 i = 0; i < 512; ++i)
    {
        const UInt32 sign = (i & 256u) << 7;
        const Int32 exponent = static_cast<Int32>(i & 255u) - 127;
        if (exponent > 15)
        {
            t.base[i] = static_cast<UInt16>(sign | 0x7c00u);
            t.shift[i] = Vanish;
        }
        else if (exponent >= -14)
        {
            // one less than the exponent, as the hidden bit adds one; a carry out of the mantissa does so too
            t.base[i] = static_cast<UInt16>(sign | (static_cast<UInt32>(exponent + 14) << 10));
            t.shift[i] = 13;
        }
        else
        {
            t.base[i] = static_cast<UInt16>(sign);
            t.shift[i] = exponent < -25 ? Vanish : static_cast<UInt8>(-1 - exponent);
        }
    }
    return t;
}

constexpr ToReal32Tables toTables = makeToReal32Tables();
constexpr FromReal32Tables fromTables = makeFromReal32Tables();

} // namespace

Real32 Real16::toReal32(UInt16 bits)
{
    const UInt32 selector = bits >> 10;
    const UInt32 result =
        toTables.mantissa[toTables.offset[selector] + (bits & 0x3ffu)] + toTables.exponent[selector];
    Real32 value;
    std::memcpy(&value, &result, sizeof value);
    return value;
}

UInt16 Real16::fromReal32(Real32 value)
{
    UInt32 bits;
    std::memcpy(&bits, &value, sizeof bits);

    const UInt32 fraction = bits & 0x7fffffu;
    if ((bits & 0x7f800000u) == 0x7f800000u && fraction != 0)
        return static_cast<UInt16>(((bits >> 16) & 0x8000u) | 0x7e00u | (fraction >> 13));

    // round to nearest, ties to even, of what the shift drops
    const UInt32 selector = bits >> 23;
    const UInt32 shift = fromTables.shift[selector];
    const UInt32 mantissa = fraction | 0x800000u;
    const UInt32 kept = mantissa >> shift;
    const UInt32 dropped = mantissa & ((1u << shift) - 1u);
    const UInt32 half = 1u << (shift - 1u);
    const UInt32 up = (dropped > half || (dropped == half && (kept & 1u) != 0)) ? 1u : 0u;
    return static_cast<UInt16>(fromTables.base[selector] + kept + up);
}

std::ostream &operator<<(std::ostream &os, Real16 value) { return os << static_cast<Real32>(value); }

std::istream &operator>>(std::istream &is, Real16 &value)
{
    Real32 read = 0;
    if (is >> read)
        value = read;
    return is;
}

OSG_END_NAMESPACE
