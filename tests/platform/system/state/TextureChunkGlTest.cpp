/// \file
/// Textures, by pixels.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureChunk.h>

#include "StateGlTest.h"

OSG_USING_NAMESPACE

namespace
{

class TextureChunkGlTest : public StateGlTest
{
  protected:
    /// A texture with an image of bytes; nearest texels, clamped, as they are.
    static void fill(const TextureChunkPtr &texture, UInt32 format, Int32 width, Int32 height, Int32 depth,
                     const std::vector<UInt8> &bytes, Int32 type = Image::OSG_UINT8_IMAGEDATA)
    {
        const ImagePtr image = Image::create();
        ASSERT_TRUE(image->set(format, width, height, depth, 1, 1, 0.0, bytes.data(), type));
        ASSERT_EQ(bytes.size(), image->getSize());
        texture->setImage(image);
        texture->setMinFilter(GL_NEAREST);
        texture->setMagFilter(GL_NEAREST);
        texture->setWrapS(GL_CLAMP_TO_EDGE);
        texture->setWrapT(GL_CLAMP_TO_EDGE);
        texture->setWrapR(GL_CLAMP_TO_EDGE);
        endEditCP(texture);
    }

    /// Grey values of bytes, from a seed.
    static std::vector<UInt8> randomBytes(std::size_t count, UInt32 seed)
    {
        std::mt19937 random(seed);
        std::vector<UInt8> bytes(count);
        for(UInt8 &byte : bytes)
            byte = UInt8(random());
        return bytes;
    }

    static float texel(Int32 index, Int32 size) { return (float(index) + 0.5f) / float(size); }

