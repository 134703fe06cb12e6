#ifndef _OSGSHADERPARAMETERMINT_H_
#define _OSGSHADERPARAMETERMINT_H_

/// \file
/// A shader parameter that is an array of whole numbers.

#include "OSGShaderParameterMIntBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterMInt : public ShaderParameterMIntBase
{
  public:
    typedef ShaderParameterMIntBase Inherited;

    /// Takes all values of `values`.
    void setValue(const MFInt32 &values) { getValue().setValues(values); }

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterMInt();
    ShaderParameterMInt(const ShaderParameterMInt &source);
    ~ShaderParameterMInt() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterMIntBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
