/// \file
/// The asynchronous grabber: which frame is in the image when, and what of it.

#include "tessaly/foreground/ForegroundScene.h"
#include "tessaly/foreground/GlSpy.h"

#include "Allocations.h"

#include <OpenSG/OSGBaseInitFunctions.h>
#include <Tessaly/OSGPBOGrabForeground.h>

#include <cstring>

OSG_USING_NAMESPACE
using namespace foreground_test;

namespace
{

/// Reaches what derived classes reach.
struct Access : PBOGrabForeground
{
    static bool ready(PBOGrabForeground &grab, Window *win, UInt32 size)
    {
        return (grab.*(&Access::pbosReady))(win, size);
    }
    static Int32 current(PBOGrabForeground &grab) { return (grab.*(&Access::getCurrentPBOIndex))(); }
    static Int32 behind(PBOGrabForeground &grab) { return (grab.*(&Access::getNextPBOIndex))(); }
    static void increment(PBOGrabForeground &grab) { (grab.*(&Access::incrementPBOIndex))(); }
    static UInt32 &pboExtension() { return _glPBOExtension; }
    static std::vector<UInt32> handles()
    {
        return {_glVBOExtension,  _funcGenBuffers,    _funcDeleteBuffers,        _funcBindBuffer,
                _funcBufferData,  _funcBufferSubData, _funcGetBufferParameteriv, _funcMapBuffer,
                _funcUnmapBuffer, _glPBOExtension};
    }
};

std::vector<UInt8> bytesOf(const ImagePtr &image)
{
    const UInt8 *const data = image->getData();
    return std::vector<UInt8>(data, data + image->getSize());
}

class PBOGrabTest : public ::testing::Test
{
  protected:
    static void SetUpTestSuite() { ASSERT_TRUE(osgInit(0, nullptr)); }

    void SetUp() override
    {
        // Another picture in each frame, no two rows or columns of which are alike.
        picture->onDraw = [this](DrawActionBase *, Viewport *port) {
            glEnable(GL_SCISSOR_TEST);
            for(int i = 0; i < 60; ++i)
            {
                glScissor(port->getPixelLeft() + i, port->getPixelBottom() + i * 2 / 3, 70, 50);
                clearTo(float((i * 37 + number * 11) % 256) / 255.f,
                        float((i * 101 + number * 53) % 256) / 255.f, float(number % 256) / 255.f,
                        float((i + number) % 256) / 255.f);
            }
            port->activateSize();
        };
        grab->setImage(image.ptr);
        endEditCP(grab.ptr);
    }
    void TearDown() override
    {
        GlSpy::the().reset();
        Window::unmaskAll();
    }

    void show(Stage &stage)
    {
        stage.add(picture.ptr);
        stage.add(grab.ptr);
    }
    void setRing(Int32 length)
    {
        grab->setNumPBOs(length);
        endEditCP(grab.ptr, PBOGrabForeground::NumPBOsFieldMask);
    }
    void setSource(const TextureChunkPtr &texture)
    {
        grab->setSourceTexture(texture);
        endEditCP(grab.ptr, PBOGrabForeground::SourceTextureFieldMask);
    }
    /// Draws a frame and gives back what the window shows.
    std::vector<UInt8> next(Stage &stage)
    {
        ++number;
        stage.frame();
        return stage.pixels().bytes;
    }
    /// Draws a frame. Whether the image is the very same.
    bool imageIsNext(Stage &stage)
    {
        const std::vector<UInt8> shown = next(stage);
        return shown == bytesOf(image.ptr);
    }

    int number = 0;
    Held<TestForegroundPtr> picture;
    Held<ImagePtr> image;
    Held<PBOGrabForegroundPtr> grab;
};

} // namespace

