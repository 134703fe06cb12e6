/// \file
/// The iterators over primitives and triangles, and intersection, which goes by them.

#include "GeometryFixture.h"

#include <OpenSG/OSGGeoNormals3f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGIntersectActor.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGTriangleIterator.h>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <memory>
#include <random>

OSG_USING_NAMESPACE
using namespace geometry_test;

namespace
{

class IteratorTest : public ::testing::Test
{
  protected:
    void SetUp() override { osgInit(0, nullptr); }
};

typedef std::vector<std::array<Int32, 3>> Corners;

std::vector<Pnt3f> points(UInt32 count)
{
    std::vector<Pnt3f> result;
    for(UInt32 i = 0; i < count; ++i)
        result.push_back(Pnt3f(Real32(i), 0, 0));
    return result;
}

Corners cornersOf(const GeometryPtr &geometry)
{
    Corners corners;
    for(TriangleIterator triangle(geometry); !triangle.isAtEnd(); ++triangle)
        corners.push_back(
            {triangle.getPositionIndex(0), triangle.getPositionIndex(1), triangle.getPositionIndex(2)});
    return corners;
}

TEST_F(IteratorTest, APrimitiveIteratorTellsTypeLengthAndIndices)
{
    HeldGeometry geometry({GL_TRIANGLES, GL_LINE_STRIP}, {3, 2}, points(5));
    geometry->setNormals(make<GeoNormals3f>({Vec3f(0, 0, 1), Vec3f(0, 1, 0)}));
    PrimitiveIterator primitive(geometry.ptr);
    EXPECT_EQ(primitive.getType(), UInt32(GL_TRIANGLES));
    EXPECT_EQ(primitive.getLength(), 3u);
    EXPECT_EQ(primitive.getPosition(2), Pnt3f(2, 0, 0));
    EXPECT_EQ(primitive.getNormal(1), Vec3f(0, 1, 0));
    EXPECT_EQ(primitive.getNormalIndex(2), -1) << "there are two normals";
    EXPECT_EQ(primitive.getColorIndex(0), -1);
    EXPECT_EQ(primitive.getPositionIndex(3), -1);
    ++primitive;
    EXPECT_EQ(primitive.getIndex(), 1);
    EXPECT_EQ(primitive.getType(), UInt32(GL_LINE_STRIP));
    EXPECT_EQ(primitive.getPositionIndex(1), 4);
    ++primitive;
    EXPECT_TRUE(primitive.isAtEnd());
    PrimitiveIterator end(geometry.ptr);
    end.setToEnd();
    EXPECT_TRUE(primitive == end);
    end.seek(1);
    EXPECT_EQ(end.getPositionIndex(0), 3);
}

TEST_F(IteratorTest, SeveralIndicesOfAVertexGoToTheirProperties)
{
    HeldGeometry geometry({GL_TRIANGLES}, {3}, points(3));
    geometry->setTexCoords(make<GeoTexCoords2f>({Vec2f(0, 1), Vec2f(2, 3)}));
    geometry->setIndices(make<GeoIndicesUI32>({1, 2, 0, 1, 1, 0}));
    geometry->getIndexMapping().push_back(Geometry::MapTexCoords);
    geometry->getIndexMapping().push_back(Geometry::MapPosition);
    PrimitiveIterator primitive(geometry.ptr);
    EXPECT_EQ(primitive.getLength(), 3u);
    EXPECT_EQ(primitive.getPositionIndex(0), 2);
    EXPECT_EQ(primitive.getTexCoordsIndex(0), 1);
    EXPECT_EQ(primitive.getTexCoords(1), Vec2f(0, 1));
    EXPECT_EQ(primitive.getPosition(2), Pnt3f(0, 0, 0));
    EXPECT_EQ(primitive.getTexCoordsIndex(0, 1), -1);
    EXPECT_EQ(primitive.getTexCoordsIndex(0, 8), -1);
}

TEST_F(IteratorTest, NothingIsPassedForNullAndForEmptyGeometries)
{
    EXPECT_TRUE(PrimitiveIterator().isAtEnd());
    EXPECT_TRUE(TriangleIterator(GeometryPtr()).isAtEnd());
    EXPECT_TRUE(TriangleIterator(NodePtr()).isAtEnd());
    HeldGeometry empty;
    EXPECT_TRUE(PrimitiveIterator(empty.ptr).isAtEnd());
}

// OpenGL 1.1, 2.6.1: the order of vertices that makes the front of each.
TEST_F(IteratorTest, EveryTypeIsSplitIntoTrianglesInGLsOrder)
{
    HeldGeometry triangles({GL_TRIANGLES}, {7}, points(7));
    EXPECT_EQ(cornersOf(triangles.ptr), (Corners{{0, 1, 2}, {3, 4, 5}}));
    HeldGeometry strip({GL_TRIANGLE_STRIP}, {5}, points(5));
    EXPECT_EQ(cornersOf(strip.ptr), (Corners{{0, 1, 2}, {2, 1, 3}, {2, 3, 4}}));
    HeldGeometry fan({GL_TRIANGLE_FAN}, {5}, points(5));
    EXPECT_EQ(cornersOf(fan.ptr), (Corners{{0, 1, 2}, {0, 2, 3}, {0, 3, 4}}));
    HeldGeometry polygon({GL_POLYGON}, {4}, points(4));
    EXPECT_EQ(cornersOf(polygon.ptr), (Corners{{0, 1, 2}, {0, 2, 3}}));
    HeldGeometry quads({GL_QUADS}, {8}, points(8));
    EXPECT_EQ(cornersOf(quads.ptr), (Corners{{0, 1, 2}, {0, 2, 3}, {4, 5, 6}, {4, 6, 7}}));
    HeldGeometry quadStrip({GL_QUAD_STRIP}, {7}, points(7));
    EXPECT_EQ(cornersOf(quadStrip.ptr), (Corners{{0, 1, 2}, {2, 1, 3}, {2, 3, 4}, {4, 3, 5}}));
    HeldGeometry lines({GL_LINES, GL_POINTS, GL_LINE_LOOP}, {2, 1, 3}, points(6));
    EXPECT_EQ(cornersOf(lines.ptr), Corners());
}

TEST_F(IteratorTest, TrianglesAreNumberedAcrossPrimitives)
{
    HeldGeometry geometry({GL_LINES, GL_QUADS, GL_POINTS, GL_TRIANGLE_STRIP}, {2, 4, 1, 4}, points(11));
    TriangleIterator triangle(geometry.ptr);
    EXPECT_EQ(triangle.getIndex(), 0);
    EXPECT_EQ(triangle.getPrimitiveIndex(), 1);
    triangle.seek(3);
    EXPECT_EQ(triangle.getIndex(), 3);
    EXPECT_EQ(triangle.getPrimitiveIndex(), 3);
    EXPECT_EQ(triangle.getPositionIndex(2), 10);
    ++triangle;
    EXPECT_TRUE(triangle.isAtEnd());
}

TEST_F(IteratorTest, TrianglesWithMissingPositionsArePassedOver)
{
    HeldGeometry geometry({GL_TRIANGLES}, {9}, points(3));
    geometry->setIndices(make<GeoIndicesUI32>({0, 1, 7, 0, 1, 2, 9, 9, 9}));
    TriangleIterator triangle(geometry.ptr);
    EXPECT_EQ(triangle.getIndex(), 1);
    EXPECT_EQ(triangle.getPosition(2), Pnt3f(2, 0, 0));
    ++triangle;
    EXPECT_TRUE(triangle.isAtEnd());
}

TEST_F(IteratorTest, ALineThroughABoxHitsItsNearFace)
{
    HeldNode node(makeBox(2, 4, 6, 1, 1, 1));
    const std::unique_ptr<IntersectAction> action(
        IntersectAction::create(Line(Pnt3f(0.5f, 0.25f, 10), Vec3f(0, 0, -1))));
    action->apply(node.ptr);
    ASSERT_TRUE(action->didHit());
    EXPECT_FLOAT_EQ(action->getHitT(), 7);
    EXPECT_TRUE(action->getHitObject() == node.ptr);
    EXPECT_LT((action->getHitNormal() - Vec3f(0, 0, 1)).length(), 1e-6f);
    EXPECT_LT((action->getHitPoint() - Pnt3f(0.5f, 0.25f, 3)).length(), 1e-5f);
    EXPECT_GE(action->getHitTriangle(), 0);

    action->setLine(Line(Pnt3f(5, 0, 10), Vec3f(0, 0, -1)));
    action->apply(node.ptr);
    EXPECT_FALSE(action->didHit());
}

TEST_F(IteratorTest, TheHitUnderATransformIsAtItsDistanceInTheWorld)
{
    TransformPtr transform;
    HeldNode root(makeCoredNode<Transform>(&transform));
    Matrix matrix;
    matrix.setTransform(Vec3f(0, 0, -20), Quaternion(), Vec3f(3, 3, 3));
    transform->setMatrix(matrix);
    endEditCP(transform);
    const NodePtr box = makeBox(2, 2, 2, 1, 1, 1);
    root->addChild(box);
    const std::unique_ptr<IntersectAction> action(
        IntersectAction::create(Line(Pnt3f(0.1f, 0.2f, 0), Vec3f(0, 0, -1))));
    action->apply(root.ptr);
    ASSERT_TRUE(action->didHit());
    EXPECT_NEAR(action->getHitT(), 17, 1e-4);
    EXPECT_TRUE(action->getHitObject() == box);
}

// Every triangle of the torus is tried on its own, in double precision.
TEST_F(IteratorTest, RandomLinesHitATorusWhereATestOfEachTriangleSaysSo)
{
    HeldNode node(makeTorus(0.5f, 2, 12, 20));
    const GeometryPtr geometry = GeometryPtr::dcast(node->getCore());
    const GeoPositionsPtr positions = geometry->getPositions();
    const GeoIndicesPtr indices = geometry->getIndices();
    const unsigned seed = 4711;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> number(-1.f, 1.f);
    int hits = 0;
    for(int round = 0; round < 200; ++round)
    {
        const Pnt3f from(number(random) * 4, number(random) * 4, 5);
        const Pnt3f to(number(random) * 3, number(random) * 3, 0);
        const Line line(from, to - from);
        const std::unique_ptr<IntersectAction> action(IntersectAction::create(line));
        action->apply(node.ptr);

        double nearest = 1e30;
        double margin = 1e30; // of the closest decision
        for(UInt32 i = 0; i + 2 < indices->getSize(); i += 3)
        {
            double p[3][3], o[3], d[3];
            for(UInt32 k = 0; k < 3; ++k)
            {
                for(UInt32 axis = 0; axis < 3; ++axis)
                    p[k][axis] = positions->getValue(indices->getValue(i + k))[axis];
                o[k] = line.getPosition()[k];
                d[k] = line.getDirection()[k];
            }
            const auto cross = [](const double *a, const double *b, double *c) {
                for(int k = 0; k < 3; ++k)
                    c[k] = a[(k + 1) % 3] * b[(k + 2) % 3] - a[(k + 2) % 3] * b[(k + 1) % 3];
            };
            const auto dot = [](const double *a, const double *b)
            { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; };
            // The plane's point on the line, then on which side of each edge it is.
            double e1[3], e2[3], n[3], w[3];
            for(int k = 0; k < 3; ++k)
            {
                e1[k] = p[1][k] - p[0][k];
                e2[k] = p[2][k] - p[0][k];
                w[k] = p[0][k] - o[k];
            }
            cross(e1, e2, n);
            const double t = dot(n, w) / dot(n, d);
            double inside = 1e30;
            for(int k = 0; k < 3; ++k)
            {
                double edge[3], at[3], c[3];
                for(int axis = 0; axis < 3; ++axis)
                {
                    edge[axis] = p[(k + 1) % 3][axis] - p[k][axis];
                    at[axis] = o[axis] + t * d[axis] - p[k][axis];
                }
                cross(edge, at, c);
                inside = std::min(inside, dot(c, n) / dot(n, n));
            }
            margin = std::min(margin, std::abs(inside));
            if(inside >= 0 && t >= 0)
                nearest = std::min(nearest, t);
        }
        if(margin < 1e-4)
            continue; // on an edge, single precision may decide either way
        EXPECT_EQ(action->didHit(), nearest < 1e30) << round;
        if(nearest < 1e30 && action->didHit())
        {
            EXPECT_NEAR(action->getHitT(), nearest, 1e-4) << round;
            ++hits;
        }
        // The actor finds the same.
        const std::unique_ptr<IntersectActor> actor(IntersectActor::create());
        const std::unique_ptr<DepthFirstAction> walk(DepthFirstAction::create());
        walk->addActor(actor.get());
        actor->setRay(line);
        actor->reset();
        walk->apply(node.ptr);
        EXPECT_EQ(actor->getHit(), action->didHit());
        if(actor->getHit())
        {
            EXPECT_EQ(actor->getHitTriangleIndex(), action->getHitTriangle());
            EXPECT_FLOAT_EQ(actor->getHitDistance(), action->getHitT());
        }
    }
    EXPECT_GT(hits, 30);
}

} // namespace
