/// \file
/// Samples as they lie in a file, unpacked by GDCM where they are packed.

#include "OSGDICOMSamples.h"

#include <gdcmImage.h>
#include <gdcmImageReader.h>
#include <gdcmTrace.h>

#include <algorithm>
#include <cstring>
#include <istream>
#include <streambuf>

OSG_BEGIN_NAMESPACE

namespace dicom
{

namespace
{

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

} // namespace

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

} // namespace dicom

OSG_END_NAMESPACE
