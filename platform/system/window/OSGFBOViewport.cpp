/// \file
/// A viewport that renders into textures.

#include "OSGFBOViewport.h"

#include <algorithm>

#include "OSGBaseInitFunctions.h"
#include "OSGGL.h"
#include "OSGGLError.h"
#include "OSGImage.h"
#include "OSGLog.h"
#include "OSGNode.h"
#include "OSGRenderActionBase.h"
#include "OSGTextureChunk.h"
#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// The functions of framebuffer objects, in the order of their names below.
enum Function
{
    GenFramebuffers,
    DeleteFramebuffers,
    BindFramebuffer,
    CheckStatus,
    AttachTexture2D,
    AttachTexture3D,
    AttachRenderbuffer,
    GenRenderbuffers,
    DeleteRenderbuffers,
    BindRenderbuffer,
    RenderbufferStorage,
    GenerateMipmap,
    NumFunctions
};

const Char8 *const extNames[NumFunctions] = {
    "glGenFramebuffersEXT",      "glDeleteFramebuffersEXT",  "glBindFramebufferEXT",
    "glCheckFramebufferStatusEXT", "glFramebufferTexture2DEXT", "glFramebufferTexture3DEXT",
    "glFramebufferRenderbufferEXT", "glGenRenderbuffersEXT",  "glDeleteRenderbuffersEXT",
    "glBindRenderbufferEXT",     "glRenderbufferStorageEXT", "glGenerateMipmapEXT"};
const Char8 *const arbNames[NumFunctions] = {
    "glGenFramebuffers",         "glDeleteFramebuffers",  "glBindFramebuffer",
    "glCheckFramebufferStatus",  "glFramebufferTexture2D", "glFramebufferTexture3D",
    "glFramebufferRenderbuffer", "glGenRenderbuffers",    "glDeleteRenderbuffers",
    "glBindRenderbuffer",        "glRenderbufferStorage", "glGenerateMipmap"};

UInt32 extFunctions[NumFunctions];
UInt32 arbFunctions[NumFunctions];
UInt32 drawBuffersFunction = Window::invalidFunctionID;

/// The function by its EXT name where that extension is there, else by the one it has in ARB and in GL 3.0.
template <class PointerT>
void fetch(Window *win, Function which, PointerT &pointer)
{
    Window::GLExtensionFunction function = win->getFunction(extFunctions[which]);
    if(function == nullptr)
        function = win->getFunction(arbFunctions[which]);
    pointer = reinterpret_cast<PointerT>(function);
}

/// What GL's texture target is for attaching.
GLenum targetOf(const TextureChunkPtr &texture)
{
    if(texture->getTarget() != GL_NONE)
        return texture->getTarget();
    const ImagePtr image = texture->getImage();
    return image != NullFC && image->getDepth() > 1 ? GL_TEXTURE_3D : GL_TEXTURE_2D;
}

bool hasMipmapFilter(const TextureChunkPtr &texture)
{
    return texture->getMinFilter() >= GL_NEAREST_MIPMAP_NEAREST &&
           texture->getMinFilter() <= GL_LINEAR_MIPMAP_LINEAR;
}

} // namespace

struct FBOViewport::Functions
{
    PFNGLGENFRAMEBUFFERSPROC genFramebuffers = nullptr;
    PFNGLDELETEFRAMEBUFFERSPROC deleteFramebuffers = nullptr;
    PFNGLBINDFRAMEBUFFERPROC bindFramebuffer = nullptr;
    PFNGLCHECKFRAMEBUFFERSTATUSPROC checkStatus = nullptr;
    PFNGLFRAMEBUFFERTEXTURE2DPROC attachTexture2D = nullptr;
    PFNGLFRAMEBUFFERTEXTURE3DPROC attachTexture3D = nullptr;
    PFNGLFRAMEBUFFERRENDERBUFFERPROC attachRenderbuffer = nullptr;
    PFNGLGENRENDERBUFFERSPROC genRenderbuffers = nullptr;
    PFNGLDELETERENDERBUFFERSPROC deleteRenderbuffers = nullptr;
    PFNGLBINDRENDERBUFFERPROC bindRenderbuffer = nullptr;
    PFNGLRENDERBUFFERSTORAGEPROC renderbufferStorage = nullptr;
    PFNGLGENERATEMIPMAPPROC generateMipmap = nullptr;
    PFNGLDRAWBUFFERSPROC drawBuffers = nullptr; ///< may be missing

