/// \file
/// The module's entry point: hands files and folders to the DICOM reader.

#include "OSGImageFileType.h"

#include "OSGDICOMCodec.h"

OSG_BEGIN_NAMESPACE

namespace
{

class DICOMReader : public ImageFileType
{
  public:
    DICOMReader() : ImageFileType("application/dicom", {"dcm", "ima"}, READ_SUPPORTED) {}

    bool decode(const UInt8 *bytes, std::size_t size, const std::string &name, PixelData &out,
                std::string &error) const override
    {
        return decodeDICOM(bytes, size, name, out, error);
    }

    bool readFile(const std::string &fileName, PixelData &out, std::string &error) const override
    {
        return readDICOM(fileName, out, error);
    }
};

} // namespace

OSG_END_NAMESPACE

extern "C" OSG_SYSTEMLIB_DLLMAPPING osg::ImageFileType *osgFormatDICOM()
{
    static osg::DICOMReader reader;
    return &reader;
}
