/// \file
/// The lines that the programs of the filters are promised to have.

#include "FilterScene.h"

#include <Tessaly/OSGImprovedColorDisplayFilter.h>
#include <Tessaly/OSGOculusRiftFilter.h>
#include <Tessaly/OSGOculusRiftFilter2.h>

OSG_USING_NAMESPACE
using namespace filter_test;

namespace
{

class ProgramTextTest : public FilterTest
{
  protected:
    /// Sets the filter up and looks at the program of its group.
    SHLChunkPtr programOf(const DisplayFilterPtr &filter, const char *group)
    {
        use({filter});
        LogCapture quiet;
        stage.frame();
        return program(group);
    }
};

/// Whether the text has all lines, in this order.
::testing::AssertionResult hasLines(const std::string &text, const std::vector<std::string> &lines)
{
    std::size_t from = 0;
    for(const std::string &line : lines)
    {
        const std::size_t at = text.find(line, from);
        if(at == std::string::npos)
            return ::testing::AssertionFailure() << "no \"" << line << "\" in or behind its place in:\n"
                                                 << text;
        from = at + line.size();
    }
    return ::testing::AssertionSuccess();
}

} // namespace

TEST_F(ProgramTextTest, TheColourFiltersLinesAreAsPromised)
{
    const Held<ImprovedColorDisplayFilterPtr> filter;
    SHLChunkPtr chunk = programOf(filter.ptr, "ImprovedColorDisplayFilter");
    EXPECT_TRUE(hasLines(chunk->getVertexProgram(),
                         {"varying vec2 position;", "varying mat4 shadingTexMat;",
                          "gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;",
                          "shadingTexMat  = gl_TextureMatrix[1];", "gl_Position    = ftransform();",
                          "position       = gl_Vertex.xy;"}));
    const std::vector<std::string> middle = {
        "color.r = pow(color.r,gamma);",
        "color.g = pow(color.g,gamma);",
        "color.b = pow(color.b,gamma);",
        "color *= colorMatrix;",
        "float shadingScale  = (float(shadingDepth)-1.0)/float(shadingDepth);",
        "float shadingOffset = (1.0 - shadingScale) / 2.0;"};
    std::vector<std::string> normal = {"vec4 color=texture2D(grabTexture,gl_TexCoord[0].xy);"};
    normal.insert(normal.end(), middle.begin(), middle.end());
    for(const char *const line :
        {"vec4 lutCoordR = vec4(pos,color.r,1.0);", "vec4 lutCoordG = vec4(pos,color.g,1.0);",
         "vec4 lutCoordB = vec4(pos,color.b,1.0);", "lutCoordR = shadingTexMat * lutCoordR;",
         "lutCoordG = shadingTexMat * lutCoordG;", "lutCoordB = shadingTexMat * lutCoordB;",
         "color.r = texture3D(shadingTexture,lutCoordR.rgb).r;",
         "color.g = texture3D(shadingTexture,lutCoordG.rgb).g;",
         "color.b = texture3D(shadingTexture,lutCoordB.rgb).b;"})
        normal.push_back(line);
    EXPECT_TRUE(hasLines(chunk->getFragmentProgram(), normal));
    EXPECT_EQ(chunk->getFragmentProgram().find("debugColor"), std::string::npos);

    filter->setDebugMode(1);
    chunk = programOf(filter.ptr, "ImprovedColorDisplayFilter");
    std::vector<std::string> debug = {
        "uniform vec4  debugColor;",
        "vec4 color=debugColor;color.a=.5;//texture2D(grabTexture,gl_TexCoord[0].xy);"};
    debug.insert(debug.end(), middle.begin(), middle.end());
    for(const char *const line : {"color.rgb=vec3(1,1,1);vec4 lutCoordR = vec4(pos,color.r,1.0);",
                                  "color.r = texture3DLod(shadingTexture,lutCoordR.rgb,0.).r;",
                                  "color.g = texture3DLod(shadingTexture,lutCoordG.rgb,0.).g;",
                                  "color.b = texture3DLod(shadingTexture,lutCoordB.rgb,0.).b;"})
        debug.push_back(line);
    EXPECT_TRUE(hasLines(chunk->getFragmentProgram(), debug));
}

