#ifndef _DXTCOMPRESSOR_H_
#define _DXTCOMPRESSOR_H_

/// \file
/// Compression of pictures to the S3TC block formats DXT1 and DXT5, fast rather than well.

#include <OpenSG/OSGImage.h>

#include <Tessaly/OSGTessalyDef.h>

/// Compresses 8-bit pictures to blocks of 4 x 4 pixels on the processor, without any search over end colours.
///
/// There is one instance, which has no state: any thread may use it at any time, on an image or a buffer
/// that no other thread touches. No GL context is needed. Operations that refuse log one warning and return
/// false.
class OSG_TESSALY_DLLMAPPING DXTCompressor
{
public:
    /// The formats of blocks.
    enum CompressedFormat
    {
        AUTO_FORMAT = 0, ///< DXT5 for what has alpha, otherwise DXT1
        DXT1_FORMAT = 1, ///< 8 bytes per block; alpha is lost
        DXT5_FORMAT = 2  ///< 16 bytes per block
    };

    static DXTCompressor &the() { return _the; }

    DXTCompressor(const DXTCompressor &) = delete;
    DXTCompressor &operator=(const DXTCompressor &) = delete;

    /// Compresses an image in place; it then has one level, frame and side and the pixel format 33776 or,
    /// where it had alpha, 33777 for DXT1, 33779 for DXT5. Of more levels, frames or sides the first is
    /// compressed.
    ///
    /// Sides that are no multiples of 4 are scaled up to the next one, samples are brought to bytes and
    /// pixels to RGBA beforehand; that stays where a later step refuses. An image in format 33776 or 33777
    /// is left as it is, and true. One in 33778 or 33779 is treated as if it could be brought to RGBA, so
    /// it is refused by that step.
    ///
    /// Refuses null, volumes, what can't be brought to that form, what has no pixels, and unknown formats.
    /// Edits the calling thread's copy between beginEditCP and endEditCP, with the mask of the pixels as
    /// the last.
    bool compressImage(osg::ImagePtr image, CompressedFormat format) const;

    /// Compresses a buffer. Blocks follow each other from left to right, rows of blocks in the order of the
    /// source's rows.
    /// \param out room for width * height / 2 bytes for DXT1, width * height for DXT5; any alignment, apart
    /// from `in`
    /// \param in width * height pixels of 8-bit samples, x fastest, without gaps; any alignment
    /// \param width, height multiples of 4; of 0, nothing is done, and that is true
    /// \param inPixelFormat OSG_RGB_PF, OSG_RGBA_PF, OSG_BGR_PF or OSG_BGRA_PF. Only RGBA brings its alpha
    /// along; the others count as opaque, BGRA too.
    /// \param format AUTO_FORMAT goes by whether the pixel format has alpha
    /// \return false, with nothing written, for other sides, formats, or null
    bool compressPixels(unsigned char *out, const unsigned char *in, unsigned int width, unsigned int height,
                        osg::Image::PixelFormat inPixelFormat, CompressedFormat format) const;

    /// Whether the image's pixel format is DXT1, DXT3 or DXT5; false for null.
    bool isDXTCompressed(osg::ImagePtr image) const;

private:
    DXTCompressor();
    ~DXTCompressor();

    static DXTCompressor _the;
};

#endif
