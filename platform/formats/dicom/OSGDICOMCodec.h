#ifndef _OSGDICOMCODEC_H_
#define _OSGDICOMCODEC_H_

/// \file
/// DICOM files and folders of them, through GDCM.

#include "OSGPixelBuffer.h"

OSG_BEGIN_NAMESPACE

/// Reads a folder of DICOM files as one volume, or one file, of one frame or of many. A folder's own files
/// are looked at, not its folders'; those without "DICM" at byte 128 are passed over, those that are broken
/// or hold no scalar picture are left out with a notice. planDICOMVolume (OSGDICOMSeries.h) chooses and
/// orders the slices.
///
/// Grey samples of 8 to 32 bits, plain, as run lengths, or packed in a way that GDCM unpacks, come as L with 8 or 16 bits
/// (OSGSampleConversion.h says how; signed ones less their minimum). MONOCHROME1, where the largest sample is
/// the darkest, is turned over. The values that samples stand for are those of rescale slope and intercept;
/// where these differ among the slices, as with PET, all values are scaled together from floats. Their unit
/// is "HU" where the modality is CT or the rescale type is HU.
///
/// A volume is x along the rows, y along the columns, downwards, as in the file, and z along the normal,
/// which is right-handed. One frame alone is a picture: the first row in memory is the bottom row. The
/// spacing is in mm.
///
/// False, with one line in `error` that names the file and the fault, where nothing can be read, the result
/// is over `maxBytes`, or the picture is in colour, deflated, or in a file without "DICM"; `out` is then
/// empty. GDCM works in a process of its own, a fork of this one that only unpacks pixels, so that what it asserts
/// against in damaged files ends that one alone.
bool readDICOM(const std::string &path, PixelData &out, std::string &error,
               std::uint64_t maxBytes = DefaultMaxPixelBytes);

/// The same of one file in memory; `name` stands in messages only.
bool decodeDICOM(const std::uint8_t *bytes, std::size_t size, const std::string &name, PixelData &out,
                 std::string &error, std::uint64_t maxBytes = DefaultMaxPixelBytes);

OSG_END_NAMESPACE

#endif
