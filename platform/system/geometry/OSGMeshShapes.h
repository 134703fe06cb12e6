#ifndef _OSGMESHSHAPES_H_
#define _OSGMESHSHAPES_H_

/// \file
/// Triangle meshes of simple shapes, as plain arrays.

#include <vector>

#include "OSGVector.h"

OSG_BEGIN_NAMESPACE

/// Triangles are counter-clockwise seen from the side of the normals. Vertices that lie at the same place
/// with another normal or texture coordinate have positions that are equal to the bit, so that closed shapes
/// have no gaps.
struct Mesh
{
    std::vector<Pnt3f> positions; ///< corners
    std::vector<Vec3f> normals; ///< of length 1
    std::vector<Vec2f> texCoords; ///< one for each corner
    std::vector<UInt32> triangles; ///< three vertices each
};

/// Centred in the plane z = 0, normal +z, texture coordinates (0, 0) at the lowest x and y.
OSG_SYSTEMLIB_DLLMAPPING Mesh meshOfPlane(Real32 xsize, Real32 ysize, UInt32 hor, UInt32 vert);
/// Centred; six planes.
OSG_SYSTEMLIB_DLLMAPPING Mesh meshOfBox(Real32 xsize, Real32 ysize, Real32 zsize, UInt32 hor, UInt32 vert,
                                        UInt32 depth);
/// A frustum of a cone about the y axis from -height / 2 to height / 2; a radius may be 0.
OSG_SYSTEMLIB_DLLMAPPING Mesh meshOfConicalFrustum(Real32 height, Real32 topRadius, Real32 bottomRadius,
                                                   UInt32 sides, bool side, bool top, bool bottom);
/// About the z axis: the tube's radius is `inner`, its middle runs at `outer`.
OSG_SYSTEMLIB_DLLMAPPING Mesh meshOfTorus(Real32 inner, Real32 outer, UInt32 sides, UInt32 rings);
/// Poles on the y axis.
OSG_SYSTEMLIB_DLLMAPPING Mesh meshOfLatLongSphere(UInt32 latitudes, UInt32 longitudes, Real32 radius);
/// An icosahedron, whose triangles are divided into four `depth` times.
OSG_SYSTEMLIB_DLLMAPPING Mesh meshOfSphere(UInt32 depth, Real32 radius);

OSG_END_NAMESPACE

#endif
