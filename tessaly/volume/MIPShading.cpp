#include "MIPShading.h"

#include "ShadingText.h"

std::string MIPShading::getShaderCode()
{
    return tessaly::mipShadingText;
}

void MIPShading::setShaderParameters(osg::ChunkMaterialPtr, osg::SHLChunkPtr, osg::UInt32 &, VolumeData *) {}
