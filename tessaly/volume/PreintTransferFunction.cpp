#include "PreintTransferFunction.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSHLChunk.h>

#include "ImageAccess.h"
#include "PreIntegration.h"
#include "TransferText.h"
#include "VolumeData.h"

using namespace osg;

PreintTransferFunction::~PreintTransferFunction() { clearRefCP(_preIntTable); }

std::string PreintTransferFunction::getShaderCode()
{
    return tessaly::preintTransferFunctionText(dependentTexture);
}

void PreintTransferFunction::setShaderParameters(ChunkMaterialPtr material, SHLChunkPtr shader,
                                                 UInt32 &textureUnit, VolumeData *)
{
    if(material == NullFC || shader == NullFC)
        return;
    beginEditCP(material);
    material->addChunk(_preIntTable, State::AutoSlot);
    if(dependentTexture == 1)
        material->addChunk(_transferTexture, State::AutoSlot);
    endEditCP(material);

    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter("preIntTable", Int32(textureUnit));
    if(dependentTexture == 1)
    {
        ++textureUnit;
        shader->setUniformParameter("transferFunction", Int32(textureUnit));
    }
    shader->setUniformParameter("correctionFactor", 200.0f);
    endEditCP(shader, SHLChunk::ParametersFieldMask);
    ++textureUnit;
}

bool PreintTransferFunction::setTransferfunctionFile(std::string fileName)
{
    return loadTransferfunction(fileName) && calcPreIntTable(getTransferImage());
}

bool PreintTransferFunction::setTransferTexture(TextureChunkPtr texture)
{
    return adoptTransferTexture(texture) && calcPreIntTable(getTransferImage());
}

void PreintTransferFunction::rebuildTransferTexture(UInt32 dependent)
{
    ImagePtr image = makeTable(dependent);
    applyOwnPoints(image);
    // The table's chunk is set up behind this, so its filters end as GL_LINEAR in both forms.
    calcPreIntTable(image);
    if(image != NullFC)
        setTransferfunction(image);
    clearRefCP(image);
}

bool PreintTransferFunction::setVolumeData(VolumeData *volumeData)
{
    const ImagePtr voxels = volumeData == nullptr ? ImagePtr() : volumeData->getImage();
    dependentTexture = voxels != NullFC && voxels->getDataType() == Image::OSG_UINT16_IMAGEDATA ? 1 : 0;
    if(getTransferImage() == NullFC)
    {
        rebuildTransferTexture(dependentTexture);
        return true;
    }
    if(needsOtherForm())
        rebuildTransferTexture(dependentTexture);
    return calcPreIntTable(getTransferImage());
}

bool PreintTransferFunction::calcPreIntTable(ImagePtr transferImage)
{
    if(transferImage == NullFC)
    {
        FWARNING(("Transferfunction does not exist! Preintegration could not be calculated.\n"));
        return false;
    }
    if(dependentTexture > 1)
        return true;

    const bool averages = dependentTexture == 0;
    const std::uint32_t width = averages ? tessaly::sidesOf(transferImage)[0] : 256;
    ImagePtr table = tessaly::makeImage(
        GL_RGBA, {width, width, 1}, averages ? Image::OSG_FLOAT16_IMAGEDATA : Image::OSG_FLOAT32_IMAGEDATA);
    if(table == NullFC)
        return false;
    addRefCP(table);
    beginEditCP(table);
    if(averages)
    {
        std::vector<UInt8> spare;
        tessaly::averageIntervals(tessaly::valuesOf(transferImage, std::size_t(4) * width, spare), width,
                                  reinterpret_cast<Real16 *>(table->getData()));
    }
    else
    {
        std::vector<Real16> spare;
        tessaly::integrateEntries(tessaly::valuesOf(transferImage, 4 * tessaly::halfTableEntries, spare),
                                  tessaly::halfTableEntries, reinterpret_cast<float *>(table->getData()));
    }
    endEditCP(table);

    tessaly::provideTexture(_preIntTable);
    beginEditCP(_preIntTable);
    _preIntTable->setImage(table);
    _preIntTable->setInternalFormat(averages ? GL_RGBA16F_ARB : GL_RGBA32F_ARB);
    tessaly::setSampling(_preIntTable, GL_CLAMP_TO_EDGE, averages ? GL_LINEAR : GL_NEAREST);
    endEditCP(_preIntTable);
    clearRefCP(table);
    if(averages)
        return true;

    // Entries of neighbouring rows are no neighbours in value and must not be mixed.
    tessaly::provideTexture(_transferTexture);
    beginEditCP(_transferTexture);
    tessaly::setSampling(_transferTexture, GL_CLAMP_TO_EDGE, GL_NEAREST);
    endEditCP(_transferTexture);
    return true;
}
