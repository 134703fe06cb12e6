#ifndef _OSGDICOMHEAD_H_
#define _OSGDICOMHEAD_H_

/// \file
/// What a file of DICOM says of its pictures, ahead of their samples.

#include <cstdint>
#include <string>
#include <vector>

#include "OSGDICOMElements.h"
#include "OSGDICOMSeries.h"

OSG_BEGIN_NAMESPACE

namespace dicom
{

enum Tag : std::uint32_t
{
    Modality = 0x00080060,
    SeriesDescription = 0x0008103e,
    SliceThickness = 0x00180050,
    SliceDistance = 0x00180088,
    ImagerSpacing = 0x00181164,
    SeriesId = 0x0020000e,
    InstanceNumber = 0x00200013,
    Position = 0x00200032,
    Orientation = 0x00200037,
    PlanePosition = 0x00209113,
    PlaneOrientation = 0x00209116,
    Samples = 0x00280002,
    Photometric = 0x00280004,
    FrameCount = 0x00280008,
    Rows = 0x00280010,
    Columns = 0x00280011,
    PixelSpacing = 0x00280030,
    Allocated = 0x00280100,
    Stored = 0x00280101,
    HighBit = 0x00280102,
    Representation = 0x00280103,
    Intercept = 0x00281052,
    Slope = 0x00281053,
    RescaleType = 0x00281054,
    PixelMeasures = 0x00289110,
    ValueTransformation = 0x00289145,
    Shared = 0x52009229,
    PerFrame = 0x52009230,
    Pixels = 0x7fe00010
};

/// The kind of picture that a file holds, and what its samples stand for frame by frame.
struct FileHead
{
    std::string fileName;
    int columns = 0;
    int rows = 0;
    long frames = 1;
    int samples = 1;
    int allocated = 0;
    int stored = 0;
    int highBit = 0;
    bool sign = false;
    bool turned = false;
    std::string unit;
    std::vector<double> slopes;
    std::vector<double> intercepts;

    std::size_t sampleBytes() const { return std::size_t(allocated) / 8; }
    std::uint64_t pixels() const { return std::uint64_t(columns) * std::uint64_t(rows); }
};

/// A file's elements with its bytes.
struct Source
{
    const std::uint8_t *bytes = nullptr;
    DICOMElements elements;

    const DICOMSet &set() const { return elements.set; }
};

/// The value of that tag, or null.
const DICOMValue *findValue(const DICOMSet &set, Tag tag);

/// Text of a file, fit for one line of a log.
std::string shown(const std::string &text);

/// Reads a file's head; its frames are added to `frames`. False with a fault.
bool readHead(const std::uint8_t *bytes, std::size_t size, const std::string &fileName, FileHead &head,
              std::vector<DICOMFrame> &frames, std::string &fault);

} // namespace dicom

OSG_END_NAMESPACE

#endif
