/// \file
/// Colour grading of the finished picture.

#include <Tessaly/OSGImprovedColorDisplayFilter.h>

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGDisplayFilterGroup.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureChunk.h>

#include "AspectMembers.h"
#include "ShadingTable.h"

#include <string>

OSG_BEGIN_NAMESPACE

namespace
{

// The group's quad runs from 0 to 1, so its vertices are places on the screen. The texture matrix of unit 1
// maps the table's 0 to 1 onto the used part of a padded texture.
const Char8 *const vertexProgram = R"(varying vec2 position;
varying mat4 shadingTexMat;

void main(void)
{
    gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;
    shadingTexMat  = gl_TextureMatrix[1];
    gl_Position    = ftransform();
    position       = gl_Vertex.xy;
}
)";

/// Reads the grabbed picture and the table; the ends of the table's axes are the centres of its first and
/// last texels.
const Char8 *const declarations = R"(varying vec2 position;
varying mat4 shadingTexMat;

uniform sampler2D grabTexture;
uniform sampler3D shadingTexture;
uniform mat4  colorMatrix;
uniform float gamma;
uniform int   shadingWidth;
uniform int   shadingHeight;
uniform int   shadingDepth;
)";

const Char8 *const linearise = R"(
    color.rgb = clamp(color.rgb, 0.0, 1.0);
    color.r = pow(color.r,gamma);
    color.g = pow(color.g,gamma);
    color.b = pow(color.b,gamma);
    color *= colorMatrix;

    float shadingScale  = (float(shadingDepth)-1.0)/float(shadingDepth);
    float shadingOffset = (1.0 - shadingScale) / 2.0;
    color.rgb *= shadingScale;
    color.rgb += shadingOffset;

    vec2 pos;
    shadingScale  = (float(shadingWidth)-1.0)/float(shadingWidth);
    shadingOffset = (1.0 - shadingScale) / 2.0;
    pos.x = position.x * shadingScale + shadingOffset;
    shadingScale  = (float(shadingHeight)-1.0)/float(shadingHeight);
    shadingOffset = (1.0 - shadingScale) / 2.0;
    pos.y = position.y * shadingScale + shadingOffset;

)";

const Char8 *const coordinates = R"(    vec4 lutCoordG = vec4(pos,color.g,1.0);
    vec4 lutCoordB = vec4(pos,color.b,1.0);
    lutCoordR = shadingTexMat * lutCoordR;
    lutCoordG = shadingTexMat * lutCoordG;
    lutCoordB = shadingTexMat * lutCoordB;

)";

std::string normalFragmentProgram()
{
    return std::string(declarations) + R"(
void main(void)
{
    vec4 color=texture2D(grabTexture,gl_TexCoord[0].xy);)" +
           linearise + "    vec4 lutCoordR = vec4(pos,color.r,1.0);\n" + coordinates +
           R"(    color.r = texture3D(shadingTexture,lutCoordR.rgb).r;
    color.g = texture3D(shadingTexture,lutCoordG.rgb).g;
    color.b = texture3D(shadingTexture,lutCoordB.rgb).b;

    gl_FragColor = color;
}
)";
}

/// Shows the table's top layer over the screen.
std::string debugFragmentProgram()
{
    return std::string(declarations) + R"(uniform vec4  debugColor;

void main(void)
{
    vec4 color=debugColor;color.a=.5;//texture2D(grabTexture,gl_TexCoord[0].xy);)" +
           linearise + "    color.rgb=vec3(1,1,1);vec4 lutCoordR = vec4(pos,color.r,1.0);\n" + coordinates +
           R"(    color.r = texture3DLod(shadingTexture,lutCoordR.rgb,0.).r;
    color.g = texture3DLod(shadingTexture,lutCoordG.rgb,0.).g;
    color.b = texture3DLod(shadingTexture,lutCoordB.rgb,0.).b;

    gl_FragColor = color;
}
)";
}

constexpr Int32 DebugUnfiltered = 2;

} // namespace

