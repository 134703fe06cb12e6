#ifndef _OSGGEOMETRY_H_
#define _OSGGEOMETRY_H_

/// \file
/// The core of points, lines and polygons.

#include <memory>

#include "OSGGeoColors.h"
#include "OSGGeoIndices.h"
#include "OSGGeoNormals.h"
#include "OSGGeoPLengths.h"
#include "OSGGeoPTypes.h"
#include "OSGGeoPositions.h"
#include "OSGGeoTexCoords.h"
#include "OSGGeometryBase.h"
#include "OSGIntersectActorBase.h"

OSG_BEGIN_NAMESPACE

class GeometryDrawer;
class IntersectAction;
class Window;

/// Primitives with their vertices. Properties may be shared by geometries. The setters keep references and
/// the parent entries of properties; edits are bracketed by the caller.
///
/// What the properties hold need not fit together: a primitive ends ahead of the first vertex that is not
/// there, and a property that is too short for the vertices in use is not drawn. One line is logged for it.
///
/// Drawn on the thread that draws the window, with its context current.
class OSG_SYSTEMLIB_DLLMAPPING Geometry : public GeometryBase
{
  public:
    typedef GeometryBase Inherited;

    /// The bits of indexMapping.
    enum : UInt16
    {
        MapPosition = 0x0001,
        MapNormal = 0x0002,
        MapColor = 0x0004,
        MapSecondaryColor = 0x0008,
        MapTexCoords = 0x0010,
        MapTexCoords1 = 0x0020,
        MapTexCoords2 = 0x0040,
        MapTexCoords3 = 0x0080,
        MapTexCoords4 = 0x0100,
        MapTexCoords5 = 0x0200,
        MapTexCoords6 = 0x0400,
        MapTexCoords7 = 0x0800,
        MapEmpty = 0x8000
    };
    static constexpr UInt32 NumTexCoords = 8; ///< sets of texture coordinates

    using Inherited::getColors;
    using Inherited::getIndices;
    using Inherited::getLengths;
    using Inherited::getNormals;
    using Inherited::getPositions;
    using Inherited::getSecondaryColors;
    using Inherited::getSFColors;
    using Inherited::getSFIndices;
    using Inherited::getSFLengths;
    using Inherited::getSFNormals;
    using Inherited::getSFPositions;
    using Inherited::getSFSecondaryColors;
    using Inherited::getSFTexCoords;
    using Inherited::getSFTexCoords1;
    using Inherited::getSFTexCoords2;
    using Inherited::getSFTexCoords3;
    using Inherited::getSFTexCoords4;
    using Inherited::getSFTexCoords5;
    using Inherited::getSFTexCoords6;
    using Inherited::getSFTexCoords7;
    using Inherited::getSFTypes;
    using Inherited::getTexCoords;
    using Inherited::getTexCoords1;
    using Inherited::getTexCoords2;
    using Inherited::getTexCoords3;
    using Inherited::getTexCoords4;
    using Inherited::getTexCoords5;
    using Inherited::getTexCoords6;
    using Inherited::getTexCoords7;
    using Inherited::getTypes;

    /// Takes a reference on the property, and gives back that on the old one. Null is allowed.
    void setTypes(const GeoPTypesPtr &value);
    void setLengths(const GeoPLengthsPtr &value);
    void setPositions(const GeoPositionsPtr &value);
    void setNormals(const GeoNormalsPtr &value);
    void setColors(const GeoColorsPtr &value);
    void setSecondaryColors(const GeoColorsPtr &value);
    void setTexCoords(const GeoTexCoordsPtr &value);
    void setTexCoords1(const GeoTexCoordsPtr &value);
    void setTexCoords2(const GeoTexCoordsPtr &value);
    void setTexCoords3(const GeoTexCoordsPtr &value);
    void setTexCoords4(const GeoTexCoordsPtr &value);
    void setTexCoords5(const GeoTexCoordsPtr &value);
    void setTexCoords6(const GeoTexCoordsPtr &value);
    void setTexCoords7(const GeoTexCoordsPtr &value);
    void setIndices(const GeoIndicesPtr &value);

    /// The texture coordinates of unit 0 to 7; NullFC beyond.
    GeoTexCoordsPtr getTexCoordsOfUnit(UInt32 unit) const;

    /// The property that a Map bit stands for, or null.
    const GeoProperty *getAttribute(UInt16 attribute) const;
    /// Which of a vertex's indices is for the property of that Map bit: its place in the vertex; -1 if none
    /// is.
    Int32 calcMappingIndex(UInt16 attribute) const;
    /// Whether a vertex has one index for all its properties.
    bool isSingleIndex() const { return getIndices() != NullFC && getIndexMapping().size() <= 1; }

    void adjustVolume(Volume &volume) override;

    Action::ResultE drawPrimitives(DrawActionBase *action) override;

    /// Tells an IntersectAction of the nearest triangle.
    Action::ResultE intersect(Action *action);
    /// The same for the actor.
    IntersectActorBase::ResultE intersectActor(IntersectActorBase::FunctorArgumentType &argument);

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    Geometry();
    /// A copy shares the properties; its GL objects are its own.
    Geometry(const Geometry &source);
    ~Geometry() override;

    void onCreate(const Geometry *source = nullptr);
    void onDestroy() override;

    /// Called through Window::validateGLObject for the display list and for the buffer objects.
    void handleGL(Window *win, UInt32 idstatus);
    void handleVBO(Window *win, UInt32 idstatus);

  private:
    friend class FieldContainer;
    friend class GeometryBase;

    static void initMethod();

    template <class PtrT>
    void setProperty(SField<PtrT> &field, const PtrT &value, UInt32 fieldId);
    template <class PtrT>
    void repair(SField<PtrT> &field, UInt32 fieldId, BitVector whichField, UInt32 origin);
    /// Calls `function` with each property field and its id.
    template <class FunctionT>
    void forEachProperty(const FunctionT &function);

    GeometryDrawer &drawer();
    /// Has list and buffers filled anew when they are next used.
    void refreshGL();

    std::unique_ptr<GeometryDrawer> _drawer; ///< of this aspect; made when it is first drawn
};

OSG_END_NAMESPACE

#endif
