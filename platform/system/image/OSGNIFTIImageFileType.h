#ifndef _OSGNIFTIIMAGEFILETYPE_H_
#define _OSGNIFTIIMAGEFILETYPE_H_

/// \file
/// The plug-in for NIfTI volumes.

#include "OSGImageFileType.h"

OSG_BEGIN_NAMESPACE

/// Type "image/x-nifti", names that end in .nii and .nii.gz. Volumes are read; decodeNIFTI says how.
class OSG_SYSTEMLIB_DLLMAPPING NIFTIImageFileType : public ImageFileType
{
  public:
    static NIFTIImageFileType &the();

    std::string getName() const override { return "NIfTI"; }
    bool decode(const UInt8 *bytes, std::size_t size, const std::string &name, PixelData &out,
                std::string &error) const override;

  private:
    NIFTIImageFileType();
};

OSG_END_NAMESPACE

#endif
