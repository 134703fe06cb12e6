#include <OpenSG/OSGJPEGCodec.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <jpeglib.h>

#include "platform/formats/DamagedFiles.h"

using namespace osg;

namespace
{

/// A file of rows, top first, as libjpeg writes them; quality 100.
Bytes jpegFile(unsigned width, unsigned height, J_COLOR_SPACE space, int channels, const Bytes &rows,
               bool progressive = false, J_COLOR_SPACE stored = JCS_UNKNOWN, bool adobe = true)
{
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char *memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &memory, &size);
    jpeg.image_width = width;
    jpeg.image_height = height;
    jpeg.input_components = channels;
    jpeg.in_color_space = space;
    jpeg_set_defaults(&jpeg);
    if(stored != JCS_UNKNOWN)
        jpeg_set_colorspace(&jpeg, stored);
    jpeg.write_Adobe_marker = adobe ? jpeg.write_Adobe_marker : FALSE;
    jpeg_set_quality(&jpeg, 100, TRUE);
    if(progressive)
        jpeg_simple_progression(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    while(jpeg.next_scanline < height)
    {
        JSAMPROW row =
            const_cast<JSAMPROW>(rows.data() + std::size_t(jpeg.next_scanline) * width * unsigned(channels));
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    const Bytes file(memory, memory + size);
    jpeg_destroy_compress(&jpeg);
    std::free(memory);
    return file;
}

/// 16 x 16: the upper half one colour, the lower half another, so that no block holds both.
Bytes halves(const Bytes &upper, const Bytes &lower)
{
    Bytes rows;
    for(int y = 0; y < 16; ++y)
        for(int x = 0; x < 16; ++x)
            rows.insert(rows.end(), (y < 8 ? upper : lower).begin(), (y < 8 ? upper : lower).end());
    return rows;
}

PixelData decoded(const Bytes &file)
{
    PixelData out;
    std::string error;
    EXPECT_TRUE(decodeJPEG(file.data(), file.size(), "a.jpg", out, error)) << error;
    return out;
}

std::string refusal(const Bytes &file, std::uint64_t maxBytes = DefaultMaxPixelBytes)
{
    PixelData out;
    std::string error;
    EXPECT_FALSE(decodeJPEG(file.data(), file.size(), "a.jpg", out, error, maxBytes));
    EXPECT_TRUE(out.data.empty());
    return error;
}

bool decode(const std::uint8_t *bytes, std::size_t size, PixelData &out, std::string &error)
{
    return decodeJPEG(bytes, size, "a.jpg", out, error, 1 << 24);
}

/// Each sample of the pixel within `slack` of what is wanted: YCbCr is rounded on the way there and back.
void expectPixel(const PixelData &picture, int x, int y, const Bytes &wanted, int slack)
{
    const std::size_t channels = wanted.size();
    ASSERT_EQ(pixelChannels(picture.pixelFormat), channels);
    for(std::size_t c = 0; c < channels; ++c)
        EXPECT_NEAR(
            picture.data[(std::size_t(y) * std::size_t(picture.width) + std::size_t(x)) * channels + c],
            wanted[c], slack)
            << x << " " << y << " " << c;
}

PixelView viewOf(int width, int height, unsigned format, const Bytes &data, unsigned type = SampleUInt8)
{
    PixelView view;
    view.width = width;
    view.height = height;
    view.depth = 1;
    view.pixelFormat = format;
    view.dataType = type;
    view.data = data.data();
    return view;
}

} // namespace

TEST(JPEGCodec, TheBottomRowOfThePictureIsTheFirstInMemory)
{
    const PixelData out = decoded(jpegFile(16, 16, JCS_GRAYSCALE, 1, halves({255}, {0})));
    EXPECT_EQ(out.width, 16);
    EXPECT_EQ(out.height, 16);
    EXPECT_EQ(out.depth, 1);
    EXPECT_EQ(out.pixelFormat, 6409u);
    EXPECT_EQ(out.dataType, 5121u);
    EXPECT_FALSE(out.hasValues);
    EXPECT_TRUE(out.notices.empty());
    Bytes wanted(128, 0);
    wanted.resize(256, 255);
    EXPECT_EQ(out.data, wanted);
}

TEST(JPEGCodec, ColoursComeAsRGBFromSequentialAndProgressiveFiles)
{
    const Bytes rows = halves({200, 30, 60}, {10, 120, 250});
    for(bool progressive : {false, true})
    {
        const PixelData out = decoded(jpegFile(16, 16, JCS_RGB, 3, rows, progressive));
        EXPECT_EQ(out.pixelFormat, 6407u);
        expectPixel(out, 3, 15, {200, 30, 60}, 2);
        expectPixel(out, 3, 0, {10, 120, 250}, 2);
    }
}

TEST(JPEGCodec, InksOfAdobesAreTheLightThatTheyLetThrough)
{
    // 255 is no ink: red is 200 * 255 / 255, and half of black halves all.
    const Bytes rows = halves({200, 100, 50, 255}, {255, 255, 255, 128});
    for(J_COLOR_SPACE stored : {JCS_CMYK, JCS_YCCK})
    {
        const PixelData out = decoded(jpegFile(16, 16, JCS_CMYK, 4, rows, false, stored));
        expectPixel(out, 5, 12, {200, 100, 50}, 2);
        expectPixel(out, 5, 3, {128, 128, 128}, 2);
    }
}

TEST(JPEGCodec, InksWithoutAdobesMarkerAreInk)
{
    const Bytes rows = halves({55, 155, 205, 0}, {0, 0, 0, 127});
    const PixelData out = decoded(jpegFile(16, 16, JCS_CMYK, 4, rows, false, JCS_CMYK, false));
    expectPixel(out, 5, 12, {200, 100, 50}, 1);
    expectPixel(out, 5, 3, {128, 128, 128}, 1);
}

TEST(JPEGCodec, APictureSurvivesTheWriterAndTheReader)
{
    Bytes pixels;
    for(int y = 0; y < 37; ++y)
        for(int x = 0; x < 53; ++x)
            pixels.push_back(static_cast<std::uint8_t>(2 * x + 3 * y));
    std::string error;
    Bytes file;
    ASSERT_TRUE(encodeJPEG(viewOf(53, 37, PixelL, pixels), "a.jpg", file, error)) << error;
    const PixelData out = decoded(file);
    EXPECT_EQ(out.width, 53);
    EXPECT_EQ(out.height, 37);
    for(std::size_t i = 0; i < pixels.size(); ++i)
        ASSERT_NEAR(out.data[i], pixels[i], 4) << i;
}

TEST(JPEGCodec, AlphaIsLeftOutAndSixteenBitsAreRounded)
{
    std::string error;
    Bytes file, pixels;
    for(int i = 0; i < 256; ++i)
        pixels.insert(pixels.end(), {90, 160, 40, 7});
    ASSERT_TRUE(encodeJPEG(viewOf(16, 16, PixelRGBA, pixels), "a.jpg", file, error)) << error;
    expectPixel(decoded(file), 4, 4, {90, 160, 40}, 2);

    std::vector<std::uint16_t> words;
    for(int i = 0; i < 64; ++i)
        words.insert(words.end(), {static_cast<std::uint16_t>(128 * 257 + 128), 9});
    Bytes wide(words.size() * 2);
    std::memcpy(wide.data(), words.data(), wide.size());
    ASSERT_TRUE(encodeJPEG(viewOf(8, 8, PixelLA, wide, SampleUInt16), "a.jpg", file, error)) << error;
    EXPECT_EQ(decoded(file).data, Bytes(64, 128));
}

TEST(JPEGCodec, EachRefusalIsOneLineWithItsByte)
{
    EXPECT_EQ(refusal({}), "a.jpg: byte 0: no JPEG signature");
    EXPECT_EQ(refusal({1, 2, 3, 4}), "a.jpg: byte 0: no JPEG signature");
    EXPECT_EQ(refusal({0xff, 0xd8, 0xff}), "a.jpg: byte 3: the file ends here");
    const Bytes file = jpegFile(16, 16, JCS_GRAYSCALE, 1, halves({255}, {0}));
    EXPECT_EQ(refusal(file, 255), "a.jpg: 256 bytes are over the limit of 255");

    // The size stands behind the start of the frame: length, precision, height, width.
    Bytes huge = file;
    std::size_t frame = 0;
    while(!(huge[frame] == 0xff && huge[frame + 1] == 0xc0))
        ++frame;
    huge[frame + 5] = huge[frame + 7] = 0xff;
    const std::string line = refusal(huge);
    EXPECT_EQ(line.substr(line.find(": byte ") + 7).substr(line.substr(line.find(": byte ") + 7).find(':')),
              ": 65296 x 65296 pixels can't be in a file of " + std::to_string(file.size()) + " bytes");
}

TEST(JPEGCodec, WhatCantBeWrittenIsOneLine)
{
    std::string error;
    Bytes file;
    const Bytes pixels(16);
    EXPECT_FALSE(encodeJPEG(viewOf(0, 1, PixelL, pixels), "a.jpg", file, error));
    EXPECT_EQ(error,
              "a.jpg: JPEG holds L and RGB pictures of 8 bits with sides up to 65500, not 0 x 1 x 1 pixels "
              "of format 6409 and type 5121");
    EXPECT_FALSE(encodeJPEG(viewOf(65501, 1, PixelL, pixels), "a.jpg", file, error));
    PixelView volume = viewOf(2, 2, PixelL, pixels);
    volume.depth = 2;
    EXPECT_FALSE(encodeJPEG(volume, "a.jpg", file, error));
    EXPECT_FALSE(encodeJPEG(viewOf(1, 1, PixelL, pixels, 5126), "a.jpg", file, error));
}

TEST(JPEGCodec, AFileThatLacksOnlyItsEndIsReadWithANotice)
{
    Bytes file = jpegFile(16, 16, JCS_GRAYSCALE, 1, halves({255}, {0}));
    const PixelData whole = decoded(file);
    file.resize(file.size() - 2);
    const PixelData out = decoded(file);
    EXPECT_EQ(out.data, whole.data);
    EXPECT_EQ(out.notices, (std::vector<std::string>{"a.jpg: the end marker lacks"}));
}

TEST(JPEGCodec, WhatLibjpegWarnsOfIsOneNotice)
{
    Bytes file = jpegFile(16, 16, JCS_GRAYSCALE, 1, halves({255}, {0}));
    const Bytes garbage = {1, 2, 3};
    // The signature must stay, so the garbage goes behind the first segment.
    const std::size_t next = 4 + std::size_t(file[4]) * 256 + file[5];
    file.insert(file.begin() + std::ptrdiff_t(next), garbage.begin(), garbage.end());
    const PixelData out = decoded(file);
    ASSERT_EQ(out.notices.size(), 1u);
    EXPECT_EQ(out.notices[0], "a.jpg: Corrupt JPEG data: 3 extraneous bytes before marker 0xdb");
}

TEST(JPEGCodec, NoTruncationIsReadButThoseBehindThePixels)
{
    Bytes rows;
    for(int i = 0; i < 24 * 24 * 3; ++i)
        rows.push_back(static_cast<std::uint8_t>(i * 37));
    EXPECT_LE(readTruncations(jpegFile(24, 24, JCS_RGB, 3, rows), "a.jpg: ", decode), 2u);
    // A progressive file may end behind any of its scans.
    EXPECT_LE(readTruncations(jpegFile(24, 24, JCS_RGB, 3, rows, true), "a.jpg: ", decode), 200u);
}

TEST(JPEGCodec, FlippedBytesGiveAPictureOrOneLine)
{
    Bytes rows;
    for(int i = 0; i < 24 * 24 * 3; ++i)
        rows.push_back(static_cast<std::uint8_t>(i * 37));
    readFlipped(jpegFile(24, 24, JCS_RGB, 3, rows), "a.jpg: ", 20261121, 1500, decode);
    readFlipped(jpegFile(24, 24, JCS_RGB, 3, rows, true), "a.jpg: ", 20261122, 1500, decode);
}
