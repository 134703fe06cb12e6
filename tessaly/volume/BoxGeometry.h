#ifndef TESSALY_BOXGEOMETRY_H
#define TESSALY_BOXGEOMETRY_H

/// \file
/// The whole unit cube.

#include "BVGeometry.h"

/// The unit cube, which does not depend on the transfer function.
class BoxGeometry : public BVGeometry
{
  public:
    /// \return whether there is a node
    bool createGeometry(VolumeData *volumeData) override;
    /// Nothing, and true.
    bool updateGeometry(VolumeData *volumeData) override;
};

#endif
