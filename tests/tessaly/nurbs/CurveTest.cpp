/// \file
/// Curves: their tessellation against the true curve, their pictures, their life.

#include "GluSpy.h"
#include "NurbsScene.h"

#include "support/PixelCompare.h"

#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLogCapture.h>

#include <iostream>

OSG_USING_NAMESPACE
using namespace nurbs_test;

namespace
{

class Curves : public ::testing::Test
{
  protected:
    void SetUp() override { GluSpy::the().clear(); }
    void TearDown() override { EXPECT_EQ(GluSpy::the().renderers, 0) << "a renderer outlived its pass"; }

    GluSpy &spy = GluSpy::the();
};

TrueCurve randomCurve(std::mt19937 &random)
{
    std::uniform_real_distribution<double> place(-1, 1);
    const int order = std::uniform_int_distribution<int>(2, 6)(random);
    const int points = order + std::uniform_int_distribution<int>(0, 5)(random);
    TrueCurve curve;
    curve.knots = clampedKnots(order, points, 3, &random);
    for(int i = 0; i < points; ++i)
        curve.points.push_back({double(float(place(random))), double(float(place(random))), double(float(place(random))), 1});
    return curve;
}

TrueCurve quarterCircle()
{
    TrueCurve curve;
    curve.knots = bezierKnots(3);
    const double w = std::sqrt(0.5);
    curve.points = {{0.8, 0, 0, 1}, {0.8 * w, 0.8 * w, 0, w}, {0, 0.8, 0, 1}};
    return curve;
}

TrueCurve wave()
{
    TrueCurve curve;
    curve.knots = clampedKnots(4, 6, 3);
    curve.points = {{-0.9, -0.6, 0, 1}, {-0.6, 0.9, 0, 1}, {-0.1, 0.7, 0, 1},
                    {0.1, -0.9, 0, 1},  {0.6, -0.7, 0, 1}, {0.9, 0.8, 0, 1}};
    return curve;
}

std::vector<Pnt3f> vertices(const NurbsCurvePtr &core)
{
    return GeoPositions3fPtr::dcast(core->getPositions())->getField().getValues();
}

} // namespace

TEST_F(Curves, EveryVertexOfRandomCurvesLiesOnTheTrueCurve)
{
    const unsigned seed = 4711;
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    double worst = 0;
    for(int round = 0; round < 24; ++round)
    {
        SCOPED_TRACE(round);
        const TrueCurve curve = randomCurve(random);
        const Held<NurbsCurvePtr> core;
        const bool homogeneous = round % 2 == 1;
        fill(core.ptr, curve, homogeneous);
        core->setTessellation(20);
        endEditCP(core.ptr);
        NurbsView view(core.ptr, 16);
        view.render();

        const std::vector<Pnt3f> found = vertices(core.ptr);
        const double size = sizeOf(curve.points);
        ASSERT_GE(found.size(), 40u) << "20 per unit over 3 units";
        double before = curve.knots.first() - 1e-6;
        for(const Pnt3f &v : found)
        {
            const Place p = {v[0], v[1], v[2]};
            const double t = curve.nearest(p);
            worst = std::max(worst, length(minus(curve.at(t), p)) / size);
            EXPECT_LT(length(minus(curve.at(t), p)), 1e-4 * size);
            // In order, but where the curve comes close to itself.
            EXPECT_GT(t, before - 0.1);
            before = t;
        }
        const Place first = {found.front()[0], found.front()[1], found.front()[2]};
        const Place last = {found.back()[0], found.back()[1], found.back()[2]};
        EXPECT_LT(length(minus(first, curve.at(curve.knots.first()))), 1e-4 * size);
        EXPECT_LT(length(minus(last, curve.at(curve.knots.last()))), 1e-4 * size);
    }
    std::cout << "worst distance " << worst << " of the size" << std::endl;
}

