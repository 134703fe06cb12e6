#ifndef TESSALY_ONLINESOBELNORMAL_H
#define TESSALY_ONLINESOBELNORMAL_H

/// \file
/// The Sobel filter in the shader.

#include "NormalVolume.h"

/// Computes a Sobel filter over 26 neighbours at each sample.
class OnlineSobelNormal : public NormalVolume
{
  public:
    std::string getShaderCode() override;
    /// Nothing: the text has no parameters.
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;
};

#endif
