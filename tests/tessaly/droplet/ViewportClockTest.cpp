/// \file
/// When the viewport steps: the host's clock, the system's, and the pause.

#include "ViewportScene.h"

#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGThread.h>
#include <OpenSG/OSGTime.h>

OSG_USING_NAMESPACE
using namespace droplet_test;

TEST(DropletFlowViewport, StepsWithTheHostsClock)
{
    Frames f;
    f.start();
    f.setTime(100.5);
    f.frame();
    EXPECT_EQ(f.steps(), 1);
    f.setTime(101.0);
    f.frame(2);
    EXPECT_EQ(f.steps(), 2);
    f.setTime(111.0);
    f.frame(3);
    EXPECT_EQ(f.steps(), 3) << "what was missed is not made up";
    f.setTime(50.0);
    f.frame();
    EXPECT_EQ(f.steps(), 3);
}

TEST(DropletFlowViewport, DirtySwitchesTheClockToTheSystemsWithOneStep)
{
    Frames f;
    f.viewport->setTimeDelay(1e6);
    f.start();
    EXPECT_EQ(f.steps(), 1);
    f.viewport->setDirty(true);
    f.frame();
    EXPECT_EQ(f.steps(), 2) << "the clock goes over with a step";
    EXPECT_FALSE(f.viewport->getDirty()) << "the frame sets it back";
    f.viewport->setDirty(true);
    f.frame();
    EXPECT_EQ(f.steps(), 2) << "it is the system's already";
    // Back to the host's clock, and over again.
    f.setTime(200.0);
    f.viewport->setDirty(true);
    f.frame();
    EXPECT_EQ(f.steps(), 2) << "a changed time goes ahead of dirty";
    EXPECT_FALSE(f.viewport->getDirty());
    f.viewport->setDirty(true);
    f.frame();
    EXPECT_EQ(f.steps(), 3);
    // While paused the clock goes over without one.
    f.setTime(300.0);
    f.viewport->setPause(true);
    f.edited(DropletFlowViewport::PauseFieldMask);
    f.frame();
    f.viewport->setDirty(true);
    f.frame();
    EXPECT_EQ(f.steps(), 3);
}

TEST(DropletFlowViewport, OnTheSystemsClockStepsFollowTheTimeDelay)
{
    Frames f;
    f.viewport->setTimeDelay(0.02);
    f.start();
    f.viewport->setDirty(true);
    f.frame();
    EXPECT_EQ(f.steps(), 2);
    const Time begin = getSystemTime();
    int frames = 0;
    while(getSystemTime() - begin < 0.2)
    {
        f.viewport->setDirty(true);
        f.frame();
        ++frames;
    }
    const int most = int((getSystemTime() - begin) / 0.02) + 1;
    EXPECT_LE(f.steps() - 2, std::min(most, frames));
    EXPECT_GE(f.steps() - 2, 1);
    const int before = f.steps();
    f.frame(10);
    EXPECT_EQ(f.steps(), before) << "without dirty the clock stands still";
}

TEST(DropletFlowViewport, DirtyFromTheBeginningActsOnceTheSimulationRuns)
{
    Frames f;
    f.viewport->setTimeDelay(1e6);
    f.viewport->setDirty(true);
    f.start();
    EXPECT_EQ(f.steps(), 1);
    EXPECT_TRUE(f.viewport->getDirty());
    f.frame();
    EXPECT_EQ(f.steps(), 2);
    EXPECT_FALSE(f.viewport->getDirty());
}

TEST(DropletFlowViewport, TheDirtyThatItSetsBackIsNoChange)
{
    Frames f;
    f.start();
    const auto editsOfDirty = [&] {
        Thread::getCurrentChangeList()->clearAll();
        f.frame();
        int count = 0;
        for(const auto &[id, fields] : Thread::getCurrentChangeList()->getChanged())
            if(id == f.viewport.ptr.getFieldContainerId() &&
               (fields & BitVector(DropletFlowViewport::DirtyFieldMask)) != 0)
                ++count;
        return count;
    };
    f.setTime(101.0);
    EXPECT_EQ(editsOfDirty(), 1);
    EXPECT_EQ(editsOfDirty(), 0) << "nothing has changed, so nothing is set back";
    EXPECT_EQ(editsOfDirty(), 0);
}

TEST(DropletFlowViewport, PauseStopsTheStepsAndItsEndRunsOneAtOnce)
{
    Frames f;
    f.start();
    f.viewport->setPause(true);
    f.edited(DropletFlowViewport::PauseFieldMask);
    f.secondLater();
    f.secondLater();
    EXPECT_EQ(f.steps(), 1);
    // Parameters go on working.
    f.viewport->getSources().push_back(Vec3f(0.5f, 0.5f, 0.5f));
    f.edited(DropletFlowViewport::SourcesFieldMask);
    f.frame();
    EXPECT_GT(f.map(1).volume(), 5.0);
    f.viewport->setPause(false);
    f.edited(DropletFlowViewport::PauseFieldMask);
    f.frame();
    EXPECT_NEAR(f.map(0).at(1, 1)[1], -0.25f, 1e-3f);
    f.frame();
    EXPECT_NEAR(f.map(0).at(1, 1)[1], -0.25f, 1e-3f);

    Frames paused;
    paused.viewport->setPause(true);
    paused.frame(3);
    EXPECT_EQ(paused.steps(), 0);
}
