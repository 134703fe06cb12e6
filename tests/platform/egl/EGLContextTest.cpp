/// \file
/// Contexts without a display, on the machine's real GL.

#include "support/GlTest.h"
#include "support/ReadBack.h"

#include <OpenSG/OSGEGLContext.h>

#include <GL/gl.h>
#include <GL/glext.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace
{

using osg::EGLContextHandle;
using test::readPixel;
using Pixel = test::RgbaImage::Pixel;

constexpr Pixel red = {255, 0, 0, 255};
constexpr Pixel green = {0, 255, 0, 255};
constexpr Pixel blue = {0, 0, 255, 255};

void clearTo(Pixel colour)
{
    glClearColor(colour[0] / 255.0F, colour[1] / 255.0F, colour[2] / 255.0F, colour[3] / 255.0F);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
}

GLint integer(GLenum name)
{
    GLint value = -1;
    glGetIntegerv(name, &value);
    return value;
}

/// A texture of one pixel with that colour.
GLuint makeTexture(Pixel colour)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, colour.data());
    return name;
}

Pixel textureColour(GLuint name)
{
    Pixel colour = {};
    glBindTexture(GL_TEXTURE_2D, name);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, colour.data());
    return colour;
}

/// The process's resident memory in KiB.
long residentMemory()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
    {
        if (line.rfind("VmRSS:", 0) == 0)
        {
            return std::stol(line.substr(6));
        }
    }
    return 0;
}

/// Opens a context, draws a triangle with it, reads it back and closes it.
void openDrawClose()
{
    EGLContextHandle context;
    ASSERT_TRUE(context.create(64, 64)) << context.getError();
    ASSERT_TRUE(context.makeCurrent()) << context.getError();
    clearTo(blue);
    glColor3f(1.0F, 0.0F, 0.0F);
    glBegin(GL_TRIANGLES);
    glVertex2f(-1.0F, -1.0F);
    glVertex2f(3.0F, -1.0F);
    glVertex2f(-1.0F, 3.0F);
    glEnd();
    ASSERT_EQ(readPixel(32, 32), red);
    ASSERT_TRUE(context.swap());
}

class EGLContextOnGl : public test::GlTest
{
};

TEST_F(EGLContextOnGl, HasACompatibilityProfileAndTheDepthsPromised)
{
    EXPECT_TRUE(integer(GL_CONTEXT_PROFILE_MASK) & GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING), 0);
    EXPECT_EQ(integer(GL_RED_BITS), 8);
    EXPECT_EQ(integer(GL_ALPHA_BITS), 8);
    EXPECT_EQ(integer(GL_DEPTH_BITS), 24);
    EXPECT_EQ(integer(GL_STENCIL_BITS), 8);
    EXPECT_EQ(integer(GL_SAMPLES), 0);
}

TEST_F(EGLContextOnGl, SaysWhoDraws)
{
    EXPECT_FALSE(context.getVendor().empty());
    EXPECT_FALSE(context.getRenderer().empty());
    EXPECT_FALSE(context.getVersion().empty());
    EXPECT_EQ(context.getRenderer(), reinterpret_cast<const char *>(glGetString(GL_RENDERER)));
    EXPECT_EQ(context.getDescription(), context.getVendor() + ", " + context.getRenderer() + ", OpenGL " +
                                            context.getVersion() + ", EGL by " + context.getPlatform());
    std::printf("%s\n", context.getDescription().c_str());
}

TEST_F(EGLContextOnGl, StartsWithAViewportOfItsSize)
{
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], width);
    EXPECT_EQ(viewport[3], height);
}

TEST_F(EGLContextOnGl, DrawsIntoFramebufferZeroUpToItsLastPixel)
{
    clearTo(green);
    EXPECT_EQ(readPixel(0, 0), green);
    EXPECT_EQ(readPixel(width - 1, height - 1), green);
}

