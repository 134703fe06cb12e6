#ifndef TESSALY_SIMPLETRAVERSAL_H
#define TESSALY_SIMPLETRAVERSAL_H

/// \file
/// The walk that takes every sample.

#include "TraversalFunctions.h"

/// Counts steps along the ray.
class SimpleTraversal : public TraversalFunctions
{
  public:
    std::string getShaderCode() override;
    /// Nothing: the text has no parameters.
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;
};

#endif
