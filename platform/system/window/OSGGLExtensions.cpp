/// \file
/// The process-wide registry of GL extensions and functions.

#include "OSGGLExtensions.h"

#include <atomic>
#include <cctype>
#include <cstdlib>
#include <mutex>

OSG_BEGIN_NAMESPACE

namespace
{

struct Function
{
    std::string name;
    UInt32 extension;
    UInt32 version;
};

void addNames(const std::string &text, std::unordered_set<std::string> &names)
{
    const Char8 *const separators = " ,\t\n";
    std::size_t begin = text.find_first_not_of(separators);
    while(begin != std::string::npos)
    {
        const std::size_t end = text.find_first_of(separators, begin);
        names.insert(text.substr(begin, end - begin));
        begin = text.find_first_not_of(separators, end);
    }
}

struct Registry
{
    // Never destroyed: windows may outlive main's statics.
    static Registry &the()
    {
        static Registry *const registry = new Registry;
        return *registry;
    }

    Registry()
    {
        if(const Char8 *const text = std::getenv("OSG_MASKED_EXTENSIONS"))
            addNames(text, maskedByEnvironment);
    }

    bool isMasked(const std::string &name) const
    {
        return masked.count(name) != 0 || maskedByEnvironment.count(name) != 0;
    }

    std::mutex mutex;
    std::vector<std::string> extensions;
    std::vector<Function> functions;
    std::unordered_set<std::string> masked;
    std::unordered_set<std::string> maskedByEnvironment;
    std::atomic<UInt64> generation{1}; ///< grows with every change of the above
};

/// The name without its ARB or EXT, as the function is called once it is part of GL.
std::string coreName(const std::string &name)
{
    const std::size_t size = name.size();
    if(size > 3 && (name.compare(size - 3, 3, "ARB") == 0 || name.compare(size - 3, 3, "EXT") == 0))
        return name.substr(0, size - 3);
    return name;
}

} // namespace

UInt32 GLExtensionTable::registerExtension(const Char8 *name)
{
    if(name == nullptr || *name == '\0')
        return InvalidId;
    Registry &registry = Registry::the();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    for(std::size_t i = 0; i < registry.extensions.size(); ++i)
    {
        if(registry.extensions[i] == name)
            return UInt32(i);
    }
    registry.extensions.push_back(name);
    ++registry.generation;
    return UInt32(registry.extensions.size() - 1);
}

UInt32 GLExtensionTable::registerFunction(const Char8 *name, UInt32 extension, UInt32 version)
{
    if(name == nullptr || *name == '\0')
        return InvalidId;
    Registry &registry = Registry::the();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    for(std::size_t i = 0; i < registry.functions.size(); ++i)
    {
        const Function &function = registry.functions[i];
        if(function.name == name && function.extension == extension && function.version == version)
            return UInt32(i);
    }
    registry.functions.push_back({name, extension, version});
    ++registry.generation;
    return UInt32(registry.functions.size() - 1);
}

void GLExtensionTable::mask(const Char8 *name)
{
    if(name == nullptr)
        return;
    Registry &registry = Registry::the();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    registry.masked.insert(name);
    ++registry.generation;
}

void GLExtensionTable::unmaskAll()
{
    Registry &registry = Registry::the();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    registry.masked.clear();
    ++registry.generation;
}

void GLExtensionTable::load(const Context &context)
{
    if(_loaded)
        return;
    _loaded = true;
    addNames(context.extensions, _names);
    _version = parseVersion(context.version.c_str());
    _lookup = context.lookup;
    _generation = 0;
}

bool GLExtensionTable::hasExtension(UInt32 id)
{
    if(_generation != Registry::the().generation.load(std::memory_order_relaxed))
        resolve();
    return id < _extensions.size() && _extensions[id];
}

GLExtensionFunction GLExtensionTable::getFunction(UInt32 id)
{
    if(_generation != Registry::the().generation.load(std::memory_order_relaxed))
        resolve();
    return id < _functions.size() ? _functions[id] : nullptr;
}

void GLExtensionTable::resolve()
{
    if(!_loaded)
        return;
    Registry &registry = Registry::the();
    const std::lock_guard<std::mutex> lock(registry.mutex);

    _extensions.assign(registry.extensions.size(), false);
    for(std::size_t i = 0; i < _extensions.size(); ++i)
    {
        const std::string &name = registry.extensions[i];
        _extensions[i] = _names.count(name) != 0 && !registry.isMasked(name);
    }

    _functions.assign(registry.functions.size(), nullptr);
    for(std::size_t i = 0; i < _functions.size() && _lookup; ++i)
    {
        const Function &function = registry.functions[i];
        const bool inExtension = function.extension < _extensions.size() && _extensions[function.extension];
        const bool inVersion = function.version != NoVersion && _version >= function.version;
        if(inExtension)
            _functions[i] = _lookup(function.name.c_str());
        if(_functions[i] == nullptr && inVersion)
            _functions[i] = _lookup(coreName(function.name).c_str());
        if(_functions[i] == nullptr && inVersion)
            _functions[i] = _lookup(function.name.c_str());
    }
    _generation = registry.generation.load(std::memory_order_relaxed);
}

UInt32 GLExtensionTable::parseVersion(const Char8 *text)
{
    if(text == nullptr || std::isdigit(static_cast<unsigned char>(*text)) == 0)
        return 0;
    Char8 *end = nullptr;
    const unsigned long major = std::strtoul(text, &end, 10);
    if(major > 0xFF || *end != '.' || std::isdigit(static_cast<unsigned char>(end[1])) == 0)
        return 0;
    const unsigned long minor = std::strtoul(end + 1, nullptr, 10);
    return minor > 0xFF ? 0 : UInt32(major << 8 | minor);
}

OSG_END_NAMESPACE
