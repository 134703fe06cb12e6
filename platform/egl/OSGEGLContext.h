#ifndef _OSGEGLCONTEXT_H_
#define _OSGEGLCONTEXT_H_

/// \file
/// An OpenGL compatibility context that needs no display server.

#include <string>

#include "OSGConfig.h"

OSG_BEGIN_NAMESPACE

/// An OpenGL compatibility context with a pbuffer as its default framebuffer: RGBA8, depth 24, stencil 8, one
/// sample.
///
/// The pbuffer is what framebuffer 0 means while the context is current, so code that binds framebuffer 0
/// after an off-screen pass draws and reads here as it would in a window. Any number of contexts may live in
/// a process; each may be current on one thread at a time and moves between threads by doneCurrent on the one
/// and makeCurrent on the other. All of them stand on one EGL display, which the first create opens and which
/// stays open until the process ends.
///
/// An object is used by one thread at a time; different objects may be used by different threads at the same
/// time. Nothing here throws or ends the process: an operation that fails returns false and leaves one line
/// of text in getError.
class OSG_WINDOWEGL_DLLMAPPING EGLContextHandle
{
public:
    /// A function of the driver, to be cast to its real type.
    using Function = void (*)();

    EGLContextHandle() = default;
    EGLContextHandle(const EGLContextHandle &) = delete;
    EGLContextHandle &operator=(const EGLContextHandle &) = delete;
    ~EGLContextHandle();

    /// Opens the context with a default framebuffer of width x height pixels, both 1 or more. A context that
    /// is open is closed first. What is current on the calling thread stays so. sharedWith is an open context
    /// whose textures, buffers, programs and lists this one is to share, or null.
    bool create(int width, int height, const EGLContextHandle *sharedWith = nullptr);

    /// Makes the context current on the calling thread. Fails while it is current on another thread.
    bool makeCurrent();

    /// Leaves the calling thread without a current context, if it is this one that is current there.
    bool doneCurrent();

    /// Whether the context is current on the calling thread.
    bool isCurrent() const;

    /// Ends a frame: hands all commands to the driver. The default framebuffer keeps its content. Needs the
    /// context current.
    bool swap();

    /// Gives the default framebuffer another size. The context, its objects and its state stay, the viewport
    /// among them; the content of the default framebuffer is lost. Whether the context is current stays as it
    /// is; it must not be current on another thread. On failure the old framebuffer stays.
    bool resize(int width, int height);

    /// Closes the context and frees its objects; does nothing if none is open. It must not be current on
    /// another thread.
    void destroy();

    /// Whether there is a context.
    bool isOpen() const { return _context != nullptr; }

    /// Size of the default framebuffer in pixels; 0 while no context is open.
    int getWidth() const { return _width; }
    int getHeight() const { return _height; }

    /// What GL says of itself, and by which road EGL was reached ("surfaceless", "device 0", "default").
    /// Empty before create.
    const std::string &getVendor() const { return _vendor; }
    const std::string &getRenderer() const { return _renderer; }
    const std::string &getVersion() const { return _version; }
    const std::string &getPlatform() const { return _platform; }

    /// The four of them in one line, for a log.
    std::string getDescription() const;

    /// One line, without a line end, on the last operation that failed; empty if none has since the last
    /// create.
    const std::string &getError() const { return _error; }

    /// The driver's function of that name, or null. A pointer does not prove that the current context
    /// supports the function.
    static Function getProcAddress(const char *name);

private:
    bool fail(const std::string &what);
    bool failEGL(const std::string &what);
    bool checkSize(int width, int height);

    void *_context = nullptr; ///< an EGLContext
    void *_surface = nullptr; ///< an EGLSurface
    int _width = 0;
    int _height = 0;
    int _limit[2] = {0, 0}; ///< the largest width and height that the driver draws into
    std::string _vendor;
    std::string _renderer;
    std::string _version;
    std::string _platform;
    std::string _error;
};

OSG_END_NAMESPACE

#endif
