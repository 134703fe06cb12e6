#ifndef _OSGASSIMPFILES_H_
#define _OSGASSIMPFILES_H_

/// \file
/// The files that assimp sees.

#include <assimp/DefaultIOSystem.h>

#include <list>
#include <string>
#include <vector>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// One file from memory, and of all others regular ones of 4 GiB at most, for reading. Material files of OBJ
/// are cleaned on the way.
class AssimpFiles : public Assimp::DefaultIOSystem
{
  public:
    /// `bytes`, the contents of `fileName`, must stay. `isObj`: the others are its material files.
    AssimpFiles(const std::string &fileName, const std::vector<UInt8> &bytes, bool isObj);

    bool Exists(const char *name) const override;
    Assimp::IOStream *Open(const char *name, const char *mode = "rb") override;

    /// The names of files that couldn't be opened, each once.
    const std::vector<std::string> &missing() const { return _missing; }
    /// The names of the textures in material files that were opened.
    const std::vector<std::string> &textures() const { return _textures; }

  private:
    std::string _fileName;
    const std::vector<UInt8> &_bytes;
    bool _isObj;
    std::vector<std::string> _missing, _textures;
    std::list<std::string> _cleaned; ///< what streams in use read from
};

OSG_END_NAMESPACE

#endif
