#ifndef _OSGSHADERPARAMETERREAL_H_
#define _OSGSHADERPARAMETERREAL_H_

/// \file
/// A shader parameter that is a number.

#include "OSGShaderParameterRealBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterReal : public ShaderParameterRealBase
{
  public:
    typedef ShaderParameterRealBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterReal();
    ShaderParameterReal(const ShaderParameterReal &source);
    ~ShaderParameterReal() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterRealBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
