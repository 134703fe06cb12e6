#include "DropletFlowTimer.h"

#include <algorithm>
#include <cmath>

#include <OpenSG/OSGLog.h>

using namespace osg;

void DropletFlowTimer::setInterval(Real64 seconds)
{
    interval = seconds;
    if(interval == 0.0 || !std::isfinite(interval))
        FWARNING(("DropletFlowTimer::setInterval: with an interval of %g no step runs\n", interval));
}

void DropletFlowTimer::setEnabled(bool on)
{
    if(on == enabled)
        return;
    enabled = on;
    if(enabled)
        reset();
}

void DropletFlowTimer::reset()
{
    target->tick(this, 0.0, 0);
    lastTick = now;
}

void DropletFlowTimer::update()
{
    if(!enabled || now < 0.0 || now < lastTick + interval || interval == 0.0)
        return;
    Real64 elapsed = now - lastTick;
    const Real64 due = std::trunc(elapsed / interval);
    if(!std::isfinite(due))
        return;
    for(Real64 i = 0.0; i < due; ++i)
    {
        if(!target->tick(this, elapsed, UInt32(std::min(due - 1.0 - i, 4294967295.0))))
            break;
        elapsed -= interval;
    }
    lastTick += due * interval;
}
