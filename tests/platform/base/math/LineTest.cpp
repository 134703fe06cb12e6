/// \file
/// Half-lines and planes.

#include <gtest/gtest.h>

#include <OpenSG/OSGBoxVolume.h>
#include <OpenSG/OSGFrustumVolume.h>
#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGPlane.h>
#include <OpenSG/OSGSphereVolume.h>

#include "MathRandom.h"

using namespace osg;

namespace
{

/// Walks along the half-line in small steps and asks for each point: first and last step inside, or -1.
struct Walk
{
    float first = -1;
    float last = -1;
};

constexpr float Step = 0.01f;

template <class InsideT>
Walk walk(const Line &line, InsideT inside)
{
    Walk result;
    for (int i = 0; i < 2000; ++i)
    {
        const float t = i * Step;
        if (!inside(line.getPoint(t)))
            continue;
        if (result.first < 0)
            result.first = t;
        result.last = t;
    }
    return result;
}

/// The walk can miss a short stretch inside but never finds one where the line has none.
template <class VolumeT, class InsideT>
int compareWithWalk(const Line &line, const VolumeT &volume, InsideT inside)
{
    const Walk expected = walk(line, inside);
    Real32 enter = -5, exit = -5;
    const bool hit = line.intersect(volume, enter, exit);
    EXPECT_EQ(hit, line.intersect(volume));
    EXPECT_EQ(hit, volume.intersect(line));
    if (expected.first < 0)
    {
        if (hit)
            EXPECT_LE(exit - enter, Step * 1.01f);
        else
            EXPECT_EQ(enter, -5);
        return 0;
    }
    EXPECT_TRUE(hit);
    EXPECT_LE(enter, expected.first + 1e-4f);
    EXPECT_GE(enter, expected.first - Step - 1e-4f);
    EXPECT_GE(exit, expected.last - 1e-4f);
    EXPECT_LE(exit, expected.last + Step + 1e-4f);
    return 1;
}

Line randomLine(MathRandom &random)
{
    const Pnt3f start = random.pnt(4);
    return Line(start, random.pnt(1.5f) - start);
}

} // namespace

TEST(Line, KeepsItsStartAndAUnitDirection)
{
    const Line line(Pnt3f(1, 2, 3), Pnt3f(1, 2, 13));
    EXPECT_EQ(line.getPosition(), Pnt3f(1, 2, 3));
    EXPECT_EQ(line.getDirection(), Vec3f(0, 0, 1));
    EXPECT_EQ(Line(Pnt3f(1, 2, 3), Vec3f(0, 0, 5)), line);
    EXPECT_EQ(line.getClosestPoint(Pnt3f(4, 6, -7)), Pnt3f(1, 2, -7));
    EXPECT_EQ(line.distance(Pnt3f(4, 6, -7)), 5);
}

TEST(Line, FindsTheClosestPointsOfTwoLines)
{
    const Line x(Pnt3f(5, 0, 0), Vec3f(1, 0, 0));
    Pnt3f a, b;
    ASSERT_TRUE(x.getClosestPoints(Line(Pnt3f(2, 7, 3), Vec3f(0, 1, 0)), a, b));
    EXPECT_TRUE(a.equals(Pnt3f(2, 0, 0), 1e-5f));
    EXPECT_TRUE(b.equals(Pnt3f(2, 0, 3), 1e-5f));
    EXPECT_FALSE(x.getClosestPoints(Line(Pnt3f(0, 1, 0), Vec3f(-1, 0, 0)), a, b));
}

