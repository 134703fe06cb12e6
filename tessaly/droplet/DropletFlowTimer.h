#ifndef TESSALY_DROPLETFLOWTIMER_H
#define TESSALY_DROPLETFLOWTIMER_H

/// \file
/// What decides when a step of the droplet simulation runs.

#include <OpenSG/OSGBaseTypes.h>

class DropletFlowTimer;

/// What a timer ticks.
class Timeable
{
  public:
    virtual ~Timeable() = default;

    /// \param elapsed seconds since the tick that was due last, this one included
    /// \param remaining how many ticks are pending behind this one
    /// \return whether the next pending tick is wanted too; with false all of them are dropped
    virtual bool tick(DropletFlowTimer *timer, osg::Real64 elapsed, osg::UInt32 remaining) = 0;
};

/// A clock that only moves where it is told to. Ticks run inside of the calls.
class DropletFlowTimer
{
  public:
    /// `target` is not owned, and lives at least as long.
    explicit DropletFlowTimer(Timeable *timerTarget) : target(timerTarget) {}
    DropletFlowTimer(const DropletFlowTimer &) = delete;
    DropletFlowTimer &operator=(const DropletFlowTimer &) = delete;

    /// Seconds between ticks. With 0, or what is no number, update never ticks, and one line is logged here.
    void setInterval(osg::Real64 seconds);
    void setTime(osg::Real64 seconds) { now = seconds; }
    osg::Real64 getTime() const { return now; }
    /// A change to true costs one immediate tick.
    void setEnabled(bool on);
    /// One immediate tick, even of a timer that is not enabled; the interval begins anew.
    void reset();
    /// Ticks where the interval is over. Time that was missed is dropped, not made up: with a target that
    /// returns false, one tick runs at most.
    void update();

    Timeable *target = nullptr;
    osg::Real64 interval = -1.0;
    osg::Real64 lastTick = 0.0; ///< when the last tick was due
    bool enabled = false;
    osg::Real64 now = -1.0; ///< below 0 nothing ticks
};

#endif
