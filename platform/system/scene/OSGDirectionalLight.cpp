#include "OSGDirectionalLight.h"

#include "OSGGL.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void DirectionalLight::initMethod()
{
    registerFunctors(getClassType());
}

DirectionalLight::DirectionalLight() = default;

DirectionalLight::DirectionalLight(const DirectionalLight &source) : Inherited(source) {}

DirectionalLight::~DirectionalLight() = default;

void DirectionalLight::activate(DrawActionBase *action, UInt32 index)
{
    Inherited::activate(action, index);
    const GLfloat towards[4] = {getDirection()[0], getDirection()[1], getDirection()[2], 0.0f};
    glLightfv(GL_LIGHT0 + index, GL_POSITION, towards);
    glLightf(GL_LIGHT0 + index, GL_SPOT_EXPONENT, 0.0f);
    glLightf(GL_LIGHT0 + index, GL_SPOT_CUTOFF, 180.0f);
}

void DirectionalLight::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void DirectionalLight::dump(UInt32, const BitVector) const
{
    SLOG << "Dump DirectionalLight NI" << std::endl;
}

OSG_END_NAMESPACE
