/// \file
/// The pages are listed and chosen first; memory is asked for once it is known that the file can hold them.

#include "OSGTIFFCodec.h"

#include <tiffio.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <locale>
#include <memory>
#include <sstream>

#include "OSGSampleConversion.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// The bytes of the file, and the first fault that libtiff tells.
struct Source
{
    const std::uint8_t *bytes;
    std::uint64_t size;
    std::uint64_t position;
    char fault[300];
};

tmsize_t readBytes(thandle_t handle, void *to, tmsize_t count)
{
    Source &source = *static_cast<Source *>(handle);
    const std::uint64_t there = source.position < source.size ? source.size - source.position : 0;
    const std::uint64_t taken = std::min<std::uint64_t>(there, count > 0 ? std::uint64_t(count) : 0);
    if(taken > 0)
        std::memcpy(to, source.bytes + source.position, taken);
    source.position += taken;
    return static_cast<tmsize_t>(taken);
}

tmsize_t writeNothing(thandle_t, void *, tmsize_t)
{
    return 0;
}

toff_t seek(thandle_t handle, toff_t offset, int from)
{
    Source &source = *static_cast<Source *>(handle);
    source.position = offset + (from == SEEK_CUR ? source.position : from == SEEK_END ? source.size : 0);
    return source.position;
}

int closeNothing(thandle_t)
{
    return 0;
}

toff_t sizeOf(thandle_t handle)
{
    return static_cast<Source *>(handle)->size;
}

int keepError(TIFF *, void *data, const char *, const char *format, va_list arguments)
{
    Source &source = *static_cast<Source *>(data);
    if(source.fault[0] == 0)
        std::vsnprintf(source.fault, sizeof(source.fault), format, arguments);
    return 1;
}

int dropWarning(TIFF *, void *, const char *, const char *, va_list)
{
    return 1;
}

struct CloseTIFF
{
    void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};
using File = std::unique_ptr<TIFF, CloseTIFF>;

struct FreeOptions
{
    void operator()(TIFFOpenOptions *options) const { TIFFOpenOptionsFree(options); }
};

/// Opens with handlers of this file alone, so that nothing of the process is touched.
File openFile(Source &source, std::uint64_t maxBytes)
{
    const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
    if(!options)
        return {};
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keepError, &source);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), dropWarning, &source);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(std::clamp<std::uint64_t>(
                                                           maxBytes, 1u << 20, std::uint64_t(1) << 40)));
    // "m": libtiff maps no file.
    return File(TIFFClientOpenExt("", "rm", &source, readBytes, writeNothing, seek, closeNothing, sizeOf,
                                  nullptr, nullptr, options.get()));
}

/// What is to be known of a page ahead of its pixels.
struct Page
{
    std::uint64_t offset = 0; ///< of its directory
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t channels = 1;
    std::uint16_t bits = 1;
    std::uint16_t format = SAMPLEFORMAT_UINT;
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    std::uint16_t compression = COMPRESSION_NONE;
    bool separate = false;
    bool alpha = false;
    bool coloured = false; ///< libtiff brings it to RGBA

    bool sameKind(const Page &o) const
    {
        return width == o.width && height == o.height && channels == o.channels && bits == o.bits &&
               format == o.format && photometric == o.photometric;
    }
    std::uint64_t pixels() const { return std::uint64_t(width) * height; }
    bool packed() const { return bits < 8; }
    std::size_t sampleBytes() const { return packed() ? 1 : bits / 8u; }
    unsigned outChannels() const { return coloured ? (alpha ? 4u : 3u) : channels; }
    std::uint64_t outBytes() const { return pixels() * outChannels() * (coloured ? 1 : sampleBytes()); }
};

