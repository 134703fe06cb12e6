#ifndef _OSGNRRDCODEC_H_
#define _OSGNRRDCODEC_H_

/// \file
/// NRRD volumes, with their voxels in the same file or beside it, through teem.

#include "OSGPixelBuffer.h"

OSG_BEGIN_NAMESPACE

/// Decodes a NRRD of two or three axes, of any type but blocks, either byte order, and the encodings raw,
/// ascii, hex, gzip and, where teem has it, bzip2. Scalars come as L with 8 or 16 bits
/// (OSGSampleConversion.h says how). A first axis of 3 or 4 uint8 that is a colour or vector (by its kind, or
/// because there are four axes) makes RGB or RGBA, one of 1 sample L; of a further last axis the first part
/// is taken, with a notice. Voxels stay in the order in which they are stored, but two axes are a picture:
/// the first row in memory is then the last of the file.
///
/// The spacing is an axis's spacing, or else the length of its space direction, in the file's unit; 1 for an
/// axis that states neither.
///
/// `folder` is where names of detached files start from; null where there is none, then detached files are
/// refused. Detached files must be regular files. The header is checked against the bytes that are there
/// before memory is asked for. One NRRD at a time is read in a process, since teem is not safe for threads.
/// False, with one line in `error` that names the file and the fault, where the file is broken, cut off, over
/// `maxBytes` or of a kind that is not read; `out` is then empty.
bool decodeNRRD(const std::uint8_t *bytes, std::size_t size, const std::string *folder,
                const std::string &name, PixelData &out, std::string &error,
                std::uint64_t maxBytes = DefaultMaxPixelBytes);

OSG_END_NAMESPACE

#endif
