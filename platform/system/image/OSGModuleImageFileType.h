#ifndef _OSGMODULEIMAGEFILETYPE_H_
#define _OSGMODULEIMAGEFILETYPE_H_

/// \file
/// What stands in the process for an image format whose reader is a module.

#include "OSGFormatModule.h"
#include "OSGImageFileType.h"

OSG_BEGIN_NAMESPACE

/// A format that is known by name and suffixes at once, while its reader and the library behind it are loaded
/// with the first file. The module's entry point is
///
///     extern "C" osg::ImageFileType *osgFormat<name>();
///
/// and returns the reader, which lives to the end of the process. Where it can't be loaded, reading fails
/// with the line of loadFormatModule behind the file's name.
class OSG_SYSTEMLIB_DLLMAPPING ModuleImageFileType : public ImageFileType
{
  public:
    using Entry = ImageFileType *(*)(); ///< the module's entry point

    /// `module` must stay.
    ModuleImageFileType(const FormatModule &module, const std::string &mimeType,
                        std::list<std::string> suffixes);

    /// "image/tiff", names that end in .tif and .tiff.
    static ModuleImageFileType &tiff();
    /// "image/x-nrrd", names that end in .nrrd and .nhdr.
    static ModuleImageFileType &nrrd();
    /// "application/dicom", names that end in .dcm and .ima, folders, and files of other names in which
    /// "DICM" stands at byte 128.
    static ModuleImageFileType &dicom();

    std::string getName() const override;
    bool isBuilt() const override;
    bool decode(const UInt8 *bytes, std::size_t size, const std::string &name, PixelData &out,
                std::string &error) const override;
    bool readFile(const std::string &fileName, PixelData &out, std::string &error) const override;

  private:
    const ImageFileType *load(const std::string &fileName, std::string &error) const;

    FormatModule _module;
};

OSG_END_NAMESPACE

#endif
