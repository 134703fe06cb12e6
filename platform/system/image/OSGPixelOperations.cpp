/// \file
/// Each pass is a template over the type of a sample; a switch picks the type once per call.

#include "OSGPixelOperations.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include "OSGReal16.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// Where the channels of a format lie in a pixel; -1 where it has none.
struct ChannelPlaces
{
    int luminance;
    int red;
    int green;
    int blue;
    int alpha;
};

struct Format
{
    UInt32 number;
    UInt32 channels;
    ChannelPlaces places;
};

constexpr Format formats[] = {
    {PixelConstant::Depth, 1, {0, -1, -1, -1, -1}}, {PixelConstant::Intensity, 1, {0, -1, -1, -1, -1}},
    {PixelConstant::L, 1, {0, -1, -1, -1, -1}},     {PixelConstant::Alpha, 1, {-1, -1, -1, -1, 0}},
    {PixelConstant::LA, 2, {0, -1, -1, -1, 1}},     {PixelConstant::RGB, 3, {-1, 0, 1, 2, -1}},
    {PixelConstant::RGBA, 4, {-1, 0, 1, 2, 3}},     {PixelConstant::BGR, 3, {-1, 2, 1, 0, -1}},
    {PixelConstant::BGRA, 4, {-1, 2, 1, 0, 3}},     {PixelConstant::DepthStencil, 1, {-1, -1, -1, -1, -1}},
};

const Format *findFormat(UInt32 number)
{
    const Format *found = std::find_if(std::begin(formats), std::end(formats),
                                       [number](const Format &format) { return format.number == number; });
    return found == std::end(formats) ? nullptr : found;
}

/// Calls use(T()) with the type of the samples; false for types that aren't one number.
template <class Use>
bool withType(Int32 dataType, Use use)
{
    switch(dataType)
    {
    case PixelConstant::UInt8Data:
        use(UInt8());
        return true;
    case PixelConstant::Int16Data:
        use(Int16());
        return true;
    case PixelConstant::UInt16Data:
        use(UInt16());
        return true;
    case PixelConstant::Int32Data:
        use(Int32());
        return true;
    case PixelConstant::UInt32Data:
        use(UInt32());
        return true;
    case PixelConstant::Float32Data:
        use(Real32());
        return true;
    case PixelConstant::Float16Data:
        use(Real16());
        return true;
    default:
        return false;
    }
}

/// The type in which the samples of a type are summed.
template <class T>
using Sum = std::conditional_t<std::is_integral_v<T>, Int64, double>;

template <class T>
Sum<T> number(T value)
{
    if constexpr(std::is_same_v<T, Real16>)
        return static_cast<double>(static_cast<Real32>(value));
    else
        return static_cast<Sum<T>>(value);
}

template <class T>
T sample(Sum<T> value)
{
    if constexpr(std::is_same_v<T, Real16>)
        return Real16(static_cast<Real32>(value));
    else
        return static_cast<T>(value);
}

template <class T>
T fullValue()
{
    if constexpr(std::is_integral_v<T>)
        return std::numeric_limits<T>::max();
    else
        return sample<T>(1.0);
}

template <class T>
void copyChannel(const T *from, UInt32 fromStep, T *to, UInt32 toStep, std::size_t count)
{
    for(std::size_t i = 0; i < count; ++i)
        to[i * toStep] = from[i * fromStep];
}

template <class T>
void meanChannel(const T *from, UInt32 fromStep, const ChannelPlaces &places, T *to, UInt32 toStep,
                 std::size_t count)
{
    const T *red = from + places.red;
    const T *green = from + places.green;
    const T *blue = from + places.blue;
    for(std::size_t i = 0; i < count; ++i)
        to[i * toStep] = sample<T>(
            (number(red[i * fromStep]) + number(green[i * fromStep]) + number(blue[i * fromStep])) / 3);
}

