/// \file
/// The log: levelled messages, each with the source stem and line it comes from, in stream form and in printf
/// form.

#include "OSGLog.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <vector>

OSG_BEGIN_NAMESPACE

namespace
{

constexpr const Char8 *levelNames[] = {"LOG", "FATAL", "WARNING", "NOTICE", "INFO", "DEBUG"};
constexpr int numLevels = 6;

/// The text of a printf call.
std::string formatText(const Char8 *format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if(length <= 0)
        return std::string();
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(&text[0], text.size(), format, arguments);
    text.pop_back();
    return text;
}

/// A level from a number or a name in any case; false, with `level` as it was, for anything else.
bool parseLevel(const std::string &text, LogLevel &level)
{
    if(text.size() == 1 && text[0] >= '0' && text[0] < '0' + numLevels)
    {
        level = static_cast<LogLevel>(text[0] - '0');
        return true;
    }
    std::string upper = text;
    for(char &c : upper)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for(int i = 0; i < numLevels; ++i)
    {
        if(upper == levelNames[i] || upper == std::string("LOG_") + levelNames[i])
        {
            level = static_cast<LogLevel>(i);
            return true;
        }
    }
    return false;
}

/// A stream buffer that adds to the message that the calling thread has open.
class MessageBuffer : public std::streambuf
{
  protected:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char *text, std::streamsize size) override;
};

} // namespace

/// What one thread has open.
struct LogThread
{
    LogMessage message;
    bool active = false;     ///< whether level and module of the last header are on
    bool withHeader = false; ///< whether what is open still has its header to write
    bool delivering = false; ///< inside a sink
    MessageBuffer buffer;
    std::ostream stream{&buffer};
    std::ostream nowhere{nullptr};

    void append(const char *text, std::size_t size)
    {
        if(!active)
            return;
        message.text.append(text, size);
        if(!message.text.empty() && message.text.back() == '\n')
            close();
    }

    /// Delivers what is open, if there is any text; what follows goes on without a header.
    void close()
    {
        if(!message.text.empty())
        {
            LogMessage whole = message;
            message.text.clear();
            const bool header = withHeader;
            withHeader = false;
            osgLog().deliver(whole, header);
        }
    }

    void open(LogLevel level, const Char8 *module, const Char8 *file, UInt32 line)
    {
        close();
        message.level = level;
        message.module = module != nullptr ? module : "";
        message.file = Log::fileStem(file);
        message.line = line;
        active = true;
        withHeader = true;
    }

    /// Goes on at a level without a header; closes what is open at another level.
    void proceed(LogLevel level)
    {
        if(!active || message.level != level)
        {
            close();
            message = LogMessage();
            message.level = level;
            message.module = "OpenSG";
            active = true;
            withHeader = false;
        }
    }

    static LogThread &current();
};

namespace
{

/// The calling thread's state; a plain pointer, so that logging works while the thread's objects go.
thread_local LogThread *currentThread = nullptr;

/// Delivers what is open when the thread ends.
struct LogThreadEnd
{
    ~LogThreadEnd()
    {
        if(currentThread == nullptr)
            return;
        currentThread->close();
        delete currentThread;
        currentThread = nullptr;
    }
    void touch()
    {
    }
};

thread_local LogThreadEnd threadEnd;

MessageBuffer::int_type MessageBuffer::overflow(int_type c)
{
    if(!traits_type::eq_int_type(c, traits_type::eof()))
    {
        const char one = traits_type::to_char_type(c);
        LogThread::current().append(&one, 1);
    }
    return traits_type::not_eof(c);
}

std::streamsize MessageBuffer::xsputn(const char *text, std::streamsize size)
{
    LogThread::current().append(text, static_cast<std::size_t>(size));
    return size;
}

/// What `osgLog() << x` goes to: a plain stream at level LOG_LOG where nothing is open.
class LogBuffer : public MessageBuffer
{
  protected:
    int_type overflow(int_type c) override
    {
        prepare();
        return MessageBuffer::overflow(c);
    }
    std::streamsize xsputn(const char *text, std::streamsize size) override
    {
        prepare();
        return MessageBuffer::xsputn(text, size);
    }

  private:
    static void prepare()
    {
        LogThread &thread = LogThread::current();
        if(thread.message.text.empty() && !thread.withHeader)
            thread.proceed(LOG_LOG);
    }
};

} // namespace

LogThread &LogThread::current()
{
    if(currentThread == nullptr)
    {
        threadEnd.touch();
        currentThread = new LogThread;
    }
    return *currentThread;
}

