/// \file
/// The way of a file through checks, assimp and conversion.

#include "OSGAssimpReader.h"

#include <assimp/BaseImporter.h>
#include <assimp/Importer.hpp>
#include <assimp/importerdesc.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <exception>
#include <memory>

#include "OSGAssimpConversion.h"
#include "OSGAssimpFiles.h"
#include "OSGGltfCleaner.h"
#include "OSGPixelBuffer.h"
#include "OSGSceneFileChecks.h"

OSG_BEGIN_NAMESPACE

namespace
{

const Char8 *suffixOf(const std::string &format)
{
    return format == "glTF" ? "gltf" : format == "OBJ" ? "obj" : format == "PLY" ? "ply" : "stl";
}

/// Takes all importers but the format's own away, so that no damaged file is taken for one of another kind.
void keepImporter(Assimp::Importer &importer, const std::string &format)
{
    // The one of glTF 1 has the same suffix; the cleaner lets only glTF 2 through.
    const std::string suffix = suffixOf(format);
    for(std::size_t i = importer.GetImporterCount(); i-- > 0;)
    {
        const aiImporterDesc *about = importer.GetImporterInfo(i);
        const std::string all = std::string(" ") + (about ? about->mFileExtensions : "") + " ";
        if(all.find(" " + suffix + " ") != std::string::npos)
            continue;
        // Whoever takes an importer out owns it.
        const std::unique_ptr<Assimp::BaseImporter> other(importer.GetImporter(i));
        importer.UnregisterLoader(other.get());
    }
}

/// Words in one line.
std::string inOneLine(std::string words)
{
    while(!words.empty() && (words.back() == '\n' || words.back() == '\r' || words.back() == ' '))
        words.pop_back();
    std::replace_if(
        words.begin(), words.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return words;
}

/// What stands in the file, brought to what assimp may see.
bool prepare(const std::string &format, const std::string &fileName, std::vector<UInt8> &bytes,
             std::vector<std::string> &textures, std::string &error)
{
    std::string fault;
    if(!readFileBytes(fileName, bytes, error))
        return false;
    if(format == "glTF")
        fault = cleanGltf(bytes, textures);
    else if(format == "PLY")
        fault = findPlyFault(bytes.data(), bytes.size());
    else if(format == "STL")
        fault = findStlFault(bytes.data(), bytes.size());
    if(!fault.empty())
        error = fileName + ": " + fault;
    return fault.empty();
}

void tellTextures(std::vector<std::string> textures, const std::string &fileName, SceneData &scene)
{
    if(textures.empty())
        return;
    std::sort(textures.begin(), textures.end());
    textures.erase(std::unique(textures.begin(), textures.end()), textures.end());
    std::string line = fileName + ": textures are not read: ";
    for(std::size_t i = 0; i < textures.size(); ++i)
        line += (i == 0 ? "" : ", ") + inOneLine(textures[i]);
    scene.notices.push_back(line);
}

bool readScene(const std::string &format, const std::string &fileName, SceneData &scene, std::string &error)
{
    std::vector<UInt8> bytes;
    std::vector<std::string> textures;
    if(!prepare(format, fileName, bytes, textures, error))
        return false;

    Assimp::Importer importer;
    keepImporter(importer, format);
    AssimpFiles *const files = new AssimpFiles(fileName, bytes, format == "OBJ");
    importer.SetIOHandler(files); // which owns it from here on
    const aiScene *source = importer.ReadFile(fileName, aiProcess_ValidateDataStructure);
    std::string fault = source ? findImportFault(*source) : inOneLine(importer.GetErrorString());
    if(fault.empty())
    {
        // Only now, as it relies on indices and positions.
        source = importer.ApplyPostProcessing(aiProcess_Triangulate);
        fault =
            source ? convertScene(*source, format == "glTF", scene) : inOneLine(importer.GetErrorString());
    }
    if(!source && fault.empty())
        fault = "assimp can't read it";
    if(fault.empty())
        fault = findSceneFault(scene);
    if(!fault.empty())
    {
        error = fileName + ": " + fault;
        return false;
    }
    for(std::string &notice : scene.notices)
        notice = fileName + ": " + notice;
    // Others were tried in its place.
    if(!files->missing().empty())
        scene.notices.push_back(fileName + ": needs " + inOneLine(files->missing().front()) +
                                ", which can't be opened");
    textures.insert(textures.end(), files->textures().begin(), files->textures().end());
    tellTextures(textures, fileName, scene);
    return true;
}

} // namespace

bool readAssimpScene(const std::string &format, const std::string &fileName, SceneData &scene,
                     std::string &error)
{
    // What assimp, the JSON parser and the memory throw ends here.
    try
    {
        return readScene(format, fileName, scene, error);
    }
    catch(const std::exception &thrown)
    {
        error = fileName + ": " + inOneLine(thrown.what());
    }
    catch(...)
    {
        error = fileName + ": assimp can't read it";
    }
    return false;
}

OSG_END_NAMESPACE
