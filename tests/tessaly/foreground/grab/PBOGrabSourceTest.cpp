/// \file
/// What is grabbed into what: parts of the window, textures, images of other sizes and forms.

#include "GrabFixture.h"

OSG_USING_NAMESPACE
using namespace foreground_test;

TEST_F(PBOGrabTest, APartOfTheWindowIsGrabbedFromItsCorner)
{
    Stage stage(64, 48);
    stage.port->setSize(5, 7, 35, 27);
    endEditCP(stage.port.ptr);
    show(stage);
    next(stage);
    EXPECT_EQ(image->getWidth(), 31);
    EXPECT_EQ(image->getHeight(), 21);
    EXPECT_TRUE(bytesOf(image.ptr) == test::readPixels(5, 7, 31, 21).bytes);
}

TEST_F(PBOGrabTest, AFreshImageIsGivenFormTypeAndSize)
{
    image->set(GL_LUMINANCE, 64, 48, 1, 1, 1, 0.0, nullptr, GL_FLOAT);
    Stage stage;
    show(stage);
    next(stage);
    EXPECT_EQ(image->getPixelFormat(), UInt32(GL_RGBA));
    EXPECT_EQ(image->getDataType(), GL_UNSIGNED_BYTE);
    EXPECT_EQ(image->getWidth(), 64);
    image->set(GL_RGBA, 64, 48, 1, 1, 1, 0.0, nullptr, GL_FLOAT);
    EXPECT_TRUE(imageIsNext(stage)) << "also where only the type is another";
    const UInt64 revision = image->getRevision();
    next(stage);
    EXPECT_EQ(image->getRevision(), revision + 1) << "one edit a frame, of the pixels";
}

TEST_F(PBOGrabTest, AnImageThatIsTooSmallGetsTheCornerWithoutAutoResize)
{
    for(const int length : {1, 0})
    {
        SCOPED_TRACE(length);
        setRing(length);
        image->set(GL_RGBA, 20, 10);
        grab->setAutoResize(false);
        Stage stage;
        show(stage);
        next(stage);
        EXPECT_EQ(image->getWidth(), 20);
        EXPECT_TRUE(bytesOf(image.ptr) == test::readPixels(0, 0, 20, 10).bytes);
        // One that is as good as empty is given the size all the same.
        image->set(GL_RGBA, 1, 10);
        next(stage);
        EXPECT_EQ(image->getWidth(), 64);
        stage.port->getForegrounds().clear();
    }
}

TEST_F(PBOGrabTest, AnImageThatIsTooWideGetsTheRowsOneBehindTheOther)
{
    std::vector<UInt8> grey(80 * 60 * 4, 77);
    image->set(GL_RGBA, 80, 60, 1, 1, 1, 0.0, grey.data());
    grab->setAutoResize(false);
    setRing(0);
    Stage stage;
    show(stage);
    const std::vector<UInt8> shown = next(stage);
    const std::vector<UInt8> got = bytesOf(image.ptr);
    EXPECT_EQ(std::memcmp(got.data(), shown.data(), shown.size()), 0);
    EXPECT_TRUE(std::vector<UInt8>(got.begin() + long(shown.size()), got.end()) ==
                std::vector<UInt8>(got.size() - shown.size(), 77));
}

TEST_F(PBOGrabTest, AViewportOfOnePixelWantsTwo)
{
    Stage stage(1, 1);
    stage.add(grab.ptr);
    stage.setBackground(Color3f(1, 0, 0));
    stage.frame();
    EXPECT_EQ(image->getWidth(), 2);
    EXPECT_EQ(image->getHeight(), 2);
    EXPECT_EQ(image->getData()[0], 255);
    EXPECT_EQ(image->getData()[1], 0);
}

