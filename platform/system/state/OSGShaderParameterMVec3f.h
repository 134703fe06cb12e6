#ifndef _OSGSHADERPARAMETERMVEC3F_H_
#define _OSGSHADERPARAMETERMVEC3F_H_

/// \file
/// A shader parameter that is an array of three numbers each.

#include "OSGShaderParameterMVec3fBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterMVec3f : public ShaderParameterMVec3fBase
{
  public:
    typedef ShaderParameterMVec3fBase Inherited;

    /// Takes all values of `values`.
    void setValue(const MFVec3f &values) { getValue().setValues(values); }

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterMVec3f();
    ShaderParameterMVec3f(const ShaderParameterMVec3f &source);
    ~ShaderParameterMVec3f() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterMVec3fBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
