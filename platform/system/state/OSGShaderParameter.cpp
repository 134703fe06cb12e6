#include "OSGShaderParameter.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameter::initMethod() {}

ShaderParameter::ShaderParameter() = default;

ShaderParameter::ShaderParameter(const ShaderParameter &source) : Inherited(source) {}

ShaderParameter::~ShaderParameter() = default;

void ShaderParameter::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameter::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameter NI" << std::endl;
}

OSG_END_NAMESPACE
