#include <algorithm>
#include <memory>

#include <OpenSG/OSGBoxVolume.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGeoColors3f.h>
#include <OpenSG/OSGGeoPositions4f.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGMemoryDataHandler.h>
#include <Tessaly/OSGRenderParams.h>

#include "PrimitiveScene.h"
#include "primitives/PrimitivesDrawer.h"

using namespace osg;

namespace
{

struct Row
{
    const char *name;
    const char *type;
    UInt32 id;
    std::string value; ///< as text; of pointers it is ""
    bool internal = false;
};

const Row rows[] = {{"refPoints", "SFGeoPositionsPtr", 4, ""},
                    {"positions", "SFGeoPositionsPtr", 5, ""},
                    {"normals", "SFGeoNormalsPtr", 6, ""},
                    {"tangents", "SFGeoNormalsPtr", 7, ""},
                    {"colors", "SFGeoColorsPtr", 8, ""},
                    {"texCoords", "SFGeoTexCoordsPtr", 9, ""},
                    {"indices", "SFGeoIndicesPtr", 10, ""},
                    {"indexArray", "MFInt32", 11, ""},
                    {"offsetArray", "MFInt32", 12, ""},
                    {"size", "SFVec3f", 13, "1 1 1"},
                    {"mode", "SFUInt32", 14, "0"},
                    {"drawOrder", "SFUInt32", 15, "0"},
                    {"thresholdVal", "SFReal32", 16, "0.85"},
                    {"thresholdDir", "SFVec3f", 17, "0 1 0"},
                    {"occluderSpheres", "MFVec4f", 18, ""},
                    {"lowerBound", "SFReal32", 19, "0.25"},
                    {"indicesSize", "SFUInt32", 20, "0", true},
                    {"sort", "SFUInt32", 21, "0", true}};

const Color4f white(1.f, 1.f, 1.f, 1.f);

/// Ten squares at z = 0, -1, ... -9, whose points' heights are 0, -1, 2, -3 ...
Held<SortedPrimitivesPtr> makeTen(UInt32 mode = 1)
{
    std::vector<Pnt3f> points;
    for(int i = 0; i < 10; ++i)
        points.emplace_back(0.f, float(i % 2 == 0 ? i : -i) / 100.f, float(-i));
    return Held<SortedPrimitivesPtr>(makeSquares(points, std::vector<Color4f>(10, white), mode));
}

std::vector<Int32> orderOf(const SortedPrimitivesPtr &core, DrawActionBase *action)
{
    UInt32 count = 77;
    const std::unique_ptr<Int32[]> order(SortedAccess::order(*core, action, count, nullptr));
    EXPECT_NE(order, nullptr);
    return std::vector<Int32>(order.get(), order.get() + count);
}

} // namespace

TEST(SortedPrimitives, HasTheFieldsOfItsTable)
{
    const FieldContainerType *const type = FieldContainerFactory::the()->findType("SortedPrimitives");
    ASSERT_NE(type, nullptr);
    EXPECT_FALSE(type->isAbstract());
    EXPECT_STREQ(type->getParent()->getCName(), "MaterialDrawable");
    EXPECT_EQ(UInt32(SortedPrimitives::NextFieldId), 22u);
    EXPECT_EQ(type->getNumFieldDescs(), type->getParent()->getNumFieldDescs() + 18u);
    EXPECT_EQ(BitVector(SortedPrimitives::SortFieldMask), BitVector(1) << 21);
    EXPECT_EQ(BitVector(SortedPrimitives::MTInfluenceMask), BitVector(MaterialDrawable::MTInfluenceMask));
    const Held<FieldContainerPtr> made(
        FieldContainerFactory::the()->createFieldContainer("SortedPrimitives"));
    ASSERT_NE(SortedPrimitivesPtr::dcast(made), NullFC);
    for(const Row &row : rows)
    {
        SCOPED_TRACE(row.name);
        const FieldDescription *const field = type->getFieldDescription(row.id);
        ASSERT_NE(field, nullptr);
        EXPECT_STREQ(field->getCName(), row.name);
        EXPECT_EQ(field->getFieldId(), row.id);
        EXPECT_EQ(field->getFieldMask(), BitVector(1) << row.id);
        EXPECT_EQ(field->isInternal(), row.internal);
        EXPECT_STREQ(field->getTypeName(), row.type);
        LogCapture log;
        std::string text;
        made->getField(row.id)->getValueByStr(text);
        EXPECT_EQ(text, row.value);
    }
    LogCapture log;
    made->dump();
    EXPECT_EQ(log.text(LOG_LOG), "Dump SortedPrimitives NI\n");
    EXPECT_EQ(log.count(), 1u);
}

