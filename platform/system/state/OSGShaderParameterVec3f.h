#ifndef _OSGSHADERPARAMETERVEC3F_H_
#define _OSGSHADERPARAMETERVEC3F_H_

/// \file
/// A shader parameter that is three numbers.

#include "OSGShaderParameterVec3fBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterVec3f : public ShaderParameterVec3fBase
{
  public:
    typedef ShaderParameterVec3fBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterVec3f();
    ShaderParameterVec3f(const ShaderParameterVec3f &source);
    ~ShaderParameterVec3f() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterVec3fBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
