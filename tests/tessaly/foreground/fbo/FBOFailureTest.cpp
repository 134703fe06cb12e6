/// \file
/// The table of the class, what derived classes are offered, and what happens with bad input.

#include "FBOFixture.h"

OSG_USING_NAMESPACE
using namespace foreground_test;

namespace
{

GLenum pretendedStatus = 0;

GLenum pretendStatus(GLenum)
{
    return pretendedStatus;
}

} // namespace

TEST_F(FBOForegroundTest, TheTableIsAsPromised)
{
    checkClass("FBOForeground", "Foreground",
               {{"foreground", "SFForegroundPtr", 3, ""},
                {"textures", "MFTextureChunkPtr", 4, ""},
                {"textureResizeMode", "SFUInt32", 5, "0"},
                {"deactivateViewport", "SFBool", 6, "false"},
                {"overrideViewport", "SFVec4f", 7, "0 0 0 0"}});
    EXPECT_EQ(UInt32(FBOForeground::NextFieldId), 8u);
    for(const UInt32 handle : Access::handles())
        EXPECT_NE(handle, 0x7FFFFFFFu);
}

TEST_F(FBOForegroundTest, TheFramebufferIsMadeOnceAndAgainWhenItIsDirty)
{
    use({makeTexture(16, 8)});
    EXPECT_EQ(Access::id(*fbo.ptr), 0u);
    EXPECT_EQ(Access::saved(*fbo.ptr), 0u);
    EXPECT_FALSE(Access::dirty(*fbo.ptr));
    stage.frame();
    const UInt32 first = Access::id(*fbo.ptr);
    EXPECT_NE(first, 0u);
    stage.frame();
    EXPECT_EQ(Access::id(*fbo.ptr), first);
    Access::makeDirty(*fbo.ptr);
    inner->onDraw = [&](DrawActionBase *, Viewport *) { clearTo(0, 1, 0); };
    stage.frame();
    EXPECT_NE(Access::id(*fbo.ptr), first);
    EXPECT_FALSE(Access::dirty(*fbo.ptr));
    EXPECT_TRUE(isAll(texels(0), {0, 255, 0, 255}));
    EXPECT_TRUE(function<PFNGLISFRAMEBUFFERPROC>("glIsFramebuffer")(first))
        << "the one before is not deleted";
}

TEST_F(FBOForegroundTest, BehindTheDrawingWhatADerivedClassSavedIsBound)
{
    use({makeTexture(16, 8)});
    stage.frame();
    GLuint other = 0;
    function<PFNGLGENFRAMEBUFFERSPROC>("glGenFramebuffers")(1, &other);
    Access::setSaved(*fbo.ptr, other);
    after->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(get(GL_FRAMEBUFFER_BINDING), Int32(other));
        function<PFNGLBINDFRAMEBUFFERPROC>("glBindFramebuffer")(GL_FRAMEBUFFER, 0);
    };
    stage.frame();
    EXPECT_EQ(after->draws, 2);
}

TEST_F(FBOForegroundTest, WithoutAFramebufferBindingAndAttachingAreRefused)
{
    stage.frame();
    LogCapture log;
    Access::bindIt(*fbo.ptr, stage.window.ptr.get());
    EXPECT_EQ(log.text(), "Invalid FrameBufferObject index!\n");
    EXPECT_EQ(log.messages()[0].level, LOG_WARNING);
    log.clear();
    Access::attachIt(*fbo.ptr, stage.window.ptr.get(), 1, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 0);
    EXPECT_EQ(log.text(), "Invalid FrameBufferObject index!\n");
    EXPECT_EQ(get(GL_FRAMEBUFFER_BINDING), 0);
}

