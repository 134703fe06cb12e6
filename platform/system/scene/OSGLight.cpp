#include "OSGLight.h"

#include "OSGDrawAction.h"
#include "OSGGL.h"
#include "OSGLog.h"
#include "OSGNode.h"
#include "OSGRenderAction.h"

OSG_BEGIN_NAMESPACE

void Light::initMethod() {}

void Light::registerFunctors(const FieldContainerType &type)
{
    DrawAction::registerEnterDefault(type, makeFunctor(&Light::drawEnter));
    DrawAction::registerLeaveDefault(type, makeFunctor(&Light::drawLeave));
    RenderAction::registerEnterDefault(type, makeFunctor(&Light::renderEnter));
    RenderAction::registerLeaveDefault(type, makeFunctor(&Light::renderLeave));
}

Light::Light() = default;

Light::Light(const Light &source) : Inherited(source) {}

Light::~Light() = default;

void Light::onCreate(const Light *source)
{
    addRefCP(getBeacon());
    Inherited::onCreate(source);
}

void Light::onDestroy()
{
    const NodePtr beacon = getBeacon();
    _sfBeacon.setValue(NullFC);
    subRefCP(beacon);
    Inherited::onDestroy();
}

void Light::setBeacon(const NodePtr &beacon)
{
    setRefdCP(_sfBeacon.getValue(), beacon);
}

void Light::getBeaconToWorld(Matrix &result) const
{
    if(getBeacon() != NullFC)
        getBeacon()->getToWorld(result);
    else
        result.setIdentity();
}

void Light::activate(DrawActionBase *, UInt32 index)
{
    const GLenum light = GL_LIGHT0 + index;
    glLightfv(light, GL_AMBIENT, getAmbient().getValues());
    glLightfv(light, GL_DIFFUSE, getDiffuse().getValues());
    glLightfv(light, GL_SPECULAR, getSpecular().getValues());
    glLightf(light, GL_CONSTANT_ATTENUATION, getConstantAttenuation());
    glLightf(light, GL_LINEAR_ATTENUATION, getLinearAttenuation());
    glLightf(light, GL_QUADRATIC_ATTENUATION, getQuadraticAttenuation());
    glEnable(light);
}

void Light::deactivate(DrawActionBase *, UInt32 index)
{
    glDisable(GL_LIGHT0 + index);
}

void Light::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Light::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Light NI" << std::endl;
}

Action::ResultE Light::drawEnter(Action *action)
{
    if(getOn())
        dynamic_cast<DrawActionBase *>(action)->dropLight(this);
    return dynamic_cast<DrawActionBase *>(action)->selectVisibles() != 0 ? Action::Continue : Action::Skip;
}

Action::ResultE Light::drawLeave(Action *action)
{
    if(getOn())
        dynamic_cast<DrawActionBase *>(action)->undropLight(this);
    return Action::Continue;
}

Action::ResultE Light::renderEnter(Action *action)
{
    return drawEnter(action);
}

Action::ResultE Light::renderLeave(Action *action)
{
    return drawLeave(action);
}

OSG_END_NAMESPACE
