#ifndef _OSGPIXELBUFFER_H_
#define _OSGPIXELBUFFER_H_

/// \file
/// Pixels in plain memory: what the readers of image files hand over and what the writers take.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "OSGConfig.h"

OSG_BEGIN_NAMESPACE

/// GL's numbers for the pixel formats and sample types that files hold.
enum PixelNumbers : unsigned
{
    PixelRGB = 6407,
    PixelRGBA = 6408,
    PixelL = 6409,
    PixelLA = 6410,
    SampleUInt8 = 5121,
    SampleUInt16 = 5123
};

/// What no reader passes, however much a file promises: 4 GiB.
constexpr std::uint64_t DefaultMaxPixelBytes = std::uint64_t(4) << 30;

/// One decoded picture or volume: width x height x depth pixels, x fastest, samples interleaved, in the
/// machine's byte order. The first row in memory is the bottom row of a picture, as GL wants it.
struct PixelData
{
    int width = 0;                      ///< pixels along x
    int height = 0;                     ///< pixels along y
    int depth = 0;                      ///< pixels along z
    unsigned pixelFormat = PixelL;      ///< of PixelNumbers
    unsigned dataType = SampleUInt8;    ///< of PixelNumbers
    std::vector<std::uint8_t> data;     ///< the samples
    bool hasSpacing = false;            ///< the file states the size of a voxel
    float spacing[3] = {1.f, 1.f, 1.f}; ///< size of a voxel along x, y and z, in the file's own unit
    bool hasValues = false;             ///< it is known what a sample stands for (one channel only)
    double valueSlope = 1.0;            ///< a sample stands for valueSlope * sample + valueIntercept
    double valueIntercept = 0.0;        ///< see valueSlope
    std::string valueUnit;            ///< of what it stands for: "HU"; "" where that is not known
    std::vector<std::string> notices; ///< one line each, without a line end: what was changed on the way in
};

/// Pixels that someone else owns, laid out as in PixelData.
struct PixelView
{
    int width = 0;                      ///< pixels along x
    int height = 0;                     ///< pixels along y
    int depth = 0;                      ///< pixels along z
    unsigned pixelFormat = PixelL;      ///< of PixelNumbers
    unsigned dataType = SampleUInt8;    ///< of PixelNumbers
    const std::uint8_t *data = nullptr; ///< the samples, not owned
    bool hasSpacing = false;            ///< spacing says something
    float spacing[3] = {1.f, 1.f, 1.f}; ///< size of a voxel along x, y and z
};

/// Samples per pixel of L, LA, RGB and RGBA; 0 for any other format.
OSG_SYSTEMLIB_DLLMAPPING unsigned pixelChannels(unsigned pixelFormat);

/// Makes `data` `size` bytes long. False, with one line in `error`, where `size` is over `maxBytes` or memory
/// is short.
OSG_SYSTEMLIB_DLLMAPPING bool allocatePixels(std::vector<std::uint8_t> &data, std::uint64_t size,
                                             std::uint64_t maxBytes, const std::string &name,
                                             std::string &error);

/// Reads a regular file as a whole, or its first `wanted` bytes where that is less. False, with one line in
/// `error` that starts with `fileName`, where it can't be opened or read, is no regular file, or what is read
/// is over `maxBytes`.
OSG_SYSTEMLIB_DLLMAPPING bool readFileBytes(const std::string &fileName, std::vector<std::uint8_t> &bytes,
                                            std::string &error, std::uint64_t wanted = ~std::uint64_t(0),
                                            std::uint64_t maxBytes = DefaultMaxPixelBytes);

/// Writes a file anew. False, with one line in `error`, where that fails.
OSG_SYSTEMLIB_DLLMAPPING bool writeFileBytes(const std::string &fileName, const std::uint8_t *bytes,
                                             std::size_t size, std::string &error);

/// The size of a regular file in bytes. False, with one line in `error`, where there is none.
OSG_SYSTEMLIB_DLLMAPPING bool regularFileSize(const std::string &fileName, std::uint64_t &size,
                                              std::string &error);

OSG_END_NAMESPACE

#endif
