/// \file
/// The rules that rewrite shader texts, one by one, as text.

#include <OpenSG/OSGShaderAdaptor.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using osg::adaptShader;
using osg::ShaderCapabilities;
using osg::ShaderStage;
using Rules = std::vector<std::string>;

std::string adaptFragment(const std::string &text, Rules *rules = nullptr,
                          const ShaderCapabilities &capabilities = ShaderCapabilities())
{
    return adaptShader(text, ShaderStage::Fragment, capabilities, rules);
}

void expectUntouched(const std::string &text)
{
    Rules rules;
    EXPECT_EQ(adaptFragment(text, &rules), text);
    EXPECT_TRUE(rules.empty()) << rules.front() << " was applied to:\n" << text;
}

const std::string lodLine = "#extension GL_ARB_shader_texture_lod : enable\n";

TEST(ShaderAdaptor, LeavesATextAloneThatNeedsNothing)
{
    expectUntouched("");
    expectUntouched("\n\r\n\t");
    expectUntouched("void main() { gl_FragColor = vec4(1.0); }");
    expectUntouched(
        "#version 110\r\n#pragma optionNV(ifcvt none)\r\n//#pragma optionNV(unroll all)\r\n"
        "#extension GL_ARB_gpu_shader4 : enable \r\nuniform sampler3D volume; \r\nvoid main(){}\r\n");
    expectUntouched("/* never closed sampler2D a;");
    expectUntouched("uniform sampler2D a; // ends in a backslash \\\nsampler2D b;\nvoid main(){}");
    expectUntouched("// first a comment\n\n  #version 120\nvoid main(){}\n");
    expectUntouched("/");
    expectUntouched("#");
    expectUntouched("} } ) ; ;");
}

TEST(ShaderAdaptor, LeavesEveryTextAloneForAForgivingDriver)
{
    ShaderCapabilities forgiving;
    forgiving.strict = false;
    forgiving.raiseVersion = true;
    const std::string text =
        "float x;\n#version 110\nsampler3D a;\nvoid main() { texture3DLod(a, vec3(0), 0); }";
    Rules rules;
    EXPECT_EQ(adaptFragment(text, &rules, forgiving), text);
    EXPECT_TRUE(rules.empty());
}

TEST(ShaderAdaptor, GivesAGlobalSamplerTheWordUniform)
{
    Rules rules;
    EXPECT_EQ(adaptFragment("sampler3D normalVolume; \nvoid main(){}", &rules),
              "uniform sampler3D normalVolume; \nvoid main(){}");
    EXPECT_EQ(rules, Rules{"uniform-sampler"});
}

TEST(ShaderAdaptor, FindsBareSamplersBehindOtherDeclarations)
{
    EXPECT_EQ(
        adaptFragment("uniform float a; /* x */ sampler2D b, c;\nfloat f() { return a; } samplerCube d[2];\n"
                      "struct S { float x; }; lowp sampler1D e;\n#define X 1\nusampler2D g;"),
        "uniform float a; /* x */ uniform sampler2D b, c;\nfloat f() { return a; } uniform samplerCube "
        "d[2];\n"
        "struct S { float x; }; uniform lowp sampler1D e;\n#define X 1\nuniform usampler2D g;");
}

TEST(ShaderAdaptor, LeavesSamplersAloneThatAreParametersOrQualified)
{
    expectUntouched("uniform sampler2D a;\nvec4 f(sampler2D s, const in sampler3D t) { return vec4(0.0); }");
    expectUntouched("uniform lowp sampler2D a;");
    expectUntouched("layout(binding = 0) uniform sampler2D a;");
    expectUntouched("uniform\n// which one\nsampler2D a;");
    expectUntouched("// sampler2D a;\n/* ; sampler2D b; */");
    expectUntouched("#define DECLARE sampler2D a;\n#define MORE \\\nsampler2D b;\n");
    expectUntouched("float sampler2Dish; float mysampler2D;");
}

TEST(ShaderAdaptor, AsksForExplicitLevelsInAFragmentText)
{
    Rules rules;
    EXPECT_EQ(
        adaptFragment("uniform sampler2D t;\nvoid main() { gl_FragColor = texture2DLod(t, vec2(0.0), 0.0); }",
                      &rules),
        lodLine + "#line 0\nuniform sampler2D t;\nvoid main() { gl_FragColor = texture2DLod(t, vec2(0.0), "
                  "0.0); }");
    EXPECT_EQ(rules, Rules{"lod-extension"});
}

