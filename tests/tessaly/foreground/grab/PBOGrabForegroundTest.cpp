/// \file
/// The asynchronous grabber: its table, its ring, and which frame is in the image when.

#include "GrabFixture.h"

#include "Allocations.h"

OSG_USING_NAMESPACE
using namespace foreground_test;

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
