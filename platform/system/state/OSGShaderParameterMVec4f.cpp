#include "OSGShaderParameterMVec4f.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterMVec4f::initMethod() {}

ShaderParameterMVec4f::ShaderParameterMVec4f()
{
    setTypeId(SHPTypeMVec4f);
}

ShaderParameterMVec4f::ShaderParameterMVec4f(const ShaderParameterMVec4f &source) : Inherited(source) {}

ShaderParameterMVec4f::~ShaderParameterMVec4f() = default;

void ShaderParameterMVec4f::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterMVec4f::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMVec4f NI" << std::endl;
}

OSG_END_NAMESPACE
