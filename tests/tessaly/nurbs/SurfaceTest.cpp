/// \file
/// Surfaces: their tessellation against the true surface, their pictures, picking, their life.

#include "GluSpy.h"
#include "NurbsScene.h"

#include "support/PixelCompare.h"

#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGIntersectActor.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGTriangleIterator.h>

#include <iostream>
#include <set>

OSG_USING_NAMESPACE
using namespace nurbs_test;

namespace
{

class Surfaces : public ::testing::Test
{
  protected:
    void SetUp() override { GluSpy::the().clear(); }
    void TearDown() override { EXPECT_EQ(GluSpy::the().renderers, 0) << "a renderer outlived its pass"; }

    GluSpy &spy = GluSpy::the();
};

TrueSurface randomSurface(std::mt19937 &random, bool weighted)
{
    std::uniform_real_distribution<double> shift(-0.2, 0.2);
    std::uniform_real_distribution<double> weight(0.4, 2.5);
    const auto knots = [&random](double end) {
        const int order = std::uniform_int_distribution<int>(2, 5)(random);
        return clampedKnots(order, order + std::uniform_int_distribution<int>(0, 3)(random), end, &random);
    };
    TrueSurface surface;
    surface.u = knots(1);
    surface.v = knots(2);
    for(int j = 0; j < surface.v.points(); ++j)
        for(int i = 0; i < surface.u.points(); ++i)
        {
            const double w = weighted ? weight(random) : 1.0;
            surface.points.push_back({w * (i * 2.0 / (surface.u.points() - 1) - 1 + shift(random)),
                                      w * (j * 2.0 / (surface.v.points() - 1) - 1 + shift(random)), w * 3 * shift(random), w});
        }
    return surface;
}

TrueSurface sphere(double radius)
{
    // A half circle from the lower pole to the upper.
    const double w = std::sqrt(0.5);
    Knots half;
    half.order = 3;
    half.values = {0, 0, 0, 1, 1, 2, 2, 2};
    return revolve({{0, -radius, 1}, {radius, -radius, w}, {radius, 0, 1}, {radius, radius, w}, {0, radius, 1}}, half);
}

TrueSurface cylinder(double radius, double height)
{
    return revolve({{radius, -height, 1}, {radius, height, 1}}, bezierKnots(2));
}

TrueSurface torus(double ring, double tube)
{
    std::vector<Place> profile;
    for(const Place &c : circlePoints(1))
    {
        const double w = c[2];
        profile.push_back({ring + tube * c[0] / w, tube * c[1] / w, w});
    }
    return revolve(profile, circleKnots());
}

struct Worst
{
    double distance = 0; ///< of the size
    double angle = 0;    ///< in degrees
    std::size_t vertices = 0;
    std::size_t normals = 0; ///< that are defined
};

/// The angle between a normal and the true one, in degrees; negative where there is none. On a crease, which is where a knot
/// is as often there as the degree tells, there is one for each side, and the nearest counts.
double angleToNormal(const TrueSurface &surface, double u, double v, const Place &found, double size)
{
    double best = -1;
    for(const double uSide : {-1e-6, 1e-6})
        for(const double vSide : {-1e-6, 1e-6})
        {
            Place place, alongU, alongV;
            surface.at(std::min(std::max(u + uSide, surface.u.first()), surface.u.last()),
                       std::min(std::max(v + vSide, surface.v.first()), surface.v.last()), place, alongU, alongV);
            // V is GLU's first parameter.
            const Place normal = cross(alongV, alongU);
            if(length(normal) < 1e-3 * (length(alongU) + length(alongV)) * size)
                continue;
            const double cosine = dot(normal, found) / (length(normal) * length(found));
            const double angle = std::acos(std::max(-1.0, std::min(1.0, cosine))) * 180 / M_PI;
            if(best < 0 || angle < best)
                best = angle;
        }
    return best;
}

/// Tessellates the surface and holds each vertex against the true one at its parameters.
Worst compare(const TrueSurface &surface, bool homogeneous, Int32 tessellation)
{
    Worst worst;
    const Held<NurbsSurfacePtr> core;
    fill(core.ptr, surface, homogeneous);
    core->setUTessellation(tessellation);
    core->setVTessellation(tessellation);
    endEditCP(core.ptr);
    NurbsView view(core.ptr, 16);
    view.render();

    const auto positions = GeoPositions3fPtr::dcast(core->getPositions())->getField().getValues();
    const auto normals = GeoNormals3fPtr::dcast(core->getNormals())->getField().getValues();
    const auto parameters = GeoTexCoords2fPtr::dcast(core->getTexCoords())->getField().getValues();
    EXPECT_EQ(positions.size(), normals.size());
    EXPECT_EQ(positions.size(), parameters.size());
    if(positions.size() != normals.size() || positions.size() != parameters.size())
        return worst;

    const double size = sizeOf(surface.points);
    for(std::size_t i = 0; i < positions.size(); ++i)
    {
        Place place, alongU, alongV;
        const double u = std::min(std::max(double(parameters[i][0]), surface.u.first()), surface.u.last());
        const double v = std::min(std::max(double(parameters[i][1]), surface.v.first()), surface.v.last());
        surface.at(u, v, place, alongU, alongV);
        const Place found = {positions[i][0], positions[i][1], positions[i][2]};
        worst.distance = std::max(worst.distance, length(minus(place, found)) / size);
        ++worst.vertices;
        const Place foundNormal = {normals[i][0], normals[i][1], normals[i][2]};
        const double angle = angleToNormal(surface, u, v, foundNormal, size);
        if(angle < 0)
            continue;
        EXPECT_NEAR(length(foundNormal), 1, 1e-3);
        worst.angle = std::max(worst.angle, angle);
        ++worst.normals;
    }
    std::cout << worst.vertices << " vertices, worst distance " << worst.distance << " of the size, worst normal "
              << worst.angle << " degrees" << std::endl;
    return worst;
}

std::unique_ptr<IntersectAction> shoot(const NodePtr &root, const Pnt3f &from, const Vec3f &direction)
{
    std::unique_ptr<IntersectAction> action(IntersectAction::create(Line(from, direction)));
    action->apply(root);
    return action;
}

} // namespace

