#ifndef _OSGBASETYPES_H_
#define _OSGBASETYPES_H_

/// \file
/// The sized number types that fields, images and geometry are made of.

#include <cstddef>
#include <cstdint>

#include "OSGConfig.h"

OSG_BEGIN_NAMESPACE

/// A number of that many bits; Char8 is a character.
using Char8 = char;
using UChar8 = unsigned char;
using Int8 = std::int8_t;
using UInt8 = std::uint8_t;
using Byte = std::int8_t;
using UByte = std::uint8_t;
using Int16 = std::int16_t;
using UInt16 = std::uint16_t;
using Int32 = std::int32_t;
using UInt32 = std::uint32_t;
using Int64 = std::int64_t;
using UInt64 = std::uint64_t;
using Real32 = float;
using Real64 = double;
using Time = double; ///< seconds
/// A name, ended by 0.
using IDString = const Char8 *;

/// A set of fields: the field of id n is the bit 1 << n. Always computed in 64 bits.
using BitVector = std::uint64_t;

/// The name of a GL object.
using GLObjectId = UInt32;

constexpr Real32 Pi = 3.14159265358979323846f; ///< the ratio of a circle
constexpr Real32 Eps = 1e-6f; ///< what counts as nothing in comparisons of lengths

/// The version.
constexpr UInt32 ProgMajor = 1;

OSG_END_NAMESPACE

#endif
