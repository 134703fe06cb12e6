#include <OpenSG/OSGImage.h>

#include <gtest/gtest.h>

#include <numeric>

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGLogCapture.h>

#include "VolumeFiles.h"

using namespace osg;

namespace
{

/// The container classes come up once for all tests of this program, and go at its end.
class Containers : public ::testing::Environment
{
    void SetUp() override { ASSERT_TRUE(osgInit(0, nullptr)); }
    void TearDown() override { osgExit(); }
};

const ::testing::Environment *const containers = ::testing::AddGlobalTestEnvironment(new Containers);

/// An image with one reference, let go at the end.
struct Held
{
    ImagePtr image = ImageBase::create();

    Held() { addRefCP(image); }
    ~Held() { subRefCP(image); }
    Held(const Held &) = delete;
    Held &operator=(const Held &) = delete;
    Image *operator->() const { return image.getCPtr(); }
};

Bytes content(const Held &held)
{
    return held->getPixel().getValues();
}

Bytes counting(std::size_t size)
{
    Bytes bytes(size);
    std::iota(bytes.begin(), bytes.end(), UInt8(1));
    return bytes;
}

} // namespace

TEST(Image, ANewImageIsEmpty)
{
    ASSERT_NE(containers, nullptr);
    const Held image;
    EXPECT_EQ(image->getWidth(), 0);
    EXPECT_EQ(image->getSize(), 0u);
    EXPECT_EQ(image->getData(), nullptr);
    EXPECT_FALSE(image->isValid());
    EXPECT_EQ(image->calcMipmapLevelCount(), 0u);
}

TEST(Image, EachFormatInEachTypeTakesItsBytes)
{
    const std::pair<UInt32, int> formats[] = {{6402, 1}, {6406, 1},  {6407, 3},  {6408, 4}, {6409, 1},
                                              {6410, 2}, {32841, 1}, {32992, 3}, {32993, 4}};
    const std::pair<Int32, int> types[] = {{5121, 1}, {5122, 2}, {5123, 2}, {5124, 4},
                                           {5125, 4}, {5126, 4}, {5131, 2}};
    for(const auto &format : formats)
        for(const auto &type : types)
        {
            const Held image;
            ASSERT_TRUE(image->set(format.first, 5, 3, 2, 1, 1, 0.0, nullptr, type.first));
            EXPECT_EQ(image->getBpp(), format.second * type.second);
            EXPECT_EQ(image->getComponentSize(), type.second);
            EXPECT_EQ(image->getSize(), UInt64(30 * format.second * type.second));
            EXPECT_EQ(image->getPixel().size(), image->getSize());
            EXPECT_EQ(image->getDimension(), 3);
            EXPECT_TRUE(image->isValid());
        }
}

TEST(Image, BlockCompressedFormatsTakeWholeBlocks)
{
    const Held image;
    ASSERT_TRUE(image->set(Image::OSG_RGB_DXT1, 5, 4));
    EXPECT_EQ(image->getSize(), 16u);
    EXPECT_TRUE(image->hasCompressedData());
    EXPECT_FALSE(image->hasAlphaChannel());
    ASSERT_TRUE(image->set(Image::OSG_RGBA_DXT5, 8, 8, 1, 4));
    EXPECT_EQ(image->getSize(), 4u * 16 + 16 + 16 + 16);
    EXPECT_TRUE(image->hasAlphaChannel());
}

TEST(Image, LevelsSidesAndFramesLieOneBehindTheOther)
{
    const Held image;
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 4, 2, 1, 3, 2, 0.5, nullptr, 5121, true, 6));
    // Levels of 4 x 2, 2 x 1 and 1 x 1 pixels.
    EXPECT_EQ(image->calcMipmapSumSize(), 11u);
    EXPECT_EQ(image->calcMipmapSumSize(2), 10u);
    EXPECT_EQ(image->calcMipmapLevelSize(1), 2u);
    EXPECT_EQ(image->getSideSize(), 11);
    EXPECT_EQ(image->getFrameSize(), 66);
    EXPECT_EQ(image->getSize(), 132u);
    EXPECT_EQ(image->getSize(false), 96u);
    EXPECT_EQ(image->getSize(true, false), 66u);
    EXPECT_EQ(image->getSize(false, false, false), 8u);
    const UInt8 *first = image->getData();
    EXPECT_EQ(image->getData(2) - first, 10);
    EXPECT_EQ(image->getData(0, 0, 5) - first, 55);
    EXPECT_EQ(image->getData(1, 1, 5) - first, 66 + 55 + 8);
    EXPECT_EQ(image->getData(3), nullptr);
    EXPECT_EQ(image->getData(0, 2), nullptr);
    EXPECT_EQ(image->getData(0, 0, 6), nullptr);
    EXPECT_EQ(image->editData(1), first + 8);
    EXPECT_EQ(image->editDataFast(1), first + 8);
    UInt32 w = 0, h = 0, d = 0;
    image->calcMipmapGeometry(1, w, h, d);
    EXPECT_EQ(w, 2u);
    EXPECT_EQ(h, 1u);
    EXPECT_EQ(d, 1u);
    EXPECT_EQ(image->calcMipmapLevelCount(), 3u);
}

