#ifndef _OSGSORTEDPRIMITIVES_H_
#define _OSGSORTEDPRIMITIVES_H_

/// \file
/// The core of many small primitives that are drawn in an order that depends on the view.

#include <vector>

#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGMaterialFields.h>
#include <Tessaly/OSGSortedPrimitivesBase.h>

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class PrimitivesDrawerBase;

/// Triangles or quads that must be blended in order: foliage, smoke. Each has one point by which it is
/// ordered. Every fourth drawing, the first one included, makes a new order and writes `indices`; the
/// drawings between, and those of effects passes, draw what is there. No change of a field and no move of the
/// camera makes a new order; setting `sort` to 0 does.
///
/// All six properties must be set for anything to be drawn, with as many values in each as positions has, and
/// indexArray and offsetArray through their setters here. Drawing edits `indices`, `indicesSize` and `sort`
/// on the aspect that draws, on the thread of the window, with its context current. It can't be hit by an
/// IntersectAction.
class OSG_TESSALY_DLLMAPPING SortedPrimitives : public SortedPrimitivesBase
{
  public:
    typedef SortedPrimitivesBase Inherited;

    /// Takes a reference on the property and enters the core as its parent; the old one is let go. Null is
    /// allowed.
    void setRefPoints(const GeoPositionsPtr &value);
    void setPositions(const GeoPositionsPtr &value);
    void setNormals(const GeoNormalsPtr &value);
    void setTangents(const GeoNormalsPtr &value);
    void setColors(const GeoColorsPtr &value);
    void setTexCoords(const GeoTexCoordsPtr &value);
    void setIndices(const GeoIndicesPtr &value);
    /// Takes a reference on the material and gives back that on the old one.
    void setMaterial(const MaterialPtr &material);

    /// Copies the values, and gives `indices` as many entries, in a new GeoIndicesUI32 where there is none.
    /// Null is refused with a warning.
    void setIndexArray(const std::vector<Int32> *values);
    /// Copies the values: one per primitive and one more. Null is refused with a warning.
    void setOffsetArray(const std::vector<Int32> *values);

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    /// Always Continue. Warns where something is missing or does not fit together, and draws nothing then.
    Action::ResultE drawPrimitives(DrawActionBase *action) override;
    /// Does nothing. Always Continue.
    Action::ResultE intersect(Action *action);

    /// Ids of extensions and functions with Window, for the drawers.
    static UInt32 _arbMultitexture;
    static UInt32 _funcClientActiveTextureARB;
    static UInt32 _extDrawRangeElements;
    static UInt32 _funcDrawRangeElementsEXT;

  protected:
    SortedPrimitives();
    /// A copy shares the properties, `indices` too.
    SortedPrimitives(const SortedPrimitives &source);
    ~SortedPrimitives() override;

    void onCreate(const SortedPrimitives *source = nullptr);
    void onDestroy() override;

    /// Becomes the bounds of the primitives' spheres, whatever it held; left alone without refPoints.
    void adjustVolume(Volume &volume) override;

    /// The numbers of the primitives in drawing order, `numIndices` of them: as many as refPoints has.
    /// `index` has room for these, or is null for a new array, which the caller deletes. Null without an
    /// action or without refPoints.
    ///
    /// Distances are measured in the core's coordinates, heights in the world's where thresholdVal is above
    /// 0. A thresholdVal beyond -1 to 1 is brought back to what can be, with a warning.
    Int32 *calcIndex(DrawActionBase *action, UInt32 &numIndices, Int32 *index);

    /// The drawer for `mode`, or null where a property is missing, offsetArray is too short, or there is no
    /// such mode.
    PrimitivesDrawerBase *findDrawer();

  private:
    friend class FieldContainer;
    friend class SortedPrimitivesBase;

    static void initMethod();
    static bool registerNames();

    template <class FunctionT>
    void forEachProperty(const FunctionT &function);
};

OSG_END_NAMESPACE

#endif
