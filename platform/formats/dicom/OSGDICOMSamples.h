#ifndef _OSGDICOMSAMPLES_H_
#define _OSGDICOMSAMPLES_H_

/// \file
/// The samples of the frames of a file of DICOM.

#include <cstdint>
#include <string>
#include <vector>

#include "OSGDICOMHead.h"
#include "OSGSampleConversion.h"

OSG_BEGIN_NAMESPACE

namespace dicom
{

/// Takes or unpacks the samples of all frames of a file. False with a fault.
bool readSamples(const std::uint8_t *bytes, std::size_t size, const FileHead &head, std::uint64_t maxBytes,
                 std::vector<std::uint8_t> &samples, std::string &fault);

/// Brings the stored bits to the whole width of a sample: what lies above them is dropped, the sign is carried
/// on.
void takeStored(const FileHead &head, std::vector<std::uint8_t> &samples);

SampleType sampleTypeOf(const FileHead &head);

/// What one frame's samples stand for, as floats, to `out`.
void valuesOf(SampleType type, const std::uint8_t *samples, std::size_t count, double slope, double intercept,
              std::uint8_t *out);

/// Keeps GDCM from talking on standard error.
void quietenGDCM();

} // namespace dicom

OSG_END_NAMESPACE

#endif
