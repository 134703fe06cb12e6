#include "OSGSpotLight.h"

#include "OSGGL.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void SpotLight::initMethod()
{
    registerFunctors(getClassType());
}

SpotLight::SpotLight() = default;

SpotLight::SpotLight(const SpotLight &source) : Inherited(source) {}

SpotLight::~SpotLight() = default;

void SpotLight::activate(DrawActionBase *action, UInt32 index)
{
    Inherited::activate(action, index);
    // GL takes cones of up to 90 degrees, in degrees.
    const Real32 degrees = getSpotCutOff() * 180.0f / Pi;
    glLightfv(GL_LIGHT0 + index, GL_SPOT_DIRECTION, getDirection().getValues());
    glLightf(GL_LIGHT0 + index, GL_SPOT_EXPONENT, getSpotExponent());
    glLightf(GL_LIGHT0 + index, GL_SPOT_CUTOFF, degrees < 0.0f ? 0.0f : degrees > 90.0f ? 90.0f : degrees);
}

void SpotLight::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void SpotLight::dump(UInt32, const BitVector) const
{
    SLOG << "Dump SpotLight NI" << std::endl;
}

OSG_END_NAMESPACE
