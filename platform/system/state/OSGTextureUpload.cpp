#include "OSGTextureUpload.h"

#include <algorithm>

#include "OSGLog.h"
#include "OSGTextureFunctions.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// Tightly packed pixels for as long as it lives.
class UnpackState
{
  public:
    UnpackState()
    {
        glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
        glPixelStorei(GL_UNPACK_SWAP_BYTES, GL_FALSE);
        glPixelStorei(GL_UNPACK_LSB_FIRST, GL_FALSE);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        setRegion(0, 0, 0, 0, 0);
    }
    ~UnpackState() { glPopClientAttrib(); }
    UnpackState(const UnpackState &) = delete;
    UnpackState &operator=(const UnpackState &) = delete;

    void setRegion(GLint rowLength, GLint imageHeight, GLint skipPixels, GLint skipRows, GLint skipImages)
    {
        glPixelStorei(GL_UNPACK_ROW_LENGTH, rowLength);
        glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, imageHeight);
        glPixelStorei(GL_UNPACK_SKIP_PIXELS, skipPixels);
        glPixelStorei(GL_UNPACK_SKIP_ROWS, skipRows);
        glPixelStorei(GL_UNPACK_SKIP_IMAGES, skipImages);
    }
};

GLenum bindingOf(GLenum target)
{
    switch(target)
    {
    case GL_TEXTURE_1D:
        return GL_TEXTURE_BINDING_1D;
    case GL_TEXTURE_3D:
        return GL_TEXTURE_BINDING_3D;
    case GL_TEXTURE_RECTANGLE:
        return GL_TEXTURE_BINDING_RECTANGLE;
    default:
        return GL_TEXTURE_BINDING_2D;
    }
}

GLenum proxyOf(GLenum target)
{
    switch(target)
    {
    case GL_TEXTURE_1D:
        return GL_PROXY_TEXTURE_1D;
    case GL_TEXTURE_3D:
        return GL_PROXY_TEXTURE_3D;
    case GL_TEXTURE_RECTANGLE:
        return GL_PROXY_TEXTURE_RECTANGLE;
    default:
        return GL_PROXY_TEXTURE_2D;
    }
}

/// One level, of a texture or of its proxy.
void specifyLevel(const TextureFunctions &gl, GLenum target, UInt32 dimensions, GLint level,
                  const UInt32 size[3], const TextureStorage &storage, const UInt8 *data)
{
    const GLint internalFormat = GLint(storage.internalFormat);
    const GLsizei width = GLsizei(size[0]);
    const GLsizei height = GLsizei(size[1]);
    if(dimensions == 1)
        glTexImage1D(target, level, internalFormat, width, 0, storage.format, storage.type, data);
    else if(dimensions == 2)
        glTexImage2D(target, level, internalFormat, width, height, 0, storage.format, storage.type, data);
    else
        gl.texImage3D(target, level, internalFormat, width, height, GLsizei(size[2]), 0, storage.format,
                      storage.type, data);
}

/// Whether GL takes a texture of that form; the question leaves nothing behind.
bool fits(const TextureFunctions &gl, GLenum target, UInt32 dimensions, const TextureStorage &storage)
{
    const GLenum proxy = proxyOf(target);
    specifyLevel(gl, proxy, dimensions, 0, storage.size, storage, nullptr);
    GLint width = 0;
    glGetTexLevelParameteriv(proxy, 0, GL_TEXTURE_WIDTH, &width);
    return glGetError() == GL_NO_ERROR && width == GLint(storage.size[0]);
}

std::string sizeText(const UInt32 size[3])
{
    return std::to_string(size[0]) + " x " + std::to_string(size[1]) + " x " + std::to_string(size[2]);
}

/// The form of a source in a texture of a kind, without regard to powers of two.
TextureStorage plainStorage(GLenum target, const TextureSource &source)
{
    const ImagePtr image = source.image;
    TextureStorage storage;
    const UInt32 dimensions = textureDimensions(target);
    const Int32 size[3] = {image->getWidth(), dimensions > 1 ? image->getHeight() : 1,
                           dimensions > 2 ? image->getDepth() : 1};
    for(int i = 0; i < 3; ++i)
        storage.size[i] = storage.used[i] = UInt32(std::max(size[i], 0));
    storage.type = GLenum(image->getDataType());
    storage.format = source.externalFormat != GL_NONE ? source.externalFormat
                                                      : textureExternalFormat(image->getPixelFormat());
    storage.internalFormat = source.internalFormat != GL_NONE
                                 ? source.internalFormat
                                 : textureInternalFormat(image->getPixelFormat(), storage.type);
    return storage;
}