TEST_F(FBOForegroundTest, ALayerOfAVolumeTextureCanBeAttached)
{
    use({makeTexture(8, 4, GL_RGBA, GL_RGBA8, GL_UNSIGNED_BYTE, 3)});
    stage.frame();
    Access::bindIt(*fbo.ptr, stage.window.ptr.get());
    Access::attachIt(*fbo.ptr, stage.window.ptr.get(), name(0), GL_COLOR_ATTACHMENT0, GL_TEXTURE_3D, 2);
    GLint layer = -1;
    function<PFNGLGETFRAMEBUFFERATTACHMENTPARAMETERIVPROC>("glGetFramebufferAttachmentParameteriv")(
        GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_FRAMEBUFFER_ATTACHMENT_TEXTURE_3D_ZOFFSET_EXT, &layer);
    EXPECT_EQ(layer, 2);
    Access::unbindIt(*fbo.ptr, stage.window.ptr.get());
    EXPECT_EQ(get(GL_FRAMEBUFFER_BINDING), 0);
}

TEST_F(FBOForegroundTest, AFailingAttachmentIsToldAndTheInnerForegroundStillDraws)
{
    // A texture of one row is one of one dimension.
    const TextureChunkPtr line = makeTexture(16, 1);
    use({line});
    LogCapture log(LOG_WARNING);
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        while(glGetError() != GL_NO_ERROR)
            ;
    };
    stage.frame();
    EXPECT_EQ(inner->draws, 1);
    EXPECT_EQ(log.text(),
              "OSGFBOForeground: setTarget post: invalid operation\nError with attachment: 36064, id: " +
                  std::to_string(name(0)) + ", target: 3553\n");
    EXPECT_EQ(log.count(LOG_WARNING), 2u);
}

TEST_F(FBOForegroundTest, AnIncompleteFramebufferIsDrawnToAllTheSame)
{
    // A format that can't be drawn to.
    use({makeTexture(16, 8, GL_RGB, GL_RGB9_E5, GL_FLOAT)});
    GLenum found = 0;
    inner->onDraw = [&](DrawActionBase *, Viewport *) { found = status(); };
    LogCapture log(LOG_WARNING);
    stage.frame();
    EXPECT_EQ(inner->draws, 1);
    EXPECT_NE(found, GLenum(GL_FRAMEBUFFER_COMPLETE));
    EXPECT_EQ(get(GL_FRAMEBUFFER_BINDING), 0);
    EXPECT_TRUE(isAll(stage.pixels(), {51, 102, 153, 255}));
}

TEST_F(FBOForegroundTest, TexturesThatAreNullOrWithoutImageAreToldAndPassedOver)
{
    const TextureChunkPtr texture = makeTexture(16, 8);
    const Held<TextureChunkPtr> empty;
    fbo->editMFTextures()->setValues({NullFC, empty.ptr, texture});
    endEditCP(fbo.ptr);
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(get(GL_DRAW_BUFFER0), GL_COLOR_ATTACHMENT0);
        EXPECT_EQ(get(GL_DRAW_BUFFER1), GL_NONE);
        EXPECT_NE(attached(GL_COLOR_ATTACHMENT0), 0u);
    };
    LogCapture log(LOG_WARNING);
    stage.frame();
    EXPECT_EQ(inner->draws, 1);
    EXPECT_EQ(log.text(), "FBOForeground::draw: texture 0 is null or has no image\n"
                          "FBOForeground::draw: texture 1 is null or has no image\n");
    log.clear();
    fbo->editMFTextures()->setValues({NullFC});
    endEditCP(fbo.ptr);
    inner->onDraw = nullptr;
    stage.frame();
    EXPECT_EQ(inner->draws, 2);
    EXPECT_EQ(log.text(), "FBOForeground::draw: texture 0 is null or has no image\n");
}