    /// Compares every texel of a grey image with what is drawn of it.
    void expectTexels(TextureChunk &texture, Int32 width, Int32 height, Int32 depth,
                      const std::vector<UInt8> &expected, const char *what)
    {
        texture.activate(action.get(), 0);
        for(Int32 z = 0; z < depth; ++z)
            for(Int32 y = 0; y < height; ++y)
                for(Int32 x = 0; x < width; ++x)
                {
                    const Pixel pixel = quad(0.f, texel(x, width), texel(y, height), texel(z, depth));
                    ASSERT_EQ(int(expected[std::size_t((z * height + y) * width + x)]), int(pixel[0]))
                        << what << " at " << x << " " << y << " " << z;
                }
        texture.deactivate(action.get(), 0);
    }
};

template <class ValueT>
std::vector<UInt8> bytesOf(const std::vector<ValueT> &values)
{
    std::vector<UInt8> bytes(values.size() * sizeof(ValueT));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

TEST_F(TextureChunkGlTest, EveryFormatOfPixelsIsReadAsItsMeaning)
{
    struct Case
    {
        UInt32 format;
        std::vector<UInt8> bytes;
        Pixel expected;
    };
    // The current colour is what a texture without colours leaves.
    const Case cases[] = {{Image::OSG_L_PF, {80}, {80, 80, 80, 128}},
                          {Image::OSG_LA_PF, {80, 40}, {80, 80, 80, 40}},
                          {Image::OSG_RGB_PF, {10, 20, 30}, {10, 20, 30, 128}},
                          {Image::OSG_RGBA_PF, {10, 20, 30, 40}, {10, 20, 30, 40}},
                          {Image::OSG_BGR_PF, {10, 20, 30}, {30, 20, 10, 128}},
                          {Image::OSG_BGRA_PF, {10, 20, 30, 40}, {30, 20, 10, 40}},
                          {Image::OSG_ALPHA_PF, {70}, {255, 0, 255, 70}},
                          {Image::OSG_INTENSITY_PF, {90}, {90, 90, 90, 90}}};
    for(const Case &one : cases)
    {
        Held<TextureChunk> texture;
        fill(texture, one.format, 1, 1, 1, one.bytes);
        clear();
        glColor4ub(255, 0, 255, 128);
        EXPECT_EQ(one.expected, quadWith(*texture.ptr)) << "format " << one.format;
        EXPECT_EQ((Pixel{255, 0, 255, 128}), quad()) << "behind it";
    }
}

TEST_F(TextureChunkGlTest, EveryTypeOfSamplesIsReadAsItsFraction)
{
    struct Case
    {
        Int32 type;
        std::vector<UInt8> bytes;
        float expected;
    };
    const Case cases[] = {
        {Image::OSG_UINT8_IMAGEDATA, {51}, 0.2f},
        {Image::OSG_UINT16_IMAGEDATA, bytesOf(std::vector<UInt16>{13107}), 0.2f},
        {Image::OSG_INT16_IMAGEDATA, bytesOf(std::vector<Int16>{16384}), 0.5f},
        {Image::OSG_UINT32_IMAGEDATA, bytesOf(std::vector<UInt32>{0x40000000u}), 0.25f},
        {Image::OSG_INT32_IMAGEDATA, bytesOf(std::vector<Int32>{0x40000000}), 0.5f},
        {Image::OSG_FLOAT32_IMAGEDATA, bytesOf(std::vector<Real32>{0.75f}), 0.75f},
        {Image::OSG_FLOAT16_IMAGEDATA, {0x00, 0x3A}, 0.75f}, // sign 0, exponent -1, mantissa 1.5
    };
    for(const Case &one : cases)
    {
        Held<TextureChunk> texture;
        fill(texture, Image::OSG_L_PF, 1, 1, 1, one.bytes, one.type);
        EXPECT_NEAR(one.expected * 255.f, quadWith(*texture.ptr)[0], 0.51f) << "type " << one.type;
    }
}

TEST_F(TextureChunkGlTest, FloatsKeepTheirRange)
{
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_L_PF, 1, 1, 1, bytesOf(std::vector<Real32>{-3.5f}),
         Image::OSG_FLOAT32_IMAGEDATA);
    Held<SHLChunk> shader;
    shader->setFragmentProgram("uniform sampler1D map;\nvoid main()\n{\n"
                               "    gl_FragColor = vec4(texture1D(map, 0.5).r == -3.5 ? 1.0 : 0.0);\n}\n");
    shader->setUniformParameter("map", Int32(0));
    shader->activate(action.get());
    EXPECT_EQ(255, quadWith(*texture.ptr)[0]);
    shader->deactivate(action.get());
}

TEST_F(TextureChunkGlTest, RowsOfOddLengthsAreNotSheared)
{
    const UInt32 seed = 3;
    SCOPED_TRACE("seed " + std::to_string(seed));
    const std::vector<UInt8> grey = randomBytes(5 * 3 * 3, seed);
    struct Case
    {
        Int32 width, height, depth;
    };
    for(const Case &one : {Case{45, 1, 1}, Case{15, 3, 1}, Case{5, 3, 3}})
    {
        Held<TextureChunk> texture;
        fill(texture, Image::OSG_L_PF, one.width, one.height, one.depth, grey);
        expectTexels(*texture.ptr, one.width, one.height, one.depth, grey, "texel");
    }
}

/// Linear interpolation between the two nearest texels of a row, clamped to its ends.
float linearAlong(const std::function<float(Int32)> &value, float coordinate, Int32 size)
{
    const float place = coordinate * float(size) - 0.5f;
    const Int32 below = Int32(std::floor(place));
    const float weight = place - float(below);
    const auto clamped = [&](Int32 i) { return value(std::min(std::max(i, 0), size - 1)); };
    return clamped(below) * (1.f - weight) + clamped(below + 1) * weight;
}

TEST_F(TextureChunkGlTest, TheLinearFilterInterpolatesInOneTwoAndThreeDimensions)
{
    const UInt32 seed = 17;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> coordinate(0.f, 1.f);
    struct Case
    {
        Int32 width, height, depth;
    };
    for(const Case &one : {Case{8, 1, 1}, Case{4, 8, 1}, Case{4, 2, 4}})
    {
        const std::vector<UInt8> grey =
            randomBytes(std::size_t(one.width * one.height * one.depth), seed + 1);
        Held<TextureChunk> texture;
        fill(texture, Image::OSG_L_PF, one.width, one.height, one.depth, grey);
        texture->setMinFilter(GL_LINEAR);
        texture->setMagFilter(GL_LINEAR);
        endEditCP(texture.ptr);
        for(int i = 0; i < 50; ++i)
        {
            const float s = coordinate(random);
            const float t = coordinate(random);
            const float r = coordinate(random);
            const auto at = [&](Int32 x, Int32 y, Int32 z) {
                return float(grey[std::size_t((z * one.height + y) * one.width + x)]);
            };
            const float expected = linearAlong(
                [&](Int32 z)
                {
                    return linearAlong(
                        [&](Int32 y)
                        { return linearAlong([&](Int32 x) { return at(x, y, z); }, s, one.width); },
                        t, one.height);
                },
                r, one.depth);
            // GL may keep as few as 8 bits of each weight: 1/256 of 255 for each of three dimensions, and
            // the rounding.
            EXPECT_NEAR(expected, quadWith(*texture.ptr, 0, s, t, r)[0], 3.5f)
                << one.width << " x " << one.height << " x " << one.depth << " at " << s << " " << t << " "
                << r;
        }
    }
}

TEST_F(TextureChunkGlTest, WrappingRepeatsClampsAndShowsTheBorder)
{
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_L_PF, 4, 1, 1, {10, 60, 110, 160});
    const auto at = [&](GLenum wrap, float s) {
        texture->setWrapS(wrap);
        endEditCP(texture.ptr, TextureChunk::WrapSFieldMask);
        return int(quadWith(*texture.ptr, 0, s)[0]);
    };
    EXPECT_EQ(60, at(GL_REPEAT, 1.375f));
    EXPECT_EQ(160, at(GL_CLAMP_TO_EDGE, 1.375f));
    EXPECT_EQ(10, at(GL_CLAMP_TO_EDGE, -0.375f));
    EXPECT_EQ(110, at(GL_MIRRORED_REPEAT, 1.375f));
    texture->setBorderColor(Color4f(0.8f, 0.8f, 0.8f, 0.8f));
    endEditCP(texture.ptr, TextureChunk::BorderColorFieldMask);
    EXPECT_EQ(204, at(GL_CLAMP_TO_BORDER, 1.375f));
    EXPECT_EQ(1u, texture->getNumTransfers());
}

