#include "OSGSimpleGeometry.h"

#include "OSGGL.h"
#include "OSGGeoIndicesUI32.h"
#include "OSGGeoNormals3f.h"
#include "OSGGeoPLengthsUI32.h"
#include "OSGGeoPTypesUI8.h"
#include "OSGGeoPositions3f.h"
#include "OSGGeoTexCoords2f.h"
#include "OSGGeometry.h"
#include "OSGLog.h"
#include "OSGMeshShapes.h"
#include "OSGNode.h"

OSG_BEGIN_NAMESPACE

namespace
{

template <class PtrT>
PtrT makeProperty(const typename PtrT::StoredObjectType::StoredFieldType::StorageType &values)
{
    const PtrT property = PtrT::StoredObjectType::create();
    beginEditCP(property);
    property->getField().setValues(values);
    endEditCP(property);
    return property;
}

NodePtr nodeOf(const GeometryPtr &geometry)
{
    return geometry == NullFC ? NodePtr() : makeNodeFor(geometry);
}

GeometryPtr refuse(const Char8 *maker, const Char8 *reason)
{
    SWARNING << maker << ": " << reason << std::endl;
    return NullFC;
}

} // namespace

GeometryPtr makeMeshGeo(const Mesh &mesh)
{
    const GeometryPtr geometry = Geometry::create();
    beginEditCP(geometry);
    geometry->setTypes(makeProperty<GeoPTypesUI8Ptr>({UInt8(GL_TRIANGLES)}));
    geometry->setLengths(makeProperty<GeoPLengthsUI32Ptr>({UInt32(mesh.triangles.size())}));
    geometry->setPositions(makeProperty<GeoPositions3fPtr>(mesh.positions));
    geometry->setNormals(makeProperty<GeoNormals3fPtr>(mesh.normals));
    geometry->setTexCoords(makeProperty<GeoTexCoords2fPtr>(mesh.texCoords));
    geometry->setIndices(makeProperty<GeoIndicesUI32Ptr>(mesh.triangles));
    geometry->getIndexMapping().push_back(Geometry::MapPosition | Geometry::MapNormal | Geometry::MapColor |
                                          Geometry::MapTexCoords);
    geometry->setMaterial(getDefaultMaterial());
    endEditCP(geometry);
    return geometry;
}

GeometryPtr makePlaneGeo(Real32 xsize, Real32 ysize, UInt16 hor, UInt16 vert)
{
    if(hor == 0 || vert == 0)
        return refuse("makePlane", "hor and vert must be 1 or more");
    return makeMeshGeo(meshOfPlane(xsize, ysize, hor, vert));
}

NodePtr makePlane(Real32 xsize, Real32 ysize, UInt16 hor, UInt16 vert)
{
    return nodeOf(makePlaneGeo(xsize, ysize, hor, vert));
}

GeometryPtr makeBoxGeo(Real32 xsize, Real32 ysize, Real32 zsize, UInt16 hor, UInt16 vert, UInt16 depth)
{
    if(hor == 0 || vert == 0 || depth == 0)
        return refuse("makeBox", "hor, vert and depth must be 1 or more");
    return makeMeshGeo(meshOfBox(xsize, ysize, zsize, hor, vert, depth));
}

NodePtr makeBox(Real32 xsize, Real32 ysize, Real32 zsize, UInt16 hor, UInt16 vert, UInt16 depth)
{
    return nodeOf(makeBoxGeo(xsize, ysize, zsize, hor, vert, depth));
}

GeometryPtr makeConicalFrustumGeo(Real32 height, Real32 topradius, Real32 botradius, UInt16 sides,
                                  bool doSide, bool doTop, bool doBottom)
{
    if(sides < 3 || !(height > 0.f) || !(topradius >= 0.f) || !(botradius >= 0.f))
        return refuse("makeConicalFrustum", "3 sides, a height and radii of 0 or more are needed");
    return makeMeshGeo(meshOfConicalFrustum(height, topradius, botradius, sides, doSide, doTop, doBottom));
}

NodePtr makeConicalFrustum(Real32 height, Real32 topradius, Real32 botradius, UInt16 sides, bool doSide,
                           bool doTop, bool doBottom)
{
    return nodeOf(makeConicalFrustumGeo(height, topradius, botradius, sides, doSide, doTop, doBottom));
}

GeometryPtr makeConeGeo(Real32 height, Real32 botradius, UInt16 sides, bool doSide, bool doBottom)
{
    return makeConicalFrustumGeo(height, 0.f, botradius, sides, doSide, false, doBottom);
}

NodePtr makeCone(Real32 height, Real32 botradius, UInt16 sides, bool doSide, bool doBottom)
{
    return nodeOf(makeConeGeo(height, botradius, sides, doSide, doBottom));
}

GeometryPtr makeCylinderGeo(Real32 height, Real32 radius, UInt16 sides, bool doSide, bool doTop,
                            bool doBottom)
{
    return makeConicalFrustumGeo(height, radius, radius, sides, doSide, doTop, doBottom);
}

NodePtr makeCylinder(Real32 height, Real32 radius, UInt16 sides, bool doSide, bool doTop, bool doBottom)
{
    return nodeOf(makeCylinderGeo(height, radius, sides, doSide, doTop, doBottom));
}

GeometryPtr makeTorusGeo(Real32 innerRadius, Real32 outerRadius, UInt16 sides, UInt16 rings)
{
    if(sides < 3 || rings < 3)
        return refuse("makeTorus", "sides and rings must be 3 or more");
    return makeMeshGeo(meshOfTorus(innerRadius, outerRadius, sides, rings));
}

NodePtr makeTorus(Real32 innerRadius, Real32 outerRadius, UInt16 sides, UInt16 rings)
{
    return nodeOf(makeTorusGeo(innerRadius, outerRadius, sides, rings));
}

GeometryPtr makeSphereGeo(UInt16 depth, Real32 radius)
{
    if(depth > 10)
        return refuse("makeSphere", "depth must be 10 or less");
    return makeMeshGeo(meshOfSphere(depth, radius));
}

NodePtr makeSphere(UInt16 depth, Real32 radius)
{
    return nodeOf(makeSphereGeo(depth, radius));
}

GeometryPtr makeLatLongSphereGeo(UInt16 latres, UInt16 longres, Real32 radius)
{
    if(latres < 2 || longres < 3)
        return refuse("makeLatLongSphere", "latres must be 2 or more, longres 3 or more");
    return makeMeshGeo(meshOfLatLongSphere(latres, longres, radius));
}

NodePtr makeLatLongSphere(UInt16 latres, UInt16 longres, Real32 radius)
{
    return nodeOf(makeLatLongSphereGeo(latres, longres, radius));
}

OSG_END_NAMESPACE
