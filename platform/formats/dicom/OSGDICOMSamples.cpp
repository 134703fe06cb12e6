/// \file
/// Samples as they lie in a file, unpacked by GDCM where they are packed.

#include "OSGDICOMSamples.h"

#include <gdcmImage.h>
#include <gdcmImageReader.h>
#include <gdcmTrace.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <exception>
#include <istream>
#include <streambuf>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "OSGDICOMRunLengths.h"

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

/// Unpacked here: GDCM reads out of bounds where these are damaged.
constexpr const char *RunLengths = "1.2.840.10008.1.2.5";

/// The ways of packing that are handed to GDCM.
bool isPackedSyntax(const std::string &syntax)
{
    static const char *const ids[] = {
        "1.2.840.10008.1.2.4.50", "1.2.840.10008.1.2.4.51", "1.2.840.10008.1.2.4.57",
        "1.2.840.10008.1.2.4.70", "1.2.840.10008.1.2.4.80", "1.2.840.10008.1.2.4.81",
        "1.2.840.10008.1.2.4.90", "1.2.840.10008.1.2.4.91"};
    return std::any_of(std::begin(ids), std::end(ids), [&](const char *id) { return syntax == id; });
}

/// Reads the plain file to `out`. Ends the process where the pixels are damaged in a way that GDCM asserts
/// against.
bool readByGDCM(const std::vector<std::uint8_t> &file, std::uint64_t wanted, char *out)
{
    try
    {
        ByteBuffer buffer(file.data(), file.size());
        std::istream stream(&buffer);
        gdcm::ImageReader reader;
        reader.SetStream(stream);
        return reader.Read() && reader.GetImage().GetBufferLength() == wanted && reader.GetImage().GetBuffer(out);
    }
    catch(const std::exception &)
    {
        return false;
    }
}

/// Memory that a child process shares with this one.
class SharedBytes
{
  public:
    explicit SharedBytes(std::size_t size)
        : _size(size),
          _bytes(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
    {}
    ~SharedBytes()
    {
        if(there())
            munmap(_bytes, _size);
    }
    SharedBytes(const SharedBytes &) = delete;
    SharedBytes &operator=(const SharedBytes &) = delete;

    bool there() const { return _bytes != MAP_FAILED; }
    char *get() const { return static_cast<char *>(_bytes); }

  private:
    std::size_t _size;
    void *_bytes;
};

/// Longer than any file takes.
constexpr std::chrono::minutes Patience(5);

/// Waits for a child's end, and ends it where that takes too long.
void waitFor(pid_t child)
{
    const auto last = std::chrono::steady_clock::now() + Patience;
    auto pause = std::chrono::microseconds(50);
    while(waitpid(child, nullptr, WNOHANG) == 0)
    {
        if(std::chrono::steady_clock::now() > last)
        {
            kill(child, SIGKILL);
            waitpid(child, nullptr, 0);
            return;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, std::chrono::microseconds(5000));
    }
}

/// Has GDCM unpack in a process of its own: Debian's asserts against what damaged pixels hold, and an assertion
/// ends its process. The last of the shared bytes says that the samples are there.
bool unpackByGDCM(const Source &source, const FileHead &head, const DICOMValue &pixels, std::uint64_t wanted,
                  std::vector<std::uint8_t> &samples, std::string &fault)
{
    fault = "GDCM can't unpack its pixels";
    const std::vector<std::uint8_t> file = plainFile(source, head, pixels);
    const SharedBytes shared(std::size_t(wanted) + 1);
    if(!shared.there())
        return false;
    const pid_t child = fork();
    if(child < 0)
        return false;
    if(child == 0)
    {
        const rlimit none = {0, 0};
        setrlimit(RLIMIT_CORE, &none);
        signal(SIGABRT, SIG_DFL);
        signal(SIGSEGV, SIG_DFL);
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDERR_FILENO);
        dup2(nowhere, STDOUT_FILENO);
        shared.get()[wanted] = readByGDCM(file, wanted, shared.get()) ? 1 : 0;
        _exit(0);
    }
    waitFor(child);
    if(shared.get()[wanted] != 1)
        return false;
    std::memcpy(samples.data(), shared.get(), std::size_t(wanted));
    fault.clear();
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
    const bool runLengths = source.elements.syntax == RunLengths;
    if(pixels->encapsulated && !runLengths && !isPackedSyntax(source.elements.syntax))
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
    if(pixels->encapsulated && runLengths)
        return unpackRunLengths(bytes + pixels->offset, pixels->length, std::size_t(head.frames),
                                std::size_t(head.pixels()), head.sampleBytes(), samples.data(), fault);
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
