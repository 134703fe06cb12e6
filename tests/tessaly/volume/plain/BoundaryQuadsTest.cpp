#include "volume/BoundaryQuads.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <vector>

namespace
{

using tessaly::Sides;
using Bytes = std::vector<std::uint8_t>;
using Point = std::array<float, 3>;

Point normalOf(const Point &a, const Point &b, const Point &c)
{
    const Point u = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const Point v = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    return {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
}

/// A surface without border: each directed edge is used as often as its opposite.
void expectClosed(const std::uint32_t *indices, std::size_t count)
{
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> edges;
    for(std::size_t quad = 0; quad < count; quad += 4)
        for(std::size_t i = 0; i < 4; ++i)
            ++edges[{indices[quad + i], indices[quad + (i + 1) % 4]}];
    for(const auto &[edge, uses] : edges) {
        const auto opposite = edges.find({edge.second, edge.first});
        ASSERT_NE(opposite, edges.end()) << edge.first << ' ' << edge.second;
        ASSERT_EQ(opposite->second, uses) << edge.first << ' ' << edge.second;
    }
}

TEST(BoxGeometryData, HasTheEightCornersAndSixQuads)
{
    const std::array<Point, 8> corners = {
        {{0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}, {0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}}};
    EXPECT_EQ(tessaly::boxPositions, corners);
    const std::array<std::uint32_t, 24> indices = {0, 1, 2, 3, 1, 7, 6, 2, 4, 5, 6, 7,
                                                   4, 0, 3, 5, 3, 2, 6, 5, 0, 4, 7, 1};
    EXPECT_EQ(tessaly::boxIndices, indices);
}

TEST(BoxGeometryData, IsClosedAndFacesOutwards)
{
    expectClosed(tessaly::boxIndices.data(), tessaly::boxIndices.size());
    for(std::size_t quad = 0; quad < 24; quad += 4) {
        const Point &a = tessaly::boxPositions[tessaly::boxIndices[quad]];
        const Point &c = tessaly::boxPositions[tessaly::boxIndices[quad + 2]];
        const Point normal = normalOf(a, tessaly::boxPositions[tessaly::boxIndices[quad + 1]], c);
        float outwards = 0.0f;
        for(std::size_t axis = 0; axis < 3; ++axis)
            outwards += normal[axis] * ((a[axis] + c[axis]) / 2 - 0.5f);
        EXPECT_EQ(outwards, 0.5f) << quad;
    }
}

TEST(ScreenQuadData, CoversTheViewportOnce)
{
    using Corners = std::array<std::array<float, 2>, 4>;
    EXPECT_EQ(tessaly::screenQuadPositions, (Corners{{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}}));
    EXPECT_EQ(tessaly::screenQuadTexCoords, (Corners{{{0, 0}, {1, 0}, {1, 1}, {0, 1}}}));
}

TEST(BlockCorners, LieInTheUnitCubeXFastest)
{
    const auto corners = tessaly::blockCorners({4, 2, 1});
    ASSERT_EQ(corners.size(), 5u * 3u * 2u);
    for(std::size_t k = 0; k <= 1; ++k)
        for(std::size_t j = 0; j <= 2; ++j)
            for(std::size_t i = 0; i <= 4; ++i)
                EXPECT_EQ(corners[(k * 3 + j) * 5 + i], (Point{i / 4.0f, j / 2.0f, k / 1.0f}));
    EXPECT_TRUE(tessaly::blockCorners({0, 2, 2}).empty());
}

TEST(BoundaryQuads, OneBlockGivesItsSixFacesInOrder)
{
    const Bytes occupied = {255};
    // v(i, j, k) = k * 4 + j * 2 + i.
    EXPECT_EQ(tessaly::boundaryQuads(occupied.data(), {1, 1, 1}), (std::vector<std::uint32_t>{0, 4, 6, 2, //
                                                                                              0, 1, 5, 4, //
                                                                                              0, 2, 3, 1, //
                                                                                              4, 5, 7, 6, //
                                                                                              1, 3, 7, 5, //
                                                                                              2, 6, 7, 3}));
}

TEST(BoundaryQuads, AnEmptyBlockGivesTheFacesOfItsNextNeighbours)
{
    // Occupied at (1,0,0), (0,1,0) and (0,0,1) of 2 x 2 x 2; v(i, j, k) = k * 9 + j * 3 + i.
    const Bytes occupied = {0, 1, 1, 0, 1, 0, 0, 0};
    const auto quads = tessaly::boundaryQuads(occupied.data(), {2, 2, 2});
    ASSERT_GE(quads.size(), 12u);
    EXPECT_EQ(std::vector<std::uint32_t>(quads.begin(), quads.begin() + 12),
              (std::vector<std::uint32_t>{9, 12, 13, 10, 1, 10, 13, 4, 3, 4, 13, 12}));
}

TEST(BoundaryQuads, NoOccupiedBlockGivesNoQuad)
{
    const Bytes occupied(3 * 4 * 5, 0);
    EXPECT_TRUE(tessaly::boundaryQuads(occupied.data(), {3, 4, 5}).empty());
    EXPECT_TRUE(tessaly::boundaryQuads(nullptr, {0, 0, 0}).empty());
}

TEST(BoundaryQuads, AllBlocksOccupiedGiveTheOuterFacesSplitPerBlock)
{
    const Bytes occupied(3 * 4 * 5, 255);
    const auto quads = tessaly::boundaryQuads(occupied.data(), {3, 4, 5});
    EXPECT_EQ(quads.size(), 4u * 2u * (3 * 4 + 4 * 5 + 3 * 5));
    expectClosed(quads.data(), quads.size());
}

TEST(BoundaryQuads, OneOccupiedBlockGivesSixQuadsWhereverItIs)
{
    for(std::size_t block = 0; block < 27; ++block) {
        Bytes occupied(27, 0);
        occupied[block] = 1;
        const auto quads = tessaly::boundaryQuads(occupied.data(), {3, 3, 3});
        EXPECT_EQ(quads.size(), 24u) << block;
        expectClosed(quads.data(), quads.size());
    }
}

TEST(BoundaryQuads, TwoTouchingBlocksHaveNoQuadBetweenThem)
{
    for(std::size_t other : {1u, 3u, 9u}) {
        Bytes occupied(27, 0);
        occupied[0] = 1;
        occupied[other] = 1;
        EXPECT_EQ(tessaly::boundaryQuads(occupied.data(), {3, 3, 3}).size(), 40u) << other;
    }
}

TEST(BoundaryQuads, EveryFaceBetweenOccupiedAndEmptyIsThereOnceAndFacesTheEmptySide)
{
    const unsigned seed = 77;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const Sides blocks = {5, 4, 6};
    const auto at = [&](const Bytes &occupied, int x, int y, int z) {
        if(x < 0 || y < 0 || z < 0 || x >= 5 || y >= 4 || z >= 6)
            return false;
        return occupied[static_cast<std::size_t>((z * 4 + y) * 5 + x)] != 0;
    };
    for(int round = 0; round < 20; ++round) {
        Bytes occupied(120);
        for(auto &block : occupied)
            block = random() % 3 == 0 ? 255 : 0;

        // A face by the doubled coordinates of its centre.
        std::set<std::array<int, 3>> expected;
        for(int z = 0; z < 6; ++z)
            for(int y = 0; y < 4; ++y)
                for(int x = 0; x < 5; ++x) {
                    if(!at(occupied, x, y, z))
                        continue;
                    for(int axis = 0; axis < 3; ++axis)
                        for(int step : {-1, 1}) {
                            const int n[3] = {axis == 0 ? step : 0, axis == 1 ? step : 0,
                                              axis == 2 ? step : 0};
                            if(!at(occupied, x + n[0], y + n[1], z + n[2]))
                                expected.insert({2 * x + 1 + n[0], 2 * y + 1 + n[1], 2 * z + 1 + n[2]});
                        }
                }

        const auto quads = tessaly::boundaryQuads(occupied.data(), blocks);
        ASSERT_EQ(quads.size(), expected.size() * 4);
        expectClosed(quads.data(), quads.size());
        for(std::size_t quad = 0; quad < quads.size(); quad += 4) {
            std::array<Point, 4> corners;
            for(std::size_t i = 0; i < 4; ++i) {
                const std::uint32_t v = quads[quad + i];
                corners[i] = {float(v % 6), float(v / 6 % 5), float(v / 30)};
            }
            std::array<int, 3> centre;
            for(std::size_t axis = 0; axis < 3; ++axis)
                centre[axis] = static_cast<int>(corners[0][axis] + corners[2][axis]);
            ASSERT_EQ(expected.erase(centre), 1u);
            const Point n = normalOf(corners[0], corners[1], corners[2]);
            const Point m = normalOf(corners[2], corners[3], corners[0]);
            ASSERT_EQ(n, m);
            // The block behind the face is occupied, the one ahead of it is not.
            const auto block = [&](int side) {
                int place[3];
                for(std::size_t axis = 0; axis < 3; ++axis) {
                    const int doubled = centre[axis] + side * static_cast<int>(n[axis]);
                    place[axis] = doubled < 0 ? -1 : (doubled - 1) / 2;
                }
                return at(occupied, place[0], place[1], place[2]);
            };
            ASSERT_TRUE(block(-1));
            ASSERT_FALSE(block(1));
        }
    }
}

} // namespace
