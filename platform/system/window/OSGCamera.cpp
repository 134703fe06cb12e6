/// \file
/// From where and how a scene is seen.

#include "OSGCamera.h"

#include "OSGDrawActionBase.h"
#include "OSGFrustumVolume.h"
#include "OSGGL.h"
#include "OSGLine.h"
#include "OSGLog.h"
#include "OSGNode.h"
#include "OSGViewport.h"
#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

namespace
{

UInt32 pixels(Int32 size)
{
    return size > 0 ? UInt32(size) : 0;
}

} // namespace

void Camera::initMethod() {}

Camera::Camera() = default;

Camera::Camera(const Camera &source) : Inherited(source) {}

Camera::~Camera() = default;

void Camera::onCreate(const Camera *source)
{
    addRefCP(_sfBeacon.getValue());
    Inherited::onCreate(source);
}

void Camera::onDestroy()
{
    clearRefCP(_sfBeacon.getValue());
    Inherited::onDestroy();
}

void Camera::setBeacon(const NodePtr &value)
{
    setRefdCP(_sfBeacon.getValue(), NodePtr(value));
}

void Camera::setup(DrawActionBase *action, const Viewport &port)
{
    const UInt32 width = pixels(port.getPixelWidth());
    const UInt32 height = pixels(port.getPixelHeight());
    Matrix modelview;
    Matrix viewing;

    setupProjection(action, port);
    getProjectionTranslation(modelview, width, height);
    getViewing(viewing, width, height);
    modelview.mult(viewing);
    glLoadMatrixf(modelview.getValues());
}

void Camera::setupProjection(DrawActionBase *, const Viewport &port)
{
    Matrix projection;
    getProjection(projection, pixels(port.getPixelWidth()), pixels(port.getPixelHeight()));
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(projection.getValues());
    glMatrixMode(GL_MODELVIEW);
}

void Camera::getProjectionTranslation(Matrix &result, UInt32, UInt32)
{
    result.setIdentity();
}

void Camera::getViewing(Matrix &result, UInt32, UInt32)
{
    result.setIdentity();
    const NodePtr beacon = getBeacon();
    if(beacon == NullFC)
        return;
    beacon->getToWorld(result);
    result.invert();
}

void Camera::getFrustum(FrustumVolume &result, const Viewport &port)
{
    Matrix worldToClip;
    getWorldToClip(worldToClip, pixels(port.getPixelWidth()), pixels(port.getPixelHeight()));
    result.setPlanes(worldToClip);
}

void Camera::getWorldToClip(Matrix &result, UInt32 width, UInt32 height)
{
    Matrix factor;
    getProjection(result, width, height);
    getProjectionTranslation(factor, width, height);
    result.mult(factor);
    getViewing(factor, width, height);
    result.mult(factor);
}

bool Camera::calcViewRay(Line &line, Int32 x, Int32 y, const Viewport &port)
{
    const UInt32 width = pixels(port.getPixelWidth());
    const UInt32 height = pixels(port.getPixelHeight());
    if(width == 0 || height == 0)
        return false;

    // The pixel's centre, in clip space.
    const Int32 windowHeight =
        port.getParent() != NullFC ? Int32(port.getParent()->getHeight()) : port.getPixelTop() + 1;
    const Int32 column = x - port.getPixelLeft();
    const Int32 row = windowHeight - 1 - y - port.getPixelBottom();
    const Real32 clipX = (Real32(column) + 0.5f) / Real32(width) * 2.0f - 1.0f;
    const Real32 clipY = (Real32(row) + 0.5f) / Real32(height) * 2.0f - 1.0f;

    Matrix clipToWorld;
    getWorldToClip(clipToWorld, width, height);
    if(!clipToWorld.invert())
        return false;
    Pnt3f nearPoint(clipX, clipY, -1.0f);
    Pnt3f farPoint(clipX, clipY, 1.0f);
    clipToWorld.multFullMatrixPnt(nearPoint);
    clipToWorld.multFullMatrixPnt(farPoint);

    // Rays are parallel where the clip coordinate w does not depend on the place.
    Matrix projection;
    getProjection(projection, width, height);
    const bool parallel = projection[0][3] == 0.0f && projection[1][3] == 0.0f && projection[2][3] == 0.0f;
    if(parallel)
    {
        line.setValue(nearPoint, farPoint - nearPoint);
        return true;
    }

    Matrix eyeToWorld;
    Matrix viewing;
    getProjectionTranslation(eyeToWorld, width, height);
    getViewing(viewing, width, height);
    eyeToWorld.mult(viewing);
    if(!eyeToWorld.invert())
        return false;
    const Pnt3f eye(eyeToWorld[3][0], eyeToWorld[3][1], eyeToWorld[3][2]);
    line.setValue(eye, farPoint - eye);
    return true;
}

void Camera::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Camera::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Camera NI" << std::endl;
}

OSG_END_NAMESPACE