/// Writes the channel at `place` of the target: from the source's own channel, from its grey, or full.
template <class T>
void writeGrey(const T *from, const Format &source, T *to, const Format &target, int place, std::size_t count)
{
    if(source.places.luminance >= 0)
        copyChannel(from + source.places.luminance, source.channels, to + place, target.channels, count);
    else if(source.places.red >= 0)
        meanChannel(from, source.channels, source.places, to + place, target.channels, count);
    else
        copyChannel(from + source.places.alpha, source.channels, to + place, target.channels, count);
}

template <class T>
void writeColor(const T *from, const Format &source, int sourcePlace, T *to, const Format &target, int place,
                std::size_t count)
{
    if(place < 0)
        return;
    if(sourcePlace >= 0)
        copyChannel(from + sourcePlace, source.channels, to + place, target.channels, count);
    else
        writeGrey(from, source, to, target, place, count);
}

template <class T>
void reformat(const T *from, const Format &source, T *to, const Format &target, std::size_t count)
{
    if(target.places.luminance >= 0)
        writeGrey(from, source, to, target, target.places.luminance, count);
    writeColor(from, source, source.places.red, to, target, target.places.red, count);
    writeColor(from, source, source.places.green, to, target, target.places.green, count);
    writeColor(from, source, source.places.blue, to, target, target.places.blue, count);

    if(target.places.alpha < 0)
        return;
    if(source.places.alpha >= 0)
        copyChannel(from + source.places.alpha, source.channels, to + target.places.alpha, target.channels,
                    count);
    else if(target.channels == 1)
        writeGrey(from, source, to, target, target.places.alpha, count);
    else
    {
        const T full = fullValue<T>();
        T *alpha = to + target.places.alpha;
        for(std::size_t i = 0; i < count; ++i)
            alpha[i * target.channels] = full;
    }
}

template <class T>
double toFraction(T value)
{
    if constexpr(std::is_integral_v<T>)
        return static_cast<double>(value) / static_cast<double>(std::numeric_limits<T>::max());
    else
        return number(value);
}

template <class T>
T fromFraction(double fraction)
{
    if constexpr(std::is_integral_v<T>)
    {
        constexpr double low = std::is_signed_v<T> ? -1.0 : 0.0;
        const double inside =
            fraction > low ? (fraction < 1.0 ? fraction : 1.0) : (fraction <= low ? low : 0.0);
        const double scaled = inside * static_cast<double>(std::numeric_limits<T>::max());
        return static_cast<T>(scaled + (scaled < 0.0 ? -0.5 : 0.5));
    }
    else if constexpr(std::is_same_v<T, Real32>)
    {
        return static_cast<Real32>(fraction);
    }
    else
        return sample<T>(fraction);
}

template <class From, class To>
void convert(const From *from, To *to, std::size_t count)
{
    if constexpr(std::is_same_v<From, To>)
        std::memcpy(to, from, count * sizeof(To));
    else
        for(std::size_t i = 0; i < count; ++i)
            to[i] = fromFraction<To>(toFraction(from[i]));
}

/// Mean of the pixels that one target pixel covers; steps of 0 stand for sides that are 1 already.
template <class T>
void halve(const T *from, PixelSize size, T *to, UInt32 channels)
{
    const PixelSize half = {std::max(size.width / 2, 1u), std::max(size.height / 2, 1u),
                            std::max(size.depth / 2, 1u)};
    const std::size_t row = std::size_t(size.width) * channels;
    const std::size_t plane = row * size.height;
    const std::size_t stepX = size.width > 1 ? channels : 0;
    const std::size_t stepY = size.height > 1 ? row : 0;
    const std::size_t stepZ = size.depth > 1 ? plane : 0;
    for(std::size_t z = 0; z < half.depth; ++z)
        for(std::size_t y = 0; y < half.height; ++y)
        {
            const T *corner = from + 2 * z * stepZ + 2 * y * stepY;
            for(std::size_t x = 0; x < half.width; ++x, corner += 2 * stepX)
                for(std::size_t c = 0; c < channels; ++c)
                {
                    Sum<T> sum = 0;
                    for(const std::size_t dz : {std::size_t(0), stepZ})
                        for(const std::size_t dy : {std::size_t(0), stepY})
                            sum += number(corner[dz + dy + c]) + number(corner[dz + dy + stepX + c]);
                    if constexpr(std::is_integral_v<T>)
                        *to++ = static_cast<T>((sum + (sum < 0 ? -4 : 4)) / 8);
                    else
                        *to++ = sample<T>(sum / 8);
                }
        }
}

} // namespace

