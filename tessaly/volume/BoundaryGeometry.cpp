#include "BoundaryGeometry.h"

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoPTypesUI8.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGNode.h>

#include "BitVolume.h"
#include "BlockVolume.h"
#include "BoundaryQuads.h"
#include "ImageAccess.h"
#include "VolumeData.h"

using namespace osg;

namespace
{

/// Blocks per axis; zeros without a block volume.
tessaly::Sides blocksOf(VolumeData *volumeData)
{
    BlockVolume *const blocks = volumeData == nullptr ? nullptr : volumeData->getBlockVolume();
    return tessaly::sidesOf(blocks == nullptr ? ImagePtr() : blocks->getImage());
}

ImagePtr bitsOf(VolumeData *volumeData)
{
    BitVolume *const bits = volumeData == nullptr ? nullptr : volumeData->getBitVolume();
    return bits == nullptr || bits->getTexture() == NullFC ? ImagePtr() : bits->getTexture()->getImage();
}

} // namespace

bool BoundaryGeometry::createGeometry(VolumeData *volumeData)
{
    clearRefCP(_geometryNode);

    GeoPTypesUI8Ptr types = GeoPTypesUI8::create();
    beginEditCP(types);
    types->getField().push_back(GL_QUADS);
    endEditCP(types);

    const std::vector<std::array<float, 3>> corners = tessaly::blockCorners(blocksOf(volumeData));
    GeoPositions3fPtr positions = GeoPositions3f::create();
    beginEditCP(positions);
    positions->getField().reserve(corners.size());
    for(const std::array<float, 3> &corner : corners)
        positions->getField().push_back(Pnt3f(corner[0], corner[1], corner[2]));
    endEditCP(positions);

    GeometryPtr geometry = GeometryBase::create();
    beginEditCP(geometry);
    geometry->setVbo(true);
    geometry->setTypes(types);
    geometry->setPositions(positions);
    endEditCP(geometry);

    _geometryNode = Node::create();
    addRefCP(_geometryNode);
    beginEditCP(_geometryNode, Node::CoreFieldMask);
    _geometryNode->setCore(geometry);
    endEditCP(_geometryNode, Node::CoreFieldMask);
    updateGeometry(volumeData);
    return true;
}

bool BoundaryGeometry::updateGeometry(VolumeData *volumeData)
{
    const GeometryPtr geometry =
        _geometryNode == NullFC ? GeometryPtr() : GeometryPtr::dcast(_geometryNode->getCore());
    if(geometry == NullFC)
        return false;

    const tessaly::Sides blocks = blocksOf(volumeData);
    std::vector<UInt8> spare;
    const UInt8 *const occupied = tessaly::valuesOf(bitsOf(volumeData), tessaly::voxelCount(blocks), spare);
    std::vector<std::uint32_t> quads = tessaly::boundaryQuads(occupied, blocks);

    GeoPLengthsUI32Ptr lengths = GeoPLengthsUI32::create();
    beginEditCP(lengths);
    lengths->getField().push_back(UInt32(quads.size()));
    endEditCP(lengths);

    GeoIndicesUI32Ptr indices = GeoIndicesUI32::create();
    beginEditCP(indices);
    indices->getField().getValues().swap(quads);
    endEditCP(indices);

    const BitVector fields = Geometry::IndicesFieldMask | Geometry::LengthsFieldMask | Geometry::VboFieldMask;
    beginEditCP(geometry, fields);
    geometry->setIndices(indices);
    geometry->setLengths(lengths);
    endEditCP(geometry, fields);
    return true;
}
