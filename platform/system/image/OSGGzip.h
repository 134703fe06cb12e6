#ifndef _OSGGZIP_H_
#define _OSGGZIP_H_

/// \file
/// Unpacks a part of a gzip file that lies in memory.

#include "OSGPixelBuffer.h"

OSG_BEGIN_NAMESPACE

/// True where the bytes start as a gzip file does.
OSG_SYSTEMLIB_DLLMAPPING bool isGzip(const std::uint8_t *bytes, std::size_t size);

/// Unpacks `want` bytes that start `skip` bytes into the unpacked file to `out`, which is shorter where the
/// file ends before. `out` grows with what is unpacked, never ahead of it by more than its own size. `total`
/// is the size of the unpacked file; where `stopEarly` is set, unpacking ends as soon as `out` is full, and
/// the check sums go unread. False, with one line in `error`, where the packed bytes are broken or cut short,
/// or unpack to more than `maxBytes`.
OSG_SYSTEMLIB_DLLMAPPING bool unpackGzip(const std::uint8_t *bytes, std::size_t size, std::uint64_t skip,
                                         std::uint64_t want, bool stopEarly, const std::string &name,
                                         std::uint64_t maxBytes, std::vector<std::uint8_t> &out,
                                         std::uint64_t &total, std::string &error);

OSG_END_NAMESPACE

#endif
