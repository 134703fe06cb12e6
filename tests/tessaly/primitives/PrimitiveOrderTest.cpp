#include "primitives/PrimitiveOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGQuaternion.h>
#include <OpenSG/OSGSphereVolume.h>

using namespace tessaly;
using osg::Matrix;
using osg::Pnt3f;
using osg::Vec4f;

namespace
{

/// A scene with its arrays.
struct Scene
{
    std::vector<float> points;
    std::vector<Vec4f> spheres;
    OrderView view;

    std::size_t size() const { return points.size() / 3; }
    Pnt3f point(std::size_t i) const { return Pnt3f(points[3 * i], points[3 * i + 1], points[3 * i + 2]); }
    const OrderView &look()
    {
        view.occluders = spheres.data();
        view.numOccluders = spheres.size();
        return view;
    }
    std::vector<std::int32_t> order()
    {
        std::vector<std::int32_t> result(size(), -1);
        orderPrimitives(points.data(), size(), look(), result.data());
        return result;
    }
};

Scene randomScene(std::uint32_t seed, std::size_t count, std::size_t spheres, bool transformed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> coordinate(-10.f, 10.f);
    Scene scene;
    for(std::size_t i = 0; i < 3 * count; ++i)
        scene.points.push_back(coordinate(random));
    for(std::size_t i = 0; i < spheres; ++i)
        scene.spheres.emplace_back(coordinate(random), coordinate(random), coordinate(random),
                                   std::abs(coordinate(random)) * 0.2f);
    scene.view.eye = Pnt3f(coordinate(random), coordinate(random), coordinate(random));
    if(transformed)
        scene.view.toWorld.setTransform(
            osg::Vec3f(coordinate(random), coordinate(random), coordinate(random)),
            osg::Quaternion(osg::Vec3f(1.f, 2.f, 3.f), 0.7f), osg::Vec3f(2.f, 0.5f, 1.5f));
    return scene;
}

/// The records of a scene and where their order changes over, told once more, plainly.
struct Naive
{
    std::vector<float> distances;
    std::vector<float> heights;
    long split = 0;
    std::size_t hidden = 0;

    explicit Naive(Scene &scene)
    {
        const float n = float(scene.size());
        const float t = scene.view.threshold;
        std::size_t visible = 0;
        for(std::size_t i = 0; i < scene.size(); ++i)
        {
            const Pnt3f p = scene.point(i);
            distances.push_back(-(scene.view.eye - p).squareLength());
            if(!(t > 0.f))
            {
                heights.push_back(p[1]);
                continue;
            }
            const Pnt3f q = scene.view.toWorld * p;
            heights.push_back(q[1]);
            bool isHidden = false;
            for(const Vec4f &s : scene.spheres)
                isHidden = isHidden || osg::Line(scene.view.eye, q).intersect(
                                           osg::SphereVolume(Pnt3f(s[0], s[1], s[2]), s[3]));
            visible += isHidden ? 0 : 1;
            hidden += isHidden ? 1 : 0;
        }
        const float s = t > 0.f && n > 0.f ? (1.f - (float(visible) / n) * t) * n : t * -n;
        split = long(s);
    }
};

/// The order is one of the numbers 0 to n - 1, the first by distance and the others by height; ties are free.
void expectOrder(const std::vector<std::int32_t> &order, const Naive &naive)
{
    const std::size_t n = naive.distances.size();
    ASSERT_EQ(order.size(), n);
    std::vector<std::int32_t> numbers(order);
    std::sort(numbers.begin(), numbers.end());
    for(std::size_t i = 0; i < n; ++i)
        ASSERT_EQ(numbers[i], std::int32_t(i)) << "not a permutation";

    std::vector<float> sorted(naive.distances);
    std::sort(sorted.begin(), sorted.end());
    const std::size_t split = std::size_t(naive.split);
    ASSERT_LE(split, n);
    for(std::size_t i = 0; i < split; ++i)
        ASSERT_EQ(naive.distances[std::size_t(order[i])], sorted[i]) << "at " << i;
    for(std::size_t i = split; i < n; ++i)
    {
        const std::size_t primitive = std::size_t(order[i]);
        const std::size_t previous = i > split ? std::size_t(order[i - 1]) : primitive;
        ASSERT_GE(naive.distances[primitive], split > 0 ? sorted[split - 1] : naive.distances[primitive]);
        ASSERT_GE(naive.heights[primitive], naive.heights[previous]) << "at " << i;
    }
}

} // namespace

