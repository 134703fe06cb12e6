/// \file
/// Heads: sizes, bits, what samples stand for, and the place of each frame.

#include "OSGDICOMHead.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>

OSG_BEGIN_NAMESPACE

namespace dicom
{

const DICOMValue *findValue(const DICOMSet &set, Tag tag)
{
    const auto found = set.values.find(tag);
    return found == set.values.end() ? nullptr : &found->second;
}

std::string shown(const std::string &text)
{
    std::string line = text.substr(0, 64);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c < 32 || c > 126; }, '?');
    return line;
}

namespace
{

/// Frames of one file; a scan has thousands at most.
constexpr long MaxFrames = 1 << 20;
std::string textOf(const Source &source, const DICOMSet &set, Tag tag)
{
    const DICOMValue *value = findValue(set, tag);
    if(!value)
        return {};
    std::string text(reinterpret_cast<const char *>(source.bytes + value->offset),
                     std::min<std::size_t>(value->length, 1024));
    while(!text.empty() && (text.back() == 0 || text.back() == ' '))
        text.pop_back();
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? std::string() : text.substr(first);
}

/// Numbers as text, parted by backslashes; false where there are fewer than wanted.
bool numbersOf(const std::string &text, double *numbers, int count)
{
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    std::string word;
    for(int i = 0; i < count; ++i)
    {
        if(!std::getline(in, word, '\\'))
            return false;
        std::istringstream one(word);
        one.imbue(std::locale::classic());
        if(!(one >> numbers[i]) || !std::isfinite(numbers[i]))
            return false;
    }
    return true;
}

/// A binary number of two bytes, or the value without it.
int shortOf(const Source &source, Tag tag, int without)
{
    const DICOMValue *value = findValue(source.set(), tag);
    if(!value || value->length < 2)
        return without;
    const std::uint8_t *at = source.bytes + value->offset;
    return source.elements.bigEndian ? (at[0] << 8) | at[1] : (at[1] << 8) | at[0];
}

/// The item of a sequence with that number, or null.
const DICOMSet *itemOf(const DICOMSet &set, Tag tag, std::size_t number)
{
    const DICOMValue *value = findValue(set, tag);
    return value && number < value->items.size() ? &value->items[number] : nullptr;
}

/// A value of one frame: from the frame's own group, the group that all frames share, or the file's head.
std::string frameText(const Source &source, std::size_t frame, Tag group, Tag tag)
{
    const std::pair<Tag, std::size_t> places[] = {{PerFrame, frame}, {Shared, 0}};
    for(const auto &place : places)
    {
        const DICOMSet *whole = itemOf(source.set(), place.first, place.second);
        const DICOMSet *item = whole ? itemOf(*whole, group, 0) : nullptr;
        if(item && findValue(*item, tag))
            return textOf(source, *item, tag);
    }
    return textOf(source, source.set(), tag);
}

/// What one frame says of its place.
DICOMFrame frameOf(const Source &source, std::size_t number, const FileHead &head)
{
    DICOMFrame frame;
    frame.fileName = head.fileName;
    frame.frame = static_cast<unsigned>(number);
    frame.series = textOf(source, source.set(), SeriesId);
    frame.description = textOf(source, source.set(), SeriesDescription);
    frame.columns = head.columns;
    frame.rows = head.rows;
    frame.kind = head.turned ? "turned" : "";
    double directions[6], spacing[2], one = 0.0;
    frame.hasPosition = numbersOf(frameText(source, number, PlanePosition, Position), frame.position, 3) &&
                        numbersOf(frameText(source, number, PlaneOrientation, Orientation), directions, 6);
    // The frames of an older file share the one position that there is.
    if(head.frames > 1 && !findValue(source.set(), PerFrame))
        frame.hasPosition = false;
    if(frame.hasPosition)
    {
        std::copy(directions, directions + 3, frame.across);
        std::copy(directions + 3, directions + 6, frame.down);
    }
    // From row to row first.
    if(numbersOf(frameText(source, number, PixelMeasures, PixelSpacing), spacing, 2) ||
       numbersOf(textOf(source, source.set(), ImagerSpacing), spacing, 2))
    {
        frame.pixelSpacing[0] = std::fabs(spacing[1]);
        frame.pixelSpacing[1] = std::fabs(spacing[0]);
    }
    if(numbersOf(frameText(source, number, PixelMeasures, SliceDistance), &one, 1) ||
       numbersOf(frameText(source, number, PixelMeasures, SliceThickness), &one, 1))
        frame.apart = std::fabs(one);
    if(numbersOf(textOf(source, source.set(), InstanceNumber), &one, 1) && std::fabs(one) < 1e9)
        frame.number = std::lround(one);
    return frame;
}

/// What is wrong with the picture, or nothing.
std::string findFault(const FileHead &head, const std::string &photometric)
{
    if(head.columns < 1 || head.rows < 1)
        return "no picture";
    if(head.samples != 1 || (photometric != "MONOCHROME1" && photometric != "MONOCHROME2"))
        return "pictures in colour (" + shown(photometric) + ") are not read";
    if(head.frames < 1 || head.frames > MaxFrames)
        return std::to_string(head.frames) + " frames are not read";
    if(!(head.allocated == 8 || head.allocated == 16 || head.allocated == 32) || head.stored < 1 ||
       head.stored > head.allocated)
        return "samples of " + std::to_string(head.stored) + " in " + std::to_string(head.allocated) +
               " bits are not read";
    return {};
}

} // namespace

