#ifndef TESSALY_BOUNDARYGEOMETRY_H
#define TESSALY_BOUNDARYGEOMETRY_H

/// \file
/// The surface of the visible blocks.

#include "BVGeometry.h"

/// The surface of the set of blocks that the transfer function leaves visible, so that rays keep out of the
/// empty margin of the volume. Needs the block and the bit volume of the VolumeData; without them the surface
/// is empty.
class BoundaryGeometry : public BVGeometry
{
  public:
    /// Builds node, grid of vertices and quads. Always true.
    bool createGeometry(VolumeData *volumeData) override;
    /// Builds the quads anew; the grid stays, so the volume must have the blocks that it had.
    /// \return false, with nothing changed, if the node's core is no Geometry
    bool updateGeometry(VolumeData *volumeData) override;
};

#endif