void ImprovedColorDisplayFilter::initMethod() {}

ImprovedColorDisplayFilter::ImprovedColorDisplayFilter() = default;

ImprovedColorDisplayFilter::ImprovedColorDisplayFilter(const ImprovedColorDisplayFilter &source)
    : Inherited(source)
{}

ImprovedColorDisplayFilter::~ImprovedColorDisplayFilter() = default;

void ImprovedColorDisplayFilter::onDestroy()
{
    const ImprovedColorDisplayFilterPtr self(*this);
    tessaly::clearInAllAspects(self, &ImprovedColorDisplayFilter::_shadingImage);
    tessaly::clearInAllAspects(self, &ImprovedColorDisplayFilter::_shlChunk);
    Inherited::onDestroy();
}

void ImprovedColorDisplayFilter::createFilter(DisplayFilterForeground *foreground, Viewport *)
{
    DisplayFilterGroup *const group = foreground->findReadbackGroup("ImprovedColorDisplayFilter");

    setRefdCP(_shlChunk, SHLChunk::create());
    beginEditCP(_shlChunk);
    _shlChunk->setVertexProgram(vertexProgram);
    _shlChunk->setFragmentProgram(getDebugMode() != 0 ? debugFragmentProgram() : normalFragmentProgram());
    _shlChunk->setUniformParameter("grabTexture", Int32(0));
    _shlChunk->setUniformParameter("shadingTexture", Int32(1));
    endEditCP(_shlChunk);

    const GLenum filter = getDebugMode() == DebugUnfiltered ? GL_NEAREST : GL_LINEAR;
    const TextureChunkPtr texture = TextureChunk::create();
    setRefdCP(_shadingImage, Image::create());
    beginEditCP(texture);
    texture->setImage(_shadingImage);
    texture->setMinFilter(filter);
    texture->setMagFilter(filter);
    texture->setWrapS(GL_CLAMP_TO_EDGE);
    texture->setWrapT(GL_CLAMP_TO_EDGE);
    texture->setWrapR(GL_CLAMP_TO_EDGE);
    texture->setNPOTMatrixScale(1);
    texture->setScale(false);
    // Also where the table has one layer only.
    texture->setTarget(GL_TEXTURE_3D);
    endEditCP(texture);

    // The picture has unit 0; the table comes to unit 1.
    const ChunkMaterialPtr material = group->getMaterial();
    beginEditCP(material);
    material->addChunk(texture, State::AutoSlot);
    material->addChunk(_shlChunk, State::AutoSlot);
    endEditCP(material);

    updateFilterValues();
}

void ImprovedColorDisplayFilter::updateFilterValues()
{
    if(_shadingImage == NullFC || _shlChunk == NullFC)
        return;
    tessaly::ShadingTable table;
    if(!tessaly::makeShadingTable(_mfTable.getValues(), getWidth(), getHeight(), getDepth(), table))
        FWARNING(("Wrong shanding table size\n"));

    beginEditCP(_shadingImage);
    _shadingImage->set(Image::OSG_RGB_PF, Int32(table.width), Int32(table.height), Int32(table.depth), 1, 1,
                       0.0, table.bytes.data(), Image::OSG_UINT8_IMAGEDATA, true, 1);
    endEditCP(_shadingImage);

    beginEditCP(_shlChunk);
    _shlChunk->setUniformParameter("colorMatrix", getMatrix());
    _shlChunk->setUniformParameter("gamma", getGamma());
    _shlChunk->setUniformParameter("shadingWidth", Int32(table.width));
    _shlChunk->setUniformParameter("shadingHeight", Int32(table.height));
    _shlChunk->setUniformParameter("shadingDepth", Int32(table.depth));
    if(getDebugMode() != 0)
        _shlChunk->setUniformParameter("debugColor", getDebugColor());
    endEditCP(_shlChunk);
}

void ImprovedColorDisplayFilter::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ImprovedColorDisplayFilter::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ImprovedColorDisplayFilter NI" << std::endl;
}

OSG_END_NAMESPACE
