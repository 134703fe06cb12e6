#ifndef TESSALY_SIMPLERAY_H
#define TESSALY_SIMPLERAY_H

/// \file
/// Rays with samples on a common grid.

#include "RayGeneration.h"

/// Rays that start on a grid of whole steps, so that samples keep their places when the near plane moves.
class SimpleRay : public RayGeneration
{
  public:
    std::string getShaderCode() override;
    /// Nothing: the text has no parameters.
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;
};

#endif