TEST(Image, TheFrameFollowsTheTime)
{
    const Held image;
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 1, 1, 1, 1, 4, 0.5));
    EXPECT_EQ(image->calcFrameNum(-1.0), 0u);
    EXPECT_EQ(image->calcFrameNum(1.1), 2u);
    EXPECT_EQ(image->calcFrameNum(2.1), 0u);
    EXPECT_EQ(image->calcFrameNum(2.1, false), 3u);
    EXPECT_EQ(image->calcFrameNum(1e300, false), 3u);
}

TEST(Image, DataIsCopiedIn)
{
    const Held image;
    const Bytes pixels = counting(12);
    ASSERT_TRUE(image->set(Image::OSG_RGB_PF, 2, 2, 1, 1, 1, 0.0, pixels.data()));
    EXPECT_EQ(content(image), pixels);
    const Bytes others(12, 77);
    ASSERT_TRUE(image->setData(others.data()));
    EXPECT_EQ(content(image), others);
    EXPECT_FALSE(image->setData(nullptr));
}

TEST(Image, PixelsWrittenInPlaceStay)
{
    const Held image;
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 4, 4, 4, 1, 1, 0.0, nullptr, 5123));
    std::memset(image->getData(), 0xAB, 128);
    EXPECT_EQ(content(image), Bytes(128, 0xAB));
}

TEST(Image, WithoutAllocationThereAreNoPixels)
{
    const Held image;
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 4, 4));
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 8, 8, 1, 1, 1, 0.0, nullptr, 5121, false));
    EXPECT_EQ(image->getWidth(), 8);
    EXPECT_EQ(image->getData(), nullptr);
    EXPECT_FALSE(image->isValid());
}

TEST(Image, AFormThatCantBeIsRefusedAndTheImageStays)
{
    const Held image;
    const Bytes pixels = counting(4);
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 2, 2, 1, 1, 1, 0.0, pixels.data()));
    LogCapture log;
    EXPECT_FALSE(image->set(Image::OSG_L_PF, 0, 5));
    EXPECT_EQ(log.text(),
              "Image::set: there can't be 0 x 5 x 1 pixels of format 6409 and type 5121 in 1 levels, 1 "
              "frames and 1 sides\n");
    EXPECT_EQ(log.count(LOG_WARNING), 1u);
    EXPECT_FALSE(image->set(99, 5, 5));
    EXPECT_FALSE(image->set(Image::OSG_L_PF, 5, 5, 1, 1, 1, 0.0, nullptr, 99));
    EXPECT_FALSE(image->set(Image::OSG_L_PF, 5, 5, 1, 0));
    EXPECT_FALSE(image->set(Image::OSG_L_PF, 5, 5, 1, 1, 0));
    EXPECT_FALSE(image->set(Image::OSG_RGB_DXT1, 4, 4, 1, 1, 1, 0.0, nullptr, 5126));
    EXPECT_FALSE(image->set(Image::OSG_L_PF, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF));
    EXPECT_FALSE(image->set(Image::OSG_L_PF, 65536, 65536, 1));
    EXPECT_FALSE(image->set(Image::OSG_L_PF, 1, 1, 1, 1, 0x7FFFFFFF, 0.0, nullptr, 5121, true, 0x7FFFFFFF));
    EXPECT_EQ(log.count(LOG_WARNING), 9u);
    EXPECT_EQ(content(image), pixels);
    EXPECT_EQ(image->getWidth(), 2);
}

