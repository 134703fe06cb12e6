/// \file
/// First the heads of all files, then the plan of the volume, then the pixels of the slices that it names.

#include "OSGDICOMCodec.h"

#include <gdcmImage.h>
#include <gdcmImageReader.h>
#include <gdcmTrace.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <filesystem>
#include <istream>
#include <limits>
#include <locale>
#include <sstream>
#include <streambuf>

#include "OSGDICOMElements.h"
#include "OSGDICOMSeries.h"
#include "OSGSampleConversion.h"

OSG_BEGIN_NAMESPACE

namespace
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

/// Frames of one file; a scan has thousands at most.
constexpr long MaxFrames = 1 << 20;

/// A stream over bytes that stay where they are.
class ByteBuffer : public std::streambuf
{
  public:
    ByteBuffer(const std::uint8_t *bytes, std::size_t size)
    {
        char *first = const_cast<char *>(reinterpret_cast<const char *>(bytes));
        setg(first, first, first + size);
    }

  protected:
    pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode) override
    {
        const off_type start = from == std::ios_base::beg   ? 0
                               : from == std::ios_base::cur ? gptr() - eback()
                                                            : egptr() - eback();
        const off_type at = start + offset;
        if(at < 0 || at > egptr() - eback())
            return pos_type(off_type(-1));
        setg(eback(), eback() + at, egptr());
        return pos_type(at);
    }
    pos_type seekpos(pos_type at, std::ios_base::openmode which) override
    {
        return seekoff(off_type(at), std::ios_base::beg, which);
    }
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

const DICOMValue *findValue(const DICOMSet &set, Tag tag)
{
    const auto found = set.values.find(tag);
    return found == set.values.end() ? nullptr : &found->second;
}

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

/// Text of a file, fit for one line of a log.
std::string shown(const std::string &text)
{
    std::string line = text.substr(0, 64);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c < 32 || c > 126; }, '?');
    return line;
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

/// Reads a file's head; its frames are added to `frames`. False with a fault.
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

void append(std::vector<std::uint8_t> &bytes, std::uint32_t value, int count)
{
    for(int i = 0; i < count; ++i)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

/// One element with explicit representation, little endian; its value must be of even length.
void append(std::vector<std::uint8_t> &bytes, std::uint32_t tag, const char *representation,
            const std::vector<std::uint8_t> &value)
{
    append(bytes, tag >> 16, 2);
    append(bytes, tag, 2);
    bytes.insert(bytes.end(), representation, representation + 2);
    append(bytes, static_cast<std::uint32_t>(value.size()), 2);
    bytes.insert(bytes.end(), value.begin(), value.end());
}

std::vector<std::uint8_t> padded(std::string text, char with)
{
    if(text.size() % 2 == 1)
        text += with;
    return {text.begin(), text.end()};
}

std::vector<std::uint8_t> number(int value)
{
    return {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8)};
}

/// A file of nothing but checked elements and the packed pixels. GDCM ends the process where an element that
/// it looks at is not as it expects, so it sees none of the file's own.
std::vector<std::uint8_t> plainFile(const Source &source, const FileHead &head, const DICOMValue &pixels)
{
    std::vector<std::uint8_t> syntax, file(128, 0);
    append(syntax, 0x00020010, "UI", padded(source.elements.syntax, 0));
    for(char c : {'D', 'I', 'C', 'M'})
        file.push_back(static_cast<std::uint8_t>(c));
    std::vector<std::uint8_t> length;
    append(length, static_cast<std::uint32_t>(syntax.size()), 4);
    append(file, 0x00020000, "UL", length);
    file.insert(file.end(), syntax.begin(), syntax.end());
    append(file, 0x00080016, "UI", padded("1.2.840.10008.5.1.4.1.1.7.3", 0));
    append(file, 0x00080018, "UI", padded("1.2.3", 0));
    append(file, Samples, "US", number(1));
    append(file, Photometric, "CS", padded("MONOCHROME2", ' '));
    append(file, FrameCount, "IS", padded(std::to_string(head.frames), ' '));
    append(file, Rows, "US", number(head.rows));
    append(file, Columns, "US", number(head.columns));
    append(file, Allocated, "US", number(head.allocated));
    append(file, Stored, "US", number(head.stored));
    append(file, HighBit, "US", number(head.highBit));
    append(file, Representation, "US", number(head.sign ? 1 : 0));
    append(file, Pixels >> 16, 2);
    append(file, Pixels, 2);
    file.insert(file.end(), {'O', 'B', 0, 0, 0xff, 0xff, 0xff, 0xff});
    file.insert(file.end(), source.bytes + pixels.offset, source.bytes + pixels.offset + pixels.length);
    return file;
}

