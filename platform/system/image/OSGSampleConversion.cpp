/// \file
/// The two passes of the conversion: the range of the samples, then each sample into its place.

#include "OSGSampleConversion.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <type_traits>

OSG_BEGIN_NAMESPACE

namespace
{

constexpr std::size_t BlockSize = 1024;

template <class T>
T swapBytes(T value)
{
    std::uint8_t bytes[sizeof(T)];
    std::memcpy(bytes, &value, sizeof(T));
    std::reverse(bytes, bytes + sizeof(T));
    std::memcpy(&value, bytes, sizeof(T));
    return value;
}

/// Calls use(block, first, length) with aligned samples in the machine's byte order, a block at a time.
template <class T, class Use>
void forBlocks(const RawSamples &in, Use use)
{
    T block[BlockSize];
    for(std::size_t first = 0; first < in.count; first += BlockSize)
    {
        const std::size_t length = std::min(BlockSize, in.count - first);
        std::memcpy(block, in.bytes + first * sizeof(T), length * sizeof(T));
        if(in.swapped)
            for(std::size_t i = 0; i < length; ++i)
                block[i] = swapBytes(block[i]);
        use(block, first, length);
    }
}

template <class T>
struct Range
{
    T low = 0;
    T high = 0;
    std::size_t notFinite = 0;
};

template <class T>
Range<T> integerRange(const RawSamples &in)
{
    T low = std::numeric_limits<T>::max();
    T high = std::numeric_limits<T>::lowest();
    forBlocks<T>(in, [&](const T *block, std::size_t, std::size_t length) {
        T blockLow = low, blockHigh = high;
        for(std::size_t i = 0; i < length; ++i)
        {
            blockLow = std::min(blockLow, block[i]);
            blockHigh = std::max(blockHigh, block[i]);
        }
        low = blockLow;
        high = blockHigh;
    });
    return {low, high, 0};
}

/// Calls use(values, first, length) with what the samples stand for, as doubles.
template <class T, class Use>
void forValues(const RawSamples &in, double slope, double intercept, Use use)
{
    double values[BlockSize];
    forBlocks<T>(in, [&](const T *block, std::size_t first, std::size_t length) {
        for(std::size_t i = 0; i < length; ++i)
            values[i] = static_cast<double>(block[i]) * slope + intercept;
        use(values, first, length);
    });
}

template <class T>
Range<double> valueRange(const RawSamples &in, double slope, double intercept)
{
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
    std::size_t notFinite = 0;
    forValues<T>(in, slope, intercept, [&](const double *values, std::size_t, std::size_t length) {
        for(std::size_t i = 0; i < length; ++i)
        {
            const bool finite = std::isfinite(values[i]);
            notFinite += finite ? 0 : 1;
            low = finite && values[i] < low ? values[i] : low;
            high = finite && values[i] > high ? values[i] : high;
        }
    });
    if(low > high)
        low = high = 0.0;
    return {low, high, notFinite};
}

/// 0 to 65535 over the range, rounded. Halves keep the width of the widest range finite, and the comparison
/// sends NaN to 0.
template <class T>
void scaleTo16(const RawSamples &in, double slope, double intercept, double low, double high,
               std::uint8_t *out)
{
    const double width = 0.5 * high - 0.5 * low;
    const double divisor = width > 0.0 ? width : 1.0;
    forValues<T>(in, slope, intercept, [&](const double *values, std::size_t first, std::size_t length) {
        std::uint16_t scaled[BlockSize];
        for(std::size_t i = 0; i < length; ++i)
        {
            const double share = (0.5 * values[i] - 0.5 * low) / divisor;
            const double inside = share > 0.0 ? (share < 1.0 ? share : 1.0) : 0.0;
            scaled[i] = static_cast<std::uint16_t>(inside * 65535.0 + 0.5);
        }
        std::memcpy(out + 2 * first, scaled, 2 * length);
    });
}

/// sample - offset, known to fit `Out`; the difference is taken without sign, where it can't overflow.
template <class Out, class T>
void offsetTo(const RawSamples &in, T offset, std::uint8_t *out)
{
    using Unsigned = std::make_unsigned_t<T>;
    forBlocks<T>(in, [&](const T *block, std::size_t first, std::size_t length) {
        Out result[BlockSize];
        for(std::size_t i = 0; i < length; ++i)
            result[i] = static_cast<Out>(static_cast<Unsigned>(block[i]) - static_cast<Unsigned>(offset));
        std::memcpy(out + sizeof(Out) * first, result, sizeof(Out) * length);
    });
}

std::string text(double value)
{
    char buffer[40];
    std::snprintf(buffer, sizeof(buffer), "%g", value);
    return buffer;
}

/// Makes room for the samples at `width` bytes each and names their type.
bool prepare(const RawSamples &in, unsigned width, const std::string &name, std::uint64_t maxBytes,
             PixelData &out, std::string &error)
{
    out.dataType = width == 1 ? SampleUInt8 : SampleUInt16;
    return allocatePixels(out.data, std::uint64_t(in.count) * width, maxBytes, name, error);
}

/// Notes what a sample of the result stands for, where there is one to a pixel.
void noteValues(double slope, double intercept, PixelData &out)
{
    out.hasValues = out.pixelFormat == PixelL;
    out.valueSlope = out.hasValues ? slope : 1.0;
    out.valueIntercept = out.hasValues ? intercept : 0.0;
}

template <class T>
bool convertScaled(const RawSamples &in, double slope, double intercept, const std::string &how,
                   const std::string &name, std::uint64_t maxBytes, PixelData &out, std::string &error)
{
    if(!prepare(in, 2, name, maxBytes, out, error))
        return false;
    const Range<double> range = valueRange<T>(in, slope, intercept);
    scaleTo16<T>(in, slope, intercept, range.low, range.high, out.data.data());
    // The quotients apart, since the widest range is over what a double holds.
    const double step = range.high / 65535.0 - range.low / 65535.0;
    noteValues(step > 0.0 ? step : 1.0, range.low, out);
    std::string line = name + ": " + sampleName(in.type) + " voxels" + how + " in [" + text(range.low) +
                       ", " + text(range.high) + "] scaled to 16 bits";
    if(range.notFinite > 0)
        line += ", " + std::to_string(range.notFinite) + " not finite";
    out.notices.push_back(line);
    return true;
}

template <class T>
bool convertIntegers(const RawSamples &in, const std::string &name, std::uint64_t maxBytes, PixelData &out,
                     std::string &error)
{
    using Unsigned = std::make_unsigned_t<T>;
    const Range<T> range = integerRange<T>(in);
    const bool wide = range.high > 0 && static_cast<std::uint64_t>(range.high) > 65535;
    const T offset = range.low < 0 || wide ? range.low : T(0);
    const std::uint64_t width =
        static_cast<Unsigned>(static_cast<Unsigned>(range.high) - static_cast<Unsigned>(offset));
    if(width > 65535)
        return convertScaled<T>(in, 1.0, 0.0, "", name, maxBytes, out, error);

    const unsigned bytes = width > 255 ? 2 : 1;
    if(!prepare(in, bytes, name, maxBytes, out, error))
        return false;
    if(bytes == 1)
        offsetTo<std::uint8_t>(in, offset, out.data.data());
    else
        offsetTo<std::uint16_t>(in, offset, out.data.data());
    noteValues(1.0, static_cast<double>(offset), out);
    std::string line = name + ": " + sampleName(in.type) + " voxels in [" + std::to_string(range.low) + ", " +
                       std::to_string(range.high) + "]";
    line += offset != 0 ? ", less their minimum," : "";
    out.notices.push_back(line + " brought to " + std::to_string(8 * bytes) + " bits");
    return true;
}

template <class T>
bool keep(const RawSamples &in, const std::string &name, std::uint64_t maxBytes, PixelData &out,
          std::string &error)
{
    if(!prepare(in, sizeof(T), name, maxBytes, out, error))
        return false;
    noteValues(1.0, 0.0, out);
    forBlocks<T>(in, [&](const T *block, std::size_t first, std::size_t length) {
        std::memcpy(out.data.data() + first * sizeof(T), block, length * sizeof(T));
    });
    return true;
}

template <class T>
bool convert(const RawSamples &in, const std::string &name, std::uint64_t maxBytes, PixelData &out,
             std::string &error)
{
    const bool hasSlope = std::isfinite(in.slope) && in.slope != 0.0;
    const double intercept = hasSlope && std::isfinite(in.intercept) ? in.intercept : 0.0;
    const double slope = hasSlope ? in.slope : 1.0;
    if(slope != 1.0 || intercept != 0.0)
    {
        const std::string how = " with slope " + text(slope) + " and intercept " + text(intercept);
        return convertScaled<T>(in, slope, intercept, how, name, maxBytes, out, error);
    }
    if constexpr(std::is_floating_point_v<T>)
        return convertScaled<T>(in, 1.0, 0.0, "", name, maxBytes, out, error);
    else if constexpr(std::is_same_v<T, std::uint8_t> || std::is_same_v<T, std::uint16_t>)
        return keep<T>(in, name, maxBytes, out, error);
    else
        return convertIntegers<T>(in, name, maxBytes, out, error);
}

struct SampleKind
{
    const char *name;
    std::size_t bytes;
};

/// In the order of SampleType.
constexpr SampleKind kinds[] = {{"int8", 1},   {"uint8", 1}, {"int16", 2},  {"uint16", 2},  {"int32", 4},
                                {"uint32", 4}, {"int64", 8}, {"uint64", 8}, {"float32", 4}, {"float64", 8}};

} // namespace