TEST(Line, MeetsASphereAlsoBeyondItsSecondPointButNotBehindItsFirst)
{
    const SphereVolume sphere(Pnt3f(0, 0, 10), 1);
    EXPECT_TRUE(Line(Pnt3f(0, 0, 0), Pnt3f(0, 0, 0.1f)).intersect(sphere));
    EXPECT_FALSE(Line(Pnt3f(0, 0, 0), Pnt3f(0, 0, -1)).intersect(sphere));
    Real32 enter, exit;
    ASSERT_TRUE(Line(Pnt3f(0, 0, 0), Vec3f(0, 0, 1)).intersect(sphere, enter, exit));
    EXPECT_EQ(enter, 9);
    EXPECT_EQ(exit, 11);
    ASSERT_TRUE(Line(Pnt3f(0, 0, 10.5f), Vec3f(0, 0, 1)).intersect(sphere, enter, exit));
    EXPECT_EQ(enter, 0);
    EXPECT_EQ(exit, 0.5f);
    EXPECT_TRUE(Line(Pnt3f(1, 0, 0), Vec3f(0, 0, 1)).intersect(sphere));
    EXPECT_FALSE(Line(Pnt3f(1.001f, 0, 0), Vec3f(0, 0, 1)).intersect(sphere));
}

TEST(Line, WithoutDirectionIsItsPoint)
{
    const Line inside(Pnt3f(0, 0, 0), Pnt3f(0, 0, 0));
    const Line outside(Pnt3f(2, 2, 2), Pnt3f(2, 2, 2));
    Real32 enter = 1, exit = 1;
    EXPECT_TRUE(inside.intersect(SphereVolume(Pnt3f(), 1), enter, exit));
    EXPECT_EQ(enter, 0);
    EXPECT_EQ(exit, 0);
    EXPECT_TRUE(inside.intersect(BoxVolume(-1, -1, -1, 1, 1, 1), enter, exit));
    EXPECT_EQ(exit, 0);
    EXPECT_FALSE(outside.intersect(SphereVolume(Pnt3f(), 1)));
    EXPECT_FALSE(outside.intersect(BoxVolume(-1, -1, -1, 1, 1, 1)));
}

TEST(Line, MeetsSpheresBoxesAndFrustaWhereAWalkAlongItDoes)
{
    const unsigned seed = 51;
    TRACE_SEED(seed);
    MathRandom random(seed);
    int hits = 0;
    for (int i = 0; i < 120; ++i)
    {
        const Line line = randomLine(random);
        const Pnt3f center = random.pnt(1);
        const float radius = random.real(0.2f, 1.5f);
        hits += compareWithWalk(line, SphereVolume(center, radius),
                                [&](const Pnt3f &p) { return p.dist(center) <= radius; });

        const Pnt3f a = random.pnt(2), b = random.pnt(2);
        hits += compareWithWalk(line, BoxVolume(a, b),
                                [&](const Pnt3f &p)
                                {
                                    bool inside = true;
                                    for (UInt32 k = 0; k < 3; ++k)
                                        inside = inside && p[k] >= std::fmin(a[k], b[k]) &&
                                                 p[k] <= std::fmax(a[k], b[k]);
                                    return inside;
                                });

        // the pyramid |x| <= -z, |y| <= -z between z = -3 and z = -1
        FrustumVolume frustum;
        frustum.setPlanes(Pnt3f(-1, 1, -1), Pnt3f(-1, -1, -1), Pnt3f(1, 1, -1), Pnt3f(1, -1, -1),
                          Pnt3f(-3, 3, -3), Pnt3f(-3, -3, -3), Pnt3f(3, 3, -3), Pnt3f(3, -3, -3));
        hits += compareWithWalk(line, frustum,
                                [](const Pnt3f &p) {
                                    return p.z() <= -1 && p.z() >= -3 && std::abs(p.x()) <= -p.z() &&
                                           std::abs(p.y()) <= -p.z();
                                });
    }
    EXPECT_GT(hits, 100);
}