TEST_F(Curves, TheStaticFormIsOneIndexedGeometryInTheOrderOfEmission)
{
    const Held<NurbsCurvePtr> core;
    fill(core.ptr, wave(), false);
    core->setTessellation(10);
    endEditCP(core.ptr);
    NurbsView view(core.ptr, 16);
    view.render();

    ASSERT_EQ(core->getIndexMapping().size(), 1u);
    EXPECT_EQ(core->getIndexMapping()[0], Geometry::MapPosition);
    ASSERT_TRUE(core->getTypes() != NullFC);
    ASSERT_EQ(core->getTypes()->getSize(), core->getLengths()->getSize());
    UInt32 sum = 0;
    for(UInt32 i = 0; i < core->getTypes()->getSize(); ++i)
    {
        EXPECT_EQ(core->getTypes()->getValue(i), UInt32(GL_LINE_STRIP));
        sum += core->getLengths()->getValue(i);
    }
    EXPECT_EQ(sum, core->getPositions()->getSize());
    ASSERT_EQ(core->getIndices()->getSize(), sum);
    for(UInt32 i = 0; i < sum; ++i)
        EXPECT_EQ(core->getIndices()->getValue(i), i);
    EXPECT_TRUE(core->getNormals() == NullFC);
    EXPECT_FALSE(core->getDirty());
    EXPECT_EQ(core->nurbsRenderer, nullptr);
    EXPECT_EQ(spy.count("begin curve"), 1);
    // No display mode, and the error's callback stays while the others are taken back.
    EXPECT_EQ(spy.count("property " + std::to_string(GLU_DISPLAY_MODE)), 0);
    EXPECT_EQ(spy.properties[GLU_CULLING], 0.f);
    EXPECT_EQ(spy.properties[GLU_NURBS_MODE], float(GLU_NURBS_TESSELLATOR));
    EXPECT_EQ(spy.count("no callback " + std::to_string(GLU_NURBS_BEGIN)), 1);
    EXPECT_EQ(spy.count("no callback " + std::to_string(GLU_NURBS_END)), 1);
    EXPECT_EQ(spy.count("no callback " + std::to_string(GLU_NURBS_VERTEX)), 1);
    EXPECT_EQ(spy.count("no callback " + std::to_string(GLU_ERROR)), 0);
    EXPECT_GT(spy.place("end curve"), spy.place("begin curve"));
    EXPECT_EQ(spy.curve, (std::vector<int>{10, 3, 4, GL_MAP1_VERTEX_3}));
}

TEST_F(Curves, ARationalCurveIsStoredUndividedAndIsOffTheTrueCurve)
{
    const TrueCurve circle = quarterCircle();
    const Held<NurbsCurvePtr> core;
    fill(core.ptr, circle, true);
    core->setTessellation(16);
    endEditCP(core.ptr);
    NurbsView view(core.ptr, 16);
    view.render();

    // The same points with weights of 1: that is the curve of what is not divided.
    TrueCurve undivided = circle;
    for(Weighted &p : undivided.points)
        p[3] = 1;
    double off = 0;
    ASSERT_GE(vertices(core.ptr).size(), 10u);
    for(const Pnt3f &v : vertices(core.ptr))
    {
        const Place p = {v[0], v[1], v[2]};
        EXPECT_LT(length(minus(undivided.at(undivided.nearest(p)), p)), 1e-4);
        off = std::max(off, std::fabs(length(p) - 0.8));
    }
    EXPECT_GT(off, 0.05) << "a divided curve would lie on the circle";
    EXPECT_EQ(spy.curve, (std::vector<int>{6, 4, 3, GL_MAP1_VERTEX_4}));
}

TEST_F(Curves, TheListFormDrawsARationalCurveRightly)
{
    for(const bool list : {true, false})
    {
        const Held<NurbsCurvePtr> core;
        fill(core.ptr, quarterCircle(), true);
        core->setTessellation(64);
        core->setFillGeo(false);
        core->setDlistCache(list);
        core->setMaterial(white(false));
        endEditCP(core.ptr);
        const int size = 128;
        NurbsView view(core.ptr, size);
        const test::RgbaImage picture = view.render();
        int covered = 0;
        for(int y = 0; y < size; ++y)
            for(int x = 0; x < size; ++x)
            {
                if(picture.at(x, y)[0] == 0)
                    continue;
                ++covered;
                const double px = (x + 0.5) / size * 2 - 1;
                const double py = (y + 0.5) / size * 2 - 1;
                // A pixel is 2 / 128 wide, and a line meets pixels whose centres are up to that far.
                EXPECT_NEAR(std::hypot(px, py), 0.8, 2.0 / size) << x << " " << y;
            }
        // From (0.8, 0) to (0, 0.8) with a pixel per column or row.
        EXPECT_GT(covered, 60);
    }
}

