#ifndef _OSGGLFWWINDOWLISTENER_H_
#define _OSGGLFWWINDOWLISTENER_H_

/// \file
/// What a person does to a window, as its listener is told.

#include <string>
#include <vector>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// Derive from it, override what matters, and hand it to GLFWWindow::setListener. All operations are called
/// on the main thread, within GLFWWindow::pollEvents or waitEvents, without a current context. They may do with
/// the window what they like; a window that loses its last reference here closes when they are through.
///
/// Positions are in pixels of the framebuffer, (0, 0) the upper left corner, y downwards; while a button is
/// held they may lie outside of the window.
class OSG_WINDOWGLFW_DLLMAPPING GLFWWindowListener
{
  public:
    virtual ~GLFWWindowListener() = default;

    /// The framebuffer has another size; the window's fields hold it already.
    virtual void resized(Int32 /*width*/, Int32 /*height*/) {}

    /// The pointer moved.
    virtual void mouseMoved(Real64 /*x*/, Real64 /*y*/) {}
    /// `button` is a GLFWWindow::Button, `modifiers` a set of GLFWWindow::Modifier.
    virtual void mouseButton(Int32 /*button*/, bool /*pressed*/, Real64 /*x*/, Real64 /*y*/,
                             Int32 /*modifiers*/)
    {
    }
    /// One notch of a wheel is 1; dy is positive away from the person, dx to the left.
    virtual void scrolled(Real64 /*dx*/, Real64 /*dy*/, Real64 /*x*/, Real64 /*y*/) {}

    /// `key` is a GLFWWindow::Key, named after its place on an American keyboard; `repeated` comes with
    /// `pressed` only.
    virtual void key(Int32 /*key*/, bool /*pressed*/, bool /*repeated*/, Int32 /*modifiers*/) {}
    /// A character was typed, a Unicode code point, with the person's own keyboard layout.
    virtual void character(UInt32 /*codepoint*/) {}

    /// Files were dropped on the window: absolute paths, in UTF-8.
    virtual void dropped(const std::vector<std::string> & /*files*/) {}

    /// The person wants the window closed. shouldClose is true by now; setShouldClose(false) refuses.
    virtual void closeRequested() {}
    /// What the window shows was damaged: it is to be drawn again.
    virtual void refreshed() {}

  protected:
    GLFWWindowListener() = default;
    GLFWWindowListener(const GLFWWindowListener &) = default;
    GLFWWindowListener &operator=(const GLFWWindowListener &) = default;
};

OSG_END_NAMESPACE

#endif
