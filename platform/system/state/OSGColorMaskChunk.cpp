#include "OSGColorMaskChunk.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

StateChunkClass ColorMaskChunk::_class("ColorMask");

void ColorMaskChunk::initMethod() {}

ColorMaskChunk::ColorMaskChunk() = default;

ColorMaskChunk::ColorMaskChunk(const ColorMaskChunk &source) : Inherited(source) {}

ColorMaskChunk::~ColorMaskChunk() = default;

void ColorMaskChunk::activate(DrawActionBase *, UInt32)
{
    glColorMask(getMaskR(), getMaskG(), getMaskB(), getMaskA());
}

void ColorMaskChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    // All four are set at once, so nothing has to be undone first.
    if(old != this)
        activate(action, index);
}

void ColorMaskChunk::deactivate(DrawActionBase *, UInt32)
{
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

void ColorMaskChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ColorMaskChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ColorMaskChunk NI" << std::endl;
}

OSG_END_NAMESPACE
