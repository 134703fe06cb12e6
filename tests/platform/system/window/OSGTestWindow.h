#ifndef _OSGTESTWINDOW_H_
#define _OSGTESTWINDOW_H_

/// \file
/// A window that can do without GL, or with functions put in the place of GL's.

#include <map>
#include <string>

#include <OpenSG/OSGTestWindowBase.h>

OSG_BEGIN_NAMESPACE

/// The switches are static: a test sets them ahead of the window's first frame, and `reset` at its end.
class TestWindow : public TestWindowBase
{
  public:
    typedef TestWindowBase Inherited;

    static bool withoutGL;                                       ///< no context at all
    static std::string extensions;                               ///< what it has then
    static std::string version;
    static std::map<std::string, GLExtensionFunction> functions; ///< ahead of GL's own
    static int resized;                                          ///< calls of resizeGL

    static void reset()
    {
        withoutGL = false;
        extensions.clear();
        version.clear();
        functions.clear();
        resized = 0;
    }

    bool activate() override { return withoutGL || Inherited::activate(); }
    bool deactivate() override { return withoutGL || Inherited::deactivate(); }
    bool isActive() override { return withoutGL || Inherited::isActive(); }
    bool swap() override { return withoutGL || Inherited::swap(); }

  protected:
    TestWindow() = default;
    TestWindow(const TestWindow &source) : Inherited(source) {}
    ~TestWindow() override = default;

    GLExtensionFunction getFunctionByName(const Char8 *name) override
    {
        const auto found = functions.find(name);
        if(found != functions.end())
            return found->second;
        return withoutGL ? nullptr : Inherited::getFunctionByName(name);
    }
    std::string getExtensionString() override
    {
        return withoutGL ? extensions : Inherited::getExtensionString();
    }
    std::string getVersionString() override { return withoutGL ? version : Inherited::getVersionString(); }
    void resizeGL() override
    {
        ++resized;
        if(!withoutGL)
            Inherited::resizeGL();
    }

  private:
    friend class FieldContainer;
    friend class TestWindowBase;

    static void initMethod() {}
};

inline bool TestWindow::withoutGL = false;
inline std::string TestWindow::extensions;
inline std::string TestWindow::version;
inline std::map<std::string, Window::GLExtensionFunction> TestWindow::functions;
inline int TestWindow::resized = 0;

OSG_END_NAMESPACE

#endif
