/// \file
/// Grabs frames through a ring of pixel buffer objects.

#include <Tessaly/OSGPBOGrabForeground.h>

#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTextureLayout.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGWindow.h>

#include <algorithm>
#include <cstring>

OSG_BEGIN_NAMESPACE

namespace
{

constexpr UInt32 NotRegistered = 0x7FFFFFFF;

/// Pixels are read without gaps while it lives; behind that the pixel store is as it was.
class PackedRows
{
  public:
    /// \param rowLength pixels from one row in memory to the next; 0 for the width of what is read
    explicit PackedRows(Int32 rowLength)
    {
        glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
        glPixelStorei(GL_PACK_SKIP_ROWS, 0);
        glPixelStorei(GL_PACK_ROW_LENGTH, rowLength);
    }
    ~PackedRows() { glPopClientAttrib(); }
    PackedRows(const PackedRows &) = delete;
    PackedRows &operator=(const PackedRows &) = delete;
};

/// Copies what fits of `from` (rows x planes of `fromWidth` pixels) into the lower left front corner of `to`.
void copyCorner(const UInt8 *from, const Int32 (&fromSize)[3], UInt8 *to, const Int32 (&toSize)[3],
                UInt32 pixelBytes)
{
    const std::size_t fromRow = std::size_t(fromSize[0]) * pixelBytes;
    const std::size_t toRow = std::size_t(toSize[0]) * pixelBytes;
    for(Int32 z = 0; z < std::min(fromSize[2], toSize[2]); ++z)
        for(Int32 y = 0; y < std::min(fromSize[1], toSize[1]); ++y)
            std::memcpy(to + (std::size_t(z) * toSize[1] + y) * toRow,
                        from + (std::size_t(z) * fromSize[1] + y) * fromRow, std::min(fromRow, toRow));
}

} // namespace

UInt32 PBOGrabForeground::_glVBOExtension = NotRegistered;
UInt32 PBOGrabForeground::_funcGenBuffers = NotRegistered;
UInt32 PBOGrabForeground::_funcDeleteBuffers = NotRegistered;
UInt32 PBOGrabForeground::_funcBindBuffer = NotRegistered;
UInt32 PBOGrabForeground::_funcBufferData = NotRegistered;
UInt32 PBOGrabForeground::_funcBufferSubData = NotRegistered;
UInt32 PBOGrabForeground::_funcGetBufferParameteriv = NotRegistered;
UInt32 PBOGrabForeground::_funcMapBuffer = NotRegistered;
UInt32 PBOGrabForeground::_funcUnmapBuffer = NotRegistered;
UInt32 PBOGrabForeground::_glPBOExtension = NotRegistered;

struct PBOGrabForeground::Functions
{
    PFNGLGENBUFFERSARBPROC genBuffers;
    PFNGLDELETEBUFFERSARBPROC deleteBuffers;
    PFNGLBINDBUFFERARBPROC bindBuffer;
    PFNGLBUFFERDATAARBPROC bufferData;
    PFNGLMAPBUFFERARBPROC mapBuffer;
    PFNGLUNMAPBUFFERARBPROC unmapBuffer;

    explicit Functions(Window *win)
        : genBuffers(reinterpret_cast<PFNGLGENBUFFERSARBPROC>(win->getFunction(_funcGenBuffers))),
          deleteBuffers(reinterpret_cast<PFNGLDELETEBUFFERSARBPROC>(win->getFunction(_funcDeleteBuffers))),
          bindBuffer(reinterpret_cast<PFNGLBINDBUFFERARBPROC>(win->getFunction(_funcBindBuffer))),
          bufferData(reinterpret_cast<PFNGLBUFFERDATAARBPROC>(win->getFunction(_funcBufferData))),
          mapBuffer(reinterpret_cast<PFNGLMAPBUFFERARBPROC>(win->getFunction(_funcMapBuffer))),
          unmapBuffer(reinterpret_cast<PFNGLUNMAPBUFFERARBPROC>(win->getFunction(_funcUnmapBuffer)))
    {}

