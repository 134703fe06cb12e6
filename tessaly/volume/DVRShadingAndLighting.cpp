#include "DVRShadingAndLighting.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGSHLChunk.h>

#include "ShadingText.h"

using namespace osg;

std::string DVRShadingAndLighting::getShaderCode()
{
    return tessaly::dvrShadingAndLightingText(gradientModulation);
}

void DVRShadingAndLighting::setShaderParameters(ChunkMaterialPtr material, SHLChunkPtr shader, UInt32 &,
                                                VolumeData *)
{
    if(material == NullFC || shader == NullFC)
        return;
    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    setGradientParameters(shader);
    shader->setUniformParameter("emissiveColor", emissiveColor);
    shader->setUniformParameter("diffuseColor", diffuseColor);
    shader->setUniformParameter("specularColor", specularColor);
    // 25 and not the member; meant, so that each new program begins with it until a style sets the uniform.
    shader->setUniformParameter("exponent", 25.0f);
    endEditCP(shader, SHLChunk::ParametersFieldMask);
}