TEST(PrimitiveOrder, AgreesWithANaiveOneForSeededScenes)
{
    std::size_t mixed = 0;
    std::uint32_t seed = 1;
    for(const std::size_t count : {0u, 1u, 2u, 3u, 10u, 257u, 4000u})
        for(const std::size_t spheres : {0u, 1u, 20u})
            for(const bool transformed : {false, true})
                for(const float threshold : {-1.f, -0.3f, -0.f, 0.f, 0.2f, 0.5f, 0.85f, 1.f})
                {
                    SCOPED_TRACE(::testing::Message() << "seed " << seed << ", " << count << " primitives, "
                                                      << spheres << " spheres, threshold " << threshold);
                    Scene scene = randomScene(seed++, count, spheres, transformed);
                    scene.view.threshold = threshold;
                    const Naive naive(scene);
                    expectOrder(scene.order(), naive);
                    mixed += naive.hidden != 0 && naive.hidden != count ? 1 : 0;
                }
    EXPECT_GT(mixed, 30u) << "too few scenes in which some are hidden and some are not";
}

TEST(PrimitiveOrder, TheFarHalfGoesByDistanceAndTheNearHalfByHeightAtHalfTheThreshold)
{
    Scene scene;
    // Along -z with heights that fall and rise: 0, -3, 6, -9, 12 ...
    for(int i = 0; i < 10; ++i)
        scene.points.insert(scene.points.end(),
                            {0.f, (i % 2 == 0 ? 3.f : -3.f) * float(i) / 100.f, -float(i)});
    scene.view.eye = Pnt3f(0.f, 0.f, 1.f);
    scene.view.threshold = 0.5f;
    EXPECT_EQ(scene.order(), (std::vector<std::int32_t>{9, 8, 7, 6, 5, 3, 1, 0, 2, 4}));
    scene.view.threshold = 0.f;
    EXPECT_EQ(scene.order(), (std::vector<std::int32_t>{9, 7, 5, 3, 1, 0, 2, 4, 6, 8}));
    scene.view.threshold = -0.3f;
    EXPECT_EQ(scene.order(), (std::vector<std::int32_t>{9, 8, 7, 5, 3, 1, 0, 2, 4, 6}));
    scene.view.threshold = -1.f;
    EXPECT_EQ(scene.order(), (std::vector<std::int32_t>{9, 8, 7, 6, 5, 4, 3, 2, 1, 0}));
    // A sphere around the eye hides all.
    scene.spheres.emplace_back(0.f, 0.f, 1.f, 0.25f);
    scene.view.threshold = 0.5f;
    EXPECT_EQ(scene.order(), (std::vector<std::int32_t>{9, 8, 7, 6, 5, 4, 3, 2, 1, 0}));
    scene.view.threshold = -0.3f; // which does not look at them
    EXPECT_EQ(scene.order(), (std::vector<std::int32_t>{9, 8, 7, 5, 3, 1, 0, 2, 4, 6}));
}

