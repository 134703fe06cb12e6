#ifndef _OSGGEOMETRYDRAWER_H_
#define _OSGGEOMETRYDRAWER_H_

/// \file
/// Hands a geometry over to GL: from memory, as a display list, from buffer objects.

#include "OSGGeometryArrays.h"
#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

class Geometry;

/// One aspect's drawing of one geometry. Keeps the plan of what can be drawn until the geometry changes. All
/// operations but `forget` need a current GL context.
class GeometryDrawer
{
  public:
    /// The geometry has changed.
    void forget() { _planned = false; }

    /// Brings the plan into line with the geometry. True if it is a new one; then it logs what does not fit
    /// together.
    bool update(const Geometry &geometry);
    /// How the geometry is drawn.
    const DrawPlan &plan() const { return _plan; }

    /// Draws from memory. `window` may be null; then only what OpenGL 1.1 has is drawn.
    void drawFromMemory(Window *window);
    /// Draws from this window's buffer objects, which must be filled.
    void drawFromBuffers(Window *window, UInt32 vertexBuffer, UInt32 indexBuffer);

    /// Whether the window's context has buffer objects.
    static bool hasBuffers(Window *window);
    /// Fills the buffer with the vertices or with the indices.
    void fillVertexBuffer(Window *window, UInt32 buffer);
    void fillIndexBuffer(Window *window, UInt32 buffer);
    /// Makes and deletes a buffer object.
    static UInt32 makeBuffer(Window *window);
    static void deleteBuffer(Window *window, UInt32 buffer);

    /// Whether GL reads the indices.
    bool isIndexed() const { return _arrays.indexed && !needsExpansion(_arrays); }
    /// Bytes of all that is drawn.
    std::size_t bytes() const;
    /// Gives memory back that only a first draw needs.
    void releaseExpanded();

  private:
    static void collect(const Geometry &geometry, GeometryArrays &arrays);
    static bool sameMemory(const GeometryArrays &a, const GeometryArrays &b);

    /// The arrays that GL is given.
    const GeometryArrays &drawn();
    /// Sets up the arrays, from memory or in the buffers that are bound, draws all ranges, and takes the
    /// arrays back.
    void draw(Window *window, bool fromBuffers);
    std::size_t bufferOffset(UInt32 role);

    bool _planned = false;
    GeometryArrays _arrays;
    DrawPlan _plan;
    bool _isExpanded = false;
    GeometryArrays _expanded;
    std::vector<UInt8> _expandedStore;
};

OSG_END_NAMESPACE

#endif
