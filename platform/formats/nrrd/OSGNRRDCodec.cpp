/// \file
/// The names of detached files are checked first, then teem reads the header, and once that is known to fit
/// the files, the voxels.

#include "OSGNRRDCodec.h"

#include <locale.h>
#include <teem/biff.h>
#include <teem/nrrd.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <sstream>

#include "OSGGzip.h"
#include "OSGSampleConversion.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// teem keeps its messages and settings in globals.
std::mutex teemMutex;

/// No header is longer, be it a list of thousands of files.
constexpr std::size_t MaxHeaderSize = 1 << 20;

constexpr long MaxFiles = 65536;

/// teem puts lines that it can't read into messages of a fixed size.
constexpr std::size_t MaxLineSize = 500;

struct NukeNrrd
{
    void operator()(Nrrd *nrrd) const { nrrdNuke(nrrd); }
};

struct NixState
{
    void operator()(NrrdIoState *state) const { nrrdIoStateNix(state); }
};

struct CloseFile
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};

/// Numbers with a point on this thread, whatever the host's locale says.
class PointLocale
{
  public:
    PointLocale() : _c(newlocale(LC_ALL_MASK, "C", nullptr)), _before(_c ? uselocale(_c) : nullptr) {}
    ~PointLocale()
    {
        if(!_c)
            return;
        uselocale(_before);
        freelocale(_c);
    }
    PointLocale(const PointLocale &) = delete;
    PointLocale &operator=(const PointLocale &) = delete;

  private:
    locale_t _c;
    locale_t _before;
};

/// teem's words of the last fault in one line; its store of them is empty afterwards.
std::string teemFault()
{
    const std::unique_ptr<char, decltype(&std::free)> words(biffGetDone(NRRD), &std::free);
    std::istringstream in(words ? words.get() : "");
    // The outermost operation comes first and the cause last: "[nrrd] nrrdRead: trouble reading".
    std::string line, last;
    while(std::getline(in, line))
        if(!line.empty())
            last = line;
    const std::size_t bracket = last.find("] ");
    last = bracket == std::string::npos ? last : last.substr(bracket + 2);
    std::replace_if(
        last.begin(), last.end(), [](char c) { return c < 32 || c > 126; }, '?');
    return last.empty() ? "teem can't read it" : last.substr(0, 300);
}

