#include "OSGShaderParameterInt.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterInt::initMethod() {}

ShaderParameterInt::ShaderParameterInt()
{
    setTypeId(SHPTypeInt);
}

ShaderParameterInt::ShaderParameterInt(const ShaderParameterInt &source) : Inherited(source) {}

ShaderParameterInt::~ShaderParameterInt() = default;

void ShaderParameterInt::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterInt::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterInt NI" << std::endl;
}

OSG_END_NAMESPACE