Page describePage(TIFF *tiff)
{
    Page page;
    page.offset = TIFFCurrentDirOffset(tiff);
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &page.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &page.height);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &page.channels);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &page.bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &page.format);
    TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &page.photometric);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &page.compression);
    std::uint16_t planar = PLANARCONFIG_CONTIG, extras = 0;
    std::uint16_t *kinds = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
    page.separate = planar == PLANARCONFIG_SEPARATE && page.channels > 1;
    page.alpha = TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &extras, &kinds) && extras > 0;
    if(page.format == SAMPLEFORMAT_VOID)
        page.format = SAMPLEFORMAT_UINT;

    if(page.compression == COMPRESSION_JPEG && page.photometric == PHOTOMETRIC_YCBCR && page.bits == 8 &&
       page.channels == 3 && !page.separate)
        page.photometric = PHOTOMETRIC_RGB; // libtiff converts, once preparePage has asked for it
    page.coloured = page.photometric != PHOTOMETRIC_MINISWHITE &&
                    page.photometric != PHOTOMETRIC_MINISBLACK && page.photometric != PHOTOMETRIC_RGB;
    return page;
}

bool sampleTypeOf(const Page &page, SampleType &type)
{
    if(page.coloured)
        type = SampleType::UInt8;
    else if(page.format == SAMPLEFORMAT_IEEEFP && (page.bits == 32 || page.bits == 64))
        type = page.bits == 32 ? SampleType::Float32 : SampleType::Float64;
    else if(page.format == SAMPLEFORMAT_UINT || page.format == SAMPLEFORMAT_INT)
    {
        const bool sign = page.format == SAMPLEFORMAT_INT;
        switch(page.bits)
        {
        case 1:
        case 2:
        case 4:
            type = SampleType::UInt8;
            return !sign && page.channels == 1;
        case 8:
            type = sign ? SampleType::Int8 : SampleType::UInt8;
            return true;
        case 16:
            type = sign ? SampleType::Int16 : SampleType::UInt16;
            return true;
        case 32:
            type = sign ? SampleType::Int32 : SampleType::UInt32;
            return true;
        case 64:
            type = sign ? SampleType::Int64 : SampleType::UInt64;
            return true;
        default:
            return false;
        }
    }
    else
        return false;
    return true;
}

/// What is wrong with the page, or nothing.
std::string findFault(const Page &page)
{
    SampleType type;
    if(page.width < 1 || page.height < 1 || page.width > 1u << 24 || page.height > 1u << 24)
        return std::to_string(page.width) + " x " + std::to_string(page.height) + " pixels are no picture";
    if(!page.coloured && (page.channels < 1 || page.channels > 4))
        return std::to_string(page.channels) + " channels are not read";
    if(!sampleTypeOf(page, type))
        return std::to_string(page.channels) + " channels with samples of format " +
               std::to_string(page.format) + " and " + std::to_string(page.bits) + " bits are not read";
    return {};
}

/// How many bytes a byte of the file can stand for at most.
std::uint64_t largestRatio(const Page &page)
{
    switch(page.compression)
    {
    case COMPRESSION_NONE:
        return 1;
    case COMPRESSION_PACKBITS:
        return 64;
    case COMPRESSION_LZW:
        return 4096;
    case COMPRESSION_DEFLATE:
    case COMPRESSION_ADOBE_DEFLATE:
        return 1032;
    case COMPRESSION_JPEG:
        return 3 * 512;
    default:
        return 100000;
    }
}

std::string lineOf(const Source &source, const char *otherwise)
{
    std::string line = source.fault[0] ? source.fault : otherwise;
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c < 32 || c > 126; }, '?');
    return line;
}

/// Makes the page the current one and asks libtiff for RGB where it can convert.
bool preparePage(TIFF *tiff, const Page &page)
{
    if(!TIFFSetSubDirectory(tiff, page.offset))
        return false;
    if(page.compression == COMPRESSION_JPEG && page.photometric == PHOTOMETRIC_RGB)
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    return true;
}

/// A strip or tile in memory: `width` x `height` pixels of the page from (x, y) on, of one channel or of all.
struct Block
{
    const std::uint8_t *bytes;
    std::size_t rowBytes;
    std::uint32_t x, y, width, height;
    int channel; ///< -1: all, interleaved
};

