#include "DVRShading.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGSHLChunk.h>

#include "ShadingText.h"

using namespace osg;

std::string DVRShading::getShaderCode()
{
    return tessaly::dvrShadingText(gradientModulation);
}

void DVRShading::setShaderParameters(ChunkMaterialPtr material, SHLChunkPtr shader, UInt32 &, VolumeData *)
{
    if(material == NullFC || shader == NullFC)
        return;
    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    setGradientParameters(shader);
    endEditCP(shader, SHLChunk::ParametersFieldMask);
}
