/// \file
/// A camera that is another one with something changed.

#include "OSGCameraDecorator.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void CameraDecorator::initMethod() {}

CameraDecorator::CameraDecorator() = default;

CameraDecorator::CameraDecorator(const CameraDecorator &source) : Inherited(source) {}

CameraDecorator::~CameraDecorator() = default;

void CameraDecorator::onCreate(const CameraDecorator *source)
{
    addRefCP(_sfDecoratee.getValue());
    Inherited::onCreate(source);
}

void CameraDecorator::onDestroy()
{
    clearRefCP(_sfDecoratee.getValue());
    Inherited::onDestroy();
}

void CameraDecorator::setDecoratee(const CameraPtr &value)
{
    setRefdCP(_sfDecoratee.getValue(), CameraPtr(value));
}

Camera *CameraDecorator::behind() const
{
    Camera *const camera = _sfDecoratee.getValue().get();
    return camera != this ? camera : nullptr;
}

void CameraDecorator::getProjection(Matrix &result, UInt32 width, UInt32 height)
{
    Camera *const camera = behind();
    if(camera != nullptr)
        camera->getProjection(result, width, height);
    else
        result.setIdentity();
}

void CameraDecorator::getProjectionTranslation(Matrix &result, UInt32 width, UInt32 height)
{
    Camera *const camera = behind();
    if(camera != nullptr)
        camera->getProjectionTranslation(result, width, height);
    else
        Inherited::getProjectionTranslation(result, width, height);
}

void CameraDecorator::getViewing(Matrix &result, UInt32 width, UInt32 height)
{
    Camera *const camera = behind();
    if(camera != nullptr)
        camera->getViewing(result, width, height);
    else
        Inherited::getViewing(result, width, height);
}

SFNodePtr *CameraDecorator::getSFBeacon()
{
    Camera *const camera = behind();
    return camera != nullptr ? camera->getSFBeacon() : Inherited::getSFBeacon();
}

NodePtr &CameraDecorator::getBeacon()
{
    Camera *const camera = behind();
    return camera != nullptr ? camera->getBeacon() : Inherited::getBeacon();
}

const NodePtr &CameraDecorator::getBeacon() const
{
    const Camera *const camera = behind();
    return camera != nullptr ? camera->getBeacon() : Inherited::getBeacon();
}

void CameraDecorator::setBeacon(const NodePtr &value)
{
    Camera *const camera = behind();
    if(camera != nullptr)
        camera->setBeacon(value);
    else
        Inherited::setBeacon(value);
}

SFNodePtr *CameraDecorator::editSFBeacon()
{
    return getSFBeacon();
}

const SFNodePtr *CameraDecorator::getSFBeacon() const
{
    const Camera *const camera = behind();
    return camera != nullptr ? camera->getSFBeacon() : Inherited::getSFBeacon();
}

NodePtr &CameraDecorator::editBeacon()
{
    return getBeacon();
}

SFReal32 *CameraDecorator::getSFNear()
{
    Camera *const camera = behind();
    return camera != nullptr ? camera->getSFNear() : Inherited::getSFNear();
}

Real32 &CameraDecorator::getNear()
{
    Camera *const camera = behind();
    return camera != nullptr ? camera->getNear() : Inherited::getNear();
}

const Real32 &CameraDecorator::getNear() const
{
    const Camera *const camera = behind();
    return camera != nullptr ? camera->getNear() : Inherited::getNear();
}

void CameraDecorator::setNear(const Real32 &value)
{
    Camera *const camera = behind();
    if(camera != nullptr)
        camera->setNear(value);
    else
        Inherited::setNear(value);
}

SFReal32 *CameraDecorator::editSFNear()
{
    return getSFNear();
}

const SFReal32 *CameraDecorator::getSFNear() const
{
    const Camera *const camera = behind();
    return camera != nullptr ? camera->getSFNear() : Inherited::getSFNear();
}

Real32 &CameraDecorator::editNear()
{
    return getNear();
}

SFReal32 *CameraDecorator::getSFFar()
{
    Camera *const camera = behind();
    return camera != nullptr ? camera->getSFFar() : Inherited::getSFFar();
}

Real32 &CameraDecorator::getFar()
{
    Camera *const camera = behind();
    return camera != nullptr ? camera->getFar() : Inherited::getFar();
}

const Real32 &CameraDecorator::getFar() const
{
    const Camera *const camera = behind();
    return camera != nullptr ? camera->getFar() : Inherited::getFar();
}

void CameraDecorator::setFar(const Real32 &value)
{
    Camera *const camera = behind();
    if(camera != nullptr)
        camera->setFar(value);
    else
        Inherited::setFar(value);
}

SFReal32 *CameraDecorator::editSFFar()
{
    return getSFFar();
}

const SFReal32 *CameraDecorator::getSFFar() const
{
    const Camera *const camera = behind();
    return camera != nullptr ? camera->getSFFar() : Inherited::getSFFar();
}

Real32 &CameraDecorator::editFar()
{
    return getFar();
}

void CameraDecorator::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void CameraDecorator::dump(UInt32, const BitVector) const
{
    SLOG << "Dump CameraDecorator NI" << std::endl;
}

OSG_END_NAMESPACE
