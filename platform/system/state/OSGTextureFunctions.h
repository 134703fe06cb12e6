#ifndef _OSGTEXTUREFUNCTIONS_H_
#define _OSGTEXTUREFUNCTIONS_H_

/// \file
/// The GL functions and extensions for textures beyond OpenGL 1.1, as one window has them.

#include "OSGBaseTypes.h"
#include "OSGGL.h"

OSG_BEGIN_NAMESPACE

class Window;

/// Fetched from a window; null is what the window lacks.
struct OSG_SYSTEMLIB_DLLMAPPING TextureFunctions
{
    /// Registers the names; once, ahead of the first window.
    static void registerAll();

    /// Asks the window's context, which is current.
    explicit TextureFunctions(Window *win);

    /// A function of GL; null where the context lacks it.
    PFNGLACTIVETEXTUREPROC activeTexture;
    PFNGLTEXIMAGE3DPROC texImage3D;
    PFNGLTEXSUBIMAGE3DPROC texSubImage3D;
    PFNGLCOMPRESSEDTEXIMAGE2DPROC compressedTexImage2D;
    PFNGLGENERATEMIPMAPPROC generateMipmap;

    /// Whether the context has the ability.
    bool hasNonPowerOf2;
    bool hasRectangle;
    bool hasS3TC;
    bool hasAnisotropy;
    bool hasShadow;
    bool hasLodBias;
    bool hasCombine;
    bool hasPointSprite;
};

OSG_END_NAMESPACE

#endif
