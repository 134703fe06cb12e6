#ifndef _OSGSHADERPARAMETERSTRING_H_
#define _OSGSHADERPARAMETERSTRING_H_

/// \file
/// A shader parameter that is a text, for compile-time parameters.

#include "OSGShaderParameterStringBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterString : public ShaderParameterStringBase
{
  public:
    typedef ShaderParameterStringBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterString();
    ShaderParameterString(const ShaderParameterString &source);
    ~ShaderParameterString() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterStringBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
