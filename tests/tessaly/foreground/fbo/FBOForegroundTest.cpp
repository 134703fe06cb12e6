/// \file
/// Drawing into textures: what is attached, what is drawn to, and the GL state that stays behind.

#include "FBOFixture.h"

#include <cmath>

OSG_USING_NAMESPACE
using namespace foreground_test;

TEST_F(FBOForegroundTest, WhatIsDrawnGoesIntoTheTextureAndNotIntoTheWindow)
{
    use({makeTexture(16, 8)});
    inner->onDraw = [&](DrawActionBase *action, Viewport *port) {
        EXPECT_EQ(action, stage.action.get());
        EXPECT_EQ(port, stage.port.ptr.get());
        EXPECT_NE(get(GL_FRAMEBUFFER_BINDING), 0);
        EXPECT_EQ(get(GL_DRAW_BUFFER0), GL_COLOR_ATTACHMENT0);
        clearTo(1, 0, 0.5f);
    };
    stage.frame();
    EXPECT_EQ(inner->draws, 1);
    EXPECT_TRUE(isAll(texels(0), {255, 0, 128, 255}));
    EXPECT_TRUE(isAll(stage.pixels(), {51, 102, 153, 255}));
    EXPECT_EQ(get(GL_FRAMEBUFFER_BINDING), 0);
    EXPECT_EQ(get(GL_TEXTURE_BINDING_2D), 0);
}

TEST_F(FBOForegroundTest, SeveralTexturesAreTheDrawBuffersInTheirOrder)
{
    use({makeTexture(16, 8), makeTexture(16, 8), makeTexture(16, 8)});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(get(GL_DRAW_BUFFER0), GL_COLOR_ATTACHMENT0);
        EXPECT_EQ(get(GL_DRAW_BUFFER1), GL_COLOR_ATTACHMENT1);
        EXPECT_EQ(get(GL_DRAW_BUFFER2), GL_COLOR_ATTACHMENT2);
        EXPECT_EQ(get(GL_DRAW_BUFFER3), GL_NONE);
        clearTo(0, 0, 1);
        glDrawBuffer(GL_COLOR_ATTACHMENT1);
        clearTo(0, 1, 0);
    };
    for(int k = 0; k < 2; ++k)
    {
        stage.frame();
        EXPECT_TRUE(isAll(texels(0), {0, 0, 255, 255}));
        EXPECT_TRUE(isAll(texels(1), {0, 255, 0, 255}));
        EXPECT_TRUE(isAll(texels(2), {0, 0, 255, 255}));
    }
    EXPECT_NE(get(GL_DRAW_BUFFER), GL_NONE) << "the window's own";
}

TEST_F(FBOForegroundTest, ADepthTextureAloneTakesTheDepth)
{
    for(const UInt32 format :
        {GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT16, GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT32})
    {
        SCOPED_TRACE(format);
        use({makeTexture(16, 8, GL_DEPTH_COMPONENT, format)});
        inner->onDraw = [&](DrawActionBase *, Viewport *) {
            EXPECT_EQ(get(GL_DRAW_BUFFER), GL_NONE);
            EXPECT_EQ(get(GL_READ_BUFFER), GL_NONE);
            EXPECT_EQ(status(), GLenum(GL_FRAMEBUFFER_COMPLETE));
            glClearDepth(0.25);
            glClear(GL_DEPTH_BUFFER_BIT);
            glClearDepth(1.0);
        };
        stage.frame();
        for(const float depth : depths(0))
            ASSERT_NEAR(depth, 0.25f, 1e-4f);
    }
}

TEST_F(FBOForegroundTest, OfTwoDepthTexturesTheLaterCounts)
{
    use({makeTexture(16, 8, GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT24),
         makeTexture(16, 8, GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT24)});
    inner->onDraw = [&](DrawActionBase *, Viewport *) { EXPECT_EQ(attached(GL_DEPTH_ATTACHMENT), name(1)); };
    stage.frame();
    EXPECT_EQ(inner->draws, 1);
}

