#ifndef _OSGSIMPLEGEOMETRY_H_
#define _OSGSIMPLEGEOMETRY_H_

/// \file
/// Makers of simple shapes.

#include "OSGGeometryFields.h"
#include "OSGNodeFields.h"
#include "OSGMaterial.h"

OSG_BEGIN_NAMESPACE

struct Mesh;

// All shapes are triangles with one index per vertex, normals, texture coordinates and the default material.
// The makers ending in Geo give the core, the others a new node with it; no reference is held on either. A
// shape without any steps is refused with a warning, and NullFC returned.

/// In the plane z = 0, centred, seen from +z: hor x vert quads. makePlaneGeo(w, h, 1, 1) has four vertices.
OSG_SYSTEMLIB_DLLMAPPING NodePtr makePlane(Real32 xsize, Real32 ysize, UInt16 hor, UInt16 vert);
OSG_SYSTEMLIB_DLLMAPPING GeometryPtr makePlaneGeo(Real32 xsize, Real32 ysize, UInt16 hor, UInt16 vert);

/// Centred; each side is divided into hor, vert and depth steps along x, y and z.
OSG_SYSTEMLIB_DLLMAPPING NodePtr makeBox(Real32 xsize, Real32 ysize, Real32 zsize, UInt16 hor, UInt16 vert,
                                         UInt16 depth);
OSG_SYSTEMLIB_DLLMAPPING GeometryPtr makeBoxGeo(Real32 xsize, Real32 ysize, Real32 zsize, UInt16 hor,
                                                UInt16 vert, UInt16 depth);

/// About the y axis from -height / 2 to height / 2.
OSG_SYSTEMLIB_DLLMAPPING NodePtr makeCone(Real32 height, Real32 botradius, UInt16 sides, bool doSide = true,
                                          bool doBottom = true);
OSG_SYSTEMLIB_DLLMAPPING GeometryPtr makeConeGeo(Real32 height, Real32 botradius, UInt16 sides,
                                                 bool doSide = true, bool doBottom = true);
OSG_SYSTEMLIB_DLLMAPPING NodePtr makeCylinder(Real32 height, Real32 radius, UInt16 sides, bool doSide = true,
                                              bool doTop = true, bool doBottom = true);
OSG_SYSTEMLIB_DLLMAPPING GeometryPtr makeCylinderGeo(Real32 height, Real32 radius, UInt16 sides,
                                                     bool doSide = true, bool doTop = true,
                                                     bool doBottom = true);
OSG_SYSTEMLIB_DLLMAPPING NodePtr makeConicalFrustum(Real32 height, Real32 topradius, Real32 botradius,
                                                    UInt16 sides, bool doSide = true, bool doTop = true,
                                                    bool doBottom = true);
OSG_SYSTEMLIB_DLLMAPPING GeometryPtr makeConicalFrustumGeo(Real32 height, Real32 topradius, Real32 botradius,
                                                           UInt16 sides, bool doSide = true,
                                                           bool doTop = true, bool doBottom = true);

/// About the z axis; the tube has the radius innerRadius, its middle runs at outerRadius.
OSG_SYSTEMLIB_DLLMAPPING NodePtr makeTorus(Real32 innerRadius, Real32 outerRadius, UInt16 sides,
                                           UInt16 rings);
OSG_SYSTEMLIB_DLLMAPPING GeometryPtr makeTorusGeo(Real32 innerRadius, Real32 outerRadius, UInt16 sides,
                                                  UInt16 rings);

/// 20 * 4^depth triangles of about the same size, depth up to 10.
OSG_SYSTEMLIB_DLLMAPPING NodePtr makeSphere(UInt16 depth, Real32 radius);
OSG_SYSTEMLIB_DLLMAPPING GeometryPtr makeSphereGeo(UInt16 depth, Real32 radius);

/// Poles on the y axis; latres steps from pole to pole, at least 2, and longres around, at least 3.
OSG_SYSTEMLIB_DLLMAPPING NodePtr makeLatLongSphere(UInt16 latres, UInt16 longres, Real32 radius);
OSG_SYSTEMLIB_DLLMAPPING GeometryPtr makeLatLongSphereGeo(UInt16 latres, UInt16 longres, Real32 radius);

/// A geometry of one GL_TRIANGLES primitive.
OSG_SYSTEMLIB_DLLMAPPING GeometryPtr makeMeshGeo(const Mesh &mesh);

OSG_END_NAMESPACE

#endif