TEST(SortedPrimitives, BinaryDataBringsTheValuesAcross)
{
    const Held<SortedPrimitivesPtr> source(SortedPrimitives::create());
    const Held<SortedPrimitivesPtr> target(SortedPrimitives::create());
    const std::vector<Int32> offsets{0, 3, 7};
    source->setOffsetArray(&offsets);
    source->setThresholdDir(Vec3f(1.f, 2.f, 3.f));
    source->setMode(9);
    source->getOccluderSpheres().push_back(Vec4f(1.f, 2.f, 3.f, 4.f));
    source->setSort(3);
    const BitVector mask = SortedPrimitives::OffsetArrayFieldMask | SortedPrimitives::ModeFieldMask |
                           SortedPrimitives::ThresholdDirFieldMask |
                           SortedPrimitives::OccluderSpheresFieldMask | SortedPrimitives::SortFieldMask;
    MemoryDataHandler memory;
    source->copyToBin(memory, mask);
    EXPECT_EQ(memory.getData().size(), (4u + 12u) + 4u + 12u + (4u + 16u) + 4u);
    EXPECT_EQ(source->getBinSize(mask), memory.getData().size());
    target->copyFromBin(memory, mask);
    EXPECT_EQ(memory.remaining(), 0u);
    EXPECT_EQ(target->getOffsetArray().getValues(), offsets);
    EXPECT_EQ(target->getThresholdDir(), Vec3f(1.f, 2.f, 3.f));
    EXPECT_EQ(target->getMode(), 9u);
    ASSERT_EQ(target->getOccluderSpheres().size(), 1u);
    EXPECT_EQ(target->getOccluderSpheres(0), Vec4f(1.f, 2.f, 3.f, 4.f));
    EXPECT_EQ(target->getSort(), 3u);
    MemoryDataHandler none;
    source->copyToBin(none, 0);
    EXPECT_TRUE(none.getData().empty());
    EXPECT_EQ(source->getBinSize(0), 0u);
}

TEST(SortedPrimitives, PropertiesAreReferencedAndKnowTheCoreByTheirField)
{
    const Held<GeoPositions3fPtr> positions(GeoPositions3f::create());
    const Held<GeoNormals3fPtr> normals(GeoNormals3f::create());
    const Held<GeoColors3fPtr> colors(GeoColors3f::create());
    const Held<GeoTexCoords2fPtr> texCoords(GeoTexCoords2f::create());
    const Held<GeoIndicesUI32Ptr> indices(GeoIndicesUI32::create());
    const Held<ChunkMaterialPtr> material(ChunkMaterial::create());
    {
        const Held<SortedPrimitivesPtr> core(SortedPrimitives::create());
        core->setRefPoints(positions.ptr);
        EXPECT_EQ(positions->getParents(0).getParentFieldPos(), 4);
        core->setPositions(positions.ptr);
        core->setNormals(normals.ptr);
        core->setTangents(normals.ptr);
        core->setColors(colors.ptr);
        core->setTexCoords(texCoords.ptr);
        core->setIndices(indices.ptr);
        core->setMaterial(material.ptr);
        EXPECT_EQ(positions->getParents(1).getParentFieldPos(), 5);
        EXPECT_EQ(normals->getParents(0).getParentFieldPos(), 6);
        EXPECT_EQ(normals->getParents(1).getParentFieldPos(), 7);
        EXPECT_EQ(colors->getParents(0).getParentFieldPos(), 8);
        EXPECT_EQ(texCoords->getParents(0).getParentFieldPos(), 9);
        EXPECT_EQ(indices->getParents(0).getParentFieldPos(), 10);
        EXPECT_TRUE(indices->getParents(0) == core.ptr);
        EXPECT_EQ(positions.ptr.getRefCount(), 3);
        EXPECT_EQ(material.ptr.getRefCount(), 2);

        // The same one again, a copy of the core, and null.
        core->setColors(colors.ptr);
        EXPECT_EQ(colors.ptr.getRefCount(), 2);
        EXPECT_EQ(colors->getParents().size(), 1u);
        {
            const Held<FieldContainerPtr> copy(core->shallowCopy());
            EXPECT_EQ(colors.ptr.getRefCount(), 3);
            EXPECT_EQ(colors->getParents().size(), 2u);
            EXPECT_EQ(material.ptr.getRefCount(), 3);
        }
        EXPECT_EQ(colors->getParents().size(), 1u);
        core->setTexCoords(NullFC);
        EXPECT_EQ(texCoords.ptr.getRefCount(), 1);
        EXPECT_TRUE(texCoords->getParents().empty());
    }
    EXPECT_EQ(positions.ptr.getRefCount(), 1);
    EXPECT_TRUE(positions->getParents().empty());
    EXPECT_EQ(normals.ptr.getRefCount(), 1);
    EXPECT_EQ(indices.ptr.getRefCount(), 1);
    EXPECT_EQ(material.ptr.getRefCount(), 1);
}

