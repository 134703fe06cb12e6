#ifndef TESSALY_BITVOLUME_H
#define TESSALY_BITVOLUME_H

/// \file
/// The verdict which blocks of voxels can be seen.

#include <OpenSG/OSGImageFields.h>
#include <OpenSG/OSGTextureChunkFields.h>

/// A texture with one byte per block, in alpha: 255 for a block that must be sampled, 0 for one to skip.
///
/// Used by one thread, on its aspect; no GL context is needed.
class BitVolume
{
  public:
    BitVolume() = default;
    BitVolume(const BitVolume &) = delete;
    BitVolume &operator=(const BitVolume &) = delete;
    ~BitVolume();

    /// Writes the verdicts, in place where there are some already.
    /// \param blockVolume least and greatest value per block, as BlockVolume builds them
    /// \param summedAreaTable running sum of opacity, a float for each value that a voxel can have, as
    /// Transferfunction builds it. One that is too short is not reported; greater values then count as its
    /// last entry.
    /// \return false, with one warning, if an image is null. An image of blocks of another type than 8 or 16
    /// bits gives true and leaves the bytes as they were; standard output is told.
    bool calcBitVolumen(const osg::ImagePtr &blockVolume, const osg::ImagePtr &summedAreaTable);

    /// Null until built; a reference is held.
    osg::TextureChunkPtr getTexture() const { return _texture; }

  private:
    osg::ImagePtr _image;
    osg::TextureChunkPtr _texture;
};

#endif
