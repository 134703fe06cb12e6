/// \file
/// Between images and the plain pixels of the formats.

#include "OSGImageFileHandler.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <istream>
#include <ostream>

#include "OSGDATImageFileType.h"
#include "OSGJPEGImageFileType.h"
#include "OSGLog.h"
#include "OSGModuleImageFileType.h"
#include "OSGNIFTIImageFileType.h"
#include "OSGPNGImageFileType.h"
#include "OSGPixelOperations.h"

OSG_BEGIN_NAMESPACE

namespace
{

const Char8 *const SpacingKey = "SliceThickness";
const Char8 *const ValueKey = "ValueScale";
const Char8 *const UnitKey = "ValueUnit";

/// Each failure's one line.
bool refuse(const std::string &line)
{
    FWARNING(("%s\n", line.c_str()));
    return false;
}

std::string unknownType(const Char8 *mimeType, const Char8 *fileName)
{
    std::string line = std::string(fileName ? fileName : "stream") + ": no image format has this name";
    if(mimeType && *mimeType)
        line += " or the MIME type \"" + std::string(mimeType) + "\"";
    return line;
}

void tellNotices(const PixelData &pixels)
{
    for(const std::string &notice : pixels.notices)
        FNOTICE(("%s\n", notice.c_str()));
}

bool fillImage(const ImagePtr &image, PixelData &pixels, const std::string &name)
{
    if(!image->takeData(pixels.pixelFormat, pixels.width, pixels.height, pixels.depth, Int32(pixels.dataType),
                        pixels.data))
        return false;
    image->setName(name);
    image->editMFAttachmentKeys()->clear();
    image->editMFAttachmentValues()->clear();
    if(pixels.hasSpacing)
    {
        char text[160];
        std::snprintf(text, sizeof(text), "%f %f %f", double(pixels.spacing[0]), double(pixels.spacing[1]),
                      double(pixels.spacing[2]));
        image->setAttachmentField(SpacingKey, text);
    }
    if(pixels.hasValues)
    {
        char text[80];
        std::snprintf(text, sizeof(text), "%.17g %.17g", pixels.valueSlope, pixels.valueIntercept);
        image->setAttachmentField(ValueKey, text);
        if(!pixels.valueUnit.empty())
            image->setAttachmentField(UnitKey, pixels.valueUnit);
    }
    return true;
}

/// All of a stream, up to the limit of a file.
bool readStream(std::istream &in, std::vector<UInt8> &bytes, std::string &error)
{
    constexpr std::size_t ChunkSize = 1 << 16;
    while(in)
    {
        const std::size_t old = bytes.size();
        if(!allocatePixels(bytes, old + ChunkSize, DefaultMaxPixelBytes, "stream", error))
            return false;
        in.read(reinterpret_cast<char *>(bytes.data() + old), ChunkSize);
        bytes.resize(old + std::size_t(in.gcount()));
    }
    if(in.eof() && !in.bad())
        return true;
    error = "stream: can't be read past byte " + std::to_string(bytes.size());
    return false;
}

UInt32 writtenFormat(UInt32 pixelFormat)
{
    switch(formatChannels(pixelFormat))
    {
    case 1:
        return Image::OSG_L_PF;
    case 2:
        return Image::OSG_LA_PF;
    case 3:
        return Image::OSG_RGB_PF;
    default:
        return Image::OSG_RGBA_PF;
    }
}

/// The image's first part as pixels that files hold; `kept` keeps what had to be changed.
bool viewImage(const Image &image, const std::string &name, PixelView &view, std::vector<UInt8> &kept,
               std::string &error)
{
    if(!image.isValid())
    {
        error = name + ": the image has no pixels to be written";
        return false;
    }
    view.width = image.getWidth();
    view.height = image.getHeight();
    view.depth = image.getDepth();
    view.pixelFormat = writtenFormat(image.getPixelFormat());
    view.dataType = image.getDataType() == Image::OSG_UINT8_IMAGEDATA ? SampleUInt8 : SampleUInt16;
    view.data = image.getData();

    const std::size_t count = std::size_t(view.width) * std::size_t(view.height) * std::size_t(view.depth);
    if(view.pixelFormat != image.getPixelFormat())
    {
        std::vector<UInt8> pixels;
        const std::size_t channels = formatChannels(view.pixelFormat);
        if(!allocatePixels(pixels, count * channels * UInt64(image.getComponentSize()), DefaultMaxPixelBytes,
                           name, error))
            return false;
        if(!reformatPixels(view.data, image.getPixelFormat(), pixels.data(), view.pixelFormat,
                           image.getDataType(), count))
        {
            error = name + ": pixels of format " + std::to_string(image.getPixelFormat()) + " and type " +
                    std::to_string(image.getDataType()) + " can't be written";
            return false;
        }
        kept.swap(pixels);
        view.data = kept.data();
    }
    if(Int32(view.dataType) != image.getDataType())
    {
        std::vector<UInt8> pixels;
        const std::size_t samples = count * formatChannels(view.pixelFormat);
        if(!allocatePixels(pixels, samples * 2, DefaultMaxPixelBytes, name, error) ||
           !convertPixelType(view.data, image.getDataType(), pixels.data(), Int32(view.dataType), samples))
            return false;
        kept.swap(pixels);
        view.data = kept.data();
    }

    double spacing[3];
    const std::string *text = image.findAttachmentField(SpacingKey);
    if(text && std::sscanf(text->c_str(), "%lf %lf %lf", spacing, spacing + 1, spacing + 2) == 3 &&
       std::all_of(spacing, spacing + 3, [](double side) { return side > 1e-30 && side < 1e30; }))
    {
        view.hasSpacing = true;
        std::transform(spacing, spacing + 3, view.spacing, [](double side) { return float(side); });
    }
    return true;
}

bool endsIn(const std::string &name, const std::string &suffix)
{
    if(name.size() <= suffix.size() || name[name.size() - suffix.size() - 1] != '.')
        return false;
    return std::equal(suffix.begin(), suffix.end(), name.end() - std::ptrdiff_t(suffix.size()),
                      [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
}

bool isFolder(const Char8 *fileName)
{
    struct stat status;
    return ::stat(fileName, &status) == 0 && S_ISDIR(status.st_mode);
}

/// True for a file that says by itself that it is of DICOM.
bool looksLikeDICOM(const Char8 *fileName)
{
    std::vector<UInt8> head;
    std::string error;
    return readFileBytes(fileName, head, error, 132) && head.size() == 132 &&
           std::memcmp(head.data() + 128, "DICM", 4) == 0;
}

} // namespace

ImageFileHandler::ImageFileHandler()
{
    addImageFileType(PNGImageFileType::the());
    addImageFileType(JPEGImageFileType::the());
    addImageFileType(NIFTIImageFileType::the());
    addImageFileType(DATImageFileType::the());
    addImageFileType(ModuleImageFileType::tiff());
    addImageFileType(ModuleImageFileType::nrrd());
    addImageFileType(ModuleImageFileType::dicom());
}

ImageFileHandler &ImageFileHandler::the()
{
    static ImageFileHandler handler;
    return handler;
}

bool ImageFileHandler::addImageFileType(ImageFileType &fileType)
{
    if(getFileType(fileType.getMimeType().c_str()))
        return false;
    _types.push_back(&fileType);
    return true;
}

ImageFileType *ImageFileHandler::getFileType(const Char8 *mimeType, const Char8 *fileName) const
{
    if(mimeType)
        for(ImageFileType *type : _types)
            if(type->getMimeType() == mimeType)
                return type;
    const Char8 *const dicom = "application/dicom";
    if(fileName && isFolder(fileName))
        return getFileType(dicom);
    ImageFileType *best = nullptr;
    std::size_t length = 0;
    if(fileName)
        for(ImageFileType *type : _types)
            for(const std::string &suffix : type->getSuffixList())
                if(suffix.size() > length && endsIn(fileName, suffix))
                {
                    best = type;
                    length = suffix.size();
                }
    if(!best && fileName && looksLikeDICOM(fileName))
        best = getFileType(dicom);
    return best;
}

ImageFileType *ImageFileHandler::getDefaultType() const
{
    return getFileType("image/png");
}

std::list<std::string> ImageFileHandler::getSuffixList() const
{
    std::list<std::string> all;
    for(const ImageFileType *type : _types)
        all.insert(all.end(), type->getSuffixList().begin(), type->getSuffixList().end());
    return all;
}

std::list<FormatInfo> ImageFileHandler::getFormats() const
{
    std::list<FormatInfo> all;
    for(const ImageFileType *type : _types)
        all.push_back({type->getName(), type->getMimeType(), type->getSuffixList(),
                       (type->getFlags() & ImageFileType::READ_SUPPORTED) != 0,
                       (type->getFlags() & ImageFileType::WRITE_SUPPORTED) != 0, type->isBuilt()});
    return all;
}

namespace
{

bool readPixels(const ImageFileType *type, const Char8 *fileName, const Char8 *mimeType, PixelData &pixels)
{
    std::string error;
    if(!fileName)
        return refuse("no name of an image file");
    if(!type)
        return refuse(unknownType(mimeType, fileName));
    if(!type->readFile(fileName, pixels, error))
        return refuse(error);
    tellNotices(pixels);
    return true;
}

bool readPixels(const ImageFileType *type, std::istream &in, const std::string &mimeType, PixelData &pixels)
{
    std::string error;
    std::vector<UInt8> bytes;
    if(!type)
        return refuse(unknownType(mimeType.c_str(), nullptr));
    if(!readStream(in, bytes, error) || !type->decode(bytes.data(), bytes.size(), "stream", pixels, error))
        return refuse(error);
    tellNotices(pixels);
    return true;
}

/// A new image of the pixels, or NullFC.
ImagePtr makeImage(PixelData &pixels, const std::string &name)
{
    ImagePtr image = ImageBase::create();
    if(image != NullFC && !fillImage(image, pixels, name))
    {
        addRefCP(image);
        subRefCP(image);
        return NullFC;
    }
    return image;
}

} // namespace

ImagePtr ImageFileHandler::read(const Char8 *fileName, const Char8 *mimeType)
{
    PixelData pixels;
    return readPixels(getFileType(mimeType, fileName), fileName, mimeType, pixels)
               ? makeImage(pixels, fileName)
               : ImagePtr(NullFC);
}

ImagePtr ImageFileHandler::read(std::istream &in, const std::string &mimeType)
{
    PixelData pixels;
    return readPixels(getFileType(mimeType.c_str()), in, mimeType, pixels) ? makeImage(pixels, "")
                                                                           : ImagePtr(NullFC);
}

bool ImageFileHandler::read(ImagePtr image, const Char8 *fileName, const Char8 *mimeType)
{
    PixelData pixels;
    if(image == NullFC)
        return refuse(std::string(fileName ? fileName : "") + ": there is no image to read into");
    return readPixels(getFileType(mimeType, fileName), fileName, mimeType, pixels) &&
           fillImage(image, pixels, fileName);
}

bool ImageFileHandler::read(ImagePtr image, std::istream &in, const std::string &mimeType)
{
    PixelData pixels;
    if(image == NullFC)
        return refuse("stream: there is no image to read into");
    return readPixels(getFileType(mimeType.c_str()), in, mimeType, pixels) && fillImage(image, pixels, "");
}

bool ImageFileHandler::write(ImagePtr image, const Char8 *fileName, const Char8 *mimeType)
{
    if(!fileName)
        return refuse("no name of an image file");
    if(image == NullFC)
        return refuse(std::string(fileName) + ": there is no image to be written");
    const ImageFileType *type = getFileType(mimeType, fileName);
    if(!type)
        return refuse(unknownType(mimeType, fileName));
    PixelView view;
    std::vector<UInt8> kept;
    std::string error;
    if(!viewImage(*image, fileName, view, kept, error) || !type->writeFile(fileName, view, error))
        return refuse(error);
    return true;
}

bool ImageFileHandler::write(ImagePtr image, std::ostream &out, const std::string &mimeType)
{
    if(image == NullFC)
        return refuse("stream: there is no image to be written");
    const ImageFileType *type = getFileType(mimeType.c_str());
    if(!type)
        return refuse(unknownType(mimeType.c_str(), nullptr));
    PixelView view;
    std::vector<UInt8> kept, bytes;
    std::string error;
    if(!viewImage(*image, "stream", view, kept, error) || !type->encode(view, "stream", bytes, error))
        return refuse(error);
    out.write(reinterpret_cast<const char *>(bytes.data()), std::streamsize(bytes.size()));
    return out.good() || refuse("stream: can't be written");
}

OSG_END_NAMESPACE
