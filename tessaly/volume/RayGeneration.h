#ifndef TESSALY_RAYGENERATION_H
#define TESSALY_RAYGENERATION_H

/// \file
/// The base of the strategies that start rays.

#include <string>

#include <OpenSG/OSGChunkMaterialFields.h>
#include <OpenSG/OSGSHLChunkFields.h>

class VolumeData;

/// Says where a ray starts, where it goes and how long it is.
///
/// Owned by VolumeNodeHandler, which joins the text into the ray-casting program. Used by one thread, on its
/// aspect; no GL context is needed.
class RayGeneration
{
  public:
    virtual ~RayGeneration() = default;

    /// The GLSL of this object in its present form: declares its own uniforms, and defines getRayDirection
    /// and getRayStartPosition.
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