TEST(Line, NamesTheSideByWhichItEntersABox)
{
    const BoxVolume box(-1, -1, -1, 1, 1, 1);
    Real32 enter, exit;
    Vec3f normal;
    ASSERT_TRUE(Line(Pnt3f(-5, 0.5f, 0), Vec3f(1, 0, 0)).intersect(box, enter, exit, &normal));
    EXPECT_EQ(normal, Vec3f(-1, 0, 0));
    EXPECT_EQ(enter, 4);
    EXPECT_EQ(exit, 6);
    ASSERT_TRUE(Line(Pnt3f(0, 0, 0), Vec3f(1, 0, 0)).intersect(box, enter, exit, &normal));
    EXPECT_EQ(normal, Vec3f());
    EXPECT_FALSE(Line(Pnt3f(5, 0, 0), Vec3f(1, 0, 0)).intersect(box));
    EXPECT_FALSE(Line(Pnt3f(-5, 1.5f, 0), Vec3f(1, 0, 0)).intersect(box));
}

TEST(Line, MeetsTrianglesFromBothSides)
{
    const Pnt3f v0(0, 0, 0), v1(2, 0, 0), v2(0, 2, 0);
    Real32 t = -1;
    Vec3f normal;
    ASSERT_TRUE(Line(Pnt3f(0.5f, 0.5f, 3), Vec3f(0, 0, -1)).intersect(v0, v1, v2, t, &normal));
    EXPECT_EQ(t, 3);
    EXPECT_EQ(normal, Vec3f(0, 0, 1));
    EXPECT_TRUE(Line(Pnt3f(0.5f, 0.5f, -3), Vec3f(0, 0, 1)).intersect(v0, v1, v2, t));
    EXPECT_FALSE(Line(Pnt3f(0.5f, 0.5f, 3), Vec3f(0, 0, 1)).intersect(v0, v1, v2, t));
    EXPECT_FALSE(Line(Pnt3f(1.5f, 1.5f, 3), Vec3f(0, 0, -1)).intersect(v0, v1, v2, t));
    EXPECT_FALSE(Line(Pnt3f(-1, 0, 0), Vec3f(1, 0, 0)).intersect(v0, v1, v2, t));
    EXPECT_FALSE(Line(Pnt3f(0, 0, 1), Vec3f(0, 0, -1)).intersect(v0, v0, v2, t));
}

TEST(Line, MeetsRandomTrianglesExactlyThroughTheirInteriorPoints)
{
    const unsigned seed = 52;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 1000; ++i)
    {
        const Pnt3f v0 = random.pnt(2), v1 = random.pnt(2), v2 = random.pnt(2);
        const Vec3f normal = (v1 - v0).cross(v2 - v0);
        const float u = random.real(-1, 2), v = random.real(-1, 2);
        const bool inside = u > 0.01f && v > 0.01f && u + v < 0.99f;
        const bool outside = u < -0.01f || v < -0.01f || u + v > 1.01f;
        const Pnt3f target = v0 + (v1 - v0) * u + (v2 - v0) * v;
        const Pnt3f start = random.pnt(5);
        const float slant = std::abs(normal.dot(target - start)) / (normal.length() * target.dist(start));
        if (inside == outside || normal.length() < 0.5f || slant < 0.1f)
            continue;
        Real32 t = -1;
        EXPECT_EQ(Line(start, target).intersect(v0, v1, v2, t), inside);
        if (inside)
        {
            EXPECT_NEAR(t, start.dist(target), 1e-4);
        }
    }
}

TEST(Plane, MeasuresAlongItsNormal)
{
    const Plane plane(Vec3f(0, 2, 0), 3);
    EXPECT_EQ(plane.getNormal(), Vec3f(0, 1, 0));
    EXPECT_EQ(plane.distance(Pnt3f(7, 5, 7)), 2);
    EXPECT_TRUE(plane.isInHalfSpace(Pnt3f(0, 3, 0)));
    EXPECT_TRUE(plane.isOutHalfSpace(Pnt3f(0, 2.9f, 0)));
    EXPECT_TRUE(plane.isOnPlane(Pnt3f(-4, 3, 9)));
    EXPECT_FALSE(plane.isOnPlane(Pnt3f(-4, 3.1f, 9)));
    EXPECT_TRUE(plane.isInHalfSpace(Pnt3f(0, 0, 0), Pnt3f(1, 4, 1)));
    EXPECT_TRUE(plane.isOutHalfSpace(Pnt3f(0, 0, 0), Pnt3f(1, 2, 1)));
    EXPECT_EQ(Plane(Vec3f(0, 5, 0), Pnt3f(1, 3, 2)), plane);
    EXPECT_EQ(Plane(Pnt3f(0, 3, 0), Pnt3f(0, 3, 1), Pnt3f(1, 3, 0)), plane);
    Plane clip;
    clip.set(0, 2, 0, -6);
    EXPECT_EQ(clip, plane);
    EXPECT_EQ(plane.getClipPlane(), Vec4f(0, 1, 0, -3));
}

