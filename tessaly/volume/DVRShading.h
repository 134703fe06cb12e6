#ifndef TESSALY_DVRSHADING_H
#define TESSALY_DVRSHADING_H

/// \file
/// Direct volume rendering by emission and absorption.

#include "DVRShadingBase.h"

/// Emission and absorption, without light. What a volume has unless a style says otherwise.
class DVRShading : public DVRShadingBase
{
  public:
    std::string getShaderCode() override;
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;
};

#endif
