#ifndef _OSGSHADERPARAMETERACCESS_H_
#define _OSGSHADERPARAMETERACCESS_H_

/// \file
/// Shader parameters in a field, found by their names.

#include <string>
#include <unordered_map>

#include "OSGLog.h"
#include "OSGShaderParameter.h"

OSG_BEGIN_NAMESPACE

/// Reads and writes the parameters in one field by name. Does not own the field, which has to outlive it,
/// and serves the aspect that the field is of. After a change of the field by others, updateMap has to be
/// called.
class OSG_SYSTEMLIB_DLLMAPPING ShaderParameterAccess
{
  public:
    /// Works on that field, which has to outlive it.
    explicit ShaderParameterAccess(MFShaderParameterPtr &parameters);
    ShaderParameterAccess(const ShaderParameterAccess &) = delete;
    ShaderParameterAccess &operator=(const ShaderParameterAccess &) = delete;

    /// Gives the parameter of that name the value, in an edit of its own on the parameter. Without one,
    /// appends a new ParameterType, on which the field then holds a reference; the edit of the field is the
    /// caller's. False for a null name, and, with a warning, where the parameter is of another type.
    template <class ParameterType, class ValueType>
    bool setParameter(const char *name, const ValueType &value);
    /// The value of the parameter of that name. False for a null name, and, with a warning, where there is
    /// none or it is of another type; `value` is then as it was.
    template <class ParameterType, class ValueType>
    bool getParameter(const char *name, ValueType &value);
    /// Removes the parameter of that name; false if there is none.
    bool subParameter(const char *name);

    /// Reads the names of the field's parameters anew. Of two with one name the first counts.
    void updateMap();

  private:
    /// NullFC where there is none.
    ShaderParameterPtr find(const char *name) const;
    void append(const ShaderParameterPtr &parameter);

    MFShaderParameterPtr &_parameters;
    std::unordered_map<std::string, UInt32> _indices;
};

template <class ParameterType, class ValueType>
inline bool ShaderParameterAccess::setParameter(const char *name, const ValueType &value)
{
    if(name == nullptr)
        return false;
    const ShaderParameterPtr found = find(name);
    if(found == NullFC)
    {
        const typename ParameterType::Ptr parameter = ParameterType::create();
        parameter->setName(name);
        parameter->setValue(value);
        endEditCP(parameter, ParameterType::NameFieldMask | ParameterType::ValueFieldMask);
        append(parameter);
        return true;
    }
    const typename ParameterType::Ptr parameter = ParameterType::Ptr::dcast(found);
    if(parameter == NullFC)
    {
        FWARNING(("ShaderParameterAccess::setParameter : Parameter '%s' has wrong type!\n", name));
        return false;
    }
    parameter->setValue(value);
    endEditCP(parameter, ParameterType::ValueFieldMask);
    return true;
}

template <class ParameterType, class ValueType>
inline bool ShaderParameterAccess::getParameter(const char *name, ValueType &value)
{
    if(name == nullptr)
        return false;
    const ShaderParameterPtr found = find(name);
    if(found == NullFC)
    {
        FWARNING(("ShaderParameterAccess::getParameter : Parameter '%s' doesn't exist!\n", name));
        return false;
    }
    const typename ParameterType::Ptr parameter = ParameterType::Ptr::dcast(found);
    if(parameter == NullFC)
    {
        FWARNING(("ShaderParameterAccess::getParameter : Parameter '%s' has wrong type!\n", name));
        return false;
    }
    value = parameter->getValue();
    return true;
}

OSG_END_NAMESPACE

#endif