void takeBlock(const Page &page, const Block &block, std::uint8_t *to)
{
    const std::size_t sample = page.sampleBytes(), pixel = sample * page.channels;
    for(std::uint32_t y = 0; y < block.height; ++y)
    {
        const std::uint8_t *from = block.bytes + y * block.rowBytes;
        std::uint8_t *row = to + ((block.y + y) * std::size_t(page.width) + block.x) * pixel;
        if(page.packed())
        {
            // The first pixel is in the highest bits; the full value becomes 255.
            const unsigned most = (1u << page.bits) - 1u, perByte = 8u / page.bits;
            for(std::uint32_t x = 0; x < block.width; ++x)
            {
                const unsigned shift = (perByte - 1 - x % perByte) * page.bits;
                row[x] = static_cast<std::uint8_t>(((from[x / perByte] >> shift) & most) * (255u / most));
            }
        }
        else if(block.channel < 0)
            std::memcpy(row, from, block.width * pixel);
        else
            for(std::uint32_t x = 0; x < block.width; ++x)
                std::memcpy(row + x * pixel + std::size_t(block.channel) * sample, from + x * sample, sample);
    }
}

/// Bytes of a row of `width` pixels in a block.
std::size_t neededRow(const Page &page, std::uint32_t width)
{
    const std::size_t channels = page.separate ? 1 : page.channels;
    return page.packed() ? (std::size_t(width) * page.bits + 7) / 8 : width * channels * page.sampleBytes();
}

class PageReader
{
  public:
    PageReader(TIFF *tiff, const Page &page, std::uint64_t fileSize, std::uint64_t maxBytes)
        : _tiff(tiff), _page(page), _fileSize(fileSize), _maxBytes(maxBytes)
    {}

    /// Reads the page's samples, interleaved, top row first. False with a fault, where libtiff tells none.
    bool read(std::uint8_t *to, std::string &fault)
    {
        if(_page.coloured)
            return readColours(to, fault);
        return TIFFIsTiled(_tiff) ? readTiles(to, fault) : readStrips(to, fault);
    }

  private:
    bool makeRoom(tmsize_t size, std::string &fault)
    {
        std::string line;
        if(size > 0 && std::uint64_t(size) / largestRatio(_page) <= _fileSize &&
           allocatePixels(_buffer, std::uint64_t(size), _maxBytes, "", line))
            return true;
        fault = "strips or tiles of " + std::to_string(size) + " bytes can't be in a file of " +
                std::to_string(_fileSize) + " bytes";
        return false;
    }

    bool readStrips(std::uint8_t *to, std::string &fault)
    {
        std::uint32_t rows = 0;
        TIFFGetFieldDefaulted(_tiff, TIFFTAG_ROWSPERSTRIP, &rows);
        rows = std::min(rows, _page.height);
        const tmsize_t rowBytes = TIFFScanlineSize(_tiff);
        if(rows == 0 || rowBytes < tmsize_t(neededRow(_page, _page.width)))
        {
            fault = "rows of " + std::to_string(rowBytes) + " bytes don't hold the pixels";
            return false;
        }
        if(!makeRoom(TIFFStripSize(_tiff), fault))
            return false;
        std::uint32_t strip = 0;
        for(int channel = 0; channel < (_page.separate ? _page.channels : 1); ++channel)
            for(std::uint32_t y = 0; y < _page.height; y += rows, ++strip)
            {
                const std::uint32_t height = std::min(rows, _page.height - y);
                const tmsize_t wanted = tmsize_t(height) * rowBytes;
                if(wanted > tmsize_t(_buffer.size()) ||
                   TIFFReadEncodedStrip(_tiff, strip, _buffer.data(), wanted) != wanted)
                {
                    fault = "strip " + std::to_string(strip) + " is short";
                    return false;
                }
                takeBlock(_page,
                          {_buffer.data(), std::size_t(rowBytes), 0, y, _page.width, height,
                           _page.separate ? channel : -1},
                          to);
            }
        return true;
    }

