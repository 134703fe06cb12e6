#ifndef _OSGLOG_H_
#define _OSGLOG_H_

/// \file
/// The log: levelled messages, each with the source stem and line it comes from, in stream form and in printf
/// form.

#include <atomic>
#include <mutex>
#include <ostream>
#include <sstream>
#include <string>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// How grave a message is; the smaller, the graver. LOG_LOG is always written.
enum LogLevel
{
    LOG_LOG = 0,
    LOG_FATAL = 1,
    LOG_WARNING = 2,
    LOG_NOTICE = 3,
    LOG_INFO = 4,
    LOG_DEBUG = 5
};

/// Where messages go while no LogSink takes them.
enum LogType
{
    LOG_NONE = 0, ///< nowhere
    LOG_FILE,     ///< the file of Log::setLogFile
    LOG_STDOUT,
    LOG_STDERR,
    LOG_BUFFER ///< the text of Log::getBuffer
};

/// What stands ahead of a message's text, as bits for Log::setHeaderElem; written in the order of the list.
enum LogHeaderElem
{
    LOG_BEGIN_NEWLINE_HEADER = 0x0001,
    LOG_TYPE_HEADER = 0x0002,      ///< "WARNING: "
    LOG_TIMESTAMP_HEADER = 0x0004, ///< seconds since the log came up, "[12.345] "
    LOG_MODULE_HEADER = 0x0008,    ///< "(OpenSG) "
    LOG_FILE_HEADER = 0x0010,      ///< the source file's stem
    LOG_LINE_HEADER = 0x0020,      ///< "(12)"; ": " follows file and line
    LOG_TAB_HEADER = 0x0040,
    LOG_END_NEWLINE_HEADER = 0x0080,
    LOG_ALL_HEADER = 0xffff
};

/// One message, as a LogSink gets it.
struct LogMessage
{
    LogLevel level = LOG_LOG; ///< how bad
    std::string module; ///< "OpenSG" unless the source says otherwise
    std::string file;   ///< the source file's stem: no folder, no suffix
    UInt32 line = 0; ///< where in the file
    std::string text; ///< without header; with its line end where it was sent with one
};

/// Takes messages in place of the normal output, from Log::addSink to Log::removeSink.
class OSG_BASELIB_DLLMAPPING LogSink
{
  public:
    virtual ~LogSink() = default;

    /// Gets one whole message. Called on the thread that logged, one call at a time, with the log locked:
    /// what it logs itself is dropped, and it must not change the log's settings.
    virtual void receive(const LogMessage &message) = 0;
};

/// The process's one log. Any thread may log at any time, also before and after main: each message comes out
/// whole.
///
/// The text of a thread's message gathers until a line end, the thread's next header, or the thread's end
/// closes it.
///
/// The environment is read once, when the log comes up: OSG_LOG_LEVEL (a number 0 to 5 or a
/// level's name in any case), OSG_LOG_FILE (a file's name). What it sets stays, unless a setter is called
/// with `force`.
///
/// Streaming into the Log itself (`osgLog() << x`) shares one stream's formatting state, so it is for one
/// thread at a time; the macros below and doHeader() use a stream per thread.
class OSG_BASELIB_DLLMAPPING Log : public std::ostream
{
  public:
    /// The log.
    static Log *instance();

    /// Up to which level messages are written; LOG_NOTICE at first. Sinks have levels of their own.
    void setLogLevel(LogLevel level, bool force = false);
    LogLevel getLogLevel() const;

    /// LOG_STDERR at first. LOG_FILE without a file that is open writes nothing.
    void setLogType(LogType type, bool force = false);
    LogType getLogType() const;

    /// Writes to this file, emptied first, and makes the type LOG_FILE; null or "" closes the file and goes
    /// back to LOG_STDERR. Returns false, and leaves everything as it was, if the file can't be opened.
    bool setLogFile(const Char8 *fileName, bool force = false);

    /// Bits of LogHeaderElem; type, file and line at first.
    void setHeaderElem(UInt32 elements);
    UInt32 getHeaderElem() const;
    /// Adds or takes away one of them.
    void addHeaderElem(LogHeaderElem element);
    void delHeaderElem(LogHeaderElem element);

    /// Switches the messages of a module off or on; all are on at first.
    void setModuleActive(const Char8 *module, bool active);

