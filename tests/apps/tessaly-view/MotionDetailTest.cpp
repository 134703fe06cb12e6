/// \file
/// How the detail of moving frames follows what frames take.

#include "MotionDetail.h"

#include <gtest/gtest.h>

namespace
{

using namespace viewer;

/// Draws frames on a machine that takes `full` seconds for one in full detail, until the detail has settled.
Detail settled(double full, MotionDetail &motion)
{
    for (int frame = 0; frame < 40; ++frame)
    {
        const Detail detail = motion.moving();
        motion.drawn(detail, full / (detail.step * detail.shrink * detail.shrink));
    }
    return motion.moving();
}

TEST(MotionDetail, AFastMachineKeepsFullDetail)
{
    MotionDetail motion;
    EXPECT_TRUE(settled(0.01, motion).full());
    EXPECT_TRUE(settled(MotionDetail::targetSeconds, motion).full());
}

TEST(MotionDetail, TheStepGrowsFirstAndThenThePictureShrinks)
{
    MotionDetail motion;
    EXPECT_EQ(settled(0.1, motion), (Detail{2.0, 1}));
    EXPECT_EQ(settled(0.2, motion), (Detail{4.0, 1}));
    EXPECT_EQ(settled(0.4, motion), (Detail{2.0, 2}));
    EXPECT_EQ(settled(0.8, motion), (Detail{4.0, 2}));
    EXPECT_EQ(settled(1.0, motion), (Detail{2.25, 3}));
}

TEST(MotionDetail, ThereIsALeastDetail)
{
    MotionDetail motion;
    EXPECT_EQ(settled(1000.0, motion), (Detail{MotionDetail::coarsestStep, MotionDetail::smallest}));
}

TEST(MotionDetail, FramesAreAboutAsLongAsTheTargetWhereThatCanBe)
{
    for (const double full : {0.06, 0.11, 0.19, 0.3, 0.55, 1.3, 2.5})
    {
        MotionDetail motion;
        const Detail detail = settled(full, motion);
        const double seconds = full / (detail.step * detail.shrink * detail.shrink);
        EXPECT_LT(seconds, 1.35 * MotionDetail::targetSeconds) << full;
        EXPECT_GT(seconds, 0.5 * MotionDetail::targetSeconds) << full;
    }
}

TEST(MotionDetail, AFrameAtRestTellsTheFirstOneOfAMovement)
{
    MotionDetail motion;
    for (int i = 0; i < 20; ++i)
    {
        motion.drawn({}, 0.4);
    }
    EXPECT_EQ(motion.moving(), (Detail{2.0, 2}));
}

TEST(MotionDetail, TimesThatAreNoneChangeNothing)
{
    MotionDetail motion;
    const Detail before = motion.moving();
    motion.drawn({}, 0.0);
    motion.drawn({}, -1.0);
    EXPECT_EQ(motion.moving(), before);
}

} // namespace
