#include "DXTCompressor.h"

#include <OpenSG/OSGLog.h>

#include <limits>
#include <vector>

#include "BlockEncoder.h"

using namespace osg;

namespace
{

/// The next multiple of 4, or a negative number where there is none.
Int32 roundedUp(Int32 side)
{
    const Int64 multiple = (Int64(side) + 3) / 4 * 4;
    return multiple > std::numeric_limits<Int32>::max() ? -1 : Int32(multiple);
}

bool pixelOrderOf(Image::PixelFormat pixelFormat, tessaly::PixelOrder &order)
{
    switch(pixelFormat) {
    case Image::OSG_RGB_PF:
        order = tessaly::PixelOrder::Rgb;
        return true;
    case Image::OSG_RGBA_PF:
        order = tessaly::PixelOrder::Rgba;
        return true;
    case Image::OSG_BGR_PF:
        order = tessaly::PixelOrder::Bgr;
        return true;
    case Image::OSG_BGRA_PF:
        order = tessaly::PixelOrder::Bgra;
        return true;
    default:
        return false;
    }
}

} // namespace

DXTCompressor DXTCompressor::_the;

DXTCompressor::DXTCompressor() {}

DXTCompressor::~DXTCompressor() {}

bool DXTCompressor::compressImage(ImagePtr image, CompressedFormat format) const
{
    const bool hasAlpha = image != NullFC && image->hasAlphaChannel();
    if(format == AUTO_FORMAT)
        format = hasAlpha ? DXT5_FORMAT : DXT1_FORMAT;
    UInt32 pixelFormat = Image::OSG_RGBA_DXT5;
    if(format == DXT1_FORMAT)
        pixelFormat = hasAlpha ? Image::OSG_RGBA_DXT1 : Image::OSG_RGB_DXT1;

    if(image == NullFC || image->getDepth() >= 2) {
        FWARNING(("DXTCompressor::compressImage: Invalid image. Boldly refusing to compress it.\n"));
        return false;
    }

    if(image->getWidth() % 4 != 0 || image->getHeight() % 4 != 0) {
        beginEditCP(image);
        image->scale(roundedUp(image->getWidth()), roundedUp(image->getHeight()), 1, NullFC);
        endEditCP(image);
    }
    const Int32 width = image->getWidth();
    const Int32 height = image->getHeight();
    if(width % 4 != 0 || height % 4 != 0) {
        FWARNING(("DXTCompressor::compressImage: Invalid image size (%i x %i -- must be a multiple of 4). "
                  "Boldly refusing to compress it.\n",
                  width, height));
        return false;
    }

    if(image->getDataType() != Image::OSG_UINT8_IMAGEDATA) {
        beginEditCP(image);
        image->convertDataTypeTo(Image::OSG_UINT8_IMAGEDATA);
        endEditCP(image);
    }
    if(image->getDataType() != Image::OSG_UINT8_IMAGEDATA) {
        FWARNING(("DXTCompressor::compressImage: Invalid data type (%i -- must be uint8). "
                  "Boldly refusing to compress it.\n",
                  image->getDataType()));
        return false;
    }

    // Meant: DXT3 and DXT5 are not among those that are left as they are.
    if(image->getPixelFormat() == Image::OSG_RGB_DXT1 || image->getPixelFormat() == Image::OSG_RGBA_DXT1)
        return true;
    if(image->getPixelFormat() != Image::OSG_RGBA_PF) {
        beginEditCP(image);
        image->reformat(Image::OSG_RGBA_PF, NullFC);
        endEditCP(image);
    }
    if(image->getPixelFormat() != Image::OSG_RGBA_PF) {
        FWARNING(("DXTCompressor::compressImage: Invalid pixel format (%i -- must be rgba). "
                  "Boldly refusing to compress it.\n",
                  Int32(image->getPixelFormat())));
        return false;
    }
    if(!image->isValid()) {
        FWARNING(("DXTCompressor::compressImage: The image has no pixels, or not those of its size. "
                  "Boldly refusing to compress it.\n"));
        return false;
    }

    // Blocks are made beside the pixels and then take their place, which spares a copy of the picture. A
    // format that compressPixels() refuses leaves the pixels.
    std::vector<UInt8> blocks(std::size_t(width) * std::size_t(height) / (format == DXT1_FORMAT ? 2 : 1));
    if(!compressPixels(blocks.data(), image->getData(), UInt32(width), UInt32(height), Image::OSG_RGBA_PF,
                       format))
        return false;
    beginEditCP(image);
    const bool taken = image->takeData(pixelFormat, width, height, 1, Image::OSG_UINT8_IMAGEDATA, blocks);
    // The form changes together with the pixels; other aspects need both.
    endEditCP(image, ~BitVector(Image::PixelFieldMask));
    endEditCP(image, Image::PixelFieldMask);
    return taken;
}

bool DXTCompressor::compressPixels(unsigned char *out, const unsigned char *in, unsigned int width,
                                   unsigned int height, Image::PixelFormat inPixelFormat,
                                   CompressedFormat format) const
{
    if(width % 4 != 0 || height % 4 != 0) {
        FWARNING(("DXTCompressor::compressPixels: Width and height no multiple of 4. Doing nothing.\n"));
        return false;
    }
    tessaly::PixelOrder order;
    if(!pixelOrderOf(inPixelFormat, order)) {
        FWARNING(("DXTCompressor::compressPixels: Unsupported inPixelFormat. Doing nothing.\n"));
        return false;
    }
    if(format != AUTO_FORMAT && format != DXT1_FORMAT && format != DXT5_FORMAT) {
        FWARNING(("DXTCompressor::compressPixels: Unsupported targetFormat. Doing nothing.\n"));
        return false;
    }
    // What was negative before it got here is no size either.
    constexpr unsigned int largest = std::numeric_limits<Int32>::max();
    if(width > largest || height > largest) {
        FWARNING(("DXTCompressor::compressPixels: There are no pictures of %u x %u. Doing nothing.\n", width,
                  height));
        return false;
    }
    if(width == 0 || height == 0)
        return true;
    if(!in || !out) {
        FWARNING(("DXTCompressor::compressPixels: No pixels, or no room for the blocks. Doing nothing.\n"));
        return false;
    }

    const bool isWithAlpha = inPixelFormat == Image::OSG_RGBA_PF || inPixelFormat == Image::OSG_BGRA_PF;
    const bool isDxt5 = format == DXT5_FORMAT || (format == AUTO_FORMAT && isWithAlpha);
    tessaly::encodeBlocks(in, width, height, order,
                          isDxt5 ? tessaly::BlockFormat::Dxt5 : tessaly::BlockFormat::Dxt1, out);
    return true;
}

bool DXTCompressor::isDXTCompressed(ImagePtr image) const
{
    if(image == NullFC) {
        FWARNING(("DXTCompressor::isDXTCompressed: There is no image.\n"));
        return false;
    }
    switch(image->getPixelFormat()) {
    case Image::OSG_RGB_DXT1:
    case Image::OSG_RGBA_DXT1:
    case Image::OSG_RGBA_DXT3:
    case Image::OSG_RGBA_DXT5:
        return true;
    default:
        return false;
    }
}
