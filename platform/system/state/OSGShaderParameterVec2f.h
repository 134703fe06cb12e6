#ifndef _OSGSHADERPARAMETERVEC2F_H_
#define _OSGSHADERPARAMETERVEC2F_H_

/// \file
/// A shader parameter that is two numbers.

#include "OSGShaderParameterVec2fBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterVec2f : public ShaderParameterVec2fBase
{
  public:
    typedef ShaderParameterVec2fBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterVec2f();
    ShaderParameterVec2f(const ShaderParameterVec2f &source);
    ~ShaderParameterVec2f() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterVec2fBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
