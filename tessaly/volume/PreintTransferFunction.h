#ifndef TESSALY_PREINTTRANSFERFUNCTION_H
#define TESSALY_PREINTTRANSFERFUNCTION_H

/// \file
/// The transfer function that classifies a step by the values at its two ends.

#include "Transferfunction.h"

/// Holds, beside the table, a table of its integrals: for form 0 the average over each interval of values,
/// 256 x 256 half floats; for form 1 the running integral over all values, 256 x 256 floats, from which the
/// shader takes differences. It follows the table: whatever changes that through this class computes it anew.
class PreintTransferFunction : public Transferfunction
{
  public:
    ~PreintTransferFunction() override;

    std::string getShaderCode() override;
    /// Takes one texture unit in form 0 and two in form 1.
    void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                             osg::UInt32 &textureUnit, VolumeData *volumeData) override;
    bool setTransferfunctionFile(std::string fileName) override;
    bool setTransferTexture(osg::TextureChunkPtr texture) override;
    void rebuildTransferTexture(osg::UInt32 dependent) override;
    /// Sets dependentTexture by the type of the voxels (0 without any) and brings both tables into line.
    bool setVolumeData(VolumeData *volumeData) override;

    /// Computes the integrals of a table in the present form, whatever type its image says it has. A
    /// dependentTexture other than 0 and 1 gives true and computes nothing.
    /// \return false, with one warning, for null
    bool calcPreIntTable(osg::ImagePtr transferImage);

    /// Null until computed; a reference is held.
    osg::TextureChunkPtr getPreIntTable() const { return _preIntTable; }

  private:
    osg::TextureChunkPtr _preIntTable;
};

#endif