TEST_F(Surfaces, EveryVertexOfASphereLiesOnItWithTheTrueNormal)
{
    const Worst worst = compare(sphere(0.7), true, 8);
    EXPECT_GT(worst.normals, 500u);
    EXPECT_LT(worst.distance, 1e-4);
    EXPECT_LT(worst.angle, 1.0);
}

TEST_F(Surfaces, EveryVertexOfACylinderLiesOnItWithTheTrueNormal)
{
    const Worst worst = compare(cylinder(0.5, 0.8), true, 8);
    EXPECT_GT(worst.normals, 200u);
    EXPECT_LT(worst.distance, 1e-4);
    EXPECT_LT(worst.angle, 1.0);
}

TEST_F(Surfaces, EveryVertexOfATorusLiesOnItWithTheTrueNormal)
{
    const Worst worst = compare(torus(0.6, 0.2), true, 8);
    EXPECT_GT(worst.normals, 1000u);
    EXPECT_LT(worst.distance, 1e-4);
    EXPECT_LT(worst.angle, 1.0);
}

TEST_F(Surfaces, EveryVertexOfRandomSurfacesLiesOnThemWithTheTrueNormal)
{
    const unsigned seed = 20011;
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    for(int round = 0; round < 12; ++round)
    {
        SCOPED_TRACE(round);
        const bool weighted = round % 2 == 1;
        const Worst worst = compare(randomSurface(random, weighted), weighted, 7);
        EXPECT_GT(worst.normals, 50u);
        EXPECT_LT(worst.distance, 1e-4);
        EXPECT_LT(worst.angle, 1.0);
    }
}

TEST_F(Surfaces, ASphereIsDividedSoThatItsVerticesHaveItsRadius)
{
    const Held<NurbsSurfacePtr> core;
    fill(core.ptr, sphere(0.7), true);
    NurbsView view(core.ptr, 16);
    view.render();
    ASSERT_GT(core->getPositions()->getSize(), 100u);
    for(UInt32 i = 0; i < core->getPositions()->getSize(); ++i)
        EXPECT_NEAR((core->getPositions()->getValue(i) - Pnt3f(0, 0, 0)).length(), 0.7f, 1e-5f);
}

