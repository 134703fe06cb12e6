#ifndef TESSALY_MIPSHADING_H
#define TESSALY_MIPSHADING_H

/// \file
/// Maximum intensity projection.

#include "ShadingFunctions.h"

/// Shows the greatest voxel along each ray, in white.
class MIPShading : public ShadingFunctions
{
  public:
    std::string getShaderCode() override;
    /// Nothing: the text has no parameters.
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;
};

#endif