TEST_F(EGLContextOnGl, ComesBackToItsFramebufferAfterAnOffScreenPass)
{
    const auto genFramebuffers = reinterpret_cast<PFNGLGENFRAMEBUFFERSEXTPROC>(
        EGLContextHandle::getProcAddress("glGenFramebuffersEXT"));
    const auto bindFramebuffer = reinterpret_cast<PFNGLBINDFRAMEBUFFEREXTPROC>(
        EGLContextHandle::getProcAddress("glBindFramebufferEXT"));
    const auto framebufferTexture = reinterpret_cast<PFNGLFRAMEBUFFERTEXTURE2DEXTPROC>(
        EGLContextHandle::getProcAddress("glFramebufferTexture2DEXT"));
    const auto deleteFramebuffers = reinterpret_cast<PFNGLDELETEFRAMEBUFFERSEXTPROC>(
        EGLContextHandle::getProcAddress("glDeleteFramebuffersEXT"));
    ASSERT_NE(genFramebuffers, nullptr);
    ASSERT_NE(bindFramebuffer, nullptr);
    ASSERT_NE(framebufferTexture, nullptr);
    ASSERT_NE(deleteFramebuffers, nullptr);

    clearTo(green);
    const GLuint texture = makeTexture(blue);
    GLuint framebuffer = 0;
    genFramebuffers(1, &framebuffer);
    bindFramebuffer(GL_FRAMEBUFFER_EXT, framebuffer);
    framebufferTexture(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_TEXTURE_2D, texture, 0);
    clearTo(red);
    EXPECT_EQ(readPixel(0, 0), red);
    bindFramebuffer(GL_FRAMEBUFFER_EXT, 0);
    EXPECT_EQ(readPixel(0, 0), green);
    EXPECT_EQ(textureColour(texture), red);
    deleteFramebuffers(1, &framebuffer);
    glDeleteTextures(1, &texture);
}

TEST_F(EGLContextOnGl, TakesBackAsTheBufferToDrawAndToRead)
{
    glDrawBuffer(GL_BACK);
    glReadBuffer(GL_BACK);
    clearTo(blue);
    EXPECT_EQ(readPixel(3, 4), blue);
}

TEST_F(EGLContextOnGl, KeepsItsPictureOverASwap)
{
    clearTo(red);
    EXPECT_TRUE(context.swap());
    EXPECT_EQ(readPixel(10, 10), red);
}

TEST_F(EGLContextOnGl, TestsDepthAndStencil)
{
    clearTo(blue);
    glEnable(GL_DEPTH_TEST);
    glColor3f(0.0F, 1.0F, 0.0F);
    glRectf(-1.0F, -1.0F, 1.0F, 1.0F); // z = 0
    glColor3f(1.0F, 0.0F, 0.0F);
    glTranslatef(0.0F, 0.0F, 0.5F); // farther: depth 0.75 against 0.5
    glRectf(-1.0F, -1.0F, 1.0F, 1.0F);
    EXPECT_EQ(readPixel(128, 128), green);

    glDisable(GL_DEPTH_TEST);
    glEnable(GL_STENCIL_TEST);
    glStencilFunc(GL_EQUAL, 1, 0xFF);
    glRectf(-1.0F, -1.0F, 1.0F, 1.0F);
    EXPECT_EQ(readPixel(128, 128), green);
    glStencilFunc(GL_EQUAL, 0, 0xFF);
    glRectf(-1.0F, -1.0F, 1.0F, 1.0F);
    EXPECT_EQ(readPixel(128, 128), red);
}

TEST_F(EGLContextOnGl, KeepsItsObjectsAndItsCurrencyOverAResize)
{
    const GLuint texture = makeTexture(green);
    ASSERT_TRUE(context.resize(300, 40)) << context.getError();
    EXPECT_TRUE(context.isCurrent());
    EXPECT_EQ(context.getWidth(), 300);
    EXPECT_EQ(context.getHeight(), 40);
    EXPECT_EQ(textureColour(texture), green);
    clearTo(red);
    EXPECT_EQ(readPixel(299, 39), red);
    glDeleteTextures(1, &texture);
}

