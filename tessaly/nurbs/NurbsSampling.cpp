#include "NurbsSampling.h"

#include <cmath>
#include <cstdlib>

using namespace osg;

namespace tessaly
{

NurbsSampling curveSampling(Int32 tessellation)
{
    NurbsSampling sampling;
    sampling.domainDistance = tessellation >= 1;
    if(sampling.domainDistance)
        sampling.uStep = Real32(tessellation);
    else
        sampling.tolerance = std::fabs(Real32(tessellation));
    return sampling;
}

Real32 surfaceStep(Int32 tessellation, UInt32 controlPoints)
{
    const UInt32 t = UInt32(tessellation);
    if(tessellation >= 1)
        return Real32(t + 1u);
    if(tessellation == 0)
        return Real32(2u * controlPoints + 1u);
    return Real32(1u - t * controlPoints);
}

NurbsSampling surfaceSampling(bool fixedSteps, Int32 uTessellation, Int32 vTessellation, UInt32 uDim, UInt32 vDim)
{
    NurbsSampling sampling;
    sampling.domainDistance = fixedSteps || (uTessellation > 0 && vTessellation > 0);
    if(fixedSteps)
    {
        sampling.uStep = surfaceStep(uTessellation, uDim);
        sampling.vStep = surfaceStep(vTessellation, vDim);
    }
    else if(sampling.domainDistance)
    {
        sampling.uStep = Real32(uTessellation);
        sampling.vStep = Real32(vTessellation);
    }
    else
    {
        sampling.tolerance = Real32((std::llabs(uTessellation) + std::llabs(vTessellation)) / 2);
    }
    return sampling;
}

bool isGluTooOld(const Char8 *version)
{
    return version == nullptr || 1.3f > Real32(std::atof(version));
}

} // namespace tessaly