TEST_F(ProgramTextTest, TheFirstLensFiltersLinesAreAsPromised)
{
    const Held<OculusRiftFilterPtr> filter;
    const SHLChunkPtr chunk = programOf(filter.ptr, "ColorDisplayFilter");
    EXPECT_TRUE(
        hasLines(chunk->getVertexProgram(), {"gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;",
                                             "gl_Position    = ftransform();"}));
    const std::vector<std::string> begin = {"vec2 uv = (gl_TexCoord[0].xy * 2.0) - 1.0;",
                                            "vec2 theta = (uv - LensCenter) * ScaleIn;",
                                            "float rSq = theta.x * theta.x + theta.y * theta.y;"};
    std::vector<std::string> plain = begin;
    for(const char *const line : {"vec2 tc = (LensCenter + Scale * theta1);", "tc = (tc + 1.0)/2.0;",
                                  "any(bvec2(clamp(tc, vec2(0.0,0.0), vec2(1.0,1.0)) - tc))"})
        plain.push_back(line);
    EXPECT_TRUE(hasLines(chunk->getFragmentProgram(), plain));
    EXPECT_EQ(chunk->getFragmentProgram().find("#version 120"), 0u);

    filter->setChromaAbCorrection(Vec4f(1, 0, 1.1f, 0));
    endEditCP(filter.ptr);
    std::vector<std::string> chromatic = begin;
    for(const char *const line :
        {"vec2 thetaBlue = theta1 * (ChromAbParam.z + ChromAbParam.w * rSq);",
         "vec2 tcBlue = (LensCenter + Scale * thetaBlue);", "tcBlue = (tcBlue + 1.0)/2.0;",
         "vec2 thetaRed = theta1 * (ChromAbParam.x + ChromAbParam.y * rSq);",
         "gl_FragColor = vec4(red, center.g, blue, center.a);"})
        chromatic.push_back(line);
    EXPECT_TRUE(hasLines(chunk->getFragmentProgram(), chromatic));
    EXPECT_EQ(chunk->getFragmentProgram().find("#version 120"), 0u);
}

TEST_F(ProgramTextTest, TheSecondLensFiltersLinesAreAsPromised)
{
    const Held<OculusRiftFilter2Ptr> filter;
    const SHLChunkPtr chunk = programOf(filter.ptr, "ColorDisplayFilter");
    EXPECT_TRUE(hasLines(chunk->getVertexProgram(),
                         {"varying vec2  texCoord;",
                          "gl_Position = vec4(gl_Vertex.x*2.0-1.0,gl_Vertex.y*2.0-1.0,0,1);",
                          "texCoord = vec2( gl_Vertex.x,  gl_Vertex.y );"}));
    EXPECT_TRUE(hasLines(
        chunk->getFragmentProgram(),
        {"const vec2 ScreenCenter = vec2(0.5,0.5);", "const vec2 ScaleIn = vec2(2.0,2.5);",
         "vec2 theta = (texCoord - LensCenter) * ScaleIn;",
         "float distort= HmdWarpParam.x + (HmdWarpParam.y  + (HmdWarpParam.z + HmdWarpParam.w * rSq) * rSq) "
         "* rSq;",
         "vec2 theta1 = theta * (Scale * distort);",
         "vec2 uvBlue = LensCenter + theta1 * (Chroma.z + Chroma.w * rSq);", "vec2 bound = vec2(0.5,0.5);",
         "length(clamp(uvBlue, ScreenCenter-bound,ScreenCenter+bound) - uvBlue)>0.0",
         "vec2 uvGreen = LensCenter + theta1;", "float dscale = 0.5;", "float friends = 0.5;",
         "vec2 d = dscale * (dFdx(uvGreen) + dFdy(uvGreen));", "vec4 box = vec4(uvGreen-d, uvGreen+d);",
         "float green = (friends * c + texture2D( PostSceneColorTex, uvGreen ).g) / (1. + 4.*friends);",
         "vec2 uvRed = LensCenter + theta1 * (Chroma.x + Chroma.y * rSq);",
         "gl_FragColor = vec4( red, green, blue, 1 );"}));
}