TEST(ShaderAdaptor, AsksForExplicitLevelsBehindTheVersionLine)
{
    EXPECT_EQ(adaptFragment("// a shader\n#version 120 // old\nvoid main() { texture3DLod(t, p, 0.0); }"),
              "// a shader\n#version 120 // old\n" + lodLine +
                  "#line 2\nvoid main() { texture3DLod(t, p, 0.0); }");
}

TEST(ShaderAdaptor, NeverInsertsIntoACommentThatRunsOverTheVersionLine)
{
    EXPECT_EQ(adaptFragment("#version 110 /* a\nb */\nvoid main() { texture3DLod(t, p, 0.0); }"),
              "#version 110 /* a\nb */\n" + lodLine + "#line 2\nvoid main() { texture3DLod(t, p, 0.0); }");
    EXPECT_EQ(adaptFragment("#version 110 // a \\\r\nb\r\nvoid main() { texture3DLod(t, p, 0.0); }"),
              "#version 110 // a \\\r\nb\r\n" + lodLine +
                  "#line 2\nvoid main() { texture3DLod(t, p, 0.0); }");
}

TEST(ShaderAdaptor, KeepsAMovedDirectivesContinuationAndComment)
{
    EXPECT_EQ(adaptFragment("float a;\n#version \\\n120 /* c\nd */\nvoid main(){}"),
              "#version   120\n#line 0\nfloat a;\n          \n    /* c\nd */\nvoid main(){}");
}

TEST(ShaderAdaptor, KnowsEveryTextureFunctionWithALevelOrAGradient)
{
    for (const char *name : {"texture1DLod", "texture2DLod", "texture3DLod", "textureCubeLod",
                             "texture2DProjLod", "shadow2DLod", "texture2DGradARB", "texture2DRectGradARB"})
    {
        const std::string text = std::string("void main() { ") + name + "(a, b, c); }";
        EXPECT_EQ(adaptFragment(text), lodLine + "#line 0\n" + text) << name;
    }
}

TEST(ShaderAdaptor, AsksForNoExtensionWhereNoneIsNeeded)
{
    const std::string call = "void main() { texture3DLod(t, p, 0.0); }\n";
    EXPECT_EQ(adaptShader(call, ShaderStage::Vertex), call) << "vertex texts have the functions";
    expectUntouched("#version 130\n" + call);
    expectUntouched("#extension GL_ARB_shader_texture_lod : enable \n" + call);
    expectUntouched("#ifdef A\n#extension GL_ARB_shader_texture_lod:require\n#endif\n" + call);
    expectUntouched("void main() { texture3D(t, p); } // texture3DLod(t, p, 0.0)\n");
    expectUntouched("float mytexture3DLod;\n");
    ShaderCapabilities without;
    without.textureLod = false;
    EXPECT_EQ(adaptFragment(call, nullptr, without), call);
}

TEST(ShaderAdaptor, AnExtensionInACommentOrOfALongerNameDoesNotCount)
{
    const std::string comment =
        "// #extension GL_ARB_shader_texture_lod : enable\nvoid main() { texture3DLod(t, p, 0.); }";
    EXPECT_EQ(adaptFragment(comment), lodLine + "#line 0\n" + comment);
    const std::string longer =
        "#extension GL_ARB_shader_texture_lod2 : enable\nvoid main() { texture3DLod(t, p, 0.); }";
    EXPECT_EQ(adaptFragment(longer), lodLine + "#line 0\n" + longer);
}

TEST(ShaderAdaptor, MovesALateVersionToTheFront)
{
    Rules rules;
    EXPECT_EQ(adaptFragment("#define A 1\n  #version 120 // the version\nvoid main(){}\n", &rules),
              "#version 120\n#line 0\n#define A 1\n               // the version\nvoid main(){}\n");
    EXPECT_EQ(rules, Rules{"version-first"});
    EXPECT_EQ(adaptFragment("float a;\n#version 330 core\n"),
              "#version 330 core\n#line 1\nfloat a;\n                 \n")
        << "from 3.30 on #line names the line behind it";
}

TEST(ShaderAdaptor, KeepsTheHighestOfSeveralVersions)
{
    EXPECT_EQ(adaptFragment("#version 110\n#version 120\nvoid main(){}"),
              "#version 120\n#line 0\n            \n            \nvoid main(){}");
    EXPECT_EQ(osg::shaderVersion("#version 110\n#version 120\n"), 120);
}