TEST(SortedPrimitives, LinksWrittenWithoutASetterAreRepairedAsTheOriginTells)
{
    const Held<GeoColors3fPtr> colors(GeoColors3f::create());
    const Held<ChunkMaterialPtr> material(ChunkMaterial::create());
    const auto edited = [&](UInt32 origin) {
        const SortedPrimitivesPtr core = SortedPrimitives::create();
        addRefCP(core);
        core->getSFColors()->setValue(colors.ptr);
        core->getSFMaterial()->setValue(material.ptr);
        core->changed(SortedPrimitives::ColorsFieldMask | SortedPrimitives::MaterialFieldMask, origin);
        return core;
    };
    // Linked and counted.
    SortedPrimitivesPtr core = edited(ChangedOrigin::Abstract);
    EXPECT_EQ(colors.ptr.getRefCount(), 2);
    EXPECT_EQ(colors->findParent(core), 0);
    EXPECT_EQ(material.ptr.getRefCount(), 2);
    // With the check a good link stays.
    core->changed(SortedPrimitives::ColorsFieldMask,
                  ChangedOrigin::Abstract | ChangedOrigin::AbstrCheckValid);
    EXPECT_EQ(colors.ptr.getRefCount(), 2);
    EXPECT_EQ(colors->getParents().size(), 1u);
    subRefCP(core);
    EXPECT_EQ(colors.ptr.getRefCount(), 1);
    EXPECT_EQ(material.ptr.getRefCount(), 1);
    // With the check a missing one is made.
    core = edited(ChangedOrigin::Abstract | ChangedOrigin::AbstrCheckValid);
    EXPECT_EQ(colors.ptr.getRefCount(), 2);
    EXPECT_EQ(colors->findParent(core), 0);
    subRefCP(core);
    // Only the reference.
    core = edited(ChangedOrigin::Abstract | ChangedOrigin::AbstrIncRefCount);
    EXPECT_EQ(colors.ptr.getRefCount(), 2);
    EXPECT_EQ(colors->findParent(core), -1);
    EXPECT_EQ(material.ptr.getRefCount(), 2);
    subRefCP(core);
    EXPECT_EQ(colors.ptr.getRefCount(), 1);
    // Any other change leaves the fields alone.
    core = edited(ChangedOrigin::External);
    EXPECT_EQ(colors.ptr.getRefCount(), 1);
    core->getSFColors()->setValue(NullFC);
    core->getSFMaterial()->setValue(NullFC);
    subRefCP(core);
}

