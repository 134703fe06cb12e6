#ifndef _OSGSHADERPARAMETERMMATRIX_H_
#define _OSGSHADERPARAMETERMMATRIX_H_

/// \file
/// A shader parameter that is an array of matrices.

#include "OSGShaderParameterMMatrixBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterMMatrix : public ShaderParameterMMatrixBase
{
  public:
    typedef ShaderParameterMMatrixBase Inherited;

    /// Takes all values of `values`.
    void setValue(const MFMatrix &values) { getValue().setValues(values); }

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterMMatrix();
    ShaderParameterMMatrix(const ShaderParameterMMatrix &source);
    ~ShaderParameterMMatrix() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterMMatrixBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
