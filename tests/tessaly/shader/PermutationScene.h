#ifndef TESTS_TESSALY_SHADER_PERMUTATIONSCENE_H
#define TESTS_TESSALY_SHADER_PERMUTATIONSCENE_H

/// \file
/// A window, and a permutation chunk whose program shows in its colour what it was told.

#include "support/Held.h"
#include "support/ReadBack.h"

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLogCapture.h>
#include <Tessaly/OSGPermutationSHLChunk.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace shader_test
{

using namespace osg;

/// The names of the operations that are for subclasses only.
struct Inner : PermutationSHLChunk
{
    using PermutationSHLChunk::activate;
    using PermutationSHLChunk::appendOSGPermutationParameters;
    using PermutationSHLChunk::appendPermutationParameters;
    using PermutationSHLChunk::clearPermutationCache;
    using PermutationSHLChunk::createPermutation;
    using PermutationSHLChunk::findPermutation;
};

using test::Held;

/// Says which lights shine.
class LitAction : public DrawAction
{
  public:
    void setLights(UInt32 mask) { _activeLightsMask = mask; }
};

/// Shows what the defines say.
inline const char *const tellTale = "uniform float level;\n"
                             "void main()\n"
                             "{\n"
                             "    gl_FragColor = vec4(float(OSG_ACTIVE_LIGHTS_MASK) / 255.0,\n"
                             "                        float(OSG_STEREO_LEFT_EYE + 1) * 85.0 / 255.0 +\n"
                             "                        float(OSG_ACTIVE_LIGHTS_COUNT) / 255.0,\n"
                             "                        float(OSG_FOG) * 64.0 / 255.0, level);\n"
                             "}\n";

class PermutationTest : public ::testing::Test
{
  protected:
    typedef test::RgbaImage::Pixel Pixel;

    void SetUp() override
    {
        window->resize(16, 16);
        window->init();
        ASSERT_TRUE(window->activate());
        window->frameInit();
        action.setWindow(window.ptr.getCPtr());
        glViewport(0, 0, 16, 16);
        glDisable(GL_DEPTH_TEST);
        chunk->setFragmentProgram(tellTale);
        chunk->setUniformParameter("level", 1.0f);
        endEditCP(chunk.ptr);
    }

    void TearDown() override
    {
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << "pending at the end of the test";
        // What is left in the cache would outlive the test.
        endEditCP(chunk.ptr, PermutationSHLChunk::VertexProgramFieldMask);
        window->frameExit();
    }

    /// A quad over the window, with the chunk active around it.
    Pixel drawn()
    {
        activate();
        const Pixel pixel = quad();
        deactivate();
        return pixel;
    }
    static Pixel quad()
    {
        glColor4f(0.2f, 0.4f, 0.6f, 0.8f);
        glRectf(-1, -1, 1, 1);
        return test::readPixel(8, 8);
    }
    void activate() { asChunk().activate(&action, 0); }
    void deactivate() { asChunk().deactivate(&action, 0); }
    StateChunk &asChunk() const { return *chunk.ptr.getCPtr(); }

    /// The text of defines of the present state and parameters.
    std::string key()
    {
        std::stringstream stream;
        (chunk.ptr.getCPtr()->*(&Inner::appendOSGPermutationParameters))(stream, &action);
        (chunk.ptr.getCPtr()->*(&Inner::appendPermutationParameters))(stream);
        return stream.str();
    }
    std::string parameterText()
    {
        std::stringstream stream;
        (chunk.ptr.getCPtr()->*(&Inner::appendPermutationParameters))(stream);
        return stream.str();
    }
    SHLChunkPtr find(const std::string &text)
    {
        return (chunk.ptr.getCPtr()->*(&Inner::findPermutation))(text);
    }

    Held<EGLWindowPtr> window;
    Held<PermutationSHLChunkPtr> chunk;
    LitAction action;
};

/// By the number that shaders are told.
constexpr GLenum fogModes[] = {0, GL_LINEAR, GL_EXP, GL_EXP2};

inline void setFog(int fog)
{
    if(fog == 0)
        glDisable(GL_FOG);
    else
    {
        glEnable(GL_FOG);
        glFogi(GL_FOG_MODE, GLint(fogModes[fog]));
    }
}

inline int countOf(UInt32 mask)
{
    int count = 0;
    for(int i = 0; i < 8; ++i)
        count += int(mask >> i & 1u);
    return count;
}

} // namespace shader_test

#endif
