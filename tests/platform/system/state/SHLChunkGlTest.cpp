/// \file
/// GLSL programs and their uniforms, by pixels.

#include <functional>
#include <string>

#include <OpenSG/OSGSHLChunk.h>

#include "StateGlTest.h"

OSG_USING_NAMESPACE

namespace
{

const test::RgbaImage::Pixel green = {0, 255, 0, 255};
const test::RgbaImage::Pixel red = {255, 0, 0, 255};

class SHLChunkGlTest : public StateGlTest
{
  protected:
    /// A program that draws green where the expression holds, else red.
    static std::string greenIf(const std::string &declaration, const std::string &expression)
    {
        return declaration + "\nvoid main()\n{\n    gl_FragColor = (" + expression +
               ") ? vec4(0.0, 1.0, 0.0, 1.0) : vec4(1.0, 0.0, 0.0, 1.0);\n}\n";
    }

    static void setFragment(const SHLChunkPtr &shader, const std::string &text)
    {
        shader->setFragmentProgram(text);
        endEditCP(shader, SHLChunk::FragmentProgramFieldMask);
    }

    template <class FieldT, class ValueT>
    static FieldT array(const ValueT &first, const ValueT &second)
    {
        FieldT values;
        values.push_back(first);
        values.push_back(second);
        return values;
    }
};

TEST_F(SHLChunkGlTest, EveryKindOfUniformArrives)
{
    struct Case
    {
        const char *declaration;
        const char *expression;
        std::function<void(SHLChunk &)> set;
    };
    const Case cases[] = {
        {"uniform bool u;", "u", [](SHLChunk &s) { s.setUniformParameter("u", true); }},
        {"uniform int u;", "u == -7", [](SHLChunk &s) { s.setUniformParameter("u", Int32(-7)); }},
        {"uniform float u;", "u == 2.5", [](SHLChunk &s) { s.setUniformParameter("u", 2.5f); }},
        {"uniform vec2 u;", "u == vec2(1.0, 2.0)",
         [](SHLChunk &s) { s.setUniformParameter("u", Vec2f(1, 2)); }},
        {"uniform vec3 u;", "u == vec3(1.0, 2.0, 3.0)",
         [](SHLChunk &s) { s.setUniformParameter("u", Vec3f(1, 2, 3)); }},
        {"uniform vec4 u;", "u == vec4(1.0, 2.0, 3.0, 4.0)",
         [](SHLChunk &s) { s.setUniformParameter("u", Vec4f(1, 2, 3, 4)); }},
        {"uniform mat4 u;", "u[3] == vec4(4.0, 8.0, 12.0, 16.0) && u[0] == vec4(1.0, 5.0, 9.0, 13.0)",
         [](SHLChunk &s)
         { s.setUniformParameter("u", Matrix(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16)); }},
        {"uniform int u[2];", "u[0] == 3 && u[1] == 4",
         [](SHLChunk &s) { s.setUniformParameter("u", array<MFInt32>(Int32(3), Int32(4))); }},
        {"uniform float u[2];", "u[0] == 0.5 && u[1] == 0.25",
         [](SHLChunk &s) { s.setUniformParameter("u", array<MFReal32>(0.5f, 0.25f)); }},
        {"uniform vec2 u[2];", "u[0] == vec2(1.0, 2.0) && u[1] == vec2(3.0, 4.0)",
         [](SHLChunk &s) { s.setUniformParameter("u", array<MFVec2f>(Vec2f(1, 2), Vec2f(3, 4))); }},
        {"uniform vec3 u[2];", "u[0] == vec3(1.0, 2.0, 3.0) && u[1] == vec3(4.0, 5.0, 6.0)",
         [](SHLChunk &s) { s.setUniformParameter("u", array<MFVec3f>(Vec3f(1, 2, 3), Vec3f(4, 5, 6))); }},
        {"uniform vec4 u[2];", "u[0] == vec4(1.0, 2.0, 3.0, 4.0) && u[1] == vec4(5.0, 6.0, 7.0, 8.0)",
         [](SHLChunk &s)
         { s.setUniformParameter("u", array<MFVec4f>(Vec4f(1, 2, 3, 4), Vec4f(5, 6, 7, 8))); }},
        {"uniform mat4 u[2];", "u[0][3].x == 5.0 && u[1][3].x == 6.0",
         [](SHLChunk &s)
         {
             Matrix first;
             Matrix second;
             first.setTranslate(5, 0, 0);
             second.setTranslate(6, 0, 0);
             s.setUniformParameter("u", array<MFMatrix>(first, second));
         }}};
    for(const Case &one : cases)
    {
        Held<SHLChunk> shader;
        setFragment(shader, greenIf(one.declaration, one.expression));
        EXPECT_EQ(red, quadWith(*shader.ptr)) << one.declaration << " before it is set";
        one.set(*shader.operator->());
        endEditCP(shader.ptr, SHLChunk::ParametersFieldMask);
        EXPECT_EQ(green, quadWith(*shader.ptr)) << one.declaration;
        EXPECT_EQ(1u, shader->getNumUniformsSent()) << one.declaration;
    }
}

TEST_F(SHLChunkGlTest, AChangedUniformIsSentAloneAndCompilesNothing)
{
    Held<SHLChunk> shader;
    setFragment(shader, greenIf("uniform float a; uniform float b;", "a + b == 3.0"));
    shader->setUniformParameter("a", 1.f);
    shader->setUniformParameter("b", 1.f);
    shader->setUniformParameter("unused", 1.f);
    EXPECT_EQ(red, quadWith(*shader.ptr));
    EXPECT_EQ(2u, shader->getNumUniformsSent());
    EXPECT_EQ(red, quadWith(*shader.ptr));
    EXPECT_EQ(2u, shader->getNumUniformsSent()) << "nothing had changed";
    shader->setUniformParameter("b", 2.f);
    endEditCP(shader.ptr, SHLChunk::ParametersFieldMask);
    EXPECT_EQ(green, quadWith(*shader.ptr));
    EXPECT_EQ(3u, shader->getNumUniformsSent());
    EXPECT_EQ(1u, shader->getNumCompiles());
}

TEST_F(SHLChunkGlTest, OnlyAChangedTextCompilesAnewAndThenAllUniformsAreSent)
{
    Held<SHLChunk> shader;
    setFragment(shader, greenIf("uniform float a;", "a == 1.0"));
    shader->setUniformParameter("a", 1.f);
    EXPECT_EQ(green, quadWith(*shader.ptr));
    endEditCP(shader.ptr);
    EXPECT_EQ(green, quadWith(*shader.ptr));
    EXPECT_EQ(1u, shader->getNumCompiles()) << "an edit of all fields that changed no text";
    setFragment(shader, greenIf("uniform float a;", "a == 1.0 && a < 2.0"));
    EXPECT_EQ(green, quadWith(*shader.ptr));
    EXPECT_EQ(2u, shader->getNumCompiles());
    EXPECT_EQ(2u, shader->getNumUniformsSent());
}

TEST_F(SHLChunkGlTest, RemovedAndReorderedUniformsGoToTheirOwnPlaces)
{
    Held<SHLChunk> shader;
    setFragment(shader, greenIf("uniform float a; uniform float b;", "a == 1.0 && b == 2.0"));
    shader->setUniformParameter("a", 5.f);
    shader->setUniformParameter("b", 6.f);
    EXPECT_EQ(red, quadWith(*shader.ptr));
    shader->clearUniformParameters();
    shader->setUniformParameter("b", 2.f);
    shader->setUniformParameter("a", 1.f);
    endEditCP(shader.ptr, SHLChunk::ParametersFieldMask);
    EXPECT_EQ(green, quadWith(*shader.ptr));
}

TEST_F(SHLChunkGlTest, AFailingTextIsReportedOnceWithItsLinesAndTheDriversWordsAndTheFrameGoesOn)
{
    Held<SHLChunk> shader;
    setFragment(shader, "void main()\n{\n    gl_FragColor = undeclaredThing;\n}\n");
    glColor4f(0, 1, 0, 1);
    LogCapture log;
    EXPECT_EQ(green, quadWith(*shader.ptr)) << "the fixed pipeline draws";
    EXPECT_EQ(1u, log.count(LOG_WARNING));
    EXPECT_TRUE(log.contains(LOG_WARNING, "SHLChunk: the fragment program does not compile:\n"));
    EXPECT_TRUE(log.contains(LOG_WARNING, "3: "));
    EXPECT_TRUE(log.contains(LOG_WARNING, "undeclaredThing"));
    const std::string text = log.text(LOG_WARNING);
    EXPECT_NE(text.find("undeclaredThing"), text.rfind("undeclaredThing"))
        << "in the text and in the driver's words";
    EXPECT_EQ(green, quadWith(*shader.ptr));
    EXPECT_EQ(1u, log.count(LOG_WARNING)) << "not again";

    setFragment(shader, "void main()\n{\n    gl_FragColor = anotherThing;\n}\n");
    quadWith(*shader.ptr);
    EXPECT_EQ(2u, log.count(LOG_WARNING)) << "a changed text that fails too";
    setFragment(shader, greenIf("", "true"));
    glColor4f(1, 0, 0, 1);
    EXPECT_EQ(green, quadWith(*shader.ptr));
    EXPECT_EQ(2u, log.count(LOG_WARNING));
}

TEST_F(SHLChunkGlTest, AProgramThatDoesNotLinkIsReportedOnce)
{
    Held<SHLChunk> shader;
    shader->setVertexProgram("varying vec2 v;\nvoid main() { v = vec2(1.0); gl_Position = ftransform(); }\n");
    setFragment(shader, "varying vec4 v;\nvoid main() { gl_FragColor = v; }\n");
    glColor4f(0, 1, 0, 1);
    LogCapture log;
    EXPECT_EQ(green, quadWith(*shader.ptr));
    EXPECT_EQ(green, quadWith(*shader.ptr));
    EXPECT_EQ(1u, log.count(LOG_WARNING)) << log.text();
    EXPECT_TRUE(log.contains(LOG_WARNING, "SHLChunk: the program does not link:\n"));
    EXPECT_TRUE(log.contains(LOG_WARNING, "varying vec4 v;"));
}

TEST_F(SHLChunkGlTest, TextsThatBendTheLanguageAreAdapted)
{
    Held<SHLChunk> shader;
    // A whole number for a float is allowed from 1.20 on only, and nothing says 1.20 here.
    setFragment(shader,
                "void main()\n{\n    float one = 1;\n    gl_FragColor = vec4(0.0, one, 0.0, one);\n}\n");
    LogCapture log(LOG_WARNING);
    EXPECT_EQ(green, quadWith(*shader.ptr));
    EXPECT_EQ(0u, log.count(LOG_WARNING)) << log.text();
}

TEST_F(SHLChunkGlTest, AWindowWithoutGLSLWarnsOnceForAllChunks)
{
    Window::maskExtension("GL_ARB_shading_language_100");
    Held<SHLChunk> first;
    Held<SHLChunk> second;
    setFragment(first, greenIf("", "false"));
    setFragment(second, greenIf("", "false"));
    glColor4f(0, 1, 0, 1);
    LogCapture log;
    EXPECT_EQ(green, quadWith(*first.ptr));
    EXPECT_EQ(green, quadWith(*second.ptr));
    EXPECT_EQ(green, quadWith(*first.ptr));
    EXPECT_EQ(1u, log.count(LOG_WARNING));
    EXPECT_TRUE(log.contains(LOG_WARNING, "GL_ARB_shading_language_100"));
}

TEST_F(SHLChunkGlTest, ChangingFromOneProgramToAnotherAndBackToNone)
{
    Held<SHLChunk> first;
    Held<SHLChunk> second;
    setFragment(first, greenIf("", "false"));
    setFragment(second, greenIf("", "true"));
    first->activate(action.get());
    EXPECT_EQ(red, quad());
    second->changeFrom(action.get(), first.ptr.get());
    EXPECT_EQ(green, quad());
    second->changeFrom(action.get(), second.ptr.get());
    EXPECT_EQ(green, quad());
    second->deactivate(action.get());
    glColor4f(0, 0, 1, 1);
    EXPECT_EQ((Pixel{0, 0, 255, 255}), quad());
}

TEST_F(SHLChunkGlTest, UniformsWithMeaningsFollowTheMatrices)
{
    Held<SHLChunk> shader;
    setFragment(shader, greenIf("uniform mat4 OSGModelViewMatrix; uniform mat4 OSGWorldMatrix;"
                                "uniform mat4 OSGInvWorldMatrix; uniform mat4 OSGTransInvWorldMatrix;",
                                "OSGModelViewMatrix[3].y == 0.25 && OSGWorldMatrix[3].y == 0.25 &&"
                                "OSGInvWorldMatrix[3].y == -0.25 && OSGTransInvWorldMatrix[1].w == -0.25"));
    // What hosts set under such a name, to ask for it, does not count.
    shader->setUniformParameter("OSGWorldMatrix", Int32(0));
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    EXPECT_EQ(red, quadWith(*shader.ptr));
    glTranslatef(0.f, 0.25f, 0.f);
    EXPECT_EQ(green, quadWith(*shader.ptr));
    glLoadIdentity();
}

TEST_F(SHLChunkGlTest, AttributesHaveTheLocationsThatAreGiven)
{
    Held<SHLChunk> shader;
    shader->setVertexProgram("attribute vec4 tint; attribute vec4 place; varying vec4 v;\n"
                             "void main() { v = tint; gl_Position = place; }\n");
    shader->setAttributeLocation("place", 0);
    shader->setAttributeLocation("tint", 5);
    setFragment(shader, "varying vec4 v;\nvoid main() { gl_FragColor = v; }\n");
    shader->activate(action.get());
    const UInt32 program = win()->getGLObjectId(shader->getGLId());
    ASSERT_NE(0u, program);
    const UInt32 id = Window::registerFunction("glGetAttribLocation", Window::invalidExtensionID, 0);
    const auto getAttribLocation = reinterpret_cast<PFNGLGETATTRIBLOCATIONPROC>(win()->getFunction(id));
    ASSERT_NE(nullptr, getAttribLocation);
    EXPECT_EQ(5, getAttribLocation(program, "tint"));
    EXPECT_EQ(0, getAttribLocation(program, "place"));
    shader->deactivate(action.get());
}

TEST_F(SHLChunkGlTest, AGeometryShaderRuns)
{
    Held<SHLChunk> shader;
    shader->setVertexProgram("#version 150 compatibility\nvoid main() { gl_Position = gl_Vertex; }\n");
    shader->setGeometryProgram(
        "#version 150 compatibility\nlayout(points) in;\n"
        "layout(triangle_strip, max_vertices = 4) out;\n"
        "void main()\n{\n"
        "    for(int i = 0; i < 4; ++i)\n    {\n"
        "        gl_Position = vec4(float(i % 2) * 2.0 - 1.0, float(i / 2) * 2.0 - 1.0, 0.0, 1.0);\n"
        "        EmitVertex();\n    }\n    EndPrimitive();\n}\n");
    setFragment(shader,
                "#version 150 compatibility\nvoid main() { gl_FragColor = vec4(0.0, 1.0, 0.0, 1.0); }\n");
    shader->activate(action.get());
    glBegin(GL_POINTS);
    glVertex3f(0.9f, 0.9f, 0.f);
    glEnd();
    shader->deactivate(action.get());
    EXPECT_EQ(green, test::readPixel(5, 5));
}

TEST_F(SHLChunkGlTest, TheProgramGoesWithItsChunkAtTheEndOfTheFrame)
{
    UInt32 program = 0;
    const UInt32 id = Window::registerFunction("glIsProgram", Window::invalidExtensionID, 0);
    const auto isProgram = reinterpret_cast<PFNGLISPROGRAMPROC>(win()->getFunction(id));
    ASSERT_NE(nullptr, isProgram);
    {
        Held<SHLChunk> shader;
        setFragment(shader, greenIf("", "true"));
        quadWith(*shader.ptr);
        program = win()->getGLObjectId(shader->getGLId());
        EXPECT_TRUE(isProgram(program));
    }
    win()->frameExit();
    EXPECT_FALSE(isProgram(program));
}

} // namespace
