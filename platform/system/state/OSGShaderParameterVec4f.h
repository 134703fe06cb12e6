#ifndef _OSGSHADERPARAMETERVEC4F_H_
#define _OSGSHADERPARAMETERVEC4F_H_

/// \file
/// A shader parameter that is four numbers.

#include "OSGShaderParameterVec4fBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterVec4f : public ShaderParameterVec4fBase
{
  public:
    typedef ShaderParameterVec4fBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterVec4f();
    ShaderParameterVec4f(const ShaderParameterVec4f &source);
    ~ShaderParameterVec4f() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterVec4fBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
