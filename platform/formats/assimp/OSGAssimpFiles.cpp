/// \file
/// Files for assimp.

#include "OSGAssimpFiles.h"

#include <assimp/MemoryIOWrapper.h>

#include <algorithm>

#include "OSGMtlCleaner.h"
#include "OSGPixelBuffer.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// No device, on which reading would never end, and nothing too large.
bool mayOpen(const char *name)
{
    std::uint64_t size = 0;
    std::string error;
    return regularFileSize(name, size, error) && size <= DefaultMaxPixelBytes;
}

} // namespace

AssimpFiles::AssimpFiles(const std::string &fileName, const std::vector<UInt8> &bytes, bool isObj)
    : _fileName(fileName), _bytes(bytes), _isObj(isObj)
{
}

bool AssimpFiles::Exists(const char *name) const
{
    return name && (name == _fileName || mayOpen(name));
}

Assimp::IOStream *AssimpFiles::Open(const char *name, const char *mode)
{
    if(!name || !mode || mode[0] != 'r')
        return nullptr;
    if(name == _fileName)
        return new Assimp::MemoryIOStream(_bytes.data(), _bytes.size());
    if(_isObj)
    {
        std::vector<UInt8> bytes;
        std::string error;
        if(readFileBytes(name, bytes, error))
        {
            _cleaned.push_back(cleanMtl(bytes, _textures));
            return new Assimp::MemoryIOStream(reinterpret_cast<const uint8_t *>(_cleaned.back().data()),
                                              _cleaned.back().size());
        }
    }
    Assimp::IOStream *stream = mayOpen(name) ? DefaultIOSystem::Open(name, mode) : nullptr;
    if(!stream && std::find(_missing.begin(), _missing.end(), name) == _missing.end())
        _missing.push_back(name);
    return stream;
}

OSG_END_NAMESPACE
