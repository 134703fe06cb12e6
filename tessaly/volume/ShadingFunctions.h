#ifndef TESSALY_SHADINGFUNCTIONS_H
#define TESSALY_SHADINGFUNCTIONS_H

/// \file
/// The base of the shading functions.

#include <string>

#include <OpenSG/OSGChunkMaterialFields.h>
#include <OpenSG/OSGSHLChunkFields.h>

class VolumeData;

/// Says what happens to a sample.
///
/// Owned by VolumeNodeHandler, which joins the text into the ray-casting program. Used by one thread, on its
/// aspect; no GL context is needed.
class ShadingFunctions
{
  public:
    virtual ~ShadingFunctions() = default;

    /// The GLSL of this object in its present form: declares its own uniforms, and defines doShading.
    virtual std::string getShaderCode() = 0;
    /// Adds the texture chunks that the text reads to \a material and sets its uniforms on \a shader. \a
    /// textureUnit is the next free unit and is counted up by the textures added. Nothing happens if one of
    /// the two is null.
    virtual void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                                     osg::UInt32 &textureUnit, VolumeData *volumeData) = 0;
    /// Derives what the strategy needs from the voxels; null for none. Nothing here.
    virtual void setVolumeData(VolumeData *) {}
};

#endif