TEST_F(FBOForegroundTest, AStencilTextureAloneIsTheStencilAttachment)
{
    const TextureChunkPtr texture = makeTexture(16, 8, GL_LUMINANCE, GL_STENCIL_INDEX);
    texture->setExternalFormat(GL_STENCIL_INDEX);
    endEditCP(texture);
    use({texture});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(attached(GL_STENCIL_ATTACHMENT), name(0));
        EXPECT_EQ(attached(GL_COLOR_ATTACHMENT0), 0u);
        EXPECT_EQ(get(GL_DRAW_BUFFER), GL_NONE);
        EXPECT_EQ(get(GL_READ_BUFFER), GL_NONE);
        glClearStencil(0x5A);
        glClear(GL_STENCIL_BUFFER_BIT);
    };
    stage.frame();
    EXPECT_EQ(inner->draws, 1);
    std::vector<UInt8> stencil(16 * 8);
    glBindTexture(GL_TEXTURE_2D, name(0));
    glGetTexImage(GL_TEXTURE_2D, 0, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, stencil.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_EQ(stencil, std::vector<UInt8>(16 * 8, 0x5A));
}

TEST_F(FBOForegroundTest, OfDepthAndStencilOnlyDepthIsAttachedAndSaidSo)
{
    const TextureChunkPtr stencil = makeTexture(16, 8, GL_LUMINANCE, GL_STENCIL_INDEX);
    stencil->setExternalFormat(GL_STENCIL_INDEX);
    use({stencil, makeTexture(16, 8, GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT24)});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(attached(GL_DEPTH_ATTACHMENT), name(1));
        EXPECT_EQ(attached(GL_STENCIL_ATTACHMENT), 0u);
    };
    LogCapture log(LOG_WARNING);
    stage.frame();
    EXPECT_EQ(inner->draws, 1);
    EXPECT_EQ(log.text(),
              "Rendering to separate depth and stencil textures is not possible. Disabling stencil "
              "texture.\n");
    EXPECT_EQ(log.messages()[0].level, LOG_WARNING);
}

TEST_F(FBOForegroundTest, ADepthAndStencilFormatIsNotUsed)
{
    use({makeTexture(16, 8, GL_DEPTH_STENCIL, GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8), makeTexture(16, 8)});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(attached(GL_COLOR_ATTACHMENT0), name(1));
        EXPECT_EQ(attached(GL_DEPTH_ATTACHMENT), 0u);
        EXPECT_EQ(get(GL_DRAW_BUFFER1), GL_NONE) << "the count is that of the colours";
    };
    LogCapture log(LOG_WARNING);
    stage.frame();
    EXPECT_EQ(log.text(), "DEPTH_STENCIL format not yet impl.\n");
    EXPECT_EQ(inner->draws, 1);
}

TEST_F(FBOForegroundTest, BesideColoursDepthIsNotAttachedAlsoWhereItWasBefore)
{
    const Held<TextureChunkPtr> color(makeTexture(16, 8));
    const Held<TextureChunkPtr> depth(makeTexture(16, 8, GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT24));
    use({depth.ptr});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        glClearDepth(0.0);
        glClear(GL_DEPTH_BUFFER_BIT);
        glClearDepth(1.0);
    };
    stage.frame();
    use({depth.ptr, color.ptr, makeTexture(16, 8)});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(attached(GL_DEPTH_ATTACHMENT), 0u);
        EXPECT_EQ(attached(GL_COLOR_ATTACHMENT0), name(1));
        EXPECT_EQ(attached(GL_COLOR_ATTACHMENT1), name(2));
    };
    stage.frame();
    use({color.ptr});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(attached(GL_COLOR_ATTACHMENT0), name(0));
        EXPECT_EQ(attached(GL_COLOR_ATTACHMENT1), 0u);
        glReadBuffer(GL_COLOR_ATTACHMENT0);
    };
    stage.frame();
    use({depth.ptr});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(attached(GL_COLOR_ATTACHMENT0), 0u);
        EXPECT_EQ(get(GL_DRAW_BUFFER), GL_NONE);
        EXPECT_EQ(get(GL_READ_BUFFER), GL_NONE);
    };
    stage.frame();
    EXPECT_EQ(inner->draws, 4);
}

