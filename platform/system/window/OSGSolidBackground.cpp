/// \file
/// Clears to one colour.

#include "OSGSolidBackground.h"

#include "OSGGL.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void SolidBackground::initMethod() {}

SolidBackground::SolidBackground() = default;

SolidBackground::SolidBackground(const SolidBackground &source) : Inherited(source) {}

SolidBackground::~SolidBackground() = default;

void SolidBackground::clear(DrawActionBase *, Viewport *)
{
    const Color3f &color = getColor();
    GLbitfield buffers = GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT;
    glClearColor(color.red(), color.green(), color.blue(), getAlpha());
    glClearDepth(getDepth());
    if(getClearStencilBit() >= 0)
    {
        glClearStencil(getClearStencilBit());
        buffers |= GL_STENCIL_BUFFER_BIT;
    }
    glClear(buffers);
    // Back to GL's own depth, which those rely on who clear on their own.
    glClearDepth(1.0);
}

void SolidBackground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void SolidBackground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump SolidBackground NI" << std::endl;
}

OSG_END_NAMESPACE
