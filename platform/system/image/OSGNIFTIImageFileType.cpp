/// \file
/// Hands files to the NIfTI reader.

#include "OSGNIFTIImageFileType.h"

#include "OSGNIFTICodec.h"

OSG_BEGIN_NAMESPACE

NIFTIImageFileType::NIFTIImageFileType() : ImageFileType("image/x-nifti", {"nii", "nii.gz"}, READ_SUPPORTED)
{
}

NIFTIImageFileType &NIFTIImageFileType::the()
{
    static NIFTIImageFileType type;
    return type;
}

bool NIFTIImageFileType::decode(const UInt8 *bytes, std::size_t size, const std::string &name, PixelData &out,
                                std::string &error) const
{
    return decodeNIFTI(bytes, size, name, out, error);
}

OSG_END_NAMESPACE
