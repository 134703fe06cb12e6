#include "OSGDepthChunk.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

StateChunkClass DepthChunk::_class("Depth");

void DepthChunk::initMethod() {}

DepthChunk::DepthChunk() = default;

DepthChunk::DepthChunk(const DepthChunk &source) : Inherited(source) {}

DepthChunk::~DepthChunk() = default;

void DepthChunk::activate(DrawActionBase *, UInt32)
{
    if(getEnable())
    {
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(getFunc());
    }
    else
        glDisable(GL_DEPTH_TEST);
    // Whoever draws transparent things may have switched the mask off, so what was there has to come back.
    if(getReadOnly())
    {
        glGetBooleanv(GL_DEPTH_WRITEMASK, &_maskBefore);
        glDepthMask(GL_FALSE);
    }
    if(getNear() >= 0.f && getFar() >= 0.f)
        glDepthRange(getNear(), getFar());
}

void DepthChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    Inherited::changeFrom(action, old, index);
}

void DepthChunk::deactivate(DrawActionBase *, UInt32)
{
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    if(getReadOnly())
        glDepthMask(_maskBefore);
    if(getNear() >= 0.f && getFar() >= 0.f)
        glDepthRange(0.0, 1.0);
}

void DepthChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void DepthChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump DepthChunk NI" << std::endl;
}

OSG_END_NAMESPACE
