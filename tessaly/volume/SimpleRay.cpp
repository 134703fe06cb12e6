#include "SimpleRay.h"

#include "RayText.h"

std::string SimpleRay::getShaderCode()
{
    return tessaly::simpleRayText;
}

void SimpleRay::setShaderParameters(osg::ChunkMaterialPtr, osg::SHLChunkPtr, osg::UInt32 &, VolumeData *) {}
