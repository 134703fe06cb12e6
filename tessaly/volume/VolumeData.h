#ifndef TESSALY_VOLUMEDATA_H
#define TESSALY_VOLUMEDATA_H

/// \file
/// The voxels of one volume, made ready for ray casting.

#include <OpenSG/OSGImageFields.h>
#include <OpenSG/OSGTextureChunkFields.h>
#include <OpenSG/OSGVector.h>

class BitVolume;
class BlockVolume;

/// Wraps the texture that holds the voxels of one volume: x fastest, then y, then z, one channel of 8 or 16
/// bits. 32-bit voxels are taken as they are and get neither padding nor blocks.
///
/// One per set of voxels: setVolume() is meant to run once, and run again on the same image can scale 12-bit
/// data again. Used by one thread, on its aspect; no GL context is needed. Failures are logged and returned.
class VolumeData
{
  public:
    VolumeData() = default;
    VolumeData(const VolumeData &) = delete;
    VolumeData &operator=(const VolumeData &) = delete;
    ~VolumeData();

    /// Takes the voxel texture, with one reference, and normalises voxels and settings in place: bytes of
    /// 16-bit voxels are swapped if \a swapped, 12-bit data is scaled to 16 bits, the pixel format becomes
    /// one channel, filters and wrapping are set. The slice thickness is read from the image's attachment
    /// "SliceThickness", three numbers as text; 1 without.
    /// \param normalised the voxels themselves were normalised before, by another aspect's copy of the scene,
    /// and stay as they are
    /// \return false, with one warning, for a null texture, which changes nothing, and for one without an
    /// image, which is kept all the same
    bool setVolume(osg::TextureChunkPtr texture, bool swapped, bool normalised = false);

    /// Replaces the image by one whose sides are multiples of \a blockSize, with zeros behind the voxels,
    /// also where they are multiples already. The object's size stays as it was. A negative \a blockSize, and
    /// voxels of other than 8 or 16 bits, change nothing.
    /// \return false, with one warning, if texture or image are missing, or where memory is short
    bool resizeVolume(int blockSize);

    /// Computes the size from slice thickness and resolution: the longest side has length 4 at a thickness
    /// of 1.
    void calcVolumeSize();

    /// The image of the texture, NullFC where there is none.
    osg::ImagePtr getImage() const;
    osg::TextureChunkPtr getTexture() const { return _texture; }
    /// In object space.
    osg::Vec3f getVolumeSize() const { return _volumeSize; }
    osg::Vec3f getSliceThickness() const { return _sliceThickness; }
    /// Width, height and depth in voxels; zeros without an image. Sides over 65535 do not fit.
    osg::Vec3us getResolution() const;

    /// Owned by this object; null until set. The setters delete the old one.
    BitVolume *getBitVolume() const { return _bitVolume; }
    void setBitVolume(BitVolume *bitVolume);
    BlockVolume *getBlockVolume() const { return _blockVolume; }
    void setBlockVolume(BlockVolume *blockVolume);

  private:
    BitVolume *_bitVolume = nullptr;
    BlockVolume *_blockVolume = nullptr;
    osg::Vec3f _volumeSize;
    osg::Vec3f _sliceThickness;
    osg::TextureChunkPtr _texture;
};

#endif
