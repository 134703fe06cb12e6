#ifndef _OSGPNGIMAGEFILETYPE_H_
#define _OSGPNGIMAGEFILETYPE_H_

/// \file
/// The plug-in for PNG pictures.

#include "OSGImageFileType.h"

OSG_BEGIN_NAMESPACE

/// Type "image/png", names that end in .png. Pictures of 8 and 16 bits are read and written; decodePNG says
/// how.
class OSG_SYSTEMLIB_DLLMAPPING PNGImageFileType : public ImageFileType
{
  public:
    static PNGImageFileType &the();

    std::string getName() const override { return "PNG"; }
    bool decode(const UInt8 *bytes, std::size_t size, const std::string &name, PixelData &out,
                std::string &error) const override;
    bool encode(const PixelView &in, const std::string &name, std::vector<UInt8> &out,
                std::string &error) const override;

  private:
    PNGImageFileType();
};

OSG_END_NAMESPACE

#endif