TEST_F(Surfaces, TheStaticFormIsOneIndexedGeometryWithNormalsAndTextureCoordinates)
{
    const Held<NurbsSurfacePtr> core;
    fill(core.ptr, cylinder(0.5, 0.8), true);
    NurbsView view(core.ptr, 16);
    view.render();
    ASSERT_EQ(core->getIndexMapping().size(), 1u);
    EXPECT_EQ(core->getIndexMapping()[0], Geometry::MapPosition | Geometry::MapNormal | Geometry::MapTexCoords);
    UInt32 sum = 0;
    ASSERT_EQ(core->getTypes()->getSize(), core->getLengths()->getSize());
    for(UInt32 i = 0; i < core->getLengths()->getSize(); ++i)
    {
        EXPECT_GE(core->getTypes()->getValue(i), UInt32(GL_TRIANGLES));
        EXPECT_LE(core->getTypes()->getValue(i), UInt32(GL_POLYGON));
        sum += core->getLengths()->getValue(i);
    }
    EXPECT_EQ(core->getPositions()->getSize(), sum);
    EXPECT_EQ(core->getNormals()->getSize(), sum);
    EXPECT_EQ(core->getTexCoords()->getSize(), sum);
    ASSERT_EQ(core->getIndices()->getSize(), sum);
    for(UInt32 i = 0; i < sum; ++i)
        EXPECT_EQ(core->getIndices()->getValue(i), i);
    EXPECT_EQ(core->nurbsRenderer, nullptr);
    EXPECT_FALSE(core->getDirty());
    EXPECT_EQ(spy.properties[GLU_CULLING], 0.f);
    EXPECT_EQ(spy.properties[GLU_NURBS_MODE], float(GLU_NURBS_TESSELLATOR));
    for(const GLenum which : {GLU_NURBS_BEGIN, GLU_NURBS_END, GLU_NURBS_VERTEX, GLU_NURBS_NORMAL, GLU_NURBS_TEXTURE_COORD})
    {
        EXPECT_EQ(spy.count("callback " + std::to_string(which)), 1) << which;
        EXPECT_EQ(spy.count("no callback " + std::to_string(which)), 1) << which;
    }
    EXPECT_EQ(spy.count("no callback " + std::to_string(GLU_ERROR)), 0);
    // V first: 4 knots of order 2; then U: 12 knots of order 3. Nine points in a row.
    ASSERT_EQ(spy.surfaces.size(), 2u);
    EXPECT_EQ(spy.surfaces[0], (std::vector<int>{4, 12, 36, 4, 2, 3, GL_MAP2_VERTEX_4}));
    EXPECT_EQ(spy.surfaces[1], (std::vector<int>{4, 12, 18, 2, 2, 3, GL_MAP2_TEXTURE_COORD_2}));
}

TEST_F(Surfaces, TheTessellationFieldsBecomeTheStepsOfGluCrosswise)
{
    struct Case
    {
        Int32 u, v;
        float uStep, vStep;
    };
    // uDim is 9, vDim is 2; the surface's U is GLU's second parameter, and the step of the first is made of uTessellation.
    const Case cases[] = {{0, 0, 19, 5}, {3, 1, 4, 2}, {-2, -3, 19, 7}};
    for(const Case &c : cases)
    {
        spy.clear();
        const Held<NurbsSurfacePtr> core;
        fill(core.ptr, cylinder(0.5, 0.8), true);
        core->setUTessellation(c.u);
        core->setVTessellation(c.v);
        endEditCP(core.ptr);
        NurbsView view(core.ptr, 16);
        view.render();
        EXPECT_EQ(spy.properties[GLU_SAMPLING_METHOD], float(GLU_DOMAIN_DISTANCE));
        EXPECT_EQ(spy.properties[GLU_U_STEP], c.uStep);
        EXPECT_EQ(spy.properties[GLU_V_STEP], c.vStep);
    }

    // Seen in what comes out: more steps of uTessellation give more rows along V.
    const auto rows = [](Int32 u, Int32 v) {
        const Held<NurbsSurfacePtr> core;
        fill(core.ptr, square(), false);
        core->setUTessellation(u);
        core->setVTessellation(v);
        endEditCP(core.ptr);
        NurbsView view(core.ptr, 16);
        view.render();
        std::set<float> us, vs;
        for(const Vec2f &p : GeoTexCoords2fPtr::dcast(core->getTexCoords())->getField())
        {
            us.insert(p[0]);
            vs.insert(p[1]);
        }
        return std::pair<std::size_t, std::size_t>(us.size(), vs.size());
    };
    const auto found = rows(9, 1);
    EXPECT_GE(found.second, 10u);
    EXPECT_LE(found.first, 4u);
}

