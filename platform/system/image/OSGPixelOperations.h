#ifndef _OSGPIXELOPERATIONS_H_
#define _OSGPIXELOPERATIONS_H_

/// \file
/// Passes over plain arrays of pixels: other formats, other sample types, other sizes.

#include <cstddef>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// GL's numbers for pixel formats and sample types, as images hold them.
namespace PixelConstant
{
/// The pixel formats, by the numbers that GL has for them.
constexpr UInt32 Depth = 6402;
constexpr UInt32 Alpha = 6406;
constexpr UInt32 RGB = 6407;
constexpr UInt32 RGBA = 6408;
constexpr UInt32 L = 6409;
constexpr UInt32 LA = 6410;
constexpr UInt32 Intensity = 32841;
constexpr UInt32 BGR = 32992;
constexpr UInt32 BGRA = 32993;
constexpr UInt32 RGBDXT1 = 33776;
constexpr UInt32 RGBADXT1 = 33777;
constexpr UInt32 RGBADXT3 = 33778;
constexpr UInt32 RGBADXT5 = 33779;
constexpr UInt32 DepthStencil = 34041;

/// The types of a channel, by the numbers that GL has for them.
constexpr Int32 UInt8Data = 5121;
constexpr Int32 Int16Data = 5122;
constexpr Int32 UInt16Data = 5123;
constexpr Int32 Int32Data = 5124;
constexpr Int32 UInt32Data = 5125;
constexpr Int32 Float32Data = 5126;
constexpr Int32 Float16Data = 5131;
constexpr Int32 UInt24_8Data = 34042;
} // namespace PixelConstant

/// Samples per pixel; 0 for block-compressed and unknown formats. Depth with stencil is one sample.
OSG_SYSTEMLIB_DLLMAPPING UInt32 formatChannels(UInt32 pixelFormat);

/// Bytes of one 4 x 4 block of a DXT format; 0 for all other formats.
OSG_SYSTEMLIB_DLLMAPPING UInt32 formatBlockBytes(UInt32 pixelFormat);

/// Whether the format has a channel of alpha, or of something else than alpha.
OSG_SYSTEMLIB_DLLMAPPING bool formatHasAlpha(UInt32 pixelFormat);
OSG_SYSTEMLIB_DLLMAPPING bool formatHasColor(UInt32 pixelFormat);

/// Bytes of one sample; 0 for unknown types.
OSG_SYSTEMLIB_DLLMAPPING UInt32 typeBytes(Int32 dataType);

/// Writes `count` pixels in another format. A luminance made from colours is their mean (rounded down for
/// integers), an alpha made from pixels without one is the luminance where alpha is all there is, and else
/// the type's full value. False for formats and types without such channels. `from` and `to` don't overlap.
OSG_SYSTEMLIB_DLLMAPPING bool reformatPixels(const UInt8 *from, UInt32 fromFormat, UInt8 *to, UInt32 toFormat,
                                             Int32 dataType, std::size_t count);

/// Writes `count` samples as another type. Integers stand for fractions of their largest value, floats for
/// themselves; what lies outside of the range of the target is clamped, NaN becomes 0, and fractions are
/// rounded. False for types that aren't one number. `from` and `to` don't overlap.
OSG_SYSTEMLIB_DLLMAPPING bool convertPixelType(const UInt8 *from, Int32 fromType, UInt8 *to, Int32 toType,
                                               std::size_t count);

/// Width, height and depth in pixels.
struct PixelSize
{
    /// Voxels along an axis.
    UInt32 width;
    UInt32 height;
    UInt32 depth;
};

/// Fills `to` with the nearest pixels of `from`: the one at x * from.width / to.width rounded down, and so
/// on. `pixelBytes` is the size of a pixel.
OSG_SYSTEMLIB_DLLMAPPING void scalePixels(const UInt8 *from, PixelSize fromSize, UInt8 *to, PixelSize toSize,
                                          UInt32 pixelBytes);

/// The next mipmap level: each side halved, rounded down but at least 1; each pixel the mean of the (up to 8)
/// pixels that it covers, rounded for integers. False for types that aren't one number.
OSG_SYSTEMLIB_DLLMAPPING bool halvePixels(const UInt8 *from, PixelSize fromSize, UInt8 *to, UInt32 channels,
                                          Int32 dataType);

OSG_END_NAMESPACE

#endif
