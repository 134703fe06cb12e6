#ifndef TESSALY_TRANSFERFUNCTION_H
#define TESSALY_TRANSFERFUNCTION_H

/// \file
/// The base of what maps voxel values to colour and opacity.

#include <list>
#include <string>

#include <OpenSG/OSGChunkMaterialFields.h>
#include <OpenSG/OSGImageFields.h>
#include <OpenSG/OSGSHLChunkFields.h>
#include <OpenSG/OSGTextureChunkFields.h>

#include "TransferTable.h"

class VolumeData;

/// A strategy of the ray-casting program: defines the GLSL functions getClassification, applyCorrectionFactor
/// and compositeColor, and holds a table of colour and opacity with two tables derived from it.
///
/// The table has one of two forms: 256 x 1 RGBA bytes (form 0), for all voxels but those of 16 bits, and 256
/// x 256 RGBA half floats (form 1), for these, where the value is split into row and column. It comes from
/// control points or from a finished chunk, which the points then no longer describe.
///
/// Owned by VolumeNodeHandler. Used by one thread, on its aspect; no GL context is needed.
class Transferfunction
{
  public:
    /// The default control points, a ramp of grey, and no table yet.
    Transferfunction();
    Transferfunction(const Transferfunction &) = delete;
    Transferfunction &operator=(const Transferfunction &) = delete;
    virtual ~Transferfunction();

    /// The GLSL for the present form.
    virtual std::string getShaderCode() = 0;
    /// Adds the tables to \a material and sets the uniforms of \a shader; \a textureUnit is the next free
    /// unit and is counted up. Nothing happens if one of the two is null.
    virtual void setShaderParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                                     osg::UInt32 &textureUnit, VolumeData *volumeData) = 0;
    /// Reads control points from a text file (see tessaly::readTransferPoints) and makes the table from them.
    /// \return false, with one warning, if the file can't be opened
    virtual bool setTransferfunctionFile(std::string fileName) = 0;
    /// Takes a finished chunk as the table, with one reference, and sets its filters and wrapping. The
    /// control points stay, and no longer say what the table holds.
    /// \return false for null
    virtual bool setTransferTexture(osg::TextureChunkPtr texture) = 0;
    /// Makes a new table from the control points: form 0 for 0, form 1 for any other. How entries are written
    /// is told by dependentTexture, which the caller sets to the same form first.
    virtual void rebuildTransferTexture(osg::UInt32 dependent) = 0;
    /// Brings the table into line with the form.
    virtual bool setVolumeData(VolumeData *volumeData) = 0;

    /// Reads the file and makes the table; shared by the classes' setTransferfunctionFile.
    bool loadTransferfunction(std::string fileName);
    /// Puts an image into the table's chunk, which is made if it is not there. Null is only noted.
    void setTransferfunction(osg::ImagePtr image);
    /// Builds the running sum of opacity, GL_ALPHA floats of the table's size.
    /// \return false, with one warning, without a table. A table of another type than bytes and half floats
    /// gives true and builds nothing; standard output is told.
    bool calcSummedAreaTable();
    /// Builds the greatest opacity of each interval of values, width x width bytes; of a table of half floats
    /// the bytes are taken as if they were channels. No shader reads it.
    /// \return false, with one warning, without a summed area table or without a table
    bool calcDependTransferTextur();

    /// NullFC where there is none.
    osg::TextureChunkPtr getTransferTexture() const { return _transferTexture; }
    osg::ImagePtr getTransferImage() const;
    osg::ImagePtr getSummedAreaImage() const;

    /// The table's form, 0 or 1. The handler writes it.
    osg::UInt32 dependentTexture = 0;

  protected:
    /// A new image of form 0 for 0, and of form 1 for any other; one reference is the caller's.
    static osg::ImagePtr makeTable(osg::UInt32 dependent);
    /// Fills the fourth channel of the table in \a image, and stores the points. dependentTexture tells how
    /// entries are written.
    void applyAlphaPoints(osg::ImagePtr image, const std::list<AlphaPoint> &points);
    /// The same for the other three channels.
    void applyColorPoints(osg::ImagePtr image, const std::list<ColorPoint> &points);
    /// applyAlphaPoints() and applyColorPoints() with the points now in use.
    void applyOwnPoints(osg::ImagePtr image);
    /// Takes over the chunk and sets it up; what setTransferTexture of both classes does.
    bool adoptTransferTexture(osg::TextureChunkPtr texture);
    /// Whether the table is missing or of the other form, so that it has to be made anew from the points.
    bool needsOtherForm() const;

    // One reference is held on each.
    osg::TextureChunkPtr _transferTexture;
    osg::TextureChunkPtr _summedAreaTexture;
    osg::TextureChunkPtr _dependTexture;
    osg::TextureChunkPtr _spareTexture; ///< never set

    std::list<AlphaPoint> _alphaPoints; ///< of the table now in use
    std::list<ColorPoint> _colorPoints;
};

#endif