TEST_F(Surfaces, StaticListAndDirectFormDrawTheSamePicture)
{
    const TrueSurface shapes[] = {sphere(0.8), torus(0.6, 0.25)};
    for(const TrueSurface &shape : shapes)
    {
        test::RgbaImage pictures[3];
        for(int form = 0; form < 3; ++form)
        {
            const Held<NurbsSurfacePtr> core;
            fill(core.ptr, shape, true);
            core->setUTessellation(12);
            core->setVTessellation(12);
            core->setFillGeo(form == 0);
            core->setDlistCache(form == 1);
            core->setMaterial(white(true));
            endEditCP(core.ptr);
            NurbsView view(core.ptr);
            pictures[form] = view.render();
            EXPECT_EQ(pictures[form].bytes, view.render().bytes) << "the second frame is as the first";
        }
        EXPECT_GT(coveredPixels(pictures[0]), 2500);
        // Shades of light round by one or two; along the outline the evaluators of GL and of GLU may fill a pixel more or less.
        test::PixelLimits limits;
        limits.channel = 3;
        limits.fraction = 0.005;
        EXPECT_TRUE(test::imagesMatch(pictures[1], pictures[0], limits, "surface-list"));
        EXPECT_TRUE(test::imagesMatch(pictures[2], pictures[0], limits, "surface-direct"));
    }
}

TEST_F(Surfaces, TheDirectFormLeavesTwoEnablesOnAndTheListDoesNot)
{
    for(const bool list : {true, false})
    {
        const Held<NurbsSurfacePtr> core;
        fill(core.ptr, square(), false);
        core->setFillGeo(false);
        core->setDlistCache(list);
        core->setMaterial(white(false));
        endEditCP(core.ptr);
        NurbsView view(core.ptr, 16);
        ASSERT_TRUE(view.window()->activate());
        glDisable(GL_NORMALIZE);
        glDisable(GL_AUTO_NORMAL);
        EXPECT_EQ(coveredPixels(view.render()), 256);
        ASSERT_TRUE(view.window()->activate());
        EXPECT_EQ(glIsEnabled(GL_NORMALIZE), GLboolean(!list));
        EXPECT_EQ(glIsEnabled(GL_AUTO_NORMAL), GLboolean(!list));
    }
}

TEST_F(Surfaces, ThePolygonModeBecomesTheDisplayMode)
{
    struct Case
    {
        GLenum polygonMode;
        GLenum displayMode;
    };
    const Case cases[] = {{GL_FILL, GLU_FILL}, {GL_LINE, GLU_OUTLINE_PATCH}, {GL_POINT, GLU_OUTLINE_POLYGON}};
    for(const Case &c : cases)
    {
        const Held<NurbsSurfacePtr> core;
        fill(core.ptr, square(), false);
        core->setFillGeo(false);
        core->setDlistCache(false);
        const SimpleMaterialPtr material = white(false);
        const PolygonChunkPtr polygon = PolygonChunk::create();
        polygon->setFrontMode(c.polygonMode);
        polygon->setBackMode(c.polygonMode);
        endEditCP(polygon);
        material->addChunk(polygon);
        endEditCP(material);
        core->setMaterial(material);
        endEditCP(core.ptr);
        NurbsView view(core.ptr, 64);
        spy.clear();
        const int covered = coveredPixels(view.render());
        EXPECT_EQ(spy.properties[GLU_DISPLAY_MODE], float(c.displayMode));
        if(c.polygonMode == GL_FILL)
            EXPECT_EQ(covered, 64 * 64);
        else
            EXPECT_LT(covered, 64 * 64 / 2);
        spy.clear();
        core->setFillGeo(true);
        endEditCP(core.ptr);
        view.render();
        EXPECT_EQ(spy.properties.count(GLU_DISPLAY_MODE), 0u) << "with static geometry it is the geometry's affair";
    }
}

