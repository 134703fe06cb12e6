/// \file
/// Hands files to the PNG reader and writer.

#include "OSGPNGImageFileType.h"

#include "OSGPNGCodec.h"

OSG_BEGIN_NAMESPACE

PNGImageFileType::PNGImageFileType() : ImageFileType("image/png", {"png"}, READ_SUPPORTED | WRITE_SUPPORTED)
{
}

PNGImageFileType &PNGImageFileType::the()
{
    static PNGImageFileType type;
    return type;
}

bool PNGImageFileType::decode(const UInt8 *bytes, std::size_t size, const std::string &name, PixelData &out,
                              std::string &error) const
{
    return decodePNG(bytes, size, name, out, error);
}

bool PNGImageFileType::encode(const PixelView &in, const std::string &name, std::vector<UInt8> &out,
                              std::string &error) const
{
    return encodePNG(in, name, out, error);
}

OSG_END_NAMESPACE
