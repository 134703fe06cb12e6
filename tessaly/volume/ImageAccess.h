#ifndef TESSALY_IMAGEACCESS_H
#define TESSALY_IMAGEACCESS_H

/// \file
/// Images and texture chunks as the passes over plain data want them.

#include <vector>

#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGTextureChunk.h>

#include "VoxelPasses.h"

namespace tessaly
{

/// \return width, height and depth of the image; zeros for NullFC and for an image without size
Sides sidesOf(const osg::ImagePtr &image);

/// Bytes that lie behind Image::getData().
std::size_t bytesOf(const osg::ImagePtr &image);

/// The image's pixels as \a count values of T. An image that holds fewer is copied to \a spare, with zeros
/// behind.
/// \return never null for a \a count above 0
template <class T>
const T *valuesOf(const osg::ImagePtr &image, std::size_t count, std::vector<T> &spare);

/// A new image of one level, frame and side, with room for its pixels, which are zero. NullFC, logged by the
/// image, where there can't be one. No reference is held on it; the edit is closed.
osg::ImagePtr makeImage(osg::UInt32 pixelFormat, const Sides &sides, osg::Int32 dataType);

/// Makes \a texture if it is null, with one reference held on it.
void provideTexture(osg::TextureChunkPtr &texture);

/// Sets the three wrap modes and both filters; the caller closes the edit.
void setSampling(const osg::TextureChunkPtr &texture, osg::UInt32 wrap, osg::UInt32 filter);

template <class T>
inline const T *valuesOf(const osg::ImagePtr &image, std::size_t count, std::vector<T> &spare)
{
    const std::size_t bytes = bytesOf(image);
    const osg::UInt8 *const data = bytes == 0 ? nullptr : image->getData();
    if(data != nullptr && bytes / sizeof(T) >= count)
        return reinterpret_cast<const T *>(data);
    spare.assign(count, T());
    for(std::size_t i = 0; data != nullptr && i < bytes / sizeof(T); ++i)
        spare[i] = reinterpret_cast<const T *>(data)[i];
    return spare.data();
}

} // namespace tessaly

#endif
