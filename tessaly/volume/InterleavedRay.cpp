#include "InterleavedRay.h"

#include "RayText.h"

std::string InterleavedRay::getShaderCode() { return tessaly::interleavedRayText; }

void InterleavedRay::setShaderParameters(osg::ChunkMaterialPtr, osg::SHLChunkPtr, osg::UInt32 &, VolumeData *)
{
}
