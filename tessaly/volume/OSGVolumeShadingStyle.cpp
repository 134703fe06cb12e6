#include <Tessaly/OSGVolumeShadingStyle.h>

#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

void VolumeShadingStyle::initMethod() {}

VolumeShadingStyle::VolumeShadingStyle() = default;

VolumeShadingStyle::VolumeShadingStyle(const VolumeShadingStyle &source) : Inherited(source) {}

VolumeShadingStyle::~VolumeShadingStyle() = default;

void VolumeShadingStyle::setShadingFunction(ShadingFunctions *shadingFunction)
{
    _shadingFunction = shadingFunction;
}

ShadingFunctions *VolumeShadingStyle::getShadingFunction()
{
    return _shadingFunction;
}

void VolumeShadingStyle::paramShading(VolumeNodeHandler *) {}

void VolumeShadingStyle::changed(BitVector whichField, UInt32 origin)
{
    _changes |= whichField;
    Inherited::changed(whichField, origin);
}

void VolumeShadingStyle::dump(UInt32, const BitVector) const
{
    SLOG << "Dump VolumeShadingStyle NI" << std::endl;
}

OSG_END_NAMESPACE
