/// \file
/// What belongs to the windows of GLFW behind the containers, and GLFW's own life.

#include "GLFWWindowContent.h"

#include <algorithm>
#include <cmath>

#define GLFW_INCLUDE_NONE
#include <GLFW/glfw3.h>

#include "OSGGL.h"
#include "OSGLog.h"
#include "OSGThread.h"

OSG_BEGIN_NAMESPACE

/// Never destroyed: windows in static objects may be.
GLFWSystem &GLFWSystem::the()
{
    static GLFWSystem &system = *new GLFWSystem;
    return system;
}

bool GLFWSystem::onMainThread()
{
    return Thread::getCurrent() == ThreadManager::getAppThread();
}

std::vector<GLFWWindowContent *> GLFWSystem::getOpen()
{
    const std::lock_guard<std::mutex> lock(mutex);
    return open;
}

void GLFWSystem::closeOrphans()
{
    std::vector<GLFWWindowContent *> orphans;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        orphans.swap(orphan);
    }
    for(GLFWWindowContent *const content : orphans)
        GLFWWindowContent::close(content);
}

void GLFWSystem::forgetHolder(::GLFWwindow *handle)
{
    for(GLFWWindowContent *const content : getOpen())
    {
        if(content->handle == handle)
            content->holder = std::thread::id();
    }
}

namespace
{

/// Where the errors of this thread go instead of to the log.
thread_local std::string *errorText = nullptr;

void onError(int, const char *description)
{
    if(errorText != nullptr)
        errorText->append(errorText->empty() ? "" : "; ").append(description);
    else
        FWARNING(("GLFW: %s\n", description));
}

class ErrorsInto
{
  public:
    explicit ErrorsInto(std::string &text) { errorText = &text; }
    ~ErrorsInto() { errorText = nullptr; }
    ErrorsInto(const ErrorsInto &) = delete;
    ErrorsInto &operator=(const ErrorsInto &) = delete;
};

bool startGLFW()
{
    GLFWSystem &system = GLFWSystem::the();
    const std::lock_guard<std::mutex> lock(system.mutex);
    if(!system.started)
    {
        glfwSetErrorCallback(&onError);
        system.started = glfwInit() == GLFW_TRUE;
    }
    return system.started;
}

/// Ends GLFW where no window is open.
void endGLFW()
{
    GLFWSystem &system = GLFWSystem::the();
    const std::lock_guard<std::mutex> lock(system.mutex);
    if(system.started && system.open.empty())
    {
        system.started = false;
        glfwTerminate();
    }
}

/// Why the framebuffer that is bound is not what the class promises, or "".
std::string shortcoming()
{
    struct Need
    {
        GLenum name;
        GLint least;
    };
    for(const Need &need : {Need{GL_RED_BITS, 8}, Need{GL_GREEN_BITS, 8}, Need{GL_BLUE_BITS, 8},
                            Need{GL_ALPHA_BITS, 8}, Need{GL_DEPTH_BITS, 24}, Need{GL_STENCIL_BITS, 8}})
    {
        GLint bits = 0;
        glGetIntegerv(need.name, &bits);
        if(bits < need.least)
            return "the display offers no framebuffer with RGBA8, depth 24, stencil 8";
    }
    GLint samples = 0;
    glGetIntegerv(GL_SAMPLES, &samples);
    return samples > 1 ? "the display offers no framebuffer with one sample" : "";
}

void setHints()
{
    glfwDefaultWindowHints();
    glfwWindowHint(GLFW_CLIENT_API, GLFW_OPENGL_API);
    // The oldest version that serves; drivers give the newest compatibility context.
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 2);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 1);
    for(const int bits : {GLFW_RED_BITS, GLFW_GREEN_BITS, GLFW_BLUE_BITS, GLFW_ALPHA_BITS, GLFW_STENCIL_BITS})
        glfwWindowHint(bits, 8);
    glfwWindowHint(GLFW_DEPTH_BITS, 24);
    glfwWindowHint(GLFW_SAMPLES, 0);
}

// What GLFW calls. After the listener nothing of the content is used: the listener may do anything.

GLFWWindowContent *contentOf(::GLFWwindow *handle)
{
    GLFWWindowContent *const content = static_cast<GLFWWindowContent *>(glfwGetWindowUserPointer(handle));
    return content != nullptr && content->self != NullFC ? content : nullptr;
}

/// The listener of a window, or null.
GLFWWindowListener *listenerOf(::GLFWwindow *handle)
{
    const GLFWWindowContent *const content = contentOf(handle);
    return content != nullptr ? content->listener : nullptr;
}

