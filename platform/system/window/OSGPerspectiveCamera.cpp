/// \file
/// A camera with a centre of projection.

#include "OSGPerspectiveCamera.h"

#include "OSGLog.h"
#include "OSGMatrixUtility.h"

OSG_BEGIN_NAMESPACE

void PerspectiveCamera::initMethod() {}

PerspectiveCamera::PerspectiveCamera() = default;

PerspectiveCamera::PerspectiveCamera(const PerspectiveCamera &source) : Inherited(source) {}

PerspectiveCamera::~PerspectiveCamera() = default;

void PerspectiveCamera::getProjection(Matrix &result, UInt32 width, UInt32 height)
{
    result.setIdentity();
    if(width == 0 || height == 0)
        return;
    MatrixPerspective(result, getFov() / 2.0f, Real32(width) / Real32(height) * getAspect(), getNear(),
                      getFar());
}

void PerspectiveCamera::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PerspectiveCamera::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PerspectiveCamera NI" << std::endl;
}

OSG_END_NAMESPACE
