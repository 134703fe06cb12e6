#ifndef _OSGTEXTUREUPLOAD_H_
#define _OSGTEXTUREUPLOAD_H_

/// \file
/// The transfer of images into GL textures. All of it needs the context of the window current, and
/// works on the texture that is bound to the target.

#include "OSGImage.h"
#include "OSGMatrix.h"
#include "OSGTextureLayout.h"

OSG_BEGIN_NAMESPACE

struct TextureFunctions;

/// What a texture is made from.
struct TextureSource
{
    ImagePtr image;        ///< not null
    UInt32 frame; ///< frame of the image
    GLenum internalFormat; ///< GL_NONE for what suits the image
    GLenum externalFormat; ///< GL_NONE for that of the image
    bool scale; ///< whether other sides than powers of two are scaled, or else padded, where that is needed
};

/// Everything about a texture but its pixels.
struct TextureSettings
{
    GLenum minFilter; ///< filter for what is farther
    GLenum magFilter; ///< filter for what is nearer
    GLenum wrap[3]; ///< wraps along s, t and r
    Real32 priority; ///< priority, 0 to 1
    Real32 anisotropy; ///< samples at most
    Real32 borderColor[4]; ///< RGBA
    GLenum compareMode; ///< whether depths are compared
    GLenum compareFunc; ///< how depths are compared
    GLenum depthMode; ///< what a depth is read as
};

/// Binds a texture on the active unit for as long as it lives, and behind that what was bound before.
class OSG_SYSTEMLIB_DLLMAPPING TextureBinding
{
  public:
    /// Binds the texture, and the one before at its end.
    TextureBinding(GLenum target, UInt32 name);
    ~TextureBinding();
    TextureBinding(const TextureBinding &) = delete;
    TextureBinding &operator=(const TextureBinding &) = delete;

  private:
    GLenum _target;
    GLint _before = 0;
};

/// Allocates the texture and transfers all pixels, with the image's own mipmaps where it has them; without
/// pixels only allocates. `storage` tells what became of it. False, with one warning, where GL can't do it.
OSG_SYSTEMLIB_DLLMAPPING bool transferTexture(const TextureFunctions &gl, GLenum target,
                                              const TextureSource &source, TextureStorage &storage);

/// Transfers a block of pixels into what is allocated; `block` is clipped. False where it has to be the
/// whole: the form of the image has changed, it has mipmaps of its own, is compressed, scaled or padded.
OSG_SYSTEMLIB_DLLMAPPING bool transferTextureBlock(const TextureFunctions &gl, GLenum target,
                                                   const TextureSource &source, TextureBlock &block,
                                                   const TextureStorage &storage);

/// Makes the mipmaps from the largest level. False where GL has no means for it.
OSG_SYSTEMLIB_DLLMAPPING bool makeTextureMipmaps(const TextureFunctions &gl, GLenum target);

/// Sends filters, wrapping and the like. Without mipmaps a filter that needs them becomes the one without.
OSG_SYSTEMLIB_DLLMAPPING void sendTextureSettings(const TextureFunctions &gl, GLenum target,
                                                  const TextureSettings &settings,
                                                  const TextureStorage &storage, bool hasMipmaps);

/// Loads the texture matrix of the active unit and leaves the matrix mode as it is.
OSG_SYSTEMLIB_DLLMAPPING void loadTextureMatrix(const Matrix &matrix);

OSG_END_NAMESPACE

#endif
