#ifndef TESSALY_XRAYSHADING_H
#define TESSALY_XRAYSHADING_H

/// \file
/// Summation along the ray.

#include "ShadingFunctions.h"

/// Shows the sum of the voxels along each ray, in white.
class XRayShading : public ShadingFunctions
{
  public:
    std::string getShaderCode() override;
    /// Sets xRayIntensityFactor to 2.
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;
};

#endif
