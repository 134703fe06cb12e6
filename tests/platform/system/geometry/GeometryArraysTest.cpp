/// \file
/// What of a geometry's arrays can be drawn.

#include <OpenSG/OSGGeometryArrays.h>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>

OSG_USING_NAMESPACE

namespace
{

/// Arrays of floats that are never read: only their sizes count.
VertexArray arrayOf(UInt32 size, Int32 place = 0)
{
    VertexArray array;
    array.format = GL_FLOAT;
    array.componentBytes = 4;
    array.dimension = 3;
    array.size = size;
    array.place = place;
    return array;
}

GeometryArrays arraysOf(const std::vector<UInt32> &types, const std::vector<UInt32> &lengths,
                        UInt32 positions)
{
    GeometryArrays arrays;
    arrays.arrays[PositionRole] = arrayOf(positions);
    arrays.types = types;
    arrays.lengths = lengths;
    arrays.hasLengths = true;
    return arrays;
}

template <class T>
void setIndices(GeometryArrays &arrays, const std::vector<T> &indices, UInt32 perVertex = 1)
{
    arrays.indexed = true;
    arrays.indices.data = reinterpret_cast<const UInt8 *>(indices.data());
    arrays.indices.bytes = sizeof(T);
    arrays.indices.size = UInt32(indices.size());
    arrays.indices.perVertex = perVertex;
}

typedef std::vector<DrawRange> Ranges;

TEST(GeometryArraysTest, LaysPrimitivesOneBehindTheOther)
{
    const DrawPlan plan = planDrawing(arraysOf({GL_TRIANGLE_STRIP, GL_LINE_LOOP, GL_POLYGON}, {4, 3, 5}, 12));
    EXPECT_EQ(plan.ranges,
              (Ranges{{GL_TRIANGLE_STRIP, 0, 4}, {GL_LINE_LOOP, 4, 3}, {GL_POLYGON, 7, 5}}));
    EXPECT_EQ(plan.problem, "");
    EXPECT_EQ(plan.minIndex, 0u);
    EXPECT_EQ(plan.maxIndex, 11u);
    EXPECT_EQ(plan.usable, 1u << PositionRole);
}

TEST(GeometryArraysTest, JoinsWhatStandsAloneAndNothingElse)
{
    EXPECT_EQ(planDrawing(arraysOf({GL_QUADS, GL_QUADS, GL_QUADS}, {4, 4, 8}, 16)).ranges,
              (Ranges{{GL_QUADS, 0, 16}}));
    EXPECT_EQ(planDrawing(arraysOf({GL_TRIANGLES, GL_TRIANGLES}, {4, 3}, 7)).ranges,
              (Ranges{{GL_TRIANGLES, 0, 4}, {GL_TRIANGLES, 4, 3}}))
        << "a vertex too many would shift the next triangles";
    EXPECT_EQ(planDrawing(arraysOf({GL_TRIANGLE_FAN, GL_TRIANGLE_FAN}, {3, 3}, 6)).ranges.size(), 2u);
    EXPECT_EQ(planDrawing(arraysOf({GL_POINTS, GL_LINES, GL_LINES}, {1, 2, 2}, 5)).ranges,
              (Ranges{{GL_POINTS, 0, 1}, {GL_LINES, 1, 4}}));
}

TEST(GeometryArraysTest, CountsTrianglesLinesAndPoints)
{
    const DrawPlan plan = planDrawing(
        arraysOf({GL_POINTS, GL_LINES, GL_LINE_LOOP, GL_LINE_STRIP, GL_TRIANGLES, GL_TRIANGLE_STRIP,
                  GL_TRIANGLE_FAN, GL_QUADS, GL_QUAD_STRIP, GL_POLYGON},
                 {5, 5, 5, 5, 7, 5, 5, 9, 7, 6}, 100));
    EXPECT_EQ(plan.counts.points, 5u);
    EXPECT_EQ(plan.counts.lines, 2u + 5u + 4u);
    EXPECT_EQ(plan.counts.triangles, 2u + 3u + 3u + 4u + 4u + 4u);
    EXPECT_EQ(plan.counts.primitives, 10u);
    EXPECT_EQ(plan.counts.vertices, 59u);
}

TEST(GeometryArraysTest, EndsAPrimitiveWhereTheVerticesEnd)
{
    const DrawPlan plan = planDrawing(arraysOf({GL_TRIANGLES, GL_TRIANGLES, GL_TRIANGLES}, {6, 6, 3}, 10));
    EXPECT_EQ(plan.ranges, (Ranges{{GL_TRIANGLES, 0, 10}}));
    EXPECT_EQ(plan.problem, "the lengths ask for more vertices than there are");
}

TEST(GeometryArraysTest, ALengthNearTheEndOfIntegersDoesNotWrapAround)
{
    const DrawPlan plan = planDrawing(arraysOf({GL_POINTS, GL_POINTS}, {3, 0xFFFFFFFEu}, 5));
    EXPECT_EQ(plan.ranges, (Ranges{{GL_POINTS, 0, 5}}));
}

TEST(GeometryArraysTest, WithoutLengthsThereIsOnePrimitiveOfAllVertices)
{
    GeometryArrays arrays = arraysOf({GL_TRIANGLE_FAN}, {}, 6);
    arrays.hasLengths = false;
    EXPECT_EQ(planDrawing(arrays).ranges, (Ranges{{GL_TRIANGLE_FAN, 0, 6}}));
}

TEST(GeometryArraysTest, NothingIsDrawnWithoutTypesOrPositions)
{
    EXPECT_TRUE(planDrawing(arraysOf({}, {3}, 3)).ranges.empty());
    EXPECT_TRUE(planDrawing(arraysOf({GL_TRIANGLES}, {3}, 0)).ranges.empty());
    GeometryArrays unmapped = arraysOf({GL_TRIANGLES}, {3}, 3);
    unmapped.arrays[PositionRole].place = -1;
    EXPECT_TRUE(planDrawing(unmapped).ranges.empty());
}

TEST(GeometryArraysTest, PassesOverWhatIsNoTypeOfGLAndItsVertices)
{
    const DrawPlan plan = planDrawing(arraysOf({10, GL_POINTS}, {2, 2}, 4));
    EXPECT_EQ(plan.ranges, (Ranges{{GL_POINTS, 2, 2}}));
    EXPECT_EQ(plan.problem, "a type is none of GL's");
}

template <class T>
void expectIndicesAreRead()
{
    const std::vector<T> indices = {3, 1, 2, 2, 5, 3};
    GeometryArrays arrays = arraysOf({GL_TRIANGLES}, {6}, 6);
    setIndices(arrays, indices);
    const DrawPlan plan = planDrawing(arrays);
    EXPECT_EQ(plan.ranges, (Ranges{{GL_TRIANGLES, 0, 6}}));
    EXPECT_EQ(plan.minIndex, 1u);
    EXPECT_EQ(plan.maxIndex, 5u);
    EXPECT_EQ(plan.problem, "");
}

TEST(GeometryArraysTest, ReadsIndicesOfEveryWidth)
{
    expectIndicesAreRead<UInt8>();
    expectIndicesAreRead<UInt16>();
    expectIndicesAreRead<UInt32>();
}

TEST(GeometryArraysTest, EndsPrimitivesAheadOfAnIndexBeyondThePositions)
{
    const std::vector<UInt16> indices = {0, 1, 2, 2, 1, 9, 1, 2, 3, 8, 0, 1};
    GeometryArrays arrays = arraysOf({GL_TRIANGLE_STRIP, GL_TRIANGLE_STRIP, GL_TRIANGLE_STRIP}, {6, 3, 3}, 4);
    setIndices(arrays, indices);
    const DrawPlan plan = planDrawing(arrays);
    EXPECT_EQ(plan.ranges, (Ranges{{GL_TRIANGLE_STRIP, 0, 5}, {GL_TRIANGLE_STRIP, 6, 3}}));
    EXPECT_EQ(plan.problem, "an index is beyond the positions");
    EXPECT_EQ(plan.maxIndex, 3u);
    EXPECT_EQ(plan.usable, 1u << PositionRole);
}

TEST(GeometryArraysTest, LeavesOutAPropertyThatIsTooShort)
{
    GeometryArrays arrays = arraysOf({GL_TRIANGLES}, {6}, 6);
    arrays.arrays[NormalRole] = arrayOf(6);
    arrays.arrays[ColorRole] = arrayOf(5);
    const DrawPlan plan = planDrawing(arrays);
    EXPECT_EQ(plan.usable, (1u << PositionRole) | (1u << NormalRole));
    EXPECT_EQ(plan.problem, "a property has fewer values than the vertices need");

    const std::vector<UInt32> indices = {0, 1, 2, 2, 1, 4};
    setIndices(arrays, indices);
    EXPECT_EQ(planDrawing(arrays).usable, (1u << PositionRole) | (1u << NormalRole) | (1u << ColorRole))
        << "the last colour is not in use";
}

TEST(GeometryArraysTest, ExpandingGivesEachVertexItsOwnValues)
{
    const float positions[] = {0, 0, 0, 1, 1, 1, 2, 2, 2};
    const UInt8 colors[] = {10, 11, 12, 20, 21, 22};
    const std::vector<UInt32> indices = {2, 1, 0, 0, 1, 1};
    GeometryArrays arrays = arraysOf({GL_TRIANGLES}, {3}, 3);
    arrays.arrays[PositionRole].data = reinterpret_cast<const UInt8 *>(positions);
    arrays.arrays[ColorRole] = arrayOf(2, 1);
    arrays.arrays[ColorRole].componentBytes = 1;
    arrays.arrays[ColorRole].data = colors;
    setIndices(arrays, indices, 2);
    EXPECT_TRUE(needsExpansion(arrays));
    const DrawPlan plan = planDrawing(arrays);
    EXPECT_EQ(plan.problem, "");
    std::vector<UInt8> store;
    GeometryArrays expanded;
    expandVertices(arrays, plan, store, expanded);
    EXPECT_FALSE(needsExpansion(expanded));
    EXPECT_FALSE(expanded.indexed);
    const float expectedPositions[] = {2, 2, 2, 0, 0, 0, 1, 1, 1};
    const UInt8 expectedColors[] = {20, 21, 22, 10, 11, 12, 20, 21, 22};
    ASSERT_EQ(expanded.arrays[PositionRole].size, 3u);
    EXPECT_EQ(std::memcmp(expanded.arrays[PositionRole].data, expectedPositions, sizeof expectedPositions),
              0);
    EXPECT_EQ(std::memcmp(expanded.arrays[ColorRole].data, expectedColors, sizeof expectedColors), 0);
}

// A plain walk over everything that the plan says may be read.
TEST(GeometryArraysTest, NoPlanReachesBeyondTheArraysWhateverTheNumbersAre)
{
    const unsigned seed = 20260;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto below = [&random](UInt32 end) { return UInt32(random() % end); };
    std::size_t drawn = 0;
    for(int round = 0; round < 3000; ++round)
    {
        GeometryArrays arrays;
        for(UInt32 i = below(5); i > 0; --i)
            arrays.types.push_back(below(12));
        for(UInt32 i = below(5); i > 0; --i)
            arrays.lengths.push_back(below(8));
        arrays.hasLengths = below(8) != 0;
        const UInt32 perVertex = 1 + below(3);
        for(UInt32 role = 0; role < NumVertexArrayRoles; ++role)
            if(below(2) != 0 || role == PositionRole)
                arrays.arrays[role] = arrayOf(below(9), Int32(below(perVertex + 1)) - 1);
        std::vector<UInt16> indices(below(30));
        for(UInt16 &index : indices)
            index = UInt16(below(9));
        if(below(3) != 0)
        {
            setIndices(arrays, indices, perVertex);
        }
        else
        {
            for(VertexArray &array : arrays.arrays)
                array.place = 0;
        }
        const DrawPlan plan = planDrawing(arrays);
        for(const DrawRange &range : plan.ranges)
        {
            EXPECT_LE(range.type, UInt32(GL_POLYGON));
            EXPECT_GT(range.count, 0u);
            for(UInt32 i = range.first; i < range.first + range.count; ++i)
            {
                for(UInt32 role = 0; role < NumVertexArrayRoles; ++role)
                {
                    if((plan.usable & (1u << role)) == 0)
                        continue;
                    const VertexArray &array = arrays.arrays[role];
                    const std::size_t at = std::size_t(i) * perVertex + std::size_t(array.place);
                    if(arrays.indexed)
                    {
                        ASSERT_LT(at, indices.size());
                    }
                    ASSERT_LT(arrays.indexed ? indices[at] : i, array.size);
                    ++drawn;
                }
            }
        }
    }
    EXPECT_GT(drawn, 5000u) << "the rounds must draw something";
}

} // namespace