TEST_F(FBOForegroundTest, TexturesBehindTheLimitAreIgnoredWhateverTheirFormat)
{
    std::vector<TextureChunkPtr> textures;
    const Int32 limit = get(GL_MAX_COLOR_ATTACHMENTS);
    for(Int32 i = 0; i < limit; ++i)
        textures.push_back(makeTexture(4, 4));
    textures.push_back(makeTexture(4, 4, GL_DEPTH_STENCIL, GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8));
    textures.push_back(makeTexture(4, 4));
    use(textures);
    LogCapture log;
    inner->onDraw = [&](DrawActionBase *, Viewport *) { clearTo(1, 1, 0); };
    stage.frame();
    EXPECT_EQ(log.text(), "GL_MAX_COLOR_ATTACHMENTS_EXT: " + std::to_string(limit) + "\n");
    EXPECT_EQ(log.messages()[0].level, LOG_INFO);
    for(Int32 i = 0; i < limit; ++i)
        EXPECT_TRUE(isAll(texels(std::size_t(i)), {255, 255, 0, 255})) << i;
    EXPECT_EQ(name(std::size_t(limit + 1)), 0u) << "not even made";

    GlSpy::the().maxColorAttachments = 2;
    use({makeTexture(4, 4), makeTexture(4, 4), makeTexture(4, 4, GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT24)});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(get(GL_DRAW_BUFFER1), GL_COLOR_ATTACHMENT1);
    };
    stage.frame();
    EXPECT_EQ(name(2), 0u);
}

TEST_F(FBOForegroundTest, WithoutTexturesOrAttachmentsNothingIsDrawnAtAll)
{
    inner->onDraw = [&](DrawActionBase *, Viewport *) { clearTo(1, 1, 1); };
    stage.frame();
    EXPECT_EQ(inner->draws, 0);
    use({makeTexture(16, 8)});
    GlSpy::the().maxColorAttachments = 0;
    stage.frame();
    EXPECT_EQ(inner->draws, 0);
    EXPECT_TRUE(isAll(stage.pixels(), {51, 102, 153, 255}));
}

TEST_F(FBOForegroundTest, WithoutAnInnerForegroundOrWhileNotActiveTheWindowIsAsItWas)
{
    use({makeTexture(16, 8)});
    fbo->setForeground(NullFC);
    stage.frame();
    EXPECT_EQ(get(GL_FRAMEBUFFER_BINDING), 0);
    fbo->setForeground(inner.ptr);
    fbo->setActive(false);
    stage.frame();
    EXPECT_EQ(inner->draws, 0);
    EXPECT_TRUE(isAll(stage.pixels(), {51, 102, 153, 255}));
}

TEST_F(FBOForegroundTest, WithoutAWindowOneLineIsLogged)
{
    use({makeTexture(16, 8)});
    const std::unique_ptr<RenderAction> action(RenderAction::create());
    LogCapture log;
    fbo->draw(action.get(), stage.port.ptr.get());
    EXPECT_EQ(log.text(), "FBOForeground::draw: no window!\n");
    EXPECT_EQ(log.messages()[0].level, LOG_WARNING);
    log.clear();
    fbo->draw(nullptr, nullptr);
    EXPECT_EQ(log.text(), "FBOForeground::draw: no window!\n");
    EXPECT_EQ(inner->draws, 0);
}

