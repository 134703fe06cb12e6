/// \file
/// The matrices of cameras.

#include "OSGMatrixUtility.h"

#include <cmath>

OSG_BEGIN_NAMESPACE

void MatrixOrthogonal(Matrix &result, Real32 rLeft, Real32 rRight, Real32 rBottom, Real32 rTop, Real32 rNear,
                      Real32 rFar)
{
    const Real32 width = rRight - rLeft;
    const Real32 height = rTop - rBottom;
    const Real32 depth = rFar - rNear;
    result.setValue(2.0f / width, 0.0f, 0.0f, -(rRight + rLeft) / width,   //
                    0.0f, 2.0f / height, 0.0f, -(rTop + rBottom) / height, //
                    0.0f, 0.0f, -2.0f / depth, -(rFar + rNear) / depth,    //
                    0.0f, 0.0f, 0.0f, 1.0f);
}

void MatrixFrustum(Matrix &result, Real32 rLeft, Real32 rRight, Real32 rBottom, Real32 rTop, Real32 rNear,
                   Real32 rFar)
{
    const Real32 width = rRight - rLeft;
    const Real32 height = rTop - rBottom;
    const Real32 depth = rFar - rNear;
    result.setValue(2.0f * rNear / width, 0.0f, (rRight + rLeft) / width, 0.0f,        //
                    0.0f, 2.0f * rNear / height, (rTop + rBottom) / height, 0.0f,      //
                    0.0f, 0.0f, -(rFar + rNear) / depth, -2.0f * rFar * rNear / depth, //
                    0.0f, 0.0f, -1.0f, 0.0f);
}

void MatrixPerspective(Matrix &result, Real32 rFovy, Real32 rAspect, Real32 rNear, Real32 rFar)
{
    const Real32 top = std::tan(rFovy) * rNear;
    const Real32 right = top * rAspect;
    MatrixFrustum(result, -right, right, -top, top, rNear, rFar);
}

void MatrixStereoPerspective(Matrix &projection, Matrix &projtrans, Real32 rFovy, Real32 rAspect,
                             Real32 rNear, Real32 rFar, Real32 rZeroparallax, Real32 rEyedistance,
                             Real32 rWhicheye, Real32 rOverlap)
{
    // the picture's window in the shared plane, moved outwards for pictures that don't overlap fully
    const Real32 top = std::tan(rFovy) * rNear;
    const Real32 halfWidth = std::tan(rFovy) * rAspect * rZeroparallax;
    const Real32 window = (2.0f * rWhicheye - 1.0f) * (1.0f - rOverlap) * halfWidth;

    // seen from the eye, on the near plane
    const Real32 eye = rEyedistance * (rWhicheye - 0.5f);
    const Real32 toNear = rNear / rZeroparallax;
    MatrixFrustum(projection, (window - halfWidth - eye) * toNear, (window + halfWidth - eye) * toNear, -top,
                  top, rNear, rFar);
    projtrans.setIdentity();
    projtrans.setTranslate(-eye, 0.0f, 0.0f);
}

bool MatrixLookAt(Matrix &result, const Pnt3f &from, const Pnt3f &at, const Vec3f &up)
{
    result.setTransform(from.subZero());

    Vec3f back = from - at;
    if (back == Vec3f::Null)
        return true;
    back.normalize();

    Vec3f unitUp = up;
    unitUp.normalize();
    Vec3f right = unitUp.cross(back);
    if (right.squareLength() < Eps * Eps)
        return true;
    right.normalize();

    result = Matrix(right, back.cross(right), back, from.subZero());
    return false;
}

bool MatrixLookAt(Matrix &result, Real32 fromx, Real32 fromy, Real32 fromz, Real32 atx, Real32 aty,
                  Real32 atz, Real32 upx, Real32 upy, Real32 upz)
{
    return MatrixLookAt(result, Pnt3f(fromx, fromy, fromz), Pnt3f(atx, aty, atz), Vec3f(upx, upy, upz));
}

void MatrixProjection(Matrix &result, Real32 rLeft, Real32 rRight, Real32 rBottom, Real32 rTop, Real32 rNear,
                      Real32 rFar)
{
    MatrixFrustum(result, rLeft, rRight, rBottom, rTop, rNear, rFar);
}

OSG_END_NAMESPACE