TEST(PrimitiveOrder, TheLineOfSightRunsFromTheEyeInObjectSpaceToThePointInTheWorld)
{
    Scene scene;
    scene.points = {0.f, 0.f, 0.f};
    scene.view.eye = Pnt3f(0.f, 0.f, 5.f);
    scene.view.toWorld.setTranslate(10.f, 0.f, 0.f);
    scene.view.threshold = 1.f;
    const auto visibleWith = [&](const Vec4f &sphere) {
        scene.spheres.assign(1, sphere);
        return countVisible(scene.points.data(), 1, scene.look());
    };
    EXPECT_EQ(visibleWith(Vec4f(5.f, 0.f, 2.5f, 0.1f)), 0u);  // midway from (0, 0, 5) to (10, 0, 0)
    EXPECT_EQ(visibleWith(Vec4f(0.f, 0.f, 2.5f, 0.1f)), 1u);  // midway in object space
    EXPECT_EQ(visibleWith(Vec4f(10.f, 0.f, 2.5f, 0.1f)), 1u); // midway in the world
    EXPECT_EQ(visibleWith(Vec4f(20.f, 0.f, -5.f, 0.1f)), 0u); // behind the point: there is no far end
    EXPECT_EQ(visibleWith(Vec4f(-2.f, 0.f, 6.f, 0.1f)), 1u);  // behind the eye
    EXPECT_EQ(visibleWith(Vec4f(0.f, 0.f, 5.f, 0.1f)), 0u);   // around the eye
}

TEST(PrimitiveOrder, HeightsAreTheWorldsOnlyAboveAThresholdOfZero)
{
    Scene scene;
    scene.points = {3.f, 1.f, 0.f, 2.f, 2.f, 0.f, 1.f, 3.f, 0.f};
    // x becomes y.
    scene.view.toWorld.setRotate(osg::Quaternion(osg::Vec3f(0.f, 0.f, 1.f), 1.5707963f));
    scene.view.threshold = 0.f;
    EXPECT_EQ(scene.order(), (std::vector<std::int32_t>{0, 1, 2}));
    scene.view.threshold = 1.f;
    EXPECT_EQ(scene.order(), (std::vector<std::int32_t>{2, 1, 0}));
    std::vector<float> heights(3);
    measurePrimitives(scene.points.data(), 3, scene.look(), nullptr, heights.data());
    EXPECT_NEAR(heights[0], 3.f, 1e-5f);
    scene.view.toWorld.setIdentity();
    scene.view.toWorld.setTranslate(7.f, 20.f, 9.f);
    measurePrimitives(scene.points.data(), 3, scene.look(), nullptr, heights.data());
    EXPECT_EQ(heights, (std::vector<float>{21.f, 22.f, 23.f}));
}

TEST(PrimitiveOrder, TheSplitFollowsTheVisibleOnesAndIsCutToAnInteger)
{
    EXPECT_EQ(splitWithin(splitPosition(10, 10, 0.85f), 10), 1u);
    EXPECT_EQ(splitWithin(splitPosition(10, 10, 0.5f), 10), 5u);
    EXPECT_EQ(splitWithin(splitPosition(5, 10, 0.5f), 10), 7u); // 7.5
    EXPECT_EQ(splitWithin(splitPosition(0, 10, 0.5f), 10), 10u);
    EXPECT_EQ(splitWithin(splitPosition(10, 10, -0.75f), 10), 7u);
    EXPECT_EQ(splitWithin(splitPosition(0, 0, 0.5f), 0), 0u);
    // Beyond what thresholds may be.
    EXPECT_LT(splitPosition(10, 10, 2.f), 0.f);
    EXPECT_EQ(splitWithin(splitPosition(10, 10, 2.f), 10), 0u);
    EXPECT_GT(splitPosition(10, 10, -3.f), 10.f);
    EXPECT_EQ(splitWithin(splitPosition(10, 10, -3.f), 10), 10u);
    EXPECT_EQ(splitWithin(std::numeric_limits<float>::quiet_NaN(), 10), 0u);
    EXPECT_EQ(splitWithin(std::numeric_limits<float>::infinity(), 10), 10u);
}

