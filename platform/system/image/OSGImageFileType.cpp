/// \file
/// What a format does that overrides nothing.

#include "OSGImageFileType.h"

#include <utility>

OSG_BEGIN_NAMESPACE

ImageFileType::ImageFileType(const std::string &mimeType, std::list<std::string> suffixes, UInt32 flags)
    : _mimeType(mimeType), _suffixes(std::move(suffixes)), _flags(flags)
{
}

std::string ImageFileType::getName() const
{
    return _mimeType;
}

bool ImageFileType::isBuilt() const
{
    return true;
}

bool ImageFileType::decode(const UInt8 *, std::size_t, const std::string &name, PixelData &,
                           std::string &error) const
{
    error = name + ": " + _mimeType + " can't be read from a stream";
    return false;
}

bool ImageFileType::encode(const PixelView &, const std::string &name, std::vector<UInt8> &,
                           std::string &error) const
{
    error =
        name + ": " + _mimeType + " can't be written" + ((_flags & WRITE_SUPPORTED) ? " to a stream" : "");
    return false;
}

bool ImageFileType::readFile(const std::string &fileName, PixelData &out, std::string &error) const
{
    std::vector<UInt8> bytes;
    return readFileBytes(fileName, bytes, error) && decode(bytes.data(), bytes.size(), fileName, out, error);
}

bool ImageFileType::writeFile(const std::string &fileName, const PixelView &in, std::string &error) const
{
    std::vector<UInt8> bytes;
    return encode(in, fileName, bytes, error) && writeFileBytes(fileName, bytes.data(), bytes.size(), error);
}

OSG_END_NAMESPACE
