/// \file
/// The module's entry point: hands files to the TIFF reader.

#include "OSGImageFileType.h"

#include "OSGTIFFCodec.h"

OSG_BEGIN_NAMESPACE

namespace
{

class TIFFReader : public ImageFileType
{
  public:
    TIFFReader() : ImageFileType("image/tiff", {"tif", "tiff"}, READ_SUPPORTED) {}

    bool decode(const UInt8 *bytes, std::size_t size, const std::string &name, PixelData &out,
                std::string &error) const override
    {
        return decodeTIFF(bytes, size, name, out, error);
    }
};

} // namespace

OSG_END_NAMESPACE

extern "C" OSG_SYSTEMLIB_DLLMAPPING osg::ImageFileType *osgFormatTIFF()
{
    static osg::TIFFReader reader;
    return &reader;
}
