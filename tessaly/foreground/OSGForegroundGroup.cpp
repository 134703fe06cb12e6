/// \file
/// A list of foregrounds in the place of one.

#include <Tessaly/OSGForegroundGroup.h>

#include <OpenSG/OSGForeground.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

void ForegroundGroup::initMethod() {}

ForegroundGroup::ForegroundGroup() = default;

ForegroundGroup::ForegroundGroup(const ForegroundGroup &source) : Inherited(source) {}

ForegroundGroup::~ForegroundGroup() = default;

void ForegroundGroup::onCreate(const ForegroundGroup *source)
{
    Inherited::onCreate(source);
    _heldForegrounds.follow(_mfForegrounds, ChangedOrigin::External);
}

void ForegroundGroup::onDestroy()
{
    _heldForegrounds.release();
    Inherited::onDestroy();
}

void ForegroundGroup::draw(DrawActionBase *action, Viewport *port)
{
    if(!getActive())
        return;
    if(_drawing)
    {
        FWARNING(("ForegroundGroup::draw: the group is a member of itself\n"));
        return;
    }
    _drawing = true;
    // By index, with the size read anew: a member may change the list.
    for(UInt32 i = 0; i < _mfForegrounds.size(); ++i)
    {
        const ForegroundPtr foreground = _mfForegrounds[i];
        if(foreground != NullFC)
            foreground->draw(action, port);
        else
            FWARNING(("ForegroundGroup::draw: entry %u is null\n", i));
    }
    _drawing = false;
}

void ForegroundGroup::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & ForegroundsFieldMask) != 0)
        _heldForegrounds.follow(_mfForegrounds, origin);
    Inherited::changed(whichField, origin);
}

void ForegroundGroup::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ForegroundGroup NI" << std::endl;
}

OSG_END_NAMESPACE
