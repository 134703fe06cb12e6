#ifndef _OSGIMAGE_H_
#define _OSGIMAGE_H_

/// \file
/// The carrier of all pixel and voxel data.

#include <vector>

#include "OSGImageBase.h"

OSG_BEGIN_NAMESPACE

/// An image of one, two or three dimensions with mipmap levels, sides and frames.
///
/// The pixels lie in one block: x fastest, then y, then z; behind the full size its mipmap levels, then the
/// next side, then the next frame. The first row in memory is the bottom row of a picture. As with every
/// container, the calling thread's copy is used, and whoever changes an image calls beginEditCP and
/// endEditCP; no operation here does so. No GL context is needed.
///
/// Operations that make other pixels have a `destination`, which gets them; NullFC changes the image itself.
/// They return false, with one warning, and leave everything as it was, where they can't do it.
class OSG_SYSTEMLIB_DLLMAPPING Image : public ImageBase
{
  public:
    typedef ImageBase Inherited;

    /// How the samples of a pixel are to be read; GL's numbers.
    enum PixelFormat
    {
        OSG_INVALID_PF = 0,
        OSG_DEPTH_PF = 6402,
        OSG_ALPHA_PF = 6406,
        OSG_RGB_PF = 6407,
        OSG_RGBA_PF = 6408,
        OSG_L_PF = 6409,
        OSG_LA_PF = 6410,
        OSG_INTENSITY_PF = 32841,
        OSG_BGR_PF = 32992,
        OSG_BGRA_PF = 32993,
        OSG_RGB_DXT1 = 33776,
        OSG_RGBA_DXT1 = 33777,
        OSG_RGBA_DXT3 = 33778,
        OSG_RGBA_DXT5 = 33779,
        OSG_DEPTH_STENCIL_PF = 34041
    };

    /// The type of a sample; GL's numbers.
    enum Type
    {
        OSG_INVALID_IMAGEDATA = 0,
        OSG_UINT8_IMAGEDATA = 5121,
        OSG_INT16_IMAGEDATA = 5122,
        OSG_UINT16_IMAGEDATA = 5123,
        OSG_INT32_IMAGEDATA = 5124,
        OSG_UINT32_IMAGEDATA = 5125,
        OSG_FLOAT32_IMAGEDATA = 5126,
        OSG_FLOAT16_IMAGEDATA = 5131,
        OSG_UINT24_8_IMAGEDATA = 34042
    };

    void changed(BitVector whichField, UInt32 origin) override;

    /// Tells contents apart, so that what was derived from pixels need not be derived again: another value behind every
    /// closed edit and every synchronisation of this aspect's copy, never one that another edit of any image has had. 0
    /// before the first.
    UInt64 getRevision() const { return _revision; }

    /// Writes one block that tells size, format and attachments, at level 0 of the log.
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    /// Makes this an image of that form. `data`, if given, holds getSize() bytes, which are copied; without
    /// it the pixels are undefined, and with `allocMem` false there are none. The attachments stay. False,
    /// with one warning, for an unknown format or type, a count below 1, a DXT format with samples other than
    /// bytes, more than 4 GiB, or where memory is short; the image is then as it was.
    bool set(UInt32 pixelFormat, Int32 width, Int32 height = 1, Int32 depth = 1, Int32 mipmapCount = 1,
             Int32 frameCount = 1, Time frameDelay = 0.0, const UInt8 *data = nullptr,
             Int32 type = OSG_UINT8_IMAGEDATA, bool allocMem = true, Int32 sideCount = 1);

    /// Takes the form and the pixels of another image, and its name; the attachments stay as they are. False
    /// for NullFC.
    bool set(ImagePtr image);

    /// Copies getSize() bytes to the pixels. False for null and for an empty image.
    bool setData(const UInt8 *data);

    /// Makes this an image of that form, with one level, frame and side, and takes the pixels over without a
    /// copy; `data` is left with what was here before. False, with one warning, where its size is not that of
    /// the form.
    bool takeData(UInt32 pixelFormat, Int32 width, Int32 height, Int32 depth, Int32 type,
                  std::vector<UInt8> &data);

    /// Copies a block of pixels into the full size of frame 0, side 0. `data` holds width * height * depth
    /// pixels. False where the block isn't inside of the image, or the format is compressed.
    bool setSubData(Int32 offX, Int32 offY, Int32 offZ, Int32 width, Int32 height, Int32 depth,
                    const UInt8 *data);

