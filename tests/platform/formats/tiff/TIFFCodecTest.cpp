#include <OSGTIFFCodec.h>

#include <gtest/gtest.h>
#include <tiffio.h>

#include <cstring>
#include <functional>

#include "platform/formats/DamagedFiles.h"

using namespace osg;

namespace
{

/// A file in memory that libtiff writes to.
struct Memory
{
    Bytes bytes;
    std::size_t at = 0;
};

TIFF *openMemory(Memory &memory, const char *mode)
{
    const auto read = [](thandle_t h, void *to, tmsize_t count) -> tmsize_t {
        Memory &m = *static_cast<Memory *>(h);
        const std::size_t n = m.at < m.bytes.size() ? std::min(m.bytes.size() - m.at, std::size_t(count)) : 0;
        if(n > 0)
            std::memcpy(to, m.bytes.data() + m.at, n);
        m.at += n;
        return tmsize_t(n);
    };
    const auto write = [](thandle_t h, void *from, tmsize_t count) -> tmsize_t {
        Memory &m = *static_cast<Memory *>(h);
        m.bytes.resize(std::max(m.bytes.size(), m.at + std::size_t(count)));
        std::memcpy(m.bytes.data() + m.at, from, std::size_t(count));
        m.at += std::size_t(count);
        return count;
    };
    const auto seek = [](thandle_t h, toff_t offset, int from) -> toff_t {
        Memory &m = *static_cast<Memory *>(h);
        m.at = offset + (from == SEEK_CUR ? m.at : from == SEEK_END ? m.bytes.size() : 0);
        return m.at;
    };
    const auto size = [](thandle_t h) -> toff_t { return static_cast<Memory *>(h)->bytes.size(); };
    return TIFFClientOpen(
        "memory", mode, &memory, read, write, seek, [](thandle_t) { return 0; }, size, nullptr, nullptr);
}

/// What one page is to be; rows top first, samples interleaved or, where `separate`, plane behind plane.
struct PageOf
{
    unsigned width = 2, height = 2;
    unsigned channels = 1, bits = 8, format = SAMPLEFORMAT_UINT;
    unsigned photometric = PHOTOMETRIC_MINISBLACK, compression = COMPRESSION_NONE;
    bool separate = false, tiled = false;
    Bytes samples;
    std::function<void(TIFF *)> more = [](TIFF *) {};
};

void writePage(TIFF *tiff, const PageOf &page)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, page.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, page.height);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, page.channels);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, page.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, page.format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, page.photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, page.compression);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, page.separate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    if(page.channels == 4)
    {
        const std::uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
    }
    if(page.tiled)
    {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 16);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, 16);
    }
    else
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 3);
    page.more(tiff);
    const unsigned planes = page.separate ? page.channels : 1;
    const std::size_t pixel = page.bits < 8 ? 0 : page.bits / 8 * (page.channels / planes);
    const std::size_t row = page.bits < 8 ? (page.width * page.bits + 7) / 8 : page.width * pixel;
    Bytes samples = page.samples;
    ASSERT_EQ(samples.size(), row * page.height * planes);
    for(unsigned plane = 0; plane < planes; ++plane)
    {
        std::uint8_t *from = samples.data() + plane * row * page.height;
        if(!page.tiled)
            for(unsigned y = 0; y < page.height; ++y)
                ASSERT_EQ(TIFFWriteScanline(tiff, from + y * row, y, std::uint16_t(plane)), 1);
        else
            for(unsigned y = 0; y < page.height; y += 16)
                for(unsigned x = 0; x < page.width; x += 16)
                {
                    Bytes tile(256 * pixel);
                    for(unsigned j = 0; j < 16 && y + j < page.height; ++j)
                        std::memcpy(tile.data() + j * 16 * pixel, from + (y + j) * row + x * pixel,
                                    std::min(16u, page.width - x) * pixel);
                    ASSERT_GT(TIFFWriteTile(tiff, tile.data(), x, y, 0, std::uint16_t(plane)), 0);
                }
    }
}

Bytes tiffFile(const std::vector<PageOf> &pages, const char *mode = "w")
{
    Memory memory;
    TIFF *tiff = openMemory(memory, mode);
    for(const PageOf &page : pages)
    {
        writePage(tiff, page);
        TIFFWriteDirectory(tiff);
    }
    TIFFClose(tiff);
    return memory.bytes;
}