    bool complete() const
    {
        return genBuffers != nullptr && deleteBuffers != nullptr && bindBuffer != nullptr &&
               bufferData != nullptr && mapBuffer != nullptr && unmapBuffer != nullptr;
    }
};

/// What is grabbed, and how much of it the image takes.
struct PBOGrabForeground::Source
{
    // What the image has to be like.
    UInt32 pixelFormat = GL_RGBA;
    Int32 dataType = GL_UNSIGNED_BYTE;
    Int32 width = 2;
    Int32 height = 2;

    // Where it is. A target of GL_NONE is the frame buffer.
    GLenum target = GL_NONE;
    GLuint texture = 0;
    Int32 textureSize[3] = {0, 0, 0}; ///< as GL has it
    Int32 left = 0;
    Int32 bottom = 0;
    Int32 readWidth = 0;
    Int32 readHeight = 0;

    /// Reads to memory, or, with a pixel buffer bound, to that offset in it.
    void read(void *to) const
    {
        // GL is told luminance where an image says intensity.
        const GLenum format = textureExternalFormat(pixelFormat);
        if(target == GL_NONE)
        {
            glReadPixels(left, bottom, readWidth, readHeight, format, GLenum(dataType), to);
            return;
        }
        glBindTexture(target, texture);
        glGetTexImage(target, 0, format, GLenum(dataType), to);
        glBindTexture(target, 0);
    }
};

void PBOGrabForeground::initMethod()
{
    _glVBOExtension = Window::registerExtension("GL_ARB_vertex_buffer_object");
    _funcGenBuffers = Window::registerFunction("glGenBuffersARB", _glVBOExtension, 0xFFFF);
    _funcDeleteBuffers = Window::registerFunction("glDeleteBuffersARB", _glVBOExtension, 0xFFFF);
    _funcBindBuffer = Window::registerFunction("glBindBufferARB", _glVBOExtension, 0xFFFF);
    _funcBufferData = Window::registerFunction("glBufferDataARB", _glVBOExtension, 0xFFFF);
    _funcBufferSubData = Window::registerFunction("glBufferSubDataARB", _glVBOExtension, 0xFFFF);
    _funcGetBufferParameteriv =
        Window::registerFunction("glGetBufferParameterivARB", _glVBOExtension, 0xFFFF);
    _funcMapBuffer = Window::registerFunction("glMapBufferARB", _glVBOExtension, 0xFFFF);
    _funcUnmapBuffer = Window::registerFunction("glUnmapBufferARB", _glVBOExtension, 0xFFFF);
    _glPBOExtension = Window::registerExtension("GL_ARB_pixel_buffer_object");
}

PBOGrabForeground::PBOGrabForeground() = default;

PBOGrabForeground::PBOGrabForeground(const PBOGrabForeground &source)
    : Inherited(source), _keptSource(source._sfSourceTexture.getValue())
{}

PBOGrabForeground::~PBOGrabForeground() = default;

void PBOGrabForeground::onCreate(const PBOGrabForeground *source)
{
    Inherited::onCreate(source);
    _keptSource.adopt();
}

void PBOGrabForeground::onDestroy()
{
    _keptSource.release();
    Inherited::onDestroy();
}

void PBOGrabForeground::setSourceTexture(const TextureChunkPtr &value)
{
    _keptSource.keep(value);
    _sfSourceTexture.setValue(value);
}

Int32 PBOGrabForeground::getNextPBOIndex()
{
    return _pbos.empty() ? -1 : (_pboIndex + 1) % Int32(_pbos.size());
}

void PBOGrabForeground::incrementPBOIndex()
{
    _pboIndex = getNextPBOIndex();
}

