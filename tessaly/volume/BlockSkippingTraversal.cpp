#include "BlockSkippingTraversal.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureChunk.h>

#include "BitVolume.h"
#include "TraversalText.h"
#include "VolumeData.h"

using namespace osg;

std::string BlockSkippingTraversal::getShaderCode() { return tessaly::blockSkippingTraversalText; }

void BlockSkippingTraversal::setShaderParameters(ChunkMaterialPtr material, SHLChunkPtr shader,
                                                 UInt32 &textureUnit, VolumeData *volumeData)
{
    if(material == NullFC || shader == NullFC)
        return;
    BitVolume *const bitVolume = volumeData == nullptr ? nullptr : volumeData->getBitVolume();
    const TextureChunkPtr texture = bitVolume == nullptr ? TextureChunkPtr() : bitVolume->getTexture();
    beginEditCP(material);
    if(texture != NullFC)
        material->addChunk(texture, State::AutoSlot);
    endEditCP(material);

    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter("bitVolume", Int32(textureUnit));
    const ImagePtr image = texture == NullFC ? ImagePtr() : texture->getImage();
    if(image != NullFC && image->getWidth() > 0 && image->getHeight() > 0 && image->getDepth() > 0)
    {
        const Vec3f size(Real32(image->getWidth()), Real32(image->getHeight()), Real32(image->getDepth()));
        shader->setUniformParameter("bitVolumeSize", size);
        shader->setUniformParameter("bitVolumeTexelSize",
                                    Vec3f(1.0f / size[0], 1.0f / size[1], 1.0f / size[2]));
    }
    endEditCP(shader, SHLChunk::ParametersFieldMask);
    ++textureUnit;
}
