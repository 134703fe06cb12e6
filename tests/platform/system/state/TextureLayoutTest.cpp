/// \file
/// How images become textures, on plain numbers.

#include <random>

#include <gtest/gtest.h>

#include <OpenSG/OSGTextureLayout.h>

OSG_USING_NAMESPACE

namespace
{

TextureBlock block(Int32 x0, Int32 x1, Int32 y0, Int32 y1, Int32 z0, Int32 z1)
{
    TextureBlock result;
    result.whole = false;
    const Int32 first[3] = {x0, y0, z0};
    const Int32 last[3] = {x1, y1, z1};
    std::copy(first, first + 3, result.first);
    std::copy(last, last + 3, result.last);
    return result;
}

TEST(TextureLayout, TheKindFollowsTheDimensions)
{
    EXPECT_EQ(GLenum(GL_TEXTURE_1D), textureTarget(256, 1, 1));
    EXPECT_EQ(GLenum(GL_TEXTURE_1D), textureTarget(1, 1, 1));
    EXPECT_EQ(GLenum(GL_TEXTURE_2D), textureTarget(1, 2, 1));
    EXPECT_EQ(GLenum(GL_TEXTURE_3D), textureTarget(2, 1, 2));
    EXPECT_EQ(GLenum(GL_NONE), textureTarget(0, 1, 1));
    EXPECT_EQ(1u, textureDimensions(GL_TEXTURE_1D));
    EXPECT_EQ(2u, textureDimensions(GL_TEXTURE_RECTANGLE));
    EXPECT_EQ(3u, textureDimensions(GL_TEXTURE_3D));
    EXPECT_EQ(0u, textureDimensions(GL_TEXTURE_CUBE_MAP));
}

TEST(TextureLayout, InternalFormatsKeepTheBitsOfTheImage)
{
    EXPECT_EQ(GLenum(GL_RGBA8), textureInternalFormat(GL_RGBA, GL_UNSIGNED_BYTE));
    EXPECT_EQ(GLenum(GL_RGBA8), textureInternalFormat(GL_BGRA, GL_UNSIGNED_BYTE));
    EXPECT_EQ(GLenum(GL_LUMINANCE16), textureInternalFormat(GL_LUMINANCE, GL_UNSIGNED_SHORT));
    EXPECT_EQ(GLenum(GL_LUMINANCE32F_ARB), textureInternalFormat(GL_LUMINANCE, GL_FLOAT));
    EXPECT_EQ(GLenum(GL_RGB16F_ARB), textureInternalFormat(GL_RGB, GL_HALF_FLOAT));
    EXPECT_EQ(GLenum(GL_DEPTH_COMPONENT24), textureInternalFormat(GL_DEPTH_COMPONENT, GL_UNSIGNED_SHORT));
    EXPECT_EQ(GLenum(GL_NONE), textureInternalFormat(12345, GL_UNSIGNED_BYTE));
    EXPECT_EQ(GLenum(GL_LUMINANCE), textureExternalFormat(GL_INTENSITY));
    EXPECT_EQ(GLenum(GL_BGRA), textureExternalFormat(GL_BGRA));
}

TEST(TextureLayout, FiltersWithMipmapsAreTheFourOfThem)
{
    EXPECT_FALSE(filterNeedsMipmaps(GL_NEAREST));
    EXPECT_FALSE(filterNeedsMipmaps(GL_LINEAR));
    EXPECT_TRUE(filterNeedsMipmaps(GL_NEAREST_MIPMAP_NEAREST));
    EXPECT_TRUE(filterNeedsMipmaps(GL_LINEAR_MIPMAP_NEAREST));
    EXPECT_TRUE(filterNeedsMipmaps(GL_NEAREST_MIPMAP_LINEAR));
    EXPECT_TRUE(filterNeedsMipmaps(GL_LINEAR_MIPMAP_LINEAR));
}

TEST(TextureLayout, PowersOfTwoAreReachedFromBelow)
{
    EXPECT_EQ(1u, nextPowerOf2(0));
    EXPECT_EQ(1u, nextPowerOf2(1));
    EXPECT_EQ(4u, nextPowerOf2(3));
    EXPECT_EQ(4u, nextPowerOf2(4));
    EXPECT_EQ(0x80000000u, nextPowerOf2(0x7FFFFFFF));
    EXPECT_EQ(0x80000000u, nextPowerOf2(0xFFFFFFFF));
}

TEST(TextureLayout, BlocksAreClippedToTheImageAndBordersFilledIn)
{
    const UInt32 size[3] = {8, 4, 2};
    TextureBlock some = block(2, -1, -1, 100, -1, 0);
    ASSERT_TRUE(clipBlock(some, size));
    EXPECT_FALSE(some.whole);
    EXPECT_EQ(2, some.first[0]);
    EXPECT_EQ(7, some.last[0]);
    EXPECT_EQ(0, some.first[1]);
    EXPECT_EQ(3, some.last[1]);
    EXPECT_EQ(0, some.first[2]);
    EXPECT_EQ(0, some.last[2]);
    TextureBlock all = block(0, 7, 0, 3, 0, 1);
    ASSERT_TRUE(clipBlock(all, size));
    EXPECT_TRUE(all.whole);
    TextureBlock outside = block(8, 9, 0, 0, 0, 0);
    EXPECT_FALSE(clipBlock(outside, size));
}

TEST(TextureLayout, JoinedBlocksHoldBothAndNoMoreThanTheirBox)
{
    const TextureBlock joined = joinBlocks(block(1, 2, 5, 6, 0, 0), block(4, 4, 3, -1, 0, 0));
    EXPECT_FALSE(joined.whole);
    EXPECT_EQ(1, joined.first[0]);
    EXPECT_EQ(4, joined.last[0]);
    EXPECT_EQ(3, joined.first[1]);
    EXPECT_EQ(-1, joined.last[1]);
    EXPECT_EQ(0, joined.last[2]);
    EXPECT_TRUE(joinBlocks(TextureBlock(), block(1, 2, 3, 4, 5, 6)).whole);
}

TEST(TextureLayout, PaddingRepeatsTheLastPixelInEachDirection)
{
    const UInt32 seed = 20;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const UInt32 size[3] = {3, 5, 2};
    const UInt32 padded[3] = {4, 8, 4};
    const UInt32 pixelSize = 3;
    std::vector<UInt8> source(3 * 5 * 2 * pixelSize);
    for(UInt8 &value : source)
        value = UInt8(random());
    std::vector<UInt8> result;
    padPixels(source.data(), size, pixelSize, padded, result);
    ASSERT_EQ(std::size_t(4 * 8 * 4 * pixelSize), result.size());
    for(UInt32 z = 0; z < 4; ++z)
        for(UInt32 y = 0; y < 8; ++y)
            for(UInt32 x = 0; x < 4; ++x)
                for(UInt32 c = 0; c < pixelSize; ++c)
                {
                    const UInt32 from = (std::min(z, 1u) * 5 + std::min(y, 4u)) * 3 + std::min(x, 2u);
                    ASSERT_EQ(source[from * pixelSize + c], result[((z * 8 + y) * 4 + x) * pixelSize + c])
                        << x << " " << y << " " << z << " " << c;
                }
}

} // namespace
