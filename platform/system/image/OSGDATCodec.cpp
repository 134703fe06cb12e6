/// \file
/// The text of a .dat file, and the voxels beside it.

#include "OSGDATCodec.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>

OSG_BEGIN_NAMESPACE

namespace
{

/// A side of a volume; over what any texture holds, and its cube of pixels fits 64 bits.
constexpr long MaxSide = 1 << 16;

/// A description is a few lines; nothing longer is read as one.
constexpr std::size_t MaxTextSize = 64 * 1024;

struct FormatName
{
    const char *name;
    SampleType sample;
};

constexpr FormatName formats[] = {{"UCHAR", SampleType::UInt8},   {"CHAR", SampleType::Int8},
                                  {"USHORT", SampleType::UInt16}, {"SHORT", SampleType::Int16},
                                  {"UINT", SampleType::UInt32},   {"INT", SampleType::Int32},
                                  {"FLOAT", SampleType::Float32}, {"DOUBLE", SampleType::Float64}};

struct ModelName
{
    const char *name;
    unsigned pixelFormat;
};

constexpr ModelName models[] = {{"I", PixelL},   {"L", PixelL},     {"DENSITY", PixelL},
                                {"LA", PixelLA}, {"RGB", PixelRGB}, {"RGBA", PixelRGBA}};

template <class Entry, std::size_t count>
const Entry *findName(const Entry (&table)[count], const std::string &name)
{
    const Entry *found =
        std::find_if(table, table + count, [&name](const Entry &e) { return name == e.name; });
    return found == table + count ? nullptr : found;
}

std::string trim(const std::string &text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if(first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

/// Text from a file, fit for one line of a log.
std::string quoted(const std::string &text)
{
    std::string shown = text.substr(0, 40);
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return c < 32 || c > 126; }, '?');
    return "\"" + shown + (text.size() > 40 ? "...\"" : "\"");
}

bool readSizes(const std::string &value, int (&size)[3])
{
    const char *at = value.c_str();
    for(int &side : size)
    {
        char *end = nullptr;
        const long number = std::strtol(at, &end, 10);
        if(end == at || number < 1 || number > MaxSide)
            return false;
        side = static_cast<int>(number);
        at = end;
    }
    return trim(at).empty();
}

bool readSpacing(const std::string &value, float (&spacing)[3])
{
    // A stream of the classic locale, so that the point is the point everywhere.
    std::istringstream in(value);
    in.imbue(std::locale::classic());
    for(float &side : spacing)
        if(!(in >> side) || !std::isfinite(side) || side <= 0.f)
            return false;
    return true;
}

/// Takes one key and value over; returns what is wrong with the value, or nothing.
std::string takeValue(const std::string &key, const std::string &value, DATHeader &header)
{
    if(key == "ObjectFileName")
    {
        if(value.empty() || value.find('\0') != std::string::npos)
            return "no file name " + quoted(value);
        header.rawName = value;
    }
    else if(key == "Resolution")
    {
        if(!readSizes(value, header.size))
            return "no resolution of three numbers from 1 to " + std::to_string(MaxSide) + ": " +
                   quoted(value);
    }
    else if(key == "SliceThickness")
    {
        if(!readSpacing(value, header.spacing))
            return "no thickness of three numbers over 0: " + quoted(value);
        header.hasSpacing = true;
    }
    else if(key == "Format")
    {
        const FormatName *format = findName(formats, value);
        if(!format)
            return "unknown format " + quoted(value);
        header.sample = format->sample;
    }
    else if(key == "ObjectModel")
    {
        const ModelName *model = findName(models, value);
        if(!model)
            return "unknown object model " + quoted(value);
        header.pixelFormat = model->pixelFormat;
    }
    else if(key == "Endian")
    {
        if(value != "LITTLE" && value != "BIG")
            return "unknown byte order " + quoted(value);
        header.bigEndian = value == "BIG";
    }
    return {};
}

std::uint64_t voxelBytes(const DATHeader &header, unsigned channels)
{
    return std::uint64_t(header.size[0]) * std::uint64_t(header.size[1]) * std::uint64_t(header.size[2]) *
           channels * sampleBytes(header.sample);
}

bool machineIsBigEndian()
{
    const std::uint16_t one = 1;
    return *reinterpret_cast<const std::uint8_t *>(&one) == 0;
}

std::string besides(const std::string &fileName, const std::string &other)
{
    const std::size_t slash = fileName.rfind('/');
    return other[0] == '/' || slash == std::string::npos ? other : fileName.substr(0, slash + 1) + other;
}

} // namespace

bool parseDAT(const std::uint8_t *bytes, std::size_t size, const std::string &name, DATHeader &header,
              std::string &error)
{
    header = DATHeader();
    if(size > MaxTextSize)
    {
        error = name + ": " + std::to_string(size) + " bytes are no description of a volume";
        return false;
    }
    std::istringstream text(std::string(reinterpret_cast<const char *>(bytes), size));
    std::string line;
    for(int number = 1; std::getline(text, line); ++number)
    {
        if(trim(line).empty())
            continue;
        const std::size_t colon = line.find(':');
        const std::string fault =
            colon == std::string::npos
                ? "no key with a colon: " + quoted(trim(line))
                : takeValue(trim(line.substr(0, colon)), trim(line.substr(colon + 1)), header);
        if(!fault.empty())
        {
            error = name + ": line " + std::to_string(number) + ": " + fault;
            return false;
        }
    }
    if(header.rawName.empty() || header.size[0] == 0)
    {
        error =
            name + ": " + (header.rawName.empty() ? "no ObjectFileName" : "no Resolution") + " up to the end";
        return false;
    }
    return true;
}