    /// Whether a message of this level goes anywhere: to the output or to a sink.
    bool checkLevel(LogLevel level) const
    {
        return static_cast<int>(level) <= _reach.load(std::memory_order_relaxed);
    }
    /// Whether messages of this module are written.
    bool checkModule(const Char8 *module) const;

    /// Opens a message of this thread and returns the stream that its text goes to; a message that was still
    /// open is delivered first. Where level or module are off, returns a stream that swallows. `file` is a
    /// path; only its stem is used. `module` and `file` may be null.
    std::ostream &doHeader(LogLevel level, const Char8 *module, const Char8 *file, UInt32 line);

    /// Adds text to the message that this thread opened last; drops it if that one's level or module were
    /// off.
    void doLog(const Char8 *format, ...) __attribute__((format(printf, 2, 3)));

    /// This thread's stream, to go on without a header at a level; it swallows where the level is off.
    std::ostream &stream(LogLevel level);

    /// Sends one whole message at once.
    void send(LogLevel level, const Char8 *module, const Char8 *file, UInt32 line, const std::string &text);

    /// Opens a message of this thread with a first piece of text; a piece that ends in a line end closes it
    /// at once.
    void begin(LogLevel level, const Char8 *module, const Char8 *file, UInt32 line, const std::string &text);

    /// Delivers what this thread has gathered without a line end so far.
    void flushMessage();

    /// Hands messages up to `level` to the sink, which isn't owned; while any sink is there, the normal
    /// output is silent. Every sink gets every message.
    void addSink(LogSink *sink, LogLevel level = LOG_DEBUG);
    /// When it returns, no call of the sink is under way.
    void removeSink(LogSink *sink);

    /// What was written, with headers, while the type was LOG_BUFFER.
    std::string getBuffer() const;
    /// Forgets it.
    void clearBuffer();

    /// "LOG", "FATAL", "WARNING", "NOTICE", "INFO", "DEBUG"; "" for anything else.
    static const Char8 *levelName(LogLevel level);

    /// The file name without folders and without the last suffix; "" for null.
    static std::string fileStem(const Char8 *path);

  private:
    friend struct LogThread;
    struct State;

    Log();
    ~Log() override;

    void readEnvironment();
    void updateReach();
    void deliver(const LogMessage &message, bool withHeader);
    std::string header(const LogMessage &message) const;
    void write(const std::string &text);

    mutable std::mutex _mutex;
    std::atomic<int> _reach; ///< the highest level that goes anywhere
    std::atomic<bool> _modulesOff;
    State *_state;
};

/// Brings the log up, if it isn't, and reads the environment. Logging does so by itself.
OSG_BASELIB_DLLMAPPING void initLog();

/// The log.
OSG_BASELIB_DLLMAPPING Log &osgLog();

/// Ends a message: a line end and a flush, as std::endl.
OSG_BASELIB_DLLMAPPING std::ostream &endLog(std::ostream &stream);

/// One message in the making, for the macros below: it collects by itself, so that an operand may log on its
/// own.
class OSG_BASELIB_DLLMAPPING LogLine
{
  public:
    /// Keeps the pointers, which must outlive the object (the macros give literals). A null module means a
    /// message that goes on without a header.
    LogLine(LogLevel level, const Char8 *module, const Char8 *file, UInt32 line);
    /// Hands the collected text on to the thread's message.
    ~LogLine();
    LogLine(const LogLine &) = delete;
    LogLine &operator=(const LogLine &) = delete;

    /// Where the message is written to.
    std::ostream &stream()
    {
        return _text;
    }
    /// Sends one whole message at once, with a line end or without.
    void doLog(const Char8 *format, ...) __attribute__((format(printf, 2, 3)));

  private:
    LogLevel _level;
    const Char8 *_module;
    const Char8 *_file;
    UInt32 _line;
    bool _sent;
    std::ostringstream _text;
};

/// Makes a stream expression void, for the macros below.
struct LogVoid
{
    /// Ends the message.
    void operator&(std::ostream &)
    {
    }
};

OSG_END_NAMESPACE

/// The module that a source logs under; define it ahead of the include to have another one.
#ifndef OSG_LOG_MODULE
#define OSG_LOG_MODULE "OpenSG"
#endif

/// The source file's name without its folders, so that no build machine's path gets into a library.
#ifdef __FILE_NAME__
#define OSG_LOG_SOURCE __FILE_NAME__
#else
#define OSG_LOG_SOURCE __FILE__
#endif