/// From the units of GLFW's cursor to pixels of the framebuffer; the two differ on some systems.
GLFWWindowPlace inPixels(::GLFWwindow *handle, double x, double y)
{
    int width = 0, height = 0, pixelWidth = 0, pixelHeight = 0;
    glfwGetWindowSize(handle, &width, &height);
    glfwGetFramebufferSize(handle, &pixelWidth, &pixelHeight);
    return {width > 0 ? x * pixelWidth / width : x, height > 0 ? y * pixelHeight / height : y};
}

void onSize(::GLFWwindow *handle, int width, int height)
{
    const WithinGLFW within;
    GLFWWindowContent *const content = contentOf(handle);
    if(content == nullptr)
        return;
    content->empty = width < 1 || height < 1;
    if(content->empty)
        return;
    content->width = width;
    content->height = height;
    const GLFWWindowPtr self = content->self;
    if(self->getWidth() != UInt32(width) || self->getHeight() != UInt32(height))
        self->resize(width, height);
    if(content->listener != nullptr)
        content->listener->resized(width, height);
}

void onIconify(::GLFWwindow *handle, int iconified)
{
    if(GLFWWindowContent *const content = contentOf(handle))
        content->iconified = iconified == GLFW_TRUE;
}

void onCursor(::GLFWwindow *handle, double x, double y)
{
    const WithinGLFW within;
    GLFWWindowContent *const content = contentOf(handle);
    if(content == nullptr)
        return;
    const GLFWWindowPlace place = inPixels(handle, x, y);
    content->cursor = place;
    if(content->listener != nullptr)
        content->listener->mouseMoved(place.x, place.y);
}

void onButton(::GLFWwindow *handle, int button, int action, int modifiers)
{
    const WithinGLFW within;
    const GLFWWindowContent *const content = contentOf(handle);
    if(content != nullptr && content->listener != nullptr)
        content->listener->mouseButton(button, action == GLFW_PRESS, content->cursor.x, content->cursor.y,
                                       modifiers);
}

void onScroll(::GLFWwindow *handle, double dx, double dy)
{
    const WithinGLFW within;
    const GLFWWindowContent *const content = contentOf(handle);
    if(content != nullptr && content->listener != nullptr)
        content->listener->scrolled(dx, dy, content->cursor.x, content->cursor.y);
}

void onKey(::GLFWwindow *handle, int key, int, int action, int modifiers)
{
    const WithinGLFW within;
    if(GLFWWindowListener *const listener = listenerOf(handle))
        listener->key(key, action != GLFW_RELEASE, action == GLFW_REPEAT, modifiers);
}

void onCharacter(::GLFWwindow *handle, unsigned int codepoint)
{
    const WithinGLFW within;
    if(GLFWWindowListener *const listener = listenerOf(handle))
        listener->character(codepoint);
}

void onDrop(::GLFWwindow *handle, int count, const char **paths)
{
    const WithinGLFW within;
    if(GLFWWindowListener *const listener = listenerOf(handle))
        listener->dropped(std::vector<std::string>(paths, paths + count));
}

void onClose(::GLFWwindow *handle)
{
    const WithinGLFW within;
    if(GLFWWindowListener *const listener = listenerOf(handle))
        listener->closeRequested();
}

void onRefresh(::GLFWwindow *handle)
{
    const WithinGLFW within;
    if(GLFWWindowListener *const listener = listenerOf(handle))
        listener->refreshed();
}

void setCallbacks(::GLFWwindow *handle)
{
    glfwSetFramebufferSizeCallback(handle, &onSize);
    glfwSetWindowIconifyCallback(handle, &onIconify);
    glfwSetCursorPosCallback(handle, &onCursor);
    glfwSetMouseButtonCallback(handle, &onButton);
    glfwSetScrollCallback(handle, &onScroll);
    glfwSetKeyCallback(handle, &onKey);
    glfwSetCharCallback(handle, &onCharacter);
    glfwSetDropCallback(handle, &onDrop);
    glfwSetWindowCloseCallback(handle, &onClose);
    glfwSetWindowRefreshCallback(handle, &onRefresh);
}

} // namespace