TEST_F(PBOGrabTest, TheTableIsAsPromised)
{
    checkClass("PBOGrabForeground", "GrabForeground",
               {{"sourceTexture", "SFTextureChunkPtr", 5, ""}, {"numPBOs", "SFInt32", 6, "1"}});
    EXPECT_EQ(UInt32(PBOGrabForeground::NextFieldId), 7u);
    for(const UInt32 handle : Access::handles())
    {
        EXPECT_NE(handle, 0x7FFFFFFFu);
    }
}

TEST_F(PBOGrabTest, TheImageIsThatOfTheRingsLengthLessOneFramesAgo)
{
    for(const int length : {1, 2, 3, 5})
    {
        SCOPED_TRACE(length);
        const Held<PBOGrabForegroundPtr> fresh;
        fresh->setImage(image.ptr);
        fresh->setNumPBOs(length);
        Stage stage(61, 47);
        stage.add(picture.ptr);
        stage.add(fresh.ptr);
        std::vector<std::vector<UInt8>> shown;
        for(int k = 0; k < 12; ++k)
        {
            shown.push_back(next(stage));
            ASSERT_EQ(image->getSize(), 61u * 47u * 4u);
            if(k >= length - 1)
            {
                ASSERT_TRUE(bytesOf(image.ptr) == shown[std::size_t(k + 1 - length)]) << "frame " << k;
            }
            if(k >= length)
            {
                ASSERT_FALSE(bytesOf(image.ptr) == shown[std::size_t(k - length)]) << "frame " << k;
            }
        }
    }
}

TEST_F(PBOGrabTest, ARingOfNoneAndLessGrabsStraight)
{
    for(const int length : {0, -1, -2147483647 - 1})
    {
        SCOPED_TRACE(length);
        setRing(length);
        Stage stage;
        show(stage);
        for(int k = 0; k < 3; ++k)
        {
            const std::vector<UInt8> shown = next(stage);
            EXPECT_TRUE(bytesOf(image.ptr) == shown);
        }
        // Buffers belong to the context that drew first.
        stage.port->getForegrounds().clear();
    }
}

TEST_F(PBOGrabTest, AnotherSizeBeginsTheRingAnew)
{
    setRing(3);
    Stage stage(40, 30);
    show(stage);
    for(int k = 0; k < 5; ++k)
        next(stage);
    stage.window->resize(77, 51);
    std::vector<std::vector<UInt8>> shown;
    for(int k = 0; k < 6; ++k)
    {
        shown.push_back(next(stage));
        ASSERT_EQ(image->getWidth(), 77);
        ASSERT_EQ(image->getHeight(), 51);
        if(k >= 2)
        {
            ASSERT_TRUE(bytesOf(image.ptr) == shown[std::size_t(k - 2)]) << k;
        }
    }
}

TEST_F(PBOGrabTest, AnotherLengthDeletesTheRingAndBeginsAnew)
{
    static int deleted;
    deleted = 0;
    GlSpy::the().functions["glDeleteBuffersARB"] =
        reinterpret_cast<GLExtensionFunction>(+[](GLsizei count, const GLuint *) { deleted += count; });
    Stage stage(33, 21);
    show(stage);
    next(stage);
    EXPECT_EQ(deleted, 0);
    setRing(3);
    std::vector<std::vector<UInt8>> shown;
    for(int k = 0; k < 5; ++k)
    {
        shown.push_back(next(stage));
        if(k >= 2)
        {
            EXPECT_TRUE(bytesOf(image.ptr) == shown[std::size_t(k - 2)]) << k;
        }
    }
    EXPECT_EQ(deleted, 1);
    setRing(0);
    EXPECT_TRUE(imageIsNext(stage));
    EXPECT_EQ(deleted, 4);
}

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

