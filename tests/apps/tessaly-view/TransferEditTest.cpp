/// \file
/// Lists of points under the mouse stay in order, and say the same as before.

#include "TransferEdit.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

using namespace viewer;

TransferPoints ramp()
{
    return {{{0.0f, 0.0f}, {0.25f, 0.5f}, {1.0f, 1.0f}},
            {{0.0f, 0.0f, 0.0f, 0.0f}, {0.5f, 1.0f, 0.0f, 0.0f}, {1.0f, 1.0f, 1.0f, 1.0f}}};
}

TEST(TransferEdit, OpeningAListChangesNothingThatIsDrawn)
{
    const TransferPoints lists[] = {
        ramp(),
        {{{0.25f, 0.5f}, {1.0f, 1.0f}}, {{0.25f, 1.0f, 0.0f, 0.0f}}},
        {{{0.25f, 0.5f}, {0.75f, 1.0f}}, {{0.5f, 1.0f, 0.0f, 0.0f}, {0.75f, 0.0f, 1.0f, 0.0f}}},
        {{{1.0f, 0.5f}}, {{1.0f, 0.0f, 1.0f, 0.0f}}},
        {{{0.0f, 0.5f}}, {{0.0f, 0.0f, 1.0f, 0.0f}}}};
    for (const TransferPoints &list : lists)
    {
        TransferPoints opened = list;
        makeEditable(opened);
        EXPECT_EQ(opened.opacity.front().position, 0.0f);
        EXPECT_EQ(opened.opacity.back().position, 1.0f);
        EXPECT_EQ(opened.color.front().position, 0.0f);
        EXPECT_EQ(opened.color.back().position, 1.0f);
        EXPECT_EQ(byteTable(opened), byteTable(list));
        TransferPoints again = opened;
        makeEditable(again);
        EXPECT_EQ(again, opened);
    }
}

TEST(TransferEdit, ThePointNextToTheMouseIsFoundWithinItsReach)
{
    const TransferPoints points = ramp();
    EXPECT_EQ(opacityPointAt(points, 0.26f, 0.48f, 0.05f, 0.05f), 1u);
    EXPECT_EQ(opacityPointAt(points, 0.31f, 0.5f, 0.05f, 0.05f), std::nullopt);
    EXPECT_EQ(opacityPointAt(points, 0.25f, 0.6f, 0.05f, 0.05f), std::nullopt);
    EXPECT_EQ(colorPointAt(points, 0.48f, 0.05f), 1u);
    EXPECT_EQ(colorPointAt(points, 0.4f, 0.05f), std::nullopt);
}

TEST(TransferEdit, OfTwoPointsInOnePlaceTheLaterIsMeant)
{
    const TransferPoints points{{{0.0f, 0.0f}, {0.5f, 0.5f}, {0.5f, 0.5f}, {1.0f, 1.0f}},
                                {{0.0f, 0, 0, 0}, {1.0f, 0, 0, 0}}};
    EXPECT_EQ(opacityPointAt(points, 0.5f, 0.5f, 0.05f, 0.05f), 2u);
}

TEST(TransferEdit, APointIsAddedInOrderAndWithinTheRanges)
{
    TransferPoints points = ramp();
    EXPECT_EQ(addOpacityPoint(points, 0.5f, 0.9f), 2u);
    EXPECT_EQ(points.opacity[2], (OpacityPoint{0.5f, 0.9f}));
    EXPECT_EQ(addOpacityPoint(points, -3.0f, 7.0f), 1u);
    EXPECT_EQ(points.opacity[1], (OpacityPoint{0.0f, 1.0f}));
    EXPECT_EQ(addOpacityPoint(points, 3.0f, -7.0f), 4u);
    EXPECT_EQ(points.opacity[4], (OpacityPoint{1.0f, 0.0f}));
    EXPECT_EQ(points.opacity.size(), 6u);
}

TEST(TransferEdit, AColorPointBeginsWithTheColorThatIsThere)
{
    TransferPoints points = ramp();
    const std::vector<std::uint8_t> before = byteTable(points);
    EXPECT_EQ(addColorPoint(points, 0.75f), 2u);
    EXPECT_EQ(points.color[2], (ColorPoint{0.75f, 1.0f, 0.5f, 0.5f}));
    const std::vector<std::uint8_t> behind = byteTable(points);
    for (std::size_t i = 0; i < before.size(); ++i)
    {
        EXPECT_NEAR(before[i], behind[i], 1) << "only rounding may differ";
    }
}

TEST(TransferEdit, APointStaysBetweenItsNeighboursAndTheEndsStay)
{
    TransferPoints points = ramp();
    moveOpacityPoint(points, 1, 2.0f, 2.0f);
    EXPECT_EQ(points.opacity[1], (OpacityPoint{1.0f, 1.0f}));
    moveOpacityPoint(points, 1, -1.0f, -1.0f);
    EXPECT_EQ(points.opacity[1], (OpacityPoint{0.0f, 0.0f}));
    moveOpacityPoint(points, 0, 0.5f, 0.25f);
    EXPECT_EQ(points.opacity[0], (OpacityPoint{0.0f, 0.25f}));
    moveOpacityPoint(points, 2, 0.5f, 0.75f);
    EXPECT_EQ(points.opacity[2], (OpacityPoint{1.0f, 0.75f}));
    moveColorPoint(points, 1, 0.9f);
    EXPECT_EQ(points.color[1].position, 0.9f);
    moveColorPoint(points, 2, 0.5f);
    EXPECT_EQ(points.color[2].position, 1.0f);
}

TEST(TransferEdit, AllButTheEndsCanBeTakenAway)
{
    TransferPoints points = ramp();
    EXPECT_FALSE(removeOpacityPoint(points, 0));
    EXPECT_FALSE(removeOpacityPoint(points, 2));
    EXPECT_TRUE(removeOpacityPoint(points, 1));
    EXPECT_EQ(points.opacity.size(), 2u);
    EXPECT_FALSE(removeColorPoint(points, 0));
    EXPECT_TRUE(removeColorPoint(points, 1));
    EXPECT_FALSE(removeColorPoint(points, 1));
}

TEST(TransferEdit, AnyEditingLeavesAListThatIsATransferFunction)
{
    std::mt19937 random(77);
    std::uniform_real_distribution<float> number(-0.2f, 1.2f);
    TransferPoints points = ramp();
    for (int i = 0; i < 5000; ++i)
    {
        const std::size_t opacity = random() % points.opacity.size();
        const std::size_t color = random() % points.color.size();
        switch (random() % 6)
        {
        case 0:
            addOpacityPoint(points, number(random), number(random));
            break;
        case 1:
            addColorPoint(points, number(random));
            break;
        case 2:
            moveOpacityPoint(points, opacity, number(random), number(random));
            break;
        case 3:
            moveColorPoint(points, color, number(random));
            break;
        case 4:
            removeOpacityPoint(points, opacity);
            break;
        default:
            removeColorPoint(points, color);
        }
        TransferPoints opened = points;
        makeEditable(opened);
        ASSERT_EQ(opened, points) << i;
        for (std::size_t k = 1; k < points.opacity.size(); ++k)
        {
            ASSERT_LE(points.opacity[k - 1].position, points.opacity[k].position) << i;
        }
        for (std::size_t k = 1; k < points.color.size(); ++k)
        {
            ASSERT_LE(points.color[k - 1].position, points.color[k].position) << i;
        }
    }
}

} // namespace
