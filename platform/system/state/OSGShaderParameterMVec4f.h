#ifndef _OSGSHADERPARAMETERMVEC4F_H_
#define _OSGSHADERPARAMETERMVEC4F_H_

/// \file
/// A shader parameter that is an array of four numbers each.

#include "OSGShaderParameterMVec4fBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterMVec4f : public ShaderParameterMVec4fBase
{
  public:
    typedef ShaderParameterMVec4fBase Inherited;

    /// Takes all values of `values`.
    void setValue(const MFVec4f &values) { getValue().setValues(values); }

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterMVec4f();
    ShaderParameterMVec4f(const ShaderParameterMVec4f &source);
    ~ShaderParameterMVec4f() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterMVec4fBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
