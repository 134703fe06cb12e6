/// \file
/// A window over somebody else's GL context.

#include "OSGPassiveWindow.h"

#include <dlfcn.h>

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void PassiveWindow::initMethod() {}

PassiveWindow::PassiveWindow() = default;

PassiveWindow::PassiveWindow(const PassiveWindow &source) : Inherited(source) {}

PassiveWindow::~PassiveWindow() = default;

namespace
{

typedef PassiveWindow::GLExtensionFunction Function;
typedef Function (*Lookup)(const Char8 *name);

/// What the process has loaded under that name, or null.
template <class PointerT>
PointerT loaded(const Char8 *name)
{
    return reinterpret_cast<PointerT>(dlsym(RTLD_DEFAULT, name));
}

} // namespace

void PassiveWindow::init() {}

bool PassiveWindow::activate()
{
    return true;
}

bool PassiveWindow::deactivate()
{
    return true;
}

bool PassiveWindow::isActive()
{
    return true;
}

bool PassiveWindow::swap()
{
    return true;
}

PassiveWindow::GLExtensionFunction PassiveWindow::getFunctionByName(const Char8 *name)
{
    // The context is of EGL or of GLX: who has one current is asked first.
    typedef void *(*CurrentContext)();
    const auto eglCurrent = loaded<CurrentContext>("eglGetCurrentContext");
    const auto eglLookup = loaded<Lookup>("eglGetProcAddress");
    if(eglCurrent != nullptr && eglLookup != nullptr && eglCurrent() != nullptr)
        return eglLookup(name);
    if(const auto glxLookup = loaded<Lookup>("glXGetProcAddressARB"))
        return glxLookup(name);
    return loaded<Function>(name);
}

void PassiveWindow::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PassiveWindow::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PassiveWindow NI" << std::endl;
}

OSG_END_NAMESPACE
