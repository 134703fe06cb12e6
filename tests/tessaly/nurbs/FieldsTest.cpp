/// \file
/// The field tables of curve, surface and loop, and their way through the factory, the log and binary data.

#include "NurbsScene.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGMemoryDataHandler.h>

OSG_USING_NAMESPACE
using namespace nurbs_test;

namespace
{

struct Row
{
    const char *name;
    const char *type;
    UInt32 id;
    std::string value; ///< as text; of fields without a text form it is ""
    bool internal = false;
};

struct Class
{
    const char *name;
    const char *parent;
    std::vector<Row> rows;
};

const std::vector<Class> classes = {
    {"NurbsCurve",
     "Geometry",
     {{"controlPoint", "SFGeoPositionsPtr", 28, ""},
      {"order", "SFUInt32", 29, "3"},
      {"knot", "MFReal32", 30, ""},
      {"tessellation", "SFInt32", 31, "0"},
      {"controlCurve", "SFBool", 32, "false"},
      {"polyline", "SFBool", 33, "false"},
      {"fillGeo", "SFBool", 34, "true"},
      {"numVertices", "SFUInt32", 35, "0", true},
      {"dirty", "SFBool", 36, "true"},
      {"SurfaceGLId", "SFInt32", 37, "0", true}}},
    {"NurbsSurface",
     "Geometry",
     {{"controlPoint", "SFGeoPositionsPtr", 28, ""},
      {"uOrder", "SFUInt32", 29, "3"},
      {"vOrder", "SFUInt32", 30, "3"},
      {"uKnot", "MFReal32", 31, ""},
      {"vKnot", "MFReal32", 32, ""},
      {"uTessellation", "SFInt32", 33, "0"},
      {"vTessellation", "SFInt32", 34, "0"},
      {"uDim", "SFUInt32", 35, "0"},
      {"vDim", "SFUInt32", 36, "0"},
      {"trimmingLoop", "MFNodeCorePtr", 37, ""},
      {"controlTexCoord", "SFGeoTexCoordsPtr", 38, ""},
      {"fillGeo", "SFBool", 39, "true"},
      {"numVertices", "SFUInt32", 40, "0", true},
      {"dirty", "SFBool", 41, "true"},
      {"SurfaceGLId", "SFInt32", 42, "0", true}}},
    {"NurbsTrimmingLoop",
     "NodeCore",
     {{"trimmingContour", "MFNodeCorePtr", 3, ""}, {"trimOnly", "SFBool", 4, "true"}}}};

std::string textOf(Field *field)
{
    std::string text;
    LogCapture log; // pointers have no text form
    field->getValueByStr(text);
    return text;
}

} // namespace

TEST(NurbsFields, EveryClassIsMadeByItsNameWithTheFieldsOfItsTable)
{
    for(const Class &entry : classes)
    {
        SCOPED_TRACE(entry.name);
        const FieldContainerType *const type = FieldContainerFactory::the()->findType(entry.name);
        ASSERT_NE(type, nullptr);
        EXPECT_STREQ(type->getParent()->getCName(), entry.parent);
        EXPECT_EQ(type->getNumFieldDescs(), type->getParent()->getNumFieldDescs() + entry.rows.size());
        const Held<FieldContainerPtr> made(FieldContainerFactory::the()->createFieldContainer(entry.name));
        ASSERT_TRUE(made.ptr != NullFC);
        for(const Row &row : entry.rows)
        {
            SCOPED_TRACE(row.name);
            const FieldDescription *const field = type->getFieldDescription(row.id);
            ASSERT_NE(field, nullptr);
            EXPECT_STREQ(field->getCName(), row.name);
            EXPECT_EQ(field->getFieldId(), row.id);
            EXPECT_EQ(field->getFieldMask(), BitVector(1) << row.id);
            EXPECT_EQ(field->isInternal(), row.internal);
            EXPECT_STREQ(field->getTypeName(), row.type);
            // The prototype's value: a curve that is made has its GL object already.
            EXPECT_EQ(textOf(type->getPrototype()->getField(row.id)), row.value);
        }
    }
    EXPECT_EQ(UInt32(NurbsCurve::NextFieldId), 38u);
    EXPECT_EQ(UInt32(NurbsSurface::NextFieldId), 43u);
    EXPECT_EQ(UInt32(NurbsTrimmingLoop::NextFieldId), 5u);
    EXPECT_EQ(BitVector(NurbsSurface::MTInfluenceMask), BitVector(Geometry::MTInfluenceMask));
}