TEST_F(PBOGrabTest, ThePixelStoreAndTheBoundBufferStayAsTheyWere)
{
    for(const int length : {0, 2})
    {
        setRing(length);
        image->set(GL_RGBA, 13, 9);
        grab->setAutoResize(false);
        Stage stage;
        show(stage);
        stage.frame();
        glPixelStorei(GL_PACK_ALIGNMENT, 8);
        glPixelStorei(GL_PACK_SKIP_ROWS, 3);
        next(stage);
        GLint alignment = 0, rowLength = -1, skip = 0, buffer = -1, texture = -1;
        glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
        glGetIntegerv(GL_PACK_ROW_LENGTH, &rowLength);
        glGetIntegerv(GL_PACK_SKIP_ROWS, &skip);
        glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &buffer);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
        EXPECT_EQ(alignment, 8);
        EXPECT_EQ(rowLength, 0);
        EXPECT_EQ(skip, 3);
        EXPECT_EQ(buffer, 0);
        EXPECT_EQ(texture, 0);
        stage.port->getForegrounds().clear();
    }
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

TEST_F(PBOGrabTest, WithoutAnImageOrWhileNotActiveNothingHappens)
{
    Stage stage;
    show(stage);
    grab->setActive(false);
    stage.frame();
    EXPECT_EQ(image->getWidth(), 0);
    grab->setActive(true);
    grab->setImage(NullFC);
    LogCapture log;
    stage.frame();
    EXPECT_EQ(log.count(), 0u);
}