TEST_F(Curves, StaticListAndDirectFormDrawTheSamePicture)
{
    test::RgbaImage pictures[3];
    for(int form = 0; form < 3; ++form)
    {
        const Held<NurbsCurvePtr> core;
        fill(core.ptr, wave(), false);
        core->setTessellation(40);
        core->setFillGeo(form == 0);
        core->setDlistCache(form == 1);
        core->setMaterial(white(false));
        endEditCP(core.ptr);
        NurbsView view(core.ptr);
        pictures[form] = view.render();
        EXPECT_EQ(pictures[form].bytes, view.draw().bytes) << "the action that does not sort draws the same";
    }
    EXPECT_GT(coveredPixels(pictures[0]), 200);
    // The evaluators of GL round otherwise than GLU's own: a line may step one pixel earlier.
    test::PixelLimits limits;
    limits.fraction = 0.002;
    EXPECT_TRUE(test::imagesMatch(pictures[1], pictures[0], limits, "curve-list"));
    EXPECT_TRUE(test::imagesMatch(pictures[2], pictures[0], limits, "curve-direct"));
}

TEST_F(Curves, TheTessellationFieldBecomesTheSamplingOfGlu)
{
    struct Case
    {
        Int32 tessellation;
        float method;
        unsigned property;
        float value;
        unsigned otherProperty;
    };
    const Case cases[] = {
        {0, GLU_PARAMETRIC_ERROR, GLU_PARAMETRIC_TOLERANCE, 0.f, GLU_U_STEP},
        {-5, GLU_PARAMETRIC_ERROR, GLU_PARAMETRIC_TOLERANCE, 5.f, GLU_U_STEP},
        {1, GLU_DOMAIN_DISTANCE, GLU_U_STEP, 1.f, GLU_PARAMETRIC_TOLERANCE},
        {7, GLU_DOMAIN_DISTANCE, GLU_U_STEP, 7.f, GLU_PARAMETRIC_TOLERANCE}};
    for(const Case &c : cases)
    {
        SCOPED_TRACE(c.tessellation);
        spy.clear();
        const Held<NurbsCurvePtr> core;
        fill(core.ptr, wave(), false);
        core->setTessellation(c.tessellation);
        endEditCP(core.ptr);
        NurbsView view(core.ptr, 16);
        view.render();
        EXPECT_EQ(spy.properties[GLU_SAMPLING_METHOD], c.method);
        EXPECT_EQ(spy.properties.count(c.property), 1u);
        EXPECT_EQ(spy.properties[c.property], c.value);
        EXPECT_EQ(spy.properties.count(c.otherProperty), 0u);
        EXPECT_GE(core->getPositions()->getSize(), 2u);
    }
}

TEST_F(Curves, ATrimmingCurveDrawsNothingAndIsTessellatedAllTheSame)
{
    for(const bool fillGeo : {true, false})
    {
        spy.clear();
        const Held<NurbsCurvePtr> core;
        fill(core.ptr, wave(), false);
        core->setTessellation(10);
        core->setControlCurve(true);
        core->setFillGeo(fillGeo);
        core->setMaterial(white(false));
        endEditCP(core.ptr);
        NurbsView view(core.ptr, 64);
        EXPECT_EQ(coveredPixels(view.render()), 0);
        EXPECT_FALSE(core->getDirty());
        EXPECT_EQ(core->getPositions() != NullFC, fillGeo);
        if(fillGeo)
        {
            EXPECT_GE(core->getPositions()->getSize(), 10u);
        }
    }
}

