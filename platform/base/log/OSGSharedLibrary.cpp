/// \file
/// A shared library opened at run time.

#include "OSGSharedLibrary.h"

#include <dlfcn.h>

OSG_BEGIN_NAMESPACE

SharedLibrary::SharedLibrary(const Char8 *name)
{
    open(name);
}

SharedLibrary::~SharedLibrary()
{
    close();
}

bool SharedLibrary::open(const Char8 *name)
{
    // The name may be our own getName(), which close() and the assignment would change.
    const std::string wanted = name != nullptr ? name : "";
    close();
    _name = wanted;
    _handle = dlopen(_name.empty() ? nullptr : _name.c_str(), RTLD_LAZY | RTLD_LOCAL);
    return _handle != nullptr;
}

bool SharedLibrary::close()
{
    if(_handle == nullptr)
        return false;
    const bool closed = dlclose(_handle) == 0;
    _handle = nullptr;
    return closed;
}

bool SharedLibrary::isOpen() const
{
    return _handle != nullptr;
}

AnonSymbolHandle SharedLibrary::getSymbol(const Char8 *name)
{
    if(_handle == nullptr || name == nullptr)
        return nullptr;
    return dlsym(_handle, name);
}

const Char8 *SharedLibrary::getName() const
{
    return _name.empty() ? nullptr : _name.c_str();
}

OSG_END_NAMESPACE
