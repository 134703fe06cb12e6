#include "volume/VolumeData.h"

#include "VolumeScene.h"
#include "volume/BitVolume.h"
#include "volume/BlockVolume.h"

using namespace osg;

TEST(VolumeData, StartsEmpty)
{
    VolumeData data;
    EXPECT_TRUE(data.getTexture() == NullFC);
    EXPECT_TRUE(data.getImage() == NullFC);
    EXPECT_EQ(data.getVolumeSize(), Vec3f(0, 0, 0));
    EXPECT_EQ(data.getSliceThickness(), Vec3f(0, 0, 0));
    EXPECT_EQ(data.getResolution(), Vec3us(0, 0, 0));
    EXPECT_EQ(data.getBitVolume(), nullptr);
    EXPECT_EQ(data.getBlockVolume(), nullptr);
}

TEST(VolumeData, AVolumeThatIsMissingIsRefused)
{
    VolumeData data;
    LogCapture log;
    EXPECT_FALSE(data.setVolume(NullFC, false));
    EXPECT_EQ(log.text(LOG_WARNING), "VolumeData::setVolume() Couldn't set empty volume!\n");
    log.clear();
    EXPECT_FALSE(data.resizeVolume(8));
    EXPECT_EQ(log.text(LOG_WARNING), "The input volume is empty.\n");
    log.clear();

    const Held<TextureChunkPtr> texture(TextureChunk::create());
    EXPECT_FALSE(data.setVolume(texture, false));
    EXPECT_EQ(log.text(LOG_WARNING), "VolumeData::setVolume() Volume texture without image!\n");
    EXPECT_TRUE(data.getTexture() == texture.get());
    EXPECT_EQ(texture.get().getRefCount(), 2);
    EXPECT_EQ(data.getResolution(), Vec3us(0, 0, 0));
    log.clear();
    EXPECT_FALSE(data.resizeVolume(-1));
    EXPECT_EQ(log.text(LOG_WARNING), "The input volume has no valid image.\n");
}

TEST(VolumeData, TellsWhatItTook)
{
    const Held<TextureChunkPtr> texture(makeVolume<UInt8>(100, 60, 30, 7));
    VolumeData data;
    LogCapture log;
    const std::string output = standardOutput([&] { EXPECT_TRUE(data.setVolume(texture, true)); });
    EXPECT_EQ(output, "8Bit\n"
                      "Volume Slice Thickness 1.000000 1.000000 1.000000; "
                      "Resolution of Volume 100.000000 60.000000 30.000000\n"
                      "Size of Volume 4.000000 2.400000 1.200000\n");
    EXPECT_EQ(data.getVolumeSize(), Vec3f(4.0f, 2.4f, 1.2f));
    EXPECT_EQ(data.getSliceThickness(), Vec3f(1, 1, 1));
    EXPECT_EQ(data.getResolution(), Vec3us(100, 60, 30));
    std::ostringstream size;
    size << "No Slice Thickness found, set to default\nsize: " << Vec3f(4.0f, 2.4f, 1.2f) << "\n";
    EXPECT_EQ(log.text(LOG_NOTICE), size.str());
    // The image tells its size at level 0.
    EXPECT_EQ(log.count(LOG_LOG), 1u);
    expectSettings(texture, 33069, 9729, 0);
    // Swapping has no effect on bytes.
    EXPECT_EQ(valueAt<UInt8>(data.getImage(), 5), 7);
    EXPECT_EQ(texture.get().getRefCount(), 2);
}

TEST(VolumeData, ReadsTheSliceThicknessOfTheImage)
{
    const ImagePtr image = makeVoxels<UInt8>(8, 8, 8, [](int, int, int) { return 0; });
    image->setAttachmentField("SliceThickness", "0.500000 1.000000 2.000000");
    const Held<TextureChunkPtr> texture(makeTexture(image));
    VolumeData data;
    LogCapture log;
    standardOutput([&] { data.setVolume(texture, false); });
    EXPECT_EQ(data.getSliceThickness(), Vec3f(0.5f, 1.0f, 2.0f));
    EXPECT_EQ(data.getVolumeSize(), Vec3f(2.0f, 4.0f, 8.0f));
    EXPECT_FALSE(log.contains(LOG_NOTICE, "No Slice Thickness"));
}

TEST(VolumeData, TwelveBitsAreScaledAndSixteenAreNot)
{
    for(const UInt16 greatest : {UInt16(4095), UInt16(4096)})
    {
        const Held<TextureChunkPtr> texture(makeTexture(makeVoxels<UInt16>(
            4, 4, 4, [&](int x, int, int) { return x == 3 ? greatest : UInt16(x); }, 6406)));
        VolumeData data;
        LogCapture log;
        const std::string output = standardOutput([&] { EXPECT_TRUE(data.setVolume(texture, false)); });
        EXPECT_EQ(output.substr(0, 6), "16Bit\n");
        const int factor = greatest == 4095 ? 16 : 1;
        for(UInt16 x = 0; x < 3; ++x)
            EXPECT_EQ(valueAt<UInt16>(data.getImage(), x), x * factor);
        EXPECT_EQ(valueAt<UInt16>(data.getImage(), 3), greatest * factor);
        // 16-bit voxels are always luminance.
        EXPECT_EQ(data.getImage()->getPixelFormat(), 6409u);
        EXPECT_TRUE(log.contains(LOG_NOTICE, "PixelFormat: 6409"));
        expectSettings(texture, 33069, 9729, 32834);
    }
}

