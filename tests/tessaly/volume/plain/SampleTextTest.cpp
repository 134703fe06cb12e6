#include "TextLines.h"
#include "volume/PassText.h"
#include "volume/ShadingText.h"
#include "volume/TransferText.h"

namespace
{

TEST(ShadingText, DvrWithModulationWeighsOpacityByTheGradient)
{
    expectLines(tessaly::dvrShadingText(true),
                {"uniform float kgc; ", "uniform float kgs;", "uniform float kge; ",
                 "void doShading(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout "
                 "vec4 outColor)",
                 "current.value = texture3DLod(volume, current.position, 0.0);",
                 "getClassification(ray, current, previous, outColor);", "if(current.color.a > 0.0)",
                 "applyCorrectionFactor(ray, current, previous, outColor); ",
                 "getNormal(ray, current, previous); ", "float gradMag = length(current.normal); ",
                 "float oldAlpha = current.color.a; ",
                 "current.color.a *= (kgc + kgs * pow( gradMag, kge)); ",
                 "current.color.rgb *= current.color.a / oldAlpha; ",
                 "compositeColor(ray, current, previous, outColor); ", "ray.active = outColor.a < 0.98; "});
}

TEST(ShadingText, DvrWithoutModulationNeverAsksForANormal)
{
    expectLines(tessaly::dvrShadingText(false),
                {"uniform float kgc; ", "uniform float kgs;", "uniform float kge; ",
                 "void doShading(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout "
                 "vec4 outColor)",
                 "current.value = texture3DLod(volume, current.position, 0.0);",
                 "getClassification(ray, current, previous, outColor);", "if(current.color.a > 0.0)",
                 "applyCorrectionFactor(ray, current, previous, outColor); ",
                 "compositeColor(ray, current, previous, outColor); ", "ray.active = outColor.a < 0.98; "});
    for(const char *word : {"gradMag", "oldAlpha", "getNormal"})
        EXPECT_EQ(count(tessaly::dvrShadingText(false), word), 0u) << word;
}

TEST(ShadingText, LightingWithModulationTakesTheLengthBeforeItNormalises)
{
    expectLines(
        tessaly::dvrShadingAndLightingText(true),
        {"uniform float kgc; ",
         "uniform float kgs;",
         "uniform float kge; ",
         "uniform vec3 emissiveColor; ",
         "uniform vec3 diffuseColor;",
         "uniform vec3 specularColor;",
         "uniform float exponent;",
         "void shadeDVRSample(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout "
         "vec4 outColor)",
         "vec3 L = normalize((gl_ModelViewMatrixInverse * vec4( gl_LightSource[0].position.xyz, 0.0)).xyz); ",
         "vec3 halfVec = normalize(L - ray.direction ); ",
         "float ndotl = clamp(dot(L, current.normal ), 0.000001, 1.0 ); ",
         "float ndoth = clamp(dot(halfVec, current.normal ), 0.000001, 1.0 ); ",
         "float specularScale = pow(ndoth, exponent); ",
         "vec3 diffuse = diffuseColor * current.color.rgb * ndotl * gl_LightSource[0].diffuse.rgb; ",
         "vec3 specular = specularColor * specularScale * gl_LightSource[0].specular.rgb * current.color.a;",
         "current.color.rgb = emissiveColor * current.color.rgb + diffuse + specular;",
         "void doShading(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 "
         "outColor)",
         "current.value = texture3DLod(volume, current.position, 0.0);",
         "getClassification(ray, current, previous, outColor);",
         "if(current.color.a > 0.0)",
         "applyCorrectionFactor(ray, current, previous, outColor); ",
         "getNormal(ray, current, previous); ",
         "float gradMag = length(current.normal); ",
         "float oldAlpha = current.color.a; ",
         "current.color.a *= (kgc + kgs * pow(gradMag, kge)); ",
         "current.color.rgb *= current.color.a / oldAlpha; ",
         "current.normal = normalize(current.normal); ",
         "shadeDVRSample(ray, current, previous, outColor); ",
         "compositeColor(ray, current, previous, outColor); ",
         "ray.active = outColor.a < 0.98; "});
}

TEST(ShadingText, LightingWithoutModulationStillAsksForTheNormal)
{
    expectLines(
        tessaly::dvrShadingAndLightingText(false),
        {"uniform float kgc; ",
         "uniform float kgs;",
         "uniform float kge; ",
         "uniform vec3 emissiveColor; ",
         "uniform vec3 diffuseColor;",
         "uniform vec3 specularColor;",
         "uniform float exponent;",
         "void shadeDVRSample(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout "
         "vec4 outColor)",
         "vec3 L = normalize((gl_ModelViewMatrixInverse * vec4( gl_LightSource[0].position.xyz, 0.0)).xyz); ",
         "vec3 halfVec = normalize(L - ray.direction ); ",
         "float ndotl = clamp(dot(L, current.normal ), 0.000001, 1.0 ); ",
         "float ndoth = clamp(dot(halfVec, current.normal ), 0.000001, 1.0 ); ",
         "float specularScale = pow(ndoth, exponent); ",
         "vec3 diffuse = diffuseColor * current.color.rgb * ndotl * gl_LightSource[0].diffuse.rgb; ",
         "vec3 specular = specularColor * specularScale * gl_LightSource[0].specular.rgb * current.color.a;",
         "current.color.rgb = emissiveColor * current.color.rgb + diffuse + specular;",
         "void doShading(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 "
         "outColor)",
         "current.value = texture3DLod(volume, current.position, 0.0);",
         "getClassification(ray, current, previous, outColor);",
         "if(current.color.a > 0.0)",
         "applyCorrectionFactor(ray, current, previous, outColor); ",
         "getNormal(ray, current, previous); ",
         "current.normal = normalize(current.normal); ",
         "shadeDVRSample(ray, current, previous, outColor); ",
         "compositeColor(ray, current, previous, outColor); ",
         "ray.active = outColor.a < 0.98; "});
    for(const char *word : {"gradMag", "oldAlpha"})
        EXPECT_EQ(count(tessaly::dvrShadingAndLightingText(false), word), 0u) << word;
}

TEST(ShadingText, MaximumIntensityIsWhite)
{
    expectLines(tessaly::mipShadingText, {"void doShading(inout Ray ray, inout SamplePoint current, inout "
                                          "SamplePoint previous, inout vec4 outColor)",
                                          "current.value = texture3DLod(volume, current.position, 0.0);",
                                          "float currentMax = max( outColor.a, current.value.r);",
                                          "outColor = vec4(vec3(1.0), currentMax);"});
    for(const char *word : {"uniform", "getClassification", "getNormal", "ray.active"})
        EXPECT_EQ(count(tessaly::mipShadingText, word), 0u) << word;
}

TEST(ShadingText, XRaySumsUp)
{
    expectLines(
        tessaly::xRayShadingText,
        {"uniform float xRayIntensityFactor; ",
         "void doShading(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 "
         "outColor)",
         "current.value = stepSize * xRayIntensityFactor * texture3DLod(volume, current.position, 0.0);",
         "outColor = vec4(vec3(1.0), outColor.a + current.value.r);"});
    for(const char *word : {"getClassification", "getNormal", "ray.active"})
        EXPECT_EQ(count(tessaly::xRayShadingText, word), 0u) << word;
}

TEST(TransferText, TheSimpleFunctionLooksUpOneDimension)
{
    expectLines(
        tessaly::simpleTransferfunctionText(0),
        {"uniform sampler1D transferFunction; ", "uniform float correctionFactor; ",
         "void getClassification(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout "
         "vec4 outColor)",
         "current.color = texture1DLod(transferFunction, current.value.r, 0.0); ",
         "void applyCorrectionFactor(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, "
         "inout vec4 outColor)",
         "current.color.a = 1.0 - pow((1.0 - current.color.a), (current.stepsize * correctionFactor) );",
         "current.color.rgb *= current.color.a; ",
         "void compositeColor(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout "
         "vec4 outColor)",
         "outColor += ((1.0 - outColor.a) * current.color); "});
    EXPECT_EQ(tessaly::simpleTransferfunctionText(0).rfind(
                  "uniform sampler1D transferFunction; \nuniform float correctionFactor; \n", 0),
              0u);
}

TEST(TransferText, TheSimpleFunctionSplitsAValueIntoRowAndColumn)
{
    expectLines(
        tessaly::simpleTransferfunctionText(1),
        {"uniform sampler2D transferFunction; ", "uniform float correctionFactor; ",
         "void getClassification(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout "
         "vec4 outColor)",
         "float scaledValue = (current.value.r * 256.0); ", "float row = floor(scaledValue); ",
         "float column = scaledValue - row;", "row /= 256.0; ", "vec2 mapIndex = vec2(column, row); ",
         "current.color =  texture2DLod(transferFunction, mapIndex, 0.0); ",
         "void applyCorrectionFactor(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, "
         "inout vec4 outColor)",
         "current.color.a = 1.0 - pow((1.0 - current.color.a), (current.stepsize * correctionFactor) );",
         "current.color.rgb *= current.color.a; ",
         "void compositeColor(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout "
         "vec4 outColor)",
         "outColor += ((1.0 - outColor.a) * current.color); "});
    EXPECT_EQ(tessaly::simpleTransferfunctionText(1).rfind(
                  "uniform sampler2D transferFunction; \nuniform float correctionFactor; \n", 0),
              0u);
}

TEST(TransferText, ThePreIntegratedFunctionLooksUpThePair)
{
    expectLines(
        tessaly::preintTransferFunctionText(0),
        {"uniform sampler2D preIntTable; ",
         "void getClassification(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout "
         "vec4 outColor)",
         "current.color =  texture2DLod(preIntTable, vec2(current.value.r, previous.value.r), 0.0); ",
         "uniform float correctionFactor; ",
         "void applyCorrectionFactor(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, "
         "inout vec4 outColor)",
         "float oldAlpha = current.color.a; ",
         "current.color.a = 1.0 - pow((1.0 - current.color.a), (current.stepsize * correctionFactor) );",
         "current.color.rgb *= current.color.a / oldAlpha; ",
         "void compositeColor( inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout "
         "vec4 outColor) ",
         "outColor += ((1.0 - outColor.a) * current.color); "});
    EXPECT_EQ(tessaly::preintTransferFunctionText(0).rfind("uniform sampler2D preIntTable; \n", 0), 0u);
    EXPECT_EQ(count(tessaly::preintTransferFunctionText(0), "transferFunction"), 0u);
}

TEST(TransferText, ThePreIntegratedFunctionTakesDifferencesOfIntegrals)
{
    expectLines(
        tessaly::preintTransferFunctionText(1),
        {"uniform sampler2D preIntTable; ",
         "uniform sampler2D transferFunction; ",
         "vec2 getTextureCoordinate(in float texcoord) ",
         "float scaledValue = (texcoord * 256.0);",
         "float row = floor(scaledValue);",
         "float column = scaledValue - row;",
         "row /= 256.0;",
         "return vec2(column, row); ",
         "vec4 getTextureCoordinates(in vec2 texcoords) ",
         "vec2 scaledValue = (texcoords * vec2(256.0)); ",
         "return vec4(column.x, row.x, column.y, row.y); ",
         "void getClassification(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout "
         "vec4 outColor)",
         "if( abs(current.value.r - previous.value.r) <= 1.0/65535.0) ",
         "vec2 texCoord = getTextureCoordinate(current.value.r); ",
         "current.color = texture2DLod(transferFunction, texCoord, 0.0); ",
         "current.color.rgb *= current.color.a; ",
         "vec4 texCoords = getTextureCoordinates(vec2( current.value.r, previous.value.r)); ",
         "vec4 color1 = texture2DLod(preIntTable, texCoords.xy, 0.0); ",
         "vec4 color2 = texture2DLod(preIntTable, texCoords.zw, 0.0); ",
         "float weight = 1.0 / (65536.0 * (current.value.r - previous.value.r));",
         "current.color = weight * (color1 - color2); ",
         "uniform float correctionFactor; ",
         "void applyCorrectionFactor(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, "
         "inout vec4 outColor)",
         "float oldAlpha = current.color.a; ",
         "current.color.a = 1.0 - pow((1.0 - current.color.a), (current.stepsize * correctionFactor) );",
         "current.color.rgb *= current.color.a / oldAlpha; ",
         "void compositeColor( inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout "
         "vec4 outColor) ",
         "outColor += ((1.0 - outColor.a) * current.color); "});
    EXPECT_EQ(tessaly::preintTransferFunctionText(1).rfind(
                  "uniform sampler2D preIntTable; \nuniform sampler2D transferFunction; \n", 0),
              0u);
    EXPECT_EQ(tessaly::preintTransferFunctionText(7), tessaly::preintTransferFunctionText(1));
}

TEST(PassText, ThePlaneIsLiftedToTheNearPlane)
{
    expectLines(tessaly::planeVertexText,
                {"#version 110", "uniform mat4 viewToVolume;", "varying vec3 oPosition;",
                 "vec4 temp = gl_ProjectionMatrixInverse * vec4(gl_Vertex.xy, -1.0, 1.0);",
                 "temp /=  temp.w;", "oPosition = (viewToVolume * temp).xyz;",
                 "gl_Position = vec4(gl_Vertex.xy, -1.0, 1.0);"});
}

TEST(PassText, ThePlaneLeavesNoRay)
{
    expectLines(tessaly::planeFragmentText,
                {"#pragma optionNV(ifcvt none)", "//#pragma optionNV(unroll all)", "varying vec3 oPosition;",
                 "gl_FragColor = vec4(oPosition, 0.0);"});
}

TEST(PassText, FacesPassTheirPositionOn)
{
    expectLines(tessaly::faceVertexText,
                {"varying vec3 texCoords;", "texCoords = gl_Vertex.rgb;  ", "gl_Position = ftransform(); "});
}

TEST(PassText, FacesLeaveTheirPositionAndARay)
{
    expectLines(tessaly::faceFragmentText,
                {"#pragma optionNV(ifcvt none)", "//#pragma optionNV(unroll all)", "varying vec3 texCoords;",
                 "gl_FragColor = vec4(texCoords, 1.0);"});
}

TEST(PassText, ExitFacesPassTheirPositionOn)
{
    expectLines(tessaly::exitVertexText,
                {"varying vec3 texCoords;", "texCoords = gl_Vertex.rgb; ", "gl_Position = ftransform();"});
    const std::string text = tessaly::exitVertexText;
    EXPECT_EQ(text.rfind("//", 0), 0u);
    EXPECT_LT(text.find("viewToVolume"), text.find('\n'));
}

TEST(PassText, TheExitCutsTheRayAtTheScene)
{
    expectLines(tessaly::exitFragmentText,
                {"#pragma optionNV(ifcvt none)",
                 "uniform vec2 textureSize;",
                 "uniform vec2 depthRange;",
                 "uniform sampler2D startImage;",
                 "uniform sampler2D sceneDepth; ",
                 "varying vec3 texCoords;",
                 "#define ZNEAR depthRange.x ",
                 "#define ZFAR  depthRange.y ",
                 "#define A (ZNEAR + ZFAR) ",
                 "#define B (ZNEAR - ZFAR) ",
                 "#define C (2.0 * ZNEAR * ZFAR) ",
                 "#define D (ndc.z * B) ",
                 "#define ZEYE -(C / (A + D)) ",
                 "vec4 backFaceColor = vec4(texCoords, 1.0);",
                 "vec2 texCoordScene = gl_FragCoord.xy / textureSize;",
                 "float depth = texture2D(sceneDepth, texCoordScene).r;",
                 "vec4 ndc = 2.0 * vec4(texCoordScene, depth, 1.0) - vec4(1.0);",
                 "vec4 clipPos;",
                 "clipPos.w = -ZEYE; ",
                 "clipPos.xyz = ndc.xyz * clipPos.w; ",
                 "vec4 volPos = gl_ProjectionMatrixInverse * clipPos; ",
                 "vec4 volumeCoords = gl_ModelViewMatrixInverse * volPos; ",
                 "vec4 frontFaceColor = texture2D(startImage, texCoordScene );",
                 "vec3 diffFrontBack = vec3(backFaceColor.rgb - frontFaceColor.rgb);",
                 "float lengthDirectionTemp = length(diffFrontBack);",
                 "vec3 diffFrontScene = vec3( volumeCoords.rgb - frontFaceColor.rgb);",
                 "float signDot = sign( dot( diffFrontBack, diffFrontScene));",
                 "float lengthScene = signDot * length(diffFrontScene);",
                 "float finalLength = min( lengthScene, lengthDirectionTemp);",
                 "float lengthDirection = max( 0.0, finalLength * frontFaceColor.a);",
                 "vec3 direction = normalize(diffFrontBack);",
                 "gl_FragColor = vec4( direction, lengthDirection);"});
}

TEST(TransferText, OtherFormsOfTheSimpleFunctionAreEmpty)
{
    EXPECT_EQ(tessaly::simpleTransferfunctionText(2), "");
    EXPECT_EQ(tessaly::simpleTransferfunctionText(0xffffffffu), "");
}

} // namespace
