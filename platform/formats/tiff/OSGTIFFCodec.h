#ifndef _OSGTIFFCODEC_H_
#define _OSGTIFFCODEC_H_

/// \file
/// TIFF pictures and stacks of pages from memory, through libtiff.

#include "OSGPixelBuffer.h"

OSG_BEGIN_NAMESPACE

/// Decodes a TIFF or BigTIFF of either byte order, in strips or tiles, channels together or apart, packed in
/// every way that libtiff knows.
///
/// Grey (of 1, 2, 4, 8, 16, 32 or 64 bits, with or without sign, or floats of 32 or 64 bits) comes as L or
/// LA, RGB as RGB or RGBA, with 8 or 16 bits a sample (OSGSampleConversion.h says how). Min-is-white integers
/// are turned over; the values that samples stand for stay those of the file. Palettes, YCbCr, CMYK and Lab
/// come as RGB with 8 bits, or RGBA where there is alpha.
///
/// One page is a picture: the first row in memory is the bottom row. Several pages are a volume: page
/// by page, and each page's rows from top to bottom as in the file, so that x to the right, y downwards and z
/// away from the viewer are right-handed, as in the volumes of other formats. The pages of the size and type
/// that most pages have are taken (the largest, where numbers are equal), with a notice where others, such as
/// thumbnails, are left out. The orientation that a page notes is not applied. Of the channels and frames
/// that ImageJ notes in the description the first are taken, with a notice.
///
/// A volume has a spacing where the first page taken has a resolution, in mm where that is per inch or
/// centimetre and in the file's unit otherwise, or where the description has a line "spacing=", which is
/// the z of it; without that line z is the mean of x and y.
///
/// False, with one line in `error` that names the file and the fault, where the file is broken, cut off, over
/// `maxBytes` or of a kind that is not read; `out` is then empty. What libtiff warns of is not told.
bool decodeTIFF(const std::uint8_t *bytes, std::size_t size, const std::string &name, PixelData &out,
                std::string &error, std::uint64_t maxBytes = DefaultMaxPixelBytes);

OSG_END_NAMESPACE

#endif
