#ifndef _OSGGEOFUNCTIONS_H_
#define _OSGGEOFUNCTIONS_H_

/// \file
/// Work on whole geometries.

#include "OSGGeometryFields.h"

OSG_BEGIN_NAMESPACE

/// Gives the geometry new normals, one per position: the mean of the triangles around it, weighted by their
/// areas, of length 1. Positions in no triangle get (0, 0, 1). The edit is closed here. Nothing for NullFC or
/// without positions.
OSG_SYSTEMLIB_DLLMAPPING void calcVertexNormals(const GeometryPtr &geometry);

OSG_END_NAMESPACE

#endif
