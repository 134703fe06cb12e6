/// \file
/// The table of the modules, which the build fills in by definitions of this file alone, and their loading.

#include "OSGFormatModule.h"

#include <dlfcn.h>
#include <unistd.h>

#include <map>
#include <mutex>

OSG_BEGIN_NAMESPACE

namespace
{

#ifdef TESSALY_HAS_TIFF
constexpr bool hasTIFF = true;
#else
constexpr bool hasTIFF = false;
#endif
#ifdef TESSALY_HAS_NRRD
constexpr bool hasNRRD = true;
#else
constexpr bool hasNRRD = false;
#endif
#ifdef TESSALY_HAS_DICOM
constexpr bool hasDICOM = true;
#else
constexpr bool hasDICOM = false;
#endif
#ifdef TESSALY_HAS_ASSIMP
constexpr bool hasASSIMP = true;
#else
constexpr bool hasASSIMP = false;
#endif

constexpr FormatModule modules[] = {{"TIFF", "TIFF images", "libtiff", hasTIFF},
                                    {"NRRD", "NRRD volumes", "teem", hasNRRD},
                                    {"DICOM", "DICOM series", "GDCM", hasDICOM},
                                    {"ASSIMP", "meshes", "assimp", hasASSIMP}};

/// The folder that this library was loaded from.
std::string libraryFolder()
{
    Dl_info here;
    if(dladdr(reinterpret_cast<void *>(&loadFormatModule), &here) == 0 || !here.dli_fname)
        return ".";
    const std::string path = here.dli_fname;
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

/// A loader's words in one line.
std::string loaderFault()
{
    const char *words = dlerror();
    std::string line = words ? words : "unknown fault";
    const std::size_t end = line.find('\n');
    return end == std::string::npos ? line : line.substr(0, end);
}

} // namespace

const FormatModule *findFormatModule(const std::string &name)
{
    for(const FormatModule &module : modules)
        if(name == module.name)
            return &module;
    return nullptr;
}

void *loadFormatModule(const FormatModule &module, std::string &error)
{
    static std::mutex mutex;
    static std::map<std::string, void *> loaded;

    if(!module.built)
    {
        error = std::string("this build does not read ") + module.formats + ", it was configured without " +
                module.library;
        return nullptr;
    }
    const std::lock_guard<std::mutex> lock(mutex);
    const auto known = loaded.find(module.name);
    if(known != loaded.end())
        return known->second;

    const std::string file = std::string("OSGFormats/OSGFormat") + module.name + ".so";
    const std::string path = libraryFolder() + "/" + file;
    if(::access(path.c_str(), F_OK) != 0)
    {
        error = std::string(module.formats) + " need " + file + ", which is not installed";
        return nullptr;
    }
    // Local, so that what the library brings along meets no symbol of the host.
    void *library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    void *entry = library ? dlsym(library, (std::string("osgFormat") + module.name).c_str()) : nullptr;
    if(!entry)
    {
        error = std::string(module.formats) + " need " + file + ", which can't be loaded: " + loaderFault();
        return nullptr;
    }
    loaded[module.name] = entry;
    return entry;
}

OSG_END_NAMESPACE
