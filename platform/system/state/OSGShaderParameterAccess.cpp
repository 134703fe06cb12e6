#include "OSGShaderParameterAccess.h"

OSG_BEGIN_NAMESPACE

ShaderParameterAccess::ShaderParameterAccess(MFShaderParameterPtr &parameters) : _parameters(parameters)
{
    updateMap();
}

void ShaderParameterAccess::updateMap()
{
    _indices.clear();
    for(UInt32 i = 0; i < _parameters.size(); ++i)
    {
        if(_parameters[i] != NullFC)
            _indices.emplace(_parameters[i]->getName(), i);
    }
}

ShaderParameterPtr ShaderParameterAccess::find(const char *name) const
{
    const auto found = _indices.find(name);
    // The field may have been cleared behind the map's back.
    return found == _indices.end() || found->second >= _parameters.size() ? ShaderParameterPtr()
                                                                          : _parameters[found->second];
}

void ShaderParameterAccess::append(const ShaderParameterPtr &parameter)
{
    addRefCP(parameter);
    _parameters.push_back(parameter);
    updateMap();
}

bool ShaderParameterAccess::subParameter(const char *name)
{
    if(name == nullptr)
        return false;
    const ShaderParameterPtr found = find(name);
    if(found == NullFC)
        return false;
    _parameters.erase(_parameters.find(found));
    updateMap();
    subRefCP(found);
    return true;
}

OSG_END_NAMESPACE
