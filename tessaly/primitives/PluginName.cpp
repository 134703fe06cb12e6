#include "PluginName.h"

namespace tessaly
{

PluginName splitPluginName(const std::string &text)
{
    const std::string::size_type mark = text.rfind('#');
    if(mark == std::string::npos)
        return {text, text};
    return {text.substr(0, mark), text.substr(mark + 1)};
}

} // namespace tessaly