TEST_F(Surfaces, ARayHitsTheTessellationWhereTheSurfaceIs)
{
    const Held<NurbsSurfacePtr> core;
    fill(core.ptr, sphere(0.7), true);
    core->setUTessellation(24);
    core->setVTessellation(24);
    endEditCP(core.ptr);
    NurbsView view(core.ptr, 16);
    EXPECT_FALSE(shoot(view.root(), Pnt3f(0, 0, 5), Vec3f(0, 0, -1))->didHit()) << "not tessellated yet";
    view.render();

    const unsigned seed = 99;
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> place(-1, 1);
    int hits = 0;
    for(int i = 0; i < 60; ++i)
    {
        const Pnt3f from(place(random), place(random), 5);
        const double off = std::hypot(from[0], from[1]);
        if(std::fabs(off - 0.7) < 0.02)
            continue;
        const auto action = shoot(view.root(), from, Vec3f(0, 0, -1));
        ASSERT_EQ(action->didHit(), off < 0.7) << from[0] << " " << from[1];
        if(!action->didHit())
            continue;
        ++hits;
        EXPECT_TRUE(action->getHitObject() == view.node());
        // The chord of a 24th of a quarter lies 0.0004 below the arc; a slanting ray sees that enlarged.
        const double depth = 5 - std::sqrt(0.49 - off * off);
        EXPECT_NEAR(action->getHitT(), depth, 0.0015 * 0.7 / std::sqrt(0.49 - off * off));
        const Vec3f normal = action->getHitNormal();
        EXPECT_GT(std::fabs(normal.dot(action->getHitPoint() - Pnt3f(0, 0, 0))) / 0.7f / normal.length(), 0.998f);
    }
    EXPECT_GT(hits, 10);

    const std::unique_ptr<IntersectActor> actor(IntersectActor::create());
    const std::unique_ptr<DepthFirstAction> walk(DepthFirstAction::create());
    walk->addActor(actor.get());
    actor->setRay(Line(Pnt3f(0.1f, 0.2f, 5), Vec3f(0, 0, -1)));
    walk->apply(view.root());
    ASSERT_TRUE(actor->getHit());
    EXPECT_NEAR(actor->getHitDistance(), 5 - std::sqrt(0.49 - 0.05), 0.002);
}

TEST_F(Surfaces, WithoutTextureCoordinatesNothingIsSentAndNothingSaid)
{
    for(const bool fillGeo : {true, false})
    {
        spy.clear();
        const Held<NurbsSurfacePtr> core;
        fill(core.ptr, square(), false);
        core->setControlTexCoord(NullFC);
        core->setFillGeo(fillGeo);
        core->setMaterial(white(false));
        endEditCP(core.ptr);
        NurbsView view(core.ptr, 16);
        LogCapture log(LOG_NOTICE);
        EXPECT_EQ(coveredPixels(view.render()), 0);
        EXPECT_EQ(log.count(), 0u) << log.text();
        EXPECT_EQ(spy.count("surface"), 0);
        EXPECT_FALSE(core->getDirty());
        if(fillGeo)
        {
            ASSERT_TRUE(core->getPositions() != NullFC);
            EXPECT_EQ(core->getPositions()->getSize(), 0u);
        }
    }
}

TEST_F(Surfaces, OnlyTheDefiningFieldsMakeTheSurfaceDirty)
{
    const Held<NurbsSurfacePtr> core;
    fill(core.ptr, square(), false);
    NurbsView view(core.ptr, 16);
    EXPECT_TRUE(core->getDirty());
    view.render();
    for(UInt32 id = NurbsSurface::ControlPointFieldId; id <= NurbsSurface::FillGeoFieldId; ++id)
    {
        endEditCP(core.ptr, BitVector(1) << id);
        EXPECT_TRUE(core->getDirty()) << id;
        view.render();
        EXPECT_FALSE(core->getDirty()) << id;
    }
    const int made = spy.made;
    endEditCP(core.ptr, NurbsSurface::NumVerticesFieldMask | NurbsSurface::DirtyFieldMask |
                            NurbsSurface::SurfaceGLIdFieldMask | Geometry::NormalsFieldMask | Geometry::MaterialFieldMask);
    EXPECT_FALSE(core->getDirty());
    view.render();
    EXPECT_EQ(spy.made, made);

    // A property that is edited tells the surface.
    endEditCP(core->getControlTexCoord());
    EXPECT_TRUE(core->getDirty());
}

