/// \file
/// Trimming: areas against closed forms, holes that rays go through, what loops pass over.

#include "GluSpy.h"
#include "NurbsScene.h"

#include "support/PixelCompare.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGTriangleIterator.h>

#include <algorithm>
#include <iostream>

OSG_USING_NAMESPACE
using namespace nurbs_test;

namespace
{

class Trimming : public ::testing::Test
{
  protected:
    void SetUp() override { GluSpy::the().clear(); }
    void TearDown() override { EXPECT_EQ(GluSpy::the().renderers, 0); }

    GluSpy &spy = GluSpy::the();
};

/// A polyline around a rectangle of the parameter plane, counter-clockwise or not.
NurbsCurvePtr rectangle(float low, float high, bool counterClockwise)
{
    std::vector<Pnt2f> points = {Pnt2f(low, low), Pnt2f(high, low), Pnt2f(high, high), Pnt2f(low, high), Pnt2f(low, low)};
    if(!counterClockwise)
        std::reverse(points.begin(), points.end());
    const NurbsCurvePtr curve = NurbsCurve::create();
    curve->setControlPoint(make<GeoPositions2f>(points));
    curve->setControlCurve(true);
    curve->setPolyline(true);
    endEditCP(curve);
    return curve;
}

/// A rational circle around the middle of the parameter plane.
NurbsCurvePtr circle(float radius, bool counterClockwise)
{
    std::vector<Pnt3f> points;
    for(const Place &p : circlePoints(radius))
        points.push_back(Pnt3f(float(p[0] + 0.5 * p[2]), float(p[1] + 0.5 * p[2]), float(p[2])));
    if(!counterClockwise)
        std::reverse(points.begin(), points.end());
    const NurbsCurvePtr curve = NurbsCurve::create();
    curve->setControlPoint(make<GeoPositions3f>(points));
    curve->setOrder(3);
    curve->editMFKnot()->setValues(floats(circleKnots().values));
    curve->setControlCurve(true);
    endEditCP(curve);
    return curve;
}

NurbsTrimmingLoopPtr loopOf(const std::vector<NodeCorePtr> &cores)
{
    const NurbsTrimmingLoopPtr loop = NurbsTrimmingLoop::create();
    loop->getTrimmingContour().setValues(cores);
    endEditCP(loop);
    return loop;
}

/// The square of side 2, trimmed.
NurbsSurfacePtr trimmedSquare(const std::vector<NodeCorePtr> &loops, Int32 tessellation = 40)
{
    const NurbsSurfacePtr core = NurbsSurface::create();
    fill(core, square(), false);
    core->setUTessellation(tessellation);
    core->setVTessellation(tessellation);
    core->getTrimmingLoop().setValues(loops);
    core->setMaterial(white(false));
    endEditCP(core);
    return core;
}

double areaOf(const NurbsSurfacePtr &core)
{
    double area = 0;
    TriangleIterator triangle(core);
    for(triangle.setToBegin(); !triangle.isAtEnd(); ++triangle)
        area += 0.5 * (triangle.getPosition(1) - triangle.getPosition(0))
                          .cross(triangle.getPosition(2) - triangle.getPosition(0))
                          .length();
    return area;
}

bool hits(const NodePtr &root, float x, float y)
{
    const std::unique_ptr<IntersectAction> action(IntersectAction::create(Line(Pnt3f(x, y, 5), Vec3f(0, 0, -1))));
    action->apply(root);
    return action->didHit();
}

} // namespace

TEST_F(Trimming, ARectangleOfStraightSegmentsCutsItsArea)
{
    const Held<NurbsSurfacePtr> core(trimmedSquare({loopOf({rectangle(0.25f, 0.75f, true)})}));
    NurbsView view(core.ptr, 16);
    view.render();
    EXPECT_NEAR(areaOf(core.ptr), 1.0, 0.01);
    EXPECT_EQ(spy.polyline, (std::vector<int>{5, 2, GLU_MAP1_TRIM_2}));
    EXPECT_TRUE(hits(view.root(), 0.4f, 0.4f));
    EXPECT_FALSE(hits(view.root(), 0.6f, 0.4f));
}

