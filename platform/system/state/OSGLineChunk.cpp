#include "OSGLineChunk.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

StateChunkClass LineChunk::_class("Line");

void LineChunk::initMethod() {}

LineChunk::LineChunk() = default;

LineChunk::LineChunk(const LineChunk &source) : Inherited(source) {}

LineChunk::~LineChunk() = default;

void LineChunk::activate(DrawActionBase *, UInt32)
{
    if(getWidth() != 1.f)
        glLineWidth(getWidth());
    if(getStipplePattern() != 0xFFFF)
    {
        glLineStipple(getStippleRepeat(), getStipplePattern());
        glEnable(GL_LINE_STIPPLE);
    }
    if(getSmooth())
        glEnable(GL_LINE_SMOOTH);
}

void LineChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    Inherited::changeFrom(action, old, index);
}

void LineChunk::deactivate(DrawActionBase *, UInt32)
{
    if(getWidth() != 1.f)
        glLineWidth(1.f);
    if(getStipplePattern() != 0xFFFF)
        glDisable(GL_LINE_STIPPLE);
    if(getSmooth())
        glDisable(GL_LINE_SMOOTH);
}

void LineChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void LineChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump LineChunk NI" << std::endl;
}

OSG_END_NAMESPACE
