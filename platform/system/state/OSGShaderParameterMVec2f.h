#ifndef _OSGSHADERPARAMETERMVEC2F_H_
#define _OSGSHADERPARAMETERMVEC2F_H_

/// \file
/// A shader parameter that is an array of two numbers each.

#include "OSGShaderParameterMVec2fBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterMVec2f : public ShaderParameterMVec2fBase
{
  public:
    typedef ShaderParameterMVec2fBase Inherited;

    /// Takes all values of `values`.
    void setValue(const MFVec2f &values) { getValue().setValues(values); }

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterMVec2f();
    ShaderParameterMVec2f(const ShaderParameterMVec2f &source);
    ~ShaderParameterMVec2f() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterMVec2fBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