    /// False if the window lacks one that is needed.
    bool get(Window *win)
    {
        fetch(win, GenFramebuffers, genFramebuffers);
        fetch(win, DeleteFramebuffers, deleteFramebuffers);
        fetch(win, BindFramebuffer, bindFramebuffer);
        fetch(win, CheckStatus, checkStatus);
        fetch(win, AttachTexture2D, attachTexture2D);
        fetch(win, AttachTexture3D, attachTexture3D);
        fetch(win, AttachRenderbuffer, attachRenderbuffer);
        fetch(win, GenRenderbuffers, genRenderbuffers);
        fetch(win, DeleteRenderbuffers, deleteRenderbuffers);
        fetch(win, BindRenderbuffer, bindRenderbuffer);
        fetch(win, RenderbufferStorage, renderbufferStorage);
        fetch(win, GenerateMipmap, generateMipmap);
        drawBuffers = reinterpret_cast<PFNGLDRAWBUFFERSPROC>(win->getFunction(drawBuffersFunction));
        return genFramebuffers != nullptr && deleteFramebuffers != nullptr && bindFramebuffer != nullptr &&
               checkStatus != nullptr && attachTexture2D != nullptr && attachTexture3D != nullptr &&
               attachRenderbuffer != nullptr && genRenderbuffers != nullptr &&
               deleteRenderbuffers != nullptr && bindRenderbuffer != nullptr &&
               renderbufferStorage != nullptr && generateMipmap != nullptr;
    }
};

/// The textures of one pass.
struct FBOViewport::Targets
{
    std::vector<TextureChunkPtr> colors;
    TextureChunkPtr depth;
};

void FBOViewport::initMethod()
{
    const UInt32 ext = Window::registerExtension("GL_EXT_framebuffer_object");
    const UInt32 arb = Window::registerExtension("GL_ARB_framebuffer_object");
    const UInt32 buffers = Window::registerExtension("GL_ARB_draw_buffers");
    for(UInt32 i = 0; i < NumFunctions; ++i)
    {
        extFunctions[i] = Window::registerFunction(extNames[i], ext);
        arbFunctions[i] = Window::registerFunction(arbNames[i], arb);
    }
    drawBuffersFunction = Window::registerFunction("glDrawBuffers", buffers);
}

FBOViewport::FBOViewport() = default;

FBOViewport::FBOViewport(const FBOViewport &source) : Inherited(source) {}

FBOViewport::~FBOViewport() = default;

void FBOViewport::onCreate(const FBOViewport *source)
{
    Inherited::onCreate(source);
    if(GlobalSystemState == Startup)
        return;
    _heldExcluded.follow(_mfExcludeNodes, ChangedOrigin::External);
    _heldRendered.follow(_mfRenderNodes, ChangedOrigin::External);
    _heldTextures.follow(_mfTextures, ChangedOrigin::External);

    const FBOViewportPtr self(*this);
    const UInt32 framebuffer = Window::registerGLObject(&FBOViewport::handleFramebuffer, 1);
    const UInt32 depthBuffer = Window::registerGLObject(
        [self](Window *win, UInt32 idstatus) { self->handleDepthBuffer(win, idstatus); }, 1,
        &FBOViewport::deleteDepthBuffer);
    for(UInt32 aspect = 0; aspect < ThreadManager::getNumAspects(); ++aspect)
    {
        self.getAspectCPtr(aspect)->_framebufferId = framebuffer;
        self.getAspectCPtr(aspect)->_depthBufferId = depthBuffer;
    }
}

