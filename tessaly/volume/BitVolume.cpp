#include "BitVolume.h"

#include <cstdio>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>

#include "BlockReduction.h"
#include "ImageAccess.h"

using namespace osg;

BitVolume::~BitVolume()
{
    clearRefCP(_image);
    clearRefCP(_texture);
}

bool BitVolume::calcBitVolumen(const ImagePtr &blockVolume, const ImagePtr &summedAreaTable)
{
    if(blockVolume == NullFC)
    {
        FWARNING(("Blockvolume is empty\n"));
        return false;
    }
    if(summedAreaTable == NullFC)
    {
        FWARNING(("Summed Area Table is empty\n"));
        return false;
    }
    if(_image == NullFC)
    {
        _image = ImageBase::create();
        addRefCP(_image);
    }

    const Int32 dataType = blockVolume->getDataType();
    const tessaly::Sides sides = tessaly::sidesOf(blockVolume);
    const std::size_t blocks = tessaly::voxelCount(sides);
    if(dataType != Image::OSG_UINT16_IMAGEDATA && dataType != Image::OSG_UINT8_IMAGEDATA)
        std::printf("Unknown Volume Format"); // without a line end, and no failure: both are meant
    else if(blocks > 0)
    {
        const std::size_t sumCount = tessaly::bytesOf(summedAreaTable) / sizeof(float);
        std::vector<float> spareSums;
        const float *const sums = tessaly::valuesOf(summedAreaTable, sumCount, spareSums);
        beginEditCP(_image);
        if(_image->set(GL_ALPHA, Int32(sides[0]), Int32(sides[1]), Int32(sides[2]), 1, 1, 0.0, nullptr,
                       Image::OSG_UINT8_IMAGEDATA, true, 1))
        {
            if(dataType == Image::OSG_UINT16_IMAGEDATA)
            {
                std::vector<std::uint16_t> spare;
                tessaly::judgeBlocks(tessaly::valuesOf(blockVolume, 2 * blocks, spare), blocks, sums,
                                     sumCount, _image->getData());
            }
            else
            {
                std::vector<std::uint8_t> spare;
                tessaly::judgeBlocks(tessaly::valuesOf(blockVolume, 2 * blocks, spare), blocks, sums,
                                     sumCount, _image->getData());
            }
        }
        endEditCP(_image);
    }

    tessaly::provideTexture(_texture);
    beginEditCP(_texture);
    _texture->setImage(_image);
    _texture->setInternalFormat(GL_ALPHA16);
    tessaly::setSampling(_texture, GL_CLAMP_TO_EDGE, GL_NEAREST);
    endEditCP(_texture);
    return true;
}