TEST_F(FBOForegroundTest, AVolumeTextureIsDrawnToInItsFirstLayer)
{
    use({makeTexture(8, 4, GL_RGBA, GL_RGBA8, GL_UNSIGNED_BYTE, 3)});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(status(), GLenum(GL_FRAMEBUFFER_COMPLETE));
        clearTo(0, 1, 1);
    };
    stage.frame();
    std::vector<UInt8> all(8 * 4 * 3 * 4, 7);
    glBindTexture(GL_TEXTURE_3D, name(0));
    glGetTexImage(GL_TEXTURE_3D, 0, GL_RGBA, GL_UNSIGNED_BYTE, all.data());
    glBindTexture(GL_TEXTURE_3D, 0);
    for(std::size_t i = 0; i < all.size(); ++i)
    {
        const UInt8 drawn = i % 4 == 0 ? 0 : 255;
        ASSERT_EQ(all[i], i < 8 * 4 * 4 ? drawn : 0) << i;
    }
}

TEST_F(FBOForegroundTest, ARectangleTextureIsDrawnTo)
{
    const TextureChunkPtr texture = makeTexture(10, 6);
    texture->setTarget(GL_TEXTURE_RECTANGLE);
    texture->setWrapS(GL_CLAMP_TO_EDGE);
    texture->setWrapT(GL_CLAMP_TO_EDGE);
    endEditCP(texture);
    use({texture});
    inner->onDraw = [&](DrawActionBase *, Viewport *) { clearTo(0, 1, 0); };
    stage.frame();
    EXPECT_TRUE(isAll(texels(0, 0, GL_TEXTURE_RECTANGLE), {0, 255, 0, 255}));
}

TEST_F(FBOForegroundTest, MipmapsAreOfThePictureOfTheFrameBefore)
{
    const TextureChunkPtr texture = makeTexture(16, 8);
    texture->setMinFilter(GL_LINEAR_MIPMAP_LINEAR);
    endEditCP(texture);
    use({texture});
    float red = 1.0f;
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(get(GL_TEXTURE_BINDING_2D), 0);
        clearTo(red, 0, 0);
    };
    stage.frame();
    EXPECT_TRUE(isAll(texels(0), {255, 0, 0, 255}));
    red = 0.0f;
    stage.frame();
    EXPECT_TRUE(isAll(texels(0), {0, 0, 0, 255}));
    EXPECT_TRUE(isAll(texels(0, 1), {255, 0, 0, 255}));
    EXPECT_TRUE(isAll(texels(0, 4), {255, 0, 0, 255}));
    EXPECT_EQ(get(GL_TEXTURE_BINDING_2D), 0);
    stage.frame();
    EXPECT_TRUE(isAll(texels(0, 1), {0, 0, 0, 255}));
}

TEST_F(FBOForegroundTest, TheResizeModesKeepColourImagesAtTheSizeOfNothingTheWindowOrTheViewport)
{
    stage.port->setSize(4, 5, 33, 24);
    endEditCP(stage.port.ptr);
    const TextureChunkPtr color = makeTexture(16, 8);
    use({color, makeTexture(16, 8)});
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        glDisable(GL_SCISSOR_TEST);
        clearTo(1, 0, 1);
    };
    const auto expectSize = [&](UInt32 mode, Int32 width, Int32 height) {
        SCOPED_TRACE(mode);
        fbo->setTextureResizeMode(mode);
        endEditCP(fbo.ptr, FBOForeground::TextureResizeModeFieldMask);
        stage.frame();
        for(std::size_t i = 0; i < 2; ++i)
        {
            const test::RgbaImage got = texels(i);
            EXPECT_EQ(got.width, width);
            EXPECT_EQ(got.height, height);
            EXPECT_EQ(held[i]->ptr->getImage()->getWidth(), width);
            EXPECT_EQ(held[i]->ptr->getImage()->getHeight(), height);
            EXPECT_TRUE(isAll(got, {255, 0, 255, 255}));
        }
    };
    expectSize(0, 16, 8);
    expectSize(1, 64, 48);
    expectSize(3, 64, 48);
    expectSize(2, 30, 20);
    const UInt64 revision = color->getImage()->getRevision();
    const UInt32 transfers = color->getNumTransfers();
    expectSize(2, 30, 20);
    expectSize(2, 30, 20);
    EXPECT_EQ(color->getImage()->getRevision(), revision) << "the same size is not set again";
    EXPECT_EQ(color->getNumTransfers(), transfers);
    stage.window->resize(80, 40);
    expectSize(1, 80, 40);
}

