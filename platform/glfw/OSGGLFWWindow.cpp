/// \file
/// A window on the desktop.

#include "OSGGLFWWindow.h"

#include <algorithm>

#include <EGL/egl.h>
#define GLFW_INCLUDE_NONE
#include <GLFW/glfw3.h>

#include "GLFWWindowContent.h"
#include "OSGBaseInitFunctions.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void GLFWWindow::initMethod() {}

GLFWWindow::GLFWWindow() = default;

GLFWWindow::GLFWWindow(const GLFWWindow &source) : Inherited(source) {}

GLFWWindow::~GLFWWindow() = default;

void GLFWWindow::onCreate(const GLFWWindow *source)
{
    Inherited::onCreate(source);
    if(GlobalSystemState == Startup)
        return;
    const GLFWWindowPtr self(*this);
    GLFWWindowContent *const content = new GLFWWindowContent;
    content->self = self;
    if(source != nullptr && source->_content != nullptr)
    {
        content->title = source->_content->title;
        content->swapInterval = source->_content->swapInterval.load();
    }
    for(UInt32 aspect = 0; aspect < ThreadManager::getNumAspects(); ++aspect)
        self.getAspectCPtr(aspect)->_content = content;
}

void GLFWWindow::onDestroy()
{
    Inherited::onDestroy();
    deactivate();
    GLFWWindowContent *const content = _content;
    _content = nullptr;
    if(content == nullptr)
        return;
    content->self = NullFC;
    content->listener = nullptr;
    GLFWSystem &system = GLFWSystem::the();
    if(content->handle == nullptr)
    {
        delete content;
    }
    else if(GLFWSystem::onMainThread() && system.depth == 0)
    {
        GLFWWindowContent::close(content);
    }
    else
    {
        const std::lock_guard<std::mutex> lock(system.mutex);
        system.orphan.push_back(content);
    }
}

bool GLFWWindow::isOpen() const
{
    return _content != nullptr && _content->handle != nullptr;
}

bool GLFWWindow::isMinimised() const
{
    return isOpen() && (_content->iconified || _content->empty);
}

void GLFWWindow::init()
{
    if(_content == nullptr || isOpen())
        return;
    if(!GLFWSystem::onMainThread())
    {
        FFATAL(("GLFW window: only the main thread can open it\n"));
        return;
    }
    if(eglGetCurrentContext() != EGL_NO_CONTEXT)
    {
        FFATAL(("GLFW window: an EGL context is current on the thread\n"));
        return;
    }
    if(GLFWSystem::the().depth == 0)
        GLFWSystem::the().closeOrphans();
    std::string error;
    if(!_content->open(getWidth(), getHeight(), error))
    {
        FFATAL(("GLFW window: %s\n", error.c_str()));
        return;
    }
    // The desktop may have its own mind about the size.
    const bool differs = _content->width != getWidth() || _content->height != getHeight();
    if(differs && !_content->empty)
        resize(_content->width, _content->height);
}

bool GLFWWindow::activate()
{
    // Of a window that could not be opened init has told already.
    if(!isOpen())
        return false;
    if(isActive())
        return true;
    // Either of these would end in an error of X, which ends the process.
    if(eglGetCurrentContext() != EGL_NO_CONTEXT)
    {
        FWARNING(("GLFW window: an EGL context is current on the thread\n"));
        return false;
    }
    const std::thread::id here = std::this_thread::get_id();
    std::thread::id holder;
    if(!_content->holder.compare_exchange_strong(holder, here) && holder != here)
    {
        FWARNING(("GLFW window: the context is current on another thread\n"));
        return false;
    }
    ::GLFWwindow *const before = glfwGetCurrentContext();
    glfwMakeContextCurrent(_content->handle);
    if(!isActive())
    {
        _content->holder = std::thread::id();
        return false;
    }
    if(before != nullptr)
        GLFWSystem::the().forgetHolder(before);
    return true;
}

