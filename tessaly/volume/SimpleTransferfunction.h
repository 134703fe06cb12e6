#ifndef TESSALY_SIMPLETRANSFERFUNCTION_H
#define TESSALY_SIMPLETRANSFERFUNCTION_H

/// \file
/// The transfer function that classifies each sample by its own value.

#include "Transferfunction.h"

/// Looks the sample's value up in the table; opacities are meant per 1/200 of the volume's edge.
class SimpleTransferfunction : public Transferfunction
{
  public:
    /// Empty if dependentTexture is neither 0 nor 1.
    std::string getShaderCode() override;
    /// Takes one texture unit.
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;
    bool setTransferfunctionFile(std::string fileName) override;
    bool setTransferTexture(osg::TextureChunkPtr texture) override;
    void rebuildTransferTexture(osg::UInt32 dependent) override;
    /// Does not look at \a volumeData, only at dependentTexture. Always true.
    bool setVolumeData(VolumeData *volumeData) override;
};

#endif
