#ifndef TESTS_SUPPORT_GLTEST_H
#define TESTS_SUPPORT_GLTEST_H

/// \file
/// The fixture of tests that draw.

#include "support/ReadBack.h"

#include <OpenSG/OSGEGLContext.h>

#include <GL/gl.h>

#include <gtest/gtest.h>

namespace test
{

/// Gives each test a GL context of its own, current on the test's thread, with a framebuffer of 256 x 256
/// pixels. A machine on which no context can be opened fails the test; and so does a GL error that is still
/// pending at the test's end.
class GlTest : public ::testing::Test
{
protected:
    static constexpr int width = 256;
    static constexpr int height = 256;

    void SetUp() override
    {
        ASSERT_TRUE(context.create(width, height)) << context.getError();
        ASSERT_TRUE(context.makeCurrent()) << context.getError();
    }

    void TearDown() override
    {
        if (context.isCurrent())
        {
            EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "pending at the end of the test";
        }
        context.destroy();
    }

    osg::EGLContextHandle context;
};

} // namespace test

#endif
