/// \file
/// Draws another foreground into textures.

#include <Tessaly/OSGFBOForeground.h>

#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGForeground.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGLError.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTextureFunctions.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGWindow.h>

#include <algorithm>
#include <cmath>

OSG_BEGIN_NAMESPACE

namespace
{

constexpr UInt32 NotRegistered = 0x7FFFFFFF;
constexpr UInt32 ResizeToWindow = 1;
constexpr UInt32 ResizeToViewport = 2;

template <class FunctionT>
FunctionT fetch(Window *win, UInt32 id)
{
    return reinterpret_cast<FunctionT>(win->getFunction(id));
}

GLenum targetOf(const TextureChunkPtr &texture)
{
    if(texture->getTarget() != GL_NONE)
        return texture->getTarget();
    return texture->getImage()->getDepth() > 1 ? GL_TEXTURE_3D : GL_TEXTURE_2D;
}

bool isDepth(UInt32 internalFormat)
{
    return internalFormat == GL_DEPTH_COMPONENT || internalFormat == GL_DEPTH_COMPONENT16 ||
           internalFormat == GL_DEPTH_COMPONENT24 || internalFormat == GL_DEPTH_COMPONENT32;
}

bool hasMipmapFilter(const TextureChunkPtr &texture)
{
    return texture->getMinFilter() >= GL_NEAREST_MIPMAP_NEAREST &&
           texture->getMinFilter() <= GL_LINEAR_MIPMAP_LINEAR;
}

bool isAll(const Vec4f &values, Real32 wanted)
{
    for(UInt32 i = 0; i < 4; ++i)
        if(!(std::fabs(values[i] - wanted) <= 1e-6f))
            return false;
    return true;
}

/// Truncated; far values and what is no number are brought into what GL can take.
GLint toPixel(Real32 value)
{
    constexpr Real32 Largest = 1e9f;
    return value == value ? GLint(std::min(std::max(value, -Largest), Largest)) : 0;
}

} // namespace

UInt32 FBOForeground::_tex3D_extension = NotRegistered;
UInt32 FBOForeground::_framebuffer_object_extension = NotRegistered;
UInt32 FBOForeground::_draw_buffers_extension = NotRegistered;
UInt32 FBOForeground::_funcDrawBuffers = NotRegistered;
UInt32 FBOForeground::_funcBindFramebuffer = NotRegistered;
UInt32 FBOForeground::_funcBindRenderbuffer = NotRegistered;
UInt32 FBOForeground::_funcCheckFramebufferStatus = NotRegistered;
UInt32 FBOForeground::_funcDeleteFramebuffers = NotRegistered;
UInt32 FBOForeground::_funcDeleteRenderbuffers = NotRegistered;
UInt32 FBOForeground::_funcFramebufferRenderbuffer = NotRegistered;
UInt32 FBOForeground::_funcFramebufferTexture1D = NotRegistered;
UInt32 FBOForeground::_funcFramebufferTexture2D = NotRegistered;
UInt32 FBOForeground::_funcFramebufferTexture3D = NotRegistered;
UInt32 FBOForeground::_funcGenFramebuffers = NotRegistered;
UInt32 FBOForeground::_funcGenRenderbuffers = NotRegistered;
UInt32 FBOForeground::_funcGenerateMipmap = NotRegistered;
UInt32 FBOForeground::_funcGetFramebufferAttachmentParameteriv = NotRegistered;
UInt32 FBOForeground::_funcGetRenderbufferParameteriv = NotRegistered;
UInt32 FBOForeground::_funcIsFramebuffer = NotRegistered;
UInt32 FBOForeground::_funcIsRenderbuffer = NotRegistered;
UInt32 FBOForeground::_funcRenderbufferStorage = NotRegistered;
UInt32 FBOForeground::_funcCopyTexSubImage3D = NotRegistered;

/// What one frame is drawn into.
struct FBOForeground::Targets
{
    std::vector<TextureChunkPtr> colors;
    TextureChunkPtr depth;
    TextureChunkPtr stencil;
};

