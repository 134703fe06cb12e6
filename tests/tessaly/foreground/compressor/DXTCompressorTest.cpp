/// \file
/// What the compressor takes, what it refuses and with which message, and what becomes of an image.

#include <gtest/gtest.h>

#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGThread.h>

#include <cstring>
#include <random>
#include <string>

#include <foreground/DXTCompressor.h>

#include "ReferenceBlocks.h"

using namespace osg;
using test::Bytes;

namespace
{

/// Warnings of the compressor, while it lives.
class Warnings : public LogSink
{
public:
    Warnings() { osgLog().addSink(this, LOG_DEBUG); }
    Warnings(const Warnings &) = delete;
    Warnings &operator=(const Warnings &) = delete;
    ~Warnings() override { osgLog().removeSink(this); }

    void receive(const LogMessage &message) override
    {
        if(message.file != "DXTCompressor")
            return;
        EXPECT_EQ(message.level, LOG_WARNING);
        EXPECT_EQ(message.module, "OpenSG");
        texts.push_back(message.text);
    }

    std::vector<std::string> texts;
};

using Texts = std::vector<std::string>;

const char *const noImage = "DXTCompressor::compressImage: Invalid image. Boldly refusing to compress it.\n";
const char *const noPixels =
    "DXTCompressor::compressPixels: No pixels, or no room for the blocks. Doing nothing.\n";

const DXTCompressor::CompressedFormat allFormats[] = {DXTCompressor::AUTO_FORMAT, DXTCompressor::DXT1_FORMAT,
                                                      DXTCompressor::DXT5_FORMAT};
const auto unknownFormat = DXTCompressor::CompressedFormat(3);

Bytes randomBytes(std::size_t count, unsigned seed)
{
    std::mt19937 random(seed);
    Bytes bytes(count);
    for(std::uint8_t &byte : bytes)
        byte = std::uint8_t(random());
    return bytes;
}

ImagePtr imageOf(UInt32 pixelFormat, Int32 width, Int32 height, const Bytes &pixels, Int32 depth = 1)
{
    const ImagePtr image = Image::create();
    EXPECT_TRUE(image->set(pixelFormat, width, height, depth, 1, 1, 0.0, pixels.data()));
    endEditCP(image);
    return image;
}

Bytes pixelsOf(ImagePtr image)
{
    const std::vector<UInt8> &values = image->getPixel().getValues();
    return Bytes(values.begin(), values.end());
}

bool compress(ImagePtr image, DXTCompressor::CompressedFormat format)
{
    return DXTCompressor::the().compressImage(image, format);
}

/// As the compressor's shell sees a buffer.
bool compress(Bytes &out, const Bytes &in, unsigned width, unsigned height, unsigned pixelFormat,
              DXTCompressor::CompressedFormat format)
{
    return DXTCompressor::the().compressPixels(out.data(), in.data(), width, height,
                                               Image::PixelFormat(pixelFormat), format);
}

TEST(DXTCompressor, IsOneInstance)
{
    EXPECT_EQ(&DXTCompressor::the(), &DXTCompressor::the());
    EXPECT_EQ(int(DXTCompressor::AUTO_FORMAT), 0);
    EXPECT_EQ(int(DXTCompressor::DXT1_FORMAT), 1);
    EXPECT_EQ(int(DXTCompressor::DXT5_FORMAT), 2);
}

TEST(DXTCompressor, TakesDxt1ForAnImageWithoutAlphaAndDxt5ForOneWithAlphaWhenLeftToChoose)
{
    const Bytes rgb = randomBytes(8 * 8 * 3, 1);
    Bytes wide;
    for(std::size_t i = 0; i < rgb.size(); i += 3)
        wide.insert(wide.end(), {rgb[i], rgb[i + 1], rgb[i + 2], 255});
    const ImagePtr opaque = imageOf(Image::OSG_RGB_PF, 8, 8, rgb);
    EXPECT_TRUE(compress(opaque, DXTCompressor::AUTO_FORMAT));
    EXPECT_EQ(opaque->getPixelFormat(), 33776u);
    EXPECT_EQ(pixelsOf(opaque), test::referenceEncoded(wide, 8, 8, false));

    const Bytes rgba = randomBytes(8 * 8 * 4, 2);
    const ImagePtr clear = imageOf(Image::OSG_RGBA_PF, 8, 8, rgba);
    EXPECT_TRUE(compress(clear, DXTCompressor::AUTO_FORMAT));
    EXPECT_EQ(clear->getPixelFormat(), 33779u);
    EXPECT_EQ(pixelsOf(clear), test::referenceEncoded(rgba, 8, 8, true));
}

TEST(DXTCompressor, SetsThePixelFormatByTheFormatAndTheAlphaThatTheImageHad)
{
    struct Case
    {
        UInt32 from;
        DXTCompressor::CompressedFormat format;
        UInt32 to;
    };
    for(const Case &c : {Case{Image::OSG_RGB_PF, DXTCompressor::DXT1_FORMAT, 33776},
                         Case{Image::OSG_RGBA_PF, DXTCompressor::DXT1_FORMAT, 33777},
                         Case{Image::OSG_RGB_PF, DXTCompressor::DXT5_FORMAT, 33779},
                         Case{Image::OSG_RGBA_PF, DXTCompressor::DXT5_FORMAT, 33779},
                         Case{Image::OSG_LA_PF, DXTCompressor::AUTO_FORMAT, 33779},
                         Case{Image::OSG_L_PF, DXTCompressor::AUTO_FORMAT, 33776},
                         Case{Image::OSG_BGR_PF, DXTCompressor::AUTO_FORMAT, 33776},
                         Case{Image::OSG_BGRA_PF, DXTCompressor::AUTO_FORMAT, 33779}}) {
        const ImagePtr image = imageOf(c.from, 16, 4, randomBytes(16 * 4 * 4, 3));
        EXPECT_TRUE(compress(image, c.format));
        EXPECT_EQ(image->getPixelFormat(), c.to) << "from " << c.from;
        EXPECT_EQ(image->getPixel().size(), c.to == 33779 ? 64u : 32u);
    }
}

TEST(DXTCompressor, LeavesAnImageOfOneLevelFrameAndSide)
{
    const ImagePtr image = Image::create();
    ASSERT_TRUE(
        image->set(Image::OSG_RGBA_PF, 8, 8, 1, 4, 3, 0.5, nullptr, Image::OSG_UINT8_IMAGEDATA, true, 6));
    const Bytes first = randomBytes(8 * 8 * 4, 4);
    std::memset(image->editData(), 0x77, std::size_t(image->getSize()));
    std::memcpy(image->editData(), first.data(), first.size());
    endEditCP(image);
    EXPECT_TRUE(compress(image, DXTCompressor::DXT5_FORMAT));
    EXPECT_EQ(image->getWidth(), 8);
    EXPECT_EQ(image->getHeight(), 8);
    EXPECT_EQ(image->getDepth(), 1);
    EXPECT_EQ(image->getMipMapCount(), 1);
    EXPECT_EQ(image->getFrameCount(), 1);
    EXPECT_EQ(image->getFrameDelay(), 0.0);
    EXPECT_EQ(image->getSideCount(), 1);
    EXPECT_EQ(image->getDataType(), 5121);
    EXPECT_TRUE(image->isValid());
    EXPECT_EQ(pixelsOf(image), test::referenceEncoded(first, 8, 8, true));
}

TEST(DXTCompressor, TellsOthersAboutTheFormAndThePixels)
{
    const ImagePtr image = imageOf(Image::OSG_RGBA_PF, 8, 8, randomBytes(8 * 8 * 4, 5));
    const UInt64 before = image->getRevision();
    ChangeList &changes = *Thread::getCurrentChangeList();
    changes.clearAll();
    EXPECT_TRUE(compress(image, DXTCompressor::DXT1_FORMAT));
    EXPECT_NE(image->getRevision(), before);
    // Another aspect needs every field that tells how the pixels are to be read.
    const BitVector needed = Image::PixelFieldMask | Image::PixelFormatFieldMask | Image::WidthFieldMask |
                             Image::HeightFieldMask | Image::DataTypeFieldMask | Image::MipMapCountFieldMask;
    ASSERT_EQ(changes.getNumChanged(), 1u);
    EXPECT_EQ(changes.getChanged()[0].second & needed, needed);
}

TEST(DXTCompressor, ScalesSidesUpToTheNextMultiplesOfFour)
{
    const Bytes pixels = randomBytes(5 * 7 * 4, 6);
    const ImagePtr scaled = imageOf(Image::OSG_RGBA_PF, 5, 7, pixels);
    ASSERT_TRUE(scaled->scale(8, 8));
    const ImagePtr image = imageOf(Image::OSG_RGBA_PF, 5, 7, pixels);
    EXPECT_TRUE(compress(image, DXTCompressor::DXT5_FORMAT));
    EXPECT_EQ(image->getWidth(), 8);
    EXPECT_EQ(image->getHeight(), 8);
    EXPECT_EQ(pixelsOf(image), test::referenceEncoded(pixelsOf(scaled), 8, 8, true));
}

TEST(DXTCompressor, BringsOtherSamplesToBytes)
{
    const ImagePtr image = Image::create();
    const std::vector<Real32> samples(4 * 4 * 3, 0.4f);
    ASSERT_TRUE(image->set(Image::OSG_RGB_PF, 4, 4, 1, 1, 1, 0.0,
                           reinterpret_cast<const UInt8 *>(samples.data()), Image::OSG_FLOAT32_IMAGEDATA));
    endEditCP(image);
    EXPECT_TRUE(compress(image, DXTCompressor::AUTO_FORMAT));
    EXPECT_EQ(image->getDataType(), 5121);
    // 102 everywhere: 12 << 11 | 25 << 5 | 12
    EXPECT_EQ(pixelsOf(image), (Bytes{0x2C, 0x63, 0x2C, 0x63, 0, 0, 0, 0}));
}

TEST(DXTCompressor, LeavesADxt1ImageAsItIs)
{
    for(const UInt32 pixelFormat : {33776u, 33777u})
        for(const auto format : allFormats) {
            const Bytes blocks = randomBytes(32, 7);
            const ImagePtr image = imageOf(pixelFormat, 8, 8, blocks);
            const UInt64 before = image->getRevision();
            Warnings warnings;
            EXPECT_TRUE(compress(image, format));
            EXPECT_EQ(warnings.texts, Texts());
            EXPECT_EQ(image->getPixelFormat(), pixelFormat);
            EXPECT_EQ(pixelsOf(image), blocks);
            EXPECT_EQ(image->getRevision(), before);
            EXPECT_TRUE(DXTCompressor::the().isDXTCompressed(image));
        }
}

TEST(DXTCompressor, TreatsDxt3AndDxt5ImagesAsAnyOtherAndRefusesThem)
{
    for(const UInt32 pixelFormat : {33778u, 33779u}) {
        const Bytes blocks = randomBytes(64, 8);
        const ImagePtr image = imageOf(pixelFormat, 8, 8, blocks);
        Warnings warnings;
        EXPECT_FALSE(compress(image, DXTCompressor::DXT5_FORMAT));
        EXPECT_EQ(warnings.texts,
                  Texts{"DXTCompressor::compressImage: Invalid pixel format (" + std::to_string(pixelFormat) +
                        " -- must be rgba). Boldly refusing to compress it.\n"});
        EXPECT_EQ(pixelsOf(image), blocks);
    }
}

TEST(DXTCompressor, KnowsItsFormats)
{
    const DXTCompressor &compressor = DXTCompressor::the();
    for(const UInt32 pixelFormat : {33776u, 33777u, 33778u, 33779u})
        EXPECT_TRUE(compressor.isDXTCompressed(imageOf(pixelFormat, 4, 4, Bytes(16))));
    for(const UInt32 pixelFormat : {6407u, 6408u, 6409u, 32992u})
        EXPECT_FALSE(compressor.isDXTCompressed(imageOf(pixelFormat, 4, 4, Bytes(64))));
    EXPECT_FALSE(compressor.isDXTCompressed(Image::create()));
    Warnings warnings;
    EXPECT_FALSE(compressor.isDXTCompressed(NullFC));
    EXPECT_EQ(warnings.texts, Texts{"DXTCompressor::isDXTCompressed: There is no image.\n"});
}

TEST(DXTCompressor, RefusesANullImageWithOneMessageWhateverTheFormat)
{
    for(const auto format :
        {DXTCompressor::AUTO_FORMAT, DXTCompressor::DXT1_FORMAT, DXTCompressor::DXT5_FORMAT, unknownFormat}) {
        Warnings warnings;
        EXPECT_FALSE(compress(NullFC, format));
        EXPECT_EQ(warnings.texts, Texts{noImage});
    }
}

TEST(DXTCompressor, RefusesAVolume)
{
    const Bytes voxels = randomBytes(4 * 4 * 2 * 4, 9);
    const ImagePtr image = imageOf(Image::OSG_RGBA_PF, 4, 4, voxels, 2);
    Warnings warnings;
    EXPECT_FALSE(compress(image, DXTCompressor::DXT1_FORMAT));
    EXPECT_EQ(warnings.texts, Texts{noImage});
    EXPECT_EQ(pixelsOf(image), voxels);
    EXPECT_EQ(image->getDepth(), 2);
}

TEST(DXTCompressor, RefusesAnImageThatCannotBeScaled)
{
    // Blocks can't be scaled.
    const ImagePtr image = imageOf(33776, 5, 7, randomBytes(32, 10));
    Warnings warnings;
    EXPECT_FALSE(compress(image, DXTCompressor::DXT1_FORMAT));
    EXPECT_EQ(warnings.texts,
              Texts{"DXTCompressor::compressImage: Invalid image size (5 x 7 -- must be a multiple of "
                    "4). Boldly refusing to compress it.\n"});
}

TEST(DXTCompressor, RefusesSamplesThatCannotBecomeBytesAndKeepsWhatWasScaled)
{
    const ImagePtr image = Image::create();
    ASSERT_TRUE(
        image->set(Image::OSG_DEPTH_STENCIL_PF, 5, 4, 1, 1, 1, 0.0, nullptr, Image::OSG_UINT24_8_IMAGEDATA));
    endEditCP(image);
    Warnings warnings;
    EXPECT_FALSE(compress(image, DXTCompressor::DXT1_FORMAT));
    EXPECT_EQ(warnings.texts,
              Texts{"DXTCompressor::compressImage: Invalid data type (34042 -- must be uint8). "
                    "Boldly refusing to compress it.\n"});
    EXPECT_EQ(image->getWidth(), 8);
    EXPECT_EQ(image->getHeight(), 4);
    EXPECT_TRUE(image->isValid());
}

TEST(DXTCompressor, RefusesAnEmptyImageAndOneWithoutPixels)
{
    for(const auto format : allFormats) {
        Warnings warnings;
        EXPECT_FALSE(compress(Image::create(), format));
        EXPECT_EQ(warnings.texts,
                  Texts{"DXTCompressor::compressImage: Invalid pixel format (0 -- must be rgba). Boldly "
                        "refusing to compress it.\n"});
    }
    const ImagePtr image = Image::create();
    ASSERT_TRUE(
        image->set(Image::OSG_RGBA_PF, 4, 4, 1, 1, 1, 0.0, nullptr, Image::OSG_UINT8_IMAGEDATA, false));
    endEditCP(image);
    Warnings warnings;
    EXPECT_FALSE(compress(image, DXTCompressor::DXT5_FORMAT));
    EXPECT_EQ(warnings.texts,
              Texts{"DXTCompressor::compressImage: The image has no pixels, or not those of its size. "
                    "Boldly refusing to compress it.\n"});
}

TEST(DXTCompressor, RefusesAnImageOfNegativeSides)
{
    for(const Int32 side : {-4, -3, -2147483647 - 1, 2147483647}) {
        const ImagePtr image = imageOf(Image::OSG_RGBA_PF, 4, 4, randomBytes(64, 12));
        beginEditCP(image);
        image->setWidth(side);
        endEditCP(image);
        Warnings warnings;
        EXPECT_FALSE(compress(image, DXTCompressor::DXT5_FORMAT)) << side;
        EXPECT_EQ(warnings.texts.size(), 1u) << side;
        EXPECT_EQ(image->getPixelFormat(), 6408u);
    }
}

TEST(DXTCompressor, RefusesAnUnknownFormatAndKeepsThePixels)
{
    const Bytes pixels = randomBytes(64, 13);
    const ImagePtr image = imageOf(Image::OSG_RGBA_PF, 4, 4, pixels);
    Warnings warnings;
    EXPECT_FALSE(compress(image, unknownFormat));
    EXPECT_EQ(warnings.texts,
              Texts{"DXTCompressor::compressPixels: Unsupported targetFormat. Doing nothing.\n"});
    EXPECT_EQ(image->getPixelFormat(), 6408u);
    EXPECT_EQ(pixelsOf(image), pixels);
}

TEST(DXTCompressor, CompressesABufferOfEachPixelFormatInEachFormat)
{
    struct Case
    {
        unsigned pixelFormat;
        DXTCompressor::CompressedFormat format;
        bool isDxt5;
    };
    using C = DXTCompressor;
    for(const Case &c : {Case{6407, C::AUTO_FORMAT, false}, Case{6408, C::AUTO_FORMAT, true},
                         Case{32992, C::AUTO_FORMAT, false}, Case{32993, C::AUTO_FORMAT, true},
                         Case{6407, C::DXT1_FORMAT, false}, Case{6408, C::DXT1_FORMAT, false},
                         Case{32992, C::DXT1_FORMAT, false}, Case{32993, C::DXT1_FORMAT, false},
                         Case{6407, C::DXT5_FORMAT, true}, Case{6408, C::DXT5_FORMAT, true},
                         Case{32992, C::DXT5_FORMAT, true}, Case{32993, C::DXT5_FORMAT, true}}) {
        const bool isWide = c.pixelFormat == 6408 || c.pixelFormat == 32993;
        const bool isSwapped = c.pixelFormat >= 32992;
        const std::size_t pixelBytes = isWide ? 4 : 3;
        const Bytes in = randomBytes(12 * 8 * pixelBytes, 14);
        Bytes rgba;
        for(std::size_t i = 0; i < in.size(); i += pixelBytes)
            rgba.insert(rgba.end(), {in[i + (isSwapped ? 2 : 0)], in[i + 1], in[i + (isSwapped ? 0 : 2)],
                                     c.pixelFormat == 6408 ? in[i + 3] : std::uint8_t(255)});
        Bytes expected = test::referenceEncoded(rgba, 12, 8, c.isDxt5);
        expected.resize(96 + 16, 0xA5);
        Bytes out(96 + 16, 0xA5);
        EXPECT_TRUE(compress(out, in, 12, 8, c.pixelFormat, c.format));
        EXPECT_EQ(out, expected) << c.pixelFormat << " in format " << int(c.format);
    }
}

TEST(DXTCompressor, GivesAnRgbBufferAtAnOddAddressTheBlockOfAnAlignedOne)
{
    alignas(16) std::uint8_t aligned[48];
    alignas(16) std::uint8_t odd[64];
    const Bytes pixels = randomBytes(48, 15);
    std::memcpy(aligned, pixels.data(), 48);
    std::memcpy(odd + 1, pixels.data(), 48);
    Bytes one(8), other(8);
    const DXTCompressor &compressor = DXTCompressor::the();
    EXPECT_TRUE(
        compressor.compressPixels(one.data(), aligned, 4, 4, Image::OSG_RGB_PF, DXTCompressor::DXT1_FORMAT));
    EXPECT_TRUE(compressor.compressPixels(other.data(), odd + 1, 4, 4, Image::OSG_RGB_PF,
                                          DXTCompressor::DXT1_FORMAT));
    EXPECT_EQ(one, other);
}

TEST(DXTCompressor, KeepsTheAlphaOfABgraBufferFromTheEncoder)
{
    Bytes in = randomBytes(16 * 4 * 4, 16);
    Bytes one(64), other(64);
    EXPECT_TRUE(compress(one, in, 16, 4, 32993, DXTCompressor::DXT5_FORMAT));
    for(std::size_t i = 3; i < in.size(); i += 4)
        in[i] = std::uint8_t(~in[i]);
    EXPECT_TRUE(compress(other, in, 16, 4, 32993, DXTCompressor::DXT5_FORMAT));
    EXPECT_EQ(one, other);
}

TEST(DXTCompressor, RefusesABufferInTheOrderOfItsTests)
{
    const Bytes in = randomBytes(64 * 4, 17);
    Bytes out(64, 0xA5);
    const auto refusal = [&](unsigned width, unsigned height, unsigned pixelFormat,
                             DXTCompressor::CompressedFormat format) {
        Warnings warnings;
        EXPECT_FALSE(compress(out, in, width, height, pixelFormat, format));
        EXPECT_EQ(out, Bytes(64, 0xA5));
        return warnings.texts;
    };
    const Texts sides{"DXTCompressor::compressPixels: Width and height no multiple of 4. Doing nothing.\n"};
    EXPECT_EQ(refusal(5, 4, 6408, DXTCompressor::DXT1_FORMAT), sides);
    EXPECT_EQ(refusal(4, 7, 6408, DXTCompressor::DXT1_FORMAT), sides);
    EXPECT_EQ(refusal(unsigned(-1), 4, 6409, unknownFormat), sides);
    const Texts pixelFormat{"DXTCompressor::compressPixels: Unsupported inPixelFormat. Doing nothing.\n"};
    EXPECT_EQ(refusal(4, 4, 6409, DXTCompressor::DXT1_FORMAT), pixelFormat);
    EXPECT_EQ(refusal(4, 4, 33776, unknownFormat), pixelFormat);
    EXPECT_EQ(refusal(4, 4, 6408, unknownFormat),
              Texts{"DXTCompressor::compressPixels: Unsupported targetFormat. Doing nothing.\n"});
    EXPECT_EQ(
        refusal(unsigned(-4), 4, 6408, DXTCompressor::DXT1_FORMAT),
        Texts{"DXTCompressor::compressPixels: There are no pictures of 4294967292 x 4. Doing nothing.\n"});
}

TEST(DXTCompressor, RefusesABufferThatIsNotThere)
{
    Bytes block(16, 0xA5);
    const Bytes pixels(64);
    const DXTCompressor &compressor = DXTCompressor::the();
    Warnings warnings;
    EXPECT_FALSE(compressor.compressPixels(block.data(), nullptr, 4, 4, Image::OSG_RGBA_PF,
                                           DXTCompressor::DXT5_FORMAT));
    EXPECT_FALSE(compressor.compressPixels(nullptr, pixels.data(), 4, 4, Image::OSG_RGBA_PF,
                                           DXTCompressor::DXT5_FORMAT));
    EXPECT_EQ(warnings.texts, (Texts{noPixels, noPixels}));
    EXPECT_EQ(block, Bytes(16, 0xA5));
}

TEST(DXTCompressor, WritesNothingForASideOfZero)
{
    Bytes block(16, 0xA5);
    const Bytes pixels(64);
    Warnings warnings;
    for(const auto format : allFormats) {
        EXPECT_TRUE(compress(block, pixels, 0, 4, 6408, format));
        EXPECT_TRUE(compress(block, pixels, 4, 0, 6407, format));
    }
    EXPECT_EQ(warnings.texts, Texts());
    EXPECT_EQ(block, Bytes(16, 0xA5));
}

} // namespace