TEST_F(Curves, APolylineInSpaceLogsALineAtEachDrawAndDrawsNothing)
{
    const Held<NurbsCurvePtr> core;
    fill(core.ptr, wave(), false);
    core->setPolyline(true);
    core->setMaterial(white(false));
    endEditCP(core.ptr);
    NurbsView view(core.ptr, 64);
    LogCapture log;
    EXPECT_EQ(coveredPixels(view.render()), 0);
    EXPECT_EQ(log.text(LOG_WARNING), "NurbsCurve::drawPrimitives NYI for linear segments!\n");
    view.render();
    EXPECT_EQ(log.count(LOG_WARNING), 2u);
    // As a trimming curve it is silent.
    core->setControlCurve(true);
    endEditCP(core.ptr, NurbsCurve::ControlCurveFieldMask);
    log.clear();
    view.render();
    EXPECT_EQ(log.count(LOG_WARNING), 0u);
}

TEST_F(Curves, OnlyTheDefiningFieldsMakeTheCurveDirty)
{
    const Held<NurbsCurvePtr> core;
    fill(core.ptr, wave(), false);
    core->setTessellation(10);
    endEditCP(core.ptr);
    NurbsView view(core.ptr, 16);
    EXPECT_TRUE(core->getDirty());
    view.render();
    EXPECT_FALSE(core->getDirty());

    const BitVector defining[] = {
        NurbsCurve::ControlPointFieldMask, NurbsCurve::OrderFieldMask,        NurbsCurve::KnotFieldMask,
        NurbsCurve::TessellationFieldMask, NurbsCurve::ControlCurveFieldMask, NurbsCurve::PolylineFieldMask,
        NurbsCurve::FillGeoFieldMask};
    for(const BitVector mask : defining)
    {
        endEditCP(core.ptr, mask);
        EXPECT_TRUE(core->getDirty()) << mask;
        view.render();
        EXPECT_FALSE(core->getDirty()) << mask;
    }
    const int made = spy.made;
    endEditCP(core.ptr, NurbsCurve::NumVerticesFieldMask | NurbsCurve::DirtyFieldMask | NurbsCurve::SurfaceGLIdFieldMask |
                            Geometry::PositionsFieldMask | Geometry::MaterialFieldMask);
    EXPECT_FALSE(core->getDirty());
    view.render();
    EXPECT_EQ(spy.made, made) << "drawn from the geometry, without GLU";

    // New values in the same property reach the curve.
    GeoPositions3fPtr::dcast(core->getControlPoint())->getField()[0] = Pnt3f(-0.5f, 0.25f, 0.f);
    endEditCP(core->getControlPoint());
    EXPECT_TRUE(core->getDirty());
    view.render();
    EXPECT_LT((vertices(core.ptr).front() - Pnt3f(-0.5f, 0.25f, 0.f)).length(), 1e-5f);
}

TEST_F(Curves, PropertiesOfAnotherKindAreReplacedAndOthersAreUsedAgain)
{
    const Held<NurbsCurvePtr> core;
    fill(core.ptr, wave(), false);
    core->setTessellation(10);
    const Held<GeoPositionsPtr> plane(GeoPositionsPtr::dcast(make<GeoPositions2f>({Pnt2f(1, 2)})));
    core->setPositions(plane.ptr);
    endEditCP(core.ptr);
    NurbsView view(core.ptr, 16);
    view.render();
    const GeoPositionsPtr made = core->getPositions();
    EXPECT_TRUE(GeoPositions3fPtr::dcast(made) != NullFC);
    EXPECT_EQ(plane->getSize(), 1u) << "replaced, not converted";
    EXPECT_EQ(plane.ptr.getRefCount(), 1);
    const UInt32 size = made->getSize();

    endEditCP(core.ptr, NurbsCurve::KnotFieldMask);
    view.render();
    EXPECT_TRUE(core->getPositions() == made);
    EXPECT_EQ(made->getSize(), size);
    EXPECT_EQ(made.getRefCount(), 1);
}

