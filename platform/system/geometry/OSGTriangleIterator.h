#ifndef _OSGTRIANGLEITERATOR_H_
#define _OSGTRIANGLEITERATOR_H_

/// \file
/// Goes through a geometry triangle by triangle, however the triangles are put into primitives.

#include "OSGPrimitiveIterator.h"

OSG_BEGIN_NAMESPACE

/// Quads and polygons are split into triangles; points and lines are passed over. The vertices are in the
/// order that GL takes for the front face. What PrimitiveIterator says of missing values holds; triangles
/// with a vertex beyond the positions are passed over, though they are counted.
class OSG_SYSTEMLIB_DLLMAPPING TriangleIterator
{
  public:
    TriangleIterator() = default;
    /// At the first triangle.
    explicit TriangleIterator(const GeometryPtr &geometry);
    explicit TriangleIterator(const NodePtr &node);

    /// To the first triangle, and behind the last one.
    void setToBegin();
    void setToEnd();
    /// Goes to the triangle of that index, or the next one that is there.
    void seek(Int32 index);
    /// To the next triangle.
    void operator++();
    /// Whether it is behind the last triangle.
    bool isAtEnd() const { return _primitive.isAtEnd(); }

    /// What it walks over.
    const GeometryPtr &getGeometry() const { return _primitive.getGeometry(); }
    /// Of the triangle.
    Int32 getIndex() const { return _index; }
    /// Of the primitive that it is in.
    Int32 getPrimitiveIndex() const { return _primitive.getIndex(); }

    /// What the corner 0, 1 or 2 has: the index of the value, -1 for none, and the value.
    Int32 getPositionIndex(Int32 which) const { return _primitive.getPositionIndex(_corners[which]); }
    Pnt3f getPosition(Int32 which) const { return _primitive.getPosition(_corners[which]); }
    Int32 getNormalIndex(Int32 which) const { return _primitive.getNormalIndex(_corners[which]); }
    Vec3f getNormal(Int32 which) const { return _primitive.getNormal(_corners[which]); }
    Int32 getColorIndex(Int32 which) const { return _primitive.getColorIndex(_corners[which]); }
    Color3f getColor(Int32 which) const { return _primitive.getColor(_corners[which]); }
    Int32 getTexCoordsIndex(Int32 which, UInt32 unit = 0) const
    {
        return _primitive.getTexCoordsIndex(_corners[which], unit);
    }
    Vec2f getTexCoords(Int32 which, UInt32 unit = 0) const
    {
        return _primitive.getTexCoords(_corners[which], unit);
    }

    /// At the same triangle of the same geometry.
    bool operator==(const TriangleIterator &other) const
    {
        return _primitive == other._primitive && (isAtEnd() || _inPrimitive == other._inPrimitive);
    }
    bool operator!=(const TriangleIterator &other) const { return !(*this == other); }

  private:
    /// Takes the triangle `_inPrimitive` of the primitive, or the first behind it that can be had.
    void settle();
    UInt32 countInPrimitive() const;
    bool isWhole() const;

    PrimitiveIterator _primitive;
    Int32 _index = 0;
    UInt32 _inPrimitive = 0;
    Int32 _corners[3] = {0, 0, 0};
};

OSG_END_NAMESPACE

#endif
