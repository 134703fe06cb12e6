#ifndef _OSGEGLWINDOW_H_
#define _OSGEGLWINDOW_H_

/// \file
/// A window that is never shown.

#include "OSGEGLWindowBase.h"

OSG_BEGIN_NAMESPACE

class EGLContextHandle;

/// Set the size, call init, render. The framebuffer has 8 bits each of red, green, blue and alpha, 24 of
/// depth and 8 of stencil. The context goes with the window; by then it must not be current on another
/// thread.
class OSG_WINDOWEGL_DLLMAPPING EGLWindow : public EGLWindowBase
{
  public:
    typedef EGLWindowBase Inherited;

    /// Opens the context. If that can't be, one fatal line says why, and the window draws nothing; init may
    /// be called again. A window that is open stays as it is.
    void init() override;
    bool activate() override;
    bool deactivate() override;
    bool isActive() override;
    bool swap() override;

    /// Whether init has opened the context.
    bool isOpen() const;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    EGLWindow();
    EGLWindow(const EGLWindow &source);
    ~EGLWindow() override;

    void onCreate(const EGLWindow *source = nullptr);
    void onDestroy() override;

    GLExtensionFunction getFunctionByName(const Char8 *name) override;
    void resizeGL() override;

  private:
    friend class FieldContainer;
    friend class EGLWindowBase;

    static void initMethod();

    EGLContextHandle *_context = nullptr; ///< one for the copies of all aspects
};

OSG_END_NAMESPACE

#endif