TEST(NurbsFields, WhatIsMadeHasAGlObjectOfItsOwn)
{
    const Held<NurbsCurvePtr> curve;
    const Held<NurbsSurfacePtr> surface;
    EXPECT_GT(curve->getSurfaceGLId(), 0);
    EXPECT_GT(surface->getSurfaceGLId(), 0);
    EXPECT_NE(curve->getSurfaceGLId(), surface->getSurfaceGLId());
}

TEST(NurbsFields, DumpWritesOneLine)
{
    for(const Class &entry : classes)
    {
        const Held<FieldContainerPtr> made(FieldContainerFactory::the()->createFieldContainer(entry.name));
        LogCapture log;
        made->dump();
        ASSERT_EQ(log.count(), 1u);
        EXPECT_EQ(log.messages()[0].level, LOG_LOG);
        EXPECT_EQ(log.text(), std::string("Dump ") + entry.name + " NI\n");
    }
}

TEST(NurbsFields, BinaryDataBringsTheValuesAcrossAlsoBeyondTheThirtySecondField)
{
    const Held<GeoTexCoordsPtr> texCoords(GeoTexCoordsPtr::dcast(make<GeoTexCoords2f>({Vec2f(0, 0)})));
    const Held<NurbsTrimmingLoopPtr> loop;
    const Held<NurbsSurfacePtr> source;
    const Held<NurbsSurfacePtr> target;
    source->setUOrder(4);
    source->setVTessellation(-7);
    source->setUDim(11);
    source->getUKnot().setValues({0, 0.5f, 1});
    source->getTrimmingLoop().push_back(loop.ptr);
    source->setControlTexCoord(texCoords.ptr);
    source->setFillGeo(false);

    const BitVector beyond = NurbsSurface::VTessellationFieldMask | NurbsSurface::UDimFieldMask |
                             NurbsSurface::TrimmingLoopFieldMask | NurbsSurface::ControlTexCoordFieldMask |
                             NurbsSurface::FillGeoFieldMask;
    MemoryDataHandler memory;
    source->copyToBin(memory, beyond);
    EXPECT_EQ(memory.getData().size(), 4u + 4u + (4u + 4u) + 4u + 1u);
    EXPECT_EQ(source->getBinSize(beyond), memory.getData().size());
    target->copyFromBin(memory, beyond);
    EXPECT_EQ(memory.remaining(), 0u);
    EXPECT_EQ(target->getVTessellation(), -7);
    EXPECT_EQ(target->getUDim(), 11u);
    ASSERT_EQ(target->getTrimmingLoop().size(), 1u);
    EXPECT_TRUE(target->getTrimmingLoop(0) == loop.ptr);
    EXPECT_TRUE(target->getControlTexCoord() == texCoords.ptr);
    EXPECT_FALSE(target->getFillGeo());
    EXPECT_EQ(target->getUOrder(), 3u) << "not selected";
    // The link is made good as for any field that was written without its setter.
    target->changed(NurbsSurface::ControlTexCoordFieldMask, ChangedOrigin::Abstract);
    EXPECT_EQ(texCoords.ptr.getRefCount(), 3);

    const Held<NurbsCurvePtr> curve;
    const Held<NurbsCurvePtr> other;
    curve->editMFKnot()->setValues({0, 1, 2});
    curve->setTessellation(9);
    curve->setPolyline(true);
    const BitVector mask =
        NurbsCurve::KnotFieldMask | NurbsCurve::TessellationFieldMask | NurbsCurve::PolylineFieldMask;
    MemoryDataHandler curveMemory;
    curve->copyToBin(curveMemory, mask);
    EXPECT_EQ(curveMemory.getData().size(), 4u + 3u * 4u + 4u + 1u);
    other->copyFromBin(curveMemory, mask);
    EXPECT_EQ(other->getKnot().getValues(), (std::vector<Real32>{0, 1, 2}));
    EXPECT_EQ(other->getTessellation(), 9);
    EXPECT_TRUE(other->getPolyline());

    const Held<NurbsTrimmingLoopPtr> from;
    const Held<NurbsTrimmingLoopPtr> to;
    from->getTrimmingContour().push_back(curve.ptr);
    from->setTrimOnly(false);
    MemoryDataHandler loopMemory;
    const BitVector both = NurbsTrimmingLoop::TrimmingContourFieldMask | NurbsTrimmingLoop::TrimOnlyFieldMask;
    from->copyToBin(loopMemory, both);
    EXPECT_EQ(loopMemory.getData().size(), 4u + 4u + 1u);
    to->copyFromBin(loopMemory, both);
    EXPECT_TRUE(to->getTrimmingContour(0) == curve.ptr);
    EXPECT_FALSE(to->getTrimOnly());
}