TEST(SortedPrimitives, TheIndexArrayMakesRoomInTheDrawBuffer)
{
    const Held<SortedPrimitivesPtr> core(SortedPrimitives::create());
    const std::vector<Int32> five{4, 3, 2, 1, 0};
    core->setIndexArray(&five);
    ASSERT_NE(core->getIndices(), NullFC);
    EXPECT_NE(GeoIndicesUI32Ptr::dcast(core->getIndices()), NullFC);
    EXPECT_EQ(core->getIndices()->getSize(), 5u);
    EXPECT_EQ(core->getIndices()->findParent(core), 0);
    EXPECT_EQ(core->getIndexArray().getValues(), five);
    const GeoIndicesPtr kept = core->getIndices();
    const std::vector<Int32> two{8, 9};
    core->setIndexArray(&two);
    EXPECT_TRUE(core->getIndices() == kept);
    EXPECT_EQ(kept->getSize(), 2u);
    EXPECT_EQ(core->getIndexArray().getValues(), two);
    const std::vector<Int32> none;
    core->setIndexArray(&none);
    EXPECT_EQ(kept->getSize(), 0u);
    EXPECT_TRUE(core->getIndexArray().empty());
    LogCapture log;
    core->setIndexArray(nullptr);
    core->setOffsetArray(nullptr);
    EXPECT_EQ(log.text(LOG_WARNING), "SortedPrimitives: there is no index array to set\n"
                                     "SortedPrimitives: there is no offset array to set\n");
}

TEST(SortedPrimitives, TheVolumeIsThatOfSpheresAroundThePoints)
{
    const Held<SortedPrimitivesPtr> core(SortedPrimitives::create());
    BoxVolume box;
    box.setBounds(Pnt3f(-9.f, -9.f, -9.f), Pnt3f(9.f, 9.f, 9.f));
    box.setValid(false);
    SortedAccess::adjust(*core.ptr, box);
    EXPECT_FALSE(box.isValid()); // untouched
    EXPECT_FALSE(box.isEmpty());
    Pnt3f low;
    Pnt3f high;

    core->setRefPoints(makePoints({Pnt3f(1.f, 2.f, 3.f), Pnt3f(5.f, -2.f, 3.f)}));
    core->setSize(Vec3f(3.f, 0.f, 4.f)); // of length 5
    SortedAccess::adjust(*core.ptr, box);
    EXPECT_TRUE(box.isValid());
    box.getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(-4.f, -7.f, -2.f));
    EXPECT_EQ(high, Pnt3f(10.f, 7.f, 8.f));

    core->setRefPoints(makePoints({}));
    SortedAccess::adjust(*core.ptr, box);
    EXPECT_TRUE(box.isEmpty());
    BoxVolume fixed;
    fixed.setValid(false);
    fixed.setStatic();
    SortedAccess::adjust(*core.ptr, fixed);
    EXPECT_FALSE(fixed.isValid());
}

TEST(SortedPrimitives, NewPointsMakeTheNodesVolumesBeComputedAnew)
{
    const Held<SortedPrimitivesPtr> core(SortedPrimitives::create());
    const Held<NodePtr> node(makeNodeFor(core.ptr));
    core->setRefPoints(makePoints({Pnt3f(0.f, 0.f, 0.f)}));
    endEditCP(core.ptr, SortedPrimitives::RefPointsFieldMask);
    Pnt3f low;
    Pnt3f high;
    node->getVolume(true).getBounds(low, high);
    EXPECT_NEAR(high[0], std::sqrt(3.f), 1e-6f);
    core->getRefPoints()->addValue(Pnt3f(10.f, 0.f, 0.f));
    endEditCP(core->getRefPoints());
    node->getVolume(true).getBounds(low, high);
    EXPECT_NEAR(high[0], 10.f + std::sqrt(3.f), 1e-6f);
}

TEST(SortedPrimitives, CanNotBeHit)
{
    const auto core = makeTen();
    const Held<NodePtr> node(makeNodeFor(core.ptr));
    const std::unique_ptr<IntersectAction> action(
        IntersectAction::create(Line(Pnt3f(0.1f, 0.1f, 50.f), Vec3f(0.f, 0.f, -1.f))));
    EXPECT_EQ(action->apply(node), Action::Continue);
    EXPECT_FALSE(action->didHit());
    EXPECT_EQ(core->intersect(action.get()), Action::Continue);
}

