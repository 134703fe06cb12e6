#include "OSGShaderParameterMReal.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterMReal::initMethod() {}

ShaderParameterMReal::ShaderParameterMReal()
{
    setTypeId(SHPTypeMReal);
}

ShaderParameterMReal::ShaderParameterMReal(const ShaderParameterMReal &source) : Inherited(source) {}

ShaderParameterMReal::~ShaderParameterMReal() = default;

void ShaderParameterMReal::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterMReal::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMReal NI" << std::endl;
}

OSG_END_NAMESPACE