template <class T>
Bytes asBytes(const std::vector<T> &values)
{
    Bytes bytes(values.size() * sizeof(T));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

template <class T>
std::vector<T> fromBytes(const Bytes &bytes)
{
    std::vector<T> values(bytes.size() / sizeof(T));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(T));
    return values;
}

PixelData decoded(const Bytes &file)
{
    PixelData out;
    std::string error;
    EXPECT_TRUE(decodeTIFF(file.data(), file.size(), "a.tif", out, error)) << error;
    return out;
}

std::string refusal(const Bytes &file, std::uint64_t maxBytes = DefaultMaxPixelBytes)
{
    PixelData out;
    std::string error;
    EXPECT_FALSE(decodeTIFF(file.data(), file.size(), "a.tif", out, error, maxBytes));
    EXPECT_TRUE(out.data.empty());
    return error;
}

bool decode(const std::uint8_t *bytes, std::size_t size, PixelData &out, std::string &error)
{
    return decodeTIFF(bytes, size, "a.tif", out, error, 1 << 24);
}

template <class T>
PageOf greyPage(unsigned width, unsigned height, unsigned format, const std::vector<T> &samples)
{
    PageOf page;
    page.width = width;
    page.height = height;
    page.bits = 8 * sizeof(T);
    page.format = format;
    page.samples = asBytes(samples);
    return page;
}

/// 20 x 18 pixels of so many channels: more than a tile, and a short last strip.
Bytes pattern(unsigned channels)
{
    Bytes samples;
    for(unsigned i = 0; i < 20 * 18 * channels; ++i)
        samples.push_back(static_cast<std::uint8_t>(i * 7 + i / 50));
    return samples;
}

Bytes rowsTurned(const Bytes &samples, std::size_t rows)
{
    const std::size_t row = samples.size() / rows;
    Bytes turned;
    for(std::size_t y = rows; y-- > 0;)
        turned.insert(turned.end(), samples.begin() + std::ptrdiff_t(y * row),
                      samples.begin() + std::ptrdiff_t((y + 1) * row));
    return turned;
}

} // namespace

TEST(TIFFCodec, OnePageIsAPictureWhoseBottomRowIsTheFirstInMemory)
{
    const PixelData out = decoded(tiffFile({greyPage<std::uint8_t>(2, 2, SAMPLEFORMAT_UINT, {1, 2, 3, 4})}));
    EXPECT_EQ(out.width, 2);
    EXPECT_EQ(out.height, 2);
    EXPECT_EQ(out.depth, 1);
    EXPECT_EQ(out.pixelFormat, 6409u);
    EXPECT_EQ(out.data, (Bytes{3, 4, 1, 2}));
    EXPECT_FALSE(out.hasSpacing);
    EXPECT_TRUE(out.notices.empty());
}

TEST(TIFFCodec, PagesAreAVolumeWithTheRowsOfTheFile)
{
    const PixelData out =
        decoded(tiffFile({greyPage<std::uint8_t>(2, 2, SAMPLEFORMAT_UINT, {1, 2, 3, 4}),
                          greyPage<std::uint8_t>(2, 2, SAMPLEFORMAT_UINT, {5, 6, 7, 8}),
                          greyPage<std::uint8_t>(2, 2, SAMPLEFORMAT_UINT, {9, 10, 11, 12})}));
    EXPECT_EQ(out.depth, 3);
    EXPECT_EQ(out.data, (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    EXPECT_TRUE(out.hasValues);
    EXPECT_EQ(out.valueSlope, 1.0);
    EXPECT_EQ(out.valueIntercept, 0.0);
}

TEST(TIFFCodec, EveryCompressionOfIntegersReadsAsThePlainFile)
{
    for(unsigned channels : {1u, 3u, 4u})
        for(bool separate : {false, true})
            for(bool tiled : {false, true})
                for(unsigned compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE,
                                            COMPRESSION_PACKBITS, COMPRESSION_LZMA, COMPRESSION_ZSTD})
                    for(const char *mode : {"wl", "wb", "w8"})
                    {
                        if(!TIFFIsCODECConfigured(std::uint16_t(compression)))
                            continue;
                        PageOf page;
                        page.width = 20;
                        page.height = 18;
                        page.channels = channels;
                        page.photometric = channels == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
                        page.compression = compression;
                        page.tiled = tiled;
                        page.separate = separate;
                        const Bytes samples = pattern(channels);
                        page.samples = samples;
                        if(separate)
                            for(std::size_t i = 0; i < samples.size(); ++i)
                                page.samples[i % channels * 360 + i / channels] = samples[i];
                        const PixelData out = decoded(tiffFile({page}, mode));
                        EXPECT_EQ(pixelChannels(out.pixelFormat), channels);
                        EXPECT_EQ(out.data, rowsTurned(samples, 18))
                            << channels << separate << tiled << " " << compression << mode;
                    }
}

TEST(TIFFCodec, WordsOfEitherByteOrderComeAsTheyAre)
{
    for(const char *mode : {"wl", "wb"})
    {
        const PixelData out =
            decoded(tiffFile({greyPage<std::uint16_t>(2, 1, SAMPLEFORMAT_UINT, {0x1234, 0xabcd})}, mode));
        EXPECT_EQ(out.dataType, 5123u);
        EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (std::vector<std::uint16_t>{0x1234, 0xabcd}));
    }
}