TEST_F(TextureChunkGlTest, AChangedFilterReachesGLWithoutATransfer)
{
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_L_PF, 2, 1, 1, {0, 200});
    EXPECT_EQ(0, quadWith(*texture.ptr, 0, 0.4f)[0]);
    texture->setMinFilter(GL_LINEAR);
    texture->setMagFilter(GL_LINEAR);
    endEditCP(texture.ptr, TextureChunk::MinFilterFieldMask | TextureChunk::MagFilterFieldMask);
    // 0.4 * 2 - 0.5 is 0.3 of the way.
    EXPECT_NEAR(60.f, quadWith(*texture.ptr, 0, 0.4f)[0], 1.f);
    // Now with mipmaps, which are made from what GL has.
    texture->setMinFilter(GL_LINEAR_MIPMAP_LINEAR);
    endEditCP(texture.ptr, TextureChunk::MinFilterFieldMask);
    EXPECT_NEAR(60.f, quadWith(*texture.ptr, 0, 0.4f)[0], 1.f);
    EXPECT_EQ(1u, texture->getNumTransfers());
    endEditCP(texture.ptr, TextureChunk::EnvModeFieldMask | TextureChunk::LodBiasFieldMask);
    quadWith(*texture.ptr);
    EXPECT_EQ(1u, texture->getNumTransfers());
}

TEST_F(TextureChunkGlTest, EachMinificationFilterReadsItsLevels)
{
    // An image with levels of its own, 8 x 8 to 1 x 1, with grey 40, 80, 120 and 160.
    Held<TextureChunk> texture;
    const ImagePtr image = Image::create();
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 8, 8, 1, 4));
    for(UInt32 level = 0; level < 4; ++level)
        std::fill_n(image->getData(level), image->calcMipmapLevelSize(level), UInt8(40 * (level + 1)));
    texture->setImage(image);
    texture->setMagFilter(GL_NEAREST);
    endEditCP(texture.ptr);
    struct Case
    {
        GLenum filter;
        float texelsPerPixel;
        float expected;
    };
    const float half = std::sqrt(2.f);
    const Case cases[] = {{GL_NEAREST, 4.f, 40},
                          {GL_LINEAR, 4.f, 40},
                          {GL_NEAREST_MIPMAP_NEAREST, 0.5f, 40},
                          {GL_NEAREST_MIPMAP_NEAREST, 2.f, 80},
                          {GL_NEAREST_MIPMAP_NEAREST, 4.f, 120},
                          {GL_LINEAR_MIPMAP_NEAREST, 8.f, 160},
                          {GL_LINEAR_MIPMAP_NEAREST, 2.f * 1.2f, 80},
                          {GL_NEAREST_MIPMAP_LINEAR, 2.f * half, 100},
                          {GL_LINEAR_MIPMAP_LINEAR, 2.f * half, 100},
                          {GL_LINEAR_MIPMAP_LINEAR, 32.f, 160}};
    for(const Case &one : cases)
    {
        texture->setMinFilter(one.filter);
        endEditCP(texture.ptr, TextureChunk::MinFilterFieldMask);
        texture->activate(action.get());
        const float span = 64.f * one.texelsPerPixel / 8.f;
        glBegin(GL_QUADS);
        glTexCoord2f(0, 0);
        glVertex2f(-1, -1);
        glTexCoord2f(span, 0);
        glVertex2f(1, -1);
        glTexCoord2f(span, span);
        glVertex2f(1, 1);
        glTexCoord2f(0, span);
        glVertex2f(-1, 1);
        glEnd();
        texture->deactivate(action.get());
        // The level of detail comes from an approximated logarithm.
        EXPECT_NEAR(one.expected, test::readPixel(32, 32)[0], 3.f)
            << one.filter << " at " << one.texelsPerPixel;
    }
    EXPECT_EQ(1u, texture->getNumTransfers());

    // One level more by the bias.
    texture->setMinFilter(GL_NEAREST_MIPMAP_NEAREST);
    texture->setLodBias(2.f);
    endEditCP(texture.ptr);
    EXPECT_EQ(40, quadWith(*texture.ptr)[0]) << "magnified by far, whatever the bias";
}