/// The ways of packing that are handed to GDCM.
bool isPackedSyntax(const std::string &syntax)
{
    static const char *const ids[] = {
        "1.2.840.10008.1.2.4.50", "1.2.840.10008.1.2.4.51", "1.2.840.10008.1.2.4.57",
        "1.2.840.10008.1.2.4.70", "1.2.840.10008.1.2.4.80", "1.2.840.10008.1.2.4.81",
        "1.2.840.10008.1.2.4.90", "1.2.840.10008.1.2.4.91", "1.2.840.10008.1.2.5"};
    return std::any_of(std::begin(ids), std::end(ids), [&](const char *id) { return syntax == id; });
}

bool unpackByGDCM(const Source &source, const FileHead &head, const DICOMValue &pixels, std::uint64_t wanted,
                  std::vector<std::uint8_t> &samples, std::string &fault)
{
    const std::vector<std::uint8_t> file = plainFile(source, head, pixels);
    ByteBuffer buffer(file.data(), file.size());
    std::istream stream(&buffer);
    gdcm::ImageReader reader;
    reader.SetStream(stream);
    if(!reader.Read() || reader.GetImage().GetBufferLength() != wanted ||
       !reader.GetImage().GetBuffer(reinterpret_cast<char *>(samples.data())))
    {
        fault = "GDCM can't unpack its pixels";
        return false;
    }
    return true;
}

/// Copies samples that are not packed, in the machine's byte order.
void copySamples(const Source &source, const FileHead &head, const DICOMValue &pixels,
                 std::vector<std::uint8_t> &samples)
{
    std::memcpy(samples.data(), source.bytes + pixels.offset, samples.size());
    const std::uint16_t one = 1;
    const bool machineIsBig = *reinterpret_cast<const std::uint8_t *>(&one) == 0;
    if(source.elements.bigEndian == machineIsBig)
        return;
    // Words of two samples of 8 bits are turned as well.
    const std::size_t width = head.sampleBytes() > 1 ? head.sampleBytes() : pixels.words ? 2 : 1;
    for(std::size_t i = 0; i + width <= samples.size(); i += width)
        std::reverse(samples.begin() + std::ptrdiff_t(i), samples.begin() + std::ptrdiff_t(i + width));
}

/// Takes or unpacks the samples of all frames of a file.
bool readSamples(const std::uint8_t *bytes, std::size_t size, const FileHead &head, std::uint64_t maxBytes,
                 std::vector<std::uint8_t> &samples, std::string &fault)
{
    Source source;
    source.bytes = bytes;
    if(!readDICOMElements(bytes, size, source.elements, fault))
        return false;
    const DICOMValue *pixels = findValue(source.set(), Pixels);
    const std::uint64_t wanted = head.pixels() * std::uint64_t(head.frames) * head.sampleBytes();
    if(!pixels)
    {
        fault = "no pixels";
        return false;
    }
    if(!pixels->encapsulated && pixels->length < wanted)
    {
        fault = std::to_string(pixels->length) + " bytes of pixels instead of " + std::to_string(wanted);
        return false;
    }
    if(pixels->encapsulated && !isPackedSyntax(source.elements.syntax))
    {
        fault = "the transfer syntax " + shown(source.elements.syntax) + " is not read";
        return false;
    }
    std::string line;
    if(!allocatePixels(samples, wanted, maxBytes, "", line))
    {
        fault = line.substr(2);
        return false;
    }
    if(pixels->encapsulated)
        return unpackByGDCM(source, head, *pixels, wanted, samples, fault);
    copySamples(source, head, *pixels, samples);
    return true;
}