bool isPowerOf2(const UInt32 size[3])
{
    return std::all_of(size, size + 3, [](UInt32 side) { return side == nextPowerOf2(side); });
}

/// Lowers the last level that is read to what the image has, or raises it to what GL has at first.
void setLastLevel(GLenum target, UInt32 levels)
{
    glTexParameteri(target, GL_TEXTURE_MAX_LEVEL, levels > 1 ? GLint(levels) - 1 : 1000);
}

bool transferCompressed(const TextureFunctions &gl, GLenum target, const TextureSource &source,
                        TextureStorage &storage)
{
    const ImagePtr image = source.image;
    if(target != GL_TEXTURE_2D || gl.compressedTexImage2D == nullptr || !gl.hasS3TC)
    {
        SWARNING << "TextureChunk: this window's GL can't take an image of " << sizeText(storage.size)
                 << " with the compressed format " << image->getPixelFormat() << std::endl;
        return false;
    }
    storage.internalFormat = image->getPixelFormat();
    storage.levels = UInt32(std::max(image->getMipMapCount(), 1));
    const UnpackState unpack;
    for(UInt32 level = 0; level < storage.levels; ++level)
    {
        UInt32 size[3];
        image->calcMipmapGeometry(level, size[0], size[1], size[2]);
        gl.compressedTexImage2D(target, GLint(level), storage.internalFormat, GLsizei(size[0]),
                                GLsizei(size[1]), 0, GLsizei(image->calcMipmapLevelSize(level)),
                                image->getData(level, source.frame));
    }
    setLastLevel(target, storage.levels);
    return true;
}

} // namespace

TextureBinding::TextureBinding(GLenum target, UInt32 name) : _target(target)
{
    glGetIntegerv(bindingOf(target), &_before);
    glBindTexture(target, name);
}

TextureBinding::~TextureBinding()
{
    glBindTexture(_target, GLuint(_before));
}

bool transferTexture(const TextureFunctions &gl, GLenum target, const TextureSource &source,
                     TextureStorage &storage)
{
    const ImagePtr image = source.image;
    storage = plainStorage(target, source);
    if(storage.size[0] == 0 || storage.size[1] == 0 || storage.size[2] == 0)
        return false;
    const UInt32 dimensions = textureDimensions(target);
    if((dimensions == 3 && gl.texImage3D == nullptr) || (target == GL_TEXTURE_RECTANGLE && !gl.hasRectangle))
    {
        SWARNING << "TextureChunk: this window's GL has no textures of the kind " << target << std::endl;
        return false;
    }
    if(image->hasCompressedData())
        return transferCompressed(gl, target, source, storage);

    // Without textures of any size, the pixels go into the next powers of two, scaled or padded.
    TextureSource fitted = source;
    const UInt8 *data = image->getData(0, source.frame);
    std::vector<UInt8> padded;
    const bool adapt = !gl.hasNonPowerOf2 && target != GL_TEXTURE_RECTANGLE && !isPowerOf2(storage.size);
    if(adapt)
    {
        for(UInt32 &side : storage.size)
            side = nextPowerOf2(side);
        if(source.scale)
        {
            std::copy(storage.size, storage.size + 3, storage.used);
            if(data != nullptr)
            {
                fitted.image = Image::create();
                image->scale(Int32(storage.size[0]), Int32(storage.size[1]), Int32(storage.size[2]),
                             fitted.image);
                data = fitted.image->getData(0, source.frame);
            }
        }
        else if(data != nullptr)
        {
            padPixels(data, storage.used, UInt32(image->getBpp()), storage.size, padded);
            data = padded.data();
        }
    }

    bool done = fits(gl, target, dimensions, storage);
    if(done)
    {
        const UnpackState unpack;
        const bool ownLevels = !adapt && data != nullptr && target != GL_TEXTURE_RECTANGLE;
        storage.levels = ownLevels ? UInt32(std::max(image->getMipMapCount(), 1)) : 1;
        for(UInt32 level = 0; level < storage.levels; ++level)
        {
            UInt32 size[3] = {storage.size[0], storage.size[1], storage.size[2]};
            if(level > 0)
            {
                image->calcMipmapGeometry(level, size[0], size[1], size[2]);
                data = image->getData(level, source.frame);
            }
            specifyLevel(gl, target, dimensions, GLint(level), size, storage, data);
        }
        if(target != GL_TEXTURE_RECTANGLE)
            setLastLevel(target, storage.levels);
        done = glGetError() == GL_NO_ERROR;
    }
    if(!done)
        SWARNING << "TextureChunk: this window's GL can't take a texture of " << sizeText(storage.size)
                 << " with internal format " << storage.internalFormat << ", format " << storage.format
                 << " and type " << storage.type << std::endl;
    if(fitted.image != image)
    {
        addRefCP(fitted.image);
        subRefCP(fitted.image);
    }
    return done;
}