TEST(Image, ACopyTakesFormPixelsAndNameButNoAttachments)
{
    const Held from, to;
    const Bytes pixels = counting(24);
    ASSERT_TRUE(from->set(Image::OSG_LA_PF, 1, 2, 3, 1, 2, 0.25, pixels.data()));
    from->setName("there");
    from->setAttachmentField("a", "1");
    to->setAttachmentField("b", "2");
    ASSERT_TRUE(to->set(from.image));
    EXPECT_EQ(content(to), pixels);
    EXPECT_EQ(to->getFrameCount(), 2);
    EXPECT_EQ(to->getFrameDelay(), 0.25);
    EXPECT_EQ(to->getDepth(), 3);
    EXPECT_EQ(to->getName(), "there");
    EXPECT_EQ(to->findAttachmentField("a"), nullptr);
    ASSERT_NE(to->findAttachmentField("b"), nullptr);
    LogCapture log;
    EXPECT_FALSE(to->set(ImagePtr(NullFC)));
    EXPECT_EQ(log.text(), "Image::set: there is no image to copy\n");
    EXPECT_TRUE(to->set(to.image));
    EXPECT_EQ(content(to), pixels);
}

TEST(Image, AttachmentsAreFoundReplacedAndKeptBySet)
{
    const Held image;
    EXPECT_EQ(image->findAttachmentField("SliceThickness"), nullptr);
    image->setAttachmentField("SliceThickness", "1 2 3");
    image->setAttachmentField("Zebra", "z");
    image->setAttachmentField("Author", "somebody");
    image->setAttachmentField("SliceThickness", "4 5 6");
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 2));
    ASSERT_NE(image->findAttachmentField("SliceThickness"), nullptr);
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "4 5 6");
    EXPECT_EQ(*image->findAttachmentField("Author"), "somebody");
    EXPECT_EQ(*image->findAttachmentField("Zebra"), "z");
    EXPECT_EQ(image->findAttachmentField("slicethickness"), nullptr);
}

TEST(Image, ABlockOfPixelsIsPutInAndCutOut)
{
    const Held image, part;
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 4, 3, 2));
    std::memset(image->getData(), 0, 24);
    const Bytes block = {1, 2, 3, 4};
    ASSERT_TRUE(image->setSubData(2, 1, 0, 2, 1, 2, block.data()));
    EXPECT_EQ(content(image),
              (Bytes{0, 0, 0, 0, 0, 0, 1, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 4, 0, 0, 0, 0}));
    ASSERT_TRUE(image->subImage(1, 1, 0, 3, 1, 2, part.image));
    EXPECT_EQ(content(part), (Bytes{0, 1, 2, 0, 3, 4}));
    EXPECT_EQ(image->getWidth(), 4);
    LogCapture log;
    EXPECT_FALSE(image->subImage(2, 0, 0, 3, 1, 1));
    EXPECT_FALSE(image->setSubData(0, 0, 2, 1, 1, 1, block.data()));
    EXPECT_FALSE(image->subImage(0x7FFFFFFF, 0, 0, 0x7FFFFFFF, 1, 1));
    EXPECT_EQ(log.count(LOG_WARNING), 3u);
}

TEST(Image, ASliceIsThePlaneAcrossItsAxis)
{
    const Held volume, plane;
    const Bytes voxels = counting(24); // 4 x 3 x 2, the voxel at x, y, z is 1 + x + 4 y + 12 z
    ASSERT_TRUE(volume->set(Image::OSG_L_PF, 4, 3, 2, 1, 1, 0.0, voxels.data()));
    ASSERT_TRUE(volume->slice(-1, -1, 1, plane.image));
    EXPECT_EQ(content(plane), Bytes(voxels.begin() + 12, voxels.end()));
    ASSERT_TRUE(volume->slice(-1, 2, -1, plane.image));
    EXPECT_EQ(plane->getWidth(), 4);
    EXPECT_EQ(plane->getHeight(), 2);
    EXPECT_EQ(plane->getDepth(), 1);
    EXPECT_EQ(content(plane), (Bytes{9, 10, 11, 12, 21, 22, 23, 24}));
    ASSERT_TRUE(volume->slice(1, -1, -1, plane.image));
    EXPECT_EQ(plane->getWidth(), 2);
    EXPECT_EQ(plane->getHeight(), 3);
    EXPECT_EQ(content(plane), (Bytes{2, 14, 6, 18, 10, 22}));
    LogCapture log;
    EXPECT_FALSE(volume->slice());
    EXPECT_FALSE(volume->slice(0, 0));
    EXPECT_FALSE(volume->slice(4));
    EXPECT_EQ(log.count(LOG_WARNING), 3u);
}