TEST(SortedPrimitives, TheOrderFollowsFromTheMatrixOfTheAction)
{
    const auto core = makeTen();
    core->setThresholdVal(-1.f);
    const std::unique_ptr<RenderAction> action(RenderAction::create());
    // Without a camera the eye is at the world's origin, which is at z = -3.2 of the object.
    Matrix matrix;
    matrix.setTranslate(0.f, 0.f, 3.2f);
    action->push_matrix(matrix);
    EXPECT_EQ(orderOf(core, action.get()), (std::vector<Int32>{9, 8, 7, 0, 6, 1, 5, 2, 4, 3}));
    action->pop_matrix();
    EXPECT_EQ(orderOf(core, action.get()), (std::vector<Int32>{9, 8, 7, 6, 5, 4, 3, 2, 1, 0}));
    // Without an inverse it is as if there were no matrix.
    matrix.setScale(0.f, 1.f, 1.f);
    action->push_matrix(matrix);
    EXPECT_EQ(orderOf(core, action.get()), (std::vector<Int32>{9, 8, 7, 6, 5, 4, 3, 2, 1, 0}));
    action->pop_matrix();

    core->setThresholdVal(0.5f);
    EXPECT_EQ(orderOf(core, action.get()), (std::vector<Int32>{9, 8, 7, 6, 5, 3, 1, 0, 2, 4}));
    core->getOccluderSpheres().push_back(Vec4f(0.f, 0.f, 0.f, 0.5f));
    EXPECT_EQ(orderOf(core, action.get()), (std::vector<Int32>{9, 8, 7, 6, 5, 4, 3, 2, 1, 0}));
}

TEST(SortedPrimitives, TheOrderGoesIntoTheCallersBufferIfThereIsOne)
{
    const auto core = makeTen();
    const std::unique_ptr<RenderAction> action(RenderAction::create());
    std::vector<Int32> buffer(11, -7);
    UInt32 count = 0;
    EXPECT_EQ(SortedAccess::order(*core.ptr, action.get(), count, buffer.data()), buffer.data());
    EXPECT_EQ(count, 10u);
    EXPECT_EQ(buffer[10], -7);
    // Points that are stored otherwise are read as points.
    const std::vector<Int32> expected(buffer.begin(), buffer.end() - 1);
    const GeoPositions4fPtr four = GeoPositions4f::create();
    for(UInt32 i = 0; i < 10; ++i)
        four->addValue(core->getRefPoints()->getValue(i));
    core->setRefPoints(four);
    EXPECT_EQ(orderOf(core, action.get()), expected);

    core->setRefPoints(makePoints({}));
    EXPECT_TRUE(orderOf(core, action.get()).empty());
    EXPECT_EQ(SortedAccess::order(*core.ptr, nullptr, count, nullptr), nullptr);
    core->setRefPoints(NullFC);
    EXPECT_EQ(SortedAccess::order(*core.ptr, action.get(), count, nullptr), nullptr);
    EXPECT_EQ(count, 0u);
}

TEST(SortedPrimitives, AThresholdBeyondOneIsToldAndStaysWithinTheArrays)
{
    const auto core = makeTen();
    const std::unique_ptr<RenderAction> action(RenderAction::create());
    LogCapture log;
    core->setThresholdVal(2.f);
    EXPECT_EQ(orderOf(core, action.get()), (std::vector<Int32>{9, 7, 5, 3, 1, 0, 2, 4, 6, 8}));
    EXPECT_EQ(log.text(LOG_WARNING), "SortedPrimitives: thresholdVal 2 is not within -1 to 1\n");
    log.clear();
    core->setThresholdVal(-1.5f);
    EXPECT_EQ(orderOf(core, action.get()), (std::vector<Int32>{9, 8, 7, 6, 5, 4, 3, 2, 1, 0}));
    EXPECT_EQ(log.text(LOG_WARNING), "SortedPrimitives: thresholdVal -1.5 is not within -1 to 1\n");
    log.clear();
    core->setThresholdVal(-1.f);
    orderOf(core, action.get());
    core->setThresholdVal(1.f);
    orderOf(core, action.get());
    EXPECT_EQ(log.count(), 0u);
}

