#include "ImageAccess.h"

#include <algorithm>
#include <cstring>

using namespace osg;

namespace tessaly
{

Sides sidesOf(const ImagePtr &image)
{
    if(image == NullFC)
        return {0, 0, 0};
    const auto side = [](Int32 value) { return std::uint32_t(std::max(value, 0)); };
    return {side(image->getWidth()), side(image->getHeight()), side(image->getDepth())};
}

std::size_t bytesOf(const ImagePtr &image)
{
    return image == NullFC || image->getData() == nullptr ? 0 : image->getPixel().size();
}

ImagePtr makeImage(UInt32 pixelFormat, const Sides &sides, Int32 dataType)
{
    ImagePtr image = ImageBase::create();
    beginEditCP(image);
    const bool made = image->set(pixelFormat, Int32(sides[0]), Int32(sides[1]), Int32(sides[2]), 1, 1, 0.0,
                                 nullptr, dataType, true, 1);
    if(!made)
    {
        addRefCP(image);
        clearRefCP(image);
        return NullFC;
    }
    std::memset(image->getData(), 0, bytesOf(image));
    endEditCP(image);
    return image;
}

void provideTexture(TextureChunkPtr &texture)
{
    if(texture != NullFC)
        return;
    texture = TextureChunkBase::create();
    addRefCP(texture);
}

void setSampling(const TextureChunkPtr &texture, UInt32 wrap, UInt32 filter)
{
    texture->setWrapS(wrap);
    texture->setWrapT(wrap);
    texture->setWrapR(wrap);
    texture->setMinFilter(filter);
    texture->setMagFilter(filter);
}

} // namespace tessaly
