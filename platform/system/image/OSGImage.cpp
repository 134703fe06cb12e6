/// \file
/// What an image holds: its form, its pixels and its attachments.

#include "OSGImage.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <sstream>

#include "ImageForm.h"
#include "OSGImageFileHandler.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void Image::initMethod() {}

void Image::changed(BitVector whichField, UInt32 origin)
{
    static std::atomic<UInt64> lastRevision{0};
    _revision = ++lastRevision;
    Inherited::changed(whichField, origin);
}

void Image::dump(UInt32 indent, const BitVector) const
{
    const std::string space(indent, ' ');
    std::ostringstream out;
    out << space << "Image \"" << getName() << "\": " << getForm().text() << ", " << getPixel().size()
        << " bytes";
    for(UInt32 i = 0; i < getAttachmentKeys().size(); ++i)
        out << "\n" << space << "  " << getAttachmentKeys()[i] << ": " << getAttachmentValues()[i];
    SLOG << out.str() << std::endl;
}

Image::Form Image::getForm() const
{
    Form form;
    form.pixelFormat = getPixelFormat();
    form.type = getDataType();
    form.width = getWidth();
    form.height = getHeight();
    form.depth = getDepth();
    form.levels = getMipMapCount();
    form.frames = getFrameCount();
    form.sides = getSideCount();
    form.frameDelay = getFrameDelay();
    return form;
}

void Image::setForm(const Form &form)
{
    const auto clamped = [](UInt64 size) { return Int32(std::min<UInt64>(size, 0x7FFFFFFF)); };
    setPixelFormat(form.pixelFormat);
    setDataType(form.type);
    setWidth(form.width);
    setHeight(form.height);
    setDepth(form.depth);
    setMipMapCount(form.levels);
    setFrameCount(form.frames);
    setSideCount(form.sides);
    setFrameDelay(form.frameDelay);
    setDimension(form.depth > 1 ? 3 : form.height > 1 ? 2 : form.width > 1 ? 1 : 0);
    setComponentSize(Int32(typeBytes(form.type)));
    setBpp(Int32(form.pixelBytes()));
    setSideSize(clamped(form.sideSize()));
    setFrameSize(clamped(form.sideSize() * UInt64(form.sides)));
}

bool Image::allocate(const Form &form)
{
    std::vector<UInt8> &pixels = editMFPixel()->getValues();
    const UInt64 size = form.size();
    // Memory of another order of size is not kept, and old pixels are not copied to where new ones come.
    if(pixels.capacity() < size || pixels.capacity() / 4 > size)
    {
        std::vector<UInt8> fresh;
        if(!Form::makePixels(fresh, size, "Image::set"))
            return false;
        pixels.swap(fresh);
    }
    else if(!Form::makePixels(pixels, size, "Image::set"))
        return false;
    setForm(form);
    return true;
}

bool Image::set(UInt32 pixelFormat, Int32 width, Int32 height, Int32 depth, Int32 mipmapCount,
                Int32 frameCount, Time frameDelay, const UInt8 *data, Int32 type, bool allocMem,
                Int32 sideCount)
{
    Form form;
    form.pixelFormat = pixelFormat;
    form.type = type;
    form.width = width;
    form.height = height;
    form.depth = depth;
    form.levels = mipmapCount;
    form.frames = frameCount;
    form.sides = sideCount;
    form.frameDelay = frameDelay;
    if(!form.isPossible())
    {
        FWARNING(("Image::set: there can't be %s\n", form.text().c_str()));
        return false;
    }
    if(!data && !allocMem)
    {
        std::vector<UInt8>().swap(editMFPixel()->getValues());
        setForm(form);
        return true;
    }
    if(!allocate(form))
        return false;
    if(data)
        std::memmove(getData(), data, std::size_t(form.size()));
    return true;
}

bool Image::set(ImagePtr image)
{
    if(image == NullFC)
    {
        FWARNING(("Image::set: there is no image to copy\n"));
        return false;
    }
    const Image &source = *image;
    if(&source == this)
        return true;
    std::vector<UInt8> pixels;
    if(!Form::makePixels(pixels, source.getPixel().size(), "Image::set"))
        return false;
    std::copy(source.getPixel().begin(), source.getPixel().end(), pixels.begin());
    editMFPixel()->getValues().swap(pixels);
    setForm(source.getForm());
    setName(source.getName());
    setForceCompressedData(source.getForceCompressedData());
    setForceAlphaChannel(source.getForceAlphaChannel());
    setForceColorChannel(source.getForceColorChannel());
    setForceAlphaBinary(source.getForceAlphaBinary());
    return true;
}

bool Image::setData(const UInt8 *data)
{
    const Form form = getForm();
    if(!data || !form.isPossible() || !allocate(form))
        return false;
    std::memmove(getData(), data, std::size_t(form.size()));
    return true;
}

bool Image::takeData(UInt32 pixelFormat, Int32 width, Int32 height, Int32 depth, Int32 type,
                     std::vector<UInt8> &data)
{
    Form form;
    form.pixelFormat = pixelFormat;
    form.type = type;
    form.width = width;
    form.height = height;
    form.depth = depth;
    if(!form.isPossible() || form.size() != data.size())
    {
        FWARNING(("Image::takeData: %u bytes aren't %s\n", UInt32(data.size()), form.text().c_str()));
        return false;
    }
    editMFPixel()->getValues().swap(data);
    setForm(form);
    return true;
}

