#ifndef _OSGSHADERPARAMETERINT_H_
#define _OSGSHADERPARAMETERINT_H_

/// \file
/// A shader parameter that is a whole number.

#include "OSGShaderParameterIntBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterInt : public ShaderParameterIntBase
{
  public:
    typedef ShaderParameterIntBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterInt();
    ShaderParameterInt(const ShaderParameterInt &source);
    ~ShaderParameterInt() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterIntBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
