#include "OSGShaderParameterReal.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterReal::initMethod() {}

ShaderParameterReal::ShaderParameterReal()
{
    setTypeId(SHPTypeReal);
}

ShaderParameterReal::ShaderParameterReal(const ShaderParameterReal &source) : Inherited(source) {}

ShaderParameterReal::~ShaderParameterReal() = default;

void ShaderParameterReal::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterReal::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterReal NI" << std::endl;
}

OSG_END_NAMESPACE
