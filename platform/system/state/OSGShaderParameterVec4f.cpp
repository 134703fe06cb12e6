#include "OSGShaderParameterVec4f.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterVec4f::initMethod() {}

ShaderParameterVec4f::ShaderParameterVec4f()
{
    setTypeId(SHPTypeVec4f);
}

ShaderParameterVec4f::ShaderParameterVec4f(const ShaderParameterVec4f &source) : Inherited(source) {}

ShaderParameterVec4f::~ShaderParameterVec4f() = default;

void ShaderParameterVec4f::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterVec4f::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterVec4f NI" << std::endl;
}

OSG_END_NAMESPACE