void FBOForeground::initMethod()
{
    _tex3D_extension = Window::registerExtension("GL_EXT_texture3D");
    _framebuffer_object_extension = Window::registerExtension("GL_EXT_framebuffer_object");
    _draw_buffers_extension = Window::registerExtension("GL_ARB_draw_buffers");

    _funcDrawBuffers = Window::registerFunction("glDrawBuffers", _draw_buffers_extension, 0xFFFF);
    const auto ofFramebuffers = [](const Char8 *name) {
        return Window::registerFunction(name, _framebuffer_object_extension, 0xFFFF);
    };
    _funcBindFramebuffer = ofFramebuffers("glBindFramebufferEXT");
    _funcBindRenderbuffer = ofFramebuffers("glBindRenderbufferEXT");
    _funcCheckFramebufferStatus = ofFramebuffers("glCheckFramebufferStatusEXT");
    _funcDeleteFramebuffers = ofFramebuffers("glDeleteFramebuffersEXT");
    _funcDeleteRenderbuffers = ofFramebuffers("glDeleteRenderbuffersEXT");
    _funcFramebufferRenderbuffer = ofFramebuffers("glFramebufferRenderbufferEXT");
    _funcFramebufferTexture1D = ofFramebuffers("glFramebufferTexture1DEXT");
    _funcFramebufferTexture2D = ofFramebuffers("glFramebufferTexture2DEXT");
    _funcFramebufferTexture3D = ofFramebuffers("glFramebufferTexture3DEXT");
    _funcGenFramebuffers = ofFramebuffers("glGenFramebuffersEXT");
    _funcGenRenderbuffers = ofFramebuffers("glGenRenderbuffersEXT");
    _funcGenerateMipmap = ofFramebuffers("glGenerateMipmapEXT");
    _funcGetFramebufferAttachmentParameteriv = ofFramebuffers("glGetFramebufferAttachmentParameterivEXT");
    _funcGetRenderbufferParameteriv = ofFramebuffers("glGetRenderbufferParameterivEXT");
    _funcIsFramebuffer = ofFramebuffers("glIsFramebufferEXT");
    _funcIsRenderbuffer = ofFramebuffers("glIsRenderbufferEXT");
    _funcRenderbufferStorage = ofFramebuffers("glRenderbufferStorageEXT");
    _funcCopyTexSubImage3D = Window::registerFunction("glCopyTexSubImage3D", _tex3D_extension, 0xFFFF);
}

FBOForeground::FBOForeground() = default;

FBOForeground::FBOForeground(const FBOForeground &source)
    : Inherited(source), _keptForeground(source._sfForeground.getValue())
{}

FBOForeground::~FBOForeground() = default;

void FBOForeground::onCreate(const FBOForeground *source)
{
    Inherited::onCreate(source);
    _keptForeground.adopt();
    _heldTextures.follow(_mfTextures, ChangedOrigin::External);
}

void FBOForeground::onDestroy()
{
    _keptForeground.release();
    _heldTextures.release();
    Inherited::onDestroy();
}

void FBOForeground::setForeground(const ForegroundPtr &value)
{
    _keptForeground.keep(value);
    _sfForeground.setValue(value);
}

bool FBOForeground::hasFramebufferFunctions(Window *win) const
{
    for(const UInt32 function :
        {_funcGenFramebuffers, _funcBindFramebuffer, _funcBindRenderbuffer, _funcFramebufferTexture2D,
         _funcFramebufferTexture3D, _funcCheckFramebufferStatus})
        if(win->getFunction(function) == nullptr)
            return false;
    return true;
}

bool FBOForeground::initialize(Window *win, UInt32)
{
    if(_glFramebufferId != 0 && !_dirty)
        return true;
    _dirty = false;
    if(!hasFramebufferFunctions(win))
        return false;

    // One that was there before stays with GL, as is meant.
    const auto bindFramebuffer = fetch<PFNGLBINDFRAMEBUFFEREXTPROC>(win, _funcBindFramebuffer);
    GLuint id = 0;
    fetch<PFNGLGENFRAMEBUFFERSEXTPROC>(win, _funcGenFramebuffers)(1, &id);
    bindFramebuffer(GL_FRAMEBUFFER_EXT, id);
    _glFramebufferId = id;
    _attachments.clear();
    glDrawBuffer(GL_NONE);
    glReadBuffer(GL_NONE);

    // Nothing was written here that references would have to follow.
    _initializing = true;
    endEditCP(FBOForegroundPtr(*this), FieldBits::AllFields, 1);
    _initializing = false;

    bindFramebuffer(GL_FRAMEBUFFER_EXT, 0);
    fetch<PFNGLBINDRENDERBUFFEREXTPROC>(win, _funcBindRenderbuffer)(GL_RENDERBUFFER_EXT, 0);
    return true;
}