TEST_F(PBOGrabTest, ATextureIsGrabbedInTheFormatOfItsImage)
{
    struct Case
    {
        UInt32 format;
        Int32 type;
        Int32 width, height, depth;
    };
    // Widths that make rows of odd lengths; types whose texels hold the samples exactly.
    for(const Case &c :
        {Case{GL_RGBA, GL_UNSIGNED_BYTE, 8, 4, 1}, Case{GL_RGB, GL_UNSIGNED_BYTE, 7, 5, 1},
         Case{GL_LUMINANCE, GL_UNSIGNED_BYTE, 5, 3, 1}, Case{GL_RGBA, GL_UNSIGNED_SHORT, 3, 9, 1},
         Case{GL_RGBA, GL_FLOAT, 6, 2, 1}, Case{GL_RGB, GL_UNSIGNED_BYTE, 5, 3, 4}})
        for(const int length : {0, 1, 2})
        {
            SCOPED_TRACE(testing::Message()
                         << c.format << " " << c.type << " x " << c.depth << ", ring " << length);
            const Held<PBOGrabForegroundPtr> fresh;
            const Held<ImagePtr> target;
            const Held<TextureChunkPtr> texture(
                makeTexture(c.width, c.height, c.format, GL_NONE, c.type, c.depth));
            const ImagePtr source = texture->getImage();
            UInt8 *const data = source->editData();
            for(UInt64 i = 0; i < source->getSize(); ++i)
                data[i] = UInt8(i * 89 + 3);
            if(c.type == GL_FLOAT)
            {
                const UInt64 count = source->getSize() / 4;
                for(UInt64 i = 0; i < count; ++i)
                {
                    const Real32 value = Real32(i) * 0.25f - 3.f;
                    std::memcpy(data + 4 * i, &value, 4);
                }
            }
            texture->imageContentChanged();
            // The image's own depth stays.
            target->set(c.format, 2, 2, c.depth);
            fresh->setImage(target.ptr);
            fresh->setSourceTexture(texture.ptr);
            fresh->setNumPBOs(length);
            Stage stage;
            stage.add(fresh.ptr);
            for(int k = 0; k < 3; ++k)
                stage.frame();
            EXPECT_EQ(target->getPixelFormat(), c.format);
            EXPECT_EQ(target->getDataType(), c.type);
            EXPECT_TRUE(bytesOf(target.ptr) == bytesOf(source));
        }
}

TEST_F(PBOGrabTest, ATexturesNewFormatResetsTheImageAlsoWithoutAutoResize)
{
    const Held<TextureChunkPtr> texture(makeTexture(8, 8, GL_RGBA, GL_NONE));
    setSource(texture.ptr);
    grab->setAutoResize(false);
    Stage stage;
    show(stage);
    stage.frame();
    EXPECT_EQ(image->getPixelFormat(), UInt32(GL_RGBA));
    const std::vector<UInt8> red = {255, 0, 0};
    std::vector<UInt8> pixels;
    for(int i = 0; i < 36; ++i)
        pixels.insert(pixels.end(), red.begin(), red.end());
    texture->getImage()->set(GL_RGB, 6, 6, 1, 1, 1, 0.0, pixels.data());
    texture->imageContentChanged();
    stage.window->validateGLObject(texture->getGLId());
    stage.frame();
    EXPECT_EQ(image->getPixelFormat(), UInt32(GL_RGB));
    EXPECT_EQ(image->getWidth(), 6);
    EXPECT_TRUE(bytesOf(image.ptr) == pixels);
}

TEST_F(PBOGrabTest, ATextureThatIsLargerThanTheImageGivesItsCorner)
{
    const Held<TextureChunkPtr> texture(makeTexture(8, 6, GL_LUMINANCE, GL_NONE));
    for(int i = 0; i < 48; ++i)
        texture->getImage()->editData()[i] = UInt8(5 * i);
    setSource(texture.ptr);
    grab->setAutoResize(false);
    for(const int length : {0, 1})
        for(const Vec2f &size : {Vec2f(5, 3), Vec2f(8, 3), Vec2f(3, 6)})
        {
            setRing(length);
            const Int32 width = Int32(size[0]), height = Int32(size[1]);
            SCOPED_TRACE(testing::Message() << width << " x " << height << ", ring " << length);
            image->set(GL_LUMINANCE, width, height);
            Stage stage;
            show(stage);
            stage.frame();
            ASSERT_EQ(image->getSize(), UInt64(width * height));
            for(int y = 0; y < height; ++y)
                for(int x = 0; x < width; ++x)
                    EXPECT_EQ(image->getData()[y * width + x], 5 * (y * 8 + x));
            stage.port->getForegrounds().clear();
        }
}