std::size_t sampleBytes(SampleType type)
{
    return kinds[static_cast<std::size_t>(type)].bytes;
}

const char *sampleName(SampleType type)
{
    return kinds[static_cast<std::size_t>(type)].name;
}

bool convertSamples(const RawSamples &in, const std::string &name, std::uint64_t maxBytes, PixelData &out,
                    std::string &error)
{
    switch(in.type)
    {
    case SampleType::Int8:
        return convert<std::int8_t>(in, name, maxBytes, out, error);
    case SampleType::UInt8:
        return convert<std::uint8_t>(in, name, maxBytes, out, error);
    case SampleType::Int16:
        return convert<std::int16_t>(in, name, maxBytes, out, error);
    case SampleType::UInt16:
        return convert<std::uint16_t>(in, name, maxBytes, out, error);
    case SampleType::Int32:
        return convert<std::int32_t>(in, name, maxBytes, out, error);
    case SampleType::UInt32:
        return convert<std::uint32_t>(in, name, maxBytes, out, error);
    case SampleType::Int64:
        return convert<std::int64_t>(in, name, maxBytes, out, error);
    case SampleType::UInt64:
        return convert<std::uint64_t>(in, name, maxBytes, out, error);
    case SampleType::Float32:
        return convert<float>(in, name, maxBytes, out, error);
    case SampleType::Float64:
        return convert<double>(in, name, maxBytes, out, error);
    }
    return false;
}

OSG_END_NAMESPACE
