/// \file
/// Half floats against the processor's conversion where it has one, and against arithmetic on the definition.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>
#include <vector>

#include <OpenSG/OSGReal16.h>

#include "MathRandom.h"

#if defined(__x86_64__)
#include <cpuid.h>
#include <immintrin.h>
#endif

using namespace osg;

namespace
{

UInt32 bitsOf(Real32 value)
{
    UInt32 bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

Real32 realOf(UInt32 bits)
{
    Real32 value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// By the definition of binary16.
Real64 definedValue(UInt16 bits)
{
    const Real64 sign = (bits & 0x8000) ? -1.0 : 1.0;
    const int exponent = (bits >> 10) & 31;
    const int fraction = bits & 1023;
    return sign * (exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(1024 + fraction, exponent - 25));
}

/// The nearest half, by a search through all: even bits win ties, and from 65520 on it is infinity.
UInt16 nearestBySearch(Real32 value)
{
    static const std::vector<Real64> all = []
    {
        std::vector<Real64> values;
        for (UInt32 i = 0; i <= 0x7c00u; ++i)
            values.push_back(definedValue(static_cast<UInt16>(i))); // 0x7c00 stands for 65536 here
        return values;
    }();
    const Real64 magnitude = std::abs(static_cast<Real64>(value));
    const UInt32 sign = std::signbit(value) ? 0x8000u : 0u;
    if (magnitude >= 65536.0)
        return static_cast<UInt16>(sign | 0x7c00u);
    const UInt32 above =
        static_cast<UInt32>(std::lower_bound(all.begin(), all.end(), magnitude) - all.begin());
    if (all[above] == magnitude)
        return static_cast<UInt16>(sign | above);
    const Real64 toBelow = magnitude - all[above - 1];
    const Real64 toAbove = all[above] - magnitude;
    const bool up = toAbove < toBelow || (toAbove == toBelow && above % 2 == 0);
    return static_cast<UInt16>(sign | (up ? above : above - 1));
}

/// Specials, everything around the halves and their middles, and random bits.
std::vector<Real32> sampleOfFloats(unsigned seed)
{
    std::vector<Real32> sample = {0.0f,
                                  -0.0f,
                                  65504.0f,
                                  65519.996f,
                                  65520.0f,
                                  -65520.0f,
                                  65536.0f,
                                  1e30f,
                                  std::numeric_limits<Real32>::denorm_min(),
                                  std::numeric_limits<Real32>::min(),
                                  std::numeric_limits<Real32>::max(),
                                  std::numeric_limits<Real32>::infinity(),
                                  -std::numeric_limits<Real32>::infinity()};
    for (UInt32 i = 0; i < 0x7c00u; ++i)
    {
        const Real64 here = definedValue(static_cast<UInt16>(i));
        const Real32 middle = static_cast<Real32>(0.5 * (here + definedValue(static_cast<UInt16>(i + 1))));
        for (const Real32 value : {static_cast<Real32>(here), middle})
        {
            sample.push_back(value);
            sample.push_back(-value);
            sample.push_back(std::nextafter(value, 1e9f));
            sample.push_back(std::nextafter(value, -1e9f));
        }
    }
    MathRandom random(seed);
    for (int i = 0; i < 1000000; ++i)
        sample.push_back(realOf(random.bits()));
    for (int i = 0; i < 1000000; ++i)
        sample.push_back(realOf((random.bits() & 0x87ffffffu) | 0x38000000u)); // exponents of the halves
    for (int i = 0; i < 300000; ++i)
        sample.push_back(realOf((random.bits() & 0x83ffffffu) | 0x30000000u)); // and of their denormals
    return sample;
}

#if defined(__x86_64__)
__attribute__((target("f16c"))) UInt16 fromReal32OfProcessor(Real32 value)
{
    return static_cast<UInt16>(_mm_cvtsi128_si32(_mm_cvtps_ph(_mm_set_ss(value), _MM_FROUND_TO_NEAREST_INT)));
}

__attribute__((target("f16c"))) UInt32 toReal32OfProcessor(UInt16 bits)
{
    return static_cast<UInt32>(_mm_cvtsi128_si32(_mm_castps_si128(_mm_cvtph_ps(_mm_cvtsi32_si128(bits)))));
}
#endif

bool processorConverts()
{
#if defined(__x86_64__)
    // asked for by hand, as not every compiler knows f16c by name
    unsigned a = 0, b = 0, c = 0, d = 0;
    return __builtin_cpu_supports("avx") && __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & bit_F16C) != 0;
#else
    return false;
#endif
}

} // namespace

TEST(Real16, OfAllBitsHasTheValueOfTheDefinition)
{
    for (UInt32 i = 0; i < 65536; ++i)
    {
        const UInt16 bits = static_cast<UInt16>(i);
        const Real16 half = Real16::fromBits(bits);
        const Real32 value = half;
        if (half.isFinite())
        {
            ASSERT_EQ(static_cast<Real64>(value), definedValue(bits)) << i;
            ASSERT_EQ(std::signbit(value), half.isNegative()) << i;
            ASSERT_EQ(Real16(value).bits(), bits);
        }
        else if (half.isInfinity())
        {
            ASSERT_EQ(value, half.isNegative() ? -std::numeric_limits<Real32>::infinity()
                                               : std::numeric_limits<Real32>::infinity());
        }
        else
        {
            ASSERT_TRUE(half.isNan());
            ASSERT_TRUE(std::isnan(value)) << i;
            ASSERT_EQ(Real16(value).bits(), bits | 0x200u);
        }
    }
}

TEST(Real16, IsTheNearestHalfAndEvenAtTies)
{
    const unsigned seed = 1602;
    TRACE_SEED(seed);
    for (const Real32 value : sampleOfFloats(seed))
        if (!std::isnan(value))
        {
            ASSERT_EQ(Real16::fromReal32(value), nearestBySearch(value)) << std::hexfloat << value;
        }
}

TEST(Real16, AgreesWithTheProcessorWhereItConvertsHalves)
{
    const unsigned seed = 1603;
    TRACE_SEED(seed);
    if (!processorConverts())
    {
        // the search above has checked the same sample; NaNs are left to the definition
        EXPECT_EQ(Real16(std::nanf("")).bits() & 0x7e00u, 0x7e00u);
        return;
    }
#if defined(__x86_64__)
    for (UInt32 i = 0; i < 65536; ++i)
        ASSERT_EQ(bitsOf(Real16::toReal32(static_cast<UInt16>(i))),
                  toReal32OfProcessor(static_cast<UInt16>(i)))
            << i;
    for (const Real32 value : sampleOfFloats(seed))
        ASSERT_EQ(Real16::fromReal32(value), fromReal32OfProcessor(value)) << std::hex << bitsOf(value);
#endif
}

TEST(Real16, HasTheKnownLimitsAndKinds)
{
    EXPECT_EQ(Real16(1.0f).bits(), 0x3c00u);
    EXPECT_EQ(Real16(-2.0f).bits(), 0xc000u);
    EXPECT_EQ(Real16(65504.0f).bits(), 0x7bffu);
    EXPECT_EQ(Real16(65520.0f).bits(), 0x7c00u);
    EXPECT_EQ(Real16(Real16::Min).bits(), 1u);
    EXPECT_EQ(Real16(Real16::Min / 2).bits(), 0u);
    EXPECT_EQ(Real16(Real16::NormMin).bits(), 0x0400u);
    EXPECT_EQ(Real16(Real16::Max).bits(), 0x7bffu);
    EXPECT_TRUE(Real16(Real16::Min).isDenormalized());
    EXPECT_TRUE(Real16(1.0f).isNormalized());
    EXPECT_TRUE(Real16(-0.0f).isZero());
    EXPECT_TRUE(Real16(-0.0f).isNegative());
    EXPECT_TRUE(Real16::negInf().isInfinity());
    EXPECT_TRUE(Real16::qNan().isNan());
    EXPECT_EQ(Real16().bits(), 0u);
}

TEST(Real16, CalculatesInReal32)
{
    Real16 half(1.5f);
    half += 0.25f;
    EXPECT_EQ(half, 1.75f);
    half *= 2;
    half -= 0.5f;
    half /= 4;
    EXPECT_EQ(half, 0.75f);
    EXPECT_EQ(-half, -0.75f);
    EXPECT_EQ(Real16(0.5f) + Real16(0.25f), 0.75f);
    half.setBits(0x3c00u);
    EXPECT_EQ(half, 1.0f);
}

TEST(Real16, IsWrittenAndReadAsANumber)
{
    std::stringstream stream;
    stream << Real16(0.5f) << ' ' << Real16(-1024.0f);
    EXPECT_EQ(stream.str(), "0.5 -1024");
    Real16 a, b;
    stream >> a >> b;
    EXPECT_EQ(a, 0.5f);
    EXPECT_EQ(b, -1024.0f);
}
