#ifndef _OSGPRIMITIVEITERATOR_H_
#define _OSGPRIMITIVEITERATOR_H_

/// \file
/// Goes through a geometry's primitives and their vertices.

#include "OSGGeometry.h"
#include "OSGNodeFields.h"

OSG_BEGIN_NAMESPACE

/// Goes through the primitives as they are, of any type. The geometry must not change meanwhile; no reference
/// is held. Primitives end where the vertices do; a property that isn't there, or has no value for a vertex,
/// gives index -1 and a value of zeros.
class OSG_SYSTEMLIB_DLLMAPPING PrimitiveIterator
{
  public:
    PrimitiveIterator() = default;
    /// At the begin. Null: at the end.
    explicit PrimitiveIterator(const GeometryPtr &geometry);
    /// Of the node's core, if that is a geometry.
    explicit PrimitiveIterator(const NodePtr &node);

    /// To the first primitive, and behind the last one.
    void setToBegin();
    void setToEnd();
    /// Goes to the primitive of that index.
    void seek(Int32 index);
    /// To the next primitive.
    void operator++();
    /// Whether it is behind the last primitive.
    bool isAtEnd() const { return _index >= _count; }

    /// What it walks over.
    const GeometryPtr &getGeometry() const { return _geometry; }
    /// Of the primitive.
    Int32 getIndex() const { return Int32(_index); }
    /// A GL type.
    UInt32 getType() const { return _type; }
    /// In vertices.
    UInt32 getLength() const { return _length; }

    /// What the vertex `which` of the primitive, less than getLength(), has: the index of the value, -1 for
    /// none, and the value.
    Int32 getPositionIndex(Int32 which) const { return find(Geometry::MapPosition, which); }
    Pnt3f getPosition(Int32 which) const;
    Int32 getNormalIndex(Int32 which) const { return find(Geometry::MapNormal, which); }
    Vec3f getNormal(Int32 which) const;
    Int32 getColorIndex(Int32 which) const { return find(Geometry::MapColor, which); }
    Color3f getColor(Int32 which) const;
    Int32 getSecondaryColorIndex(Int32 which) const { return find(Geometry::MapSecondaryColor, which); }
    Color3f getSecondaryColor(Int32 which) const;
    Int32 getTexCoordsIndex(Int32 which, UInt32 unit = 0) const;
    Vec2f getTexCoords(Int32 which, UInt32 unit = 0) const;

    /// At the same primitive of the same geometry.
    bool operator==(const PrimitiveIterator &other) const
    {
        return _geometry == other._geometry && _index == other._index;
    }
    bool operator!=(const PrimitiveIterator &other) const { return !(*this == other); }

  private:
    void readPrimitive();
    Int32 find(UInt16 attribute, Int32 which) const;

    GeometryPtr _geometry;
    UInt32 _count = 0;    ///< of primitives
    UInt32 _vertices = 0; ///< of the geometry
    UInt32 _index = 0;
    UInt32 _type = 0;
    UInt32 _first = 0;
    UInt32 _length = 0;
};

OSG_END_NAMESPACE

#endif
