#ifndef _OSGSHAREDLIBRARY_H_
#define _OSGSHAREDLIBRARY_H_

/// \file
/// A shared library opened at run time.

#include <string>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// The address of a symbol.
using AnonSymbolHandle = void *;

/// One shared library, opened by name; its symbols stay private to whom looks them up. It logs nothing:
/// callers say in their own words what could not be opened. One object is for one thread at a time.
class OSG_BASELIB_DLLMAPPING SharedLibrary
{
  public:
    SharedLibrary() = default;
    /// Tries to open at once; isOpen() says whether it worked.
    explicit SharedLibrary(const Char8 *name);
    /// Closes.
    ~SharedLibrary();
    SharedLibrary(const SharedLibrary &) = delete;
    SharedLibrary &operator=(const SharedLibrary &) = delete;

    /// Opens a file by path, or by name along the loader's path; null or "" stands for the program itself. An
    /// open library is closed first. Returns whether it is open now; the name is kept in both cases.
    bool open(const Char8 *name);

    /// Gives the library back; all its symbols are invalid then. False if it isn't open or the system
    /// refuses.
    bool close();

    /// Whether a library is open.
    bool isOpen() const;

    /// Null if the library isn't open or has no such symbol.
    AnonSymbolHandle getSymbol(const Char8 *name);

    /// The name that open() got last; null for the program itself and before the first open.
    const Char8 *getName() const;

  private:
    std::string _name;
    void *_handle = nullptr;
};

OSG_END_NAMESPACE

#endif