TEST_F(TextureChunkGlTest, MipmapsAreMadeWhereTheImageHasNone)
{
    Held<TextureChunk> texture;
    std::vector<UInt8> chequer(64);
    for(std::size_t i = 0; i < 64; ++i)
        chequer[i] = (i + i / 8) % 2 == 0 ? 0 : 200;
    fill(texture, Image::OSG_L_PF, 8, 8, 1, chequer);
    texture->setMinFilter(GL_NEAREST_MIPMAP_NEAREST);
    texture->setWrapS(GL_REPEAT);
    texture->setWrapT(GL_REPEAT);
    endEditCP(texture.ptr);
    texture->activate(action.get());
    glBegin(GL_QUADS);
    for(const auto &corner : {std::pair{0, 0}, std::pair{1, 0}, std::pair{1, 1}, std::pair{0, 1}})
    {
        glTexCoord2f(64.f * float(corner.first), 64.f * float(corner.second));
        glVertex2f(2.f * float(corner.first) - 1.f, 2.f * float(corner.second) - 1.f);
    }
    glEnd();
    texture->deactivate(action.get());
    EXPECT_NEAR(100.f, test::readPixel(32, 32)[0], 1.f) << "the mean of all texels";
}

TEST_F(TextureChunkGlTest, AChangedBlockIsTransferredAndNothingAroundIt)
{
    struct Case
    {
        Int32 size[3];
        Int32 first[3];
        Int32 last[3];
    };
    const Case cases[] = {{{7, 1, 1}, {2, -1, -1}, {4, -1, -1}},
                          {{5, 6, 1}, {1, 2, -1}, {3, -1, -1}},
                          {{3, 4, 5}, {-1, 1, 2}, {1, 2, 3}}};
    for(const Case &one : cases)
    {
        const std::size_t count = std::size_t(one.size[0] * one.size[1] * one.size[2]);
        const std::vector<UInt8> before = randomBytes(count, 5);
        const std::vector<UInt8> after = randomBytes(count, 6);
        Held<TextureChunk> texture;
        fill(texture, Image::OSG_L_PF, one.size[0], one.size[1], one.size[2], before);
        quadWith(*texture.ptr);
        texture->getImage()->setData(after.data());
        texture->imageContentChanged(one.first[0], one.last[0], one.first[1], one.last[1], one.first[2],
                                     one.last[2]);
        std::vector<UInt8> expected = before;
        for(Int32 z = 0; z < one.size[2]; ++z)
            for(Int32 y = 0; y < one.size[1]; ++y)
                for(Int32 x = 0; x < one.size[0]; ++x)
                {
                    const Int32 at[3] = {x, y, z};
                    bool inside = true;
                    for(int i = 0; i < 3; ++i)
                        inside = inside && at[i] >= one.first[i] && (one.last[i] < 0 || at[i] <= one.last[i]);
                    const std::size_t index = std::size_t((z * one.size[1] + y) * one.size[0] + x);
                    if(inside)
                        expected[index] = after[index];
                }
        expectTexels(*texture.ptr, one.size[0], one.size[1], one.size[2], expected, "block");
        texture->imageContentChanged();
        expectTexels(*texture.ptr, one.size[0], one.size[1], one.size[2], after, "all");
        EXPECT_EQ(3u, texture->getNumTransfers());
    }
}

