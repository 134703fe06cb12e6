#include "OSGShaderParameterMatrix.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterMatrix::initMethod() {}

ShaderParameterMatrix::ShaderParameterMatrix()
{
    setTypeId(SHPTypeMatrix);
}

ShaderParameterMatrix::ShaderParameterMatrix(const ShaderParameterMatrix &source) : Inherited(source) {}

ShaderParameterMatrix::~ShaderParameterMatrix() = default;

void ShaderParameterMatrix::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterMatrix::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMatrix NI" << std::endl;
}

OSG_END_NAMESPACE
