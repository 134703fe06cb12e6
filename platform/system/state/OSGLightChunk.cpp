#include "OSGLightChunk.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

StateChunkClass LightChunk::_class("Light", 8);

void LightChunk::initMethod() {}

LightChunk::LightChunk() = default;

LightChunk::LightChunk(const LightChunk &source) : Inherited(source) {}

LightChunk::~LightChunk() = default;

void LightChunk::activate(DrawActionBase *, UInt32 index)
{
    const GLenum light = GL_LIGHT0 + index;
    glLightfv(light, GL_DIFFUSE, getDiffuse().getValues());
    glLightfv(light, GL_AMBIENT, getAmbient().getValues());
    glLightfv(light, GL_SPECULAR, getSpecular().getValues());
    glLightfv(light, GL_POSITION, getPosition().getValues());
    glLightf(light, GL_CONSTANT_ATTENUATION, getConstantAttenuation());
    glLightf(light, GL_LINEAR_ATTENUATION, getLinearAttenuation());
    glLightf(light, GL_QUADRATIC_ATTENUATION, getQuadraticAttenuation());
    glLightf(light, GL_SPOT_CUTOFF, getCutoff());
    if(getCutoff() < 180.f)
    {
        glLightfv(light, GL_SPOT_DIRECTION, getDirection().getValues());
        glLightf(light, GL_SPOT_EXPONENT, getExponent());
    }
    glEnable(light);
}

void LightChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    Inherited::changeFrom(action, old, index);
}

void LightChunk::deactivate(DrawActionBase *, UInt32 index)
{
    glDisable(GL_LIGHT0 + index);
}

void LightChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void LightChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump LightChunk NI" << std::endl;
}

OSG_END_NAMESPACE
