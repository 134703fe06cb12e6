#include "OSGShaderValue.h"

#include <cstring>

#include "OSGShaderParameterBool.h"
#include "OSGShaderParameterInt.h"
#include "OSGShaderParameterMInt.h"
#include "OSGShaderParameterMMatrix.h"
#include "OSGShaderParameterMReal.h"
#include "OSGShaderParameterMVec2f.h"
#include "OSGShaderParameterMVec3f.h"
#include "OSGShaderParameterMVec4f.h"
#include "OSGShaderParameterMatrix.h"
#include "OSGShaderParameterReal.h"
#include "OSGShaderParameterVec2f.h"
#include "OSGShaderParameterVec3f.h"
#include "OSGShaderParameterVec4f.h"

OSG_BEGIN_NAMESPACE

namespace
{

template <class ValueT>
bool putBytes(const ValueT *values, std::size_t count, std::vector<UInt8> &bytes)
{
    bytes.resize(count * sizeof(ValueT));
    if(count == 0)
        return false;
    std::memcpy(bytes.data(), values, bytes.size());
    return true;
}

/// The type identifier is a field that hosts can write to, so it alone doesn't prove the class.
template <class ParameterT>
bool putSingle(ShaderParameter *parameter, std::vector<UInt8> &bytes)
{
    ParameterT *const typed = dynamic_cast<ParameterT *>(parameter);
    return typed != nullptr && putBytes(&typed->getValue(), 1, bytes);
}

template <class ParameterT>
bool putMulti(ShaderParameter *parameter, std::vector<UInt8> &bytes)
{
    ParameterT *const typed = dynamic_cast<ParameterT *>(parameter);
    return typed != nullptr &&
           putBytes(typed->getValue().getValues().data(), typed->getValue().size(), bytes);
}

} // namespace

bool shaderValueBytes(ShaderParameter *parameter, std::vector<UInt8> &bytes)
{
    switch(parameter->getTypeId())
    {
    case ShaderParameter::SHPTypeBool:
        if(ShaderParameterBool *const typed = dynamic_cast<ShaderParameterBool *>(parameter))
        {
            const Int32 value = typed->getValue() ? 1 : 0;
            return putBytes(&value, 1, bytes);
        }
        return false;
    case ShaderParameter::SHPTypeInt:
        return putSingle<ShaderParameterInt>(parameter, bytes);
    case ShaderParameter::SHPTypeReal:
        return putSingle<ShaderParameterReal>(parameter, bytes);
    case ShaderParameter::SHPTypeVec2f:
        return putSingle<ShaderParameterVec2f>(parameter, bytes);
    case ShaderParameter::SHPTypeVec3f:
        return putSingle<ShaderParameterVec3f>(parameter, bytes);
    case ShaderParameter::SHPTypeVec4f:
        return putSingle<ShaderParameterVec4f>(parameter, bytes);
    case ShaderParameter::SHPTypeMatrix:
        return putSingle<ShaderParameterMatrix>(parameter, bytes);
    case ShaderParameter::SHPTypeMInt:
        return putMulti<ShaderParameterMInt>(parameter, bytes);
    case ShaderParameter::SHPTypeMReal:
        return putMulti<ShaderParameterMReal>(parameter, bytes);
    case ShaderParameter::SHPTypeMVec2f:
        return putMulti<ShaderParameterMVec2f>(parameter, bytes);
    case ShaderParameter::SHPTypeMVec3f:
        return putMulti<ShaderParameterMVec3f>(parameter, bytes);
    case ShaderParameter::SHPTypeMVec4f:
        return putMulti<ShaderParameterMVec4f>(parameter, bytes);
    case ShaderParameter::SHPTypeMMatrix:
        return putMulti<ShaderParameterMMatrix>(parameter, bytes);
    default:
        return false;
    }
}

void sendShaderValue(const GLSLFunctions &gl, Int32 location, UInt32 typeId, const std::vector<UInt8> &bytes)
{
    const GLsizei numbers = GLsizei(bytes.size() / 4);
    // The memory of a vector is aligned for every plain type.
    const GLint *const integers = reinterpret_cast<const GLint *>(bytes.data());
    const GLfloat *const reals = reinterpret_cast<const GLfloat *>(bytes.data());
    switch(typeId)
    {
    case ShaderParameter::SHPTypeBool:
    case ShaderParameter::SHPTypeInt:
    case ShaderParameter::SHPTypeMInt:
        gl.uniform1iv(location, numbers, integers);
        break;
    case ShaderParameter::SHPTypeReal:
    case ShaderParameter::SHPTypeMReal:
        gl.uniform1fv(location, numbers, reals);
        break;
    case ShaderParameter::SHPTypeVec2f:
    case ShaderParameter::SHPTypeMVec2f:
        gl.uniform2fv(location, numbers / 2, reals);
        break;
    case ShaderParameter::SHPTypeVec3f:
    case ShaderParameter::SHPTypeMVec3f:
        gl.uniform3fv(location, numbers / 3, reals);
        break;
    case ShaderParameter::SHPTypeVec4f:
    case ShaderParameter::SHPTypeMVec4f:
        gl.uniform4fv(location, numbers / 4, reals);
        break;
    case ShaderParameter::SHPTypeMatrix:
    case ShaderParameter::SHPTypeMMatrix:
        gl.uniformMatrix4fv(location, numbers / 16, GL_FALSE, reals);
        break;
    default:
        break;
    }
}

OSG_END_NAMESPACE
