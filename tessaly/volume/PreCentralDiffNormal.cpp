#include "PreCentralDiffNormal.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSHLChunk.h>

#include "GradientNormals.h"
#include "ImageAccess.h"
#include "NormalText.h"
#include "VolumeData.h"

using namespace osg;

PreCentralDiffNormal::PreCentralDiffNormal(TextureChunkPtr normals)
    : _computed(normals == NullFC),
      _normalTexture(normals)
{
}

PreCentralDiffNormal::~PreCentralDiffNormal() { clearRefCP(_normalTexture); }

std::string PreCentralDiffNormal::getShaderCode() { return tessaly::preCentralDiffNormalText; }

void PreCentralDiffNormal::setShaderParameters(ChunkMaterialPtr material, SHLChunkPtr shader,
                                               UInt32 &textureUnit, VolumeData *)
{
    if(material == NullFC || shader == NullFC)
        return;
    beginEditCP(material);
    material->addChunk(_normalTexture, State::AutoSlot);
    endEditCP(material);

    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter("normalVolume", Int32(textureUnit));
    endEditCP(shader, SHLChunk::ParametersFieldMask);
    ++textureUnit;
}

void PreCentralDiffNormal::setVolumeData(VolumeData *volumeData)
{
    ImagePtr voxels = volumeData == nullptr ? ImagePtr() : volumeData->getImage();
    if(voxels == NullFC)
        return;
    if(_normalTexture != NullFC && _normalTexture->getImage() != NullFC &&
       tessaly::sidesOf(_normalTexture->getImage()) == tessaly::sidesOf(voxels))
    {
        // The same sides are enough: a new volume of equal size keeps the old normals, and that is meant.
        const BitVector settings = TextureChunk::MinFilterFieldMask | TextureChunk::MagFilterFieldMask |
                                   TextureChunk::WrapSFieldMask | TextureChunk::WrapTFieldMask |
                                   TextureChunk::WrapRFieldMask;
        beginEditCP(_normalTexture, settings);
        tessaly::setSampling(_normalTexture, GL_CLAMP_TO_EDGE, GL_LINEAR);
        endEditCP(_normalTexture, settings);
        return;
    }

    ImagePtr normals = tessaly::makeImage(GL_RGB, tessaly::sidesOf(voxels), Image::OSG_UINT8_IMAGEDATA);
    if(normals == NullFC)
        return;
    addRefCP(normals);
    createPrecomputedNormals(voxels, normals, "xyz");

    tessaly::provideTexture(_normalTexture);
    beginEditCP(_normalTexture);
    _normalTexture->setImage(normals);
    _normalTexture->setInternalFormat(GL_RGB8);
    tessaly::setSampling(_normalTexture, GL_CLAMP_TO_EDGE, GL_LINEAR);
    endEditCP(_normalTexture);
    clearRefCP(normals);
    _volumeData = volumeData;
}

bool PreCentralDiffNormal::createPrecomputedNormals(ImagePtr &input, ImagePtr &output,
                                                    std::string outputFormat)
{
    const std::uint32_t pixelFormat = tessaly::pixelFormatOfChannels(outputFormat.size());
    if(pixelFormat == 0)
    {
        FFATAL(("Invalid outputFormat length in createNormalVolume: %d\n", int(outputFormat.size())));
        return false;
    }
    if(!tessaly::areGradientChannels(outputFormat))
        return false;

    ImagePtr bytes = input;
    addRefCP(bytes);
    if(input->getBpp() != 1)
    {
        setRefdCP(bytes, ImagePtr(ImageBase::create()));
        beginEditCP(bytes);
        if(input->getPixelFormat() == GL_LUMINANCE)
            bytes->set(input);
        else
            input->reformat(GL_LUMINANCE, bytes);
        if(bytes->getDataType() != Image::OSG_UINT8_IMAGEDATA)
            bytes->convertDataTypeTo(Image::OSG_UINT8_IMAGEDATA);
        endEditCP(bytes);
    }

    const tessaly::Sides sides = tessaly::sidesOf(bytes);
    beginEditCP(output);
    bool made = output->set(pixelFormat, Int32(sides[0]), Int32(sides[1]), Int32(sides[2]), 1, 1, 0.0,
                            nullptr, Image::OSG_UINT8_IMAGEDATA, true, 1);
    if(made)
    {
        std::vector<UInt8> spare;
        made = tessaly::writeGradientChannels(tessaly::valuesOf(bytes, tessaly::voxelCount(sides), spare),
                                              sides, outputFormat, output->getData());
    }
    endEditCP(output);
    clearRefCP(bytes);
    return made;
}