TEST_F(EGLContextOnGl, ResizesWhileItIsNotCurrent)
{
    ASSERT_TRUE(context.doneCurrent());
    ASSERT_TRUE(context.resize(20, 30)) << context.getError();
    EXPECT_FALSE(context.isCurrent());
    ASSERT_TRUE(context.makeCurrent());
    clearTo(blue);
    EXPECT_EQ(readPixel(19, 29), blue);
}

TEST_F(EGLContextOnGl, StaysAsItIsIfAResizeIsRefused)
{
    clearTo(green);
    EXPECT_FALSE(context.resize(0, 10));
    EXPECT_EQ(context.getError(), "EGL context: can't be resized to 0 x 10 pixels");
    EXPECT_EQ(context.getWidth(), width);
    EXPECT_EQ(readPixel(1, 1), green);
}

TEST_F(EGLContextOnGl, FindsFunctionsOfTheDriver)
{
    EXPECT_NE(EGLContextHandle::getProcAddress("glCreateShader"), nullptr);
    EXPECT_EQ(EGLContextHandle::getProcAddress(nullptr), nullptr);
}

TEST_F(EGLContextOnGl, KeepsObjectsApartFromThoseOfAnotherContext)
{
    EGLContextHandle other;
    ASSERT_TRUE(other.create(8, 8)) << other.getError();
    EXPECT_TRUE(context.isCurrent()) << "opening a second context takes the first one's place";

    const GLuint mine = makeTexture(red);
    ASSERT_TRUE(other.makeCurrent());
    EXPECT_FALSE(context.isCurrent());
    EXPECT_FALSE(glIsTexture(mine));
    const GLuint theirs = makeTexture(green);
    EXPECT_EQ(theirs, mine) << "each context counts its own names";
    clearTo(blue);
    ASSERT_TRUE(context.makeCurrent());
    EXPECT_EQ(textureColour(mine), red);
    clearTo(red);
    ASSERT_TRUE(other.makeCurrent());
    EXPECT_EQ(readPixel(7, 7), blue);
    EXPECT_EQ(textureColour(theirs), green);

    other.destroy();
    ASSERT_TRUE(context.makeCurrent());
    EXPECT_EQ(readPixel(0, 0), red);
    EXPECT_EQ(textureColour(mine), red);
}

TEST_F(EGLContextOnGl, SharesObjectsWithAContextThatAsksForIt)
{
    const GLuint texture = makeTexture(green);
    glFinish();
    EGLContextHandle sharer;
    ASSERT_TRUE(sharer.create(8, 8, &context)) << sharer.getError();
    ASSERT_TRUE(sharer.makeCurrent());
    EXPECT_EQ(textureColour(texture), green);
    sharer.destroy();
    ASSERT_TRUE(context.makeCurrent());
    EXPECT_EQ(textureColour(texture), green);
}

TEST_F(EGLContextOnGl, MovesToAnotherThreadAndBack)
{
    const GLuint texture = makeTexture(green);
    ASSERT_TRUE(context.doneCurrent());
    std::thread worker(
        [this, texture]
        {
            ASSERT_TRUE(context.makeCurrent()) << context.getError();
            EXPECT_EQ(textureColour(texture), green);
            clearTo(red);
            EXPECT_EQ(readPixel(5, 5), red);
            ASSERT_TRUE(context.doneCurrent());
        });
    worker.join();
    ASSERT_TRUE(context.makeCurrent()) << context.getError();
    EXPECT_EQ(readPixel(5, 5), red);
}

TEST_F(EGLContextOnGl, IsRefusedToASecondThreadWhileCurrentOnTheFirst)
{
    std::thread worker(
        [this]
        {
            EXPECT_FALSE(context.isCurrent());
            EXPECT_FALSE(context.makeCurrent());
            EXPECT_EQ(context.getError(), "EGL context: not made current: EGL_BAD_ACCESS");
        });
    worker.join();
    EXPECT_TRUE(context.isCurrent());
}