TEST_F(Trimming, ARationalCircleCutsItsArea)
{
    const Held<NurbsSurfacePtr> core(trimmedSquare({loopOf({circle(0.4f, true)})}));
    NurbsView view(core.ptr, 16);
    view.render();
    const double exact = M_PI * 0.8 * 0.8;
    std::cout << "area " << areaOf(core.ptr) << ", exact " << exact << std::endl;
    EXPECT_NEAR(areaOf(core.ptr) / exact, 1.0, 0.01);
    EXPECT_EQ(spy.curve, (std::vector<int>{12, 3, 3, GLU_MAP1_TRIM_3}));
}

TEST_F(Trimming, AHoleIsLeftOutOfTheAreaAndRaysGoThroughIt)
{
    const Held<NurbsSurfacePtr> core(
        trimmedSquare({loopOf({rectangle(0.f, 1.f, true)}), loopOf({circle(0.3f, false)})}));
    NurbsView view(core.ptr, 128);
    const test::RgbaImage picture = view.render();
    const double exact = 4 - M_PI * 0.6 * 0.6;
    std::cout << "area " << areaOf(core.ptr) << ", exact " << exact << std::endl;
    EXPECT_NEAR(areaOf(core.ptr) / exact, 1.0, 0.01);
    EXPECT_NEAR(coveredPixels(picture) / (128.0 * 128.0 / 4) / exact, 1.0, 0.01);
    EXPECT_FALSE(hits(view.root(), 0.3f, -0.3f));
    EXPECT_TRUE(hits(view.root(), 0.5f, -0.5f));
    EXPECT_EQ(spy.count("begin trim"), 2);
    EXPECT_EQ(spy.count("end trim"), 2);
}

TEST_F(Trimming, TheFirstParameterOfTrimmingIsV)
{
    // x of the trimming plane from 0 to 1, y from 0 to 0.5: all of V, half of U, which is the left half of the square.
    const NurbsCurvePtr curve = NurbsCurve::create();
    curve->setControlPoint(
        make<GeoPositions2f>({Pnt2f(0, 0), Pnt2f(1, 0), Pnt2f(1, 0.5f), Pnt2f(0, 0.5f), Pnt2f(0, 0)}));
    curve->setControlCurve(true);
    curve->setPolyline(true);
    endEditCP(curve);
    const Held<NurbsSurfacePtr> core(trimmedSquare({loopOf({curve})}));
    NurbsView view(core.ptr, 16);
    view.render();
    EXPECT_NEAR(areaOf(core.ptr), 2.0, 0.02);
    EXPECT_TRUE(hits(view.root(), -0.5f, 0.7f));
    EXPECT_FALSE(hits(view.root(), 0.5f, 0.7f));
}

TEST_F(Trimming, AllFormsDrawTheSameTrimmedPicture)
{
    test::RgbaImage pictures[3];
    for(int form = 0; form < 3; ++form)
    {
        const Held<NurbsSurfacePtr> core(
            trimmedSquare({loopOf({rectangle(0.1f, 0.9f, true)}), loopOf({circle(0.25f, false)})}));
        core->setFillGeo(form == 0);
        core->setDlistCache(form == 1);
        endEditCP(core.ptr);
        NurbsView view(core.ptr);
        pictures[form] = view.render();
    }
    EXPECT_NEAR(coveredPixels(pictures[0]) / (128.0 * 128.0), 0.64 - M_PI * 0.0625, 0.01);
    // Pixels on the edge of the hole may go one way or the other.
    test::PixelLimits limits;
    limits.fraction = 0.002;
    EXPECT_TRUE(test::imagesMatch(pictures[1], pictures[0], limits, "trimmed-list"));
    EXPECT_TRUE(test::imagesMatch(pictures[2], pictures[0], limits, "trimmed-direct"));
}