TEST_F(TextureChunkGlTest, TwoChangedBlocksBothArrive)
{
    const std::vector<UInt8> before(8, 10);
    const std::vector<UInt8> after = {1, 2, 3, 4, 5, 6, 7, 8};
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_L_PF, 8, 1, 1, before);
    quadWith(*texture.ptr);
    texture->getImage()->setData(after.data());
    texture->imageContentChanged(1, 1);
    texture->imageContentChanged(4, 5);
    expectTexels(*texture.ptr, 8, 1, 1, {10, 2, 3, 4, 5, 6, 10, 10}, "joined");
    EXPECT_EQ(2u, texture->getNumTransfers());
}

TEST_F(TextureChunkGlTest, AnImageOfAnotherSizeOrKindIsTakenOver)
{
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_L_PF, 2, 2, 1, {10, 20, 30, 40});
    EXPECT_EQ(40, quadWith(*texture.ptr, 0, 0.75f, 0.75f)[0]);
    const std::vector<UInt8> larger = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    texture->getImage()->set(Image::OSG_L_PF, 3, 3, 1, 1, 1, 0.0, larger.data());
    texture->imageContentChanged(-1, -1, -1, -1, -1, -1);
    expectTexels(*texture.ptr, 3, 3, 1, larger, "larger");
    texture->getImage()->set(Image::OSG_L_PF, 3, 1, 3, 1, 1, 0.0, larger.data());
    texture->imageContentChanged();
    expectTexels(*texture.ptr, 3, 1, 3, larger, "with depth");
}

TEST_F(TextureChunkGlTest, ATextureWithoutAnImageDrawsAsIfTheUnitWereOff)
{
    Held<TextureChunk> texture;
    glColor4f(1, 0, 0, 1);
    LogCapture log(LOG_WARNING);
    EXPECT_EQ((Pixel{255, 0, 0, 255}), quadWith(*texture.ptr));
    fill(texture, Image::OSG_L_PF, 1, 1, 1, {50});
    EXPECT_EQ((Pixel{50, 50, 50, 255}), quadWith(*texture.ptr));
    texture->setImage(NullFC);
    endEditCP(texture.ptr, TextureChunk::ImageFieldMask);
    EXPECT_EQ((Pixel{255, 0, 0, 255}), quadWith(*texture.ptr));
    EXPECT_EQ(0u, log.count()) << log.text();
}

TEST_F(TextureChunkGlTest, AnImageWithoutPixelsMakesATextureOfItsSize)
{
    Held<TextureChunk> color;
    const ImagePtr image = Image::create();
    ASSERT_TRUE(
        image->set(Image::OSG_RGBA_PF, 33, 17, 1, 1, 1, 0.0, nullptr, Image::OSG_UINT8_IMAGEDATA, false));
    color->setImage(image);
    color->setTarget(GL_TEXTURE_2D);
    color->setInternalFormat(GL_RGBA16F);
    endEditCP(color.ptr);
    win()->validateGLObject(color->getGLId());
    glBindTexture(GL_TEXTURE_2D, win()->getGLObjectId(color->getGLId()));
    GLint width = 0;
    GLint format = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
    EXPECT_EQ(33, width);
    EXPECT_EQ(GL_RGBA16F, format);
    glBindTexture(GL_TEXTURE_2D, 0);
}

TEST_F(TextureChunkGlTest, ADepthTextureMayHaveALuminanceImageThatIsSaidToBeDepth)
{
    Held<TextureChunk> depth;
    const ImagePtr image = Image::create();
    ASSERT_TRUE(image->set(Image::OSG_L_PF, 16, 16));
    depth->setImage(image);
    depth->setInternalFormat(GL_DEPTH_COMPONENT24);
    depth->setExternalFormat(GL_DEPTH_COMPONENT);
    depth->setTarget(GL_TEXTURE_2D);
    depth->setMinFilter(GL_NEAREST);
    depth->setMagFilter(GL_NEAREST);
    endEditCP(depth.ptr);
    std::fill_n(image->getData(), 256, UInt8(153));
    EXPECT_EQ(153, quadWith(*depth.ptr)[0]);
}

