#ifndef TESSALY_PRIMITIVES_PLUGINNAME_H
#define TESSALY_PRIMITIVES_PLUGINNAME_H

/// \file
/// The name by which a plug-in is asked for.

#include <string>

namespace tessaly
{

struct PluginName
{
    std::string library; ///< name of the file, without the suffix that is tried too
    std::string prefix;  ///< of the functions
};

/// Splits at the last "#"; without one the text is both.
PluginName splitPluginName(const std::string &text);

} // namespace tessaly

#endif