UInt32 formatChannels(UInt32 pixelFormat)
{
    const Format *format = findFormat(pixelFormat);
    return format ? format->channels : 0;
}

UInt32 formatBlockBytes(UInt32 pixelFormat)
{
    switch(pixelFormat)
    {
    case PixelConstant::RGBDXT1:
    case PixelConstant::RGBADXT1:
        return 8;
    case PixelConstant::RGBADXT3:
    case PixelConstant::RGBADXT5:
        return 16;
    default:
        return 0;
    }
}

bool formatHasAlpha(UInt32 pixelFormat)
{
    const Format *format = findFormat(pixelFormat);
    if(format)
        return format->places.alpha >= 0;
    return formatBlockBytes(pixelFormat) != 0 && pixelFormat != PixelConstant::RGBDXT1;
}

bool formatHasColor(UInt32 pixelFormat)
{
    const Format *format = findFormat(pixelFormat);
    if(format)
        return format->places.luminance >= 0 || format->places.red >= 0;
    return formatBlockBytes(pixelFormat) != 0;
}

UInt32 typeBytes(Int32 dataType)
{
    if(dataType == PixelConstant::UInt24_8Data)
        return 4;
    UInt32 bytes = 0;
    withType(dataType, [&bytes](auto zero) { bytes = sizeof(zero); });
    return bytes;
}

bool reformatPixels(const UInt8 *from, UInt32 fromFormat, UInt8 *to, UInt32 toFormat, Int32 dataType,
                    std::size_t count)
{
    const Format *source = findFormat(fromFormat);
    const Format *target = findFormat(toFormat);
    if(!source || !target || source->number == PixelConstant::DepthStencil ||
       target->number == PixelConstant::DepthStencil)
        return false;
    return withType(dataType, [=](auto zero) {
        using T = decltype(zero);
        reformat(reinterpret_cast<const T *>(from), *source, reinterpret_cast<T *>(to), *target, count);
    });
}

bool convertPixelType(const UInt8 *from, Int32 fromType, UInt8 *to, Int32 toType, std::size_t count)
{
    return withType(fromType, [](auto) {}) && withType(toType, [=](auto toZero) {
               withType(fromType, [=](auto fromZero) {
                   convert(reinterpret_cast<const decltype(fromZero) *>(from),
                           reinterpret_cast<decltype(toZero) *>(to), count);
               });
           });
}

void scalePixels(const UInt8 *from, PixelSize fromSize, UInt8 *to, PixelSize toSize, UInt32 pixelBytes)
{
    // Where each pixel of a row comes from is the same in all rows.
    std::vector<std::size_t> places(toSize.width);
    for(std::size_t x = 0; x < toSize.width; ++x)
        places[x] = x * fromSize.width / toSize.width * pixelBytes;
    for(std::size_t z = 0; z < toSize.depth; ++z)
    {
        const std::size_t fromZ = z * fromSize.depth / toSize.depth;
        for(std::size_t y = 0; y < toSize.height; ++y)
        {
            const std::size_t fromY = y * fromSize.height / toSize.height;
            const UInt8 *row = from + (fromZ * fromSize.height + fromY) * fromSize.width * pixelBytes;
            for(std::size_t x = 0; x < toSize.width; ++x, to += pixelBytes)
                std::memcpy(to, row + places[x], pixelBytes);
        }
    }
}

bool halvePixels(const UInt8 *from, PixelSize fromSize, UInt8 *to, UInt32 channels, Int32 dataType)
{
    return withType(dataType, [=](auto zero) {
        using T = decltype(zero);
        halve(reinterpret_cast<const T *>(from), fromSize, reinterpret_cast<T *>(to), channels);
    });
}

OSG_END_NAMESPACE