TEST(EGLContext, DrawsOnSeveralThreadsAtOnce)
{
    std::vector<std::thread> workers;
    for (int i = 0; i < 4; ++i)
    {
        workers.emplace_back(
            []
            {
                for (int k = 0; k < 5; ++k)
                {
                    openDrawClose();
                }
            });
    }
    for (std::thread &worker : workers)
    {
        worker.join();
    }
}

TEST(EGLContext, NeedsNoDisplayServer)
{
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    openDrawClose();
}

TEST(EGLContext, IsOpenOnlyBetweenCreateAndDestroy)
{
    EGLContextHandle context;
    EXPECT_FALSE(context.isOpen());
    EXPECT_FALSE(context.makeCurrent());
    EXPECT_EQ(context.getError(), "EGL context: made current without being open");
    EXPECT_FALSE(context.resize(2, 2));
    EXPECT_EQ(context.getError(), "EGL context: resized without being open");
    EXPECT_FALSE(context.swap());
    EXPECT_TRUE(context.doneCurrent());
    context.destroy();

    ASSERT_TRUE(context.create(4, 5)) << context.getError();
    EXPECT_EQ(context.getError(), "");
    EXPECT_TRUE(context.isOpen());
    EXPECT_FALSE(context.isCurrent());
    EXPECT_EQ(context.getWidth(), 4);
    EXPECT_EQ(context.getHeight(), 5);
    ASSERT_TRUE(context.create(6, 7)) << "an open context is opened anew";
    EXPECT_EQ(context.getWidth(), 6);
    context.destroy();
    EXPECT_FALSE(context.isOpen());
    EXPECT_EQ(context.getWidth(), 0);
    EXPECT_EQ(context.getRenderer(), "");
}

TEST(EGLContext, SaysInOneLineWhyItCouldNotBeOpened)
{
    EGLContextHandle context;
    EXPECT_FALSE(context.create(0, 16));
    EXPECT_EQ(context.getError(), "EGL context: a size of 0 x 16 pixels can't be opened");
    EGLContextHandle closed;
    EXPECT_FALSE(context.create(16, 16, &closed));
    EXPECT_EQ(context.getError(), "EGL context: the context to share with is not open");
    EXPECT_FALSE(context.create(16, 16, &context));
    EXPECT_EQ(context.getError(), "EGL context: a context can't share with itself");
    EXPECT_FALSE(context.isOpen());
}

TEST_F(EGLContextOnGl, RefusesASizeAboveTheDriversLimit)
{
    GLint limit[2] = {};
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, limit);
    const std::string reason =
        "EGL context: a framebuffer of 1073741824 x 2 pixels is more than the driver's limit of " +
        std::to_string(limit[0]) + " x " + std::to_string(limit[1]) + " pixels";
    EXPECT_FALSE(context.resize(1 << 30, 2));
    EXPECT_EQ(context.getError(), reason);
    EXPECT_EQ(context.getWidth(), width);

    EGLContextHandle other;
    EXPECT_FALSE(other.create(1 << 30, 2));
    EXPECT_FALSE(other.isOpen());
    EXPECT_EQ(other.getError(), reason);
    EXPECT_TRUE(context.isCurrent());
}

TEST_F(EGLContextOnGl, DrawsIntoAWideFramebufferUpToItsLastPixel)
{
    ASSERT_TRUE(context.resize(8192, 2)) << context.getError();
    clearTo(green);
    EXPECT_EQ(readPixel(8191, 1), green);
}

TEST(EGLContext, OpensAndClosesOverAndOverWithoutGrowing)
{
    for (int i = 0; i < 10; ++i)
    {
        openDrawClose();
    }
    const long before = residentMemory();
    for (int i = 0; i < 100; ++i)
    {
        openDrawClose();
        ASSERT_FALSE(HasFatalFailure());
    }
    const long growth = residentMemory() - before;
    std::printf("100 contexts: %ld KiB more resident memory\n", growth);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // The sanitizers keep freed blocks for a while, so with them the number says nothing.
    EXPECT_LE(growth, 2048);
#endif
}

} // namespace
