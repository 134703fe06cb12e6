#include "OSGTransformChunk.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

StateChunkClass TransformChunk::_class("Transform");

void TransformChunk::initMethod() {}

TransformChunk::TransformChunk() = default;

TransformChunk::TransformChunk(const TransformChunk &source) : Inherited(source) {}

TransformChunk::~TransformChunk() = default;

void TransformChunk::activate(DrawActionBase *, UInt32)
{
    glPushMatrix();
    glMultMatrixf(getMatrix().getValues());
}

void TransformChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    Inherited::changeFrom(action, old, index);
}

void TransformChunk::deactivate(DrawActionBase *, UInt32)
{
    glPopMatrix();
}

void TransformChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void TransformChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump TransformChunk NI" << std::endl;
}

OSG_END_NAMESPACE
