/// \file
/// Opening the EGL display of the process and the contexts on it.

#include "OSGEGLContext.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

/// Whether name is one of the words of a list that is parted by blanks.
bool listHas(const char *list, const char *name)
{
    if (list == nullptr)
    {
        return false;
    }
    const std::size_t length = std::strlen(name);
    for (const char *at = std::strstr(list, name); at != nullptr; at = std::strstr(at + length, name))
    {
        const bool starts = at == list || at[-1] == ' ';
        const bool ends = at[length] == ' ' || at[length] == '\0';
        if (starts && ends)
        {
            return true;
        }
    }
    return false;
}

std::string errorName(EGLint code)
{
    switch (code)
    {
    case EGL_SUCCESS: return "EGL_SUCCESS";
    case EGL_NOT_INITIALIZED: return "EGL_NOT_INITIALIZED";
    case EGL_BAD_ACCESS: return "EGL_BAD_ACCESS";
    case EGL_BAD_ALLOC: return "EGL_BAD_ALLOC";
    case EGL_BAD_ATTRIBUTE: return "EGL_BAD_ATTRIBUTE";
    case EGL_BAD_CONFIG: return "EGL_BAD_CONFIG";
    case EGL_BAD_CONTEXT: return "EGL_BAD_CONTEXT";
    case EGL_BAD_CURRENT_SURFACE: return "EGL_BAD_CURRENT_SURFACE";
    case EGL_BAD_DISPLAY: return "EGL_BAD_DISPLAY";
    case EGL_BAD_MATCH: return "EGL_BAD_MATCH";
    case EGL_BAD_NATIVE_PIXMAP: return "EGL_BAD_NATIVE_PIXMAP";
    case EGL_BAD_NATIVE_WINDOW: return "EGL_BAD_NATIVE_WINDOW";
    case EGL_BAD_PARAMETER: return "EGL_BAD_PARAMETER";
    case EGL_BAD_SURFACE: return "EGL_BAD_SURFACE";
    case EGL_CONTEXT_LOST: return "EGL_CONTEXT_LOST";
    default: return "EGL error " + std::to_string(code);
    }
}

/// A way to reach an EGL display.
struct Road
{
    std::string name;
    EGLDisplay display;
};

/// The roads to try, best first. Graphics hardware stands ahead of Mesa's surfaceless platform, which would
/// pass over another maker's driver; without such hardware surfaceless is the first.
std::vector<Road> roadsToDisplays()
{
    std::vector<Road> roads;
    const char *client = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    const auto getPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));

    if (getPlatformDisplay != nullptr && listHas(client, "EGL_EXT_platform_base"))
    {
        std::vector<Road> software;
        const auto queryDevices =
            reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
        const auto queryDeviceString =
            reinterpret_cast<PFNEGLQUERYDEVICESTRINGEXTPROC>(eglGetProcAddress("eglQueryDeviceStringEXT"));
        EGLint found = 0;
        if (queryDevices != nullptr && listHas(client, "EGL_EXT_platform_device") &&
            queryDevices(0, nullptr, &found) && found > 0)
        {
            std::vector<EGLDeviceEXT> devices(static_cast<std::size_t>(found));
            if (!queryDevices(found, devices.data(), &found))
            {
                found = 0;
            }
            for (EGLint i = 0; i < found; ++i)
            {
                const EGLDeviceEXT device = devices[static_cast<std::size_t>(i)];
                const bool isSoftware =
                    queryDeviceString != nullptr &&
                    listHas(queryDeviceString(device, EGL_EXTENSIONS), "EGL_MESA_device_software");
                (isSoftware ? software : roads)
                    .push_back({"device " + std::to_string(i),
                                getPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr)});
            }
        }
        if (listHas(client, "EGL_MESA_platform_surfaceless"))
        {
            roads.push_back({"surfaceless", getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA,
                                                               EGL_DEFAULT_DISPLAY, nullptr)});
        }
        roads.insert(roads.end(), software.begin(), software.end());
    }
    roads.push_back({"default", eglGetDisplay(EGL_DEFAULT_DISPLAY)});
    return roads;
}

/// The configuration of a display with exactly the depths that the context promises, or null.
EGLConfig chooseConfig(EGLDisplay display)
{
    struct Size
    {
        EGLint attribute;
        EGLint value;
    };
    const Size sizes[] = {{EGL_RED_SIZE, 8},   {EGL_GREEN_SIZE, 8},  {EGL_BLUE_SIZE, 8},
                          {EGL_ALPHA_SIZE, 8}, {EGL_DEPTH_SIZE, 24}, {EGL_STENCIL_SIZE, 8},
                          {EGL_SAMPLES, 0}};
    std::vector<EGLint> wanted = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT};
    for (const Size &size : sizes)
    {
        wanted.push_back(size.attribute);
        wanted.push_back(size.value);
    }
    wanted.push_back(EGL_NONE);

    EGLint count = 0;
    if (!eglChooseConfig(display, wanted.data(), nullptr, 0, &count) || count <= 0)
    {
        return nullptr;
    }
    std::vector<EGLConfig> configs(static_cast<std::size_t>(count));
    if (!eglChooseConfig(display, wanted.data(), configs.data(), count, &count))
    {
        return nullptr;
    }
    configs.resize(static_cast<std::size_t>(count));

    // The sizes asked for are lower bounds, and deeper configurations are sorted to the front.
    for (const EGLConfig config : configs)
    {
        const bool exact = std::all_of(
            std::begin(sizes), std::end(sizes),
            [&](const Size &size)
            {
                EGLint value = -1;
                return eglGetConfigAttrib(display, config, size.attribute, &value) && value == size.value;
            });
        if (exact)
        {
            return config;
        }
    }
    return nullptr;
}

