#ifndef TESSALY_INTERLEAVEDRAY_H
#define TESSALY_INTERLEAVEDRAY_H

/// \file
/// Rays with staggered starts.

#include "RayGeneration.h"

/// Rays whose starts are staggered over 2 x 2 pixels, which turns stepping artefacts into fine noise.
class InterleavedRay : public RayGeneration
{
  public:
    std::string getShaderCode() override;
    /// Nothing: the text has no parameters.
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;
};

#endif
