#include "volume/BlockVolume.h"

#include "VolumeScene.h"
#include "volume/BitVolume.h"
#include "volume/VolumeData.h"

using namespace osg;

namespace
{

/// Voxels in a VolumeData.
struct Loaded
{
    Held<TextureChunkPtr> texture;
    VolumeData data;

    explicit Loaded(const ImagePtr &image) : texture(makeTexture(image))
    {
        LogCapture log;
        standardOutput([&] { data.setVolume(texture, false); });
    }
};

/// A running sum with the given opacity at one value.
ImagePtr sumWithOpacityAt(int width, int height, std::size_t value)
{
    const ImagePtr image = Image::create();
    image->set(6406, width, height, 1, 1, 1, 0.0, nullptr, 5126, true, 1);
    for(std::size_t i = 0; i < std::size_t(width) * std::size_t(height); ++i)
    {
        const float sum = i >= value ? 1.0f : 0.0f;
        std::memcpy(image->getData() + i * sizeof(sum), &sum, sizeof(sum));
    }
    return image;
}

template <class ValueT>
ImagePtr oneBlock(ValueT least, ValueT greatest)
{
    const ImagePtr image = Image::create();
    const ValueT values[2] = {least, greatest};
    image->set(6410, 1, 1, 1, 1, 1, 0.0, reinterpret_cast<const UInt8 *>(values),
               sizeof(ValueT) == 1 ? 5121 : 5123, true, 1);
    return image;
}

} // namespace

TEST(BlockVolume, NeedsVoxels)
{
    VolumeData data;
    BlockVolume blocks;
    LogCapture log;
    EXPECT_FALSE(blocks.calcBlockVolumen(data, 8));
    EXPECT_EQ(log.text(LOG_WARNING), "Das Eingabevolumen ist leer\n");
    EXPECT_TRUE(blocks.getTexture() == NullFC);
    EXPECT_TRUE(blocks.getImage() == NullFC);
}

TEST(BlockVolume, OneBlockHoldsTheLeastAndGreatestOfAll)
{
    Loaded volume(makeVoxels<UInt8>(8, 8, 8, [](int x, int y, int z) { return 10 + x + y + z; }));
    BlockVolume blocks;
    ASSERT_TRUE(blocks.calcBlockVolumen(volume.data, 8));
    const ImagePtr image = blocks.getImage();
    EXPECT_EQ(image->getWidth(), 1);
    EXPECT_EQ(image->getDepth(), 1);
    EXPECT_EQ(image->getPixelFormat(), 6410u);
    EXPECT_EQ(image->getDataType(), 5121);
    EXPECT_EQ(valueAt<UInt8>(image, 0), 10);
    EXPECT_EQ(valueAt<UInt8>(image, 1), 31);
    expectSettings(blocks.getTexture(), 33071, 9728, 0);
    EXPECT_EQ(blocks.getTexture().getRefCount(), 1);
}

TEST(BlockVolume, NeighboursShareTheirOuterVoxels)
{
    Loaded volume(makeVoxels<UInt16>(
        16, 8, 8, [](int x, int y, int z) { return x == 8 && y == 3 && z == 3 ? 5000 : 100; }));
    BlockVolume blocks;
    ASSERT_TRUE(blocks.calcBlockVolumen(volume.data, 8));
    EXPECT_EQ(blocks.getImage()->getDataType(), 5123);
    EXPECT_EQ(valueAt<UInt16>(blocks.getImage(), 0), 100);
    EXPECT_EQ(valueAt<UInt16>(blocks.getImage(), 1), 5000);
    EXPECT_EQ(valueAt<UInt16>(blocks.getImage(), 2), 100);
    EXPECT_EQ(valueAt<UInt16>(blocks.getImage(), 3), 5000);
}

TEST(BlockVolume, PaddingTakesPartAsZero)
{
    Loaded volume(makeVoxels<UInt8>(10, 8, 8, [](int, int, int) { return 50; }));
    BlockVolume blocks;
    LogCapture log;
    ASSERT_TRUE(blocks.calcBlockVolumen(volume.data, 8));
    EXPECT_EQ(volume.data.getResolution(), Vec3us(16, 8, 8));
    EXPECT_EQ(blocks.getImage()->getWidth(), 2);
    EXPECT_EQ(valueAt<UInt8>(blocks.getImage(), 0), 50);
    EXPECT_EQ(valueAt<UInt8>(blocks.getImage(), 1), 50);
    EXPECT_EQ(valueAt<UInt8>(blocks.getImage(), 2), 0);
    EXPECT_EQ(valueAt<UInt8>(blocks.getImage(), 3), 50);
}

TEST(BlockVolume, OtherTypesGiveAnEmptyImageAndSuccess)
{
    Loaded volume(makeVoxels<UInt32>(8, 8, 8, [](int, int, int) { return 1; }));
    BlockVolume blocks;
    EXPECT_EQ(standardOutput([&] { EXPECT_TRUE(blocks.calcBlockVolumen(volume.data, 8)); }),
              "Unknown Volume Format");
    ASSERT_TRUE(blocks.getImage() != NullFC);
    EXPECT_EQ(blocks.getImage()->getWidth(), 0);
}