/// A context of the newest compatibility version that the driver has; EGL_NO_CONTEXT on failure.
EGLContext openContext(EGLDisplay display, EGLConfig config, EGLContext sharedWith)
{
    if (!eglBindAPI(EGL_OPENGL_API))
    {
        return EGL_NO_CONTEXT;
    }
    // A core profile is only ever given to who asks for one; without a wish drivers give the compatibility
    // profile.
    const EGLint none[] = {EGL_NONE};
    return eglCreateContext(display, config, sharedWith, none);
}

EGLSurface openSurface(EGLDisplay display, EGLConfig config, int width, int height)
{
    const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    return eglCreatePbufferSurface(display, config, size);
}

/// The EGL display that all contexts of the process stand on. Contexts in static objects may be closed after
/// it, so nothing in it has a destructor.
struct SharedDisplay
{
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLConfig config = nullptr;
    char road[32] = "";
};

/// The display, opened at the first call that finds one that works; null, with the reason in error, if none
/// does. It is never closed: a driver that is started and ended with each context takes long, and EGL frees
/// it with the process.
const SharedDisplay *sharedDisplay(std::string &error)
{
    static std::mutex mutex;
    static SharedDisplay shared;
    const std::lock_guard<std::mutex> lock(mutex);
    if (shared.display != EGL_NO_DISPLAY)
    {
        return &shared;
    }

    std::string tried;
    for (const Road &road : roadsToDisplays())
    {
        std::string reason;
        EGLConfig config = nullptr;
        if (road.display == EGL_NO_DISPLAY)
        {
            reason = "no display";
        }
        else if (!eglInitialize(road.display, nullptr, nullptr))
        {
            reason = errorName(eglGetError());
        }
        else if ((config = chooseConfig(road.display)) == nullptr)
        {
            reason = "no pbuffer configuration with RGBA8, depth 24, stencil 8";
        }
        else
        {
            // A display may offer configurations and then have no driver for desktop GL; only a context
            // proves it.
            const EGLContext probe = openContext(road.display, config, EGL_NO_CONTEXT);
            if (probe != EGL_NO_CONTEXT)
            {
                eglDestroyContext(road.display, probe);
                shared.display = road.display;
                shared.config = config;
                std::snprintf(shared.road, sizeof(shared.road), "%s", road.name.c_str());
                return &shared;
            }
            reason = "no OpenGL context, " + errorName(eglGetError());
        }
        tried += (tried.empty() ? "" : "; ") + road.name + ": " + reason;
    }
    error = "no EGL display offers OpenGL (" + tried + ")";
    return nullptr;
}

/// What is current on the calling thread, put back at the end of a scope.
class CurrentGuard
{
public:
    CurrentGuard()
        : _display(eglGetCurrentDisplay()), _draw(eglGetCurrentSurface(EGL_DRAW)),
          _read(eglGetCurrentSurface(EGL_READ)), _context(eglGetCurrentContext())
    {
    }
    CurrentGuard(const CurrentGuard &) = delete;
    CurrentGuard &operator=(const CurrentGuard &) = delete;
    ~CurrentGuard()
    {
        if (_context != EGL_NO_CONTEXT)
        {
            eglMakeCurrent(_display, _draw, _read, _context);
        }
        else if (const EGLDisplay display = eglGetCurrentDisplay(); display != EGL_NO_DISPLAY)
        {
            eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        }
    }

private:
    EGLDisplay _display;
    EGLSurface _draw;
    EGLSurface _read;
    EGLContext _context;
};

std::string sizeText(int width, int height)
{
    return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

std::string glString(GLenum name)
{
    const GLubyte *text = glGetString(name);
    return text != nullptr ? reinterpret_cast<const char *>(text) : "";
}

} // namespace

EGLContextHandle::~EGLContextHandle()
{
    destroy();
}

bool EGLContextHandle::fail(const std::string &what)
{
    _error = "EGL context: " + what;
    return false;
}

bool EGLContextHandle::failEGL(const std::string &what)
{
    return fail(what + ": " + errorName(eglGetError()));
}

