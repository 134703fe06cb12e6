#ifndef IMAGEFORM_H
#define IMAGEFORM_H

/// \file
/// The form of an image as plain numbers, and where each part of the pixels lies; for the sources of Image
/// alone.

#include <algorithm>
#include <sstream>

#include "OSGImage.h"
#include "OSGLog.h"
#include "OSGPixelBuffer.h"
#include "OSGPixelOperations.h"

OSG_BEGIN_NAMESPACE

struct Image::Form
{
    /// The pixel field counts in 32 bits.
    static constexpr UInt64 MaxBytes = 0xFFFFFFFFu;
    /// Levels of the largest side.
    static constexpr Int32 MaxLevels = 32;

    UInt32 pixelFormat = 0;
    Int32 type = OSG_UINT8_IMAGEDATA;
    Int32 width = 0;
    Int32 height = 0;
    Int32 depth = 0;
    Int32 levels = 1;
    Int32 frames = 1;
    Int32 sides = 1;
    Time frameDelay = 0.0;

    PixelSize levelGeometry(UInt32 level) const
    {
        if(width < 1 || height < 1 || depth < 1)
            return {0, 0, 0};
        const UInt32 shift = std::min(level, 31u);
        return {std::max(UInt32(width) >> shift, 1u), std::max(UInt32(height) >> shift, 1u),
                std::max(UInt32(depth) >> shift, 1u)};
    }
    UInt32 pixelBytes() const { return formatChannels(pixelFormat) * typeBytes(type); }
    UInt64 levelSize(UInt32 level) const
    {
        const PixelSize size = levelGeometry(level);
        if(const UInt32 blockBytes = formatBlockBytes(pixelFormat))
            return UInt64((size.width + 3) / 4) * ((size.height + 3) / 4) * size.depth * blockBytes;
        return UInt64(size.width) * size.height * size.depth * pixelBytes();
    }
    UInt64 sumSize(UInt32 count) const
    {
        UInt64 sum = 0;
        for(UInt32 level = 0; level < count; ++level)
            sum += levelSize(level);
        return sum;
    }
    UInt64 sideSize() const { return sumSize(UInt32(levels)); }
    UInt64 size() const { return sideSize() * UInt64(sides) * UInt64(frames); }
    UInt64 offset(UInt32 level, UInt32 frame, UInt32 side) const
    {
        return (UInt64(frame) * UInt64(sides) + side) * sideSize() + sumSize(level);
    }
    UInt32 fullLevelCount() const
    {
        UInt32 largest = UInt32(std::max({width, height, depth, 0}));
        UInt32 count = 0;
        for(; largest > 0; largest /= 2)
            ++count;
        return count;
    }

    /// Multiplies; false where the product is over the limit.
    static bool grow(UInt64 &bytes, UInt64 factor)
    {
        bytes *= factor;
        return bytes <= MaxBytes;
    }

    /// Room for that many bytes. False, with one warning that names the operation, where there is none.
    static bool makePixels(std::vector<UInt8> &pixels, UInt64 size, const Char8 *operation)
    {
        std::string error;
        if(allocatePixels(pixels, size, MaxBytes, operation, error))
            return true;
        FWARNING(("%s\n", error.c_str()));
        return false;
    }

    /// Whether there can be such an image. The products are formed in steps that don't run over 64 bits.
    bool isPossible() const
    {
        const bool blocks = formatBlockBytes(pixelFormat) != 0;
        if(width < 1 || height < 1 || depth < 1 || levels < 1 || levels > MaxLevels || frames < 1 ||
           sides < 1 || (!blocks && pixelBytes() == 0) || (blocks && type != OSG_UINT8_IMAGEDATA) ||
           (pixelFormat == OSG_DEPTH_STENCIL_PF) != (type == OSG_UINT24_8_IMAGEDATA))
            return false;
        UInt64 bytes = UInt64(width);
        if(!grow(bytes, UInt64(height)) || !grow(bytes, UInt64(depth)))
            return false;
        bytes = sideSize();
        return grow(bytes, UInt64(frames)) && grow(bytes, UInt64(sides));
    }

    std::string text() const
    {
        std::ostringstream out;
        out << width << " x " << height << " x " << depth << " pixels of format " << pixelFormat
            << " and type " << type << " in " << levels << " levels, " << frames << " frames and " << sides
            << " sides";
        return out.str();
    }

    /// Calls use(level, frame, side) for each part of the image, in the order in which they lie.
    template <class Use>
    void forParts(Use use) const
    {
        for(UInt32 frame = 0; frame < UInt32(frames); ++frame)
            for(UInt32 side = 0; side < UInt32(sides); ++side)
                for(UInt32 level = 0; level < UInt32(levels); ++level)
                    use(level, frame, side);
    }

    bool contains(Int32 offX, Int32 offY, Int32 offZ, Int32 w, Int32 h, Int32 d) const
    {
        return offX >= 0 && offY >= 0 && offZ >= 0 && w > 0 && h > 0 && d > 0 && offX <= width - w &&
               offY <= height - h && offZ <= depth - d;
    }
};

OSG_END_NAMESPACE

#endif
