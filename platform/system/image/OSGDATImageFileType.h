#ifndef _OSGDATIMAGEFILETYPE_H_
#define _OSGDATIMAGEFILETYPE_H_

/// \file
/// The plug-in for volumes of a .dat and a .raw file.

#include "OSGImageFileType.h"

OSG_BEGIN_NAMESPACE

/// Type "image/x-dat", names that end in .dat. Volumes are read and written, but only as files, since they
/// take two; readDATFile and writeDATFile say how.
class OSG_SYSTEMLIB_DLLMAPPING DATImageFileType : public ImageFileType
{
  public:
    static DATImageFileType &the();

    std::string getName() const override { return "DAT"; }
    bool readFile(const std::string &fileName, PixelData &out, std::string &error) const override;
    bool writeFile(const std::string &fileName, const PixelView &in, std::string &error) const override;

  private:
    DATImageFileType();
};

OSG_END_NAMESPACE

#endif
