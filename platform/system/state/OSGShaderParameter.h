#ifndef _OSGSHADERPARAMETER_H_
#define _OSGSHADERPARAMETER_H_

/// \file
/// The base of all named values for shader programs.

#include "OSGShaderParameterBase.h"

OSG_BEGIN_NAMESPACE

/// A named value for a shader program. The field `typeId` tells the derived class.
class OSG_SYSTEMLIB_DLLMAPPING ShaderParameter : public ShaderParameterBase
{
  public:
    typedef ShaderParameterBase Inherited;

    /// The kinds of values, as files hold them; not all of them have a class.
    enum SHPType
    {
        SHPTypeUnknown = 0,
        SHPTypeBool = 1,
        SHPTypeInt = 2,
        SHPTypeReal = 3,
        SHPTypeVec2i = 4,
        SHPTypeVec3i = 5,
        SHPTypeVec4i = 6,
        SHPTypeVec2f = 7,
        SHPTypeVec3f = 8,
        SHPTypeVec4f = 9,
        SHPTypeMatrix = 10,
        SHPTypeString = 11,
        SHPTypeMBool = 12,
        SHPTypeMInt = 13,
        SHPTypeMReal = 14,
        SHPTypeMVec2i = 15,
        SHPTypeMVec3i = 16,
        SHPTypeMVec4i = 17,
        SHPTypeMVec2f = 18,
        SHPTypeMVec3f = 19,
        SHPTypeMVec4f = 20,
        SHPTypeMMatrix = 21
    };

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShaderParameter();
    ShaderParameter(const ShaderParameter &source);
    ~ShaderParameter() override;

  private:
    friend class FieldContainer;
    friend class ShaderParameterBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
