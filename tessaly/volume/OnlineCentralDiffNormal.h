#ifndef TESSALY_ONLINECENTRALDIFFNORMAL_H
#define TESSALY_ONLINECENTRALDIFFNORMAL_H

/// \file
/// Central differences in the shader.

#include "NormalVolume.h"

/// Computes central differences at each sample.
class OnlineCentralDiffNormal : public NormalVolume
{
  public:
    std::string getShaderCode() override;
    /// Nothing: the text has no parameters.
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;
};

#endif