TEST(Image, ScalingInPlaceAndIntoAnotherImageAgree)
{
    const Held image, other;
    const Bytes pixels = {1, 2, 3, 4};
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 2, 2, 1, 1, 1, 0.0, pixels.data()));
    ASSERT_TRUE(image->scale(4, 2, 2, other.image));
    EXPECT_EQ(content(other), (Bytes{1, 1, 2, 2, 3, 3, 4, 4, 1, 1, 2, 2, 3, 3, 4, 4}));
    EXPECT_EQ(content(image), pixels);
    ASSERT_TRUE(image->scale(4, 2, 2));
    EXPECT_EQ(content(image), content(other));
    ASSERT_TRUE(image->scale(3, 3));
    ASSERT_TRUE(image->scaleNextPower2());
    EXPECT_EQ(image->getWidth(), 4);
    EXPECT_EQ(image->getHeight(), 4);
    EXPECT_EQ(image->getDepth(), 1);
    LogCapture log;
    EXPECT_FALSE(image->scale(0, 3));
    EXPECT_EQ(log.text(),
              "Image::scale: can't scale 4 x 4 x 1 pixels of format 6409 and type 5121 in 1 levels, 1 frames "
              "and 1 sides to 0 x 3 x 1\n");
}

TEST(Image, ReformatChangesFormatAndPixelsOfAllParts)
{
    const Held image, grey;
    const Bytes pixels = counting(12);
    ASSERT_TRUE(image->set(Image::OSG_RGB_PF, 1, 1, 1, 1, 2, 0.0, pixels.data(), 5121, true, 2));
    ASSERT_TRUE(image->reformat(Image::OSG_L_PF, grey.image));
    EXPECT_EQ(content(grey), (Bytes{2, 5, 8, 11}));
    EXPECT_EQ(grey->getBpp(), 1);
    EXPECT_EQ(grey->getSideCount(), 2);
    EXPECT_EQ(content(image), pixels);
    ASSERT_TRUE(image->reformat(Image::OSG_RGBA_PF));
    EXPECT_EQ(image->getPixelFormat(), 6408u);
    EXPECT_EQ(content(image), (Bytes{1, 2, 3, 255, 4, 5, 6, 255, 7, 8, 9, 255, 10, 11, 12, 255}));
    LogCapture log;
    EXPECT_FALSE(image->reformat(Image::OSG_RGB_DXT1));
    EXPECT_EQ(log.count(LOG_WARNING), 1u);
}

TEST(Image, TheTypeOfSamplesIsConvertedInPlace)
{
    const Held image;
    const std::vector<UInt16> words = {0, 65535, 257 * 10, 128};
    ASSERT_TRUE(
        image->set(Image::OSG_L_PF, 4, 1, 1, 1, 1, 0.0, reinterpret_cast<const UInt8 *>(words.data()), 5123));
    ASSERT_TRUE(image->convertDataTypeTo(5121));
    EXPECT_EQ(image->getDataType(), 5121);
    EXPECT_EQ(image->getComponentSize(), 1);
    EXPECT_EQ(content(image), (Bytes{0, 255, 10, 0}));
    LogCapture log;
    EXPECT_FALSE(image->convertDataTypeTo(4));
    EXPECT_EQ(log.count(LOG_WARNING), 1u);
    EXPECT_EQ(image->getDataType(), 5121);
}

TEST(Image, MipmapsAreTheMeansOfTheLevelAbove)
{
    const Held image;
    const Bytes pixels = {0, 4, 8, 12, 4, 8, 12, 16};
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 4, 2, 1, 1, 1, 0.0, pixels.data()));
    ASSERT_TRUE(image->createMipmap());
    EXPECT_EQ(image->getMipMapCount(), 3);
    EXPECT_EQ(content(image), (Bytes{0, 4, 8, 12, 4, 8, 12, 16, 4, 12, 8}));
    EXPECT_TRUE(image->isValid());
    ASSERT_TRUE(image->createMipmap(2));
    EXPECT_EQ(content(image).size(), 10u);
}

TEST(Image, DumpTellsTheFormInOneMessage)
{
    const Held image;
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 4, 2));
    image->setName("n");
    image->setAttachmentField("SliceThickness", "1 2 3");
    LogCapture log;
    image->dump(0, 0);
    EXPECT_EQ(log.count(), 1u);
    EXPECT_EQ(log.text(LOG_LOG),
              "Image \"n\": 4 x 2 x 1 pixels of format 6409 and type 5121 in 1 levels, 1 frames and 1 "
              "sides, 8 bytes\n  SliceThickness: 1 2 3\n");
}

TEST(Image, ClearLeavesNoPixels)
{
    const Held image;
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 4, 2));
    image->clear();
    EXPECT_EQ(image->getWidth(), 0);
    EXPECT_EQ(image->getPixel().capacity(), 0u);
    EXPECT_FALSE(image->isValid());
}
