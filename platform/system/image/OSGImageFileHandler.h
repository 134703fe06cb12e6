#ifndef _OSGIMAGEFILEHANDLER_H_
#define _OSGIMAGEFILEHANDLER_H_

/// \file
/// Finds the format of an image file and reads and writes images through it.

#include <iosfwd>

#include "OSGImage.h"
#include "OSGImageFileType.h"

OSG_BEGIN_NAMESPACE

/// The process's image formats. Reading and writing may happen on any thread; formats are added ahead of
/// that.
///
/// What fails logs exactly one warning that names the file, what is wrong and where. A stream is called
/// "stream" there. An image that has been read has one level, frame and side, the file's name, and the
/// attachment "SliceThickness" (three floats, as "1.000000 1.000000 1.500000") where the file states the size
/// of its voxels; attachments that it had before are gone. What a format changed on the way is told in one
/// notice each.
class OSG_SYSTEMLIB_DLLMAPPING ImageFileHandler
{
  public:
    static ImageFileHandler &the();

    /// The format of that MIME type, or else the one with the longest suffix that ends the file name, in
    /// letters of either case; null where there is none. Either may be null.
    ImageFileType *getFileType(const Char8 *mimeType, const Char8 *fileName = nullptr) const;
    /// The format in which images go where nothing says another: PNG.
    ImageFileType *getDefaultType() const;
    /// All suffixes, in the order of adding.
    std::list<std::string> getSuffixList() const;

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
