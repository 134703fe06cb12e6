#ifndef _OSGSCENEFILEHANDLER_H_
#define _OSGSCENEFILEHANDLER_H_

/// \file
/// Finds the format of a scene file and reads scenes through it.

#include <list>
#include <string>

#include "OSGNodeFields.h"
#include "OSGSceneFileType.h"

OSG_BEGIN_NAMESPACE

/// The process's scene formats. Reading may happen on any thread; formats are added ahead of that.
class OSG_SYSTEMLIB_DLLMAPPING SceneFileHandler
{
  public:
    /// What a host may tell of a format.
    struct Format
    {
        std::string name;                ///< "glTF"
        std::list<std::string> suffixes; ///< "gltf", "glb"
        bool built = true;               ///< whether this build reads it
        std::string library;             ///< what reads it, or what the build was made without; may be empty
    };

    static SceneFileHandler &the();

    /// A new tree without a reference, as makeScene builds it, or NullFC. What fails logs exactly one warning
    /// that names the file and the fault; what was left out is told in one notice each.
    NodePtr read(const Char8 *fileName);

    /// The format with the longest suffix that ends the file name, in letters of either case; a suffix alone
    /// is enough. Null where there is none, or for null.
    SceneFileType *getFileType(const Char8 *fileNameOrSuffix) const;
    /// All suffixes, in the order of adding.
    std::list<std::string> getSuffixList() const;
    /// All formats, those that this build lacks among them, in the order of adding.
    std::list<Format> getFormats() const;

    /// Adds a format, which isn't owned. False, and nothing added, where there is one of that name.
    bool addSceneFileType(SceneFileType &fileType);

  private:
    SceneFileHandler();

    std::list<SceneFileType *> _types;
};

OSG_END_NAMESPACE

#endif