TEST(TIFFCodec, SignedAndWideSamplesAndFloatsSayWhatTheyStandFor)
{
    PixelData out = decoded(tiffFile({greyPage<std::int16_t>(2, 1, SAMPLEFORMAT_INT, {-1000, 2000})}));
    EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (std::vector<std::uint16_t>{0, 3000}));
    EXPECT_EQ(out.valueIntercept, -1000.0);
    EXPECT_EQ(out.notices,
              (std::vector<std::string>{
                  "a.tif: int16 voxels in [-1000, 2000], less their minimum, brought to 16 bits"}));

    out = decoded(tiffFile({greyPage<std::int8_t>(2, 1, SAMPLEFORMAT_INT, {-3, 4})}));
    EXPECT_EQ(out.data, (Bytes{0, 7}));
    EXPECT_EQ(out.valueIntercept, -3.0);

    out = decoded(tiffFile({greyPage<std::uint32_t>(2, 1, SAMPLEFORMAT_UINT, {70000, 70010})}));
    EXPECT_EQ(out.data, (Bytes{0, 10}));
    EXPECT_EQ(out.valueIntercept, 70000.0);

    out = decoded(tiffFile({greyPage<float>(3, 1, SAMPLEFORMAT_IEEEFP, {-1.f, 0.f, 1.f})}));
    EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (std::vector<std::uint16_t>{0, 32768, 65535}));
    EXPECT_EQ(out.valueSlope * 65535 + out.valueIntercept, 1.0);
    EXPECT_EQ(out.valueIntercept, -1.0);

    out = decoded(tiffFile({greyPage<double>(2, 1, SAMPLEFORMAT_IEEEFP, {1e3, 3e3})}));
    EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (std::vector<std::uint16_t>{0, 65535}));
    EXPECT_EQ(out.valueIntercept, 1e3);
}

TEST(TIFFCodec, MinIsWhiteIsTurnedOverAndItsValuesStay)
{
    PageOf page = greyPage<std::uint8_t>(3, 1, SAMPLEFORMAT_UINT, {0, 100, 255});
    page.photometric = PHOTOMETRIC_MINISWHITE;
    PixelData out = decoded(tiffFile({page}));
    EXPECT_EQ(out.data, (Bytes{255, 155, 0}));
    EXPECT_EQ(out.valueSlope, -1.0);
    EXPECT_EQ(out.valueIntercept, 255.0);

    page = greyPage<std::int16_t>(2, 1, SAMPLEFORMAT_INT, {-32768, 500});
    page.photometric = PHOTOMETRIC_MINISWHITE;
    out = decoded(tiffFile({page}));
    const auto words = fromBytes<std::uint16_t>(out.data);
    ASSERT_EQ(words.size(), 2u);
    EXPECT_EQ(out.valueSlope * words[0] + out.valueIntercept, -32768.0);
    EXPECT_EQ(out.valueSlope * words[1] + out.valueIntercept, 500.0);
    EXPECT_GT(words[0], words[1]);
}

