#include <OpenSG/OSGPNGCodec.h>

#include <gtest/gtest.h>

#include <random>

#include "VolumeFiles.h"

using namespace osg;

namespace
{

PixelData decoded(const Bytes &file)
{
    PixelData out;
    std::string error;
    EXPECT_TRUE(decodePNG(file.data(), file.size(), "a.png", out, error)) << error;
    return out;
}

std::string refusal(const Bytes &file, std::uint64_t maxBytes = DefaultMaxPixelBytes)
{
    PixelData out;
    std::string error;
    EXPECT_FALSE(decodePNG(file.data(), file.size(), "a.png", out, error, maxBytes));
    EXPECT_TRUE(out.data.empty());
    EXPECT_EQ(error.find('\n'), std::string::npos);
    return error;
}

Bytes smallFile()
{
    return pngFile(2, 2, 8, 2, {0, 1, 2, 3, 4, 5, 6, 0, 7, 8, 9, 10, 11, 12});
}

} // namespace

TEST(PNGCodec, TheBottomRowOfThePictureIsTheFirstInMemory)
{
    const PixelData out = decoded(smallFile());
    EXPECT_EQ(out.width, 2);
    EXPECT_EQ(out.height, 2);
    EXPECT_EQ(out.depth, 1);
    EXPECT_EQ(out.pixelFormat, 6407u);
    EXPECT_EQ(out.dataType, 5121u);
    EXPECT_EQ(out.data, (Bytes{7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}));
}

TEST(PNGCodec, GreyOfOneTwoAndFourBitsIsWidenedToEight)
{
    EXPECT_EQ(decoded(pngFile(3, 1, 1, 0, {0, 0xA0})).data, (Bytes{255, 0, 255}));
    EXPECT_EQ(decoded(pngFile(4, 1, 2, 0, {0, 0x1B})).data, (Bytes{0, 85, 170, 255}));
    EXPECT_EQ(decoded(pngFile(2, 1, 4, 0, {0, 0x1F})).data, (Bytes{17, 255}));
}

TEST(PNGCodec, GreyOfSixteenBitsComesInTheMachinesByteOrder)
{
    const PixelData out = decoded(pngFile(2, 1, 16, 0, {0, 0x12, 0x34, 0xAB, 0xCD}));
    EXPECT_EQ(out.pixelFormat, 6409u);
    EXPECT_EQ(out.dataType, 5123u);
    EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (std::vector<std::uint16_t>{0x1234, 0xABCD}));
}

TEST(PNGCodec, GreyAlphaAndColourAlphaKeepTheirChannels)
{
    const PixelData la = decoded(pngFile(1, 1, 8, 4, {0, 7, 9}));
    EXPECT_EQ(la.pixelFormat, 6410u);
    EXPECT_EQ(la.data, (Bytes{7, 9}));
    const PixelData rgba = decoded(pngFile(1, 1, 8, 6, {0, 7, 9, 11, 13}));
    EXPECT_EQ(rgba.pixelFormat, 6408u);
    EXPECT_EQ(rgba.data, (Bytes{7, 9, 11, 13}));
}

TEST(PNGCodec, APaletteIsLookedUpAndItsTransparencyBecomesAlpha)
{
    const Bytes palette = {10, 20, 30, 40, 50, 60};
    const PixelData rgb = decoded(pngFile(2, 1, 8, 3, {0, 1, 0}, {{"PLTE", palette}}));
    EXPECT_EQ(rgb.pixelFormat, 6407u);
    EXPECT_EQ(rgb.data, (Bytes{40, 50, 60, 10, 20, 30}));
    const PixelData rgba = decoded(pngFile(2, 1, 8, 3, {0, 1, 0}, {{"PLTE", palette}, {"tRNS", {99}}}));
    EXPECT_EQ(rgba.pixelFormat, 6408u);
    EXPECT_EQ(rgba.data, (Bytes{40, 50, 60, 255, 10, 20, 30, 99}));
}

TEST(PNGCodec, ATransparentGreyBecomesAnAlphaChannel)
{
    const PixelData out = decoded(pngFile(2, 1, 8, 0, {0, 5, 6}, {{"tRNS", {0, 6}}}));
    EXPECT_EQ(out.pixelFormat, 6410u);
    EXPECT_EQ(out.data, (Bytes{5, 255, 6, 0}));
}