TEST(Plane, KeepsThePointsOfItsHalfSpaceThroughTransforms)
{
    const unsigned seed = 53;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 300; ++i)
    {
        Matrix m = random.affine();
        if (i % 2)
            m[1] = m[1] * -1.0f; // mirrored
        const Plane plane(random.direction(), random.real(-2, 2));
        Plane moved(plane);
        moved.transform(m);
        for (int k = 0; k < 10; ++k)
        {
            const Pnt3f p = random.pnt(5);
            if (std::abs(plane.distance(p)) > 1e-3f)
            {
                EXPECT_EQ(moved.isInHalfSpace(m * p), plane.isInHalfSpace(p));
            }
            const Pnt3f on = p - plane.getNormal() * plane.distance(p);
            EXPECT_NEAR(moved.distance(m * on), 0, 2e-5);
        }
    }
}

TEST(Plane, MeetsHalfLinesAheadOfTheirStart)
{
    const Plane plane(Vec3f(0, 0, 1), 2);
    Real32 t = -1;
    Pnt3f point;
    EXPECT_TRUE(plane.intersect(Line(Pnt3f(1, 1, 5), Vec3f(0, 0, -1)), t));
    EXPECT_EQ(t, 3);
    EXPECT_TRUE(Line(Pnt3f(1, 1, 5), Vec3f(0, 0, -1)).intersect(plane, t));
    EXPECT_FALSE(plane.intersect(Line(Pnt3f(1, 1, 5), Vec3f(0, 0, 1)), t));
    EXPECT_TRUE(plane.intersectInfinite(Line(Pnt3f(1, 1, 5), Vec3f(0, 0, 1)), point));
    EXPECT_EQ(point, Pnt3f(1, 1, 2));
    EXPECT_FALSE(plane.intersect(Line(Pnt3f(1, 1, 5), Vec3f(1, 0, 0)), t));
    EXPECT_TRUE(plane.intersect(Line(Pnt3f(1, 1, 2), Vec3f(1, 0, 0)), point));
    EXPECT_EQ(point, Pnt3f(1, 1, 2));
}

TEST(Plane, MeetsOtherPlanesInLinesAndPoints)
{
    const unsigned seed = 54;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 200; ++i)
    {
        const Plane a(random.direction(), random.real(-2, 2));
        const Plane b(random.direction(), random.real(-2, 2));
        const Plane c(random.direction(), random.real(-2, 2));
        if (std::abs(a.getNormal().dot(b.getNormal().cross(c.getNormal()))) < 0.1f)
            continue;
        Line line;
        ASSERT_TRUE(a.intersect(b, line));
        for (const float t : {-3.0f, 0.0f, 3.0f})
        {
            EXPECT_NEAR(a.distance(line.getPoint(t)), 0, 1e-5);
            EXPECT_NEAR(b.distance(line.getPoint(t)), 0, 1e-5);
        }
        Pnt3f point;
        ASSERT_TRUE(a.intersect(b, c, point));
        for (const Plane &plane : {a, b, c})
            EXPECT_NEAR(plane.distance(point), 0, 1e-5);
    }
    Line line;
    EXPECT_FALSE(Plane(Vec3f(0, 0, 1), 1).intersect(Plane(Vec3f(0, 0, -1), 1), line));
}
