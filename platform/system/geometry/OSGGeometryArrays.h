#ifndef _OSGGEOMETRYARRAYS_H_
#define _OSGGEOMETRYARRAYS_H_

/// \file
/// A geometry as plain arrays, and what of it can be drawn without reading past their ends.

#include <string>
#include <vector>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// One property of the vertices.
struct VertexArray
{
    const UInt8 *data = nullptr; ///< values one behind the other; null for none
    UInt32 format = 0;           ///< GL type of a component
    UInt32 componentBytes = 0; ///< bytes of a component
    UInt32 dimension = 0; ///< components of a value
    UInt32 size = 0;      ///< number of values
    Int32 place = -1;     ///< which of a vertex's indices is for it; -1: none, it is not drawn

    /// Bytes of one value, and of all.
    UInt32 valueBytes() const { return componentBytes * dimension; }
    std::size_t bytes() const { return std::size_t(valueBytes()) * size; }
    /// Whether there is anything in it and a place to bind it to.
    bool isUsed() const { return size != 0 && place >= 0; }
};

/// What the places of GeometryArrays::arrays are for.
enum VertexArrayRole : UInt32
{
    PositionRole,
    NormalRole,
    ColorRole,
    SecondaryColorRole,
    TexCoordsRole, ///< of unit 0; the others follow
    NumVertexArrayRoles = TexCoordsRole + 8
};

/// The indices of all vertices, one vertex behind the other.
struct IndexArray
{
    const UInt8 *data = nullptr; ///< the indices
    UInt32 bytes = 0; ///< of an index: 1, 2 or 4
    UInt32 size = 0;  ///< number of indices
    UInt32 perVertex = 1; ///< indices of one vertex

    /// Vertices.
    UInt32 vertices() const { return size / perVertex; }
    /// The index at that place, whatever its type.
    UInt32 operator[](UInt32 index) const;
};

/// Vertices of consecutive numbers that GL can be given at once.
struct DrawRange
{
    UInt32 type; ///< GL_POINTS to GL_POLYGON
    UInt32 first; ///< where it begins
    UInt32 count; ///< how many

    /// The same range.
    friend bool operator==(const DrawRange &a, const DrawRange &b)
    {
        return a.type == b.type && a.first == b.first && a.count == b.count;
    }
};

/// All arrays of a geometry.
struct GeometryArrays
{
    VertexArray arrays[NumVertexArrayRoles]; ///< by role
    bool indexed = false; ///< whether indices select the values
    IndexArray indices; ///< the indices
    std::vector<UInt32> types;   ///< of each primitive
    std::vector<UInt32> lengths; ///< in vertices
    bool hasLengths = false;     ///< false: one primitive of all vertices
};

/// How many of each kind are drawn.
struct PrimitiveCounts
{
    UInt32 primitives = 0; ///< primitives
    UInt32 vertices = 0; ///< vertices
    UInt32 triangles = 0; ///< triangles
    UInt32 lines = 0; ///< lines
    UInt32 points = 0; ///< points
};

/// What is to be drawn, call by call.
struct DrawPlan
{
    /// In the order of drawing; primitives of the same type that stand alone are joined.
    std::vector<DrawRange> ranges;
    /// How many of each kind are drawn.
    PrimitiveCounts counts;
    /// What can be drawn, as a bit per VertexArrayRole.
    UInt32 usable = 0;
    /// The lowest and highest index in use, 0 where there is nothing to draw.
    UInt32 minIndex = 0;
    UInt32 maxIndex = 0;
    /// What doesn't fit together, for the log; empty if all does.
    std::string problem;
};

/// Adds a primitive to the counts.
OSG_SYSTEMLIB_DLLMAPPING void countPrimitive(UInt32 type, UInt32 length, PrimitiveCounts &counts);

/// How the arrays are drawn.
OSG_SYSTEMLIB_DLLMAPPING DrawPlan planDrawing(const GeometryArrays &arrays);

/// Whether a vertex has several indices, so that GL can't be given the arrays as they are.
OSG_SYSTEMLIB_DLLMAPPING bool needsExpansion(const GeometryArrays &arrays);

/// Writes the usable properties anew, with a value for each vertex that the plan draws, so that no indices
/// are needed. `store` holds the values; `result` points into it. The plan's ranges hold for both.
OSG_SYSTEMLIB_DLLMAPPING void expandVertices(const GeometryArrays &arrays, const DrawPlan &plan,
                                             std::vector<UInt8> &store, GeometryArrays &result);

OSG_END_NAMESPACE

#endif
