#ifndef TESSALY_BLOCKSKIPPINGTRAVERSAL_H
#define TESSALY_BLOCKSKIPPINGTRAVERSAL_H

/// \file
/// The walk that jumps over empty blocks.

#include "TraversalFunctions.h"

/// Asks the bit volume of the VolumeData before each block of voxels.
class BlockSkippingTraversal : public TraversalFunctions
{
  public:
    std::string getShaderCode() override;
    /// Binds the bit volume, on one texture unit, and its size in blocks.
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;
};

#endif