void FBOForeground::bind(Window *win)
{
    const auto bindFramebuffer = fetch<PFNGLBINDFRAMEBUFFEREXTPROC>(win, _funcBindFramebuffer);
    if(_glFramebufferId != 0 && bindFramebuffer != nullptr)
        bindFramebuffer(GL_FRAMEBUFFER_EXT, _glFramebufferId);
    else
        FWARNING(("Invalid FrameBufferObject index!\n"));
}

void FBOForeground::unbind(Window *win)
{
    const auto bindFramebuffer = fetch<PFNGLBINDFRAMEBUFFEREXTPROC>(win, _funcBindFramebuffer);
    if(bindFramebuffer != nullptr)
        bindFramebuffer(GL_FRAMEBUFFER_EXT, _savedGlFramebufferId);
}

void FBOForeground::setTarget(Window *win, UInt32 id, UInt32 attachment, UInt32 target, Int32 zOffset)
{
    const auto attach2D = fetch<PFNGLFRAMEBUFFERTEXTURE2DEXTPROC>(win, _funcFramebufferTexture2D);
    const auto attach3D = fetch<PFNGLFRAMEBUFFERTEXTURE3DEXTPROC>(win, _funcFramebufferTexture3D);
    if(_glFramebufferId == 0 || attach2D == nullptr || attach3D == nullptr)
    {
        FWARNING(("Invalid FrameBufferObject index!\n"));
        return;
    }
    if(target == GL_TEXTURE_3D)
        attach3D(GL_FRAMEBUFFER_EXT, attachment, target, id, 0, zOffset);
    else
        attach2D(GL_FRAMEBUFFER_EXT, attachment, target, id, 0);
    if(osgGlCheckError("OSGFBOForeground", "setTarget post"))
        SWARNING << "Error with attachment: " << attachment << ", id: " << id << ", target: " << target
                 << std::endl;
}

Int32 FBOForeground::getMaxBuffers()
{
    GLint count = 0;
    glGetIntegerv(GL_MAX_COLOR_ATTACHMENTS_EXT, &count);
    FINFO(("GL_MAX_COLOR_ATTACHMENTS_EXT: %d\n", count));
    return count;
}

bool FBOForeground::extensionCheck(Window &win)
{
    if(win.hasExtension(_framebuffer_object_extension))
        return true;
    FWARNING(("I need GL_EXT_framebuffer_object-Extension!\n"));
    return false;
}

bool FBOForeground::checkFrameBufferStatus(Window *win)
{
    const auto checkStatus = fetch<PFNGLCHECKFRAMEBUFFERSTATUSEXTPROC>(win, _funcCheckFramebufferStatus);
    if(checkStatus == nullptr)
        return false;
    const GLenum status = checkStatus(GL_FRAMEBUFFER_EXT);
    switch(status)
    {
        case GL_FRAMEBUFFER_COMPLETE_EXT: FINFO(("%x: framebuffer complete!\n", status)); break;
        case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT_EXT:
            FWARNING(("%x: framebuffer INCOMPLETE_ATTACHMENT\n", status));
            break;
        case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT_EXT:
            FWARNING(("%x: framebuffer FRAMEBUFFER_MISSING_ATTACHMENT\n", status));
            break;
        case GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS_EXT:
            FWARNING(("%x: framebuffer FRAMEBUFFER_DIMENSIONS\n", status));
            break;
        case GL_FRAMEBUFFER_INCOMPLETE_FORMATS_EXT:
            FWARNING(("%x: framebuffer INCOMPLETE_FORMATS\n", status));
            break;
        case GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER_EXT:
            FWARNING(("%x: framebuffer INCOMPLETE_DRAW_BUFFER\n", status));
            break;
        case GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER_EXT:
            FWARNING(("%x: framebuffer INCOMPLETE_READ_BUFFER\n", status));
            break;
        case GL_FRAMEBUFFER_BINDING_EXT: FWARNING(("%x: framebuffer BINDING_EXT\n", status)); break;
        case GL_FRAMEBUFFER_UNSUPPORTED_EXT:
            FWARNING(("%x: framebuffer GL_FRAMEBUFFER_UNSUPPORTED_EXT\n", status));
            return false;
        default: return false;
    }
    // The incomplete states above count as good here, as is meant, unless GL has an error too.
    const GLenum error = glGetError();
    if(error == GL_NO_ERROR)
        return true;
    FWARNING(("OpenGL Error: %s!\n", reinterpret_cast<const Char8 *>(gluErrorString(error))));
    return false;
}