TEST_F(Curves, TheVolumeIsThatOfTheControlPoints)
{
    const Held<NurbsCurvePtr> core;
    const Held<NodePtr> node(makeNodeFor(core.ptr));
    Pnt3f low, high;
    EXPECT_TRUE(node->getVolume(true).isValid());
    EXPECT_TRUE(node->getVolume(true).isEmpty());

    fill(core.ptr, wave(), false);
    EXPECT_TRUE(node->getVolume(true).isValid());
    node->getVolume(true).getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(-0.9f, -0.9f, 0.f));
    EXPECT_EQ(high, Pnt3f(0.9f, 0.9f, 0.f));

    GeoPositions3fPtr::dcast(core->getControlPoint())->getField()[2] = Pnt3f(0.f, 5.f, -2.f);
    endEditCP(core->getControlPoint());
    node->getVolume(true).getBounds(low, high);
    EXPECT_EQ(high[1], 5.f);
    EXPECT_EQ(low[2], -2.f);
}

TEST_F(Curves, ARayFindsNoCurve)
{
    const Held<NurbsCurvePtr> core;
    fill(core.ptr, wave(), false);
    NurbsView view(core.ptr, 16);
    view.render();
    const std::unique_ptr<IntersectAction> action(
        IntersectAction::create(Line(Pnt3f(-0.9f, -0.6f, 5.f), Vec3f(0, 0, -1))));
    action->apply(view.root());
    EXPECT_FALSE(action->didHit());
}

TEST_F(Curves, ControlPointsAreReferencedAndKnowTheCurve)
{
    const Held<GeoPositionsPtr> first(points3(wave().points));
    const Held<GeoPositionsPtr> second(points3(wave().points));
    {
        const Held<NurbsCurvePtr> core;
        core->setControlPoint(first.ptr);
        core->setControlPoint(first.ptr);
        EXPECT_EQ(first.ptr.getRefCount(), 2);
        ASSERT_EQ(first->getParents().size(), 1u);
        EXPECT_EQ(first->getParents()[0].getParentFieldPos(), 28u);
        EXPECT_EQ(first->findParent(core.ptr), 0);
        core->setControlPoint(second.ptr);
        EXPECT_EQ(first.ptr.getRefCount(), 1);
        EXPECT_EQ(first->getParents().size(), 0u);

        const Held<NurbsCurvePtr> copy(NurbsCurvePtr::dcast(core->shallowCopy()));
        EXPECT_EQ(second.ptr.getRefCount(), 3);
        EXPECT_NE(copy->getSurfaceGLId(), core->getSurfaceGLId());
        EXPECT_TRUE(copy->getDirty());
        core->setControlPoint(NullFC);
        EXPECT_EQ(second.ptr.getRefCount(), 2);
    }
    EXPECT_EQ(second.ptr.getRefCount(), 1);
    EXPECT_EQ(second->getParents().size(), 0u);
}

TEST_F(Curves, ALinkWrittenWithoutItsSetterIsRepaired)
{
    const Held<GeoPositionsPtr> points(points3(wave().points));
    const Held<NurbsCurvePtr> core;
    core->editSFControlPoint()->setValue(points.ptr);
    core->changed(NurbsCurve::ControlPointFieldMask, ChangedOrigin::External);
    EXPECT_EQ(points.ptr.getRefCount(), 1) << "without Abstract nothing is repaired";
    core->changed(NurbsCurve::ControlPointFieldMask, ChangedOrigin::Abstract | ChangedOrigin::AbstrIncRefCount);
    EXPECT_EQ(points.ptr.getRefCount(), 2) << "only the reference";
    EXPECT_EQ(points->findParent(core.ptr), -1);
    subRefCP(points.ptr);
    core->changed(NurbsCurve::ControlPointFieldMask, ChangedOrigin::Abstract | ChangedOrigin::AbstrCheckValid);
    EXPECT_EQ(points.ptr.getRefCount(), 2);
    EXPECT_EQ(points->findParent(core.ptr), 0);
    core->changed(NurbsCurve::ControlPointFieldMask, ChangedOrigin::Abstract | ChangedOrigin::AbstrCheckValid);
    EXPECT_EQ(points.ptr.getRefCount(), 2) << "valid already";
    core->setControlPoint(NullFC);
    core->editSFControlPoint()->setValue(points.ptr);
    core->changed(NurbsCurve::ControlPointFieldMask, ChangedOrigin::Abstract);
    EXPECT_EQ(points.ptr.getRefCount(), 2);
    EXPECT_EQ(points->findParent(core.ptr), 0);
}

