#include "OSGTextureFunctions.h"

#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// The ids of everything that textures ask a window for.
struct TextureIds
{
    UInt32 nonPowerOf2 = Window::registerExtension("GL_ARB_texture_non_power_of_two");
    UInt32 rectangle = Window::registerExtension("GL_ARB_texture_rectangle");
    UInt32 s3tc = Window::registerExtension("GL_EXT_texture_compression_s3tc");
    UInt32 anisotropy = Window::registerExtension("GL_EXT_texture_filter_anisotropic");
    UInt32 shadow = Window::registerExtension("GL_ARB_shadow");
    UInt32 lodBias = Window::registerExtension("GL_EXT_texture_lod_bias");
    UInt32 combine = Window::registerExtension("GL_ARB_texture_env_combine");
    UInt32 pointSprite = Window::registerExtension("GL_ARB_point_sprite");
    UInt32 multitexture = Window::registerExtension("GL_ARB_multitexture");
    UInt32 texture3D = Window::registerExtension("GL_EXT_texture3D");
    UInt32 compression = Window::registerExtension("GL_ARB_texture_compression");
    UInt32 framebufferObject = Window::registerExtension("GL_EXT_framebuffer_object");

    UInt32 activeTexture = Window::registerFunction("glActiveTextureARB", multitexture, 0x0103);
    UInt32 texImage3D = Window::registerFunction("glTexImage3D", texture3D, 0x0102);
    UInt32 texSubImage3D = Window::registerFunction("glTexSubImage3D", texture3D, 0x0102);
    UInt32 compressedTexImage2D = Window::registerFunction("glCompressedTexImage2DARB", compression, 0x0103);
    UInt32 generateMipmap = Window::registerFunction("glGenerateMipmapEXT", framebufferObject, 0x0300);
};

const TextureIds &textureIds()
{
    static const TextureIds ids;
    return ids;
}

template <class FunctionT>
FunctionT functionOf(Window *win, UInt32 id)
{
    return reinterpret_cast<FunctionT>(win->getFunction(id));
}

} // namespace

void TextureFunctions::registerAll()
{
    textureIds();
}

TextureFunctions::TextureFunctions(Window *win)
{
    const TextureIds &ids = textureIds();
    activeTexture = functionOf<PFNGLACTIVETEXTUREPROC>(win, ids.activeTexture);
    texImage3D = functionOf<PFNGLTEXIMAGE3DPROC>(win, ids.texImage3D);
    texSubImage3D = functionOf<PFNGLTEXSUBIMAGE3DPROC>(win, ids.texSubImage3D);
    compressedTexImage2D = functionOf<PFNGLCOMPRESSEDTEXIMAGE2DPROC>(win, ids.compressedTexImage2D);
    generateMipmap = functionOf<PFNGLGENERATEMIPMAPPROC>(win, ids.generateMipmap);

    hasNonPowerOf2 = win->hasExtension(ids.nonPowerOf2);
    hasRectangle = win->hasExtension(ids.rectangle);
    hasS3TC = win->hasExtension(ids.s3tc);
    hasAnisotropy = win->hasExtension(ids.anisotropy);
    hasShadow = win->hasExtension(ids.shadow);
    hasLodBias = win->hasExtension(ids.lodBias);
    hasCombine = win->hasExtension(ids.combine);
    hasPointSprite = win->hasExtension(ids.pointSprite);
}

OSG_END_NAMESPACE