    bool readTiles(std::uint8_t *to, std::string &fault)
    {
        std::uint32_t width = 0, height = 0;
        TIFFGetField(_tiff, TIFFTAG_TILEWIDTH, &width);
        TIFFGetField(_tiff, TIFFTAG_TILELENGTH, &height);
        const tmsize_t rowBytes = TIFFTileRowSize(_tiff), size = TIFFTileSize(_tiff);
        if(width == 0 || height == 0 || rowBytes < tmsize_t(neededRow(_page, width)) ||
           size / rowBytes < tmsize_t(height))
        {
            fault = "tiles of " + std::to_string(size) + " bytes don't hold the pixels";
            return false;
        }
        if(!makeRoom(size, fault))
            return false;
        for(int channel = 0; channel < (_page.separate ? _page.channels : 1); ++channel)
            for(std::uint64_t y = 0; y < _page.height; y += height)
                for(std::uint64_t x = 0; x < _page.width; x += width)
                {
                    const std::uint32_t tile =
                        TIFFComputeTile(_tiff, std::uint32_t(x), std::uint32_t(y), 0, std::uint16_t(channel));
                    if(TIFFReadEncodedTile(_tiff, tile, _buffer.data(), size) != size)
                    {
                        fault = "tile " + std::to_string(tile) + " is short";
                        return false;
                    }
                    takeBlock(_page,
                              {_buffer.data(), std::size_t(rowBytes), std::uint32_t(x), std::uint32_t(y),
                               std::uint32_t(std::min<std::uint64_t>(width, _page.width - x)),
                               std::uint32_t(std::min<std::uint64_t>(height, _page.height - y)),
                               _page.separate ? channel : -1},
                              to);
                }
        return true;
    }

    bool readColours(std::uint8_t *to, std::string &fault)
    {
        char words[1024] = "";
        if(!TIFFRGBAImageOK(_tiff, words))
        {
            fault = words;
            return false;
        }
        std::vector<std::uint8_t> raster;
        std::string line;
        if(!allocatePixels(raster, _page.pixels() * 4, 4 * _maxBytes, "", line))
        {
            fault = "no memory for its colours";
            return false;
        }
        if(!TIFFReadRGBAImageOriented(_tiff, _page.width, _page.height,
                                      reinterpret_cast<std::uint32_t *>(raster.data()), ORIENTATION_TOPLEFT,
                                      1))
            return false;
        const std::size_t count = _page.pixels(), channels = _page.outChannels();
        for(std::size_t i = 0; i < count; ++i)
        {
            std::uint32_t colour;
            std::memcpy(&colour, raster.data() + 4 * i, 4);
            for(std::size_t c = 0; c < channels; ++c)
                to[i * channels + c] = static_cast<std::uint8_t>(colour >> (8 * c));
        }
        return true;
    }

    TIFF *_tiff;
    const Page &_page;
    std::uint64_t _fileSize;
    std::uint64_t _maxBytes;
    std::vector<std::uint8_t> _buffer;
};

/// All directories of the file.
bool listPages(TIFF *tiff, const Source &source, const std::string &name, std::vector<Page> &pages,
               std::string &error)
{
    for(;;)
    {
        pages.push_back(describePage(tiff));
        if(TIFFLastDirectory(tiff))
            return true;
        if(!TIFFReadDirectory(tiff))
        {
            error = name + ": page " + std::to_string(pages.size() + 1) + ": " +
                    lineOf(source, "its directory can't be read");
            return false;
        }
    }
}

/// The number behind `key` at the start of a line of the description.
bool findNumber(const std::string &description, const std::string &key, double &number)
{
    std::size_t at = description.rfind(key, 0) == 0 ? 0 : description.find("\n" + key);
    if(at == std::string::npos)
        return false;
    at += (at > 0 || description[0] == '\n' ? 1 : 0) + key.size();
    // A stream of the classic locale, so that the point is the point everywhere.
    std::istringstream in(description.substr(at, 40));
    in.imbue(std::locale::classic());
    return static_cast<bool>(in >> number) && std::isfinite(number);
}

std::string descriptionOf(TIFF *tiff)
{
    char *text = nullptr;
    if(!TIFFGetField(tiff, TIFFTAG_IMAGEDESCRIPTION, &text) || !text)
        return {};
    return text;
}

/// The pages of the kind that most have, in their order; what was left out goes to `notices`.
std::vector<Page> choosePages(const std::vector<Page> &pages, const std::string &name,
                              std::vector<std::string> &notices)
{
    std::vector<std::pair<Page, std::size_t>> kinds;
    for(const Page &page : pages)
    {
        const auto same = std::find_if(kinds.begin(), kinds.end(),
                                       [&page](const auto &kind) { return kind.first.sameKind(page); });
        if(same == kinds.end())
            kinds.emplace_back(page, 1);
        else
            ++same->second;
    }
    const auto best = std::max_element(kinds.begin(), kinds.end(), [](const auto &a, const auto &b) {
        return a.second != b.second ? a.second < b.second : a.first.pixels() < b.first.pixels();
    });
    std::vector<Page> chosen;
    std::copy_if(pages.begin(), pages.end(), std::back_inserter(chosen),
                 [best](const Page &page) { return best->first.sameKind(page); });
    if(chosen.size() < pages.size())
        notices.push_back(name + ": " + std::to_string(pages.size() - chosen.size()) + " of " +
                          std::to_string(pages.size()) +
                          " pages are of another size or type than the rest and left out");
    return chosen;
}