/// Brings the stored bits to the whole width of T: what lies above them is dropped, the sign is carried on.
template <class T, class Unsigned>
void takeStored(std::uint8_t *samples, std::size_t count, int stored, int highBit)
{
    const int width = 8 * int(sizeof(T));
    if(highBit != stored - 1 || stored >= width)
        return;
    const int shift = width - stored;
    for(std::size_t i = 0; i < count; ++i)
    {
        Unsigned sample;
        std::memcpy(&sample, samples + i * sizeof(T), sizeof(T));
        const T high = static_cast<T>(static_cast<Unsigned>(sample << shift));
        const T value = static_cast<T>(high >> shift);
        std::memcpy(samples + i * sizeof(T), &value, sizeof(T));
    }
}

void takeStored(const FileHead &head, std::vector<std::uint8_t> &samples)
{
    const std::size_t count = samples.size() / head.sampleBytes();
    switch(head.sampleBytes())
    {
    case 1:
        head.sign ? takeStored<std::int8_t, std::uint8_t>(samples.data(), count, head.stored, head.highBit)
                  : takeStored<std::uint8_t, std::uint8_t>(samples.data(), count, head.stored, head.highBit);
        break;
    case 2:
        head.sign
            ? takeStored<std::int16_t, std::uint16_t>(samples.data(), count, head.stored, head.highBit)
            : takeStored<std::uint16_t, std::uint16_t>(samples.data(), count, head.stored, head.highBit);
        break;
    default:
        head.sign
            ? takeStored<std::int32_t, std::uint32_t>(samples.data(), count, head.stored, head.highBit)
            : takeStored<std::uint32_t, std::uint32_t>(samples.data(), count, head.stored, head.highBit);
    }
}

SampleType sampleTypeOf(const FileHead &head)
{
    switch(head.sampleBytes())
    {
    case 1:
        return head.sign ? SampleType::Int8 : SampleType::UInt8;
    case 2:
        return head.sign ? SampleType::Int16 : SampleType::UInt16;
    default:
        return head.sign ? SampleType::Int32 : SampleType::UInt32;
    }
}

template <class T>
void valuesOf(const std::uint8_t *samples, std::size_t count, double slope, double intercept,
              std::uint8_t *out)
{
    for(std::size_t i = 0; i < count; ++i)
    {
        T sample;
        std::memcpy(&sample, samples + i * sizeof(T), sizeof(T));
        const float value = static_cast<float>(double(sample) * slope + intercept);
        std::memcpy(out + i * sizeof(float), &value, sizeof(float));
    }
}

/// What one frame's samples stand for, as floats.
void valuesOf(SampleType type, const std::uint8_t *samples, std::size_t count, double slope, double intercept,
              std::uint8_t *out)
{
    switch(type)
    {
    case SampleType::Int8:
        return valuesOf<std::int8_t>(samples, count, slope, intercept, out);
    case SampleType::UInt8:
        return valuesOf<std::uint8_t>(samples, count, slope, intercept, out);
    case SampleType::Int16:
        return valuesOf<std::int16_t>(samples, count, slope, intercept, out);
    case SampleType::UInt16:
        return valuesOf<std::uint16_t>(samples, count, slope, intercept, out);
    case SampleType::Int32:
        return valuesOf<std::int32_t>(samples, count, slope, intercept, out);
    default:
        return valuesOf<std::uint32_t>(samples, count, slope, intercept, out);
    }
}

/// Turns converted samples over, so that the largest is the darkest, and what they stand for with them.
void turnOver(PixelData &out)
{
    const unsigned most = out.dataType == SampleUInt8 ? 255u : 65535u;
    unsigned high = 0;
    const std::size_t bytes = out.dataType == SampleUInt8 ? 1 : 2, count = out.data.size() / bytes;
    const auto sampleAt = [&](std::size_t i) {
        std::uint16_t sample = out.data[i];
        if(bytes == 2)
            std::memcpy(&sample, out.data.data() + 2 * i, 2);
        return sample;
    };
    for(std::size_t i = 0; i < count; ++i)
        high = std::max<unsigned>(high, sampleAt(i));
    high = std::min(high, most);
    for(std::size_t i = 0; i < count; ++i)
    {
        const std::uint16_t sample = static_cast<std::uint16_t>(high - sampleAt(i));
        if(bytes == 2)
            std::memcpy(out.data.data() + 2 * i, &sample, 2);
        else
            out.data[i] = static_cast<std::uint8_t>(sample);
    }
    out.valueIntercept += out.valueSlope * high;
    out.valueSlope = -out.valueSlope;
}