TEST(PrimitiveOrder, KeysOfAnyFloatsComeInTheirOrder)
{
    const float infinity = std::numeric_limits<float>::infinity();
    std::vector<float> keys{0.f,    -0.f,    1.f,     -1.f,     infinity, -infinity,
                            1e-45f, -1e-45f, 3.4e38f, -3.4e38f, 1e-38f};
    std::mt19937 random(7);
    std::uniform_int_distribution<std::uint32_t> bits;
    while(keys.size() < 5000)
    {
        const std::uint32_t word = bits(random);
        float value;
        std::memcpy(&value, &word, sizeof(value));
        if(!std::isnan(value))
            keys.push_back(value);
    }
    const std::vector<float> others(keys.size(), 0.f);
    std::vector<std::int32_t> order(keys.size());
    for(const std::size_t split : {std::size_t(0), keys.size() / 3, keys.size()})
    {
        orderByKeys(keys.data(), keys.data(), keys.size(), split, order.data());
        for(std::size_t i = 1; i < order.size(); ++i)
            EXPECT_LE(keys[std::size_t(order[i - 1])], keys[std::size_t(order[i])]) << "seed 7, at " << i;
    }
}

TEST(PrimitiveOrder, EqualKeysAndWhatIsNoNumberStillGiveEachPrimitiveOnce)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for(const float value : {1.f, nan, -nan})
    {
        std::vector<float> keys(1000, value);
        keys[17] = 2.f;
        keys[500] = nan;
        for(const std::size_t split : {0u, 1u, 400u, 999u, 1000u, 5000u})
        {
            std::vector<std::int32_t> order(keys.size(), -1);
            orderByKeys(keys.data(), keys.data(), keys.size(), split, order.data());
            std::sort(order.begin(), order.end());
            for(std::size_t i = 0; i < order.size(); ++i)
                ASSERT_EQ(order[i], std::int32_t(i));
        }
    }
}

TEST(PrimitiveOrder, ThePartLeftOutIsCutToAnInteger)
{
    EXPECT_EQ(firstDrawn(10, 0.25f), 2u);
    EXPECT_EQ(firstDrawn(10, 0.f), 0u);
    EXPECT_EQ(firstDrawn(10, 1.f), 10u);
    EXPECT_EQ(firstDrawn(10, 7.f), 10u);
    EXPECT_EQ(firstDrawn(10, -1.f), 0u);
    EXPECT_EQ(firstDrawn(0, 0.5f), 0u);
    EXPECT_EQ(firstDrawn(10, std::numeric_limits<float>::quiet_NaN()), 0u);
}

namespace
{

std::vector<std::uint32_t> filled(const std::vector<std::int32_t> &indices,
                                  const std::vector<std::int32_t> &offsets, const IndexSelection &selection,
                                  IndexCopy copy, std::size_t *leftOut = nullptr)
{
    const IndexLists lists{indices.data(), indices.size(), offsets.data(), offsets.size()};
    const IndexCount count = countIndices(lists, selection, copy);
    if(leftOut != nullptr)
        *leftOut = count.leftOut;
    // A guard behind the end shows what is written there.
    std::vector<std::uint32_t> result(count.indices + 1, 77777u);
    fillIndices(lists, selection, copy, result.data());
    EXPECT_EQ(result.back(), 77777u);
    result.pop_back();
    return result;
}

using Indices = std::vector<std::uint32_t>;

} // namespace

