/// \file
/// A camera with parallel rays.

#include "OSGOrthographicCamera.h"

#include "OSGLog.h"
#include "OSGMatrixUtility.h"

OSG_BEGIN_NAMESPACE

void OrthographicCamera::initMethod() {}

OrthographicCamera::OrthographicCamera() = default;

OrthographicCamera::OrthographicCamera(const OrthographicCamera &source) : Inherited(source) {}

OrthographicCamera::~OrthographicCamera() = default;

void OrthographicCamera::getProjection(Matrix &result, UInt32 width, UInt32 height)
{
    result.setIdentity();
    if(width == 0 || height == 0)
        return;
    const Real32 halfHeight = getVerticalSize() / 2.0f;
    const Real32 halfWidth = halfHeight * Real32(width) / Real32(height) * getAspect();
    MatrixOrthogonal(result, -halfWidth, halfWidth, -halfHeight, halfHeight, getNear(), getFar());
}

void OrthographicCamera::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void OrthographicCamera::dump(UInt32, const BitVector) const
{
    SLOG << "Dump OrthographicCamera NI" << std::endl;
}

OSG_END_NAMESPACE