/// Keeps the first channel of the first frame where ImageJ's description tells of several.
void keepFirstChannel(const std::string &description, const std::string &name, std::vector<Page> &pages,
                      std::vector<std::string> &notices)
{
    double channels = 1.0, frames = 1.0;
    findNumber(description, "channels=", channels);
    findNumber(description, "frames=", frames);
    const double count = static_cast<double>(pages.size());
    if(channels < 1.0 || frames < 1.0 || channels * frames < 2.0 || channels > count || frames > count ||
       channels != std::floor(channels) || frames != std::floor(frames))
        return;
    const std::size_t step = static_cast<std::size_t>(channels), parts = static_cast<std::size_t>(frames);
    if(pages.size() % (step * parts) != 0)
        return;
    std::vector<Page> kept;
    for(std::size_t i = 0; i < pages.size() / parts; i += step)
        kept.push_back(pages[i]);
    pages.swap(kept);
    notices.push_back(name + ": the first of " + std::to_string(step) + " channels and of " +
                      std::to_string(parts) + " frames is taken");
}

/// The size of a voxel, from the current page.
void takeSpacing(TIFF *tiff, const std::string &description, PixelData &out)
{
    std::uint16_t unit = RESUNIT_INCH;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    const double length = unit == RESUNIT_INCH ? 25.4 : unit == RESUNIT_CENTIMETER ? 10.0 : 1.0;
    const auto usable = [](double side) { return side > 1e-30 && side < 1e30; };

    double sides[3] = {1.0, 1.0, 1.0};
    const std::uint32_t tags[2] = {TIFFTAG_XRESOLUTION, TIFFTAG_YRESOLUTION};
    bool found = false;
    for(int i = 0; i < 2; ++i)
    {
        float resolution = 0.f;
        if(TIFFGetField(tiff, tags[i], &resolution) && resolution > 0.f &&
           usable(length / double(resolution)))
        {
            sides[i] = length / double(resolution);
            found = true;
        }
    }
    sides[2] = 0.5 * (sides[0] + sides[1]);
    double apart = 0.0;
    if(findNumber(description, "spacing=", apart) && usable(std::fabs(apart)))
    {
        // In the unit of the description; where that is the tags' own it goes to mm with them.
        const char *const own = unit == RESUNIT_INCH ? "unit=inch" : "unit=cm";
        const bool same = unit != RESUNIT_NONE && description.find(own) != std::string::npos;
        sides[2] = std::fabs(apart) * (same ? length : 1.0);
        found = true;
    }
    out.hasSpacing = found;
    std::transform(sides, sides + 3, out.spacing, [](double side) { return float(side); });
}

/// Turns samples over: the largest for the smallest and so on.
template <class T>
void turnOver(std::vector<std::uint8_t> &samples)
{
    for(std::size_t i = 0; i + sizeof(T) <= samples.size(); i += sizeof(T))
    {
        T sample;
        std::memcpy(&sample, samples.data() + i, sizeof(T));
        sample = static_cast<T>(~sample);
        std::memcpy(samples.data() + i, &sample, sizeof(T));
    }
}

/// False for floats, which have no largest value.
bool turnOver(SampleType type, std::vector<std::uint8_t> &samples)
{
    if(type == SampleType::Float32 || type == SampleType::Float64)
        return false;
    switch(sampleBytes(type))
    {
    case 1:
        turnOver<std::uint8_t>(samples);
        break;
    case 2:
        turnOver<std::uint16_t>(samples);
        break;
    case 4:
        turnOver<std::uint32_t>(samples);
        break;
    default:
        turnOver<std::uint64_t>(samples);
    }
    return true;
}

