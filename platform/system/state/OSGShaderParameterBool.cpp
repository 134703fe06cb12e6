#include "OSGShaderParameterBool.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterBool::initMethod() {}

ShaderParameterBool::ShaderParameterBool()
{
    setTypeId(SHPTypeBool);
}

ShaderParameterBool::ShaderParameterBool(const ShaderParameterBool &source) : Inherited(source) {}

ShaderParameterBool::~ShaderParameterBool() = default;

void ShaderParameterBool::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterBool::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterBool NI" << std::endl;
}

OSG_END_NAMESPACE