void turnRows(std::vector<std::uint8_t> &samples, std::size_t rows)
{
    const std::size_t row = samples.size() / rows;
    for(std::size_t y = 0; y < rows / 2; ++y)
        std::swap_ranges(samples.data() + y * row, samples.data() + (y + 1) * row,
                         samples.data() + (rows - 1 - y) * row);
}

/// Hands out the bytes of a file.
class FileLoader
{
  public:
    virtual ~FileLoader() = default;
    virtual bool load(const std::string &fileName, const std::uint8_t *&bytes, std::size_t &size,
                      std::string &error) = 0;
};

class DiskLoader : public FileLoader
{
  public:
    bool load(const std::string &fileName, const std::uint8_t *&bytes, std::size_t &size,
              std::string &error) override
    {
        if(!readFileBytes(fileName, _bytes, error))
            return false;
        bytes = _bytes.data();
        size = _bytes.size();
        return true;
    }

  private:
    std::vector<std::uint8_t> _bytes;
};

class MemoryLoader : public FileLoader
{
  public:
    MemoryLoader(const std::uint8_t *bytes, std::size_t size) : _bytes(bytes), _size(size) {}
    bool load(const std::string &, const std::uint8_t *&bytes, std::size_t &size, std::string &) override
    {
        bytes = _bytes;
        size = _size;
        return true;
    }

  private:
    const std::uint8_t *_bytes;
    std::size_t _size;
};

/// The volume that the plan names, from the files that hold it.
bool buildVolume(const std::vector<FileHead> &heads, const std::vector<std::size_t> &headOf,
                 const std::vector<DICOMFrame> &frames, const DICOMPlan &plan, const std::string &name,
                 FileLoader &loader, std::uint64_t maxBytes, PixelData &out, std::string &error)
{
    const std::size_t first = plan.order.front();
    const FileHead &model = heads[headOf[first]];
    const double slope = model.slopes[frames[first].frame], intercept = model.intercepts[frames[first].frame];
    const SampleType type = sampleTypeOf(model);
    const bool alike = std::all_of(plan.order.begin(), plan.order.end(), [&](std::size_t i) {
        const FileHead &head = heads[headOf[i]];
        const std::size_t frame = frames[i].frame;
        return sampleTypeOf(head) == type && head.slopes[frame] == slope &&
               head.intercepts[frame] == intercept;
    });

    RawSamples raw;
    raw.type = alike ? type : SampleType::Float32;
    const std::size_t pixels = model.pixels(), frameBytes = pixels * sampleBytes(raw.type);
    std::vector<std::uint8_t> volume, samples;
    if(!allocatePixels(volume, std::uint64_t(frameBytes) * plan.order.size(), maxBytes, name, error))
        return false;
    std::size_t loaded = heads.size();
    for(std::size_t z = 0; z < plan.order.size(); ++z)
    {
        const std::size_t i = plan.order[z];
        const FileHead &head = heads[headOf[i]];
        if(loaded != headOf[i])
        {
            const std::uint8_t *bytes = nullptr;
            std::size_t size = 0;
            std::string fault;
            if(!loader.load(head.fileName, bytes, size, error))
                return false;
            if(!readSamples(bytes, size, head, maxBytes, samples, fault))
            {
                error = head.fileName + ": " + fault;
                return false;
            }
            takeStored(head, samples);
            loaded = headOf[i];
        }
        const std::uint8_t *from = samples.data() + frames[i].frame * pixels * head.sampleBytes();
        if(alike)
            std::memcpy(volume.data() + z * frameBytes, from, frameBytes);
        else
            valuesOf(sampleTypeOf(head), from, pixels, head.slopes[frames[i].frame],
                     head.intercepts[frames[i].frame], volume.data() + z * frameBytes);
    }
    if(plan.order.size() == 1)
        turnRows(volume, std::size_t(model.rows));

    out.width = model.columns;
    out.height = model.rows;
    out.depth = static_cast<int>(plan.order.size());
    out.pixelFormat = PixelL;
    out.hasSpacing = plan.hasSpacing;
    std::copy(plan.spacing, plan.spacing + 3, out.spacing);
    out.notices.insert(out.notices.end(), plan.notices.begin(), plan.notices.end());
    if(!alike)
        out.notices.push_back(name + ": slices differ in what their samples stand for");
    raw.bytes = volume.data();
    raw.count = pixels * plan.order.size();
    // The slope goes to what the samples stand for, not into them, so that they stay exact.
    if(!convertSamples(raw, name, maxBytes, out, error))
        return false;
    if(alike)
    {
        out.valueIntercept = slope * out.valueIntercept + intercept;
        out.valueSlope *= slope;
    }
    out.valueUnit = model.unit;
    if(model.turned)
        turnOver(out);
    return true;
}

