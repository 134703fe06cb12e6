#ifndef _OSGSHADERPARAMETERMREAL_H_
#define _OSGSHADERPARAMETERMREAL_H_

/// \file
/// A shader parameter that is an array of numbers.

#include "OSGShaderParameterMRealBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterMReal : public ShaderParameterMRealBase
{
  public:
    typedef ShaderParameterMRealBase Inherited;

    /// Takes all values of `values`.
    void setValue(const MFReal32 &values) { getValue().setValues(values); }

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterMReal();
    ShaderParameterMReal(const ShaderParameterMReal &source);
    ~ShaderParameterMReal() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterMRealBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
