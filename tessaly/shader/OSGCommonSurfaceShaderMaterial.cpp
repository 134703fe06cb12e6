#include <Tessaly/OSGCommonSurfaceShaderMaterial.h>

#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

void CommonSurfaceShaderMaterial::initMethod() {}

CommonSurfaceShaderMaterial::CommonSurfaceShaderMaterial() = default;

CommonSurfaceShaderMaterial::CommonSurfaceShaderMaterial(const CommonSurfaceShaderMaterial &source)
    : Inherited(source)
{
}

CommonSurfaceShaderMaterial::~CommonSurfaceShaderMaterial() = default;

void CommonSurfaceShaderMaterial::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void CommonSurfaceShaderMaterial::dump(UInt32, const BitVector) const
{
    SLOG << "Dump CommonSurfaceShaderMaterial NI" << std::endl;
}

OSG_END_NAMESPACE
