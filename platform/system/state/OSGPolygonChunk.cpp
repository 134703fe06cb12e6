#include "OSGPolygonChunk.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

namespace
{

void setEnabled(GLenum capability, bool enabled)
{
    if(enabled)
        glEnable(capability);
    else
        glDisable(capability);
}

} // namespace

StateChunkClass PolygonChunk::_class("Polygon");

void PolygonChunk::initMethod() {}

PolygonChunk::PolygonChunk() = default;

PolygonChunk::PolygonChunk(const PolygonChunk &source) : Inherited(source) {}

PolygonChunk::~PolygonChunk() = default;

void PolygonChunk::activate(DrawActionBase *, UInt32)
{
    if(getCullFace() != GL_NONE)
    {
        glCullFace(getCullFace());
        glEnable(GL_CULL_FACE);
    }
    if(getFrontFace() != GL_CCW)
        glFrontFace(getFrontFace());
    if(getFrontMode() != GL_FILL)
        glPolygonMode(GL_FRONT, getFrontMode());
    if(getBackMode() != GL_FILL)
        glPolygonMode(GL_BACK, getBackMode());
    if(getSmooth())
        glEnable(GL_POLYGON_SMOOTH);
    if(getOffsetPoint() || getOffsetLine() || getOffsetFill())
    {
        glPolygonOffset(getOffsetFactor(), getOffsetBias());
        setEnabled(GL_POLYGON_OFFSET_POINT, getOffsetPoint());
        setEnabled(GL_POLYGON_OFFSET_LINE, getOffsetLine());
        setEnabled(GL_POLYGON_OFFSET_FILL, getOffsetFill());
    }
    if(getStipple().size() == 32)
    {
        // GL reads rows of bytes from the highest bit on, whatever the machine's byte order.
        GLubyte pattern[128];
        for(UInt32 row = 0; row < 32; ++row)
        {
            const UInt32 bits = UInt32(getStipple()[row]);
            for(UInt32 byte = 0; byte < 4; ++byte)
                pattern[4 * row + byte] = GLubyte(bits >> (24 - 8 * byte));
        }
        glPolygonStipple(pattern);
        glEnable(GL_POLYGON_STIPPLE);
    }
}

void PolygonChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    Inherited::changeFrom(action, old, index);
}

void PolygonChunk::deactivate(DrawActionBase *, UInt32)
{
    if(getCullFace() != GL_NONE)
    {
        glDisable(GL_CULL_FACE);
        glCullFace(GL_BACK);
    }
    if(getFrontFace() != GL_CCW)
        glFrontFace(GL_CCW);
    if(getFrontMode() != GL_FILL || getBackMode() != GL_FILL)
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    if(getSmooth())
        glDisable(GL_POLYGON_SMOOTH);
    if(getOffsetPoint() || getOffsetLine() || getOffsetFill())
    {
        glDisable(GL_POLYGON_OFFSET_POINT);
        glDisable(GL_POLYGON_OFFSET_LINE);
        glDisable(GL_POLYGON_OFFSET_FILL);
    }
    if(getStipple().size() == 32)
        glDisable(GL_POLYGON_STIPPLE);
}

void PolygonChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PolygonChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PolygonChunk NI" << std::endl;
}

OSG_END_NAMESPACE
