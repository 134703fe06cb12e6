#include "BlockVolume.h"

#include <cstdio>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>

#include "BlockReduction.h"
#include "ImageAccess.h"
#include "VolumeData.h"

using namespace osg;

BlockVolume::~BlockVolume() { clearRefCP(_texture); }

template <class VoxelT>
void BlockVolume::reduce(const ImagePtr &voxels, UInt32 edge)
{
    const tessaly::Sides sides = tessaly::sidesOf(voxels);
    std::vector<VoxelT> spare;
    const VoxelT *const values = tessaly::valuesOf(voxels, tessaly::voxelCount(sides), spare);
    _texels.resize(tessaly::voxelCount(tessaly::blockSides(sides, edge)) * 2 * sizeof(VoxelT));
    tessaly::reduceBlocks(values, sides, edge, reinterpret_cast<VoxelT *>(_texels.data()));
    ++_numPasses;
}

bool BlockVolume::calcBlockVolumen(VolumeData &volume, const int blockSize)
{
    ImagePtr voxels = volume.getImage();
    if(voxels == NullFC)
    {
        FWARNING(("Das Eingabevolumen ist leer\n"));
        return false;
    }
    const UInt32 edge = UInt32(blockSize);
    const tessaly::Sides sides = tessaly::sidesOf(voxels);
    if(tessaly::paddedSides(sides, edge) != sides)
    {
        volume.resizeVolume(blockSize);
        voxels = volume.getImage();
    }
    else
        volume.resizeVolume(-1);

    ImagePtr blocks = ImageBase::create();
    addRefCP(blocks);
    const Int32 dataType = voxels->getDataType();
    if(dataType == Image::OSG_UINT16_IMAGEDATA || dataType == Image::OSG_UINT8_IMAGEDATA)
    {
        const tessaly::Sides grid = tessaly::blockSides(tessaly::sidesOf(voxels), edge);
        const UInt64 revision = voxels->getRevision();
        if(revision == 0 || revision != _revision || blockSize != _blockSize)
        {
            if(dataType == Image::OSG_UINT16_IMAGEDATA)
                reduce<std::uint16_t>(voxels, edge);
            else
                reduce<std::uint8_t>(voxels, edge);
            _revision = revision;
            _blockSize = blockSize;
        }
        beginEditCP(blocks);
        blocks->set(GL_LUMINANCE_ALPHA, Int32(grid[0]), Int32(grid[1]), Int32(grid[2]), 1, 1, 0.0,
                    _texels.data(), dataType, true, 1);
        endEditCP(blocks);
    }
    else
        std::printf("Unknown Volume Format"); // without a line end, and no failure: both are meant

    tessaly::provideTexture(_texture);
    beginEditCP(_texture);
    _texture->setImage(blocks);
    tessaly::setSampling(_texture, GL_CLAMP_TO_EDGE, GL_NEAREST);
    endEditCP(_texture);
    clearRefCP(blocks);
    return true;
}

ImagePtr BlockVolume::getImage() const { return _texture == NullFC ? ImagePtr() : _texture->getImage(); }