TEST_F(TextureChunkGlTest, ValidatingLeavesTheBindingsAlone)
{
    GLuint mine = 0;
    glGenTextures(1, &mine);
    glBindTexture(GL_TEXTURE_2D, mine);
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_L_PF, 2, 2, 1, {1, 2, 3, 4});
    win()->validateGLObject(texture->getGLId());
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(mine, GLuint(bound));
    glDeleteTextures(1, &mine);
}

TEST_F(TextureChunkGlTest, TexturesOfAMaterialAreOnTheUnitsOfTheirOrderAlsoBehindTheFixedOnes)
{
    constexpr int count = 12;
    Held<ChunkMaterial> material;
    Held<SHLChunk> shader;
    std::string text;
    std::string sum;
    std::vector<TextureChunkPtr> textures;
    for(int i = 0; i < count; ++i)
    {
        textures.push_back(TextureChunk::create());
        fill(textures.back(), Image::OSG_L_PF, 1, 1, 1, {UInt8(i + 1)});
        material->addChunk(textures.back(), State::AutoSlot);
        const std::string name = "map" + std::to_string(i);
        text += "uniform sampler1D " + name + ";\n";
        sum += " + texture1D(" + name + ", 0.5).r * " + std::to_string(i + 1) + ".0";
        shader->setUniformParameter(name.c_str(), Int32(i));
    }
    shader->setFragmentProgram(text + "void main() { gl_FragColor = vec4((0.0" + sum + ") / 4.0); }\n");
    material->addChunk(shader);
    const StatePtr state = material->getState();
    state->activate(action.get());
    // The sum of squares from 1 to 12 is 650.
    EXPECT_NEAR(650.f / 4.f, quad()[0], 0.51f);
    state->deactivate(action.get());
    GLint unit = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
    EXPECT_EQ(GL_TEXTURE0, unit);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_1D));
}

TEST_F(TextureChunkGlTest, ChangingTexturesOfDifferentKindsLeavesOnlyTheNewOneOn)
{
    Held<TextureChunk> flat;
    Held<TextureChunk> deep;
    fill(flat, Image::OSG_L_PF, 2, 2, 1, {50, 50, 50, 50});
    fill(deep, Image::OSG_L_PF, 1, 1, 2, {90, 90});
    deep->activate(action.get(), 1);
    EXPECT_EQ(90, quad()[0]);
    flat->changeFrom(action.get(), deep.ptr.get(), 1);
    EXPECT_EQ(50, quad()[0]) << "a volume that stays on would win";
    flat->changeFrom(action.get(), flat.ptr.get(), 1);
    EXPECT_EQ(50, quad()[0]);
    flat->deactivate(action.get(), 1);
    glColor4f(1, 1, 1, 1);
    EXPECT_EQ(255, quad()[0]);
}

TEST_F(TextureChunkGlTest, WithoutOtherSidesThanPowersOfTwoAnImageIsPaddedAndTheMatrixMapsToItsPart)
{
    Window::maskExtension("GL_ARB_texture_non_power_of_two");
    const std::vector<UInt8> grey = randomBytes(3 * 5, 8);
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_L_PF, 3, 5, 1, grey);
    texture->setScale(false);
    texture->setNPOTMatrixScale(1);
    endEditCP(texture.ptr);
    expectTexels(*texture.ptr, 3, 5, 1, grey, "padded");
    glBindTexture(GL_TEXTURE_2D, win()->getGLObjectId(texture->getGLId()));
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(4, width);
    glBindTexture(GL_TEXTURE_2D, 0);
    GLfloat matrix[16];
    glGetFloatv(GL_TEXTURE_MATRIX, matrix);
    EXPECT_EQ(1.f, matrix[0]) << "behind it";

    texture->setScale(true);
    texture->setNPOTMatrixScale(0);
    endEditCP(texture.ptr);
    EXPECT_EQ(int(grey[0]), int(quadWith(*texture.ptr, 0, 0.01f, 0.01f)[0])) << "scaled";
    EXPECT_EQ(int(grey[14]), int(quadWith(*texture.ptr, 0, 0.99f, 0.99f)[0]));
}

TEST_F(TextureChunkGlTest, SidesOfAnySizeAreUsedAsTheyAreWhereGLHasThem)
{
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_L_PF, 3, 5, 1, randomBytes(15, 8));
    texture->setNPOTMatrixScale(1);
    texture->activate(action.get());
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(3, width);
    GLfloat matrix[16];
    glGetFloatv(GL_TEXTURE_MATRIX, matrix);
    EXPECT_EQ(1.f, matrix[0]);
    EXPECT_EQ(1.f, matrix[5]);
    texture->deactivate(action.get());
}

