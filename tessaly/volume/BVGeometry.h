#ifndef TESSALY_BVGEOMETRY_H
#define TESSALY_BVGEOMETRY_H

/// \file
/// The base of the shapes in which rays start and end.

#include <OpenSG/OSGNodeFields.h>

class VolumeData;

/// Makes a closed shape around the visible part of the volume, in the unit cube, outwards counter-clockwise.
/// Its front faces give the rays' entry points and its back faces the exit points.
///
/// Owned by VolumeNodeHandler, which calls it when block and bit volume are up to date. Used by one thread,
/// on its aspect; no GL context is needed.
class BVGeometry
{
  public:
    BVGeometry() = default;
    BVGeometry(const BVGeometry &) = delete;
    BVGeometry &operator=(const BVGeometry &) = delete;
    virtual ~BVGeometry();

    /// Builds the node, in place of one that there is.
    virtual bool createGeometry(VolumeData *volumeData) = 0;
    /// Brings the node into line with the visible blocks.
    virtual bool updateGeometry(VolumeData *volumeData) = 0;
    /// Nothing here.
    virtual void setVolumeData(VolumeData *) {}

    /// A node with a Geometry core, null until created; a reference is held.
    osg::NodePtr getNode() const { return _geometryNode; }

  protected:
    osg::NodePtr _geometryNode;
};

#endif