TEST_F(FBOForegroundTest, AnImageWithoutASizeIsAFailingAttachmentUntilItIsResized)
{
    const Held<TextureChunkPtr> texture;
    const ImagePtr image = Image::create();
    texture->setImage(image);
    texture->setInternalFormat(GL_RGBA8);
    texture->setMinFilter(GL_NEAREST);
    endEditCP(texture.ptr);
    use({texture.ptr});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_NE(status(), GLenum(GL_FRAMEBUFFER_COMPLETE));
        while(glGetError() != GL_NO_ERROR)
            ;
    };
    LogCapture log(LOG_WARNING);
    stage.frame();
    EXPECT_EQ(inner->draws, 1);
    EXPECT_TRUE(log.contains(LOG_WARNING, "Error with attachment: 36064, id: ")) << log.text();
    EXPECT_TRUE(isAll(stage.pixels(), {51, 102, 153, 255}));

    // Negative sizes are none either.
    EXPECT_FALSE(image->set(GL_RGBA, -16, 8));
    EXPECT_FALSE(image->set(GL_RGBA, 16, 0));
    ASSERT_TRUE(image->set(GL_RGBA, 16, 8));
    texture->imageContentChanged();
    inner->onDraw = [&](DrawActionBase *, Viewport *) { clearTo(1, 0, 1); };
    log.clear();
    stage.frame();
    EXPECT_EQ(log.text(), "");
    EXPECT_TRUE(isAll(texels(0), {255, 0, 255, 255}));
}

TEST_F(FBOForegroundTest, AnImageCantBeResizedToTheSizeOfAnEmptyViewport)
{
    const TextureChunkPtr texture = makeTexture(16, 8);
    use({texture});
    fbo->setTextureResizeMode(2);
    stage.frame();
    stage.port->setSize(10, 10, 5, 5);
    LogCapture log(LOG_WARNING);
    fbo->draw(stage.action.get(), stage.port.ptr.get());
    EXPECT_EQ(log.count(LOG_WARNING), 1u) << log.text();
    EXPECT_EQ(texture->getImage()->getWidth(), 64);
    EXPECT_EQ(inner->draws, 2);
}

TEST_F(FBOForegroundTest, AForegroundThatHoldsItselfIsDrawnOnce)
{
    use({makeTexture(16, 8)});
    inner->onDraw = [&](DrawActionBase *action, Viewport *port) {
        if(inner->draws == 1)
            fbo->draw(action, port);
    };
    LogCapture log(LOG_WARNING);
    stage.frame();
    EXPECT_EQ(inner->draws, 1);
    EXPECT_EQ(log.text(), "FBOForeground::draw: the foreground holds itself\n");
}

TEST_F(FBOForegroundTest, WithoutDrawBuffersOnlyTheFirstTextureIsDrawnTo)
{
    Window::maskExtension("GL_ARB_draw_buffers");
    use({makeTexture(16, 8), makeTexture(16, 8)});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(get(GL_DRAW_BUFFER), GL_COLOR_ATTACHMENT0);
        clearTo(1, 1, 0);
    };
    LogCapture log(LOG_WARNING);
    stage.frame();
    EXPECT_EQ(log.text(), "glDrawBuffersARB not supported, can't render to more than 1 buffer.\n");
    EXPECT_TRUE(isAll(texels(0), {255, 255, 0, 255}));
    EXPECT_TRUE(isAll(texels(1), {0, 0, 0, 0}));
    log.clear();
    use({makeTexture(16, 8)});
    stage.frame();
    EXPECT_EQ(log.count(), 0u);
    EXPECT_TRUE(isAll(texels(0), {255, 255, 0, 255}));
}

