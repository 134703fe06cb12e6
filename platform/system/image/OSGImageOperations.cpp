/// \file
/// The operations of Image that make other pixels: shells around the passes over plain arrays.

#include <cstring>

#include "ImageForm.h"

OSG_BEGIN_NAMESPACE

namespace
{

UInt32 nextPower2(UInt32 side)
{
    UInt32 power = 1;
    while(power < side)
        power *= 2;
    return power;
}

} // namespace

bool Image::deliver(const Form &form, std::vector<UInt8> &pixels, ImagePtr destination)
{
    Image &target = destination == NullFC ? *this : *destination;
    target.editMFPixel()->getValues().swap(pixels);
    target.setForm(form);
    return true;
}

bool Image::scale(Int32 width, Int32 height, Int32 depth, ImagePtr destination)
{
    const Form from = getForm();
    Form to = from;
    to.width = width;
    to.height = height;
    to.depth = depth;
    to.levels = std::min(from.levels, Int32(std::max(to.fullLevelCount(), 1u)));
    if(!isValid() || from.pixelBytes() == 0 || !to.isPossible())
    {
        FWARNING(
            ("Image::scale: can't scale %s to %d x %d x %d\n", from.text().c_str(), width, height, depth));
        return false;
    }
    std::vector<UInt8> pixels;
    if(!Form::makePixels(pixels, to.size(), "Image::scale"))
        return false;
    const Image &source = *this;
    to.forParts([&](UInt32 level, UInt32 frame, UInt32 side) {
        scalePixels(source.getData(level, frame, side), from.levelGeometry(level),
                    pixels.data() + to.offset(level, frame, side), to.levelGeometry(level),
                    from.pixelBytes());
    });
    return deliver(to, pixels, destination);
}

bool Image::scaleNextPower2(ImagePtr destination)
{
    const UInt32 largest = UInt32(1) << 30;
    const auto power = [largest](Int32 side) {
        return Int32(nextPower2(std::min(UInt32(std::max(side, 0)), largest)));
    };
    return scale(power(getWidth()), power(getHeight()), power(getDepth()), destination);
}

bool Image::reformat(UInt32 pixelFormat, ImagePtr destination)
{
    const Form from = getForm();
    Form to = from;
    to.pixelFormat = pixelFormat;
    std::vector<UInt8> pixels;
    const bool possible =
        isValid() && from.pixelBytes() != 0 && to.isPossible() && formatBlockBytes(pixelFormat) == 0;
    if(possible && !Form::makePixels(pixels, to.size(), "Image::reformat"))
        return false;
    if(!possible || !reformatPixels(getData(), from.pixelFormat, pixels.data(), pixelFormat, from.type,
                                    pixels.size() / to.pixelBytes()))
    {
        FWARNING(("Image::reformat: can't bring %s to format %u\n", from.text().c_str(), pixelFormat));
        return false;
    }
    return deliver(to, pixels, destination);
}

bool Image::convertDataTypeTo(Int32 type)
{
    const Form from = getForm();
    Form to = from;
    to.type = type;
    if(type == from.type)
        return true;
    std::vector<UInt8> pixels;
    const bool possible = isValid() && from.pixelBytes() != 0 && to.isPossible();
    if(possible && !Form::makePixels(pixels, to.size(), "Image::convertDataTypeTo"))
        return false;
    if(!possible ||
       !convertPixelType(getData(), from.type, pixels.data(), type, pixels.size() / typeBytes(type)))
    {
        FWARNING(("Image::convertDataTypeTo: can't bring %s to type %d\n", from.text().c_str(), type));
        return false;
    }
    return deliver(to, pixels, NullFC);
}