TEST_F(FBOForegroundTest, ResizingKeepsTheFormOfTheImage)
{
    const TextureChunkPtr texture = makeTexture(16, 8, GL_RGB, GL_RGB16, GL_UNSIGNED_SHORT);
    texture->getImage()->set(GL_RGB, 16, 8, 1, 1, 3, 0.5, nullptr, GL_UNSIGNED_SHORT);
    endEditCP(texture->getImage());
    use({texture});
    fbo->setTextureResizeMode(1);
    stage.frame();
    const ImagePtr image = texture->getImage();
    EXPECT_EQ(image->getWidth(), 64);
    EXPECT_EQ(image->getPixelFormat(), UInt32(GL_RGB));
    EXPECT_EQ(image->getDataType(), GL_UNSIGNED_SHORT);
    EXPECT_EQ(image->getFrameCount(), 3);
    EXPECT_EQ(image->getFrameDelay(), 0.5);
    EXPECT_NE(image->getData(), nullptr);
}

TEST_F(FBOForegroundTest, TexturesThatShareAnImageAreResizedTogether)
{
    const TextureChunkPtr first = makeTexture(16, 8), second = makeTexture(16, 8);
    second->setImage(first->getImage());
    endEditCP(second);
    use({first, second});
    stage.frame();
    fbo->setTextureResizeMode(1);
    inner->onDraw = [&](DrawActionBase *, Viewport *) { clearTo(1, 1, 1); };
    stage.frame();
    EXPECT_EQ(texels(0).width, 64);
    EXPECT_EQ(texels(1).width, 64);
    EXPECT_TRUE(isAll(texels(1), {255, 255, 255, 255}));
}

TEST_F(FBOForegroundTest, ADepthTextureIsNotResized)
{
    use({makeTexture(16, 8, GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT24)});
    fbo->setTextureResizeMode(1);
    stage.frame();
    EXPECT_EQ(held[0]->ptr->getImage()->getWidth(), 16);
}

TEST_F(FBOForegroundTest, TheOverrideSetsTheViewportOfTheDrawingAndItIsSetBackBehind)
{
    struct Case
    {
        Vec4f value;
        bool scissor;
        std::vector<Int32> viewport;
        bool depthOnly = false;
    };
    const std::vector<Int32> ports = {4, 5, 30, 20};
    stage.port->setSize(4, 5, 33, 24);
    endEditCP(stage.port.ptr);
    for(const Case &c :
        {Case{Vec4f(0, 0, 0, 0), true, ports}, Case{Vec4f(0, 0, 0, 1e-7f), true, ports},
         Case{Vec4f(-1, -1, -1, -1), false, {0, 0, 16, 8}},
         Case{Vec4f(-1, -1.0000005f, -1, -1), false, {0, 0, 16, 8}},
         Case{Vec4f(1.9f, 2.9f, 7.9f, 6.1f), true, {1, 2, 7, 6}},
         Case{Vec4f(-3.9f, -1, 5, 4), true, {-3, -1, 5, 4}}, Case{Vec4f(0, 0, 9, 0), true, {0, 0, 9, 0}}})
    {
        SCOPED_TRACE(c.value);
        use({makeTexture(16, 8)});
        fbo->setOverrideViewport(c.value);
        inner->onDraw = [&](DrawActionBase *, Viewport *) {
            EXPECT_EQ(viewport(), c.viewport);
            EXPECT_EQ(glIsEnabled(GL_SCISSOR_TEST), GLboolean(c.scissor));
        };
        after->onDraw = [&](DrawActionBase *, Viewport *) {
            EXPECT_EQ(viewport(), ports);
            EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
        };
        inner->draws = 0;
        stage.frame();
        EXPECT_EQ(inner->draws, 1);
    }
}