TEST_F(FBOForegroundTest, WithoutFramebufferObjectsNothingIsDrawnAndItIsToldOnce)
{
    Window::maskExtension("GL_EXT_framebuffer_object");
    use({makeTexture(16, 8)});
    inner->onDraw = [&](DrawActionBase *, Viewport *) { clearTo(1, 1, 1); };
    LogCapture log(LOG_WARNING);
    stage.frame();
    stage.frame();
    EXPECT_EQ(inner->draws, 0);
    EXPECT_EQ(after->draws, 2) << "the frame goes on";
    EXPECT_EQ(log.text(), "Cannot initialize FBO\n");
    EXPECT_EQ(log.messages()[0].level, LOG_FATAL);
    EXPECT_TRUE(isAll(stage.pixels(), {51, 102, 153, 255}));
    EXPECT_FALSE(Access::make(*fbo.ptr, stage.window.ptr.get()));
    Access::setId(*fbo.ptr, 1);
    Access::bindIt(*fbo.ptr, stage.window.ptr.get());
    Access::attachIt(*fbo.ptr, stage.window.ptr.get(), 1, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 0);
    Access::unbindIt(*fbo.ptr, stage.window.ptr.get());
    EXPECT_FALSE(Access::check(*fbo.ptr, stage.window.ptr.get()));
    EXPECT_EQ(get(GL_FRAMEBUFFER_BINDING), 0);
}

TEST_F(FBOForegroundTest, WithoutTexturesOfAnySizeItIsToldOnceWhereASideIsNoPowerOfTwo)
{
    Window::maskExtension("GL_ARB_texture_non_power_of_two");
    use({makeTexture(16, 8)});
    inner->onDraw = [&](DrawActionBase *, Viewport *) { clearTo(0, 1, 0); };
    LogCapture log(LOG_WARNING);
    stage.frame();
    EXPECT_EQ(log.count(), 0u);
    EXPECT_TRUE(isAll(texels(0), {0, 255, 0, 255}));
    use({makeTexture(12, 8)});
    stage.frame();
    stage.frame();
    EXPECT_EQ(log.text(), "FBOForeground::draw: without GL_ARB_texture_non_power_of_two only the lower left part of a "
                          "texture is drawn to where its sides are no powers of two\n");
    EXPECT_EQ(inner->draws, 3) << "the frame goes on";
}

TEST_F(FBOForegroundTest, WithoutMipmapGenerationTheTextureIsDrawnToAllTheSame)
{
    GlSpy::the().functions["glGenerateMipmapEXT"] = nullptr;
    const TextureChunkPtr texture = makeTexture(16, 8);
    texture->setMinFilter(GL_LINEAR_MIPMAP_NEAREST);
    use({texture});
    inner->onDraw = [&](DrawActionBase *, Viewport *) { clearTo(0, 0, 1); };
    stage.frame();
    EXPECT_TRUE(isAll(texels(0), {0, 0, 255, 255}));
}

TEST_F(FBOForegroundTest, TheExtensionCanBeAskedFor)
{
    stage.frame();
    LogCapture log;
    EXPECT_TRUE(Access::hasExtension(*fbo.ptr, *stage.window.ptr));
    EXPECT_EQ(log.count(), 0u);
    Window::maskExtension("GL_EXT_framebuffer_object");
    EXPECT_FALSE(Access::hasExtension(*fbo.ptr, *stage.window.ptr));
    EXPECT_EQ(log.text(), "I need GL_EXT_framebuffer_object-Extension!\n");
    EXPECT_EQ(log.messages()[0].level, LOG_WARNING);
}

