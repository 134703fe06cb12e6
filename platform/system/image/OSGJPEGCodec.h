#ifndef _OSGJPEGCODEC_H_
#define _OSGJPEGCODEC_H_

/// \file
/// JPEG pictures from and to memory, through libjpeg.

#include "OSGPixelBuffer.h"

OSG_BEGIN_NAMESPACE

/// Decodes a JPEG, sequential or progressive, to L or RGB with 8 bits a sample: grey comes as L, every other
/// colour space, CMYK and YCCK too, as RGB. A rotation that a camera notes beside the picture is not applied.
/// What libjpeg warns of is one notice. `name` only stands in messages. False, with one line in `error` that
/// names the file, the fault and the byte, where the bytes are no JPEG, end within the picture, promise
/// more than they can hold, or the picture is over `maxBytes`; `out` is then empty.
OSG_SYSTEMLIB_DLLMAPPING bool decodeJPEG(const std::uint8_t *bytes, std::size_t size, const std::string &name,
                                         PixelData &out, std::string &error,
                                         std::uint64_t maxBytes = DefaultMaxPixelBytes);

/// Encodes L, LA, RGB or RGBA pixels of 8 or 16 bits and depth 1 with quality 95; the picture's bottom row is
/// the first in memory. JPEG holds neither alpha nor 16 bits: alpha is left out, samples are rounded to
/// 8 bits. False, with one line in `error` that starts with `name`, for any other pixels and for sides over
/// 65500.
OSG_SYSTEMLIB_DLLMAPPING bool encodeJPEG(const PixelView &in, const std::string &name,
                                         std::vector<std::uint8_t> &out, std::string &error);

OSG_END_NAMESPACE

#endif