TEST_F(Curves, TheMaterialIsReferenced)
{
    const Held<SimpleMaterialPtr> material(white(false));
    {
        const Held<NurbsCurvePtr> core;
        core->setMaterial(material.ptr);
        core->setMaterial(material.ptr);
        EXPECT_EQ(material.ptr.getRefCount(), 2);
    }
    EXPECT_EQ(material.ptr.getRefCount(), 1);
}

TEST_F(Curves, ThePassesTellOfThemselvesAtTheInfoLevel)
{
    const Held<NurbsCurvePtr> core;
    fill(core.ptr, wave(), false);
    core->setTessellation(10);
    endEditCP(core.ptr);
    char text[160];
    {
        LogCapture log;
        NurbsView view(core.ptr, 16);
        view.render();
        std::snprintf(text, sizeof(text), "NurbsCurve::createGeometry() called (%p)\n",
                      static_cast<void *>(core.ptr.getCPtr()));
        EXPECT_TRUE(log.contains(LOG_INFO, text)) << log.text(LOG_INFO);
    }
    core->setFillGeo(false);
    endEditCP(core.ptr);
    LogCapture log;
    NurbsView view(core.ptr, 16);
    view.render();
    // Address and number crosswise.
    const UInt32 list = view.window()->getGLObjectId(UInt32(core->getSurfaceGLId()));
    ASSERT_NE(list, 0u);
    std::snprintf(text, sizeof(text), "NurbsCurve::createDList(%d) called (%p)\n",
                  int(reinterpret_cast<std::uintptr_t>(core.ptr.getCPtr())),
                  reinterpret_cast<void *>(std::uintptr_t(list)));
    EXPECT_TRUE(log.contains(LOG_INFO, text)) << log.text(LOG_INFO);
    EXPECT_EQ(spy.properties[GLU_DISPLAY_MODE], float(GLU_OUTLINE_PATCH));
    EXPECT_EQ(spy.properties[GLU_NURBS_MODE], float(GLU_NURBS_RENDERER));
}

TEST_F(Curves, AnOldGluFallsBackToTheListWithAWarningAtEachPass)
{
    spy.version = "1.2 of old";
    const Held<NurbsCurvePtr> core;
    fill(core.ptr, wave(), false);
    core->setTessellation(10);
    core->setMaterial(white(false));
    endEditCP(core.ptr);
    NurbsView view(core.ptr, 64);
    const std::string warning =
        "Can't create static geometry with glu version 1.2 of old. Version 1.3 and above is needed!\n";
    LogCapture log;
    EXPECT_GT(coveredPixels(view.render()), 50);
    EXPECT_FALSE(core->getFillGeo());
    EXPECT_TRUE(core->getPositions() == NullFC);
    EXPECT_EQ(log.messages().empty(), false);
    EXPECT_TRUE(log.contains(LOG_WARNING, warning));

    view.render();
    view.render();
    log.clear();
    endEditCP(core.ptr, NurbsCurve::KnotFieldMask);
    view.render();
    EXPECT_EQ(log.text(LOG_WARNING), warning) << "also where static geometry is not asked for";

    spy.version = "1.3";
    core->setFillGeo(true);
    endEditCP(core.ptr);
    log.clear();
    view.render();
    EXPECT_TRUE(core->getFillGeo());
    EXPECT_EQ(log.count(LOG_WARNING), 0u);
}

TEST_F(Curves, TheEndOfACurveLeavesItsListAlone)
{
    NurbsCurvePtr core = NurbsCurve::create();
    addRefCP(core);
    fill(core, wave(), false);
    core->setFillGeo(false);
    core->setTessellation(10);
    endEditCP(core);
    NurbsView view(core, 16);
    view.render();
    const UInt32 list = view.window()->getGLObjectId(UInt32(core->getSurfaceGLId()));
    view.root()->subChild(view.node());
    subRefCP(core);
    view.render();
    ASSERT_TRUE(view.window()->activate());
    EXPECT_EQ(glIsList(list), GLboolean(GL_TRUE));
}