TEST_F(Surfaces, ControlPropertiesAreReferencedAndKnowTheSurface)
{
    const Held<GeoPositionsPtr> points(points3(square().points));
    const Held<GeoTexCoordsPtr> texCoords(GeoTexCoordsPtr::dcast(make<GeoTexCoords2f>({Vec2f(0, 0)})));
    {
        const Held<NurbsSurfacePtr> core;
        for(int i = 0; i < 2; ++i)
        {
            core->setControlPoint(points.ptr);
            core->setControlTexCoord(texCoords.ptr);
        }
        EXPECT_EQ(points.ptr.getRefCount(), 2);
        EXPECT_EQ(texCoords.ptr.getRefCount(), 2);
        ASSERT_EQ(points->getParents().size(), 1u);
        ASSERT_EQ(texCoords->getParents().size(), 1u);
        EXPECT_EQ(points->getParents()[0].getParentFieldPos(), 28u);
        EXPECT_EQ(texCoords->getParents()[0].getParentFieldPos(), 38u);
        const Held<NurbsSurfacePtr> copy(NurbsSurfacePtr::dcast(core->shallowCopy()));
        EXPECT_EQ(texCoords.ptr.getRefCount(), 3);
        EXPECT_NE(copy->getSurfaceGLId(), core->getSurfaceGLId());

        core->setControlTexCoord(NullFC);
        core->getSFControlTexCoord()->setValue(texCoords.ptr);
        core->changed(NurbsSurface::ControlTexCoordFieldMask, ChangedOrigin::Abstract | ChangedOrigin::AbstrCheckValid);
        EXPECT_EQ(texCoords.ptr.getRefCount(), 3);
        EXPECT_EQ(texCoords->findParent(core.ptr), 1);
    }
    EXPECT_EQ(points.ptr.getRefCount(), 1);
    EXPECT_EQ(texCoords.ptr.getRefCount(), 1);
    EXPECT_EQ(points->getParents().size(), 0u);
    EXPECT_EQ(texCoords->getParents().size(), 0u);
}

TEST_F(Surfaces, TheVolumeIsThatOfTheControlPoints)
{
    const Held<NurbsSurfacePtr> core;
    const Held<NodePtr> node(makeNodeFor(core.ptr));
    EXPECT_TRUE(node->getVolume(true).isValid());
    EXPECT_TRUE(node->getVolume(true).isEmpty());
    fill(core.ptr, square(), false);
    Pnt3f low, high;
    node->getVolume(true).getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(-1, -1, 0));
    EXPECT_EQ(high, Pnt3f(1, 1, 0));
}

TEST_F(Surfaces, ThePassesTellOfThemselvesAtTheInfoLevel)
{
    const Held<NurbsSurfacePtr> core;
    fill(core.ptr, square(), false);
    char text[160];
    {
        LogCapture log;
        NurbsView view(core.ptr, 16);
        view.render();
        std::snprintf(text, sizeof(text), "NurbsSurface::createGeometry() called (%p)\n",
                      static_cast<void *>(core.ptr.getCPtr()));
        EXPECT_TRUE(log.contains(LOG_INFO, text)) << log.text(LOG_INFO);
    }
    core->setFillGeo(false);
    endEditCP(core.ptr);
    LogCapture log;
    NurbsView view(core.ptr, 16);
    view.render();
    const UInt32 list = view.window()->getGLObjectId(UInt32(core->getSurfaceGLId()));
    std::snprintf(text, sizeof(text), "NurbsSurface::createDList(%d) called (%p)\n",
                  int(reinterpret_cast<std::uintptr_t>(core.ptr.getCPtr())),
                  reinterpret_cast<void *>(std::uintptr_t(list)));
    EXPECT_TRUE(log.contains(LOG_INFO, text)) << log.text(LOG_INFO);
    EXPECT_EQ(spy.properties[GLU_NURBS_MODE], float(GLU_NURBS_RENDERER));
    log.clear();
    LogCapture warnings(LOG_WARNING);
    core->createGeometry();
    EXPECT_EQ(warnings.count(LOG_WARNING), 1u) << "outside of a pass there is no renderer";
}

TEST_F(Surfaces, AnOldGluFallsBackToTheListWithAWarning)
{
    spy.version = "1.2";
    const Held<NurbsSurfacePtr> core;
    fill(core.ptr, square(), false);
    core->setMaterial(white(false));
    endEditCP(core.ptr);
    NurbsView view(core.ptr, 16);
    LogCapture log;
    EXPECT_EQ(coveredPixels(view.render()), 256);
    EXPECT_FALSE(core->getFillGeo());
    EXPECT_TRUE(log.contains(LOG_WARNING,
                             "Can't create static geometry with glu version 1.2. Version 1.3 and above is needed!\n"));
}