FBOForeground::Targets FBOForeground::sortTextures(UInt32 count) const
{
    Targets targets;
    for(UInt32 i = 0; i < count; ++i)
    {
        const TextureChunkPtr texture = _mfTextures[i];
        if(texture == NullFC || texture->getImage() == NullFC)
        {
            FWARNING(("FBOForeground::draw: texture %u is null or has no image\n", i));
            continue;
        }
        const UInt32 format = texture->getInternalFormat();
        if(isDepth(format))
            targets.depth = texture;
        else if(format == GL_STENCIL_INDEX)
            targets.stencil = texture;
        else if(format == GL_DEPTH_STENCIL_NV)
            SWARNING << "DEPTH_STENCIL format not yet impl." << std::endl;
        else
            targets.colors.push_back(texture);
    }
    if(targets.depth != NullFC && targets.stencil != NullFC)
    {
        FWARNING(("Rendering to separate depth and stencil textures is not possible. Disabling stencil "
                  "texture.\n"));
        targets.stencil = NullFC;
    }
    return targets;
}

void FBOForeground::resizeImages(const Targets &targets, Window *win, Viewport *port) const
{
    const UInt32 mode = getTextureResizeMode();
    if(mode != ResizeToWindow && mode != ResizeToViewport)
        return;
    const Int32 width = mode == ResizeToWindow ? Int32(win->getWidth()) : port->getPixelWidth();
    const Int32 height = mode == ResizeToWindow ? Int32(win->getHeight()) : port->getPixelHeight();
    for(const TextureChunkPtr &texture : targets.colors)
    {
        const ImagePtr image = texture->getImage();
        if(image->getWidth() == width && image->getHeight() == height)
            continue;
        if(!image->set(image->getPixelFormat(), width, height, std::max(image->getDepth(), 1),
                       image->getMipMapCount(), image->getFrameCount(), image->getFrameDelay(), nullptr,
                       image->getDataType(), true, image->getSideCount()))
            continue;
        endEditCP(image);
        // An image does not know its textures.
        for(const TextureChunkPtr &other : targets.colors)
            if(other->getImage() == image)
                other->imageContentChanged();
    }
}

void FBOForeground::attach(Window *win, const TextureChunkPtr &texture, UInt32 attachment, bool withMipmaps)
{
    win->validateGLObject(texture->getGLId());
    const GLenum target = targetOf(texture);
    const GLuint name = win->getGLObjectId(texture->getGLId());
    const auto generateMipmap = fetch<PFNGLGENERATEMIPMAPEXTPROC>(win, _funcGenerateMipmap);
    if(withMipmaps && hasMipmapFilter(texture) && generateMipmap != nullptr)
    {
        glBindTexture(target, name);
        generateMipmap(target);
        glBindTexture(target, 0);
    }
    setTarget(win, name, attachment, target, 0);
}

void FBOForeground::attachDepthOrStencil(Window *win, const Targets &targets)
{
    std::vector<UInt32> attachments;
    if(targets.depth != NullFC)
    {
        attachments.push_back(GL_DEPTH_ATTACHMENT_EXT);
        attach(win, targets.depth, attachments[0], true);
    }
    else if(targets.stencil != NullFC)
    {
        attachments.push_back(GL_STENCIL_ATTACHMENT_EXT);
        attach(win, targets.stencil, attachments[0], false);
    }
    detachOthers(win, attachments);
    if(attachments.empty())
        return;
    glDrawBuffer(GL_NONE);
    glReadBuffer(GL_NONE);
}

void FBOForeground::attachColors(Window *win, const Targets &targets)
{
    std::vector<GLenum> buffers;
    for(const TextureChunkPtr &texture : targets.colors)
    {
        buffers.push_back(GL_COLOR_ATTACHMENT0_EXT + GLenum(buffers.size()));
        attach(win, texture, buffers.back(), true);
    }
    detachOthers(win, buffers);

    if(const auto drawBuffers = fetch<PFNGLDRAWBUFFERSPROC>(win, _funcDrawBuffers))
    {
        drawBuffers(GLsizei(buffers.size()), buffers.data());
        return;
    }
    if(buffers.size() > 1)
        FWARNING(("glDrawBuffersARB not supported, can't render to more than 1 buffer.\n"));
    glDrawBuffer(buffers[0]);
}