TEST_F(FBOForegroundTest, EachStatusHasItsMessage)
{
    GlSpy::the().functions["glCheckFramebufferStatusEXT"] =
        reinterpret_cast<GLExtensionFunction>(&pretendStatus);
    stage.frame();
    struct Case
    {
        GLenum status;
        LogLevel level;
        const char *text;
        bool result;
    };
    for(const Case &c :
        {Case{36053, LOG_INFO, "8cd5: framebuffer complete!\n", true},
         Case{36054, LOG_WARNING, "8cd6: framebuffer INCOMPLETE_ATTACHMENT\n", true},
         Case{36055, LOG_WARNING, "8cd7: framebuffer FRAMEBUFFER_MISSING_ATTACHMENT\n", true},
         Case{36057, LOG_WARNING, "8cd9: framebuffer FRAMEBUFFER_DIMENSIONS\n", true},
         Case{36058, LOG_WARNING, "8cda: framebuffer INCOMPLETE_FORMATS\n", true},
         Case{36059, LOG_WARNING, "8cdb: framebuffer INCOMPLETE_DRAW_BUFFER\n", true},
         Case{36060, LOG_WARNING, "8cdc: framebuffer INCOMPLETE_READ_BUFFER\n", true},
         Case{36006, LOG_WARNING, "8ca6: framebuffer BINDING_EXT\n", true},
         Case{36061, LOG_WARNING, "8cdd: framebuffer GL_FRAMEBUFFER_UNSUPPORTED_EXT\n", false},
         Case{12345, LOG_WARNING, "", false}})
    {
        SCOPED_TRACE(c.status);
        pretendedStatus = c.status;
        LogCapture log;
        EXPECT_EQ(Access::check(*fbo.ptr, stage.window.ptr.get()), c.result);
        EXPECT_EQ(log.text(), c.text);
        EXPECT_EQ(log.count(c.level), c.text[0] != 0 ? 1u : 0u);
        if(!c.result)
            continue;
        glEnable(GL_RGBA);
        log.clear();
        EXPECT_FALSE(Access::check(*fbo.ptr, stage.window.ptr.get())) << "with an error of GL";
        EXPECT_EQ(log.text(), std::string(c.text) + "OpenGL Error: invalid enumerant!\n");
    }
}

TEST_F(FBOForegroundTest, ReferencesAreHeldOnTheForegroundAndTheTextures)
{
    const Held<TextureChunkPtr> texture(makeTexture(16, 8));
    const Int32 before = inner.ptr.getRefCount();
    {
        const Held<FBOForegroundPtr> other;
        other->setForeground(inner.ptr);
        EXPECT_EQ(inner.ptr.getRefCount(), before + 1);
        // An edit that is not closed yet is not closed by the making of the framebuffer either.
        other->editMFTextures()->push_back(texture.ptr);
        stage.frame();
        other->draw(stage.action.get(), stage.port.ptr.get());
        EXPECT_EQ(texture.ptr.getRefCount(), 1);
        endEditCP(other.ptr);
        EXPECT_EQ(texture.ptr.getRefCount(), 2);
        const Held<FieldContainerPtr> copy(other->shallowCopy());
        EXPECT_EQ(inner.ptr.getRefCount(), before + 2);
        EXPECT_EQ(texture.ptr.getRefCount(), 3);
    }
    EXPECT_EQ(inner.ptr.getRefCount(), before);
    EXPECT_EQ(texture.ptr.getRefCount(), 1);
}

TEST_F(FBOForegroundTest, BinaryDataBringsTheFieldsAcross)
{
    const Held<TextureChunkPtr> texture(makeTexture(16, 8));
    use({texture.ptr});
    fbo->setTextureResizeMode(2);
    fbo->setDeactivateViewport(true);
    fbo->setOverrideViewport(Vec4f(1, 2, 3, 4));
    const BitVector mask = FBOForeground::ForegroundFieldMask | FBOForeground::TexturesFieldMask |
                           FBOForeground::TextureResizeModeFieldMask |
                           FBOForeground::DeactivateViewportFieldMask |
                           FBOForeground::OverrideViewportFieldMask;
    MemoryDataHandler memory;
    fbo->copyToBin(memory, mask);
    EXPECT_EQ(memory.getData().size(), 4u + 8u + 4u + 1u + 16u);
    EXPECT_EQ(fbo->getBinSize(mask), memory.getData().size());
    const Held<FBOForegroundPtr> other;
    other->copyFromBin(memory, mask);
    EXPECT_TRUE(other->getForeground() == inner.ptr);
    EXPECT_TRUE(other->getTextures(0) == texture.ptr);
    EXPECT_EQ(other->getTextureResizeMode(), 2u);
    EXPECT_TRUE(other->getDeactivateViewport());
    EXPECT_EQ(other->getOverrideViewport(), Vec4f(1, 2, 3, 4));
    other->changed(mask, ChangedOrigin::Abstract);
}
