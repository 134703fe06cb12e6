#ifndef TESTS_PLATFORM_SYSTEM_STATE_STATEGLTEST_H
#define TESTS_PLATFORM_SYSTEM_STATE_STATEGLTEST_H

/// \file
/// The fixture of tests that draw with chunks.

#include <memory>

#include <gtest/gtest.h>

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGStateChunk.h>

#include "support/ReadBack.h"

/// A container with a reference that goes with the test.
template <class X>
class Held
{
  public:
    Held() : ptr(X::create()) { addRefCP(ptr); }
    ~Held() { subRefCP(ptr); }
    Held(const Held &) = delete;
    Held &operator=(const Held &) = delete;
    X *operator->() const { return ptr.get(); }
    operator typename X::Ptr() const { return ptr; }

    const typename X::Ptr ptr;
};

/// Gives each test a window of 64 x 64 pixels, its context current and in the base state, and an action
/// that draws in it.
class StateGlTest : public ::testing::Test
{
  protected:
    using Pixel = test::RgbaImage::Pixel;

    static void SetUpTestSuite() { osg::osgInit(0, nullptr); }

    void SetUp() override
    {
        window.reset(new Held<osg::EGLWindow>);
        (*window)->resize(64, 64);
        (*window)->init();
        ASSERT_TRUE((*window)->activate());
        (*window)->frameInit();
        action.reset(osg::DrawAction::create());
        action->setWindow(window->ptr.get());
        glViewport(0, 0, 64, 64);
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
        clear();
    }

    void TearDown() override
    {
        EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError()) << "pending at the end of the test";
        (*window)->frameExit();
        action.reset();
        (*window)->deactivate();
        window.reset();
        osg::Window::unmaskAll();
    }

    osg::Window *win() const { return window->ptr.get(); }

    /// Black, alpha 0, depth 1.
    void clear()
    {
        glClearColor(0, 0, 0, 0);
        glClearDepth(1.0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }

    /// A quad over the whole window at a window depth of (z + 1) / 2 with one texture coordinate all over;
    /// the pixel in the middle.
    Pixel quad(float z = 0.f, float s = 0.f, float t = 0.f, float r = 0.f, bool clockwise = false)
    {
        const float corners[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
        glBegin(GL_QUADS);
        glTexCoord3f(s, t, r);
        for(int i = 0; i < 4; ++i)
        {
            const float *const corner = corners[clockwise ? 3 - i : i];
            glVertex3f(corner[0], corner[1], -z);
        }
        glEnd();
        return test::readPixel(32, 32);
    }

    /// A quad drawn with the chunk around it.
    Pixel quadWith(osg::StateChunk &chunk, osg::UInt32 index = 0, float s = 0.f, float t = 0.f, float r = 0.f)
    {
        chunk.activate(action.get(), index);
        const Pixel pixel = quad(0.f, s, t, r);
        chunk.deactivate(action.get(), index);
        return pixel;
    }

    std::unique_ptr<Held<osg::EGLWindow>> window;
    std::unique_ptr<osg::DrawAction> action;
};

#endif
