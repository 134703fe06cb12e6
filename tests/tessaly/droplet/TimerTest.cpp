/// \file
/// When the timer of the simulation ticks.

#include "droplet/DropletFlowTimer.h"

#include <cmath>
#include <limits>
#include <vector>

#include <OpenSG/OSGLogCapture.h>

#include <gtest/gtest.h>

OSG_USING_NAMESPACE

namespace
{

struct Tick
{
    Real64 elapsed;
    UInt32 remaining;
    bool operator==(const Tick &other) const
    {
        return elapsed == other.elapsed && remaining == other.remaining;
    }
};

std::ostream &operator<<(std::ostream &os, const Tick &tick)
{
    return os << tick.elapsed << ":" << tick.remaining;
}

/// Notes its ticks, and wants `wanted` in a row.
struct Counter : Timeable
{
    std::vector<Tick> ticks;
    std::size_t wanted = 1;

    bool tick(DropletFlowTimer *, Real64 elapsed, UInt32 remaining) override
    {
        ticks.push_back({elapsed, remaining});
        return ticks.size() < wanted;
    }
};

/// Enabled at 100 seconds, with an interval of half a second, its first tick forgotten.
struct Running
{
    Counter counter;
    DropletFlowTimer timer{&counter};

    Running()
    {
        timer.setInterval(0.5);
        timer.setTime(100.0);
        timer.setEnabled(true);
        counter.ticks.clear();
    }
};

} // namespace

TEST(DropletFlowTimer, StartsDisabledAheadOfAllTime)
{
    Counter counter;
    const DropletFlowTimer timer(&counter);
    EXPECT_EQ(timer.target, &counter);
    EXPECT_EQ(timer.interval, -1.0);
    EXPECT_EQ(timer.lastTick, 0.0);
    EXPECT_FALSE(timer.enabled);
    EXPECT_EQ(timer.now, -1.0);
    EXPECT_EQ(timer.getTime(), -1.0);
}

TEST(DropletFlowTimer, TicksOnceForTenIntervalsAndDropsTheOthers)
{
    Running run;
    run.timer.setTime(105.0);
    run.timer.update();
    EXPECT_EQ(run.counter.ticks, (std::vector<Tick>{{5.0, 9}}));
    EXPECT_EQ(run.timer.lastTick, 105.0);
    run.timer.update();
    EXPECT_EQ(run.counter.ticks.size(), 1u);
}

TEST(DropletFlowTimer, GoesOnAsLongAsTheTargetWants)
{
    Running run;
    run.counter.wanted = 3;
    run.timer.setTime(102.25);
    run.timer.update();
    EXPECT_EQ(run.counter.ticks, (std::vector<Tick>{{2.25, 3}, {1.75, 2}, {1.25, 1}}));
    EXPECT_EQ(run.timer.lastTick, 102.0);
    run.counter.ticks.clear();
    run.counter.wanted = 100;
    run.timer.setTime(103.0);
    run.timer.update();
    EXPECT_EQ(run.counter.ticks, (std::vector<Tick>{{1.0, 1}, {0.5, 0}}));
}

TEST(DropletFlowTimer, KeepsWhatIsLeftOfAnInterval)
{
    Running run;
    run.timer.setTime(100.75);
    run.timer.update();
    EXPECT_EQ(run.timer.lastTick, 100.5);
    run.timer.setTime(100.96875);
    run.timer.update();
    EXPECT_EQ(run.counter.ticks.size(), 1u);
    run.timer.setTime(101.0);
    run.timer.update();
    EXPECT_EQ(run.counter.ticks.size(), 2u);
}

TEST(DropletFlowTimer, NeverTicksDisabledOrBelowZero)
{
    Running run;
    run.timer.setEnabled(false);
    run.timer.setTime(200.0);
    run.timer.update();
    EXPECT_TRUE(run.counter.ticks.empty());
    EXPECT_EQ(run.timer.lastTick, 100.0);

    Counter counter;
    DropletFlowTimer early(&counter);
    early.setInterval(0.5);
    early.enabled = true;
    early.lastTick = -10.0;
    early.setTime(-0.001);
    early.update();
    EXPECT_TRUE(counter.ticks.empty());
    early.setTime(0.0);
    early.update();
    EXPECT_EQ(counter.ticks.size(), 1u);
}

TEST(DropletFlowTimer, EnablingCostsOneTickAtOnceAndStartsTheInterval)
{
    Counter counter;
    DropletFlowTimer timer(&counter);
    timer.setInterval(0.5);
    timer.setTime(7.0);
    timer.setEnabled(true);
    EXPECT_EQ(counter.ticks, (std::vector<Tick>{{0.0, 0}}));
    EXPECT_EQ(timer.lastTick, 7.0);
    timer.setEnabled(true);
    EXPECT_EQ(counter.ticks.size(), 1u);
    timer.setTime(8.0);
    timer.setEnabled(false);
    EXPECT_EQ(counter.ticks.size(), 1u);
    EXPECT_EQ(timer.lastTick, 7.0);
    timer.setEnabled(true);
    EXPECT_EQ(counter.ticks.size(), 2u);
    EXPECT_EQ(timer.lastTick, 8.0);
}

TEST(DropletFlowTimer, ResetTicksWhateverTheState)
{
    Counter counter;
    DropletFlowTimer timer(&counter);
    timer.setTime(3.0);
    timer.reset();
    EXPECT_EQ(counter.ticks, (std::vector<Tick>{{0.0, 0}}));
    EXPECT_EQ(timer.lastTick, 3.0);
    EXPECT_FALSE(timer.enabled);
}

TEST(DropletFlowTimer, AnIntervalOfZeroLogsALineAndNeverTicks)
{
    Running run;
    LogCapture log;
    run.timer.setInterval(0.0);
    EXPECT_EQ(log.text(LOG_WARNING), "DropletFlowTimer::setInterval: with an interval of 0 no step runs\n");
    run.timer.setTime(200.0);
    run.timer.update();
    EXPECT_TRUE(run.counter.ticks.empty());
    EXPECT_EQ(run.timer.lastTick, 100.0);
    EXPECT_EQ(log.count(), 1u);

    run.timer.setInterval(std::numeric_limits<Real64>::quiet_NaN());
    EXPECT_EQ(log.count(LOG_WARNING), 2u);
    run.timer.update();
    EXPECT_TRUE(run.counter.ticks.empty());
}

TEST(DropletFlowTimer, ANegativeIntervalNeverTicks)
{
    Running run;
    run.timer.setInterval(-0.5);
    run.timer.setTime(101.25);
    run.timer.update();
    EXPECT_TRUE(run.counter.ticks.empty());
    // Minus two intervals of minus half a second.
    EXPECT_EQ(run.timer.lastTick, 101.0);
}

TEST(DropletFlowTimer, ManyMoreIntervalsThanAnIntCountsAreOneTick)
{
    Running run;
    run.timer.setInterval(std::ldexp(1.0, -40));
    run.timer.setTime(1124.0);
    run.timer.update();
    EXPECT_EQ(run.counter.ticks, (std::vector<Tick>{{1024.0, 0xFFFFFFFFu}}));
    EXPECT_EQ(run.timer.lastTick, 1124.0);
    run.timer.setTime(std::numeric_limits<Real64>::infinity());
    run.timer.update();
    run.timer.setTime(std::numeric_limits<Real64>::quiet_NaN());
    run.timer.update();
    EXPECT_EQ(run.counter.ticks.size(), 1u);
    EXPECT_EQ(run.timer.lastTick, 1124.0);
}