bool Image::setSubData(Int32 offX, Int32 offY, Int32 offZ, Int32 width, Int32 height, Int32 depth,
                       const UInt8 *data)
{
    const Form form = getForm();
    UInt8 *pixels = getData();
    if(!data || !pixels || form.pixelBytes() == 0 || !form.contains(offX, offY, offZ, width, height, depth))
    {
        FWARNING(("Image::setSubData: no block of %d x %d x %d at %d, %d, %d in %s\n", width, height, depth,
                  offX, offY, offZ, form.text().c_str()));
        return false;
    }
    const std::size_t row = std::size_t(width) * form.pixelBytes();
    for(Int32 z = 0; z < depth; ++z)
        for(Int32 y = 0; y < height; ++y, data += row)
        {
            const std::size_t line = std::size_t(offZ + z) * std::size_t(form.height) + std::size_t(offY + y);
            std::memcpy(pixels + (line * std::size_t(form.width) + std::size_t(offX)) * form.pixelBytes(),
                        data, row);
        }
    return true;
}

UInt8 *Image::getData(UInt32 mipmapNum, UInt32 frameNum, UInt32 sideNum)
{
    return const_cast<UInt8 *>(static_cast<const Image *>(this)->getData(mipmapNum, frameNum, sideNum));
}

const UInt8 *Image::getData(UInt32 mipmapNum, UInt32 frameNum, UInt32 sideNum) const
{
    const Form form = getForm();
    if(getPixel().empty() || mipmapNum >= UInt32(form.levels) || frameNum >= UInt32(form.frames) ||
       sideNum >= UInt32(form.sides))
        return nullptr;
    const UInt64 offset = form.offset(mipmapNum, frameNum, sideNum);
    return offset < getPixel().getValues().size() ? getPixel().getValues().data() + offset : nullptr;
}

UInt8 *Image::editData(UInt32 mipmapNum, UInt32 frameNum, UInt32 sideNum)
{
    return getData(mipmapNum, frameNum, sideNum);
}

UInt8 *Image::editDataFast(UInt32 mipmapNum, UInt32 frameNum, UInt32 sideNum)
{
    return getData(mipmapNum, frameNum, sideNum);
}

void Image::clear()
{
    std::vector<UInt8>().swap(editMFPixel()->getValues());
    setForm(Form());
}

bool Image::isValid() const
{
    const Form form = getForm();
    return form.isPossible() && getPixel().getValues().size() == form.size();
}

bool Image::hasAlphaChannel() const
{
    return getForceAlphaChannel() || formatHasAlpha(getPixelFormat());
}

bool Image::hasColorChannel() const
{
    return getForceColorChannel() || formatHasColor(getPixelFormat());
}

bool Image::hasCompressedData() const
{
    return getForceCompressedData() || formatBlockBytes(getPixelFormat()) != 0;
}

UInt64 Image::getSize(bool withMipmap, bool withFrames, bool withSides) const
{
    const Form form = getForm();
    return (withMipmap ? form.sideSize() : form.levelSize(0)) * UInt64(withFrames ? form.frames : 1) *
           UInt64(withSides ? form.sides : 1);
}

UInt32 Image::getComponentCount() const
{
    return formatChannels(getPixelFormat());
}

void Image::calcMipmapGeometry(UInt32 mipmapNum, UInt32 &width, UInt32 &height, UInt32 &depth) const
{
    const PixelSize size = getForm().levelGeometry(mipmapNum);
    width = size.width;
    height = size.height;
    depth = size.depth;
}

UInt32 Image::calcMipmapLevelCount() const
{
    return getForm().fullLevelCount();
}

UInt64 Image::calcMipmapLevelSize(UInt32 mipmapNum) const
{
    return getForm().levelSize(mipmapNum);
}

UInt64 Image::calcMipmapSumSize(UInt32 count) const
{
    return getForm().sumSize(count);
}

UInt64 Image::calcMipmapSumSize() const
{
    return getForm().sideSize();
}

UInt32 Image::calcFrameNum(Time time, bool loop) const
{
    const Int32 count = getFrameCount();
    if(count < 2 || !(getFrameDelay() > 0.0) || !(time > 0.0))
        return 0;
    const double frame = std::floor(time / getFrameDelay());
    if(!std::isfinite(frame))
        return UInt32(count - 1);
    return UInt32(loop ? std::fmod(frame, count) : std::min(frame, double(count - 1)));
}

bool Image::read(const Char8 *fileName)
{
    return ImageFileHandler::the().read(ImagePtr(*this), fileName);
}

bool Image::write(const Char8 *fileName)
{
    return ImageFileHandler::the().write(ImagePtr(*this), fileName);
}

void Image::setAttachmentField(const std::string &key, const std::string &value)
{
    std::vector<std::string> &keys = editMFAttachmentKeys()->getValues();
    std::vector<std::string> &values = editMFAttachmentValues()->getValues();
    const auto place = std::lower_bound(keys.begin(), keys.end(), key);
    const auto index = place - keys.begin();
    if(place != keys.end() && *place == key)
    {
        values[std::size_t(index)] = value;
        return;
    }
    keys.insert(place, key);
    values.insert(values.begin() + index, value);
}

const std::string *Image::findAttachmentField(const std::string &key) const
{
    const std::vector<std::string> &keys = getAttachmentKeys().getValues();
    const auto place = std::lower_bound(keys.begin(), keys.end(), key);
    const std::size_t index = std::size_t(place - keys.begin());
    if(place == keys.end() || *place != key || index >= getAttachmentValues().size())
        return nullptr;
    return &getAttachmentValues().getValues()[index];
}

OSG_END_NAMESPACE
