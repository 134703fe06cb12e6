#ifndef _OSGIMAGEFILETYPE_H_
#define _OSGIMAGEFILETYPE_H_

/// \file
/// What a plug-in for one format of image files is.

#include <list>
#include <string>
#include <vector>

#include "OSGBaseTypes.h"
#include "OSGPixelBuffer.h"

OSG_BEGIN_NAMESPACE

/// A format of image files, by MIME type and by the ends of file names. A plug-in derives from this,
/// overrides what the format can do, and hands one object, which lives to the end of the process, to
/// ImageFileHandler::addImageFileType. Its operations may be called on any thread. They log nothing: what
/// went wrong is one line in `error`, without a line end, that names the file, the fault and the place.
class OSG_SYSTEMLIB_DLLMAPPING ImageFileType
{
  public:
    enum
    {
        READ_SUPPORTED = 1,
        WRITE_SUPPORTED = 2
    };

    virtual ~ImageFileType() = default;
    ImageFileType(const ImageFileType &) = delete;
    ImageFileType &operator=(const ImageFileType &) = delete;

    /// "image/png"
    const std::string &getMimeType() const { return _mimeType; }
    /// In small letters, without the dot ahead: "png", "nii.gz".
    const std::list<std::string> &getSuffixList() const { return _suffixes; }
    /// Bits of READ_SUPPORTED and WRITE_SUPPORTED.
    UInt32 getFlags() const { return _flags; }
    /// What programs call the format, as "PNG"; this form gives the MIME type.
    virtual std::string getName() const;
    /// Whether this build has the format. Where it lacks, every read fails with a line that says so.
    virtual bool isBuilt() const;

    /// Reads from memory; `name` stands in messages only. This form refuses.
    virtual bool decode(const UInt8 *bytes, std::size_t size, const std::string &name, PixelData &out,
                        std::string &error) const;
    /// Writes to memory. This form refuses.
    virtual bool encode(const PixelView &in, const std::string &name, std::vector<UInt8> &out,
                        std::string &error) const;
    /// Reads a file; this form by `decode`.
    virtual bool readFile(const std::string &fileName, PixelData &out, std::string &error) const;
    /// Writes a file; this form by `encode`.
    virtual bool writeFile(const std::string &fileName, const PixelView &in, std::string &error) const;

  protected:
    /// With what the type is found by.
    ImageFileType(const std::string &mimeType, std::list<std::string> suffixes, UInt32 flags);

  private:
    std::string _mimeType;
    std::list<std::string> _suffixes;
    UInt32 _flags;
};

OSG_END_NAMESPACE

#endif
