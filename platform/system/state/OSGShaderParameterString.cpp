#include "OSGShaderParameterString.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterString::initMethod() {}

ShaderParameterString::ShaderParameterString()
{
    setTypeId(SHPTypeString);
}

ShaderParameterString::ShaderParameterString(const ShaderParameterString &source) : Inherited(source) {}

ShaderParameterString::~ShaderParameterString() = default;

void ShaderParameterString::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterString::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterString NI" << std::endl;
}

OSG_END_NAMESPACE
