/// \file
/// Bad input: what GLU refuses reaches the log with its text, what GLU would read past its end is not sent.

#include "GluSpy.h"
#include "NurbsScene.h"

#include <OpenSG/OSGGeoTexCoords1f.h>
#include <OpenSG/OSGLogCapture.h>

#include <limits>

OSG_USING_NAMESPACE
using namespace nurbs_test;

namespace
{

class BadInput : public ::testing::Test
{
  protected:
    void SetUp() override { GluSpy::the().clear(); }
    void TearDown() override { EXPECT_EQ(GluSpy::the().renderers, 0) << "a failure left a renderer"; }

    /// What is logged as warnings when the core is drawn.
    std::string warningsOf(const NodeCorePtr &core)
    {
        NurbsView view(core, 16);
        // Without control points the volume is empty, and would not be drawn.
        view.action()->setFrustumCulling(false);
        LogCapture log;
        view.render();
        const std::string text = log.text(LOG_WARNING);
        // What failed is not tried again.
        log.clear();
        spy.calls.clear();
        view.render();
        EXPECT_EQ(log.text(LOG_WARNING), "");
        return text;
    }

    GluSpy &spy = GluSpy::the();
};

std::string curveError(GLenum code)
{
    return "Nurbs Curve error: " + std::to_string(code) + "/ " + reinterpret_cast<const char *>(gluErrorString(code)) + "\n";
}

std::string surfaceError(GLenum code)
{
    return "Nurbs Surface error: " + std::to_string(code) + "/ " + reinterpret_cast<const char *>(gluErrorString(code)) +
           "\n";
}

TrueCurve plainCurve()
{
    TrueCurve curve;
    curve.knots = bezierKnots(3);
    curve.points = {{-0.5, 0, 0, 1}, {0, 0.5, 0, 1}, {0.5, 0, 0, 1}};
    return curve;
}

} // namespace

TEST_F(BadInput, OrdersAndKnotsThatGluRefusesReachTheLogWithTheirTexts)
{
    struct Case
    {
        UInt32 order;
        std::vector<Real32> knots;
        GLenum code;
    };
    const Case cases[] = {{0, {0, 0, 0, 1, 1, 1}, GLU_NURBS_ERROR1},
                          {4, {0, 0, 0, 1, 1, 1}, GLU_NURBS_ERROR2},
                          {3, {}, GLU_NURBS_ERROR2},
                          {3, {1, 1, 1, 1, 1, 1}, GLU_NURBS_ERROR3},
                          {2, {0, 0.7f, 0.3f, 1, 1}, GLU_NURBS_ERROR4},
                          {0xFFFFFFFFu, {0, 0, 0, 1, 1, 1}, GLU_NURBS_ERROR1}};
    TrueSurface net;
    net.u = bezierKnots(3);
    net.v = bezierKnots(3);
    for(int i = 0; i < 9; ++i)
        net.points.push_back({i % 3 - 1.0, i / 3 - 1.0, 0, 1});
    for(const Case &c : cases)
    {
        SCOPED_TRACE(c.code);
        for(const bool fillGeo : {true, false})
        {
            const Held<NurbsCurvePtr> curve;
            fill(curve.ptr, plainCurve(), false);
            curve->setTessellation(10);
            curve->setOrder(c.order);
            curve->editMFKnot()->setValues(c.knots);
            curve->setFillGeo(fillGeo);
            endEditCP(curve.ptr);
            EXPECT_EQ(warningsOf(curve.ptr).substr(0, curveError(c.code).size()), curveError(c.code));
            EXPECT_FALSE(curve->getDirty());
            EXPECT_EQ(curve->nurbsRenderer, nullptr);
            if(fillGeo)
            {
                EXPECT_EQ(curve->getPositions()->getSize(), 0u);
            }

            const Held<NurbsSurfacePtr> surface;
            fill(surface.ptr, net, false);
            surface->setUOrder(c.order);
            surface->getUKnot().setValues(c.knots);
            surface->setFillGeo(fillGeo);
            endEditCP(surface.ptr);
            const std::string found = warningsOf(surface.ptr);
            EXPECT_EQ(found.substr(0, surfaceError(c.code).size()), surfaceError(c.code));
            EXPECT_FALSE(surface->getDirty());
        }
    }
}

