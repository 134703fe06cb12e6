#include "OSGShaderParameterMVec2f.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterMVec2f::initMethod() {}

ShaderParameterMVec2f::ShaderParameterMVec2f()
{
    setTypeId(SHPTypeMVec2f);
}

ShaderParameterMVec2f::ShaderParameterMVec2f(const ShaderParameterMVec2f &source) : Inherited(source) {}

ShaderParameterMVec2f::~ShaderParameterMVec2f() = default;

void ShaderParameterMVec2f::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterMVec2f::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMVec2f NI" << std::endl;
}

OSG_END_NAMESPACE