void FBOViewport::onDestroy()
{
    Window::destroyGLObject(_framebufferId, 1);
    Window::destroyGLObject(_depthBufferId, 1);
    _heldExcluded.release();
    _heldRendered.release();
    _heldTextures.release();
    Inherited::onDestroy();
}

void FBOViewport::setStorageSize(Int32 width, Int32 height)
{
    setStorageWidth(width);
    setStorageHeight(height);
    setSize(0.0f, 0.0f, Real32(width - 1), Real32(height - 1));
}

void FBOViewport::handleFramebuffer(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    Functions gl;
    if(!gl.get(win))
        return;
    GLuint name = win->getGLObjectId(id);
    if(status == Window::reinitialize || status == Window::destroy)
    {
        gl.deleteFramebuffers(1, &name);
        win->setGLObjectId(id, 0);
    }
    if(status == Window::initialize || status == Window::reinitialize)
    {
        gl.genFramebuffers(1, &name);
        win->setGLObjectId(id, name);
    }
}

void FBOViewport::deleteDepthBuffer(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    Functions gl;
    const GLuint name = win->getGLObjectId(id);
    if(name == 0 || !gl.get(win))
        return;
    gl.deleteRenderbuffers(1, &name);
    win->setGLObjectId(id, 0);
}

void FBOViewport::handleDepthBuffer(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    deleteDepthBuffer(win, idstatus);
    if(status != Window::initialize && status != Window::reinitialize)
        return;
    Functions gl;
    if(!gl.get(win))
        return;
    GLuint name = 0;
    gl.genRenderbuffers(1, &name);
    gl.bindRenderbuffer(GL_RENDERBUFFER, name);
    gl.renderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, getStorageWidth(), getStorageHeight());
    gl.bindRenderbuffer(GL_RENDERBUFFER, 0);
    win->setGLObjectId(id, name);
    osgGlCheckError("OSGFBOViewport", "depth buffer");
}

void FBOViewport::render(RenderActionBase *action)
{
    if(!getEnabled() || action == nullptr)
        return;
    if(!getFboOn())
    {
        Inherited::render(action);
        return;
    }
    Window *const win = getParent() != NullFC ? getParent().get() : action->getWindow();
    if(win == nullptr || getStorageWidth() < 1 || getStorageHeight() < 1 || !isComplete())
        return;

    win->frameInit();
    Functions gl;
    if(!gl.get(win))
    {
        if(!_warnedNoFBO)
            FWARNING(("FBOViewport::render: the window has no framebuffer objects\n"));
        _warnedNoFBO = true;
        return;
    }
    if(getDirty())
    {
        Window::reinitializeGLObject(_framebufferId, 1);
        Window::reinitializeGLObject(_depthBufferId, 1);
        setDirty(false);
        endEditCP(FBOViewportPtr(*this), DirtyFieldMask);
    }

    // The textures first: making one changes what is bound.
    const Targets targets = sortTextures();
    for(const TextureChunkPtr &texture : targets.colors)
        win->validateGLObject(texture->getGLId());
    if(targets.depth != NullFC)
        win->validateGLObject(targets.depth->getGLId());
    else
        win->validateGLObject(_depthBufferId);
    win->validateGLObject(_framebufferId);

    GLint outerFramebuffer = 0;
    GLint outerViewport[4] = {};
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &outerFramebuffer);
    glGetIntegerv(GL_VIEWPORT, outerViewport);
    const GLboolean outerScissor = glIsEnabled(GL_SCISSOR_TEST);

    gl.bindFramebuffer(GL_FRAMEBUFFER, win->getGLObjectId(_framebufferId));
    attach(win, gl, targets);
    if(reportStatus(gl.checkStatus(GL_FRAMEBUFFER)))
    {
        _inPass = true;
        action->setWindow(win);
        renderTrees(action);
        _inPass = false;
        if(getReadBuffer())
            readBack(targets);
    }
    gl.bindFramebuffer(GL_FRAMEBUFFER, GLuint(outerFramebuffer));

    glViewport(outerViewport[0], outerViewport[1], outerViewport[2], outerViewport[3]);
    if(outerScissor == GL_TRUE)
        glEnable(GL_SCISSOR_TEST);
    for(const TextureChunkPtr &texture : targets.colors)
    {
        if(!hasMipmapFilter(texture))
            continue;
        const GLenum target = targetOf(texture);
        glBindTexture(target, win->getGLObjectId(texture->getGLId()));
        gl.generateMipmap(target);
        glBindTexture(target, 0);
    }
}

