#include "OnlineCentralDiffNormal.h"

#include "NormalText.h"

std::string OnlineCentralDiffNormal::getShaderCode() { return tessaly::onlineCentralDiffNormalText; }

void OnlineCentralDiffNormal::setShaderParameters(osg::ChunkMaterialPtr, osg::SHLChunkPtr, osg::UInt32 &,
                                                  VolumeData *)
{
}
