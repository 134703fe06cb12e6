#ifndef _OSGMATRIXUTILITY_H_
#define _OSGMATRIXUTILITY_H_

/// \file
/// The matrices of cameras. Eye space looks along -z; projections map the near plane to -1 and the far plane
/// to 1.

#include "OSGMatrix.h"

OSG_BEGIN_NAMESPACE

/// As glOrtho: the box of these planes onto the cube -1..1.
OSG_BASELIB_DLLMAPPING void MatrixOrthogonal(Matrix &result, Real32 rLeft, Real32 rRight, Real32 rBottom,
                                             Real32 rTop, Real32 rNear, Real32 rFar);

/// As glFrustum: left to top are distances on the near plane. Nothing is checked: planes that coincide give
/// infinities.
OSG_BASELIB_DLLMAPPING void MatrixFrustum(Matrix &result, Real32 rLeft, Real32 rRight, Real32 rBottom,
                                          Real32 rTop, Real32 rNear, Real32 rFar);

/// rFovy is HALF of the vertical field of view, in radians; this is meant, cameras halve their angle before
/// they call. rAspect is width over height.
OSG_BASELIB_DLLMAPPING void MatrixPerspective(Matrix &result, Real32 rFovy, Real32 rAspect, Real32 rNear,
                                              Real32 rFar);

/// One eye of a stereo pair with a shared plane at rZeroparallax, where both pictures coincide. rFovy is half
/// of the vertical field of view, as above; rEyedistance is between the eyes; rWhicheye is 0 for the left
/// eye, 1 for the right, and rOverlap is 1 for pictures that overlap fully. projection and projtrans are to
/// be multiplied in this order: projtrans moves the world aside by half of the distance between the eyes.
OSG_BASELIB_DLLMAPPING void MatrixStereoPerspective(Matrix &projection, Matrix &projtrans, Real32 rFovy,
                                                    Real32 rAspect, Real32 rNear, Real32 rFar,
                                                    Real32 rZeroparallax, Real32 rEyedistance,
                                                    Real32 rWhicheye, Real32 rOverlap = 1.0f);

/// The camera-to-world matrix of an eye at from that looks towards at, with up in the picture's upper half.
/// True if something is wrong: from and at coincide, or up has no part across the view; result is then the
/// translation to from.
OSG_BASELIB_DLLMAPPING bool MatrixLookAt(Matrix &result, const Pnt3f &from, const Pnt3f &at, const Vec3f &up);
OSG_BASELIB_DLLMAPPING bool MatrixLookAt(Matrix &result, Real32 fromx, Real32 fromy, Real32 fromz, Real32 atx,
                                         Real32 aty, Real32 atz, Real32 upx, Real32 upy, Real32 upz);

/// A projection with the given values on the near plane; the same as MatrixFrustum.
OSG_BASELIB_DLLMAPPING void MatrixProjection(Matrix &result, Real32 rLeft, Real32 rRight, Real32 rBottom,
                                             Real32 rTop, Real32 rNear, Real32 rFar);

OSG_END_NAMESPACE

#endif