TEST_F(BadInput, TooFewControlPointsAreNotSentAndOneLineSaysSo)
{
    for(const bool fillGeo : {true, false})
        for(const bool list : {true, false})
        {
            const Held<NurbsCurvePtr> curve;
            TrueCurve shortCurve = plainCurve();
            shortCurve.points.pop_back();
            fill(curve.ptr, shortCurve, false);
            curve->setFillGeo(fillGeo);
            curve->setDlistCache(list);
            endEditCP(curve.ptr);
            EXPECT_EQ(warningsOf(curve.ptr), "NurbsCurve: not sent to GLU, since there are 2 control points of 3 values, and "
                                             "3 values are needed up to the one of number 3\n");
            EXPECT_EQ(spy.count("curve"), 0);

            const Held<NurbsSurfacePtr> surface;
            fill(surface.ptr, square(), false);
            surface->setUDim(3);
            surface->setFillGeo(fillGeo);
            surface->setDlistCache(list);
            endEditCP(surface.ptr);
            EXPECT_EQ(warningsOf(surface.ptr), "NurbsSurface: not sent to GLU, since there are 4 control points of 3 values, "
                                               "and 3 values are needed up to the one of number 5\n");
            EXPECT_EQ(spy.count("surface"), 0);
        }
}

TEST_F(BadInput, TooFewTextureCoordinatesAreNotSent)
{
    const Held<NurbsSurfacePtr> surface;
    fill(surface.ptr, square(), false);
    surface->setControlTexCoord(make<GeoTexCoords2f>({Vec2f(0, 0), Vec2f(1, 0), Vec2f(0, 1)}));
    endEditCP(surface.ptr);
    EXPECT_EQ(warningsOf(surface.ptr),
              "NurbsSurface: not sent to GLU, since of the texture coordinates there are 3 control points of 2 values, and 2 "
              "values are needed up to the one of number 4\n");
    // Two values are read of each, also where there is one.
    surface->setControlTexCoord(make<GeoTexCoords1f>({0, 1, 0, 1}));
    endEditCP(surface.ptr);
    EXPECT_NE(warningsOf(surface.ptr), "");
    EXPECT_EQ(spy.surfaces.size(), 0u);
}

TEST_F(BadInput, WithoutControlPointsTheGeometryComesOutEmptyAndSilent)
{
    const Held<NurbsCurvePtr> curve;
    EXPECT_EQ(warningsOf(curve.ptr), "");
    ASSERT_TRUE(curve->getPositions() != NullFC);
    EXPECT_EQ(curve->getPositions()->getSize(), 0u);
    EXPECT_FALSE(curve->getDirty());
}

TEST_F(BadInput, NumbersThatAreNoneAreNotSent)
{
    const Real32 nan = std::numeric_limits<Real32>::quiet_NaN();
    const Held<NurbsCurvePtr> curve;
    fill(curve.ptr, plainCurve(), false);
    curve->editKnot(3) = nan;
    endEditCP(curve.ptr);
    EXPECT_EQ(warningsOf(curve.ptr), "NurbsCurve: not sent to GLU, since a knot is not finite\n");
    const Held<NurbsSurfacePtr> surface;
    fill(surface.ptr, square(), false);
    GeoPositions3fPtr::dcast(surface->getControlPoint())->getField()[1][2] = nan;
    endEditCP(surface.ptr);
    EXPECT_EQ(warningsOf(surface.ptr), "NurbsSurface: not sent to GLU, since a control point is not finite\n");
    EXPECT_EQ(spy.count("curve") + spy.count("surface"), 0);
}