TEST(PNGCodec, AnInterlacedPictureReadsAsAPlainOne)
{
    // 2 x 2 of grey: pass 1 holds the top left pixel, pass 6 the top right, pass 7 the second row.
    const PixelData out = decoded(pngFile(2, 2, 8, 0, {0, 1, 0, 2, 0, 3, 4}, {}, true));
    EXPECT_EQ(out.data, (Bytes{3, 4, 1, 2}));
}

TEST(PNGCodec, WhatIsEncodedDecodesToTheSamePixels)
{
    const unsigned seed = 11;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for(const unsigned format : {6409u, 6410u, 6407u, 6408u})
        for(const unsigned type : {5121u, 5123u})
        {
            Bytes pixels(5 * 3 * pixelChannels(format) * (type == 5123u ? 2 : 1));
            for(std::uint8_t &b : pixels)
                b = static_cast<std::uint8_t>(random());
            PixelView in;
            in.width = 5;
            in.height = 3;
            in.depth = 1;
            in.pixelFormat = format;
            in.dataType = type;
            in.data = pixels.data();
            Bytes file;
            std::string error;
            ASSERT_TRUE(encodePNG(in, "b.png", file, error)) << error;
            const PixelData out = decoded(file);
            EXPECT_EQ(out.pixelFormat, format);
            EXPECT_EQ(out.dataType, type);
            EXPECT_EQ(out.data, pixels);
        }
}

TEST(PNGCodec, FloatPixelsAreNotEncoded)
{
    const float pixel = 1.f;
    PixelView in;
    in.width = in.height = in.depth = 1;
    in.dataType = 5126;
    in.data = reinterpret_cast<const std::uint8_t *>(&pixel);
    Bytes file;
    std::string error;
    EXPECT_FALSE(encodePNG(in, "b.png", file, error));
    EXPECT_EQ(
        error,
        "b.png: PNG holds L, LA, RGB and RGBA pictures of 8 or 16 bits, not 1 x 1 x 1 pixels of format 6409 "
        "and type 5126");
}

TEST(PNGCodec, EveryTruncationIsRefusedWithTheNameAndTheByte)
{
    const Bytes file = smallFile();
    for(std::size_t length = 0; length < file.size(); ++length)
    {
        const std::string error =
            refusal(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)));
        if(length < 8)
            EXPECT_EQ(error, "a.png: byte 0: no PNG signature");
        else
            EXPECT_EQ(error.rfind("a.png: byte ", 0), 0u) << length << ": " << error;
    }
}

TEST(PNGCodec, AFileThatEndsInItsPixelsSaysWhere)
{
    Bytes file = smallFile();
    file.resize(45);
    EXPECT_EQ(refusal(file), "a.png: byte 45: the file ends here");
}

TEST(PNGCodec, ABrokenCheckSumOfTheHeaderIsRefused)
{
    Bytes file = smallFile();
    file[29] ^= 1;
    EXPECT_EQ(refusal(file), "a.png: byte 33: IHDR: CRC error");
}

TEST(PNGCodec, AHeaderThatPromisesMoreThanTheFileCanHoldIsRefusedBeforeMemoryIsAskedFor)
{
    const Bytes file = pngFile(900000, 900000, 8, 6, {0, 1, 2, 3, 4});
    EXPECT_EQ(refusal(file), "a.png: byte 16: 900000 x 900000 pixels can't be in a file of " +
                                 std::to_string(file.size()) + " bytes");
}

TEST(PNGCodec, APictureOverTheLimitIsRefused)
{
    EXPECT_EQ(refusal(smallFile(), 11), "a.png: 12 bytes are over the limit of 11");
}

TEST(PNGCodec, FlippedBytesNeverGiveMoreThanAPictureOfTheHeadersSizeOrOneLine)
{
    const unsigned seed = 5;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const Bytes good = smallFile();
    int refused = 0;
    for(int i = 0; i < 2000; ++i)
    {
        Bytes file = good;
        for(int flips = 0; flips < 3; ++flips)
            file[random() % file.size()] = static_cast<std::uint8_t>(random());
        PixelData out;
        std::string error;
        if(decodePNG(file.data(), file.size(), "a.png", out, error, 1 << 20))
            EXPECT_EQ(out.data.size(), std::size_t(out.width) * std::size_t(out.height) *
                                           pixelChannels(out.pixelFormat) *
                                           (out.dataType == 5123u ? 2u : 1u));
        else
        {
            ++refused;
            EXPECT_EQ(error.rfind("a.png: ", 0), 0u) << error;
        }
    }
    EXPECT_GT(refused, 1500);
}
