#include "OSGShaderParameterMVec3f.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterMVec3f::initMethod() {}

ShaderParameterMVec3f::ShaderParameterMVec3f()
{
    setTypeId(SHPTypeMVec3f);
}

ShaderParameterMVec3f::ShaderParameterMVec3f(const ShaderParameterMVec3f &source) : Inherited(source) {}

ShaderParameterMVec3f::~ShaderParameterMVec3f() = default;

void ShaderParameterMVec3f::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterMVec3f::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMVec3f NI" << std::endl;
}

OSG_END_NAMESPACE
