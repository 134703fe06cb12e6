#include "OSGPrimitiveIterator.h"

#include <algorithm>

#include "OSGNode.h"

OSG_BEGIN_NAMESPACE

PrimitiveIterator::PrimitiveIterator(const GeometryPtr &geometry) : _geometry(geometry)
{
    setToBegin();
}

PrimitiveIterator::PrimitiveIterator(const NodePtr &node)
    : PrimitiveIterator(node != NullFC ? GeometryPtr::dcast(node->getCore()) : GeometryPtr())
{
}

void PrimitiveIterator::setToBegin()
{
    _index = _first = _length = _count = _vertices = 0;
    if(_geometry == NullFC || _geometry->getTypes() == NullFC || _geometry->getPositions() == NullFC)
        return;
    const UInt32 types = _geometry->getTypes()->getSize();
    _count = _geometry->getLengths() == NullFC ? std::min<UInt32>(types, 1)
                                               : std::min(types, _geometry->getLengths()->getSize());
    if(_geometry->getIndices() == NullFC)
        _vertices = _geometry->getPositions()->getSize();
    else
        _vertices =
            _geometry->getIndices()->getSize() / std::max<UInt32>(1, _geometry->getIndexMapping().size());
    readPrimitive();
}

void PrimitiveIterator::setToEnd()
{
    setToBegin();
    _index = _count;
}

void PrimitiveIterator::seek(Int32 index)
{
    setToBegin();
    while(Int32(_index) < index && !isAtEnd())
        ++*this;
}

void PrimitiveIterator::operator++()
{
    if(isAtEnd())
        return;
    ++_index;
    _first += _length;
    readPrimitive();
}

void PrimitiveIterator::readPrimitive()
{
    _length = 0;
    if(isAtEnd())
        return;
    _type = _geometry->getTypes()->getValue(_index);
    const UInt32 asked =
        _geometry->getLengths() == NullFC ? _vertices : _geometry->getLengths()->getValue(_index);
    _length = std::min(asked, _vertices - _first);
}

Int32 PrimitiveIterator::find(UInt16 attribute, Int32 which) const
{
    if(which < 0 || UInt32(which) >= _length)
        return -1;
    const GeoProperty *const property = _geometry->getAttribute(attribute);
    const Int32 place = _geometry->calcMappingIndex(attribute);
    if(property == nullptr || place < 0)
        return -1;
    UInt32 index = _first + UInt32(which);
    if(_geometry->getIndices() != NullFC)
    {
        const UInt32 perVertex = std::max<UInt32>(1, _geometry->getIndexMapping().size());
        index = _geometry->getIndices()->getValue(index * perVertex + UInt32(place));
    }
    return index < property->getSize() ? Int32(index) : -1;
}

Pnt3f PrimitiveIterator::getPosition(Int32 which) const
{
    const Int32 index = getPositionIndex(which);
    return index < 0 ? Pnt3f() : _geometry->getPositions()->getValue(UInt32(index));
}

Vec3f PrimitiveIterator::getNormal(Int32 which) const
{
    const Int32 index = getNormalIndex(which);
    return index < 0 ? Vec3f() : _geometry->getNormals()->getValue(UInt32(index));
}

Color3f PrimitiveIterator::getColor(Int32 which) const
{
    const Int32 index = getColorIndex(which);
    return index < 0 ? Color3f(0.f, 0.f, 0.f) : _geometry->getColors()->getValue(UInt32(index));
}

Color3f PrimitiveIterator::getSecondaryColor(Int32 which) const
{
    const Int32 index = getSecondaryColorIndex(which);
    return index < 0 ? Color3f(0.f, 0.f, 0.f) : _geometry->getSecondaryColors()->getValue(UInt32(index));
}

Int32 PrimitiveIterator::getTexCoordsIndex(Int32 which, UInt32 unit) const
{
    return unit < Geometry::NumTexCoords ? find(UInt16(Geometry::MapTexCoords << unit), which) : -1;
}

Vec2f PrimitiveIterator::getTexCoords(Int32 which, UInt32 unit) const
{
    const Int32 index = getTexCoordsIndex(which, unit);
    return index < 0 ? Vec2f() : _geometry->getTexCoordsOfUnit(unit)->getValue(UInt32(index));
}

OSG_END_NAMESPACE