TEST(SortedPrimitives, TheDrawerIsThatOfTheMode)
{
    const auto core = makeTen();
    PrimitivesDrawerBase *const quads = PrimitivesDrawer<GeoTraitQuadSet>::the();
    PrimitivesDrawerBase *const triangles = PrimitivesDrawer<GeoTraitTriSet>::the();
    EXPECT_NE(quads, triangles);
    EXPECT_EQ(SortedAccess::drawer(*core.ptr), quads);
    core->setMode(0);
    EXPECT_EQ(SortedAccess::drawer(*core.ptr), triangles);
    for(const UInt32 mode : {2u, 0xFFFFFFFFu})
    {
        core->setMode(mode);
        EXPECT_EQ(SortedAccess::drawer(*core.ptr), nullptr);
    }
    core->setMode(0);

    LogCapture log;
    const std::vector<Int32> ten(10, 0);
    core->setOffsetArray(&ten); // passes with the number of primitives
    EXPECT_EQ(SortedAccess::drawer(*core.ptr), triangles);
    const std::vector<Int32> nine(9, 0);
    core->setOffsetArray(&nine);
    EXPECT_EQ(SortedAccess::drawer(*core.ptr), nullptr);
    core->setOffsetArray(&ten);
    EXPECT_EQ(log.count(), 0u);
    core->setIndices(NullFC);
    EXPECT_EQ(SortedAccess::drawer(*core.ptr), nullptr);
    EXPECT_EQ(log.text(LOG_FATAL), "getIndices() NullFC\n");
    EXPECT_EQ(log.count(), 1u);
    log.clear();
    // A missing property comes first and is not told.
    core->setTangents(NullFC);
    EXPECT_EQ(SortedAccess::drawer(*core.ptr), nullptr);
    EXPECT_EQ(log.count(), 0u);
}

TEST(SortedPrimitives, EachPropertyIsNeeded)
{
    const auto without = [](const auto &drop) {
        const auto core = makeTen();
        drop(core.ptr);
        return SortedAccess::drawer(*core.ptr) == nullptr;
    };
    EXPECT_TRUE(without([](const SortedPrimitivesPtr &core) { core->setRefPoints(NullFC); }));
    EXPECT_TRUE(without([](const SortedPrimitivesPtr &core) { core->setPositions(NullFC); }));
    EXPECT_TRUE(without([](const SortedPrimitivesPtr &core) { core->setNormals(NullFC); }));
    EXPECT_TRUE(without([](const SortedPrimitivesPtr &core) { core->setTangents(NullFC); }));
    EXPECT_TRUE(without([](const SortedPrimitivesPtr &core) { core->setColors(NullFC); }));
    EXPECT_TRUE(without([](const SortedPrimitivesPtr &core) { core->setTexCoords(NullFC); }));
    EXPECT_FALSE(without([](const SortedPrimitivesPtr &) {}));
}

TEST(SortedPrimitives, AMissingDrawerIsToldAtEveryDrawing)
{
    const auto core = makeTen();
    core->setMode(2);
    const std::unique_ptr<RenderAction> action(RenderAction::create());
    char line[100];
    std::snprintf(line, sizeof(line), "SortedPrimitives 0x%lx: couldn't find drawer!\n",
                  static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(core.ptr.getCPtr())));
    LogCapture log;
    EXPECT_EQ(core->drawPrimitives(action.get()), Action::Continue);
    EXPECT_EQ(core->drawPrimitives(action.get()), Action::Continue);
    EXPECT_EQ(log.text(LOG_WARNING), std::string(line) + line);
    EXPECT_EQ(log.count(), 2u);
    EXPECT_EQ(core->getSort(), 0u);
}

TEST(RenderParams, IsOneWordThatStartsAtZero)
{
    EXPECT_EQ(getRenderParams(), 0u);
    setRenderParams(0xFFFFFFFFu);
    EXPECT_EQ(getRenderParams(), 0xFFFFFFFFu);
    setRenderParams(0);
    EXPECT_EQ(getRenderParams(), 0u);
}