bool PBOGrabForeground::pbosReady(Window *win, UInt32 size)
{
    if(_glPBOExtension == NotRegistered)
        return false;
    const Functions gl(win);
    if(!gl.complete())
        return false;
    const std::size_t length = std::size_t(std::max(getNumPBOs(), 0));
    if(_pbos.size() == length && _pboSize == size)
        return true;

    if(!_pbos.empty())
    {
        gl.deleteBuffers(GLsizei(_pbos.size()), _pbos.data());
        _pbos.clear();
        _pboIndex = -1;
        _pboSize = 0;
    }
    if(length == 0)
        return true;

    _pbos.resize(length);
    gl.genBuffers(GLsizei(length), _pbos.data());
    GLint bound = 0;
    for(const UInt32 name : _pbos)
    {
        gl.bindBuffer(GL_PIXEL_PACK_BUFFER_ARB, name);
        glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING_ARB, &bound);
        // Without a buffer to read to, GL would take the offset for an address.
        if(GLuint(bound) != name)
            break;
        gl.bufferData(GL_PIXEL_PACK_BUFFER_ARB, GLsizeiptrARB(size), nullptr, GL_STREAM_READ_ARB);
    }
    gl.bindBuffer(GL_PIXEL_PACK_BUFFER_ARB, 0);
    if(GLuint(bound) != _pbos.back())
    {
        while(glGetError() != GL_NO_ERROR)
            ;
        gl.deleteBuffers(GLsizei(_pbos.size()), _pbos.data());
        _pbos.clear();
        return false;
    }
    _pboIndex = 0;
    _pboSize = size;
    return true;
}

bool PBOGrabForeground::refuse(const Char8 *why)
{
    if(!_warned)
        FWARNING(("PBOGrabForeground::draw: %s\n", why));
    _warned = true;
    return false;
}

bool PBOGrabForeground::findSource(Window *win, Viewport *port, Source &source)
{
    const TextureChunkPtr texture = getSourceTexture();
    if(texture == NullFC)
    {
        source.left = port->getPixelLeft();
        source.bottom = port->getPixelBottom();
        source.width = std::max(port->getPixelWidth(), 2);
        source.height = std::max(port->getPixelHeight(), 2);
        return true;
    }

    const ImagePtr image = texture->getImage();
    if(image == NullFC)
        return refuse("the source texture has no image");
    if(image->hasCompressedData())
        return refuse("a compressed texture can't be grabbed");
    source.pixelFormat = image->getPixelFormat();
    source.dataType = image->getDataType();
    source.width = std::max(image->getWidth(), 2);
    source.height = std::max(image->getHeight(), 2);
    source.target = texture->getTarget();
    if(source.target == GL_NONE)
        source.target = image->getDepth() > 1 ? GL_TEXTURE_3D : GL_TEXTURE_2D;

    // What has not been drawn in this window yet is brought there.
    if(win->getGLObjectId(texture->getGLId()) == 0)
        win->validateGLObject(texture->getGLId());
    source.texture = win->getGLObjectId(texture->getGLId());
    // GL knows a texture by the kind that it was made as.
    if(source.texture == 0 || textureDimensions(source.target) < 2 ||
       texture->effectiveTarget() != source.target)
        return refuse("a texture of this kind can't be grabbed");
    glBindTexture(source.target, source.texture);
    glGetTexLevelParameteriv(source.target, 0, GL_TEXTURE_WIDTH, &source.textureSize[0]);
    glGetTexLevelParameteriv(source.target, 0, GL_TEXTURE_HEIGHT, &source.textureSize[1]);
    glGetTexLevelParameteriv(source.target, 0, GL_TEXTURE_DEPTH, &source.textureSize[2]);
    glBindTexture(source.target, 0);
    if(source.textureSize[0] < 1 || source.textureSize[1] < 1 || source.textureSize[2] < 1)
        return refuse("the source texture has no pixels in this window");
    return true;
}

bool PBOGrabForeground::fitImage(const Source &source)
{
    const ImagePtr image = getImage();
    const bool hasSize = image->getWidth() == source.width && image->getHeight() == source.height;
    if(image->getWidth() >= 2 && image->getHeight() >= 2 && (!getAutoResize() || hasSize) &&
       image->getPixelFormat() == source.pixelFormat && image->getDataType() == source.dataType)
        return true;
    // A fresh image has no depth yet.
    if(!image->set(source.pixelFormat, source.width, source.height, std::max(image->getDepth(), 1),
                   std::max(image->getMipMapCount(), 1), std::max(image->getFrameCount(), 1),
                   image->getFrameDelay(), nullptr, source.dataType, true,
                   std::max(image->getSideCount(), 1)))
        return false;
    // Other aspects need the form too; the pixels follow at the end.
    endEditCP(image, FieldBits::AllFields & ~BitVector(Image::PixelFieldMask), 1);
    return true;
}

