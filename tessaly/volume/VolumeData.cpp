#include "VolumeData.h"

#include <cstdio>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>

#include "BitVolume.h"
#include "BlockVolume.h"
#include "ImageAccess.h"

using namespace osg;

namespace
{

/// What standard output is told of a type of voxels.
const char *nameOfType(Int32 dataType)
{
    switch(dataType)
    {
    case Image::OSG_UINT8_IMAGEDATA:
        return "8Bit\n";
    case Image::OSG_UINT16_IMAGEDATA:
        return "16Bit\n";
    case Image::OSG_UINT32_IMAGEDATA:
        return "32Bit\n";
    default:
        return "?Bit\n";
    }
}

void normalise(const ImagePtr &image, bool swapped)
{
    const std::size_t count =
        std::min(tessaly::voxelCount(tessaly::sidesOf(image)), tessaly::bytesOf(image) / 2);
    beginEditCP(image);
    tessaly::normaliseSixteenBits(reinterpret_cast<std::uint16_t *>(image->getData()), count, swapped);
    endEditCP(image);
}

} // namespace

VolumeData::~VolumeData()
{
    clearRefCP(_texture);
    delete _bitVolume;
    delete _blockVolume;
}

bool VolumeData::setVolume(TextureChunkPtr texture, bool swapped, bool normalised)
{
    if(texture == NullFC)
    {
        FWARNING(("VolumeData::setVolume() Couldn't set empty volume!\n"));
        return false;
    }
    setRefdCP(_texture, texture);

    const ImagePtr image = getImage();
    if(image == NullFC)
    {
        FWARNING(("VolumeData::setVolume() Volume texture without image!\n"));
        return false;
    }
    const Int32 dataType = image->getDataType();
    const bool sixteenBits = dataType == Image::OSG_UINT16_IMAGEDATA;
    if(sixteenBits && !normalised)
        normalise(image, swapped);
    std::printf("%s", nameOfType(dataType));

    const std::string *const thickness = image->findAttachmentField("SliceThickness");
    if(thickness == nullptr)
        FNOTICE(("No Slice Thickness found, set to default\n"));
    const std::array<float, 3> spacing =
        tessaly::parseSliceThickness(thickness == nullptr ? nullptr : thickness->c_str());
    _sliceThickness = Vec3f(spacing[0], spacing[1], spacing[2]);

    const UInt32 format = tessaly::singleChannelFormat(UInt32(dataType), image->getPixelFormat());
    if(sixteenBits || format != image->getPixelFormat())
    {
        beginEditCP(image, Image::PixelFormatFieldMask);
        image->setPixelFormat(format);
        endEditCP(image, Image::PixelFormatFieldMask);
        SNOTICE << "PixelFormat: " << format;
    }

    const BitVector settings = TextureChunk::WrapRFieldMask | TextureChunk::WrapTFieldMask |
                               TextureChunk::WrapSFieldMask | TextureChunk::MagFilterFieldMask |
                               TextureChunk::MinFilterFieldMask | TextureChunk::InternalFormatFieldMask;
    beginEditCP(_texture, settings);
    tessaly::setSampling(_texture, GL_CLAMP_TO_BORDER, GL_LINEAR);
    if(sixteenBits)
    {
        _texture->setInternalFormat(GL_LUMINANCE16);
        _texture->imageContentChanged(-1, -1, -1, -1, -1, -1);
    }
    endEditCP(_texture, settings);

    calcVolumeSize();
    std::printf("Resolution of Volume %f %f %f\n", double(image->getWidth()), double(image->getHeight()),
                double(image->getDepth()));
    std::printf("Size of Volume %f %f %f\n", double(_volumeSize[0]), double(_volumeSize[1]),
                double(_volumeSize[2]));
    image->dump(0, 0);
    return true;
}

void VolumeData::calcVolumeSize()
{
    const Vec3us resolution = getResolution();
    std::printf("Volume Slice Thickness %f %f %f; ", double(_sliceThickness[0]), double(_sliceThickness[1]),
                double(_sliceThickness[2]));
    const std::array<float, 3> size =
        tessaly::objectSize({_sliceThickness[0], _sliceThickness[1], _sliceThickness[2]},
                            {resolution[0], resolution[1], resolution[2]});
    _volumeSize = Vec3f(size[0], size[1], size[2]);
    SNOTICE << "size: " << _volumeSize << std::endl;
}

bool VolumeData::resizeVolume(int blockSize)
{
    if(_texture == NullFC)
    {
        FWARNING(("The input volume is empty.\n"));
        return false;
    }
    const ImagePtr image = getImage();
    if(image == NullFC)
    {
        FWARNING(("The input volume has no valid image.\n"));
        return false;
    }
    if(blockSize < 0)
        return true;

    const tessaly::Sides sides = tessaly::sidesOf(image);
    const tessaly::Sides padded = tessaly::paddedSides(sides, std::uint32_t(blockSize));
    SNOTICE << "Resize Volume Res: " << padded[0] << ", " << padded[1] << ", " << padded[2] << std::endl;
    const Int32 dataType = image->getDataType();
    const bool sixteenBits = dataType == Image::OSG_UINT16_IMAGEDATA;
    if(!sixteenBits && dataType != Image::OSG_UINT8_IMAGEDATA)
        return true;

    const std::size_t voxelBytes = sixteenBits ? 2 : 1;
    ImagePtr larger = ImageBase::create();
    addRefCP(larger);
    beginEditCP(larger);
    if(!larger->set(GL_LUMINANCE, Int32(padded[0]), Int32(padded[1]), Int32(padded[2]), 1, 1, 0.0, nullptr,
                    dataType, true, 1))
    {
        clearRefCP(larger);
        return false;
    }
    std::vector<UInt8> spare;
    tessaly::copyPadded(tessaly::valuesOf(image, tessaly::voxelCount(sides) * voxelBytes, spare), sides,
                        voxelBytes, larger->getData(), padded);
    endEditCP(larger);

    beginEditCP(_texture);
    _texture->setImage(larger);
    // Meant for 8-bit voxels too.
    _texture->setInternalFormat(GL_LUMINANCE16);
    // The two kinds of voxels are wrapped differently; that is meant.
    tessaly::setSampling(_texture, sixteenBits ? GL_CLAMP_TO_BORDER : GL_CLAMP_TO_EDGE, GL_LINEAR);
    _texture->imageContentChanged(-1, -1, -1, -1, -1, -1);
    endEditCP(_texture);
    clearRefCP(larger);
    // The size in object space stays that of the volume as it was set; that is meant.
    return true;
}

ImagePtr VolumeData::getImage() const { return _texture == NullFC ? ImagePtr() : _texture->getImage(); }

Vec3us VolumeData::getResolution() const
{
    const tessaly::Sides sides = tessaly::sidesOf(getImage());
    return Vec3us(UInt16(sides[0]), UInt16(sides[1]), UInt16(sides[2]));
}

void VolumeData::setBitVolume(BitVolume *bitVolume)
{
    if(bitVolume == _bitVolume)
        return;
    delete _bitVolume;
    _bitVolume = bitVolume;
}

void VolumeData::setBlockVolume(BlockVolume *blockVolume)
{
    if(blockVolume == _blockVolume)
        return;
    delete _blockVolume;
    _blockVolume = blockVolume;
}