TEST(TIFFCodec, FewBitsAreWidenedToEight)
{
    PageOf page;
    page.width = 10;
    page.height = 1;
    page.bits = 1;
    page.samples = {0xa0, 0x40};
    const PixelData out = decoded(tiffFile({page}));
    EXPECT_EQ(out.data, (Bytes{255, 0, 255, 0, 0, 0, 0, 0, 0, 255}));
    EXPECT_EQ(out.valueSlope, 1.0 / 255.0);
    page.bits = 4;
    page.width = 3;
    page.samples = {0x1f, 0x70};
    EXPECT_EQ(decoded(tiffFile({page})).data, (Bytes{17, 255, 119}));
    page.bits = 1;
    page.width = 16;
    page.samples = {0x0f, 0xf0};
    page.photometric = PHOTOMETRIC_MINISWHITE;
    page.compression = COMPRESSION_CCITTFAX4;
    EXPECT_EQ(decoded(tiffFile({page})).data,
              (Bytes{255, 255, 255, 255, 0, 0, 0, 0, 0, 0, 0, 0, 255, 255, 255, 255}));
}

TEST(TIFFCodec, PalettesAreLookedUp)
{
    PageOf page = greyPage<std::uint8_t>(2, 2, SAMPLEFORMAT_UINT, {0, 1, 1, 1});
    page.photometric = PHOTOMETRIC_PALETTE;
    page.more = [](TIFF *tiff) {
        std::vector<std::uint16_t> red(256), green(256), blue(256);
        red[0] = 10 * 257;
        green[0] = 20 * 257;
        blue[0] = 30 * 257;
        blue[1] = 65535;
        TIFFSetField(tiff, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
    };
    const PixelData out = decoded(tiffFile({page}));
    EXPECT_EQ(out.pixelFormat, 6407u);
    EXPECT_EQ(out.data, (Bytes{0, 0, 255, 0, 0, 255, 10, 20, 30, 0, 0, 255}));
    EXPECT_FALSE(out.hasValues);
}

TEST(TIFFCodec, PackedByJPEGItComesAsRGB)
{
    PageOf page;
    page.width = page.height = 16;
    page.channels = 3;
    page.photometric = PHOTOMETRIC_YCBCR;
    page.compression = COMPRESSION_JPEG;
    page.more = [](TIFF *tiff) {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 16);
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    };
    for(int i = 0; i < 256; ++i)
        page.samples.insert(page.samples.end(), {200, 100, 50});
    const PixelData out = decoded(tiffFile({page}));
    ASSERT_EQ(out.data.size(), 768u);
    EXPECT_NEAR(out.data[0], 200, 3);
    EXPECT_NEAR(out.data[1], 100, 3);
    EXPECT_NEAR(out.data[2], 50, 3);
}

TEST(TIFFCodec, ThumbnailsAreLeftOutWithANotice)
{
    const PageOf page = greyPage<std::uint8_t>(2, 2, SAMPLEFORMAT_UINT, {1, 2, 3, 4});
    const PageOf thumbnail = greyPage<std::uint8_t>(1, 1, SAMPLEFORMAT_UINT, {9});
    const PixelData out = decoded(tiffFile({page, thumbnail, page, thumbnail}));
    EXPECT_EQ(out.depth, 2);
    EXPECT_EQ(out.data, (Bytes{1, 2, 3, 4, 1, 2, 3, 4}));
    EXPECT_EQ(out.notices,
              (std::vector<std::string>{
                  "a.tif: 2 of 4 pages are of another size or type than the rest and left out"}));
    EXPECT_EQ(decoded(tiffFile({thumbnail, page})).data, (Bytes{3, 4, 1, 2}));
}

TEST(TIFFCodec, TheSpacingIsInMillimetresWhereTheUnitIsKnown)
{
    const auto file = [](unsigned unit, float x, float y, const char *description) {
        PageOf page = greyPage<std::uint8_t>(1, 1, SAMPLEFORMAT_UINT, {1});
        page.more = [=](TIFF *tiff) {
            TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, unit);
            if(x > 0.f)
            {
                TIFFSetField(tiff, TIFFTAG_XRESOLUTION, double(x));
                TIFFSetField(tiff, TIFFTAG_YRESOLUTION, double(y));
            }
            if(*description)
                TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, description);
        };
        return decoded(tiffFile({page, page}));
    };
    const auto expectSpacing = [](const PixelData &out, float x, float y, float z) {
        EXPECT_TRUE(out.hasSpacing);
        EXPECT_FLOAT_EQ(out.spacing[0], x);
        EXPECT_FLOAT_EQ(out.spacing[1], y);
        EXPECT_FLOAT_EQ(out.spacing[2], z);
    };
    expectSpacing(file(RESUNIT_INCH, 254.f, 127.f, ""), 0.1f, 0.2f, 0.15f);
    expectSpacing(file(RESUNIT_CENTIMETER, 100.f, 50.f, ""), 0.1f, 0.2f, 0.15f);
    expectSpacing(
        file(RESUNIT_NONE, 4.f, 4.f, "ImageJ=1.53t\nimages=2\nslices=2\nunit=micron\nspacing=0.75\n"), 0.25f,
        0.25f, 0.75f);
    expectSpacing(file(RESUNIT_CENTIMETER, 100.f, 100.f, "ImageJ=1.53t\nunit=cm\nspacing=0.05\n"), 0.1f, 0.1f,
                  0.5f);
    expectSpacing(file(RESUNIT_NONE, 0.f, 0.f, "ImageJ=1.53t\nspacing=2.5\n"), 1.f, 1.f, 2.5f);
    EXPECT_FALSE(file(RESUNIT_NONE, 0.f, 0.f, "nospacing=2").hasSpacing);
}