bool EGLContextHandle::checkSize(int width, int height)
{
    // EGL takes any size and leaves it to the first command that draws to fail, so the limit is looked after
    // here.
    if (width <= _limit[0] && height <= _limit[1])
    {
        return true;
    }
    return fail("a framebuffer of " + sizeText(width, height) + " is more than the driver's limit of " +
                sizeText(_limit[0], _limit[1]));
}

bool EGLContextHandle::create(int width, int height, const EGLContextHandle *sharedWith)
{
    if (sharedWith == this)
    {
        return fail("a context can't share with itself");
    }
    destroy();
    _error.clear();
    if (width < 1 || height < 1)
    {
        return fail("a size of " + std::to_string(width) + " x " + std::to_string(height) +
                    " pixels can't be opened");
    }
    if (sharedWith != nullptr && !sharedWith->isOpen())
    {
        return fail("the context to share with is not open");
    }

    std::string reason;
    const SharedDisplay *shared = sharedDisplay(reason);
    if (shared == nullptr)
    {
        return fail(reason);
    }

    _context = openContext(shared->display, shared->config,
                           sharedWith != nullptr ? sharedWith->_context : EGL_NO_CONTEXT);
    if (_context == EGL_NO_CONTEXT)
    {
        return failEGL("no context");
    }
    _surface = openSurface(shared->display, shared->config, width, height);
    if (_surface == EGL_NO_SURFACE)
    {
        failEGL("no framebuffer of " + sizeText(width, height));
        destroy();
        return false;
    }
    _width = width;
    _height = height;
    _platform = shared->road;

    bool opened = false;
    {
        const CurrentGuard guard;
        opened = makeCurrent();
        if (opened)
        {
            _vendor = glString(GL_VENDOR);
            _renderer = glString(GL_RENDERER);
            _version = glString(GL_VERSION);
            glGetIntegerv(GL_MAX_VIEWPORT_DIMS, _limit);
            opened = checkSize(width, height);
        }
    }
    if (!opened)
    {
        destroy();
    }
    return opened;
}

bool EGLContextHandle::makeCurrent()
{
    if (!isOpen())
    {
        return fail("made current without being open");
    }
    std::string reason;
    const SharedDisplay *shared = sharedDisplay(reason);
    if (!eglBindAPI(EGL_OPENGL_API) || !eglMakeCurrent(shared->display, _surface, _surface, _context))
    {
        return failEGL("not made current");
    }
    return true;
}

bool EGLContextHandle::doneCurrent()
{
    if (!isCurrent())
    {
        return true;
    }
    if (!eglMakeCurrent(eglGetCurrentDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT))
    {
        return failEGL("not released");
    }
    // What EGL keeps for a thread goes here, as the thread may end without another call.
    eglReleaseThread();
    return true;
}

bool EGLContextHandle::isCurrent() const
{
    return isOpen() && eglBindAPI(EGL_OPENGL_API) && eglGetCurrentContext() == _context;
}

bool EGLContextHandle::swap()
{
    if (!isCurrent())
    {
        return fail("a frame was ended while the context was not current");
    }
    glFlush();
    return true;
}

bool EGLContextHandle::resize(int width, int height)
{
    if (!isOpen())
    {
        return fail("resized without being open");
    }
    if (width == _width && height == _height)
    {
        return true;
    }
    const std::string size = sizeText(width, height);
    if (width < 1 || height < 1)
    {
        return fail("can't be resized to " + size);
    }
    if (!checkSize(width, height))
    {
        return false;
    }

    std::string reason;
    const SharedDisplay *shared = sharedDisplay(reason);
    const EGLSurface fresh = openSurface(shared->display, shared->config, width, height);
    if (fresh == EGL_NO_SURFACE)
    {
        return failEGL("no framebuffer of " + size);
    }
    if (isCurrent() && !eglMakeCurrent(shared->display, fresh, fresh, _context))
    {
        failEGL("not moved to a framebuffer of " + size);
        eglDestroySurface(shared->display, fresh);
        return false;
    }
    eglDestroySurface(shared->display, _surface);
    _surface = fresh;
    _width = width;
    _height = height;
    return true;
}

void EGLContextHandle::destroy()
{
    if (!isOpen())
    {
        return;
    }
    doneCurrent();
    std::string reason;
    const SharedDisplay *shared = sharedDisplay(reason);
    if (_surface != nullptr)
    {
        eglDestroySurface(shared->display, _surface);
    }
    eglDestroyContext(shared->display, _context);
    _context = nullptr;
    _surface = nullptr;
    _width = 0;
    _height = 0;
    _vendor.clear();
    _renderer.clear();
    _version.clear();
    _platform.clear();
}

std::string EGLContextHandle::getDescription() const
{
    return _vendor + ", " + _renderer + ", OpenGL " + _version + ", EGL by " + _platform;
}

EGLContextHandle::Function EGLContextHandle::getProcAddress(const char *name)
{
    return name != nullptr ? eglGetProcAddress(name) : nullptr;
}
