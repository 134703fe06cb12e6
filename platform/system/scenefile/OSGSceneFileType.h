#ifndef _OSGSCENEFILETYPE_H_
#define _OSGSCENEFILETYPE_H_

/// \file
/// What a plug-in for one format of scene files is, and the one that a module brings.

#include <list>
#include <string>

#include "OSGFormatModule.h"
#include "OSGSceneData.h"

OSG_BEGIN_NAMESPACE

/// A format of scene files, by the ends of file names. A plug-in derives from this and hands one object,
/// which lives to the end of the process, to SceneFileHandler::addSceneFileType. Its operations may be called
/// on any thread. They log nothing: what went wrong is one line in `error`, without a line end, that names
/// the file and the fault.
class OSG_SYSTEMLIB_DLLMAPPING SceneFileType
{
  public:
    virtual ~SceneFileType() = default;
    SceneFileType(const SceneFileType &) = delete;
    SceneFileType &operator=(const SceneFileType &) = delete;

    /// "glTF"
    const std::string &getName() const { return _name; }
    /// In small letters, without the dot ahead: "gltf", "glb".
    const std::list<std::string> &getSuffixList() const { return _suffixes; }
    /// The module that reads the format; null where none is needed.
    virtual const FormatModule *getModule() const { return nullptr; }

    /// Reads a file into an empty scene.
    virtual bool readFile(const std::string &fileName, SceneData &scene, std::string &error) const = 0;

  protected:
    /// The suffixes in small letters, without the dot ahead.
    SceneFileType(const std::string &name, std::list<std::string> suffixes);

  private:
    std::string _name;
    std::list<std::string> _suffixes;
};

/// The module's function osgFormat<name>: reads a file of the format, which is one of its types' names.
typedef bool (*ReadSceneFunction)(const std::string &format, const std::string &fileName, SceneData &scene,
                                  std::string &error);

/// A format that a module reads, which is loaded with the first file.
class OSG_SYSTEMLIB_DLLMAPPING ModuleSceneFileType : public SceneFileType
{
  public:
    /// `module` must stay.
    ModuleSceneFileType(const std::string &name, std::list<std::string> suffixes, const FormatModule &module);

    const FormatModule *getModule() const override { return &_module; }
    bool readFile(const std::string &fileName, SceneData &scene, std::string &error) const override;

  private:
    const FormatModule &_module;
};

OSG_END_NAMESPACE

#endif