void FBOForeground::detachOthers(Window *win, const std::vector<UInt32> &attachments)
{
    // A depth texture left from before would hide what is drawn into colours.
    for(const UInt32 old : _attachments)
        if(std::find(attachments.begin(), attachments.end(), old) == attachments.end())
            setTarget(win, 0, old, GL_TEXTURE_2D, 0);
    _attachments = attachments;
}

bool FBOForeground::applyOverride(const Targets &targets) const
{
    const Vec4f &wanted = getOverrideViewport();
    if(isAll(wanted, 0.f))
        return false;
    if(isAll(wanted, -1.f) && !targets.colors.empty())
    {
        const ImagePtr image = targets.colors[0]->getImage();
        glViewport(0, 0, image->getWidth(), image->getHeight());
        glDisable(GL_SCISSOR_TEST);
        return true;
    }
    // Without a colour texture the four -1 go to GL like any other values, as is meant.
    const GLint width = toPixel(wanted[2]);
    const GLint height = toPixel(wanted[3]);
    glViewport(toPixel(wanted[0]), toPixel(wanted[1]), width, height);
    if(width < 0 || height < 0)
        osgGlCheckError("OSGFBOForeground", "overrideViewport");
    return true;
}

bool FBOForeground::haveSidesOfPowersOf2(const Targets &targets)
{
    const auto isPowerOf2 = [](Int32 side) { return (side & (side - 1)) == 0; };
    std::vector<TextureChunkPtr> textures = targets.colors;
    textures.push_back(targets.depth);
    textures.push_back(targets.stencil);
    return std::all_of(textures.begin(), textures.end(), [&](const TextureChunkPtr &texture) {
        return texture == NullFC ||
               (isPowerOf2(texture->getImage()->getWidth()) && isPowerOf2(texture->getImage()->getHeight()));
    });
}

void FBOForeground::draw(DrawActionBase *action, Viewport *port)
{
    if(!getActive())
        return;
    Window *const win = action != nullptr ? action->getWindow() : nullptr;
    if(win == nullptr)
    {
        SWARNING << "FBOForeground::draw: no window!" << std::endl;
        return;
    }
    if(port == nullptr || _drawing)
    {
        FWARNING(("FBOForeground::draw: %s\n", _drawing ? "the foreground holds itself" : "no viewport"));
        return;
    }
    win->frameInit();

    const Int32 count = std::min(getMaxBuffers(), Int32(_mfTextures.size()));
    if(count <= 0)
        return;
    const Targets targets = sortTextures(UInt32(count));
    if(!initialize(win, 0) || !hasFramebufferFunctions(win))
    {
        if(!_warned)
            FFATAL(("Cannot initialize FBO\n"));
        _warned = true;
        return;
    }

    bind(win);
    resizeImages(targets, win, port);
    if(!_warned && !TextureFunctions(win).hasNonPowerOf2 && !haveSidesOfPowersOf2(targets))
    {
        FWARNING(("FBOForeground::draw: without GL_ARB_texture_non_power_of_two only the lower left part of a "
                  "texture is drawn to where its sides are no powers of two\n"));
        _warned = true;
    }
    if(targets.colors.empty())
        attachDepthOrStencil(win, targets);
    else
        attachColors(win, targets);

    if(getDeactivateViewport())
        port->deactivate();
    const bool isOverridden = applyOverride(targets);
    _drawing = true;
    if(getForeground() != NullFC)
        getForeground()->draw(action, port);
    _drawing = false;
    unbind(win);
    if(isOverridden)
        port->activateSize();
    if(getDeactivateViewport())
        port->activate();
}

void FBOForeground::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & ForegroundFieldMask) != 0 && !_initializing)
        _keptForeground.follow(_sfForeground.getValue(), origin);
    if((whichField & TexturesFieldMask) != 0 && !_initializing)
        _heldTextures.follow(_mfTextures, origin);
    _warned = false;
    Inherited::changed(whichField, origin);
}

void FBOForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump FBOForeground NI" << std::endl;
}

OSG_END_NAMESPACE
