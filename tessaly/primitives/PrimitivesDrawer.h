#ifndef TESSALY_PRIMITIVES_PRIMITIVESDRAWER_H
#define TESSALY_PRIMITIVES_PRIMITIVESDRAWER_H

/// \file
/// The drawers of sorted primitives: they fill the core's index buffer and hand it to GL.

#include <OpenSG/OSGGL.h>
#include <Tessaly/OSGSortedPrimitives.h>

#include "PrimitiveOrder.h"

OSG_BEGIN_NAMESPACE

/// What SortedPrimitives draws through. `action` may be null; then only what OpenGL 1.1 has is used, and
/// nothing is counted. A GL context is current.
///
/// Arrays of the core that don't fit together are told in a warning, and nothing is drawn.
class PrimitivesDrawerBase
{
  public:
    /// Fills the buffer with the primitives of the numbers 0 to `numPrimitives` - 1 and draws it. Returns how
    /// many indices were written.
    virtual UInt32 draw(SortedPrimitives *core, DrawActionBase *action, UInt32 numPrimitives) = 0;
    /// Draws the buffer as it stands, `indicesSize` entries of it.
    virtual void drawCached(SortedPrimitives *core, DrawActionBase *action) = 0;
    /// As draw, with the primitives of the numbers in `order`, `numPrimitives` of them.
    virtual UInt32 drawSorted(SortedPrimitives *core, DrawActionBase *action, Int32 *order,
                              UInt32 numPrimitives) = 0;

  protected:
    virtual ~PrimitivesDrawerBase() = default;
};

OSG_END_NAMESPACE

/// Triangles. Their indices are copied in groups of three.
struct GeoTraitTriSet
{
    static constexpr GLenum primitive = GL_TRIANGLES;
    static constexpr tessaly::IndexCopy copy = tessaly::IndexCopy::Triples;
};

/// Quads. Their indices are copied as they are.
struct GeoTraitQuadSet
{
    static constexpr GLenum primitive = GL_QUADS;
    static constexpr tessaly::IndexCopy copy = tessaly::IndexCopy::Block;
};

/// The drawer for one kind of primitive. It has no state; all cores share the one instance.
template <class GeoTrait>
class PrimitivesDrawer : public osg::PrimitivesDrawerBase
{
  public:
    static PrimitivesDrawer *the();

    osg::UInt32 draw(osg::SortedPrimitives *core, osg::DrawActionBase *action,
                     osg::UInt32 numPrimitives) override;
    void drawCached(osg::SortedPrimitives *core, osg::DrawActionBase *action) override;
    osg::UInt32 drawSorted(osg::SortedPrimitives *core, osg::DrawActionBase *action, osg::Int32 *order,
                           osg::UInt32 numPrimitives) override;
};

extern template class PrimitivesDrawer<GeoTraitTriSet>;
extern template class PrimitivesDrawer<GeoTraitQuadSet>;

#endif
