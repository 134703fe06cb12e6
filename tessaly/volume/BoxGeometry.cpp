#include "BoxGeometry.h"

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoPTypesUI8.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGNode.h>

#include "BoundaryQuads.h"

using namespace osg;

bool BoxGeometry::createGeometry(VolumeData *)
{
    clearRefCP(_geometryNode);

    GeoPositions3fPtr positions = GeoPositions3f::create();
    beginEditCP(positions);
    for(const std::array<float, 3> &position : tessaly::boxPositions)
        positions->getField().push_back(Pnt3f(position[0], position[1], position[2]));
    endEditCP(positions);

    GeoIndicesUI32Ptr indices = GeoIndicesUI32::create();
    beginEditCP(indices);
    for(const std::uint32_t index : tessaly::boxIndices)
        indices->getField().push_back(index);
    endEditCP(indices);

    GeoPTypesUI8Ptr types = GeoPTypesUI8::create();
    beginEditCP(types);
    types->getField().push_back(GL_QUADS);
    endEditCP(types);

    GeoPLengthsUI32Ptr lengths = GeoPLengthsUI32::create();
    beginEditCP(lengths);
    lengths->getField().push_back(UInt32(tessaly::boxIndices.size()));
    endEditCP(lengths);

    GeometryPtr geometry = GeometryBase::create();
    beginEditCP(geometry);
    geometry->setTypes(types);
    geometry->setLengths(lengths);
    geometry->setIndices(indices);
    geometry->setPositions(positions);
    endEditCP(geometry);

    _geometryNode = Node::create();
    addRefCP(_geometryNode);
    beginEditCP(_geometryNode, Node::CoreFieldMask);
    _geometryNode->setCore(geometry);
    endEditCP(_geometryNode, Node::CoreFieldMask);
    return _geometryNode != NullFC;
}

bool BoxGeometry::updateGeometry(VolumeData *)
{
    return true;
}
