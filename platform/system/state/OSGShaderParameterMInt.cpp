#include "OSGShaderParameterMInt.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterMInt::initMethod() {}

ShaderParameterMInt::ShaderParameterMInt()
{
    setTypeId(SHPTypeMInt);
}

ShaderParameterMInt::ShaderParameterMInt(const ShaderParameterMInt &source) : Inherited(source) {}

ShaderParameterMInt::~ShaderParameterMInt() = default;

void ShaderParameterMInt::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterMInt::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMInt NI" << std::endl;
}

OSG_END_NAMESPACE
