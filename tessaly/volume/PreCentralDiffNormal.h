#ifndef TESSALY_PRECENTRALDIFFNORMAL_H
#define TESSALY_PRECENTRALDIFFNORMAL_H

/// \file
/// Normals that are computed ahead, or given, as a texture.

#include <OpenSG/OSGImageFields.h>
#include <OpenSG/OSGTextureChunkFields.h>

#include "NormalVolume.h"

/// Reads normals from an RGB volume of the voxels' size, where a byte b stands for 2 * b / 255 - 1.
class PreCentralDiffNormal : public NormalVolume
{
  public:
    /// \param normals a finished volume of normals, or null to compute one. The object takes over a reference
    /// that the caller has taken for it: it adds none, and gives one back in the end.
    explicit PreCentralDiffNormal(osg::TextureChunkPtr normals);
    PreCentralDiffNormal(const PreCentralDiffNormal &) = delete;
    PreCentralDiffNormal &operator=(const PreCentralDiffNormal &) = delete;
    ~PreCentralDiffNormal() override;

    std::string getShaderCode() override;
    /// Takes one texture unit.
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;
    /// Computes the normals of the voxels. A texture whose image has the sides of the voxels counts as
    /// finished, also if it was computed from other voxels, and only has its filters and wrapping set.
    void setVolumeData(VolumeData *volumeData) override;

    /// Writes an image of gradients, one channel for each character of \a outputFormat (see
    /// tessaly::writeGradientChannels).
    /// \param input voxels, not null; other than 8 bits are converted in a copy
    /// \param output gets pixels of \a input's sides, not null
    /// \param outputFormat 1 to 4 characters
    /// \return false, with \a output as it was: with one message for any other length, silently for an
    /// unknown character
    bool createPrecomputedNormals(osg::ImagePtr &input, osg::ImagePtr &output, std::string outputFormat);

    /// NullFC while there is none.
    osg::TextureChunkPtr getNormalTexture() const { return _normalTexture; }

  private:
    [[maybe_unused]] bool _computed;   ///< no texture was given
    VolumeData *_volumeData = nullptr; ///< of which the normals are; not owned
    osg::TextureChunkPtr _normalTexture;
};

#endif
