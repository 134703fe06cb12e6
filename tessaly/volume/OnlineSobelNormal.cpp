#include "OnlineSobelNormal.h"

#include "NormalText.h"

std::string OnlineSobelNormal::getShaderCode() { return tessaly::onlineSobelNormalText; }

void OnlineSobelNormal::setShaderParameters(osg::ChunkMaterialPtr, osg::SHLChunkPtr, osg::UInt32 &,
                                            VolumeData *)
{
}
