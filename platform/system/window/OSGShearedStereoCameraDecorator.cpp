/// \file
/// One eye with a sheared frustum.

#include "OSGShearedStereoCameraDecorator.h"

#include "OSGLog.h"
#include "OSGMatrixUtility.h"
#include "OSGPerspectiveCamera.h"

OSG_BEGIN_NAMESPACE

void ShearedStereoCameraDecorator::initMethod() {}

ShearedStereoCameraDecorator::ShearedStereoCameraDecorator() = default;

ShearedStereoCameraDecorator::ShearedStereoCameraDecorator(const ShearedStereoCameraDecorator &source)
    : Inherited(source)
{
}

ShearedStereoCameraDecorator::~ShearedStereoCameraDecorator() = default;

namespace
{

/// The perspective camera behind all decorators, or null.
PerspectiveCamera *perspectiveBehind(Camera *camera)
{
    while(CameraDecorator *const decorator = dynamic_cast<CameraDecorator *>(camera))
    {
        camera = decorator->getDecoratee().get();
        if(camera == decorator)
            return nullptr;
    }
    return dynamic_cast<PerspectiveCamera *>(camera);
}

} // namespace

void ShearedStereoCameraDecorator::getProjection(Matrix &result, UInt32 width, UInt32 height)
{
    PerspectiveCamera *const camera = perspectiveBehind(this);
    if(camera == nullptr || width == 0 || height == 0)
    {
        Inherited::getProjection(result, width, height);
        return;
    }
    Matrix translation;
    MatrixStereoPerspective(result, translation, camera->getFov() / 2.0f,
                            Real32(width) / Real32(height) * camera->getAspect(), getNear(), getFar(),
                            getZeroParallaxDistance(), getEyeSeparation(), getLeftEye() ? 0.0f : 1.0f,
                            getOverlap());
}

void ShearedStereoCameraDecorator::getProjectionTranslation(Matrix &result, UInt32 width, UInt32 height)
{
    PerspectiveCamera *const camera = perspectiveBehind(this);
    if(camera == nullptr || width == 0 || height == 0)
    {
        Inherited::getProjectionTranslation(result, width, height);
        return;
    }
    Matrix projection;
    MatrixStereoPerspective(projection, result, camera->getFov() / 2.0f,
                            Real32(width) / Real32(height) * camera->getAspect(), getNear(), getFar(),
                            getZeroParallaxDistance(), getEyeSeparation(), getLeftEye() ? 0.0f : 1.0f,
                            getOverlap());
}

void ShearedStereoCameraDecorator::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShearedStereoCameraDecorator::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShearedStereoCameraDecorator NI" << std::endl;
}

OSG_END_NAMESPACE
