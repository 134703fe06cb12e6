/// \file
/// A camera of given matrices.

#include "OSGMatrixCamera.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void MatrixCamera::initMethod() {}

MatrixCamera::MatrixCamera() = default;

MatrixCamera::MatrixCamera(const MatrixCamera &source) : Inherited(source) {}

MatrixCamera::~MatrixCamera() = default;

void MatrixCamera::getProjection(Matrix &result, UInt32, UInt32)
{
    result = getProjectionMatrix();
}

void MatrixCamera::getViewing(Matrix &result, UInt32, UInt32)
{
    result = getModelviewMatrix();
}

void MatrixCamera::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void MatrixCamera::dump(UInt32, const BitVector) const
{
    SLOG << "Dump MatrixCamera NI" << std::endl;
}

OSG_END_NAMESPACE
