#include "volume/ProgramText.h"

#include "TextLines.h"
#include "volume/NormalText.h"
#include "volume/RayText.h"
#include "volume/ShadingText.h"
#include "volume/TransferText.h"
#include "volume/TraversalText.h"

#include <array>
#include <cstdio>

namespace
{

TEST(ProgramText, TheHeaderDeclaresStructuresHelpersAndNineUniforms)
{
    expectLines(tessaly::programHeaderText,
                {"#version 110",
                 "#pragma optionNV(ifcvt none)",
                 "#extension GL_ARB_gpu_shader4 : enable ",
                 "#extension GL_ARB_shader_texture_lod : enable ",
                 "struct Ray",
                 "{",
                 "vec3 origin;",
                 "vec3 direction;",
                 "float tnear;",
                 "float tfar;",
                 "float length;",
                 "bool active;",
                 "};",
                 "struct SamplePoint",
                 "{",
                 "vec3 position;",
                 "float t;",
                 "float stepsize;",
                 "vec3 normal;",
                 "vec4 value;",
                 "vec4 color;",
                 "};",
                 "void initSamplePoint(inout SamplePoint sample, in float stepsize)",
                 "void storeSamplePoint(in SamplePoint current, out SamplePoint previous)",
                 "uniform sampler3D volume; ",
                 "uniform sampler2D sceneColor; ",
                 "uniform sampler2D sceneDepth; ",
                 "uniform sampler2D frontTexture;",
                 "uniform sampler2D backTexture;",
                 "uniform vec3 volumeSize; ",
                 "uniform vec3 volumeResolution; ",
                 "uniform vec3 texelSize;",
                 "uniform float stepSize;"});
    EXPECT_EQ(std::string(tessaly::programHeaderText).rfind("#version 110\n", 0), 0u);
    EXPECT_EQ(count(tessaly::programHeaderText, "uniform "), 9u);
    for(const char *member : {"position", "t", "stepsize", "normal", "value", "color"}) {
        const std::string copy = std::string("previous.") + member + " = current." + member + ";";
        EXPECT_EQ(count(tessaly::programHeaderText, copy), 1u) << member;
    }
    expectLines(tessaly::programHeaderText,
                {"sample.position = vec3(0.0);", "sample.t = 0.0;", "sample.stepsize = stepsize;",
                 "sample.normal = vec3(0.0, 1.0, 0.0);", "sample.value = vec4(0.0);",
                 "sample.color = vec4(0.0);"});
}

TEST(ProgramText, TheMainFunctionRunsOneRayAndMixesItOverTheScene)
{
    expectLines(
        tessaly::programMainText,
        {"void main()", "SamplePoint current;", "initSamplePoint(current, stepSize);",
         "SamplePoint previous;", "initSamplePoint(previous, stepSize);", "Ray ray;",
         "vec4 outColor = vec4(0.0);", "vec4 sceneRGBA = texture2DLod(sceneColor, gl_TexCoord[0].st, 0.0);",
         "getRayDirection(ray, current, previous);", "if(ray.active)",
         "getRayStartPosition(ray, current, previous);", "traverseVolume(ray, current, previous, outColor);",
         "gl_FragColor = vec4(mix(sceneRGBA.rgb, outColor.rgb, outColor.a), 1.0);"});
}

TEST(ProgramText, TheVertexProgramTakesClipCoordinates)
{
    expectLines(tessaly::programVertexText,
                {"#version 110", "varying vec3 lightPos;", "varying vec3 eyePos;", "varying vec3 eyeVec;",
                 "varying vec3 oPosition;", "varying vec3 normal;", "uniform vec3 size;", "void main()",
                 "gl_TexCoord[0].rg = gl_MultiTexCoord0.rg;", "gl_Position = gl_Vertex;",
                 "oPosition = gl_Vertex.xyz; ",
                 "eyePos = (gl_ModelViewMatrixInverse * vec4(0.0, 0.0, 0.0, 1.0) ).xyz; ",
                 "lightPos = (gl_ModelViewMatrixInverse * vec4(gl_LightSource[0].position.xyz,1.0) ).xyz; "});
    EXPECT_EQ(std::string(tessaly::programVertexText).rfind("#version 110\n", 0), 0u);
}

TEST(RayText, SimpleRaysStartOnAGridBeforeTheEntryPoint)
{
    expectLines(
        tessaly::simpleRayText,
        {"void getRayDirection(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)",
         "vec4 dirLength = texture2DLod(backTexture, gl_TexCoord[0].st, 0.0);",
         "ray.direction = dirLength.rgb;", "ray.tfar = dirLength.a;", "ray.active = (dirLength.a > 0.0);",
         "void getRayStartPosition(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)",
         "vec4 startPos = texture2DLod(frontTexture, gl_TexCoord[0].st, 0.0);", "ray.origin = startPos.rgb;",
         "vec3 t1nah = -ray.origin / ray.direction; ",
         "vec3 t1fern = (vec3(1.0) - ray.origin) / ray.direction; ", "vec3 minDist = min(t1nah, t1fern); ",
         "float tnah = max(minDist.x, max( minDist.y, minDist.z)); ",
         "float offset = fract( tnah / stepSize); ", "ray.tnear = offset * stepSize - stepSize; ",
         "ray.origin = ray.origin + ray.tnear * ray.direction; ", "ray.tnear = 0.0;",
         "ray.length = ray.tfar - ray.tnear;"});
    EXPECT_EQ(count(tessaly::simpleRayText, "uniform"), 0u);
    EXPECT_EQ(count(tessaly::simpleRayText, "rayOffset"), 0u);
}

TEST(RayText, InterleavedRaysShiftTheStartPerPixel)
{
    expectLines(
        tessaly::interleavedRayText,
        {"void getRayDirection(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)",
         "vec4 dirLength = texture2DLod(backTexture, gl_TexCoord[0].st, 0.0);",
         "ray.direction = dirLength.rgb;",
         "ray.tfar = dirLength.a;",
         "ray.active = (dirLength.a > 0.0);",
         "void getRayStartPosition(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)",
         "vec4 startPos = texture2DLod(frontTexture, gl_TexCoord[0].st, 0.0);",
         "ray.origin = startPos.rgb;",
         "vec3 t1nah = -ray.origin / ray.direction; ",
         "vec3 t1fern = (vec3(1.0) - ray.origin) / ray.direction; ",
         "vec3 minDist = min(t1nah, t1fern); ",
         "float tnah = max(minDist.x, max( minDist.y, minDist.z)); ",
         "float offset = fract(tnah / stepSize); ",
         "ray.tnear = offset * stepSize - stepSize; ",
         "ray.origin = ray.origin + ray.tnear * ray.direction; ",
         "vec2 modulo = mod(gl_FragCoord.xy, vec2( 2.0));",
         "float rayOffset = (modulo.x * 2.0 + modulo.y) * stepSize / 4.0;",
         "ray.origin = ray.origin + rayOffset * ray.direction;",
         "ray.tnear = 0.0;",
         "ray.length = ray.tfar - (ray.tnear + rayOffset);"});
    EXPECT_EQ(count(tessaly::interleavedRayText, "uniform"), 0u);
    EXPECT_EQ(count(tessaly::interleavedRayText, "ray.tnear = 0.0;"), 1u);
}

TEST(TraversalText, TheSimpleTraversalCountsSteps)
{
    expectLines(tessaly::simpleTraversalText,
                {"void traverseVolume(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, "
                 "inout vec4 outColor)",
                 "int numSteps = int(ray.length / stepSize);", "int k = 0;",
                 "vec3 advance = stepSize * ray.direction;",
                 "current.position = ray.origin + ray.tnear * ray.direction;", "current.t = ray.tnear;",
                 "for(int i = 0; i < 42 && ray.active; ++i)", "for(int j = 0; j < 42 && ray.active; ++j)",
                 "++k;", "doShading(ray, current, previous, outColor);",
                 "storeSamplePoint(current, previous);", "current.position += advance;",
                 "current.t += stepSize; ", "ray.active = (ray.active && k < numSteps) ? true : false; "});
    EXPECT_EQ(count(tessaly::simpleTraversalText, "uniform"), 0u);
}

TEST(TraversalText, TheBlockSkippingTraversalJumpsOverEmptyBlocks)
{
    expectLines(tessaly::blockSkippingTraversalText,
                {"uniform vec3 bitVolumeSize; ",
                 "uniform vec3 bitVolumeTexelSize;",
                 "uniform sampler3D bitVolume; ",
                 "void traverseVolume(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, "
                 "inout vec4 outColor)",
                 "float invStepSize = 1.0 /  stepSize; ",
                 "vec3 advance = stepSize * ray.direction;",
                 "vec3 invDirection = vec3(1.0) / ray.direction; ",
                 "vec3 directionSign = max(vec3(0.0), sign(ray.direction)); ",
                 "vec3 scaledRayOrigin = ray.origin * bitVolumeSize - directionSign; ",
                 "vec3 scaledInvDirection = invDirection * bitVolumeTexelSize; ",
                 "current.position = ray.origin + ray.tnear * ray.direction;",
                 "current.t = ray.tnear;",
                 "for(int i = 0; i < 255 && ray.active; ++i) ",
                 "vec3 index = floor((current.position * bitVolumeSize) + advance);",
                 "float maxMinusMin = texture3D(bitVolume, (index + vec3(0.5)) * bitVolumeTexelSize ).a;",
                 "if(maxMinusMin == 0.0)",
                 "vec3 tnext3 = (index - scaledRayOrigin) * scaledInvDirection;",
                 "float tnext = min(tnext3.x, min(tnext3.y, tnext3.z));",
                 "current.t = ceil(tnext * invStepSize) * stepSize;",
                 "current.position = ray.origin + current.t * ray.direction;",
                 "ray.active = (ray.active && current.t < ray.tfar) ? true : false; ",
                 "else",
                 "for(int j=0; j < 8 && ray.active; ++j)",
                 "doShading(ray, current, previous, outColor);",
                 "storeSamplePoint(current, previous);",
                 "current.position += advance;",
                 "current.t += stepSize; ",
                 "ray.active = (ray.active && current.t < ray.tfar) ? true : false; "});
    EXPECT_EQ(count(tessaly::blockSkippingTraversalText, "uniform"), 3u);
    EXPECT_EQ(count(tessaly::blockSkippingTraversalText, "ray.length"), 0u);
}

TEST(NormalText, CentralDifferencesTakeSixSamples)
{
    expectLines(tessaly::onlineCentralDiffNormalText,
                {"void getNormal(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)",
                 "vec3 sample1;", "vec3 sample2;",
                 "sample1.x = texture3D(volume, current.position - vec3(texelSize.x, 0.0, 0.0)).r;",
                 "sample2.x = texture3D(volume, current.position + vec3(texelSize.x, 0.0, 0.0)).r;",
                 "sample1.y = texture3D(volume, current.position - vec3(0.0, texelSize.y, 0.0)).r;",
                 "sample2.y = texture3D(volume, current.position + vec3(0.0, texelSize.y, 0.0)).r;",
                 "sample1.z = texture3D(volume, current.position - vec3(0.0, 0.0, texelSize.z)).r;",
                 "sample2.z = texture3D(volume, current.position + vec3(0.0, 0.0, texelSize.z)).r;",
                 "current.normal = -(sample2.xyz - sample1.xyz)/6.0;"});
    EXPECT_EQ(count(tessaly::onlineCentralDiffNormalText, "texture3D("), 6u);
    EXPECT_EQ(count(tessaly::onlineCentralDiffNormalText, "normalize"), 0u);
}

TEST(NormalText, PrecomputedNormalsAreLookedUpAndStretched)
{
    expectLines(tessaly::preCentralDiffNormalText,
                {"sampler3D normalVolume; ",
                 "void getNormal(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)",
                 "current.normal =  vec3(2.0) * texture3D(normalVolume, current.position).rgb - vec3(1.0);"});
    // The first line lacks the word uniform: meant.
    EXPECT_EQ(std::string(tessaly::preCentralDiffNormalText).rfind("sampler3D normalVolume; \n", 0), 0u);
    EXPECT_EQ(count(tessaly::preCentralDiffNormalText, "uniform"), 0u);
}

/// The weights are read out of the text itself: name, offset and place of each of the 26 neighbours.
TEST(NormalText, SobelWeighsTheNeighboursBySideAndPlace)
{
    const std::string text = tessaly::onlineSobelNormalText;
    EXPECT_EQ(count(text, "texture3DLod(volume, current.position + vec3("), 26u);
    expectLines(text, {"void getNormal(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)",
                       "current.normal = -vec3(xGrad, yGrad, zGrad) / 32.0; "});

    std::vector<std::string> names;
    std::vector<std::array<int, 3>> offsets;
    std::istringstream lines(text);
    for(std::string line; std::getline(lines, line);) {
        char name[4] = "";
        char components[3][16] = {"", "", ""};
        if(std::sscanf(line.c_str(),
                       " float %3s = texture3DLod(volume, current.position + vec3(%15[^,], %15[^,], "
                       "%15[^)]), 0.0).r;",
                       name, components[0], components[1], components[2]) != 4)
            continue;
        std::array<int, 3> offset;
        for(std::size_t axis = 0; axis < 3; ++axis) {
            const std::string component = components[axis];
            const std::string texel = std::string("texelSize.") + "xyz"[axis];
            ASSERT_TRUE(component == "0.0" || component == texel || component == "-" + texel) << component;
            offset[axis] = component == "0.0" ? 0 : component == texel ? 1 : -1;
        }
        names.push_back(name);
        offsets.push_back(offset);
    }
    ASSERT_EQ(names.size(), 26u);

    for(std::size_t axis = 0; axis < 3; ++axis) {
        const std::size_t begin = text.find(std::string("float ") + "xyz"[axis] + "Grad = ") + 14;
        const std::string sum = text.substr(begin, text.find(';', begin) - begin);
        const std::size_t minus = sum.find("- (");
        ASSERT_NE(minus, std::string::npos);
        for(std::size_t i = 0; i < names.size(); ++i) {
            const auto &offset = offsets[i];
            const int beside = (offset[(axis + 1) % 3] != 0) + (offset[(axis + 2) % 3] != 0);
            const std::size_t at = sum.find(names[i]);
            if(offset[axis] == 0) {
                EXPECT_EQ(at, std::string::npos) << names[i];
                continue;
            }
            ASSERT_EQ(count(sum, names[i]), 1u) << names[i];
            EXPECT_EQ(at > minus, offset[axis] < 0) << names[i];
            // Within a side: 4.0 * one, 2.0 * (four), four plain ones.
            const std::string side = offset[axis] < 0 ? sum.substr(minus + 2) : sum.substr(0, minus);
            const std::size_t place = side.find(names[i]);
            const std::size_t open = side.find("2.0 * (");
            const std::size_t close = side.find(')', open);
            const int weight = place == side.find("4.0 * ") + 6 ? 4 : place > open && place < close ? 2 : 1;
            EXPECT_EQ(weight, beside == 0 ? 4 : beside == 1 ? 2 : 1) << names[i];
        }
    }
}

TEST(ProgramJoin, PutsThePiecesInTheirOrderWithoutSeparators)
{
    EXPECT_EQ(tessaly::joinFragmentProgram("ray", "normal", "transfer", "shading", "traversal"),
              std::string(tessaly::programHeaderText) + "raynormaltransfershadingtraversal" +
                  tessaly::programMainText);
}

TEST(ProgramJoin, ReplacingOnePieceLeavesAllOthersWordForWord)
{
    const std::string normal = tessaly::onlineSobelNormalText;
    const std::string transfer = tessaly::simpleTransferfunctionText(0);
    const std::string shading = tessaly::dvrShadingText(false);
    const std::string traversal = tessaly::simpleTraversalText;
    const std::string before =
        tessaly::joinFragmentProgram(tessaly::simpleRayText, normal, transfer, shading, traversal);
    const std::string after =
        tessaly::joinFragmentProgram(tessaly::interleavedRayText, normal, transfer, shading, traversal);
    const std::string head = tessaly::programHeaderText;
    const std::string rest = normal + transfer + shading + traversal + tessaly::programMainText;
    EXPECT_EQ(before, head + tessaly::simpleRayText + rest);
    EXPECT_EQ(after, head + tessaly::interleavedRayText + rest);
}

TEST(ProgramJoin, EveryHookIsDefinedBeforeItIsCalled)
{
    for(const char *ray : {tessaly::simpleRayText, tessaly::interleavedRayText})
        for(const char *normal : {tessaly::onlineCentralDiffNormalText, tessaly::onlineSobelNormalText,
                                  tessaly::preCentralDiffNormalText})
            for(const std::string &transfer :
                {tessaly::simpleTransferfunctionText(0), tessaly::simpleTransferfunctionText(1),
                 tessaly::preintTransferFunctionText(0), tessaly::preintTransferFunctionText(1)})
                for(const std::string &shading :
                    {tessaly::dvrShadingText(false), tessaly::dvrShadingText(true),
                     tessaly::dvrShadingAndLightingText(false), tessaly::dvrShadingAndLightingText(true),
                     std::string(tessaly::mipShadingText), std::string(tessaly::xRayShadingText)})
                    for(const char *traversal :
                        {tessaly::simpleTraversalText, tessaly::blockSkippingTraversalText}) {
                        const std::string text =
                            tessaly::joinFragmentProgram(ray, normal, transfer, shading, traversal);
                        for(const std::string hook :
                            {"getRayDirection", "getRayStartPosition", "getNormal", "getClassification",
                             "applyCorrectionFactor", "compositeColor", "doShading", "traverseVolume",
                             "initSamplePoint", "storeSamplePoint"}) {
                            ASSERT_EQ(count(text, "void " + hook + "("), 1u) << hook;
                            ASSERT_EQ(text.find("void " + hook + "(") + 5, text.find(hook + "(")) << hook;
                        }
                        ASSERT_EQ(count(text, "{"), count(text, "}"));
                        ASSERT_EQ(count(text, "("), count(text, ")"));
                        ASSERT_EQ(count(text, "#version"), 1u);
                    }
}

} // namespace
