#include "OSGShaderParameterMMatrix.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterMMatrix::initMethod() {}

ShaderParameterMMatrix::ShaderParameterMMatrix()
{
    setTypeId(SHPTypeMMatrix);
}

ShaderParameterMMatrix::ShaderParameterMMatrix(const ShaderParameterMMatrix &source) : Inherited(source) {}

ShaderParameterMMatrix::~ShaderParameterMMatrix() = default;

void ShaderParameterMMatrix::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ShaderParameterMMatrix::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterMMatrix NI" << std::endl;
}

OSG_END_NAMESPACE