TEST_F(PBOGrabTest, WhatCantBeGrabbedIsToldOnceAndTheFrameGoesOn)
{
    Stage stage;
    show(stage);
    const Held<TextureChunkPtr> empty;
    const Held<TextureChunkPtr> line(makeTexture(8, 1, GL_RGBA, GL_NONE));
    const Held<TextureChunkPtr> compressed(makeTexture(8, 8, Image::OSG_RGB_DXT1, GL_NONE));
    const std::vector<std::pair<TextureChunkPtr, std::string>> cases = {
        {empty.ptr, "the source texture has no image"},
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

TEST_F(PBOGrabTest, WithoutTheBufferFunctionsFramesAreGrabbedStraight)
{
    setRing(3);
    Window::maskExtension("GL_ARB_vertex_buffer_object");
    Stage stage;
    show(stage);
    for(int k = 0; k < 3; ++k)
        EXPECT_TRUE(imageIsNext(stage));
}

TEST_F(PBOGrabTest, TheWindowIsNotAskedForPixelBuffersThemselves)
{
    setRing(2);
    Window::maskExtension("GL_ARB_pixel_buffer_object");
    Stage stage;
    show(stage);
    const std::vector<UInt8> before = next(stage);
    next(stage);
    EXPECT_TRUE(before == bytesOf(image.ptr));
}

TEST_F(PBOGrabTest, AWindowThatCantBindAPixelBufferGrabsStraight)
{
    setRing(2);
    GlSpy::the().functions["glBindBufferARB"] = reinterpret_cast<GLExtensionFunction>(+[](GLenum, GLuint) {});
    Stage stage;
    show(stage);
    for(int k = 0; k < 3; ++k)
        EXPECT_TRUE(imageIsNext(stage));
}

TEST_F(PBOGrabTest, BeforeTheNamesAreRegisteredFramesAreGrabbedStraight)
{
    const UInt32 kept = Access::pboExtension();
    Access::pboExtension() = 0x7FFFFFFF;
    setRing(3);
    Stage stage;
    show(stage);
    for(int k = 0; k < 3; ++k)
        EXPECT_TRUE(imageIsNext(stage));
    Access::pboExtension() = kept;
}

TEST_F(PBOGrabTest, ABufferThatCantBeMappedLeavesTheImageAndTheRingMovesOn)
{
    GlSpy::the().functions["glMapBufferARB"] =
        reinterpret_cast<GLExtensionFunction>(+[](GLenum, GLenum) -> void * { return nullptr; });
    setRing(3);
    Stage stage;
    show(stage);
    image->set(GL_RGBA, 64, 48);
    std::memset(image->editData(), 99, 64 * 48 * 4);
    for(int k = 0; k < 4; ++k)
    {
        next(stage);
        EXPECT_EQ(Access::current(*grab.ptr), (k + 1) % 3);
    }
    EXPECT_TRUE(bytesOf(image.ptr) == std::vector<UInt8>(64 * 48 * 4, 99));
}

TEST_F(PBOGrabTest, TheRingCountsRound)
{
    Stage stage;
    stage.frame();
    EXPECT_EQ(Access::current(*grab.ptr), 0);
    EXPECT_EQ(Access::behind(*grab.ptr), -1);
    setRing(3);
    EXPECT_TRUE(Access::ready(*grab.ptr, stage.window.ptr.get(), 100));
    EXPECT_EQ(Access::current(*grab.ptr), 0);
    EXPECT_EQ(Access::behind(*grab.ptr), 1);
    Access::increment(*grab.ptr);
    Access::increment(*grab.ptr);
    EXPECT_TRUE(Access::ready(*grab.ptr, stage.window.ptr.get(), 100));
    EXPECT_EQ(Access::current(*grab.ptr), 2);
    EXPECT_EQ(Access::behind(*grab.ptr), 0);
    EXPECT_TRUE(Access::ready(*grab.ptr, stage.window.ptr.get(), 200));
    EXPECT_EQ(Access::current(*grab.ptr), 0) << "made anew";
    setRing(0);
    EXPECT_TRUE(Access::ready(*grab.ptr, stage.window.ptr.get(), 200));
    EXPECT_EQ(Access::current(*grab.ptr), -1);
    Access::increment(*grab.ptr);
    EXPECT_EQ(Access::current(*grab.ptr), -1);
}

TEST_F(PBOGrabTest, AFrameThroughARingOfThreeAllocatesNothing)
{
    setRing(3);
    Stage stage;
    stage.add(picture.ptr);
    stage.frame();
    for(int k = 0; k < 6; ++k)
        grab->draw(stage.action.get(), stage.port.ptr.get());
    startCountingAllocations();
    for(int k = 0; k < 20; ++k)
        grab->draw(stage.action.get(), stage.port.ptr.get());
    EXPECT_EQ(stopCountingAllocations(), 0);
    // The count counts.
    startCountingAllocations();
    setRing(4);
    grab->draw(stage.action.get(), stage.port.ptr.get());
    EXPECT_GT(stopCountingAllocations(), 0);
}

TEST_F(PBOGrabTest, AReferenceIsHeldOnTheSource)
{
    const Held<TextureChunkPtr> texture;
    setSource(texture.ptr);
    EXPECT_EQ(texture.ptr.getRefCount(), 2);
    {
        const Held<FieldContainerPtr> copy(grab->shallowCopy());
        EXPECT_EQ(texture.ptr.getRefCount(), 3);
    }
    EXPECT_EQ(texture.ptr.getRefCount(), 2);
    grab->editSFSourceTexture()->setValue(NullFC);
    endEditCP(grab.ptr, PBOGrabForeground::SourceTextureFieldMask);
    EXPECT_EQ(texture.ptr.getRefCount(), 1);
}

TEST_F(PBOGrabTest, BinaryDataBringsTheFieldsAcross)
{
    const Held<TextureChunkPtr> texture;
    const Held<PBOGrabForegroundPtr> other;
    setSource(texture.ptr);
    setRing(-9);
    MemoryDataHandler memory;
    const BitVector mask = PBOGrabForeground::SourceTextureFieldMask | PBOGrabForeground::NumPBOsFieldMask;
    grab->copyToBin(memory, mask);
    EXPECT_EQ(memory.getData().size(), 8u);
    EXPECT_EQ(grab->getBinSize(mask), 8u);
    other->copyFromBin(memory, mask);
    EXPECT_TRUE(other->getSourceTexture() == texture.ptr);
    EXPECT_EQ(other->getNumPBOs(), -9);
    other->changed(mask, ChangedOrigin::Abstract);
    EXPECT_EQ(texture.ptr.getRefCount(), 3);
}