TEST(PrimitiveIndices, AgreeWithANaiveFillForSeededLists)
{
    for(std::uint32_t seed = 1; seed <= 40; ++seed)
    {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        const std::size_t count = random() % 60;
        std::vector<std::int32_t> offsets{0};
        for(std::size_t i = 0; i < count; ++i)
            offsets.push_back(offsets.back() + std::int32_t(random() % 8));
        std::vector<std::int32_t> indices(std::size_t(offsets.back()) + 3);
        for(std::int32_t &index : indices)
            index = std::int32_t(random() % 1000);
        std::vector<std::int32_t> order(count);
        std::iota(order.begin(), order.end(), 0);
        std::shuffle(order.begin(), order.end(), random);
        const std::size_t first = firstDrawn(count, 0.25f);

        for(const bool isOrdered : {false, true})
        {
            Indices blocks;
            Indices triples;
            for(std::size_t i = first; i < count; ++i)
            {
                const std::size_t p = isOrdered ? std::size_t(order[i]) : i;
                const std::int32_t b = offsets[p];
                const std::int32_t e = offsets[p + 1];
                for(std::int32_t j = b; j < e; ++j)
                    blocks.push_back(std::uint32_t(indices[std::size_t(j)]));
                const std::int32_t groups = e - b > 0 ? (e - b - 1) / 3 + 1 : 0;
                for(std::int32_t j = 0; j < 3 * groups; ++j)
                    triples.push_back(std::uint32_t(indices[std::size_t(b + j)]));
            }
            const IndexSelection selection{isOrdered ? order.data() : nullptr, count, first};
            EXPECT_EQ(filled(indices, offsets, selection, IndexCopy::Block), blocks);
            EXPECT_EQ(filled(indices, offsets, selection, IndexCopy::Triples), triples);
        }
    }
}

TEST(PrimitiveIndices, ATriangleOfFourIndicesIsSixAndStaysWithinTheList)
{
    const std::vector<std::int32_t> indices{10, 11, 12, 13, 14, 15, 16};
    EXPECT_EQ(filled(indices, {0, 4}, {nullptr, 1, 0}, IndexCopy::Triples),
              (Indices{10, 11, 12, 13, 14, 15}));
    EXPECT_EQ(filled(indices, {0, 4}, {nullptr, 1, 0}, IndexCopy::Block), (Indices{10, 11, 12, 13}));
    // Behind the end of the list its last index stands in.
    EXPECT_EQ(filled(indices, {3, 7}, {nullptr, 1, 0}, IndexCopy::Triples),
              (Indices{13, 14, 15, 16, 16, 16}));
}

TEST(PrimitiveIndices, PrimitivesWithoutARangeInTheListsAreLeftOut)
{
    const std::vector<std::int32_t> indices{0, 1, 2, 3, 4, 5};
    const std::vector<std::int32_t> offsets{0, 3, -1, 2, 9, 3};
    std::size_t leftOut = 0;
    // 0..3 is fine, the others begin or end outside, or end ahead of their beginning; the last has no end.
    EXPECT_EQ(filled(indices, offsets, {nullptr, 6, 0}, IndexCopy::Block, &leftOut), (Indices{0, 1, 2}));
    EXPECT_EQ(leftOut, 5u);
    const std::int32_t order[] = {-1, 0, 5, 2147483647, -2147483647 - 1, 0};
    EXPECT_EQ(filled(indices, offsets, {order, 6, 0}, IndexCopy::Triples, &leftOut),
              (Indices{0, 1, 2, 0, 1, 2}));
    EXPECT_EQ(leftOut, 4u);
    EXPECT_EQ(filled({}, {}, {nullptr, 3, 0}, IndexCopy::Triples, &leftOut), Indices());
    EXPECT_EQ(leftOut, 3u);
    EXPECT_EQ(filled({}, {0, 0}, {nullptr, 1, 0}, IndexCopy::Triples, &leftOut), Indices());
    EXPECT_EQ(leftOut, 0u);
}

TEST(PrimitiveIndices, TheLargestIsFoundAlsoAmongNegativeOnes)
{
    const Indices indices{3, 9, 4, 0xFFFFFFFFu, 5};
    EXPECT_EQ(largestIndex(indices.data(), 0), 0u);
    EXPECT_EQ(largestIndex(indices.data(), 3), 9u);
    EXPECT_EQ(largestIndex(indices.data(), 5), 0xFFFFFFFFu);
}