TEST_F(TextureChunkGlTest, ATooLargeImageGivesOneWarningAndTheUnitIsOff)
{
    GLint largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_L_PF, largest + 1, 1, 1, std::vector<UInt8>(std::size_t(largest) + 1, 50));
    glColor4f(1, 0, 0, 1);
    LogCapture log;
    EXPECT_EQ((Pixel{255, 0, 0, 255}), quadWith(*texture.ptr));
    EXPECT_EQ((Pixel{255, 0, 0, 255}), quadWith(*texture.ptr));
    EXPECT_EQ(1u, log.count(LOG_WARNING)) << log.text();
    EXPECT_TRUE(
        log.contains(LOG_WARNING, "can't take a texture of " + std::to_string(largest + 1) + " x 1 x 1"));
}

TEST_F(TextureChunkGlTest, ARectangleIsReadInTexels)
{
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_L_PF, 3, 2, 1, {1, 2, 3, 4, 5, 6});
    texture->setTarget(GL_TEXTURE_RECTANGLE);
    texture->setWrapS(GL_REPEAT);
    endEditCP(texture.ptr);
    EXPECT_EQ(6, quadWith(*texture.ptr, 0, 2.5f, 1.5f)[0]);
}

TEST_F(TextureChunkGlTest, FramesOfAnImageAreChosenByTheirNumber)
{
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_L_PF, 1, 1, 1, {0});
    const UInt8 frames[3] = {10, 20, 30};
    texture->getImage()->set(Image::OSG_L_PF, 1, 1, 1, 1, 3, 0.0, frames);
    texture->setFrame(2);
    endEditCP(texture.ptr);
    EXPECT_EQ(30, quadWith(*texture.ptr)[0]);
    texture->setFrame(1);
    endEditCP(texture.ptr, TextureChunk::FrameFieldMask);
    EXPECT_EQ(20, quadWith(*texture.ptr)[0]);
}

TEST_F(TextureChunkGlTest, CombinedEnvironmentsJoinTexelAndColour)
{
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_RGBA_PF, 1, 1, 1, {100, 100, 100, 255});
    glColor4f(0.2f, 0.2f, 0.2f, 1.f);
    texture->setEnvMode(GL_MODULATE);
    EXPECT_EQ(20, quadWith(*texture.ptr)[0]);
    texture->setEnvMode(GL_COMBINE);
    texture->setEnvCombineRGB(GL_ADD);
    EXPECT_EQ(151, quadWith(*texture.ptr)[0]);
    texture->setEnvScaleRGB(1.f);
    texture->setEnvCombineRGB(GL_INTERPOLATE);
    texture->setEnvColor(Color4f(0, 0, 0, 0.5f));
    EXPECT_NEAR(75.5f, quadWith(*texture.ptr)[0], 1.f) << "half of each";
}

TEST_F(TextureChunkGlTest, BlockCompressedImagesAreHandedOverAsTheyAre)
{
    // One block of 4 x 4 with both end colours pure red in 5, 6 and 5 bits, little end first.
    const std::vector<UInt8> block = {0x00, 0xF8, 0x00, 0xF8, 0, 0, 0, 0};
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_RGB_DXT1, 4, 4, 1, block);
    EXPECT_EQ((Pixel{255, 0, 0, 255}), quadWith(*texture.ptr, 0, 0.6f, 0.6f));

    Window::maskExtension("GL_EXT_texture_compression_s3tc");
    Held<TextureChunk> refused;
    fill(refused, Image::OSG_RGB_DXT1, 4, 4, 1, block);
    glColor4f(0, 1, 0, 1);
    LogCapture log;
    EXPECT_EQ((Pixel{0, 255, 0, 255}), quadWith(*refused.ptr));
    EXPECT_EQ((Pixel{0, 255, 0, 255}), quadWith(*refused.ptr));
    EXPECT_EQ(1u, log.count(LOG_WARNING)) << log.text();
}

