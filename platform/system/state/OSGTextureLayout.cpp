#include "OSGTextureLayout.h"

#include <algorithm>
#include <cstring>

OSG_BEGIN_NAMESPACE

namespace
{

/// The internal formats of one pixel format: for bytes, for longer integers, for halves, and for floats.
struct FormatRow
{
    GLenum pixelFormat;
    GLenum bits8;
    GLenum bits16;
    GLenum half;
    GLenum single;
};

const FormatRow formatRows[] = {
    {GL_ALPHA, GL_ALPHA8, GL_ALPHA16, GL_ALPHA16F_ARB, GL_ALPHA32F_ARB},
    {GL_LUMINANCE, GL_LUMINANCE8, GL_LUMINANCE16, GL_LUMINANCE16F_ARB, GL_LUMINANCE32F_ARB},
    {GL_INTENSITY, GL_INTENSITY8, GL_INTENSITY16, GL_INTENSITY16F_ARB, GL_INTENSITY32F_ARB},
    {GL_LUMINANCE_ALPHA, GL_LUMINANCE8_ALPHA8, GL_LUMINANCE16_ALPHA16, GL_LUMINANCE_ALPHA16F_ARB,
     GL_LUMINANCE_ALPHA32F_ARB},
    {GL_RGB, GL_RGB8, GL_RGB16, GL_RGB16F_ARB, GL_RGB32F_ARB},
    {GL_BGR, GL_RGB8, GL_RGB16, GL_RGB16F_ARB, GL_RGB32F_ARB},
    {GL_RGBA, GL_RGBA8, GL_RGBA16, GL_RGBA16F_ARB, GL_RGBA32F_ARB},
    {GL_BGRA, GL_RGBA8, GL_RGBA16, GL_RGBA16F_ARB, GL_RGBA32F_ARB},
    {GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT24,
     GL_DEPTH_COMPONENT24},
    {GL_DEPTH_STENCIL, GL_DEPTH24_STENCIL8, GL_DEPTH24_STENCIL8, GL_DEPTH24_STENCIL8, GL_DEPTH24_STENCIL8},
};

} // namespace

GLenum textureTarget(Int32 width, Int32 height, Int32 depth)
{
    if(width < 1 || height < 1 || depth < 1)
        return GL_NONE;
    if(depth > 1)
        return GL_TEXTURE_3D;
    return height > 1 ? GL_TEXTURE_2D : GL_TEXTURE_1D;
}

UInt32 textureDimensions(GLenum target)
{
    switch(target)
    {
    case GL_TEXTURE_1D:
        return 1;
    case GL_TEXTURE_2D:
    case GL_TEXTURE_RECTANGLE:
        return 2;
    case GL_TEXTURE_3D:
        return 3;
    default:
        return 0;
    }
}

GLenum textureInternalFormat(GLenum pixelFormat, GLenum dataType)
{
    for(const FormatRow &row : formatRows)
    {
        if(row.pixelFormat != pixelFormat)
            continue;
        if(dataType == GL_UNSIGNED_BYTE)
            return row.bits8;
        if(dataType == GL_HALF_FLOAT)
            return row.half;
        return dataType == GL_FLOAT ? row.single : row.bits16;
    }
    return GL_NONE;
}

GLenum textureExternalFormat(GLenum pixelFormat)
{
    return pixelFormat == GL_INTENSITY ? GLenum(GL_LUMINANCE) : pixelFormat;
}

bool filterNeedsMipmaps(GLenum minFilter)
{
    return minFilter >= GL_NEAREST_MIPMAP_NEAREST && minFilter <= GL_LINEAR_MIPMAP_LINEAR;
}

bool isDepthFormat(GLenum internalFormat)
{
    switch(internalFormat)
    {
    case GL_DEPTH_COMPONENT:
    case GL_DEPTH_COMPONENT16:
    case GL_DEPTH_COMPONENT24:
    case GL_DEPTH_COMPONENT32:
    case GL_DEPTH_COMPONENT32F:
    case GL_DEPTH_STENCIL:
    case GL_DEPTH24_STENCIL8:
    case GL_DEPTH32F_STENCIL8:
        return true;
    default:
        return false;
    }
}

UInt32 nextPowerOf2(UInt32 size)
{
    UInt32 power = 1;
    while(power < size && power < 0x80000000u)
        power *= 2;
    return power;
}

TextureBlock joinBlocks(const TextureBlock &a, const TextureBlock &b)
{
    TextureBlock result;
    result.whole = a.whole || b.whole;
    for(int i = 0; i < 3; ++i)
    {
        result.first[i] = std::min(a.first[i], b.first[i]);
        result.last[i] = a.last[i] < 0 || b.last[i] < 0 ? -1 : std::max(a.last[i], b.last[i]);
    }
    return result;
}

bool clipBlock(TextureBlock &block, const UInt32 size[3])
{
    bool covers = true;
    for(int i = 0; i < 3; ++i)
    {
        const Int32 end = Int32(size[i]) - 1;
        block.first[i] = block.whole ? 0 : std::max(block.first[i], 0);
        block.last[i] = block.whole || block.last[i] < 0 ? end : std::min(block.last[i], end);
        if(block.first[i] > block.last[i])
            return false;
        covers = covers && block.first[i] == 0 && block.last[i] == end;
    }
    block.whole = covers;
    return true;
}

void padPixels(const UInt8 *source, const UInt32 size[3], UInt32 pixelSize, const UInt32 paddedSize[3],
               std::vector<UInt8> &padded)
{
    const std::size_t row = std::size_t(size[0]) * pixelSize;
    const std::size_t paddedRow = std::size_t(paddedSize[0]) * pixelSize;
    padded.resize(paddedRow * paddedSize[1] * paddedSize[2]);
    if(row == 0 || padded.empty())
        return;
    UInt8 *to = padded.data();
    for(UInt32 z = 0; z < paddedSize[2]; ++z)
    {
        const std::size_t plane = std::size_t(std::min(z, size[2] - 1)) * size[1];
        for(UInt32 y = 0; y < paddedSize[1]; ++y, to += paddedRow)
        {
            const UInt8 *const from = source + (plane + std::min(y, size[1] - 1)) * row;
            std::memcpy(to, from, row);
            for(std::size_t x = row; x < paddedRow; x += pixelSize)
                std::memcpy(to + x, from + row - pixelSize, pixelSize);
        }
    }
}

OSG_END_NAMESPACE
