#ifndef _OSGPNGCODEC_H_
#define _OSGPNGCODEC_H_

/// \file
/// PNG pictures from and to memory, through libpng.

#include "OSGPixelBuffer.h"

OSG_BEGIN_NAMESPACE

/// Decodes a PNG of any kind to L, LA, RGB or RGBA with 8 or 16 bits a sample: palettes are looked up, a
/// transparent colour becomes an alpha channel, fewer bits than 8 are widened to 8. No gamma is applied.
/// `name` only stands in messages. False, with one line in `error` that names the file, the fault and the
/// byte, where the bytes are no whole PNG or the picture is over `maxBytes`; `out` is then not to be used.
OSG_SYSTEMLIB_DLLMAPPING bool decodePNG(const std::uint8_t *bytes, std::size_t size, const std::string &name,
                                        PixelData &out, std::string &error,
                                        std::uint64_t maxBytes = DefaultMaxPixelBytes);

/// Encodes L, LA, RGB or RGBA pixels of 8 or 16 bits and depth 1; the picture's bottom row is the first in
/// memory. False, with one line in `error` that starts with `name`, for any other pixels.
OSG_SYSTEMLIB_DLLMAPPING bool encodePNG(const PixelView &in, const std::string &name,
                                        std::vector<std::uint8_t> &out, std::string &error);

OSG_END_NAMESPACE

#endif