TEST(TIFFCodec, OfChannelsAndFramesTheFirstAreTaken)
{
    std::vector<PageOf> pages;
    for(std::uint8_t i = 0; i < 12; ++i)
    {
        pages.push_back(greyPage<std::uint8_t>(1, 1, SAMPLEFORMAT_UINT, {i}));
        pages.back().more = [](TIFF *tiff) {
            TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION,
                         "ImageJ=1.53t\nimages=12\nchannels=2\nslices=3\nframes=2\n");
        };
    }
    const PixelData out = decoded(tiffFile(pages));
    EXPECT_EQ(out.data, (Bytes{0, 2, 4}));
    EXPECT_EQ(out.notices,
              (std::vector<std::string>{"a.tif: the first of 2 channels and of 2 frames is taken"}));
}

TEST(TIFFCodec, EachRefusalIsOneLine)
{
    EXPECT_EQ(refusal({}), "a.tif: byte 0: Cannot read TIFF header");
    EXPECT_EQ(refusal({'M', 'Z', 1, 2, 3, 4, 5, 6}),
              "a.tif: byte 0: Not a TIFF or MDI file, bad magic number 23117 (0x5a4d)");
    const Bytes file = tiffFile({greyPage<std::uint8_t>(2, 2, SAMPLEFORMAT_UINT, {1, 2, 3, 4})});
    EXPECT_EQ(refusal(file, 3), "a.tif: 4 bytes are over the limit of 3");

    PageOf five;
    five.width = five.height = 1;
    five.channels = 5;
    five.samples = {1, 2, 3, 4, 5};
    EXPECT_EQ(refusal(tiffFile({five})), "a.tif: 5 channels are not read");

    // Both sides are in entries of twelve bytes: tag, type 3 or 4, count 1, value.
    Bytes huge = file;
    for(std::size_t i = 8; i + 12 < huge.size(); ++i)
        if((huge[i] == 0x00 || huge[i] == 0x01) && huge[i + 1] == 1 && huge[i + 3] == 0 && huge[i + 4] == 1 &&
           huge[i + 5] == 0)
            huge[i + 9] = 0xff;
    EXPECT_EQ(refusal(huge),
              "a.tif: 65282 x 65282 pixels can't be in a file of " + std::to_string(file.size()) + " bytes");
}

TEST(TIFFCodec, EveryTruncationIsRefused)
{
    PageOf page;
    page.width = 20;
    page.height = 18;
    page.samples = pattern(1);
    // Directories come behind the pixels, so every cut meets one; what may lack are unused bytes at the end.
    EXPECT_EQ(readTruncations(tiffFile({page, page}), "a.tif: ", decode), 0u);
    page.compression = COMPRESSION_LZW;
    page.tiled = true;
    EXPECT_EQ(readTruncations(tiffFile({page, page}), "a.tif: ", decode), 0u);
}

TEST(TIFFCodec, FlippedBytesGivePixelsOrOneLine)
{
    unsigned seed = 20261123;
    for(unsigned compression :
        {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS})
    {
        PageOf page;
        page.width = 20;
        page.height = 18;
        page.channels = 3;
        page.photometric = PHOTOMETRIC_RGB;
        page.samples = pattern(3);
        page.compression = compression;
        readFlipped(tiffFile({page, page}), "a.tif: ", seed++, 1000, decode);
    }
}