bool fitDAT(DATHeader &header, std::uint64_t present, const std::string &rawName, std::uint64_t &needed,
            std::string &notice, std::string &error)
{
    const unsigned channels = pixelChannels(header.pixelFormat);
    needed = voxelBytes(header, channels);
    if(channels > 1 && present == voxelBytes(header, 1))
    {
        notice = rawName + ": holds one channel, not " + std::to_string(channels);
        header.pixelFormat = PixelL;
        needed = present;
    }
    if(present < needed)
    {
        error = rawName + ": byte " + std::to_string(present) + ": the file ends here, but " +
                std::to_string(header.size[0]) + " x " + std::to_string(header.size[1]) + " x " +
                std::to_string(header.size[2]) + " voxels take " + std::to_string(needed) + " bytes";
        return false;
    }
    if(present > needed)
        notice = rawName + ": the last " + std::to_string(present - needed) + " bytes are left over";
    return true;
}

bool decodeDAT(const DATHeader &header, const std::uint8_t *raw, std::size_t rawSize,
               const std::string &rawName, PixelData &out, std::string &error, std::uint64_t maxBytes)
{
    out = PixelData();
    DATHeader fitted = header;
    std::uint64_t needed = 0;
    std::string notice;
    if(!fitDAT(fitted, rawSize, rawName, needed, notice, error))
        return false;
    if(!notice.empty())
        out.notices.push_back(notice);
    out.width = fitted.size[0];
    out.height = fitted.size[1];
    out.depth = fitted.size[2];
    out.pixelFormat = fitted.pixelFormat;
    out.hasSpacing = fitted.hasSpacing;
    std::copy(fitted.spacing, fitted.spacing + 3, out.spacing);

    RawSamples samples;
    samples.bytes = raw;
    samples.type = fitted.sample;
    samples.count = static_cast<std::size_t>(needed / sampleBytes(fitted.sample));
    samples.swapped = fitted.bigEndian != machineIsBigEndian();
    if(convertSamples(samples, rawName, maxBytes, out, error))
        return true;
    out = PixelData();
    return false;
}

bool readDATFile(const std::string &fileName, PixelData &out, std::string &error, std::uint64_t maxBytes)
{
    std::vector<std::uint8_t> text;
    DATHeader header;
    if(!readFileBytes(fileName, text, error, MaxTextSize + 1) ||
       !parseDAT(text.data(), text.size(), fileName, header, error))
        return false;

    const std::string rawName = besides(fileName, header.rawName);
    std::uint64_t present = 0, needed = 0;
    std::string notice;
    std::vector<std::uint8_t> raw;
    if(!regularFileSize(rawName, present, error) ||
       !fitDAT(header, present, rawName, needed, notice, error) ||
       !readFileBytes(rawName, raw, error, needed, maxBytes) ||
       !decodeDAT(header, raw.data(), raw.size(), rawName, out, error, maxBytes))
        return false;
    if(!notice.empty())
        out.notices.insert(out.notices.begin(), notice);
    return true;
}

bool writeDATFile(const std::string &fileName, const PixelView &in, std::string &error)
{
    const unsigned channels = pixelChannels(in.pixelFormat);
    const bool wide = in.dataType == SampleUInt16;
    if(channels == 0 || (in.dataType != SampleUInt8 && !wide) || !in.data || in.width < 1 || in.height < 1 ||
       in.depth < 1)
    {
        error = fileName + ": .dat holds L, LA, RGB and RGBA volumes of 8 or 16 bits, not pixels of format " +
                std::to_string(in.pixelFormat) + " and type " + std::to_string(in.dataType);
        return false;
    }
    const bool hasSuffix = fileName.size() > 4 && fileName.compare(fileName.size() - 4, 4, ".dat") == 0;
    const std::string rawFile = (hasSuffix ? fileName.substr(0, fileName.size() - 4) : fileName) + ".raw";

    static const char *const modelOf[] = {"", "I", "LA", "RGB", "RGBA"};
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << "ObjectFileName: " << rawFile.substr(rawFile.rfind('/') + 1) << "\n"
         << "TaggedFileName: ---\n"
         << "Resolution:     " << in.width << " " << in.height << " " << in.depth << "\n"
         << "SliceThickness: " << in.spacing[0] << " " << in.spacing[1] << " " << in.spacing[2] << "\n"
         << "Format:         " << (wide ? "USHORT" : "UCHAR") << "\n"
         << "NbrTags:        0\n"
         << "ObjectType:     TEXTURE_VOLUME_OBJECT\n"
         << "ObjectModel:    " << modelOf[channels] << "\n"
         << "GridType:       EQUIDISTANT\n"
         << "Endian:         " << (machineIsBigEndian() ? "BIG" : "LITTLE") << "\n";
    const std::string lines = text.str();
    const std::size_t size =
        std::size_t(in.width) * std::size_t(in.height) * std::size_t(in.depth) * channels * (wide ? 2 : 1);
    return writeFileBytes(rawFile, in.data, size, error) &&
           writeFileBytes(fileName, reinterpret_cast<const std::uint8_t *>(lines.data()), lines.size(),
                          error);
}

OSG_END_NAMESPACE
