#include <Tessaly/OSGNurbsTrimmingLoop.h>

#include <OpenSG/OSGLog.h>
#include <Tessaly/OSGNurbsCurve.h>

OSG_BEGIN_NAMESPACE

void NurbsTrimmingLoop::initMethod() {}

NurbsTrimmingLoop::NurbsTrimmingLoop() = default;

NurbsTrimmingLoop::NurbsTrimmingLoop(const NurbsTrimmingLoop &source) : Inherited(source) {}

NurbsTrimmingLoop::~NurbsTrimmingLoop() = default;

void NurbsTrimmingLoop::onCreate(const NurbsTrimmingLoop *source)
{
    Inherited::onCreate(source);
    _heldContour.follow(_mfTrimmingContour, ChangedOrigin::External);
}

void NurbsTrimmingLoop::onDestroy()
{
    _heldContour.release();
    Inherited::onDestroy();
}

void NurbsTrimmingLoop::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & TrimmingContourFieldMask) != 0)
        _heldContour.follow(_mfTrimmingContour, origin);
    Inherited::changed(whichField, origin);
}

void NurbsTrimmingLoop::dump(UInt32, const BitVector) const
{
    SLOG << "Dump NurbsTrimmingLoop NI" << std::endl;
}

Action::ResultE NurbsTrimmingLoop::trim(DrawActionBase *action, GLUnurbs *nurb)
{
    for(const NodeCorePtr &core : getTrimmingContour())
    {
        const NurbsCurvePtr curve = NurbsCurvePtr::dcast(core);
        if(curve != NullFC)
            curve->trim(action, nurb);
    }
    return Action::Continue;
}

OSG_END_NAMESPACE