std::string trim(const std::string &text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if(first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

/// The field of a header's line in small letters without spaces, as teem tells fields; none of comments and
/// of keys with values of their own.
std::string fieldOf(const std::string &line)
{
    const std::size_t colon = line.find(':');
    if(line.empty() || line[0] == '#' || colon == std::string::npos ||
       (colon + 1 < line.size() && line[colon + 1] == '='))
        return {};
    std::string field;
    for(std::size_t i = 0; i < colon; ++i)
        if(line[i] != ' ' && line[i] != '\t')
            field += static_cast<char>(std::tolower(static_cast<unsigned char>(line[i])));
    return field;
}

/// True for "slice%03d.raw": one number of moderate width, and nothing else that printf would act on.
bool isPattern(const std::string &text)
{
    const std::size_t percent = text.find('%');
    if(percent == std::string::npos || text.find('%', percent + 1) != std::string::npos)
        return false;
    const std::size_t end = text.find_first_not_of("0123456789", percent + 1);
    return end != std::string::npos && text[end] == 'd' && end - percent <= 3;
}

std::string numbered(const std::string &pattern, long number)
{
    const std::size_t percent = pattern.find('%'), end = pattern.find('d', percent);
    const std::string width = pattern.substr(percent + 1, end - percent - 1);
    char digits[128];
    std::snprintf(digits, sizeof(digits), width.rfind("0", 0) == 0 ? "%0*ld" : "%*ld",
                  width.empty() ? 0 : std::atoi(width.c_str()), number);
    return pattern.substr(0, percent) + digits + pattern.substr(end + 1);
}

/// Where the header's text ends: behind its empty line, or at 0 where there is none. teem loses memory where
/// the end comes within a line, and takes a zero for the end of one.
std::size_t headerEnd(const std::string &text)
{
    for(std::size_t at = 0; at < text.size();)
    {
        const std::size_t end = text.find('\n', at);
        if(end == std::string::npos)
            return 0;
        if(end == at || (end == at + 1 && text[at] == '\r'))
            return end + 1;
        at = end + 1;
    }
    return 0;
}

/// True where a line ahead of `end` is longer than teem stands.
bool hasLongLine(const std::string &text, std::size_t end)
{
    for(std::size_t at = 0; at < end;)
    {
        const std::size_t next = std::min(text.find('\n', at), end);
        if(next - at > MaxLineSize)
            return true;
        at = next + 1;
    }
    return false;
}

/// Where the voxels are, as the header's text tells.
struct DataFiles
{
    bool detached = false;
    std::vector<std::string> names;
};

/// False with a fault, where the text tells of files that can't be taken.
bool findDataFiles(const std::string &header, DataFiles &files, std::string &fault)
{
    std::istringstream lines(header);
    std::string line;
    while(std::getline(lines, line) && !trim(line).empty())
    {
        if(fieldOf(line) != "datafile")
            continue;
        files.detached = true;
        const std::string value = trim(line.substr(line.find(':') + 1));
        if(value.rfind("LIST", 0) == 0 || value.rfind("SKIPLIST", 0) == 0)
        {
            // The list goes to the end of the file.
            const bool skips = value[0] == 'S';
            while(std::getline(lines, line))
            {
                const std::string entry = trim(line);
                const std::size_t gap = skips ? entry.find_first_of(" \t") : std::string::npos;
                files.names.push_back(gap == std::string::npos ? entry : trim(entry.substr(gap)));
            }
            return true;
        }
        if(value.find('%') == std::string::npos)
        {
            files.names.push_back(value);
            return true;
        }
        std::istringstream words(value);
        words.imbue(std::locale::classic());
        std::string pattern;
        long first = 0, last = 0, step = 0;
        if(!(words >> pattern >> first >> last >> step) || !isPattern(pattern) || step == 0 ||
           std::abs(first) > 1000000000 || std::abs(last) > 1000000000 || (last - first) / step < 0 ||
           (last - first) / step >= MaxFiles)
        {
            fault = "no names of files with numbers: " + value.substr(0, 60);
            return false;
        }
        for(long i = 0; i <= (last - first) / step; ++i)
            files.names.push_back(numbered(pattern, first + i * step));
        return true;
    }
    return true;
}

std::string pathOf(const std::string &folder, const std::string &file)
{
    return !file.empty() && file[0] == '/' ? file : folder + (folder.back() == '/' ? "" : "/") + file;
}

/// The detached files' bytes together. A "-", which teem takes for standard input, is no file here.
bool sumFiles(const DataFiles &files, const std::string &folder, std::uint64_t &sum, std::string &error)
{
    for(const std::string &file : files.names)
    {
        std::uint64_t size = 0;
        if(file == "-")
        {
            error = "-: is no regular file";
            return false;
        }
        if(!regularFileSize(pathOf(folder, file), size, error))
            return false;
        sum += size;
    }
    return true;
}

/// True where the header says that its voxels are packed by gzip.
bool isPacked(const std::string &header)
{
    std::istringstream lines(header);
    std::string line;
    while(std::getline(lines, line) && !trim(line).empty())
        if(fieldOf(line) == "encoding")
        {
            std::string value = trim(line.substr(line.find(':') + 1));
            std::transform(value.begin(), value.end(), value.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            return value == "gzip" || value == "gz";
        }
    return false;
}

/// The same NRRD with its voxels unpacked and in one file: teem keeps the memory of gzip where that is
/// broken.
bool unpackFile(const std::uint8_t *bytes, std::size_t size, const std::string &header,
                const DataFiles &files, const std::string &folder, const std::string &name,
                std::uint64_t maxBytes, std::vector<std::uint8_t> &file, std::string &error)
{
    std::istringstream lines(header);
    std::string line, text;
    std::size_t start = 0;
    bool skips = false, ended = false;
    while(!ended && std::getline(lines, line))
    {
        start += line.size() + 1;
        ended = trim(line).empty();
        const std::string field = fieldOf(line);
        skips = skips || field == "lineskip" || (field == "byteskip" && files.names.size() > 1);
        const bool list = field == "datafile" && line.find("LIST") != std::string::npos;
        if(!ended && field != "encoding" && field != "datafile")
            text += line + "\n";
        if(list)
            break;
    }
    if(skips)
    {
        error = name + ": skips within packed files are not read";
        return false;
    }
    text += "encoding: raw\n\n";
    file.assign(text.begin(), text.end());
    std::vector<std::uint8_t> packed, part;
    std::uint64_t total = 0;
    if(!files.detached)
    {
        start = std::min(start, size);
        packed.assign(bytes + start, bytes + size);
        if(!unpackGzip(packed.data(), packed.size(), 0, maxBytes, false, name, maxBytes, part, total, error))
            return false;
        file.insert(file.end(), part.begin(), part.end());
        return true;
    }
    for(const std::string &each : files.names)
    {
        part.clear();
        if(!readFileBytes(pathOf(folder, each), packed, error) ||
           !unpackGzip(packed.data(), packed.size(), 0, maxBytes, false, each, maxBytes, part, total, error))
        {
            error = name + ": " + error;
            return false;
        }
        if(file.size() + part.size() > maxBytes + text.size())
        {
            error = name + ": its files unpack to more than the limit of " + std::to_string(maxBytes);
            return false;
        }
        file.insert(file.end(), part.begin(), part.end());
    }
    return true;
}

using NrrdPtr = std::unique_ptr<Nrrd, NukeNrrd>;

/// One reading by teem, of the header alone or with the voxels.
NrrdPtr readByTeem(const std::uint8_t *bytes, std::size_t size, const std::string &folder, bool headerOnly,
                   const NrrdEncoding **encoding, std::string &fault)
{
    NrrdPtr nrrd(nrrdNew());
    const std::unique_ptr<NrrdIoState, NixState> state(nrrdIoStateNew());
    const std::unique_ptr<std::FILE, CloseFile> file(fmemopen(const_cast<std::uint8_t *>(bytes), size, "rb"));
    if(!nrrd || !state || !file)
    {
        fault = "no memory to read it";
        return nullptr;
    }
    state->skipData = headerOnly ? 1 : 0;
    state->path = airStrdup(folder.c_str());
    if(nrrdRead(nrrd.get(), file.get(), state.get()) != 0)
    {
        fault = teemFault();
        return nullptr;
    }
    *encoding = state->encoding;
    return nrrd;
}

bool sampleTypeOf(int type, SampleType &sample)
{
    switch(type)
    {
    case nrrdTypeChar:
        sample = SampleType::Int8;
        return true;
    case nrrdTypeUChar:
        sample = SampleType::UInt8;
        return true;
    case nrrdTypeShort:
        sample = SampleType::Int16;
        return true;
    case nrrdTypeUShort:
        sample = SampleType::UInt16;
        return true;
    case nrrdTypeInt:
        sample = SampleType::Int32;
        return true;
    case nrrdTypeUInt:
        sample = SampleType::UInt32;
        return true;
    case nrrdTypeLLong:
        sample = SampleType::Int64;
        return true;
    case nrrdTypeULLong:
        sample = SampleType::UInt64;
        return true;
    case nrrdTypeFloat:
        sample = SampleType::Float32;
        return true;
    case nrrdTypeDouble:
        sample = SampleType::Float64;
        return true;
    default:
        return false;
    }
}

/// What the header says, in the terms of pixels.
struct Layout
{
    SampleType type = SampleType::UInt8;
    unsigned channels = 1;
    std::uint64_t size[3] = {1, 1, 1};
    std::uint64_t parts = 1; ///< of a last axis beyond the volume
    unsigned axes = 0;       ///< of the volume
    unsigned firstAxis = 0;  ///< of the volume
};

std::string numbersOf(const Nrrd &nrrd)
{
    std::string text;
    for(unsigned i = 0; i < nrrd.dim; ++i)
        text += (i ? " x " : "") + std::to_string(nrrd.axis[i].size);
    return text;
}

/// What is wrong with the header, or nothing.
std::string layOut(const Nrrd &nrrd, Layout &layout)
{
    if(!sampleTypeOf(nrrd.type, layout.type))
        return "voxels of type block are not read";
    for(unsigned i = 0; i < nrrd.dim; ++i)
        if(nrrd.axis[i].size < 1 || nrrd.axis[i].size > 1u << 30)
            return "an axis of " + std::to_string(nrrd.axis[i].size) + " samples is not read";
    const int kind = nrrd.axis[0].kind;
    const std::uint64_t first = nrrd.axis[0].size;
    const bool named = kind != nrrdKindUnknown && !nrrdKindIsDomain(kind);
    const bool guessed = kind == nrrdKindUnknown && nrrd.dim == 4 && first <= 4;
    layout.firstAxis = named || guessed ? 1 : 0;
    layout.axes = nrrd.dim - layout.firstAxis;
    if(layout.axes == 4)
    {
        layout.parts = nrrd.axis[nrrd.dim - 1].size;
        layout.axes = 3;
    }
    if(layout.axes < 2 || layout.axes > 3)
        return numbersOf(nrrd) + " samples are no volume";
    if(layout.firstAxis == 1)
    {
        if(first != 1 && !((first == 3 || first == 4) && layout.type == SampleType::UInt8))
            return std::to_string(first) + " " + sampleName(layout.type) + " to a voxel are not read";
        layout.channels = static_cast<unsigned>(first);
    }
    for(unsigned i = 0; i < layout.axes; ++i)
        layout.size[i] = nrrd.axis[layout.firstAxis + i].size;
    return {};
}

/// The samples of the header, or all that 64 bits count.
std::uint64_t samplesOf(const Nrrd &nrrd)
{
    std::uint64_t count = 1;
    for(unsigned i = 0; i < nrrd.dim; ++i)
        count = count > (std::uint64_t(1) << 33) ? ~std::uint64_t(0) / 64 : count * nrrd.axis[i].size;
    return count;
}

/// The most bytes of samples that a file of this size can hold, where that is known.
std::uint64_t mostBytes(const NrrdEncoding *encoding, std::uint64_t present, std::size_t sample)
{
    constexpr std::uint64_t Bzip2Ratio = 1 << 20;
    if(encoding == nrrdEncodingRaw)
        return present;
    if(encoding == nrrdEncodingAscii)
        return (present / 2 + 1) * sample; // a digit and what parts it from the next
    if(encoding == nrrdEncodingHex)
        return present / 2;
    return present * Bzip2Ratio;
}

void takeSpacing(const Nrrd &nrrd, const Layout &layout, PixelData &out)
{
    for(unsigned i = 0; i < layout.axes; ++i)
    {
        const NrrdAxisInfo &axis = nrrd.axis[layout.firstAxis + i];
        double side = std::fabs(axis.spacing);
        if(!std::isfinite(side) && nrrd.spaceDim > 0)
        {
            double square = 0.0;
            for(unsigned j = 0; j < nrrd.spaceDim; ++j)
                square += axis.spaceDirection[j] * axis.spaceDirection[j];
            side = std::sqrt(square);
        }
        if(side > 1e-30 && side < 1e30)
        {
            out.hasSpacing = true;
            out.spacing[i] = static_cast<float>(side);
        }
    }
}

void turnRows(std::uint8_t *samples, std::size_t row, std::size_t rows)
{
    for(std::size_t y = 0; y < rows / 2; ++y)
        std::swap_ranges(samples + y * row, samples + (y + 1) * row, samples + (rows - 1 - y) * row);
}

bool decodeLocked(const std::uint8_t *bytes, std::size_t size, const std::string *folder,
                  const std::string &name, PixelData &out, std::string &error, std::uint64_t maxBytes)
{
    // Where the voxels are, before teem opens anything.
    DataFiles files;
    std::string fault;
    const std::string header(reinterpret_cast<const char *>(bytes), std::min(size, MaxHeaderSize));
    std::uint64_t present = size;
    if(!findDataFiles(header, files, fault))
    {
        error = name + ": " + fault;
        return false;
    }
    const std::size_t end = headerEnd(header);
    if((end == 0 && !files.detached) || header.find('\0') < (end ? end : header.size()))
    {
        error =
            name + ": byte " + std::to_string(size) + ": the header is no text with an empty line at its end";
        return false;
    }
    if(hasLongLine(header, end ? end : header.size()))
    {
        error = name + ": a line of the header is longer than " + std::to_string(MaxLineSize) + " bytes";
        return false;
    }
    if(files.detached && !folder)
    {
        error = name + ": voxels in a file of their own can't be read from a stream";
        return false;
    }
    if(files.detached)
    {
        present = 0;
        if(!sumFiles(files, *folder, present, error))
        {
            error = name + ": " + error;
            return false;
        }
    }

    if(isPacked(header))
    {
        std::vector<std::uint8_t> file;
        return unpackFile(bytes, size, header, files, folder ? *folder : ".", name, maxBytes, file, error) &&
               decodeLocked(file.data(), file.size(), nullptr, name, out, error, maxBytes);
    }

    // A header of its own may lack the last line's end.
    std::vector<std::uint8_t> ended;
    if(files.detached && bytes[size - 1] != '\n')
    {
        ended.assign(bytes, bytes + size);
        ended.push_back('\n');
        bytes = ended.data();
        size = ended.size();
    }

    // What the header says, and whether that can be.
    const std::string place = folder ? *folder : ".";
    const NrrdEncoding *encoding = nullptr;
    NrrdPtr nrrd = readByTeem(bytes, size, place, true, &encoding, fault);
    Layout layout;
    if(nrrd)
        fault = layOut(*nrrd, layout);
    if(fault.empty() && encoding == nrrdEncodingGzip)
        fault = "no plain word for its encoding";
    if(!fault.empty())
    {
        error = name + ": " + fault;
        return false;
    }
    const std::size_t sample = sampleBytes(layout.type);
    const std::uint64_t needed = samplesOf(*nrrd) * sample;
    if(needed > mostBytes(encoding, present, sample))
    {
        error = name + ": " + numbersOf(*nrrd) + " voxels of type " + sampleName(layout.type) +
                " can't be in " + std::to_string(present) + " bytes";
        return false;
    }
    if(needed > maxBytes)
    {
        error =
            name + ": " + std::to_string(needed) + " bytes are over the limit of " + std::to_string(maxBytes);
        return false;
    }

    nrrd = readByTeem(bytes, size, place, false, &encoding, fault);
    if(!nrrd || !nrrd->data)
    {
        error = name + ": " + (fault.empty() ? "no voxels" : fault);
        return false;
    }
    static const unsigned formats[] = {0, PixelL, 0, PixelRGB, PixelRGBA};
    out.width = static_cast<int>(layout.size[0]);
    out.height = static_cast<int>(layout.size[1]);
    out.depth = static_cast<int>(layout.size[2]);
    out.pixelFormat = formats[layout.channels];
    takeSpacing(*nrrd, layout, out);
    if(layout.parts > 1)
        out.notices.push_back(name + ": the first of " + std::to_string(layout.parts) + " parts is taken");

    RawSamples raw;
    raw.bytes = static_cast<const std::uint8_t *>(nrrd->data);
    raw.type = layout.type;
    raw.count = static_cast<std::size_t>(layout.size[0] * layout.size[1] * layout.size[2] * layout.channels);
    if(layout.axes == 2)
        turnRows(static_cast<std::uint8_t *>(nrrd->data), layout.size[0] * layout.channels * sample,
                 layout.size[1]);
    return convertSamples(raw, name, maxBytes, out, error);
}

} // namespace

bool decodeNRRD(const std::uint8_t *bytes, std::size_t size, const std::string *folder,
                const std::string &name, PixelData &out, std::string &error, std::uint64_t maxBytes)
{
    out = PixelData();
    error.clear();
    // teem tells other formats by their first bytes too; those are not meant here.
    if(size < 9 || std::memcmp(bytes, "NRRD000", 7) != 0 || bytes[7] < '1' || bytes[7] > '6' ||
       (bytes[8] != '\n' && bytes[8] != '\r'))
    {
        error = name + ": byte 0: no NRRD signature";
        return false;
    }
    const std::lock_guard<std::mutex> lock(teemMutex);
    const PointLocale numbers;
    // teem talks on standard error unless told not to.
    nrrdStateVerboseIO = 0;
    const bool done = decodeLocked(bytes, size, folder, name, out, error, maxBytes);
    if(!done)
        out = PixelData();
    return done;
}

OSG_END_NAMESPACE