/// What turnOver's results have in common: sample + turned sample.
double turnSum(SampleType type)
{
    const bool sign = type == SampleType::Int8 || type == SampleType::Int16 || type == SampleType::Int32 ||
                      type == SampleType::Int64;
    return sign ? -1.0 : std::ldexp(1.0, 8 * int(sampleBytes(type))) - 1.0;
}

void turnRows(std::vector<std::uint8_t> &samples, std::size_t rows)
{
    const std::size_t bytes = samples.size() / rows;
    for(std::size_t y = 0; y < rows / 2; ++y)
        std::swap_ranges(samples.data() + y * bytes, samples.data() + (y + 1) * bytes,
                         samples.data() + (rows - 1 - y) * bytes);
}

bool decodePages(TIFF *tiff, Source &source, const std::string &name, std::uint64_t maxBytes, PixelData &out,
                 std::string &error)
{
    std::vector<Page> all;
    if(!listPages(tiff, source, name, all, error))
        return false;
    std::vector<Page> pages = choosePages(all, name, out.notices);
    const Page first = pages.front();
    const std::string fault = findFault(first);
    if(!fault.empty() || !preparePage(tiff, first))
    {
        error = name + ": " + (fault.empty() ? lineOf(source, "the first page is lost") : fault);
        return false;
    }
    const std::string description = descriptionOf(tiff);
    keepFirstChannel(description, name, pages, out.notices);
    if(pages.size() > 1)
        takeSpacing(tiff, description, out);

    // Each page's bytes may be looked at again by another, but no page takes more than the file can hold.
    const std::uint64_t pageBytes = first.outBytes(), ratio = largestRatio(first) * (first.packed() ? 8 : 1);
    if(pageBytes / ratio > source.size * (first.coloured ? 64 : 1))
    {
        error = name + ": " + std::to_string(first.width) + " x " + std::to_string(first.height) +
                " pixels can't be in a file of " + std::to_string(source.size) + " bytes";
        return false;
    }
    SampleType type = SampleType::UInt8;
    sampleTypeOf(first, type);
    std::vector<std::uint8_t> samples;
    if(!allocatePixels(samples, pageBytes * pages.size(), maxBytes, name, error))
        return false;
    for(std::size_t i = 0; i < pages.size(); ++i)
    {
        std::string words = "its pixels can't be read";
        if(!preparePage(tiff, pages[i]) ||
           !PageReader(tiff, pages[i], source.size, maxBytes).read(samples.data() + i * pageBytes, words))
        {
            error = name + ": page " + std::to_string(i + 1) + ": " + lineOf(source, words.c_str());
            return false;
        }
    }

    static const unsigned formats[] = {0, PixelL, PixelLA, PixelRGB, PixelRGBA};
    out.width = static_cast<int>(first.width);
    out.height = static_cast<int>(first.height);
    out.depth = static_cast<int>(pages.size());
    out.pixelFormat = formats[first.outChannels()];
    const bool turned = first.photometric == PHOTOMETRIC_MINISWHITE && turnOver(type, samples);
    if(pages.size() == 1)
        turnRows(samples, first.height);
    RawSamples raw;
    raw.bytes = samples.data();
    raw.count = samples.size() / sampleBytes(type);
    raw.type = type;
    if(!convertSamples(raw, name, maxBytes, out, error))
        return false;
    if(out.hasValues && turned)
    {
        out.valueIntercept = turnSum(type) - out.valueIntercept;
        out.valueSlope = -out.valueSlope;
    }
    if(out.hasValues && first.packed())
    {
        const double share = ((1u << first.bits) - 1u) / 255.0;
        out.valueSlope *= share;
        out.valueIntercept *= share;
    }
    return true;
}

} // namespace

bool decodeTIFF(const std::uint8_t *bytes, std::size_t size, const std::string &name, PixelData &out,
                std::string &error, std::uint64_t maxBytes)
{
    out = PixelData();
    error.clear();
    Source source = {bytes, size, 0, {}};
    const File tiff = openFile(source, maxBytes);
    if(!tiff)
        error = name + ": byte 0: " + lineOf(source, "no TIFF header");
    const bool done = tiff && decodePages(tiff.get(), source, name, maxBytes, out, error);
    if(!done)
        out = PixelData();
    return done;
}

OSG_END_NAMESPACE
