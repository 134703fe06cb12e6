/// \file
/// Scene files through a module.

#include "OSGSceneFileType.h"

#include <utility>

OSG_BEGIN_NAMESPACE

SceneFileType::SceneFileType(const std::string &name, std::list<std::string> suffixes)
    : _name(name), _suffixes(std::move(suffixes))
{
}

ModuleSceneFileType::ModuleSceneFileType(const std::string &name, std::list<std::string> suffixes,
                                         const FormatModule &module)
    : SceneFileType(name, std::move(suffixes)), _module(module)
{
}

bool ModuleSceneFileType::readFile(const std::string &fileName, SceneData &scene, std::string &error) const
{
    void *entry = loadFormatModule(_module, error);
    if(!entry)
    {
        error = fileName + ": " + error;
        return false;
    }
    return reinterpret_cast<ReadSceneFunction>(entry)(getName(), fileName, scene, error);
}

OSG_END_NAMESPACE
