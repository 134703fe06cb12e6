#include "OSGGeoFunctions.h"

#include "OSGGeoNormals3f.h"
#include "OSGGeometry.h"
#include "OSGTriangleIterator.h"

OSG_BEGIN_NAMESPACE

void calcVertexNormals(const GeometryPtr &geometry)
{
    if(geometry == NullFC || geometry->getPositions() == NullFC)
        return;
    std::vector<Vec3f> sums(geometry->getPositions()->getSize());
    TriangleIterator triangle(geometry);
    for(; !triangle.isAtEnd(); ++triangle)
    {
        const Pnt3f corner = triangle.getPosition(0);
        // Its length is twice the area.
        const Vec3f normal = (triangle.getPosition(1) - corner).cross(triangle.getPosition(2) - corner);
        for(Int32 which = 0; which < 3; ++which)
            sums[std::size_t(triangle.getPositionIndex(which))] += normal;
    }
    for(Vec3f &sum : sums)
    {
        if(sum.squareLength() > 0.f)
            sum.normalize();
        else
            sum = Vec3f(0.f, 0.f, 1.f);
    }

    const GeoNormals3fPtr normals = GeoNormals3f::create();
    normals->getField().setValues(sums);
    endEditCP(normals);
    geometry->setNormals(normals);

    // The index of the position is from here on that of the normal too.
    for(UInt16 &entry : geometry->getIndexMapping().getValues())
        entry = UInt16((entry & Geometry::MapPosition) != 0 ? entry | Geometry::MapNormal
                                                            : entry & ~Geometry::MapNormal);
    endEditCP(geometry, Geometry::NormalsFieldMask | Geometry::IndexMappingFieldMask);
}

OSG_END_NAMESPACE