void PBOGrabForeground::readPart(const Source &source)
{
    const ImagePtr image = getImage();
    UInt8 *const pixels = image->editData(0, 0, 0);
    if(pixels == nullptr)
        return;
    const UInt32 pixelBytes = UInt32(image->getBpp());
    std::vector<UInt8> whole(std::size_t(source.textureSize[0]) * source.textureSize[1] *
                             source.textureSize[2] * pixelBytes);
    {
        const PackedRows packed(0);
        source.read(whole.data());
    }
    const Int32 imageSize[3] = {image->getWidth(), image->getHeight(), image->getDepth()};
    copyCorner(whole.data(), source.textureSize, pixels, imageSize, pixelBytes);
}

void PBOGrabForeground::readThroughRing(Window *win, const Source &source, UInt32 size)
{
    const Functions gl(win);
    const ImagePtr image = getImage();
    gl.bindBuffer(GL_PIXEL_PACK_BUFFER_ARB, _pbos[std::size_t(_pboIndex)]);
    source.read(nullptr);

    gl.bindBuffer(GL_PIXEL_PACK_BUFFER_ARB, _pbos[std::size_t(getNextPBOIndex())]);
    const void *const mapped = gl.mapBuffer(GL_PIXEL_PACK_BUFFER_ARB, GL_READ_ONLY_ARB);
    if(mapped != nullptr)
    {
        // The buffer holds one picture; an image of several levels, frames or sides gets it as its first.
        if(image->getSize() == size)
            image->setData(static_cast<const UInt8 *>(mapped));
        else if(UInt8 *const pixels = image->editData(0, 0, 0))
            std::memcpy(pixels, mapped, size);
        gl.unmapBuffer(GL_PIXEL_PACK_BUFFER_ARB);
    }
    gl.bindBuffer(GL_PIXEL_PACK_BUFFER_ARB, 0);
    incrementPBOIndex();
}

void PBOGrabForeground::draw(DrawActionBase *action, Viewport *port)
{
    const ImagePtr image = getImage();
    if(!getActive() || image == NullFC)
        return;
    Window *const win = action != nullptr ? action->getWindow() : nullptr;
    if(win == nullptr || port == nullptr)
    {
        refuse("no window or no viewport");
        return;
    }
    Source source;
    if(!findSource(win, port, source) || !fitImage(source))
        return;

    source.readWidth = std::min(image->getWidth(), source.width);
    source.readHeight = std::min(image->getHeight(), source.height);
    const UInt64 wideSize = image->getSize(false, false, false);
    const UInt32 size = UInt32(wideSize);
    if(wideSize != size || size == 0)
        return;

    // GL always hands over the whole of a texture.
    const Int32(&texture)[3] = source.textureSize;
    const bool isPart = source.target != GL_NONE &&
                        (source.readWidth != source.width ||
                         UInt64(texture[0]) * texture[1] * texture[2] * UInt64(image->getBpp()) > size);
    if(isPart)
    {
        readPart(source);
    }
    else
    {
        // An image that is wider than the source gets the source's rows one behind the other, as is meant.
        const PackedRows packed(source.readWidth != source.width ? source.readWidth : 0);
        if(pbosReady(win, size) && !_pbos.empty())
            readThroughRing(win, source, size);
        else if(UInt8 *const pixels = image->editData(0, 0, 0))
            source.read(pixels);
    }
    endEditCP(image, Image::PixelFieldMask, 1);
}

void PBOGrabForeground::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & SourceTextureFieldMask) != 0)
        _keptSource.follow(_sfSourceTexture.getValue(), origin);
    if((whichField & (SourceTextureFieldMask | ImageFieldMask)) != 0)
        _warned = false;
    Inherited::changed(whichField, origin);
}

void PBOGrabForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PBOGrabForeground NI" << std::endl;
}

OSG_END_NAMESPACE