bool GLFWWindow::deactivate()
{
    if(!isOpen())
        return false;
    if(isActive())
    {
        glfwMakeContextCurrent(nullptr);
        _content->holder = std::thread::id();
    }
    return true;
}

bool GLFWWindow::isActive()
{
    return isOpen() && glfwGetCurrentContext() == _content->handle;
}

bool GLFWWindow::swap()
{
    if(!isActive())
        return false;
    const Int32 interval = _content->swapInterval;
    if(_content->appliedInterval != interval)
    {
        _content->appliedInterval = interval;
        glfwSwapInterval(interval);
    }
    glfwSwapBuffers(_content->handle);
    return true;
}

void GLFWWindow::render(RenderActionBase *action)
{
    if(!isMinimised())
        Inherited::render(action);
}

void GLFWWindow::draw(DrawAction *action)
{
    if(!isMinimised())
        Inherited::draw(action);
}

GLFWWindow::GLExtensionFunction GLFWWindow::getFunctionByName(const Char8 *name)
{
    return isActive() ? glfwGetProcAddress(name) : nullptr;
}

void GLFWWindow::setTitle(const std::string &title)
{
    if(_content == nullptr)
        return;
    _content->title = title;
    if(isOpen())
        glfwSetWindowTitle(_content->handle, title.c_str());
}

std::string GLFWWindow::getTitle() const
{
    return _content != nullptr ? _content->title : std::string();
}

void GLFWWindow::setSwapInterval(Int32 interval)
{
    if(_content != nullptr)
        _content->swapInterval = std::max(0, interval);
}

Int32 GLFWWindow::getSwapInterval() const
{
    return _content != nullptr ? _content->swapInterval.load() : 1;
}

bool GLFWWindow::shouldClose() const
{
    return isOpen() && glfwWindowShouldClose(_content->handle) == GLFW_TRUE;
}

void GLFWWindow::setShouldClose(bool close)
{
    if(isOpen())
        glfwSetWindowShouldClose(_content->handle, close ? GLFW_TRUE : GLFW_FALSE);
}

void GLFWWindow::setListener(GLFWWindowListener *listener)
{
    if(_content != nullptr)
        _content->listener = listener;
}

GLFWWindowListener *GLFWWindow::getListener() const
{
    return _content != nullptr ? _content->listener : nullptr;
}

::GLFWwindow *GLFWWindow::getHandle() const
{
    return _content != nullptr ? _content->handle.load() : nullptr;
}

void GLFWWindow::pollEvents()
{
    waitEvents(0);
}

void GLFWWindow::waitEvents(Real64 seconds)
{
    if(!GLFWSystem::onMainThread() || GLFWSystem::the().depth > 0)
    {
        FWARNING(("GLFW window: events are for the main thread, outside of a listener\n"));
        return;
    }
    GLFWSystem::the().closeOrphans();
    const std::vector<GLFWWindowContent *> windows = GLFWSystem::the().getOpen();
    if(windows.empty())
        return;
    for(GLFWWindowContent *const content : windows)
        content->fit();
    {
        // A year will do; GLFW hands the seconds to the system as they are.
        constexpr Real64 longest = 365.0 * 24 * 3600;
        const WithinGLFW within;
        if(seconds < 0)
            glfwWaitEvents();
        else if(seconds > 0)
            glfwWaitEventsTimeout(std::min(seconds, longest));
        else
            glfwPollEvents();
    }
    GLFWSystem::the().closeOrphans();
}

void GLFWWindow::postEmptyEvent()
{
    GLFWSystem &system = GLFWSystem::the();
    const std::lock_guard<std::mutex> lock(system.mutex);
    if(system.started)
        glfwPostEmptyEvent();
}

void GLFWWindow::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
    if((whichField & (WidthFieldMask | HeightFieldMask)) != 0 && isOpen() && GLFWSystem::onMainThread())
        _content->fit();
}

void GLFWWindow::dump(UInt32, const BitVector) const
{
    SLOG << "Dump GLFWWindow NI" << std::endl;
}

OSG_END_NAMESPACE