FBOViewport::Targets FBOViewport::sortTextures()
{
    Targets targets;
    for(const TextureChunkPtr &texture : _mfTextures)
    {
        if(texture == NullFC)
            continue;
        if(!isDepthFormat(texture->getInternalFormat()) && !isDepthFormat(texture->getExternalFormat()))
            targets.colors.push_back(texture);
        else if(getGenerateDepthmaps())
            targets.depth = texture;
    }
    GLint limit = 1;
    if(targets.colors.size() > 1)
        glGetIntegerv(GL_MAX_COLOR_ATTACHMENTS, &limit);
    if(targets.colors.size() > std::size_t(limit))
        targets.colors.resize(std::size_t(limit));
    return targets;
}

void FBOViewport::attach(Window *win, const Functions &gl, const Targets &targets)
{
    const auto attachTexture = [&](const TextureChunkPtr &texture, GLenum attachment) {
        const GLenum target = targetOf(texture);
        const GLuint name = win->getGLObjectId(texture->getGLId());
        if(target == GL_TEXTURE_3D)
            gl.attachTexture3D(GL_FRAMEBUFFER, attachment, target, name, 0, 0);
        else
            gl.attachTexture2D(GL_FRAMEBUFFER, attachment, target, name, 0);
    };

    std::vector<GLenum> buffers;
    for(const TextureChunkPtr &texture : targets.colors)
    {
        buffers.push_back(GL_COLOR_ATTACHMENT0 + GLenum(buffers.size()));
        attachTexture(texture, buffers.back());
    }
    if(targets.depth != NullFC)
        attachTexture(targets.depth, GL_DEPTH_ATTACHMENT);
    else
        gl.attachRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER,
                              win->getGLObjectId(_depthBufferId));

    if(buffers.size() > 1 && gl.drawBuffers != nullptr)
    {
        gl.drawBuffers(GLsizei(buffers.size()), buffers.data());
    }
    else
    {
        if(buffers.size() > 1 && !_warnedNoDrawBuffers)
        {
            FWARNING(("FBOViewport::render: no GL_ARB_draw_buffers, only the first texture is drawn to\n"));
            _warnedNoDrawBuffers = true;
        }
        glDrawBuffer(buffers.empty() ? GL_NONE : buffers[0]);
    }
    glReadBuffer(buffers.empty() ? GL_NONE : buffers[0]);
}

bool FBOViewport::reportStatus(UInt32 status)
{
    // Said once, until it changes.
    if(status != GL_FRAMEBUFFER_COMPLETE)
        osgGlCheckError("OSGFBOViewport", "attachments");
    if(status != _lastStatus && status != GL_FRAMEBUFFER_COMPLETE)
        FWARNING(("FBOViewport::render: the framebuffer of %d x %d pixels is not complete: %s (0x%x)\n",
                  getStorageWidth(), getStorageHeight(), getStatusText(status), status));
    _lastStatus = status;
    return status == GL_FRAMEBUFFER_COMPLETE;
}

