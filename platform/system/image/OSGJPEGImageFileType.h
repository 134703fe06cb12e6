#ifndef _OSGJPEGIMAGEFILETYPE_H_
#define _OSGJPEGIMAGEFILETYPE_H_

/// \file
/// The plug-in for JPEG pictures.

#include "OSGImageFileType.h"

OSG_BEGIN_NAMESPACE

/// Type "image/jpeg", names that end in .jpg and .jpeg. Pictures are read and written; decodeJPEG and
/// encodeJPEG say how.
class OSG_SYSTEMLIB_DLLMAPPING JPEGImageFileType : public ImageFileType
{
  public:
    static JPEGImageFileType &the();

    std::string getName() const override { return "JPEG"; }
    bool decode(const UInt8 *bytes, std::size_t size, const std::string &name, PixelData &out,
                std::string &error) const override;
    bool encode(const PixelView &in, const std::string &name, std::vector<UInt8> &out,
                std::string &error) const override;

  private:
    JPEGImageFileType();
};

OSG_END_NAMESPACE

#endif
