#include "XRayShading.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGSHLChunk.h>

#include "ShadingText.h"

using namespace osg;

std::string XRayShading::getShaderCode()
{
    return tessaly::xRayShadingText;
}

void XRayShading::setShaderParameters(ChunkMaterialPtr material, SHLChunkPtr shader, UInt32 &, VolumeData *)
{
    if(material == NullFC || shader == NullFC)
        return;
    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter("xRayIntensityFactor", 2.0f);
    endEditCP(shader, SHLChunk::ParametersFieldMask);
}