bool transferTextureBlock(const TextureFunctions &gl, GLenum target, const TextureSource &source,
                          TextureBlock &block, const TextureStorage &storage)
{
    const ImagePtr image = source.image;
    const TextureStorage now = plainStorage(target, source);
    if(image->hasCompressedData() || storage.levels > 1 || image->getMipMapCount() > 1 ||
       !std::equal(now.size, now.size + 3, storage.size) || now.internalFormat != storage.internalFormat ||
       now.format != storage.format || now.type != storage.type)
        return false;
    const UInt8 *const data = image->getData(0, source.frame);
    if(data == nullptr)
        return false;
    if(!clipBlock(block, storage.size))
        return true;

    UnpackState unpack;
    unpack.setRegion(GLint(storage.size[0]), GLint(storage.size[1]), block.first[0], block.first[1],
                     block.first[2]);
    const GLsizei width = block.last[0] - block.first[0] + 1;
    const GLsizei height = block.last[1] - block.first[1] + 1;
    const GLsizei depth = block.last[2] - block.first[2] + 1;
    const UInt32 dimensions = textureDimensions(target);
    if(dimensions == 1)
        glTexSubImage1D(target, 0, block.first[0], width, storage.format, storage.type, data);
    else if(dimensions == 2)
        glTexSubImage2D(target, 0, block.first[0], block.first[1], width, height, storage.format,
                        storage.type, data);
    else
        gl.texSubImage3D(target, 0, block.first[0], block.first[1], block.first[2], width, height, depth,
                         storage.format, storage.type, data);
    return true;
}

bool makeTextureMipmaps(const TextureFunctions &gl, GLenum target)
{
    if(gl.generateMipmap == nullptr || target == GL_TEXTURE_RECTANGLE)
        return false;
    gl.generateMipmap(target);
    return true;
}

void sendTextureSettings(const TextureFunctions &gl, GLenum target, const TextureSettings &settings,
                         const TextureStorage &storage, bool hasMipmaps)
{
    GLenum minFilter = settings.minFilter;
    if(!hasMipmaps && filterNeedsMipmaps(minFilter))
        minFilter = minFilter == GL_NEAREST_MIPMAP_NEAREST || minFilter == GL_NEAREST_MIPMAP_LINEAR
                        ? GL_NEAREST
                        : GL_LINEAR;
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GLint(minFilter));
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GLint(settings.magFilter));

    static const GLenum wrapNames[3] = {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R};
    const UInt32 dimensions = textureDimensions(target);
    for(UInt32 i = 0; i < dimensions; ++i)
    {
        GLenum wrap = settings.wrap[i];
        // Rectangles can't repeat.
        if(target == GL_TEXTURE_RECTANGLE && (wrap == GL_REPEAT || wrap == GL_MIRRORED_REPEAT))
            wrap = GL_CLAMP_TO_EDGE;
        glTexParameteri(target, wrapNames[i], GLint(wrap));
    }
    glTexParameterf(target, GL_TEXTURE_PRIORITY, settings.priority);
    glTexParameterfv(target, GL_TEXTURE_BORDER_COLOR, settings.borderColor);
    if(gl.hasAnisotropy && target != GL_TEXTURE_RECTANGLE)
        glTexParameterf(target, GL_TEXTURE_MAX_ANISOTROPY_EXT, std::max(settings.anisotropy, 1.f));
    if(isDepthFormat(storage.internalFormat) && gl.hasShadow)
    {
        glTexParameteri(target, GL_TEXTURE_COMPARE_MODE, GLint(settings.compareMode));
        glTexParameteri(target, GL_TEXTURE_COMPARE_FUNC, GLint(settings.compareFunc));
        glTexParameteri(target, GL_DEPTH_TEXTURE_MODE, GLint(settings.depthMode));
    }
}

void loadTextureMatrix(const Matrix &matrix)
{
    GLint mode = GL_MODELVIEW;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    glMatrixMode(GL_TEXTURE);
    glLoadMatrixf(matrix.getValues());
    glMatrixMode(GLenum(mode));
}

OSG_END_NAMESPACE
