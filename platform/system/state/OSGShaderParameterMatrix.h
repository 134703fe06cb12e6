#ifndef _OSGSHADERPARAMETERMATRIX_H_
#define _OSGSHADERPARAMETERMATRIX_H_

/// \file
/// A shader parameter that is a matrix.

#include "OSGShaderParameterMatrixBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterMatrix : public ShaderParameterMatrixBase
{
  public:
    typedef ShaderParameterMatrixBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterMatrix();
    ShaderParameterMatrix(const ShaderParameterMatrix &source);
    ~ShaderParameterMatrix() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterMatrixBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
