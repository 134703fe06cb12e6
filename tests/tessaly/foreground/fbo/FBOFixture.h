#ifndef TESTS_TESSALY_FOREGROUND_FBO_FBOFIXTURE_H
#define TESTS_TESSALY_FOREGROUND_FBO_FBOFIXTURE_H

/// \file
/// A window whose foregrounds are an FBOForeground and one behind it.

#include "tessaly/foreground/ForegroundScene.h"
#include "tessaly/foreground/GlSpy.h"

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGEGLContext.h>
#include <Tessaly/OSGFBOForeground.h>

namespace foreground_test
{

/// Reaches what derived classes reach.
struct Access : osg::FBOForeground
{
    static bool make(FBOForeground &fbo, osg::Window *win) { return (fbo.*(&Access::initialize))(win, 0); }
    static void bindIt(FBOForeground &fbo, osg::Window *win) { (fbo.*(&Access::bind))(win); }
    static void unbindIt(FBOForeground &fbo, osg::Window *win) { (fbo.*(&Access::unbind))(win); }
    static void attachIt(FBOForeground &fbo, osg::Window *win, osg::UInt32 id, osg::UInt32 attachment,
                         osg::UInt32 target, osg::Int32 zOffset)
    {
        (fbo.*(&Access::setTarget))(win, id, attachment, target, zOffset);
    }
    static bool hasExtension(FBOForeground &fbo, osg::Window &win)
    {
        return (fbo.*(&Access::extensionCheck))(win);
    }
    static bool check(FBOForeground &fbo, osg::Window *win)
    {
        return (fbo.*(&Access::checkFrameBufferStatus))(win);
    }
    static osg::UInt32 id(FBOForeground &fbo) { return (fbo.*(&Access::getGlFramebufferId))(); }
    static void setId(FBOForeground &fbo, osg::UInt32 id) { (fbo.*(&Access::setGlFramebufferId))(id); }
    static osg::UInt32 saved(FBOForeground &fbo) { return (fbo.*(&Access::getSavedGlFramebufferId))(); }
    static void setSaved(FBOForeground &fbo, osg::UInt32 id)
    {
        (fbo.*(&Access::setSavedtGlFramebufferId))(id);
    }
    static bool dirty(FBOForeground &fbo) { return (fbo.*(&Access::getDirty))(); }
    static void makeDirty(FBOForeground &fbo) { (fbo.*(&Access::setDirty))(true); }
    static std::vector<osg::UInt32> handles()
    {
        return {_tex3D_extension,
                _framebuffer_object_extension,
                _draw_buffers_extension,
                _funcDrawBuffers,
                _funcBindFramebuffer,
                _funcBindRenderbuffer,
                _funcCheckFramebufferStatus,
                _funcDeleteFramebuffers,
                _funcDeleteRenderbuffers,
                _funcFramebufferRenderbuffer,
                _funcFramebufferTexture1D,
                _funcFramebufferTexture2D,
                _funcFramebufferTexture3D,
                _funcGenFramebuffers,
                _funcGenRenderbuffers,
                _funcGenerateMipmap,
                _funcGetFramebufferAttachmentParameteriv,
                _funcGetRenderbufferParameteriv,
                _funcIsFramebuffer,
                _funcIsRenderbuffer,
                _funcRenderbufferStorage,
                _funcCopyTexSubImage3D};
    }
};

class FBOForegroundTest : public ::testing::Test
{
  protected:
    static void SetUpTestSuite() { ASSERT_TRUE(osg::osgInit(0, nullptr)); }

    void SetUp() override
    {
        fbo->setForeground(inner.ptr);
        osg::endEditCP(fbo.ptr);
        stage.add(fbo.ptr);
        stage.add(after.ptr);
    }
    void TearDown() override
    {
        GlSpy::the().reset();
        osg::Window::unmaskAll();
    }

    void use(const std::vector<osg::TextureChunkPtr> &textures)
    {
        std::vector<std::unique_ptr<Held<osg::TextureChunkPtr>>> now;
        for(const osg::TextureChunkPtr &texture : textures)
            now.push_back(std::make_unique<Held<osg::TextureChunkPtr>>(texture));
        fbo->editMFTextures()->setValues(textures);
        osg::endEditCP(fbo.ptr, osg::FBOForeground::TexturesFieldMask);
        held.swap(now);
    }

    static osg::Int32 get(GLenum what)
    {
        GLint value = -1;
        glGetIntegerv(what, &value);
        return value;
    }
    static std::vector<osg::Int32> viewport()
    {
        std::vector<osg::Int32> values(4);
        glGetIntegerv(GL_VIEWPORT, values.data());
        return values;
    }
    template <class FunctionT>
    FunctionT function(const char *functionName)
    {
        return reinterpret_cast<FunctionT>(osg::EGLContextHandle::getProcAddress(functionName));
    }
    /// Of the framebuffer that is bound.
    GLenum status()
    {
        return function<PFNGLCHECKFRAMEBUFFERSTATUSPROC>("glCheckFramebufferStatus")(GL_FRAMEBUFFER);
    }
    /// GL's name of what is attached to it, 0 for nothing.
    GLuint attached(GLenum attachment)
    {
        const auto query =
            function<PFNGLGETFRAMEBUFFERATTACHMENTPARAMETERIVPROC>("glGetFramebufferAttachmentParameteriv");
        GLint type = GL_NONE, id = 0;
        query(GL_FRAMEBUFFER, attachment, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE, &type);
        if(type == GL_TEXTURE)
            query(GL_FRAMEBUFFER, attachment, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &id);
        return GLuint(id);
    }
    /// GL's name of a texture on the list.
    GLuint name(std::size_t index) { return stage.window->getGLObjectId(held[index]->ptr->getGLId()); }

    test::RgbaImage texels(std::size_t index, GLint level = 0, GLenum target = GL_TEXTURE_2D)
    {
        glBindTexture(target, name(index));
        GLint width = 0, height = 0;
        glGetTexLevelParameteriv(target, level, GL_TEXTURE_WIDTH, &width);
        glGetTexLevelParameteriv(target, level, GL_TEXTURE_HEIGHT, &height);
        test::RgbaImage image(width, height, {1, 2, 3, 4});
        if(width > 0 && height > 0)
            glGetTexImage(target, level, GL_RGBA, GL_UNSIGNED_BYTE, image.bytes.data());
        glBindTexture(target, 0);
        return image;
    }
    std::vector<float> depths(std::size_t index)
    {
        glBindTexture(GL_TEXTURE_2D, name(index));
        GLint width = 0, height = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
        EXPECT_GT(width * height, 0);
        std::vector<float> values(std::size_t(width * height), -1.f);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT, GL_FLOAT, values.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        return values;
    }
    static ::testing::AssertionResult isAll(const test::RgbaImage &image, test::RgbaImage::Pixel color)
    {
        if(image.bytes.empty())
            return ::testing::AssertionFailure() << "no pixels";
        for(int y = 0; y < image.height; ++y)
            for(int x = 0; x < image.width; ++x)
                if(image.at(x, y) != color)
                    return ::testing::AssertionFailure() << "pixel " << x << ", " << y << " is "
                                                         << ::testing::PrintToString(image.at(x, y));
        return ::testing::AssertionSuccess();
    }

    Stage stage;
    Held<osg::FBOForegroundPtr> fbo;
    Held<osg::TestForegroundPtr> inner;
    Held<osg::TestForegroundPtr> after;
    std::vector<std::unique_ptr<Held<osg::TextureChunkPtr>>> held;
};

} // namespace foreground_test

#endif