bool GLFWWindowContent::open(UInt32 wantedWidth, UInt32 wantedHeight, std::string &error)
{
    if(wantedWidth < 1 || wantedHeight < 1)
    {
        error = "a size of " + std::to_string(wantedWidth) + " x " + std::to_string(wantedHeight) +
                " pixels can't be opened";
        return false;
    }
    const ErrorsInto collect(error);
    if(!startGLFW())
        return false;

    setHints();
    // A window far beyond what the driver draws into may end the process while it opens, so a small one is
    // asked first.
    constexpr UInt32 large = 4096;
    const bool isLarge = wantedWidth > large || wantedHeight > large;
    if(isLarge && !(askLimit() && checkSize(wantedWidth, wantedHeight, error)))
    {
        endGLFW();
        return false;
    }
    ::GLFWwindow *const made =
        glfwCreateWindow(int(wantedWidth), int(wantedHeight), title.c_str(), nullptr, nullptr);
    if(made == nullptr)
    {
        endGLFW();
        return false;
    }

    // GLFW takes the nearest framebuffer that there is.
    GLFWSystem::the().forgetHolder(glfwGetCurrentContext());
    glfwMakeContextCurrent(made);
    std::string missing = "the context can't be used";
    if(glfwGetCurrentContext() == made)
    {
        glGetIntegerv(GL_MAX_VIEWPORT_DIMS, limit);
        missing = shortcoming();
    }
    if(missing.empty() && checkSize(wantedWidth, wantedHeight, missing))
    {
        // Black until the first frame. Mesa looks at the window's size behind a swap: without this one, the
        // first frame behind a change of size would be cut to the old size.
        glClear(GL_COLOR_BUFFER_BIT);
        glfwSwapBuffers(made);
    }
    glfwMakeContextCurrent(nullptr);
    if(!missing.empty())
    {
        error.append(error.empty() ? "" : "; ").append(missing);
        glfwDestroyWindow(made);
        endGLFW();
        return false;
    }

    glfwSetWindowUserPointer(made, this);
    setCallbacks(made);
    glfwGetFramebufferSize(made, &width, &height);
    iconified = glfwGetWindowAttrib(made, GLFW_ICONIFIED) == GLFW_TRUE;
    empty = width < 1 || height < 1;
    double x = 0, y = 0;
    glfwGetCursorPos(made, &x, &y);
    cursor = inPixels(made, x, y);
    appliedInterval = -1;
    handle = made;
    GLFWSystem &system = GLFWSystem::the();
    const std::lock_guard<std::mutex> lock(system.mutex);
    system.open.push_back(this);
    return true;
}

bool GLFWWindowContent::askLimit()
{
    glfwWindowHint(GLFW_VISIBLE, GLFW_FALSE);
    ::GLFWwindow *const small = glfwCreateWindow(16, 16, "", nullptr, nullptr);
    glfwWindowHint(GLFW_VISIBLE, GLFW_TRUE);
    if(small == nullptr)
        return false;
    GLFWSystem::the().forgetHolder(glfwGetCurrentContext());
    glfwMakeContextCurrent(small);
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, limit);
    glfwDestroyWindow(small);
    return true;
}

bool GLFWWindowContent::checkSize(UInt32 wantedWidth, UInt32 wantedHeight, std::string &error) const
{
    if(wantedWidth <= UInt32(limit[0]) && wantedHeight <= UInt32(limit[1]))
        return true;
    const auto text = [](UInt32 w, UInt32 h) { return std::to_string(w) + " x " + std::to_string(h); };
    error = "a framebuffer of " + text(wantedWidth, wantedHeight) +
            " pixels is more than the driver's limit of " + text(UInt32(limit[0]), UInt32(limit[1]));
    return false;
}

void GLFWWindowContent::close(GLFWWindowContent *content)
{
    GLFWSystem &system = GLFWSystem::the();
    {
        const std::lock_guard<std::mutex> lock(system.mutex);
        system.open.erase(std::remove(system.open.begin(), system.open.end(), content), system.open.end());
    }
    glfwDestroyWindow(content->handle);
    delete content;
    endGLFW();
}

void GLFWWindowContent::fit()
{
    if(handle == nullptr || self == NullFC)
        return;
    const Int32 wantedWidth = self->getWidth();
    const Int32 wantedHeight = self->getHeight();
    if((wantedWidth == width && wantedHeight == height) || wantedWidth < 1 || wantedHeight < 1)
        return;
    int unitsWide = 0, unitsHigh = 0, pixelsWide = 0, pixelsHigh = 0;
    glfwGetWindowSize(handle, &unitsWide, &unitsHigh);
    glfwGetFramebufferSize(handle, &pixelsWide, &pixelsHigh);
    width = wantedWidth;
    height = wantedHeight;
    std::string error;
    if(!checkSize(UInt32(wantedWidth), UInt32(wantedHeight), error))
    {
        FWARNING(("GLFW window: %s\n", error.c_str()));
        return;
    }
    const auto inUnits = [](int pixels, int units, int framebuffer) {
        return framebuffer > 0 ? std::max(1, int(std::lround(double(pixels) * units / framebuffer))) : pixels;
    };
    glfwSetWindowSize(handle, inUnits(width, unitsWide, pixelsWide), inUnits(height, unitsHigh, pixelsHigh));
}

OSG_END_NAMESPACE