TEST_F(PBOGrabTest, AnImageOfSeveralLevelsAndFramesGetsThePictureAsItsFirst)
{
    for(const int length : {0, 1})
    {
        setRing(length);
        image->set(GL_RGBA, 32, 16, 1, 3, 2);
        std::memset(image->editData(), 55, image->getSize());
        Stage stage(32, 16);
        show(stage);
        const std::vector<UInt8> shown = next(stage);
        EXPECT_EQ(image->getMipMapCount(), 3);
        EXPECT_EQ(image->getFrameCount(), 2);
        EXPECT_EQ(std::memcmp(image->getData(), shown.data(), shown.size()), 0);
        EXPECT_TRUE(
            std::vector<UInt8>(image->getData() + shown.size(), image->getData() + image->getSize()) ==
            std::vector<UInt8>(image->getSize() - shown.size(), 55))
            << "the others stay";
        // A new size keeps their number.
        stage.window->resize(20, 16);
        next(stage);
        EXPECT_EQ(image->getWidth(), 20);
        EXPECT_EQ(image->getMipMapCount(), 3);
        EXPECT_EQ(image->getFrameCount(), 2);
        stage.port->getForegrounds().clear();
    }
}

TEST_F(PBOGrabTest, WhatCantBeGrabbedIsToldOnceAndTheFrameGoesOn)
{
    Stage stage;
    show(stage);
    const Held<TextureChunkPtr> empty;
    const Held<TextureChunkPtr> sizeless;
    sizeless->setImage(Image::create());
    const Held<TextureChunkPtr> line(makeTexture(8, 1, GL_RGBA, GL_NONE));
    const Held<TextureChunkPtr> compressed(makeTexture(8, 8, Image::OSG_RGB_DXT1, GL_NONE));
    const std::vector<std::pair<TextureChunkPtr, std::string>> cases = {
        {empty.ptr, "the source texture has no image"},
        {sizeless.ptr, "a texture of this kind can't be grabbed"},
        {line.ptr, "a texture of this kind can't be grabbed"},
        {compressed.ptr, "a compressed texture can't be grabbed"}};
    for(const auto &[texture, text] : cases)
    {
        setSource(texture);
        LogCapture log;
        const std::vector<UInt8> shown = next(stage);
        next(stage);
        EXPECT_EQ(log.text(LOG_WARNING), "PBOGrabForeground::draw: " + text + "\n");
        EXPECT_EQ(image->getWidth(), 0);
        EXPECT_EQ(shown[2], number - 1) << "the picture is drawn";
    }
    setSource(NullFC);
    EXPECT_TRUE(imageIsNext(stage));
}

TEST_F(PBOGrabTest, RowsAreAsLongAsWhatIsReadWhereTheImageIsNarrower)
{
    static GLint rowLength;
    GlSpy::the().functions["glMapBufferARB"] =
        reinterpret_cast<GLExtensionFunction>(+[](GLenum, GLenum) -> void * {
            glGetIntegerv(GL_PACK_ROW_LENGTH, &rowLength);
            return nullptr;
        });
    grab->setAutoResize(false);
    Stage stage;
    show(stage);
    for(const int width : {20, 64, 80})
    {
        image->set(GL_RGBA, width, 10);
        rowLength = -1;
        next(stage);
        EXPECT_EQ(rowLength, width < 64 ? width : 0);
    }
}