TEST_F(FBOForegroundTest, WithoutAColourTheFourMinusOnesGoToGl)
{
    use({makeTexture(16, 8, GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT24)});
    fbo->setOverrideViewport(Vec4f(-1, -1, -1, -1));
    LogCapture log(LOG_WARNING);
    inner->onDraw = [&](DrawActionBase *, Viewport *) {
        EXPECT_EQ(viewport(), (std::vector<Int32>{0, 0, 64, 48}));
    };
    stage.frame();
    EXPECT_EQ(inner->draws, 1);
    EXPECT_EQ(log.text(), "OSGFBOForeground: overrideViewport: invalid value\n") << "which GL refuses";
}

TEST_F(FBOForegroundTest, AnOverrideThatIsNoNumberIsBroughtIntoRange)
{
    use({makeTexture(16, 8)});
    fbo->setOverrideViewport(Vec4f(std::nanf(""), 0, 1e30f, 1e30f));
    stage.frame();
    EXPECT_EQ(inner->draws, 1);
}

TEST_F(FBOForegroundTest, TheViewportCanBeDeactivatedAroundTheDrawing)
{
    stage.port->setSize(4, 5, 33, 24);
    endEditCP(stage.port.ptr);
    use({makeTexture(64, 48)});
    for(const bool deactivate : {false, true})
    {
        fbo->setDeactivateViewport(deactivate);
        inner->onDraw = [&](DrawActionBase *, Viewport *) {
            EXPECT_EQ(glIsEnabled(GL_SCISSOR_TEST), GLboolean(!deactivate));
            clearTo(1, 0, 0);
        };
        after->onDraw = [&](DrawActionBase *, Viewport *) {
            EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
            EXPECT_EQ(viewport(), (std::vector<Int32>{4, 5, 30, 20}));
        };
        stage.frame();
        EXPECT_EQ(texels(0).at(0, 0),
                  (test::RgbaImage::Pixel{UInt8(deactivate ? 255 : 0), 0, 0, UInt8(deactivate ? 255 : 0)}));
    }
    EXPECT_EQ(inner->draws, 2);
}

TEST_F(FBOForegroundTest, OneForegroundServesSeveralWindows)
{
    use({makeTexture(16, 8)});
    inner->onDraw = [&](DrawActionBase *, Viewport *) { clearTo(1, 0, 0); };
    stage.frame();
    const UInt32 id = Access::id(*fbo.ptr);
    {
        Stage other(20, 20);
        other.add(fbo.ptr);
        inner->onDraw = [&](DrawActionBase *, Viewport *) { clearTo(0, 0, 1); };
        other.frame();
        EXPECT_EQ(Access::id(*fbo.ptr), id);
        EXPECT_TRUE(isAll(other.pixels(), {51, 102, 153, 255}));
        test::RgbaImage got(16, 8);
        glBindTexture(GL_TEXTURE_2D, other.window->getGLObjectId(held[0]->ptr->getGLId()));
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, got.bytes.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        EXPECT_TRUE(isAll(got, {0, 0, 255, 255}));
        other.port->getForegrounds().clear();
        endEditCP(other.port.ptr, Viewport::ForegroundsFieldMask);
    }
    ASSERT_TRUE(stage.window->activate());
    EXPECT_TRUE(isAll(texels(0), {255, 0, 0, 255})) << "each window has its own texture";
}
