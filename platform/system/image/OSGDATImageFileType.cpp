/// \file
/// Hands pairs of files to the reader and writer of described volumes.

#include "OSGDATImageFileType.h"

#include "OSGDATCodec.h"

OSG_BEGIN_NAMESPACE

DATImageFileType::DATImageFileType() : ImageFileType("image/x-dat", {"dat"}, READ_SUPPORTED | WRITE_SUPPORTED)
{
}

DATImageFileType &DATImageFileType::the()
{
    static DATImageFileType type;
    return type;
}

bool DATImageFileType::readFile(const std::string &fileName, PixelData &out, std::string &error) const
{
    return readDATFile(fileName, out, error);
}

bool DATImageFileType::writeFile(const std::string &fileName, const PixelView &in, std::string &error) const
{
    return writeDATFile(fileName, in, error);
}

OSG_END_NAMESPACE
