/// \file
/// Hands files to the JPEG reader and writer.

#include "OSGJPEGImageFileType.h"

#include "OSGJPEGCodec.h"

OSG_BEGIN_NAMESPACE

JPEGImageFileType::JPEGImageFileType()
    : ImageFileType("image/jpeg", {"jpg", "jpeg"}, READ_SUPPORTED | WRITE_SUPPORTED)
{}

JPEGImageFileType &JPEGImageFileType::the()
{
    static JPEGImageFileType type;
    return type;
}

bool JPEGImageFileType::decode(const UInt8 *bytes, std::size_t size, const std::string &name, PixelData &out,
                               std::string &error) const
{
    return decodeJPEG(bytes, size, name, out, error);
}

bool JPEGImageFileType::encode(const PixelView &in, const std::string &name, std::vector<UInt8> &out,
                               std::string &error) const
{
    return encodeJPEG(in, name, out, error);
}

OSG_END_NAMESPACE