/// Whether a message of that level is written at all.
#define OSG_LOG_ACTIVE(level) \
    (::osg::osgLog().checkLevel(level) && ::osg::osgLog().checkModule(OSG_LOG_MODULE))

/// A stream with a header. Below the level nothing is evaluated. An expression, so it is safe under if and
/// else.
#define OSG_LOG_STREAM(level)                                                                \
    !OSG_LOG_ACTIVE(level) ? (void)0                                                         \
                           : ::osg::LogVoid() & ::osg::LogLine(level, OSG_LOG_MODULE,        \
                                                               OSG_LOG_SOURCE, __LINE__).stream()

/// A stream that goes on without a header.
#define OSG_LOG_PLAIN_STREAM(level)                                                          \
    !OSG_LOG_ACTIVE(level) ? (void)0                                                         \
                           : ::osg::LogVoid() & ::osg::LogLine(level, nullptr,               \
                                                               OSG_LOG_SOURCE, __LINE__).stream()

/// Writes a message in the way of printf; par has its own brackets.
#define OSG_LOG_PRINT(level, par)                                                                \
    do                                                                                           \
    {                                                                                            \
        if(OSG_LOG_ACTIVE(level))                                                                \
            ::osg::LogLine(level, OSG_LOG_MODULE, OSG_LOG_SOURCE, __LINE__).doLog par; \
    } while(false)

/// Writes a message in the way of printf, without the head.
#define OSG_LOG_PLAIN_PRINT(level, par)                                                \
    do                                                                                 \
    {                                                                                  \
        if(OSG_LOG_ACTIVE(level))                                                      \
            ::osg::LogLine(level, nullptr, OSG_LOG_SOURCE, __LINE__).doLog par; \
    } while(false)

/// SWARNING << "text " << value << std::endl;
#define SLOG OSG_LOG_STREAM(::osg::LOG_LOG)
#define SFATAL OSG_LOG_STREAM(::osg::LOG_FATAL)
#define SWARNING OSG_LOG_STREAM(::osg::LOG_WARNING)
#define SNOTICE OSG_LOG_STREAM(::osg::LOG_NOTICE)
#define SINFO OSG_LOG_STREAM(::osg::LOG_INFO)
#define SDEBUG OSG_LOG_STREAM(::osg::LOG_DEBUG)

/// PWARNING << "and more" << std::endl; goes on with the line that SWARNING left open.
#define PLOG OSG_LOG_PLAIN_STREAM(::osg::LOG_LOG)
#define PFATAL OSG_LOG_PLAIN_STREAM(::osg::LOG_FATAL)
#define PWARNING OSG_LOG_PLAIN_STREAM(::osg::LOG_WARNING)
#define PNOTICE OSG_LOG_PLAIN_STREAM(::osg::LOG_NOTICE)
#define PINFO OSG_LOG_PLAIN_STREAM(::osg::LOG_INFO)
#define PDEBUG OSG_LOG_PLAIN_STREAM(::osg::LOG_DEBUG)
/// The same as PLOG.
#define SPRIME PLOG

/// FWARNING(("text %d\n", value));
#define FLOG(par) OSG_LOG_PRINT(::osg::LOG_LOG, par)
#define FFATAL(par) OSG_LOG_PRINT(::osg::LOG_FATAL, par)
#define FWARNING(par) OSG_LOG_PRINT(::osg::LOG_WARNING, par)
#define FNOTICE(par) OSG_LOG_PRINT(::osg::LOG_NOTICE, par)
#define FINFO(par) OSG_LOG_PRINT(::osg::LOG_INFO, par)
#define FDEBUG(par) OSG_LOG_PRINT(::osg::LOG_DEBUG, par)

/// The same without a header.
#define FPLOG(par) OSG_LOG_PLAIN_PRINT(::osg::LOG_LOG, par)
#define FPFATAL(par) OSG_LOG_PLAIN_PRINT(::osg::LOG_FATAL, par)
#define FPWARNING(par) OSG_LOG_PLAIN_PRINT(::osg::LOG_WARNING, par)
#define FPNOTICE(par) OSG_LOG_PLAIN_PRINT(::osg::LOG_NOTICE, par)
#define FPINFO(par) OSG_LOG_PLAIN_PRINT(::osg::LOG_INFO, par)
#define FPDEBUG(par) OSG_LOG_PLAIN_PRINT(::osg::LOG_DEBUG, par)

#endif
