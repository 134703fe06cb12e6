#ifndef _OSGNIFTICODEC_H_
#define _OSGNIFTICODEC_H_

/// \file
/// NIfTI-1 volumes from memory; libniftiio reads the header.

#include "OSGPixelBuffer.h"

OSG_BEGIN_NAMESPACE

/// Decodes a single-file NIfTI-1 volume, packed by gzip or not, of either byte order. Scalars come as L with
/// 8 or 16 bits (OSGSampleConversion.h says how, with the header's slope and intercept), RGB24 as RGB and
/// RGBA32 as RGBA. Voxels stay in the order in which they are stored. Of several frames the first is taken,
/// with a notice. The spacing is the size of the header's pixdim; 1 where that is 0 or not finite.
///
/// The header is checked against the bytes that are there before any memory is asked for. False, with one
/// line in `error` that names the file, the fault and the byte (of the unpacked file), where the file is
/// broken, too short, over `maxBytes` or of a kind that is not read: Analyze 7.5, header and voxels in two
/// files, NIfTI-2, bits, complex numbers, 128-bit floats.
OSG_SYSTEMLIB_DLLMAPPING bool decodeNIFTI(const std::uint8_t *bytes, std::size_t size,
                                          const std::string &name, PixelData &out, std::string &error,
                                          std::uint64_t maxBytes = DefaultMaxPixelBytes);

OSG_END_NAMESPACE

#endif
