/// \file
/// Between scene files and the scene graph.

#include "OSGSceneFileHandler.h"

#include <algorithm>
#include <cctype>

#include "OSGLog.h"
#include "OSGSceneMaker.h"

OSG_BEGIN_NAMESPACE

namespace
{

NodePtr refuse(const std::string &line)
{
    FWARNING(("%s\n", line.c_str()));
    return NullFC;
}

/// Whether the name is the suffix, or ends in a dot and the suffix.
bool endsIn(const std::string &name, const std::string &suffix)
{
    if(name.size() < suffix.size() ||
       (name.size() > suffix.size() && name[name.size() - suffix.size() - 1] != '.'))
        return false;
    return std::equal(suffix.begin(), suffix.end(), name.end() - std::ptrdiff_t(suffix.size()),
                      [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
}

} // namespace

SceneFileHandler::SceneFileHandler()
{
    const FormatModule &module = *findFormatModule("ASSIMP");
    static ModuleSceneFileType glTF("glTF", {"gltf", "glb"}, module);
    static ModuleSceneFileType obj("OBJ", {"obj"}, module);
    static ModuleSceneFileType ply("PLY", {"ply"}, module);
    static ModuleSceneFileType stl("STL", {"stl"}, module);
    for(SceneFileType *type : {&glTF, &obj, &ply, &stl})
        addSceneFileType(*type);
}

SceneFileHandler &SceneFileHandler::the()
{
    static SceneFileHandler handler;
    return handler;
}

bool SceneFileHandler::addSceneFileType(SceneFileType &fileType)
{
    for(const SceneFileType *type : _types)
        if(type->getName() == fileType.getName())
            return false;
    _types.push_back(&fileType);
    return true;
}

SceneFileType *SceneFileHandler::getFileType(const Char8 *fileNameOrSuffix) const
{
    SceneFileType *best = nullptr;
    std::size_t length = 0;
    if(fileNameOrSuffix)
        for(SceneFileType *type : _types)
            for(const std::string &suffix : type->getSuffixList())
                if(suffix.size() > length && endsIn(fileNameOrSuffix, suffix))
                {
                    best = type;
                    length = suffix.size();
                }
    return best;
}

std::list<std::string> SceneFileHandler::getSuffixList() const
{
    std::list<std::string> all;
    for(const SceneFileType *type : _types)
        all.insert(all.end(), type->getSuffixList().begin(), type->getSuffixList().end());
    return all;
}

std::list<SceneFileHandler::Format> SceneFileHandler::getFormats() const
{
    std::list<Format> all;
    for(const SceneFileType *type : _types)
    {
        const FormatModule *module = type->getModule();
        all.push_back({type->getName(), type->getSuffixList(), !module || module->built,
                       module ? module->library : ""});
    }
    return all;
}

NodePtr SceneFileHandler::read(const Char8 *fileName)
{
    if(!fileName)
        return refuse("no name of a scene file");
    const SceneFileType *type = getFileType(fileName);
    if(!type)
        return refuse(std::string(fileName) + ": no scene format has this name");
    SceneData scene;
    std::string error;
    if(!type->readFile(fileName, scene, error))
        return refuse(error);
    const NodePtr root = makeScene(scene, fileName);
    if(root != NullFC)
        for(const std::string &notice : scene.notices)
            FNOTICE(("%s\n", notice.c_str()));
    return root;
}

OSG_END_NAMESPACE