TEST(ShaderAdaptor, MovesALateExtensionToTheFront)
{
    Rules rules;
    EXPECT_EQ(
        adaptFragment("#version 110\nuniform float a;\n#extension GL_EXT_gpu_shader4 : enable\nvoid main(){}",
                      &rules),
        "#version 110\n#extension GL_EXT_gpu_shader4 : enable\n#line 1\nuniform float a;\n"
        "                                      \nvoid main(){}");
    EXPECT_EQ(rules, Rules{"extension-first"});
}

TEST(ShaderAdaptor, LeavesAnExtensionAloneThatDependsOnACondition)
{
    expectUntouched("float a;\n#ifdef B\n#if C\n#endif\n#extension GL_EXT_gpu_shader4 : enable\n#endif\n");
}

TEST(ShaderAdaptor, RaisesTheVersionOnlyWhenToldTo)
{
    ShaderCapabilities raise;
    raise.raiseVersion = true;
    Rules rules;
    EXPECT_EQ(adaptFragment("#version 110\nvoid main() { float a = 1; }", &rules, raise),
              "#version 120\nvoid main() { float a = 1; }");
    EXPECT_EQ(rules, Rules{"raise-version"});
    EXPECT_EQ(adaptFragment("void main() { float a = 1; }", nullptr, raise),
              "#version 120\n#line 0\nvoid main() { float a = 1; }");
    EXPECT_EQ(adaptFragment("#version 150\n", nullptr, raise), "#version 150\n");
    EXPECT_EQ(adaptFragment("float b;\n#version 110\n", nullptr, raise),
              "#version 120\n#line 0\nfloat b;\n            \n");
    expectUntouched("#version 110\nvoid main() { float a = 1; }");
}

TEST(ShaderAdaptor, AppliesSeveralRulesTogetherInTheirOrder)
{
    Rules rules = {"before"};
    EXPECT_EQ(
        adaptFragment("float a;\n#version 110\n#extension GL_EXT_gpu_shader4 : enable\nsampler3D t;\n"
                      "void main() { texture3DLod(t, vec3(0.0), 0.0); }\n",
                      &rules),
        "#version 110\n#extension GL_EXT_gpu_shader4 : enable\n" + lodLine +
            "#line 0\nfloat a;\n            \n                                      \nuniform sampler3D t;\n"
            "void main() { texture3DLod(t, vec3(0.0), 0.0); }\n");
    EXPECT_EQ(rules,
              (Rules{"before", "version-first", "extension-first", "lod-extension", "uniform-sampler"}));
}

TEST(ShaderAdaptor, HasNothingLeftToDoForItsOwnResult)
{
    for (const char *text :
         {"float a;\n#version 110\nsampler3D t;\nvoid main() { texture3DLod(t, vec3(0.0), 0.0); }",
          "float a;\n#extension GL_EXT_gpu_shader4 : enable\nsampler2D t;"})
    {
        expectUntouched(adaptFragment(text));
    }
}

TEST(ShaderVersion, IsReadFromTheDirective)
{
    EXPECT_EQ(osg::shaderVersion(""), 110);
    EXPECT_EQ(osg::shaderVersion("// #version 330\nvoid main(){}"), 110);
    EXPECT_EQ(osg::shaderVersion(" #  version 150 compatibility\n"), 150);
    EXPECT_EQ(osg::shaderVersion("#version"), 0);
    EXPECT_GE(osg::shaderVersion("#version 99999999999999999999"), 100000);
}

TEST(NumberLines, PutsTheNumberAheadOfEachLine)
{
    EXPECT_EQ(osg::numberLines(""), "");
    EXPECT_EQ(osg::numberLines("a"), "   1: a\n");
    EXPECT_EQ(osg::numberLines("a\n\nb\n"), "   1: a\n   2: \n   3: b\n");
    std::string text;
    std::string numbered;
    for (int i = 1; i <= 12; ++i)
    {
        text += "text\n";
        numbered += (i < 10 ? "   " : "  ") + std::to_string(i) + ": text\n";
    }
    EXPECT_EQ(osg::numberLines(text), numbered);
    EXPECT_EQ(osg::numberLines(std::string(9999, '\n') + "x").substr(9998 * 7 + 7), "10000: x\n");
}

} // namespace