void FBOViewport::renderTrees(RenderActionBase *action)
{
    // Nodes that are left out get a mask that meets no other; nobody else hears of it.
    std::vector<UInt32> masks;
    for(const NodePtr &node : _mfExcludeNodes)
    {
        masks.push_back(node != NullFC ? node->getTravMask() : 0);
        if(node != NullFC)
            node->setTravMask(0);
    }

    prepare(action);
    activate();
    if(_mfRenderNodes.empty())
    {
        action->apply(getRoot());
    }
    else
    {
        for(const NodePtr &node : _mfRenderNodes)
        {
            if(node == NullFC)
                continue;
            action->apply(node);
            // Only the first clears.
            action->setBackground(nullptr);
        }
    }
    drawForegrounds(action);
    deactivate();

    // In reverse, for the sake of nodes that are on the list twice.
    for(std::size_t i = masks.size(); i-- > 0;)
    {
        const NodePtr &node = _mfExcludeNodes[UInt32(i)];
        if(node != NullFC)
            node->setTravMask(masks[i]);
    }
}

void FBOViewport::readBack(const Targets &targets)
{
    GLint alignment = 4;
    glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    for(std::size_t i = 0; i < targets.colors.size(); ++i)
    {
        const ImagePtr image = targets.colors[i]->getImage();
        if(image == NullFC || image->getWidth() != getStorageWidth() ||
           image->getHeight() != getStorageHeight())
            continue;
        UInt8 *const pixels = image->editData();
        if(pixels == nullptr)
            continue;
        glReadBuffer(GL_COLOR_ATTACHMENT0 + GLenum(i));
        glReadPixels(0, 0, getStorageWidth(), getStorageHeight(), image->getPixelFormat(),
                     GLenum(image->getDataType()), pixels);
        endEditCP(image, Image::PixelFieldMask);
    }
    glPixelStorei(GL_PACK_ALIGNMENT, alignment);
}

void FBOViewport::activate()
{
    activateSize();
}

void FBOViewport::activateSize()
{
    if(!_inPass)
    {
        Inherited::activateSize();
        return;
    }
    glDisable(GL_SCISSOR_TEST);
    glViewport(0, 0, getStorageWidth(), getStorageHeight());
}

void FBOViewport::deactivate()
{
    Inherited::deactivate();
}

const Char8 *FBOViewport::getStatusText(UInt32 status)
{
    switch(status)
    {
        case GL_FRAMEBUFFER_COMPLETE: return "GL_FRAMEBUFFER_COMPLETE";
        case GL_FRAMEBUFFER_UNDEFINED: return "GL_FRAMEBUFFER_UNDEFINED";
        case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT: return "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT";
        case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT:
            return "GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT";
        case GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS_EXT: return "GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS";
        case GL_FRAMEBUFFER_INCOMPLETE_FORMATS_EXT: return "GL_FRAMEBUFFER_INCOMPLETE_FORMATS";
        case GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER: return "GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER";
        case GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER: return "GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER";
        case GL_FRAMEBUFFER_UNSUPPORTED: return "GL_FRAMEBUFFER_UNSUPPORTED";
        case GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE: return "GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE";
        case GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS: return "GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS";
        default: return "unknown status";
    }
}

bool FBOViewport::isDepthFormat(UInt32 format)
{
    return format == GL_DEPTH_COMPONENT || format == GL_DEPTH_COMPONENT16 || format == GL_DEPTH_COMPONENT24 ||
           format == GL_DEPTH_COMPONENT32 || format == GL_DEPTH_COMPONENT32F;
}

void FBOViewport::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & ExcludeNodesFieldMask) != 0)
        _heldExcluded.follow(_mfExcludeNodes, origin);
    if((whichField & RenderNodesFieldMask) != 0)
        _heldRendered.follow(_mfRenderNodes, origin);
    if((whichField & TexturesFieldMask) != 0)
        _heldTextures.follow(_mfTextures, origin);
    if((whichField & (TexturesFieldMask | GenerateDepthmapsFieldMask)) != 0)
        Window::reinitializeGLObject(_framebufferId, 1);
    if((whichField & (StorageWidthFieldMask | StorageHeightFieldMask)) != 0)
        Window::reinitializeGLObject(_depthBufferId, 1);
    Inherited::changed(whichField, origin);
}

void FBOViewport::dump(UInt32, const BitVector) const
{
    SLOG << "Dump FBOViewport NI" << std::endl;
}

OSG_END_NAMESPACE
