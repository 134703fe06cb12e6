#include "SimpleTransferfunction.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureChunk.h>

#include "TransferText.h"

using namespace osg;

std::string SimpleTransferfunction::getShaderCode()
{
    return tessaly::simpleTransferfunctionText(dependentTexture);
}

void SimpleTransferfunction::setShaderParameters(ChunkMaterialPtr material, SHLChunkPtr shader,
                                                 UInt32 &textureUnit, VolumeData *)
{
    if(material == NullFC || shader == NullFC)
        return;
    beginEditCP(material);
    material->addChunk(_transferTexture, State::AutoSlot);
    endEditCP(material);

    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter("transferFunction", Int32(textureUnit));
    shader->setUniformParameter("correctionFactor", 200.0f);
    endEditCP(shader, SHLChunk::ParametersFieldMask);
    ++textureUnit;
}

bool SimpleTransferfunction::setTransferfunctionFile(std::string fileName)
{
    return loadTransferfunction(fileName);
}

bool SimpleTransferfunction::setTransferTexture(TextureChunkPtr texture)
{
    return adoptTransferTexture(texture);
}

void SimpleTransferfunction::rebuildTransferTexture(UInt32 dependent)
{
    ImagePtr image = makeTable(dependent);
    applyOwnPoints(image);
    if(image != NullFC)
        setTransferfunction(image);
    clearRefCP(image);
}

bool SimpleTransferfunction::setVolumeData(VolumeData *)
{
    if(needsOtherForm())
        rebuildTransferTexture(dependentTexture);
    return true;
}