/// Reads the head of each file, plans and builds. Broken files of a folder are left out.
bool readFiles(const std::vector<std::string> &files, bool isFolder, const std::string &name,
               FileLoader &loader, std::uint64_t maxBytes, PixelData &out, std::string &error)
{
    std::vector<FileHead> heads;
    std::vector<std::size_t> headOf;
    std::vector<DICOMFrame> frames;
    std::size_t leftOut = 0;
    std::string firstFault;
    for(const std::string &file : files)
    {
        const std::uint8_t *bytes = nullptr;
        std::size_t size = 0;
        std::string fault;
        if(!loader.load(file, bytes, size, error))
            return false;
        if(isFolder && (size < 132 || std::memcmp(bytes + 128, "DICM", 4) != 0))
            continue;
        FileHead head;
        if(readHead(bytes, size, file, head, frames, fault))
        {
            headOf.resize(frames.size(), heads.size());
            heads.push_back(head);
            continue;
        }
        frames.resize(headOf.size());
        firstFault = firstFault.empty() ? file + ": " + fault : firstFault;
        ++leftOut;
    }
    if(heads.empty())
    {
        error = firstFault.empty() ? name + ": no DICOM files in this folder" : firstFault;
        return false;
    }
    if(leftOut > 0)
        out.notices.push_back(name + ": " + std::to_string(leftOut) +
                              (leftOut == 1 ? " file is" : " files are") + " no slices and left out, " +
                              firstFault);
    const DICOMPlan plan = planDICOMVolume(frames, name);
    return buildVolume(heads, headOf, frames, plan, name, loader, maxBytes, out, error);
}

void quietenGDCM()
{
    static const bool quiet = [] {
        gdcm::Trace::DebugOff();
        gdcm::Trace::WarningOff();
        gdcm::Trace::ErrorOff();
        return true;
    }();
    static_cast<void>(quiet);
}

/// The same, with what GDCM and the standard library throw brought to a line.
bool readGuarded(const std::vector<std::string> &files, bool isFolder, const std::string &name,
                 FileLoader &loader, std::uint64_t maxBytes, PixelData &out, std::string &error)
{
    quietenGDCM();
    bool done = false;
    try
    {
        done = readFiles(files, isFolder, name, loader, maxBytes, out, error);
    }
    catch(const std::exception &)
    {
        // The words of these name places in GDCM's code, which help nobody.
        error = name + ": GDCM can't read it";
    }
    if(!done)
        out = PixelData();
    return done;
}

} // namespace

bool readDICOM(const std::string &path, PixelData &out, std::string &error, std::uint64_t maxBytes)
{
    namespace fs = std::filesystem;
    out = PixelData();
    error.clear();
    std::error_code code;
    const bool isFolder = fs::is_directory(path, code);
    std::vector<std::string> files;
    if(!isFolder)
        files.push_back(path);
    else
    {
        for(fs::directory_iterator at(path, code), end; !code && at != end; at.increment(code))
        {
            std::error_code ignored;
            if(at->is_regular_file(ignored))
                files.push_back(at->path().string());
        }
        if(code)
        {
            error = path + ": can't be listed: " + code.message();
            return false;
        }
        // The order of a folder is chance; notices and doubles must not follow it.
        std::sort(files.begin(), files.end());
    }
    DiskLoader loader;
    return readGuarded(files, isFolder, path, loader, maxBytes, out, error);
}

bool decodeDICOM(const std::uint8_t *bytes, std::size_t size, const std::string &name, PixelData &out,
                 std::string &error, std::uint64_t maxBytes)
{
    out = PixelData();
    error.clear();
    MemoryLoader loader(bytes, size);
    return readGuarded({name}, false, name, loader, maxBytes, out, error);
}

OSG_END_NAMESPACE
