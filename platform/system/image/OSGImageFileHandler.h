#ifndef _OSGIMAGEFILEHANDLER_H_
#define _OSGIMAGEFILEHANDLER_H_

/// \file
/// Finds the format of an image file and reads and writes images through it.

#include <iosfwd>

#include "OSGImage.h"
#include "OSGImageFileType.h"

OSG_BEGIN_NAMESPACE

/// What a program can tell of a format, without loading anything.
struct FormatInfo
{
    std::string name;                ///< "PNG", "DICOM"
    std::string mimeType;            ///< "image/png"
    std::list<std::string> suffixes; ///< in small letters, without the dot ahead
    bool readable = false;           ///< the format's reader exists, in this build or another
    bool writable = false;           ///< the same of its writer
    bool built = false;              ///< whether this build has it; where not, reading fails and says so
};

/// The process's image formats. Reading and writing may happen on any thread; formats are added ahead of
/// that.
///
/// What fails logs exactly one warning that names the file, what is wrong and where. A stream is called
/// "stream" there. An image that has been read has one level, frame and side, the file's name, and the
/// attachment "SliceThickness" (three floats, as "1.000000 1.000000 1.500000") where the file states the size
/// of its voxels. Where it is known what the samples stand for (scalar volumes), the attachment "ValueScale"
/// holds slope and intercept, as "1 -1024": a sample as the image holds it stands for slope * sample +
/// intercept, a sample of 8 or 16 bits counting from 0 to 255 or 65535; the slope is never 0 and may be
/// negative. "ValueUnit" is the unit of what they stand for, as "HU", where that is known too. Attachments
/// that the image had before are gone. What a format changed on the way is told in one notice each.
class OSG_SYSTEMLIB_DLLMAPPING ImageFileHandler
{
  public:
    static ImageFileHandler &the();

    /// The format of that MIME type, or else the one with the longest suffix that ends the file name, in
    /// letters of either case; null where there is none. Either may be null. A folder, and a file
    /// whose suffix tells nothing but in which "DICM" stands at byte 128, are DICOM's.
    ImageFileType *getFileType(const Char8 *mimeType, const Char8 *fileName = nullptr) const;
    /// The format in which images go where nothing says another: PNG.
    ImageFileType *getDefaultType() const;
    /// All suffixes, in the order of adding, of formats that this build lacks too.
    std::list<std::string> getSuffixList() const;
    /// All formats, in the order of adding, with those that this build lacks. Nothing is loaded.
    std::list<FormatInfo> getFormats() const;

    /// Adds a format, which isn't owned. False, and nothing added, where there is one of that MIME type.
    bool addImageFileType(ImageFileType &fileType);

    /// A new image without a reference, or NullFC.
    ImagePtr read(const Char8 *fileName, const Char8 *mimeType = nullptr);
    ImagePtr read(std::istream &in, const std::string &mimeType);
    /// Reads into an image; where that fails it stays as it was. No edit is opened or closed.
    bool read(ImagePtr image, const Char8 *fileName, const Char8 *mimeType = nullptr);
    bool read(ImagePtr image, std::istream &in, const std::string &mimeType);

    /// Writes the full size of frame 0, side 0. Formats and types that files don't hold are brought to the
    /// nearest that they do: BGR to RGB, single channels to L, floats and 32 bits to 16.
    bool write(ImagePtr image, const Char8 *fileName, const Char8 *mimeType = nullptr);
    bool write(ImagePtr image, std::ostream &out, const std::string &mimeType);

  private:
    ImageFileHandler();

    std::list<ImageFileType *> _types;
};

OSG_END_NAMESPACE

#endif
