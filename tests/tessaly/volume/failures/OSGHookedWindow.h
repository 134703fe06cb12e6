#ifndef _OSGHOOKEDWINDOW_H_
#define _OSGHOOKEDWINDOW_H_

/// \file
/// A window with functions put in the place of GL's.

#include <map>
#include <string>

#include <OpenSG/OSGHookedWindowBase.h>

OSG_BEGIN_NAMESPACE

/// The functions are static: a test sets them ahead of the window's first frame, and clears them at its end.
class HookedWindow : public HookedWindowBase
{
  public:
    typedef HookedWindowBase Inherited;

    static std::map<std::string, GLExtensionFunction> functions; ///< ahead of GL's own; null: missing

  protected:
    HookedWindow() = default;
    HookedWindow(const HookedWindow &source) : Inherited(source) {}
    ~HookedWindow() override = default;

    GLExtensionFunction getFunctionByName(const Char8 *name) override
    {
        const auto found = functions.find(name);
        return found != functions.end() ? found->second : Inherited::getFunctionByName(name);
    }

  private:
    friend class FieldContainer;
    friend class HookedWindowBase;

    static void initMethod() {}
};

inline std::map<std::string, Window::GLExtensionFunction> HookedWindow::functions;

OSG_END_NAMESPACE

#endif
