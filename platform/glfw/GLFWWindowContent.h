#ifndef GLFWWINDOWCONTENT_H
#define GLFWWINDOWCONTENT_H

/// \file
/// What belongs to the windows of GLFW behind the containers, and GLFW's own life.

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "OSGGLFWWindow.h"

OSG_BEGIN_NAMESPACE

/// A place in pixels of a framebuffer.
struct GLFWWindowPlace
{
    double x = 0;
    double y = 0;
};

/// What belongs to one window of GLFW, of which it is the user pointer. Lives until that is closed, which may
/// be later than the end of the container.
struct GLFWWindowContent
{
    // Any thread.
    std::atomic<::GLFWwindow *> handle{nullptr};
    std::atomic<std::thread::id> holder{std::thread::id()}; ///< where the context is current
    std::atomic<bool> iconified{false};
    std::atomic<bool> empty{false}; ///< the framebuffer has no pixels, as some systems minimise
    std::atomic<Int32> swapInterval{1};

    // The thread that swaps.
    Int32 appliedInterval = -1;

    // The main thread.
    GLFWWindowPtr self; ///< no reference; null once the container has gone
    GLFWWindowListener *listener = nullptr;
    std::string title;
    Int32 width = 0; ///< of the framebuffer, as GLFW told last or was asked for since
    Int32 height = 0;
    Int32 limit[2] = {0, 0}; ///< the largest width and height that the driver draws into
    GLFWWindowPlace cursor;  ///< where the last event had it; asked now, it may be further on already

    /// Opens the window and starts GLFW where it isn't up. On failure `error` says why and all is as before.
    /// Leaves no context current.
    bool open(UInt32 wantedWidth, UInt32 wantedHeight, std::string &error);
    /// Gives the window the size of the container's fields; the main thread.
    void fit();

    /// Learns the driver's limit from a small window that is never shown. Leaves no context current.
    bool askLimit();
    /// Drivers take any size, and some fail without a word, or worse, at the first command that draws.
    bool checkSize(UInt32 wantedWidth, UInt32 wantedHeight, std::string &error) const;

    /// Closes the window, ends the content, and GLFW with the last; the main thread, outside of GLFW.
    static void close(GLFWWindowContent *content);
};

/// GLFW in this process.
struct GLFWSystem
{
    std::mutex mutex;
    std::vector<GLFWWindowContent *> open;   ///< GLFW is up while there are any
    std::vector<GLFWWindowContent *> orphan; ///< those to be closed, whose container has gone
    bool started = false;
    int depth = 0; ///< of GLFW's calls that call back; main thread

    static GLFWSystem &the();

    std::vector<GLFWWindowContent *> getOpen();
    /// Closes what is to be closed; the main thread, outside of GLFW.
    void closeOrphans();
    /// The thread no longer holds the context of that window of GLFW's, if it is one of ours.
    void forgetHolder(::GLFWwindow *handle);

    static bool onMainThread();
};

/// Counts a call into GLFW, or back from it, in which no window can be closed.
class WithinGLFW
{
  public:
    WithinGLFW() { ++GLFWSystem::the().depth; }
    ~WithinGLFW() { --GLFWSystem::the().depth; }
    WithinGLFW(const WithinGLFW &) = delete;
    WithinGLFW &operator=(const WithinGLFW &) = delete;
};

OSG_END_NAMESPACE

#endif
