#ifndef _OSGGLEXTENSIONS_H_
#define _OSGGLEXTENSIONS_H_

/// \file
/// GL extensions and functions: registered once per process, resolved for each window.

#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// A GL function, to be cast to its real type.
typedef void (*GLExtensionFunction)();

/// What one GL context offers of the registered extensions and functions. Registering and masking is for any
/// thread; a table is used by the thread that draws its window.
class OSG_SYSTEMLIB_DLLMAPPING GLExtensionTable
{
  public:
    static constexpr UInt32 InvalidId = 0x7FFFFFFF; ///< what is registered for nothing
    /// As a function's version: it belongs to its extension and to no GL version.
    static constexpr UInt32 NoVersion = 0xFFFF;

    /// What a context says of itself.
    struct Context
    {
        std::string extensions; ///< names separated by spaces
        std::string version;    ///< as GL_VERSION gives it, "4.5 ..."
        /// Finds a function in the context that is current.
        std::function<GLExtensionFunction(const Char8 *name)> lookup;
    };

    /// The id of an extension; the same for the same name. InvalidId for null and "".
    static UInt32 registerExtension(const Char8 *name);
    /// The id of a function. It is there where its extension is, and, unless `version` (0x0104 for 1.4) is
    /// NoVersion, also where GL is of that version; there a name that ends in ARB or EXT may stand for the
    /// one without. With InvalidId as extension and version 0 it is there always.
    static UInt32 registerFunction(const Char8 *name, UInt32 extension, UInt32 version);

    /// Makes an extension absent in all windows from their next frame or query on, for tests of fall-backs.
    /// The names in the environment variable OSG_MASKED_EXTENSIONS, separated by spaces or commas, are masked
    /// from the start on.
    static void mask(const Char8 *name);
    /// Takes back what `mask` did; what the environment masks stays.
    static void unmaskAll();

    /// Takes in what the context offers, once.
    void load(const Context &context);
    /// Whether it has been.
    bool isLoaded() const { return _loaded; }

    /// False for ids that are not registered, masked extensions, and before load.
    bool hasExtension(UInt32 id);
    /// Null where the function is not there.
    GLExtensionFunction getFunction(UInt32 id);
    /// 0x0405 for 4.5; 0 before load.
    UInt32 getVersion() const { return _version; }

    /// "4.5 and more" as 0x0405; 0 for what is no version.
    static UInt32 parseVersion(const Char8 *text);

  private:
    void resolve();

    bool _loaded = false;
    UInt32 _version = 0;
    std::unordered_set<std::string> _names;
    std::function<GLExtensionFunction(const Char8 *name)> _lookup;

    UInt64 _generation = 0; ///< of the registry, as resolved below
    std::vector<bool> _extensions;
    std::vector<GLExtensionFunction> _functions;
};

OSG_END_NAMESPACE

#endif
