#ifndef TESSALY_BLOCKVOLUME_H
#define TESSALY_BLOCKVOLUME_H

/// \file
/// The least and greatest value of each block of voxels.

#include <vector>

#include <OpenSG/OSGImageFields.h>
#include <OpenSG/OSGTextureChunkFields.h>

class VolumeData;

/// A texture with one texel per block of voxels, of two channels of the voxels' type: luminance holds the
/// least value that a sample in the block can touch, alpha the greatest.
///
/// Used by one thread, on its aspect; no GL context is needed.
class BlockVolume
{
  public:
    BlockVolume() = default;
    BlockVolume(const BlockVolume &) = delete;
    BlockVolume &operator=(const BlockVolume &) = delete;
    ~BlockVolume();

    /// Builds the texels into a new image. Voxels whose sides are no multiples of \a blockSize are padded
    /// first, which changes the voxel image of \a volume.
    ///
    /// The voxels are gone through only if their image has had an edit since the last call
    /// (Image::getRevision) or the edge is another; else the texels of that call are used again. Whoever
    /// writes voxels closes the edit with endEditCP.
    /// \param blockSize edge of a block in voxels, above 0
    /// \return false, with one warning, without an image. Voxels of other than 8 or 16 bits give true and an
    /// image without texels; standard output is told.
    bool calcBlockVolumen(VolumeData &volume, const int blockSize);

    /// Null until built; a reference is held.
    osg::TextureChunkPtr getTexture() const { return _texture; }
    /// The image of the texture, NullFC where there is none.
    osg::ImagePtr getImage() const;

    /// How often the voxels were gone through, for tests and statistics.
    osg::UInt32 getNumPasses() const { return _numPasses; }

  private:
    template <class VoxelT>
    void reduce(const osg::ImagePtr &voxels, osg::UInt32 edge);

    osg::TextureChunkPtr _texture;
    std::vector<osg::UInt8> _texels; ///< of the last pass
    osg::UInt64 _revision = 0;       ///< of the voxels that it went through
    int _blockSize = 0;
    osg::UInt32 _numPasses = 0;
};

#endif
