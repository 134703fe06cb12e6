#include "OSGShaderParameterVec3f.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterVec3f::initMethod() {}

ShaderParameterVec3f::ShaderParameterVec3f()
{
    setTypeId(SHPTypeVec3f);
}

ShaderParameterVec3f::ShaderParameterVec3f(const ShaderParameterVec3f &source) : Inherited(source) {}

ShaderParameterVec3f::~ShaderParameterVec3f() = default;

void ShaderParameterVec3f::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterVec3f::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterVec3f NI" << std::endl;
}

OSG_END_NAMESPACE
