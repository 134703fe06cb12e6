#ifndef _OSGSHADERPARAMETERBOOL_H_
#define _OSGSHADERPARAMETERBOOL_H_

/// \file
/// A shader parameter that is a truth value.

#include "OSGShaderParameterBoolBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterBool : public ShaderParameterBoolBase
{
  public:
    typedef ShaderParameterBoolBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameterBool();
    ShaderParameterBool(const ShaderParameterBool &source);
    ~ShaderParameterBool() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterBoolBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
