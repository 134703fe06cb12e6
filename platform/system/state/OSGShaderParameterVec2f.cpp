#include "OSGShaderParameterVec2f.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterVec2f::initMethod() {}

ShaderParameterVec2f::ShaderParameterVec2f()
{
    setTypeId(SHPTypeVec2f);
}

ShaderParameterVec2f::ShaderParameterVec2f(const ShaderParameterVec2f &source) : Inherited(source) {}

ShaderParameterVec2f::~ShaderParameterVec2f() = default;

void ShaderParameterVec2f::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterVec2f::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterVec2f NI" << std::endl;
}

OSG_END_NAMESPACE