    /// The first pixel of a level, or null where there is none. Valid until the form of the image changes;
    /// all pixels of a level may be read and written through it.
    UInt8 *getData(UInt32 mipmapNum = 0, UInt32 frameNum = 0, UInt32 sideNum = 0);
    const UInt8 *getData(UInt32 mipmapNum = 0, UInt32 frameNum = 0, UInt32 sideNum = 0) const;
    UInt8 *editData(UInt32 mipmapNum = 0, UInt32 frameNum = 0, UInt32 sideNum = 0);
    UInt8 *editDataFast(UInt32 mipmapNum = 0, UInt32 frameNum = 0, UInt32 sideNum = 0);

    /// No pixels and no size; attachments and name stay.
    void clear();

    /// Gives the image another size; each level, frame and side gets the nearest old pixels. A DXT format is
    /// refused.
    bool scale(Int32 width, Int32 height, Int32 depth = 1, ImagePtr destination = NullFC);
    /// The same to the next powers of two; an image that has such sides stays.
    bool scaleNextPower2(ImagePtr destination = NullFC);
    /// Brings the pixels to another format. A luminance is the mean of the colours; an alpha that the image
    /// hasn't is full, or, where the new format is alpha alone, the luminance.
    bool reformat(UInt32 pixelFormat, ImagePtr destination = NullFC);
    /// Brings the samples to another type. Integers stand for fractions of their largest value, floats for
    /// themselves and are clamped; fractions are rounded.
    bool convertDataTypeTo(Int32 type);
    /// Gives the image `levels` mipmap levels (0: down to one pixel), each made from the one above by the
    /// mean of up to 8 pixels. Levels that were there are made anew.
    bool createMipmap(Int32 levels = 0, ImagePtr destination = NullFC);
    /// Cuts a block out of the full size of frame 0, side 0.
    bool subImage(Int32 offX, Int32 offY, Int32 offZ, Int32 width, Int32 height, Int32 depth,
                  ImagePtr destination = NullFC);
    /// Cuts one plane out of a volume: across the axis whose offset is not negative, just one of the three. A
    /// plane across x is depth wide and as high as the volume, one across y is as wide as the volume and
    /// depth high.
    bool slice(Int32 offX = -1, Int32 offY = -1, Int32 offZ = -1, ImagePtr destination = NullFC);

    /// What the image is made of.
    bool isValid() const;
    bool hasAlphaChannel() const;
    bool hasColorChannel() const;
    bool hasCompressedData() const;
    bool hasMipmaps() const { return getMipMapCount() > 1; }

    /// Bytes of the pixels: of all levels, frames and sides, or of one where told so.
    UInt64 getSize(bool withMipmap = true, bool withFrames = true, bool withSides = true) const;
    /// Channels of a pixel.
    UInt32 getComponentCount() const;

    /// The size of a level in pixels; each side is halved level by level, down to 1.
    void calcMipmapGeometry(UInt32 mipmapNum, UInt32 &width, UInt32 &height, UInt32 &depth) const;
    /// The levels down to one pixel; 0 for an empty image.
    UInt32 calcMipmapLevelCount() const;
    /// Bytes of one level, and of the levels 0 to count - 1, of one side of one frame.
    UInt64 calcMipmapLevelSize(UInt32 mipmapNum) const;
    UInt64 calcMipmapSumSize(UInt32 count) const;
    UInt64 calcMipmapSumSize() const;

    /// The frame that is shown `time` seconds after the first; the last, without `loop`, when all are over.
    UInt32 calcFrameNum(Time time, bool loop = true) const;

    /// Reads the image from a file, or writes it to one, through ImageFileHandler. False, with one warning,
    /// otherwise.
    bool read(const Char8 *fileName);
    bool write(const Char8 *fileName);

    /// Attaches a text under a key; one that was there is replaced.
    void setAttachmentField(const std::string &key, const std::string &value);
    /// The text under a key, or null. Valid until the next attachment is set.
    const std::string *findAttachmentField(const std::string &key) const;

  protected:
    Image() = default;
    /// A copy has pixels of its own.
    Image(const Image &source) = default;
    ~Image() override = default;

  private:
    friend class FieldContainer;
    friend class ImageBase;

    static void initMethod();

    /// The form of an image, as plain numbers.
    struct Form;

    Form getForm() const;
    void setForm(const Form &form);
    /// Makes room for the form's pixels and sets it; whatever is there stays undefined.
    bool allocate(const Form &form);
    /// Sets this image, or `destination`, to a form with the given pixels, which are taken over.
    bool deliver(const Form &form, std::vector<UInt8> &pixels, ImagePtr destination);

    UInt64 _revision = 0;
};

OSG_END_NAMESPACE

#endif
