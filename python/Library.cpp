/// \file
/// The lock, the guards and the log around each call of the library.

#include "Library.h"

#include <EGL/egl.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGConfig.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGThread.h>
#include <Tessaly/Tessaly.h>

#ifndef __GLIBC__
#include "StdoutGuard.h"
#endif

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <unistd.h>

namespace binding
{

namespace
{

/// What is current on this thread, put back at the end of a scope. The library leaves its own context
/// current.
class HostContext
{
public:
    HostContext()
        : _api(eglQueryAPI()), _display(eglGetCurrentDisplay()), _draw(eglGetCurrentSurface(EGL_DRAW)),
          _read(eglGetCurrentSurface(EGL_READ)), _context(eglGetCurrentContext())
    {
    }
    ~HostContext()
    {
        eglBindAPI(EGL_OPENGL_API);
        const EGLDisplay ours = eglGetCurrentDisplay();
        if (ours != EGL_NO_DISPLAY && eglGetCurrentContext() != _context)
        {
            eglMakeCurrent(ours, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        }
        eglBindAPI(_api);
        if (_context != EGL_NO_CONTEXT && eglGetCurrentContext() != _context)
        {
            eglMakeCurrent(_display, _draw, _read, _context);
        }
    }
    HostContext(const HostContext &) = delete;
    HostContext &operator=(const HostContext &) = delete;

private:
    EGLenum _api;
    EGLDisplay _display;
    EGLSurface _draw;
    EGLSurface _read;
    EGLContext _context;
};

#ifdef __GLIBC__
/// Hides what C code prints. The descriptor stays as it is, so that other threads of the host can print.
class Silence
{
public:
    Silence() : _stdout(stdout)
    {
        static std::FILE *const nowhere = std::fopen("/dev/null", "we");
        stdout = nowhere == nullptr ? stdout : nowhere;
    }
    ~Silence() { stdout = _stdout; }
    Silence(const Silence &) = delete;
    Silence &operator=(const Silence &) = delete;

private:
    std::FILE *_stdout;
};
#else
class Silence
{
    viewer::StdoutGuard _guard{viewer::StdoutGuard::To::Nowhere};
};
#endif

std::string oneLine(std::string text)
{
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
    {
        text.pop_back();
    }
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

/// Keeps the problems that are logged while it lives, and keeps them and all else from standard error.
class Problems : private osg::LogSink
{
public:
    Problems() { osg::osgLog().addSink(this, osg::LOG_WARNING); }
    ~Problems() override { osg::osgLog().removeSink(this); }
    Problems(const Problems &) = delete;
    Problems &operator=(const Problems &) = delete;

    std::vector<std::string> lines()
    {
        osg::osgLog().flushMessage();
        return _lines;
    }

private:
    void receive(const osg::LogMessage &message) override
    {
        // Level 0 tells how things go on, for all its rank.
        const std::string text = oneLine(message.text);
        if (!text.empty() && message.level != osg::LOG_LOG)
        {
            _lines.push_back(text);
        }
    }

    std::vector<std::string> _lines;
};

/// Forgets what containers this thread made and changed: nobody is to be synchronised with it.
struct ForgetChanges
{
    ~ForgetChanges() { osg::Thread::getCurrentChangeList()->clearAll(); }
};

enum class Stage
{
    Fresh,
    Running,
    Ended,
};

struct State
{
    std::mutex mutex;
    Stage stage = Stage::Fresh;
    pid_t process = 0; ///< where it runs: neither threads nor GL survive a fork
};

/// Never destroyed: threads may come in while the process ends.
State &state()
{
    static State *const only = new State;
    return *only;
}

} // namespace

Outcome inLibrary(const Work &work)
{
    State &library = state();
    const std::lock_guard<std::mutex> lock(library.mutex);
    Outcome outcome;
    if (library.stage == Stage::Ended)
    {
        outcome.error = "tessaly: the interpreter is ending";
        return outcome;
    }
    if (library.stage == Stage::Running && library.process != getpid())
    {
        outcome.error = "tessaly: was used before this process was forked; start it anew instead";
        return outcome;
    }
    const Silence silence;
    Problems problems;
    const HostContext context;
    if (library.stage == Stage::Fresh)
    {
        if (!osg::osgInit(0, nullptr))
        {
            outcome.error = "the scene graph could not be set up";
            return outcome;
        }
        osg::initTessalyExtention();
        library.stage = Stage::Running;
        library.process = getpid();
    }
    const ForgetChanges forget;

    outcome.good = work(outcome.error);
    outcome.warnings = problems.lines();
    if (!outcome.good && !outcome.warnings.empty())
    {
        outcome.error = outcome.warnings.front();
    }
    return outcome;
}

void endLibrary()
{
    State &library = state();
    const std::lock_guard<std::mutex> lock(library.mutex);
    if (library.stage == Stage::Running && library.process == getpid())
    {
        const Silence silence;
        Problems problems;
        osg::osgExit();
    }
    library.stage = Stage::Ended;
}

} // namespace binding
