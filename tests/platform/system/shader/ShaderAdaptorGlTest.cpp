/// \file
/// What the driver says to texts before and after the rules: each rule must be needed, and must help.

#define GL_GLEXT_PROTOTYPES

#include "support/GlTest.h"

#include <OpenSG/OSGShaderAdaptor.h>

#include <GL/gl.h>
#include <GL/glext.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

using osg::adaptShader;
using osg::ShaderCapabilities;
using osg::ShaderStage;

struct Compiled
{
    bool ok;
    std::string log;
};

Compiled compile(const std::string &text, ShaderStage stage)
{
    const GLuint shader =
        glCreateShader(stage == ShaderStage::Vertex ? GL_VERTEX_SHADER : GL_FRAGMENT_SHADER);
    const char *source = text.c_str();
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint status = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    GLchar log[4096] = "";
    glGetShaderInfoLog(shader, sizeof(log), nullptr, log);
    glDeleteShader(shader);
    return {status == GL_TRUE, log};
}

class ShaderAdaptorOnGl : public test::GlTest
{
protected:
    /// Expects that the driver refuses the text as it is and takes it adapted.
    void expectHelp(const std::string &text, const ShaderCapabilities &capabilities = ShaderCapabilities())
    {
        EXPECT_FALSE(compile(text, ShaderStage::Fragment).ok) << "the rule is not needed for:\n" << text;
        const std::string adapted = adaptShader(text, ShaderStage::Fragment, capabilities);
        const Compiled result = compile(adapted, ShaderStage::Fragment);
        EXPECT_TRUE(result.ok) << result.log << osg::numberLines(adapted);
    }

    /// Expects that an error in that line of the text is reported with that number after the adaptation.
    void expectLine(const std::string &text, int line)
    {
        const std::string adapted = adaptShader(text, ShaderStage::Fragment);
        ASSERT_NE(adapted, text);
        const Compiled result = compile(adapted, ShaderStage::Fragment);
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(result.log.rfind("0:" + std::to_string(line) + "(", 0), 0U) << result.log << adapted;
    }
};

TEST_F(ShaderAdaptorOnGl, TakesASamplerWithoutUniform)
{
    expectHelp(
        "sampler3D normalVolume; \nvoid main() { gl_FragColor = texture3D(normalVolume, vec3(0.5)); }\n");
    expectHelp("#version 110\nfloat f() { return 1.0; }\nsampler2D t[2];\n"
               "void main() { gl_FragColor = texture2D(t[0], vec2(f())) + texture2D(t[1], vec2(f())); }\n");
}

TEST_F(ShaderAdaptorOnGl, TakesExplicitLevelsWithoutTheExtension)
{
    expectHelp("uniform sampler1D a; uniform sampler2D b; uniform sampler3D c; uniform samplerCube d;\nvoid "
               "main() {\n"
               "gl_FragColor = texture1DLod(a, 0., 0.) + texture2DLod(b, vec2(0.), 0.) + texture3DLod(c, "
               "vec3(0.), 0.)"
               " + textureCubeLod(d, vec3(0.), 0.) + texture2DProjLod(b, vec3(1.), 0.)"
               " + texture2DGradARB(b, vec2(0.), vec2(0.), vec2(0.)); }\n");
    expectHelp(
        "#version 120\nuniform sampler3D c;\nvoid main() { gl_FragColor = texture3DLod(c, vec3(0.), 0.); }");
}

TEST_F(ShaderAdaptorOnGl, TakesExplicitLevelsWhereTheRuleStaysAway)
{
    const std::string body =
        "uniform sampler3D c;\nvoid main() { gl_Position = texture3DLod(c, vec3(0.), 0.); }\n";
    EXPECT_TRUE(compile(body, ShaderStage::Vertex).ok);
    const Compiled later = compile("#version 130\nuniform sampler3D c;\n"
                                   "void main() { gl_FragColor = texture3DLod(c, vec3(0.), 0.); }\n",
                                   ShaderStage::Fragment);
    EXPECT_TRUE(later.ok) << later.log;
}

TEST_F(ShaderAdaptorOnGl, TakesALateVersionAndALateExtension)
{
    expectHelp("#define A 1.0\n#version 120\nvoid main() { float x = 1; gl_FragColor = vec4(x * A); }\n");
    expectHelp("#version 110\n#version 120\nvoid main() { float x = 1; gl_FragColor = vec4(x); }\n");
    expectHelp("#define A 1\n#version 330 compatibility\nvoid main() { gl_FragColor = vec4(1.0); }\n");
    expectHelp("uniform sampler2D b;\n#extension GL_ARB_shader_texture_lod : enable\n"
               "void main() { gl_FragColor = texture2DLod(b, vec2(0.0), 0.0); }\n");
}

TEST_F(ShaderAdaptorOnGl, TakesIntegersForFloatsInARaisedVersion)
{
    ShaderCapabilities raise;
    raise.raiseVersion = true;
    expectHelp("#version 110\nvoid main() { float x = 1; gl_FragColor = vec4(vec3(x) * 2, max(x, 0)); }\n",
               raise);
    expectHelp("void main() { if (gl_FragCoord.x > 0) gl_FragColor = vec4(1.0); }\n", raise);
}

TEST_F(ShaderAdaptorOnGl, TakesAnUnknownExtensionAndForeignPragmasAsTheyAre)
{
    const std::string text =
        "#version 110\n#pragma optionNV(ifcvt none)\n//#pragma optionNV(unroll all)\n"
        "#extension GL_ARB_gpu_shader4 : enable \n#extension GL_ARB_shader_texture_lod : enable \n"
        "void main() { gl_FragColor = vec4(1.0); }\n";
    EXPECT_EQ(adaptShader(text, ShaderStage::Fragment), text);
    const Compiled result = compile(text, ShaderStage::Fragment);
    EXPECT_TRUE(result.ok) << result.log;
}

TEST_F(ShaderAdaptorOnGl, ReportsTheLinesOfTheTextHandedIn)
{
    const std::string lod =
        "uniform sampler2D t;\nvoid main() {\n    gl_FragColor = texture2DLod(t, vec2(0.0), 0.0);\n"
        "    gl_FragColor = nothing;\n}\n";
    expectLine(lod, 4);
    expectLine("#version 120\n" + lod, 5);
    expectLine("// a comment\n#version 110\n\n" + lod, 7);
    expectLine("#define A 1\n#version 110\n" + lod, 6);
    expectLine("#define A 1\n#version 330 compatibility\nvoid main() {\n    gl_FragColor = nothing;\n}\n", 4);
    expectLine("sampler2D t;\nvoid main() {\n    gl_FragColor = nothing;\n}\n", 3);
}

} // namespace
