/// \file
/// The module's entry point: hands files to the NRRD reader.

#include "OSGImageFileType.h"

#include "OSGNRRDCodec.h"

OSG_BEGIN_NAMESPACE

namespace
{

class NRRDReader : public ImageFileType
{
  public:
    NRRDReader() : ImageFileType("image/x-nrrd", {"nrrd", "nhdr"}, READ_SUPPORTED) {}

    bool decode(const UInt8 *bytes, std::size_t size, const std::string &name, PixelData &out,
                std::string &error) const override
    {
        return decodeNRRD(bytes, size, nullptr, name, out, error);
    }

    bool readFile(const std::string &fileName, PixelData &out, std::string &error) const override
    {
        const std::size_t slash = fileName.rfind('/');
        const std::string folder = slash == std::string::npos ? "." : fileName.substr(0, slash + 1);
        std::vector<UInt8> bytes;
        return readFileBytes(fileName, bytes, error) &&
               decodeNRRD(bytes.data(), bytes.size(), &folder, fileName, out, error);
    }
};

} // namespace

OSG_END_NAMESPACE

extern "C" OSG_SYSTEMLIB_DLLMAPPING osg::ImageFileType *osgFormatNRRD()
{
    static osg::NRRDReader reader;
    return &reader;
}
