#ifndef TESSALY_DVRSHADINGANDLIGHTING_H
#define TESSALY_DVRSHADINGANDLIGHTING_H

/// \file
/// Direct volume rendering with local illumination.

#include <OpenSG/OSGVector.h>

#include "DVRShadingBase.h"

/// Emission and absorption, lit by the first light as a direction.
class DVRShadingAndLighting : public DVRShadingBase
{
  public:
    std::string getShaderCode() override;
    /// Sets the uniforms from the members, but exponent to 25.
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;

    osg::Vec3f emissiveColor = osg::Vec3f(0.5f, 0.5f, 0.5f);
    osg::Vec3f diffuseColor = osg::Vec3f(0.75f, 0.75f, 0.75f);
    osg::Vec3f specularColor = osg::Vec3f(1.0f, 1.0f, 1.0f);
    osg::Real32 exponent = 30.0f; ///< sharpness of the highlight; only styles bring it into the program
};

#endif