TEST(VolumeData, TheLimitOfTwelveBitsIsLookedForBehindTheSwap)
{
    // 0x0010 becomes 0x1000, which is 4096.
    const Held<TextureChunkPtr> texture(makeVolume<UInt16>(2, 2, 2, 0x0010));
    VolumeData data;
    LogCapture log;
    standardOutput([&] { data.setVolume(texture, true); });
    EXPECT_EQ(valueAt<UInt16>(data.getImage(), 0), 0x1000);
    // What another aspect has normalised stays as it is.
    VolumeData again;
    standardOutput([&] { again.setVolume(texture, true, true); });
    EXPECT_EQ(valueAt<UInt16>(data.getImage(), 0), 0x1000);
}

TEST(VolumeData, OnlyFormatsOfOneChannelStay)
{
    struct Case
    {
        UInt32 before;
        UInt32 after;
    };
    for(const Case &format : {Case{6409, 6409}, Case{32841, 32841}, Case{6406, 6406}, Case{6407, 6409}})
    {
        const Held<TextureChunkPtr> texture(makeTexture(makeVoxels<UInt8>(
            2, 2, 2, [](int, int, int) { return 1; }, format.before)));
        VolumeData data;
        LogCapture log;
        standardOutput([&] { EXPECT_TRUE(data.setVolume(texture, false)); });
        EXPECT_EQ(data.getImage()->getPixelFormat(), format.after);
        EXPECT_EQ(log.contains(LOG_NOTICE, "PixelFormat: 6409"), format.before != format.after);
    }
}

TEST(VolumeData, OtherTypesPassAndGetNoPadding)
{
    const Held<TextureChunkPtr> texture(makeVolume<UInt32>(3, 3, 3, 9));
    VolumeData data;
    LogCapture log;
    const std::string output = standardOutput([&] { EXPECT_TRUE(data.setVolume(texture, true)); });
    EXPECT_EQ(output.substr(0, 6), "32Bit\n");
    const ImagePtr image = data.getImage();
    EXPECT_TRUE(data.resizeVolume(8));
    EXPECT_TRUE(data.getImage() == image);
    EXPECT_EQ(valueAt<UInt32>(image, 26), 9u);

    image->setDataType(5126);
    EXPECT_EQ(standardOutput([&] { data.setVolume(texture, false); }).substr(0, 5), "?Bit\n");
}

TEST(VolumeData, PaddingKeepsVoxelsAndSize)
{
    const Held<TextureChunkPtr> texture(
        makeTexture(makeVoxels<UInt8>(100, 60, 30, [](int x, int y, int z) { return x + y + z + 1; })));
    VolumeData data;
    LogCapture log;
    standardOutput([&] { data.setVolume(texture, false); });
    log.clear();
    const ImagePtr before = data.getImage();
    EXPECT_TRUE(data.resizeVolume(-1));
    EXPECT_TRUE(data.getImage() == before);
    EXPECT_EQ(log.count(), 0u);

    EXPECT_TRUE(data.resizeVolume(8));
    EXPECT_EQ(log.text(LOG_NOTICE), "Resize Volume Res: 104, 64, 32\n");
    EXPECT_EQ(data.getResolution(), Vec3us(104, 64, 32));
    EXPECT_EQ(data.getVolumeSize(), Vec3f(4.0f, 2.4f, 1.2f));
    for(int z = 0; z < 32; ++z)
        for(int y = 0; y < 64; ++y)
            for(int x = 0; x < 104; ++x)
            {
                const UInt8 expected = x < 100 && y < 60 && z < 30 ? UInt8(x + y + z + 1) : 0;
                ASSERT_EQ(valueAt<UInt8>(data.getImage(), std::size_t((z * 64 + y) * 104 + x)), expected);
            }
    // Bytes are wrapped at the edge, and have the internal format of 16 bits.
    expectSettings(texture, 33071, 9729, 32834);
}

TEST(VolumeData, SidesThatFitStillGetANewImage)
{
    const Held<TextureChunkPtr> texture(makeVolume<UInt16>(64, 64, 64, 5000));
    VolumeData data;
    LogCapture log;
    standardOutput([&] { data.setVolume(texture, false); });
    const ImagePtr before = data.getImage();
    EXPECT_TRUE(data.resizeVolume(8));
    EXPECT_FALSE(data.getImage() == before);
    EXPECT_EQ(data.getResolution(), Vec3us(64, 64, 64));
    EXPECT_EQ(valueAt<UInt16>(data.getImage(), 64 * 64 * 64 - 1), 5000);
    expectSettings(texture, 33069, 9729, 32834);
}

TEST(VolumeData, OwnsItsBlocks)
{
    VolumeData data;
    data.setBitVolume(new BitVolume);
    data.setBlockVolume(new BlockVolume);
    BlockVolume *const second = new BlockVolume;
    data.setBlockVolume(second);
    EXPECT_EQ(data.getBlockVolume(), second);
    data.setBitVolume(nullptr);
    EXPECT_EQ(data.getBitVolume(), nullptr);
}
