#ifndef _OSGSAMPLECONVERSION_H_
#define _OSGSAMPLECONVERSION_H_

/// \file
/// Brings the samples of a volume file, of whatever width, to the 8 or 16 bits that volumes are drawn from.

#include "OSGPixelBuffer.h"

OSG_BEGIN_NAMESPACE

/// The types of a sample.
enum class SampleType
{
    Int8,
    UInt8,
    Int16,
    UInt16,
    Int32,
    UInt32,
    Int64,
    UInt64,
    Float32,
    Float64
};

/// Bytes of one sample.
OSG_SYSTEMLIB_DLLMAPPING std::size_t sampleBytes(SampleType type);

/// "int8" ... "float64".
OSG_SYSTEMLIB_DLLMAPPING const char *sampleName(SampleType type);

/// What lies in a file: `count` samples at `bytes`, at any alignment. A sample stands for slope * sample +
/// intercept; a slope that is 0 or not finite, and a slope of 1 with an intercept of 0, leave it as it is.
struct RawSamples
{
    const std::uint8_t *bytes = nullptr; ///< samples, not aligned
    std::size_t count = 0; ///< samples
    SampleType type = SampleType::UInt8; ///< their type
    bool swapped = false; ///< the file's byte order is not the machine's
    double slope = 1.0; ///< real value = slope * stored value + intercept
    double intercept = 0.0; ///< real value = slope * stored value + intercept
};

/// Fills `out.data` and `out.dataType`.
///  - uint8 and uint16 stay as they are.
///  - Other integers: the minimum is taken off where it is negative or the maximum is over 65535; what then
///    fits 255 goes to 8 bits, what fits 65535 to 16 bits, and what is wider is scaled linearly from its
///    range to 0 to 65535.
///  - Floats, and all samples with a slope: scaled linearly from the range of the finite values to 0 to
///    65535, rounded; NaN and minus infinity become 0, infinity 65535, and so does nothing else: a constant
///    volume becomes 0.
/// All but the first add one line to `out.notices` that starts with `name`. Where `out.pixelFormat` is L,
/// `hasValues`, `valueSlope` and `valueIntercept` tell which value (slope * raw sample + intercept) a sample
/// of `out` stands for: exactly, or to half a step where values were scaled. The slope is never 0; a constant
/// volume has 1. False, with one line in `error`, where the result is over `maxBytes` or memory is short.
OSG_SYSTEMLIB_DLLMAPPING bool convertSamples(const RawSamples &in, const std::string &name,
                                             std::uint64_t maxBytes, PixelData &out, std::string &error);

OSG_END_NAMESPACE

#endif