bool readHead(const std::uint8_t *bytes, std::size_t size, const std::string &fileName, FileHead &head,
              std::vector<DICOMFrame> &frames, std::string &fault)
{
    Source source;
    source.bytes = bytes;
    if(!readDICOMElements(bytes, size, source.elements, fault))
        return false;
    head.fileName = fileName;
    head.columns = shortOf(source, Columns, 0);
    head.rows = shortOf(source, Rows, 0);
    head.samples = shortOf(source, Samples, 1);
    head.allocated = shortOf(source, Allocated, 0);
    head.stored = shortOf(source, Stored, head.allocated);
    head.highBit = shortOf(source, HighBit, head.stored - 1);
    head.sign = shortOf(source, Representation, 0) == 1;
    double count = 1.0;
    if(numbersOf(textOf(source, source.set(), FrameCount), &count, 1))
        head.frames = std::lround(std::clamp(count, 0.0, double(MaxFrames) + 1.0));
    const std::string photometric = textOf(source, source.set(), Photometric);
    head.turned = photometric == "MONOCHROME1";
    fault = findFault(head, photometric);
    if(!fault.empty())
        return false;
    // Each frame takes a few bytes at least, however well it is packed.
    if(std::uint64_t(head.frames) > size)
    {
        fault =
            std::to_string(head.frames) + " frames can't be in a file of " + std::to_string(size) + " bytes";
        return false;
    }
    bool hounsfield = textOf(source, source.set(), Modality) == "CT";
    for(long i = 0; i < head.frames; ++i)
    {
        const std::size_t number = static_cast<std::size_t>(i);
        double slope = 1.0, intercept = 0.0;
        numbersOf(frameText(source, number, ValueTransformation, Slope), &slope, 1);
        numbersOf(frameText(source, number, ValueTransformation, Intercept), &intercept, 1);
        head.slopes.push_back(slope != 0.0 ? slope : 1.0);
        head.intercepts.push_back(intercept);
        hounsfield = hounsfield || frameText(source, number, ValueTransformation, RescaleType) == "HU";
        frames.push_back(frameOf(source, number, head));
    }
    head.unit = hounsfield ? "HU" : "";
    return true;
}

} // namespace dicom

OSG_END_NAMESPACE