TEST_F(BadInput, ATrimmingCurveThatIsTooShortIsLeftOutWithALine)
{
    const NurbsCurvePtr curve = NurbsCurve::create();
    curve->setControlPoint(make<GeoPositions2f>({Pnt2f(0.2f, 0.2f), Pnt2f(0.8f, 0.8f)}));
    curve->editMFKnot()->setValues({0, 0, 0, 1, 1, 1});
    curve->setControlCurve(true);
    endEditCP(curve);
    const NurbsTrimmingLoopPtr loop = NurbsTrimmingLoop::create();
    loop->getTrimmingContour().push_back(curve);
    endEditCP(loop);
    const Held<NurbsSurfacePtr> surface;
    fill(surface.ptr, square(), false);
    surface->getTrimmingLoop().push_back(loop);
    endEditCP(surface.ptr);
    const std::string warnings = warningsOf(surface.ptr);
    EXPECT_EQ(warnings.find("NurbsCurve: trims nothing, since there are 2 control points of 2 values, and 2 values are needed "
                            "up to the one of number 3\n"),
              0u)
        << warnings;
    EXPECT_EQ(spy.curve.size(), 0u);

    curve->setControlPoint(NullFC);
    endEditCP(curve);
    LogCapture log;
    EXPECT_EQ(curve->trim(nullptr, nullptr), Action::Continue);
    EXPECT_EQ(log.text(LOG_WARNING), "NurbsCurve: trims nothing, since there are no control points\n");
    curve->setPolyline(true);
    curve->setControlPoint(GeoPositions2f::create());
    log.clear();
    EXPECT_EQ(curve->trim(nullptr, nullptr), Action::Continue);
    EXPECT_EQ(log.text(LOG_WARNING), "NurbsCurve: trims nothing, since there are no control points\n");
}

TEST_F(BadInput, AnEmptyContourIsReportedByGlu)
{
    const Held<NurbsSurfacePtr> surface;
    fill(surface.ptr, square(), false);
    surface->getTrimmingLoop().push_back(NurbsTrimmingLoop::create());
    endEditCP(surface.ptr);
    EXPECT_EQ(warningsOf(surface.ptr), surfaceError(GLU_NURBS_ERROR18));
    EXPECT_FALSE(surface->getDirty());
}

TEST_F(BadInput, ContoursThatAreOpenOrCrossThemselvesDoNoHarm)
{
    const Pnt2f a(0.2f, 0.2f), b(0.8f, 0.2f), c(0.8f, 0.8f), d(0.2f, 0.8f);
    const Pnt2f far(1e30f, -1e30f);
    const std::vector<std::vector<Pnt2f>> contours = {{a}, {a, b}, {a, b, c}, {a, a, a, a}, {a, c, b, d, a}, {a, far, d, a}};
    for(const std::vector<Pnt2f> &contour : contours)
    {
        const NurbsCurvePtr curve = NurbsCurve::create();
        curve->setControlPoint(make<GeoPositions2f>(contour));
        curve->setControlCurve(true);
        curve->setPolyline(true);
        endEditCP(curve);
        const NurbsTrimmingLoopPtr loop = NurbsTrimmingLoop::create();
        loop->getTrimmingContour().push_back(curve);
        endEditCP(loop);
        const Held<NurbsSurfacePtr> surface;
        fill(surface.ptr, square(), false);
        surface->getTrimmingLoop().push_back(loop);
        endEditCP(surface.ptr);
        warningsOf(surface.ptr);
        EXPECT_FALSE(surface->getDirty());
        // Whatever GLU makes of it stays in the plane and within the square.
        for(UInt32 i = 0; i < surface->getPositions()->getSize(); ++i)
        {
            const Pnt3f p = surface->getPositions()->getValue(i);
            EXPECT_LE(std::max(std::fabs(p[0]), std::fabs(p[1])), 1.0001f);
            EXPECT_EQ(p[2], 0.f);
        }
    }
}