bool Image::createMipmap(Int32 levels, ImagePtr destination)
{
    const Form from = getForm();
    Form to = from;
    to.levels = levels > 0 ? std::min(levels, Int32(from.fullLevelCount())) : Int32(from.fullLevelCount());
    std::vector<UInt8> pixels;
    const bool possible = isValid() && from.pixelBytes() != 0 && to.isPossible() && levels >= 0;
    if(possible && !Form::makePixels(pixels, to.size(), "Image::createMipmap"))
        return false;
    bool done = possible;
    const Image &source = *this;
    if(possible)
        to.forParts([&](UInt32 level, UInt32 frame, UInt32 side) {
            UInt8 *target = pixels.data() + to.offset(level, frame, side);
            if(level == 0)
                std::memcpy(target, source.getData(0, frame, side), std::size_t(to.levelSize(0)));
            else
                done = halvePixels(pixels.data() + to.offset(level - 1, frame, side),
                                   to.levelGeometry(level - 1), target, getComponentCount(), to.type) &&
                       done;
        });
    if(!done)
    {
        FWARNING(("Image::createMipmap: can't make %d levels of %s\n", levels, from.text().c_str()));
        return false;
    }
    return deliver(to, pixels, destination);
}

bool Image::subImage(Int32 offX, Int32 offY, Int32 offZ, Int32 width, Int32 height, Int32 depth,
                     ImagePtr destination)
{
    const Form from = getForm();
    Form to = from;
    to.width = width;
    to.height = height;
    to.depth = depth;
    to.levels = to.frames = to.sides = 1;
    if(!isValid() || from.pixelBytes() == 0 || !from.contains(offX, offY, offZ, width, height, depth))
    {
        FWARNING(("Image::subImage: no block of %d x %d x %d at %d, %d, %d in %s\n", width, height, depth,
                  offX, offY, offZ, from.text().c_str()));
        return false;
    }
    std::vector<UInt8> pixels;
    if(!Form::makePixels(pixels, to.size(), "Image::subImage"))
        return false;
    const std::size_t row = std::size_t(width) * from.pixelBytes();
    UInt8 *target = pixels.data();
    for(Int32 z = offZ; z < offZ + depth; ++z)
        for(Int32 y = offY; y < offY + height; ++y, target += row)
        {
            const std::size_t line = std::size_t(z) * std::size_t(from.height) + std::size_t(y);
            std::memcpy(target,
                        getData() + (line * std::size_t(from.width) + std::size_t(offX)) * from.pixelBytes(),
                        row);
        }
    return deliver(to, pixels, destination);
}

bool Image::slice(Int32 offX, Int32 offY, Int32 offZ, ImagePtr destination)
{
    if((offX >= 0) + (offY >= 0) + (offZ >= 0) != 1)
    {
        FWARNING(("Image::slice: one of the offsets %d, %d, %d must not be negative\n", offX, offY, offZ));
        return false;
    }
    const Form from = getForm();
    if(offZ >= 0)
        return subImage(0, 0, offZ, from.width, from.height, 1, destination);
    if(offY >= 0)
    {
        // The plane's rows lie one behind the other already; what was depth becomes height.
        if(!subImage(0, offY, 0, from.width, 1, from.depth, destination))
            return false;
        Image &plane = destination == NullFC ? *this : *destination;
        Form turned = plane.getForm();
        std::swap(turned.height, turned.depth);
        plane.setForm(turned);
        return true;
    }

    Image &target = destination == NullFC ? *this : *destination;
    if(!subImage(offX, 0, 0, 1, from.height, from.depth, destination))
        return false;
    // A column of the volume is one pixel wide: z and y change places.
    Form to = target.getForm();
    to.width = from.depth;
    to.depth = 1;
    const std::size_t bytes = to.pixelBytes();
    const std::size_t width = std::size_t(to.width), height = std::size_t(to.height);
    std::vector<UInt8> pixels;
    if(!Form::makePixels(pixels, to.size(), "Image::slice"))
        return false;
    const UInt8 *column = target.getData();
    for(std::size_t z = 0; z < width; ++z)
        for(std::size_t y = 0; y < height; ++y, column += bytes)
            std::memcpy(pixels.data() + (y * width + z) * bytes, column, bytes);
    return target.deliver(to, pixels, NullFC);
}

OSG_END_NAMESPACE