TEST_F(TextureChunkGlTest, DepthTexturesCompareWhereTheyAreToldTo)
{
    Held<TextureChunk> depth;
    fill(depth, Image::OSG_DEPTH_PF, 2, 2, 1, bytesOf(std::vector<UInt16>(4, 0x8000)),
         Image::OSG_UINT16_IMAGEDATA);
    EXPECT_NEAR(127.5f, quadWith(*depth.ptr)[0], 1.f) << "read";
    depth->setCompareMode(GL_COMPARE_R_TO_TEXTURE);
    endEditCP(depth.ptr, TextureChunk::CompareModeFieldMask);
    EXPECT_EQ(255, quadWith(*depth.ptr, 0, 0.5f, 0.5f, 0.25f)[0]) << "nearer than the texture";
    EXPECT_EQ(0, quadWith(*depth.ptr, 0, 0.5f, 0.5f, 0.75f)[0]) << "farther";
    EXPECT_EQ(1u, depth->getNumTransfers());
}

TEST_F(TextureChunkGlTest, WhatIsEditedOnOneAspectIsDrawnOnAnother)
{
    Held<TextureChunk> texture;
    Held<SHLChunk> shader;
    fill(texture, Image::OSG_L_PF, 2, 1, 1, {40, 40});
    endEditCP(texture->getImage());
    shader->setFragmentProgram("uniform sampler1D map; uniform float factor;\n"
                               "void main() { gl_FragColor = texture1D(map, gl_TexCoord[0].s) * factor; }\n");
    shader->setUniformParameter("map", Int32(0));
    shader->setUniformParameter("factor", 2.f);
    endEditCP(shader.ptr);
    Pixel pixel = {0, 0, 0, 0};
    UInt32 numTransfers = 0;
    std::function<void()> draw = [&] {
        ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
        // Each use of the pointers is of this thread's aspect.
        ASSERT_TRUE(win()->activate());
        action->setWindow(win());
        shader->activate(action.get());
        pixel = quadWith(*texture.ptr);
        shader->deactivate(action.get());
        numTransfers = texture->getNumTransfers();
        win()->deactivate();
    };
    Thread *const thread = Thread::get("draw");
    const auto run = [&] {
        win()->deactivate();
        const auto call = [](void *argument) { (*static_cast<std::function<void()> *>(argument))(); };
        ASSERT_TRUE(thread->runFunction(call, 1, &draw));
        Thread::join(thread);
        Thread::getCurrentChangeList()->clearAll();
        ASSERT_TRUE(win()->activate());
    };
    run();
    EXPECT_EQ(80, pixel[0]);
    EXPECT_EQ(1u, numTransfers);
    EXPECT_EQ(0u, texture->getNumTransfers());

    // Two blocks in one synchronisation: the second must not hide the first.
    std::fill_n(texture->getImage()->getData(), 2, UInt8(50));
    endEditCP(texture->getImage());
    texture->imageContentChanged(0, 0);
    texture->imageContentChanged(1, 1);
    shader->setUniformParameter("factor", 3.f);
    endEditCP(shader.ptr, SHLChunk::ParametersFieldMask);
    run();
    EXPECT_EQ(150, pixel[0]);
    EXPECT_EQ(2u, numTransfers);
    run();
    EXPECT_EQ(150, pixel[0]);
    EXPECT_EQ(2u, numTransfers) << "nothing had changed";
}

TEST_F(TextureChunkGlTest, TheTextureGoesWithItsChunkAtTheEndOfTheFrame)
{
    GLuint name = 0;
    {
        Held<TextureChunk> texture;
        fill(texture, Image::OSG_L_PF, 1, 1, 1, {9});
        quadWith(*texture.ptr);
        name = win()->getGLObjectId(texture->getGLId());
        EXPECT_TRUE(glIsTexture(name));
    }
    win()->frameExit();
    EXPECT_FALSE(glIsTexture(name));
}

TEST_F(TextureChunkGlTest, TwoWindowsHaveTexturesOfTheirOwn)
{
    Held<TextureChunk> texture;
    fill(texture, Image::OSG_L_PF, 1, 1, 1, {70});
    EXPECT_EQ(70, quadWith(*texture.ptr)[0]);
    {
        Held<EGLWindow> other;
        other->resize(64, 64);
        other->init();
        ASSERT_TRUE(other->activate());
        other->frameInit();
        glViewport(0, 0, 64, 64);
        clear();
        action->setWindow(other.ptr.get());
        EXPECT_EQ(70, quadWith(*texture.ptr)[0]);
        EXPECT_EQ(2u, texture->getNumTransfers());
        other->deactivate();
    }
    ASSERT_TRUE(win()->activate());
    action->setWindow(win());
    const UInt8 changed = 80;
    texture->getImage()->setData(&changed);
    texture->imageContentChanged();
    EXPECT_EQ(80, quadWith(*texture.ptr)[0]);
}

} // namespace
