#include "SimpleTraversal.h"

#include "TraversalText.h"

std::string SimpleTraversal::getShaderCode() { return tessaly::simpleTraversalText; }

void SimpleTraversal::setShaderParameters(osg::ChunkMaterialPtr, osg::SHLChunkPtr, osg::UInt32 &,
                                          VolumeData *)
{
}