struct Log::State
{
    LogBuffer streamBuffer;
    LogLevel level = LOG_NOTICE;
    LogType type = LOG_STDERR;
    UInt32 elements = LOG_TYPE_HEADER | LOG_FILE_HEADER | LOG_LINE_HEADER;
    bool levelFromEnvironment = false;
    bool fileFromEnvironment = false;
    bool atLineStart = true;
    std::FILE *file = nullptr;
    std::string buffer;
    std::set<std::string> inactiveModules;
    std::vector<std::pair<LogSink *, LogLevel>> sinks;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

Log *Log::instance()
{
    // Never destroyed: destructors of static objects log, too.
    static Log *const log = new Log;
    return log;
}

Log::Log() : std::ostream(nullptr), _reach(LOG_NOTICE), _modulesOff(false), _state(new State)
{
    rdbuf(&_state->streamBuffer);
    readEnvironment();
}

Log::~Log()
{
    if(_state->file != nullptr)
        std::fclose(_state->file);
    rdbuf(nullptr);
    delete _state;
}

void Log::readEnvironment()
{
    const char *level = std::getenv("OSG_LOG_LEVEL");
    if(level != nullptr && parseLevel(level, _state->level))
        _state->levelFromEnvironment = true;
    updateReach();

    const char *file = std::getenv("OSG_LOG_FILE");
    if(file != nullptr && *file != '\0')
        _state->fileFromEnvironment = setLogFile(file);
}

/// Called with the lock held, or before anyone else can see the log.
void Log::updateReach()
{
    int reach = _state->level;
    for(const auto &sink : _state->sinks)
        reach = std::max(reach, static_cast<int>(sink.second));
    _reach.store(reach, std::memory_order_relaxed);
}

void Log::setLogLevel(LogLevel level, bool force)
{
    std::lock_guard<std::mutex> lock(_mutex);
    if(_state->levelFromEnvironment && !force)
        return;
    _state->level = level;
    updateReach();
}

LogLevel Log::getLogLevel() const
{
    std::lock_guard<std::mutex> lock(_mutex);
    return _state->level;
}

void Log::setLogType(LogType type, bool force)
{
    std::lock_guard<std::mutex> lock(_mutex);
    if(_state->fileFromEnvironment && !force)
        return;
    _state->type = type;
    _state->atLineStart = true;
}

LogType Log::getLogType() const
{
    std::lock_guard<std::mutex> lock(_mutex);
    return _state->type;
}

bool Log::setLogFile(const Char8 *fileName, bool force)
{
    std::lock_guard<std::mutex> lock(_mutex);
    if(_state->fileFromEnvironment && !force)
        return false;

    std::FILE *file = nullptr;
    if(fileName != nullptr && *fileName != '\0')
    {
        file = std::fopen(fileName, "w");
        if(file == nullptr)
            return false;
    }
    if(_state->file != nullptr)
        std::fclose(_state->file);
    _state->file = file;
    _state->type = file != nullptr ? LOG_FILE : LOG_STDERR;
    _state->atLineStart = true;
    return true;
}

void Log::setHeaderElem(UInt32 elements)
{
    std::lock_guard<std::mutex> lock(_mutex);
    _state->elements = elements;
}

UInt32 Log::getHeaderElem() const
{
    std::lock_guard<std::mutex> lock(_mutex);
    return _state->elements;
}

void Log::addHeaderElem(LogHeaderElem element)
{
    std::lock_guard<std::mutex> lock(_mutex);
    _state->elements |= static_cast<UInt32>(element);
}

void Log::delHeaderElem(LogHeaderElem element)
{
    std::lock_guard<std::mutex> lock(_mutex);
    _state->elements &= ~static_cast<UInt32>(element);
}

void Log::setModuleActive(const Char8 *module, bool active)
{
    if(module == nullptr)
        return;
    std::lock_guard<std::mutex> lock(_mutex);
    if(active)
        _state->inactiveModules.erase(module);
    else
        _state->inactiveModules.insert(module);
    _modulesOff.store(!_state->inactiveModules.empty(), std::memory_order_relaxed);
}

bool Log::checkModule(const Char8 *module) const
{
    if(module == nullptr || !_modulesOff.load(std::memory_order_relaxed))
        return true;
    std::lock_guard<std::mutex> lock(_mutex);
    return _state->inactiveModules.count(module) == 0;
}

std::ostream &Log::doHeader(LogLevel level, const Char8 *module, const Char8 *file, UInt32 line)
{
    LogThread &thread = LogThread::current();
    if(!checkLevel(level) || !checkModule(module))
    {
        thread.close();
        thread.active = false;
        return thread.nowhere;
    }
    thread.open(level, module, file, line);
    return thread.stream;
}

void Log::doLog(const Char8 *format, ...)
{
    LogThread &thread = LogThread::current();
    va_list arguments;
    va_start(arguments, format);
    const std::string text = formatText(format, arguments);
    va_end(arguments);
    thread.append(text.data(), text.size());
}

std::ostream &Log::stream(LogLevel level)
{
    LogThread &thread = LogThread::current();
    if(!checkLevel(level))
        return thread.nowhere;
    thread.proceed(level);
    return thread.stream;
}

void Log::send(LogLevel level, const Char8 *module, const Char8 *file, UInt32 line, const std::string &text)
{
    LogThread &thread = LogThread::current();
    thread.close();
    if(!checkLevel(level) || !checkModule(module))
        return;
    deliver(LogMessage{level, module != nullptr ? module : "", fileStem(file), line, text}, true);
}

void Log::begin(LogLevel level, const Char8 *module, const Char8 *file, UInt32 line, const std::string &text)
{
    doHeader(level, module, file, line);
    LogThread::current().append(text.data(), text.size());
}

void Log::flushMessage()
{
    LogThread::current().close();
}

void Log::addSink(LogSink *sink, LogLevel level)
{
    if(sink == nullptr)
        return;
    std::lock_guard<std::mutex> lock(_mutex);
    _state->sinks.emplace_back(sink, level);
    updateReach();
}

void Log::removeSink(LogSink *sink)
{
    std::lock_guard<std::mutex> lock(_mutex);
    auto &sinks = _state->sinks;
    const auto isThis = [sink](const auto &entry) { return entry.first == sink; };
    sinks.erase(std::remove_if(sinks.begin(), sinks.end(), isThis), sinks.end());
    updateReach();
}

std::string Log::getBuffer() const
{
    std::lock_guard<std::mutex> lock(_mutex);
    return _state->buffer;
}

void Log::clearBuffer()
{
    std::lock_guard<std::mutex> lock(_mutex);
    _state->buffer.clear();
}

const Char8 *Log::levelName(LogLevel level)
{
    const int index = static_cast<int>(level);
    return index >= 0 && index < numLevels ? levelNames[index] : "";
}

std::string Log::fileStem(const Char8 *path)
{
    std::string stem = path != nullptr ? path : "";
    const std::size_t folder = stem.find_last_of("/\\");
    if(folder != std::string::npos)
        stem.erase(0, folder + 1);
    const std::size_t suffix = stem.rfind('.');
    if(suffix != std::string::npos && suffix != 0)
        stem.erase(suffix);
    return stem;
}

void Log::deliver(const LogMessage &message, bool withHeader)
{
    LogThread &thread = LogThread::current();
    // A sink that logs would wait for itself.
    if(thread.delivering)
        return;

    std::lock_guard<std::mutex> lock(_mutex);
    if(!_state->sinks.empty())
    {
        thread.delivering = true;
        for(const auto &sink : _state->sinks)
            if(message.level <= sink.second)
                sink.first->receive(message);
        thread.delivering = false;
        return;
    }
    if(message.level > _state->level)
        return;
    write((withHeader ? header(message) : std::string()) + message.text);
}

/// Called with the lock held.
std::string Log::header(const LogMessage &message) const
{
    const UInt32 elements = _state->elements;
    std::string text;
    // A message without a line end doesn't get another one's header behind it.
    if((elements & LOG_BEGIN_NEWLINE_HEADER) != 0 || !_state->atLineStart)
        text += '\n';
    if((elements & LOG_TYPE_HEADER) != 0)
        text.append(levelName(message.level)).append(": ");
    if((elements & LOG_TIMESTAMP_HEADER) != 0)
    {
        const std::chrono::duration<double> age = std::chrono::steady_clock::now() - _state->start;
        char stamp[48];
        std::snprintf(stamp, sizeof(stamp), "[%.3f] ", age.count());
        text += stamp;
    }
    if((elements & LOG_MODULE_HEADER) != 0)
        text += "(" + message.module + ") ";
    if((elements & LOG_FILE_HEADER) != 0)
        text += message.file;
    if((elements & LOG_LINE_HEADER) != 0)
        text += "(" + std::to_string(message.line) + ")";
    if((elements & (LOG_FILE_HEADER | LOG_LINE_HEADER)) != 0)
        text += ": ";
    if((elements & LOG_TAB_HEADER) != 0)
        text += '\t';
    if((elements & LOG_END_NEWLINE_HEADER) != 0)
        text += '\n';
    return text;
}

/// Called with the lock held.
void Log::write(const std::string &text)
{
    if(text.empty())
        return;
    _state->atLineStart = text.back() == '\n';

    std::FILE *file = nullptr;
    switch(_state->type)
    {
        case LOG_NONE:
            return;
        case LOG_BUFFER:
            _state->buffer += text;
            return;
        case LOG_FILE:
            file = _state->file;
            break;
        case LOG_STDOUT:
            file = stdout;
            break;
        case LOG_STDERR:
            file = stderr;
            break;
    }
    if(file == nullptr)
        return;
    std::fwrite(text.data(), 1, text.size(), file);
    std::fflush(file);
}

void initLog()
{
    Log::instance();
}

Log &osgLog()
{
    return *Log::instance();
}

std::ostream &endLog(std::ostream &stream)
{
    return stream << std::endl;
}

LogLine::LogLine(LogLevel level, const Char8 *module, const Char8 *file, UInt32 line)
    : _level(level), _module(module), _file(file), _line(line), _sent(false)
{
}

LogLine::~LogLine()
{
    if(_sent)
        return;
    if(_module != nullptr)
        osgLog().begin(_level, _module, _file, _line, _text.str());
    else
        osgLog().stream(_level) << _text.str();
}

void LogLine::doLog(const Char8 *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = formatText(format, arguments);
    va_end(arguments);
    _sent = true;
    if(_module != nullptr)
        osgLog().send(_level, _module, _file, _line, text);
    else
    {
        osgLog().stream(_level) << text;
        osgLog().flushMessage();
    }
}

OSG_END_NAMESPACE