TEST_F(Trimming, AContourMayBeMadeOfSeveralCurves)
{
    const auto line = [](std::vector<Pnt2f> points) {
        const NurbsCurvePtr curve = NurbsCurve::create();
        curve->setControlPoint(make<GeoPositions2f>(points));
        curve->setControlCurve(true);
        curve->setPolyline(true);
        endEditCP(curve);
        return curve;
    };
    // The last side is a NURBS curve of order 2 with two floats a point.
    const NurbsCurvePtr side = NurbsCurve::create();
    side->setControlPoint(make<GeoPositions2f>({Pnt2f(0.2f, 0.8f), Pnt2f(0.2f, 0.2f)}));
    side->setOrder(2);
    side->editMFKnot()->setValues({0, 0, 1, 1});
    side->setControlCurve(true);
    endEditCP(side);
    const Held<NurbsSurfacePtr> core(trimmedSquare(
        {loopOf({line({Pnt2f(0.2f, 0.2f), Pnt2f(0.8f, 0.2f)}), NullFC,
                 line({Pnt2f(0.8f, 0.2f), Pnt2f(0.8f, 0.8f), Pnt2f(0.2f, 0.8f)}), Group::create(), side})}));
    NurbsView view(core.ptr, 16);
    LogCapture log(LOG_WARNING);
    view.render();
    EXPECT_EQ(log.count(), 0u) << log.text();
    EXPECT_NEAR(areaOf(core.ptr), 4 * 0.36, 0.0144);
    EXPECT_EQ(spy.curve, (std::vector<int>{4, 2, 2, GLU_MAP1_TRIM_2}));
    EXPECT_EQ(spy.count("polyline"), 2);
    EXPECT_EQ(spy.count("begin trim"), 1);
}

TEST_F(Trimming, ForeignEntriesOpenNoRegionAndEmptyLoopsDo)
{
    const Held<NurbsSurfacePtr> core(trimmedSquare({NullFC, Group::create(), rectangle(0.25f, 0.75f, true)}));
    NurbsView view(core.ptr, 16);
    view.render();
    EXPECT_EQ(spy.count("begin trim"), 0);
    EXPECT_NEAR(areaOf(core.ptr), 4.0, 0.01) << "not trimmed";

    core->getTrimmingLoop().push_back(loopOf({}));
    endEditCP(core.ptr);
    view.render();
    EXPECT_EQ(spy.count("begin trim"), 1);
    EXPECT_EQ(spy.count("end trim"), 1);
}

TEST_F(Trimming, CurvesThatAreNoControlCurvesContributeNothing)
{
    const Held<NurbsCurvePtr> curve(rectangle(0.25f, 0.75f, true));
    curve->setControlCurve(false);
    EXPECT_EQ(curve->trim(nullptr, nullptr), Action::Continue);
    const Held<NurbsTrimmingLoopPtr> loop(loopOf({curve.ptr}));
    EXPECT_EQ(loop->trim(nullptr, nullptr), Action::Continue);
    EXPECT_EQ(spy.calls, std::vector<std::string>());
    const Held<NurbsTrimmingLoopPtr> empty(loopOf({}));
    EXPECT_EQ(empty->trim(nullptr, nullptr), Action::Continue);
}

TEST_F(Trimming, TrimOnlyChangesNothing)
{
    const NurbsTrimmingLoopPtr loop = loopOf({circle(0.4f, true)});
    const Held<NurbsSurfacePtr> core(trimmedSquare({loop}));
    NurbsView view(core.ptr, 16);
    view.render();
    const double area = areaOf(core.ptr);
    EXPECT_TRUE(loop->getTrimOnly());
    loop->setTrimOnly(false);
    endEditCP(loop);
    EXPECT_FALSE(core->getDirty()) << "a loop does not reach its surface";
    endEditCP(core.ptr, NurbsSurface::TrimmingLoopFieldMask);
    EXPECT_TRUE(core->getDirty());
    view.render();
    EXPECT_EQ(areaOf(core.ptr), area);
}

TEST_F(Trimming, LoopsAndCurvesAreHeldFromTheEndOfTheEditOn)
{
    const Held<NurbsCurvePtr> curve(circle(0.4f, true));
    const Held<NurbsTrimmingLoopPtr> loop(loopOf({curve.ptr}));
    EXPECT_EQ(curve.ptr.getRefCount(), 2);
    {
        const Held<NurbsSurfacePtr> core(trimmedSquare({loop.ptr}));
        EXPECT_EQ(loop.ptr.getRefCount(), 2);
        core->getTrimmingLoop().clear();
        endEditCP(core.ptr, NurbsSurface::TrimmingLoopFieldMask);
        EXPECT_EQ(loop.ptr.getRefCount(), 1);
        core->getTrimmingLoop().push_back(loop.ptr);
        endEditCP(core.ptr, NurbsSurface::TrimmingLoopFieldMask);
        EXPECT_EQ(loop.ptr.getRefCount(), 2);
    }
    EXPECT_EQ(loop.ptr.getRefCount(), 1);
}
