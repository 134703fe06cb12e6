#ifndef _OSGTEXTURELAYOUT_H_
#define _OSGTEXTURELAYOUT_H_

/// \file
/// How an image becomes a texture: kinds, formats, sizes and blocks of pixels. Plain numbers; no GL
/// context is needed.

#include <vector>

#include "OSGBaseTypes.h"
#include "OSGGL.h"

OSG_BEGIN_NAMESPACE

/// A block of pixels by its first and last column, row and plane; `whole` where everything counts.
struct TextureBlock
{
    bool whole = true; ///< whether all of the image is meant
    Int32 first[3] = {0, 0, 0}; ///< first pixel along x, y and z
    Int32 last[3] = {0, 0, 0}; ///< last pixel along x, y and z
};

/// What is allocated in GL for the largest level.
struct TextureStorage
{
    UInt32 size[3] = {0, 0, 0}; ///< pixels along x, y and z
    UInt32 used[3] = {0, 0,
                      0}; ///< the part that the image fills; less than the size only for padded textures
    GLenum internalFormat = GL_NONE; ///< as GL keeps it
    GLenum format = GL_NONE; ///< which channels
    GLenum type = GL_NONE; ///< the type of a channel
    UInt32 levels = 1; ///< levels, 1 without mipmaps
};

/// The kind of texture for an image of that size: GL_TEXTURE_3D, GL_TEXTURE_2D or GL_TEXTURE_1D; GL_NONE
/// for none.
OSG_SYSTEMLIB_DLLMAPPING GLenum textureTarget(Int32 width, Int32 height, Int32 depth);

/// How many dimensions a kind of texture has, 1 to 3; 0 for an unknown kind.
OSG_SYSTEMLIB_DLLMAPPING UInt32 textureDimensions(GLenum target);

/// The internal format that keeps what an image of that format and type holds: 8 bits for bytes, 16 bits
/// for other integers, floats for floats. GL_NONE for an unknown format.
OSG_SYSTEMLIB_DLLMAPPING GLenum textureInternalFormat(GLenum pixelFormat, GLenum dataType);

/// The format that GL is told for pixels of an image format: GL_INTENSITY pixels are handed over as
/// luminance, all others as they are.
OSG_SYSTEMLIB_DLLMAPPING GLenum textureExternalFormat(GLenum pixelFormat);

/// Whether a minification filter reads mipmaps.
OSG_SYSTEMLIB_DLLMAPPING bool filterNeedsMipmaps(GLenum minFilter);

/// Whether an internal format is one of depth.
OSG_SYSTEMLIB_DLLMAPPING bool isDepthFormat(GLenum internalFormat);

/// The least power of two that is not below `size`; 1 for 0.
OSG_SYSTEMLIB_DLLMAPPING UInt32 nextPowerOf2(UInt32 size);

/// The smallest block that holds both.
OSG_SYSTEMLIB_DLLMAPPING TextureBlock joinBlocks(const TextureBlock &a, const TextureBlock &b);

/// A block with -1 replaced by the borders and cut to the size; `whole` where that is everything. False if
/// nothing is left.
OSG_SYSTEMLIB_DLLMAPPING bool clipBlock(TextureBlock &block, const UInt32 size[3]);

/// The pixels of a size as the lower left front part of a larger one, with the last column, row and plane
/// repeated in the rest, so that a linear filter at the border reads the border. `pixelSize` is in bytes.
OSG_SYSTEMLIB_DLLMAPPING void padPixels(const UInt8 *source, const UInt32 size[3], UInt32 pixelSize,
                                        const UInt32 paddedSize[3], std::vector<UInt8> &padded);

OSG_END_NAMESPACE

#endif
