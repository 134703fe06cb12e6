#ifndef TESSALY_NURBS_NURBSSAMPLING_H
#define TESSALY_NURBS_NURBSSAMPLING_H

/// \file
/// How densely GLU is to sample curves and surfaces, as numbers made from the tessellation fields.

#include <OpenSG/OSGBaseTypes.h>

namespace tessaly
{

/// What GLU's sampling properties are set to. Of a curve only uStep counts.
struct NurbsSampling
{
    bool domainDistance = false;  ///< true: steps per unit of parameter length; false: a largest error
    osg::Real32 uStep = 0.f;      ///< GLU_U_STEP, with domainDistance
    osg::Real32 vStep = 0.f;      ///< GLU_V_STEP, with domainDistance
    osg::Real32 tolerance = 0.f;  ///< GLU_PARAMETRIC_TOLERANCE, without
};

/// From 1 on so many steps per unit of parameter length; below, the absolute value is the largest error, 0 included.
NurbsSampling curveSampling(osg::Int32 tessellation);

/// The step of one direction with `controlPoints` points. From 1 on tessellation + 1; 0 means two per control point and one,
/// below 0 so many per control point and one. Counted in 32 bits without sign.
osg::Real32 surfaceStep(osg::Int32 tessellation, osg::UInt32 controlPoints);

/// With fixedSteps the steps of both directions as surfaceStep gives them; without, the fields as steps if both are above 0,
/// else half of the sum of their absolute values, rounded down, as the largest error.
NurbsSampling surfaceSampling(bool fixedSteps, osg::Int32 uTessellation, osg::Int32 vTessellation, osg::UInt32 uDim,
                              osg::UInt32 vDim);

/// Whether a GLU that reports this version, null for none, lacks the callbacks that static geometry is made with: those came
/// with 1.3. Only the leading number counts.
bool isGluTooOld(const osg::Char8 *version);

} // namespace tessaly

#endif
