#include "OSGPointLight.h"

#include "OSGGL.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void PointLight::initMethod()
{
    registerFunctors(getClassType());
}

PointLight::PointLight() = default;

PointLight::PointLight(const PointLight &source) : Inherited(source) {}

PointLight::~PointLight() = default;

void PointLight::activate(DrawActionBase *action, UInt32 index)
{
    Inherited::activate(action, index);
    const GLfloat position[4] = {getPosition()[0], getPosition()[1], getPosition()[2], 1.0f};
    glLightfv(GL_LIGHT0 + index, GL_POSITION, position);
    glLightf(GL_LIGHT0 + index, GL_SPOT_EXPONENT, 0.0f);
    glLightf(GL_LIGHT0 + index, GL_SPOT_CUTOFF, 180.0f);
}

void PointLight::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PointLight::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PointLight NI" << std::endl;
}

OSG_END_NAMESPACE