TEST(BlockVolume, VoxelsAreReadAgainOnlyBehindAnEdit)
{
    Loaded volume(makeVoxels<UInt8>(8, 8, 8, [](int, int, int) { return 50; }));
    BlockVolume blocks;
    ASSERT_TRUE(blocks.calcBlockVolumen(volume.data, 8));
    const ImagePtr first = blocks.getImage();
    EXPECT_EQ(blocks.getNumPasses(), 1u);
    // Another image with the same texels.
    addRefCP(first);
    ASSERT_TRUE(blocks.calcBlockVolumen(volume.data, 8));
    EXPECT_EQ(blocks.getNumPasses(), 1u);
    EXPECT_FALSE(blocks.getImage() == first);
    EXPECT_EQ(valueAt<UInt8>(blocks.getImage(), 0), 50);
    subRefCP(first);

    volume.data.getImage()->getData()[0] = 200;
    endEditCP(volume.data.getImage());
    ASSERT_TRUE(blocks.calcBlockVolumen(volume.data, 8));
    EXPECT_EQ(blocks.getNumPasses(), 2u);
    EXPECT_EQ(valueAt<UInt8>(blocks.getImage(), 1), 200);
    ASSERT_TRUE(blocks.calcBlockVolumen(volume.data, 4));
    EXPECT_EQ(blocks.getNumPasses(), 3u);
    EXPECT_EQ(blocks.getImage()->getWidth(), 2);
}

TEST(BitVolume, NeedsBothImages)
{
    BitVolume bits;
    LogCapture log;
    const Held<ImagePtr> block(oneBlock<UInt8>(1, 2));
    EXPECT_FALSE(bits.calcBitVolumen(NullFC, block));
    EXPECT_EQ(log.text(LOG_WARNING), "Blockvolume is empty\n");
    log.clear();
    EXPECT_FALSE(bits.calcBitVolumen(block, NullFC));
    EXPECT_EQ(log.text(LOG_WARNING), "Summed Area Table is empty\n");
    EXPECT_TRUE(bits.getTexture() == NullFC);
}

TEST(BitVolume, VerdictsDifferByTheVoxelsType)
{
    const Held<ImagePtr> bytes(oneBlock<UInt8>(20, 30));
    const Held<ImagePtr> byteSums(sumWithOpacityAt(256, 1, 10));
    BitVolume bits;
    ASSERT_TRUE(bits.calcBitVolumen(bytes, byteSums));
    const ImagePtr image = bits.getTexture()->getImage();
    EXPECT_EQ(image->getPixelFormat(), 6406u);
    EXPECT_EQ(image->getDataType(), 5121);
    EXPECT_EQ(valueAt<UInt8>(image, 0), 0);
    expectSettings(bits.getTexture(), 33071, 9728, 32830);

    const Held<ImagePtr> words(oneBlock<UInt16>(20, 30));
    const Held<ImagePtr> wordSums(sumWithOpacityAt(256, 256, 10));
    ASSERT_TRUE(bits.calcBitVolumen(words, wordSums));
    EXPECT_EQ(valueAt<UInt8>(image, 0), 255);
    // Written in place.
    EXPECT_TRUE(bits.getTexture()->getImage() == image);
}

TEST(BitVolume, AnAllZeroTableKeepsOnlyBlocksOfZeros)
{
    const Held<ImagePtr> sums(sumWithOpacityAt(256, 1, 1000));
    BitVolume bits;
    struct Case
    {
        UInt8 least;
        UInt8 greatest;
        UInt8 verdict;
    };
    for(const Case &block : {Case{3, 9, 0}, Case{9, 9, 0}, Case{0, 0, 255}})
    {
        const Held<ImagePtr> image(oneBlock<UInt8>(block.least, block.greatest));
        ASSERT_TRUE(bits.calcBitVolumen(image, sums));
        EXPECT_EQ(valueAt<UInt8>(bits.getTexture()->getImage(), 0), block.verdict);
    }
}

TEST(BitVolume, OtherTypesLeaveTheBytes)
{
    const Held<ImagePtr> sums(sumWithOpacityAt(256, 1, 0));
    const Held<ImagePtr> known(oneBlock<UInt8>(0, 0));
    const Held<ImagePtr> unknown(makeVoxels<UInt32>(2, 2, 2, [](int, int, int) { return 0; }));
    BitVolume bits;
    ASSERT_TRUE(bits.calcBitVolumen(known, sums));
    EXPECT_EQ(standardOutput([&] { EXPECT_TRUE(bits.calcBitVolumen(unknown, sums)); }),
              "Unknown Volume Format");
    EXPECT_EQ(bits.getTexture()->getImage()->getWidth(), 1);
    EXPECT_EQ(valueAt<UInt8>(bits.getTexture()->getImage(), 0), 255);
}
