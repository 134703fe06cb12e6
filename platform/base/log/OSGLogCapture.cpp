/// \file
/// Records the messages of the log for as long as an object lives.

#include "OSGLogCapture.h"

OSG_BEGIN_NAMESPACE

LogCapture::LogCapture(LogLevel level)
{
    osgLog().flushMessage();
    osgLog().addSink(this, level);
}

LogCapture::~LogCapture()
{
    osgLog().flushMessage();
    osgLog().removeSink(this);
}

std::vector<LogMessage> LogCapture::messages() const
{
    osgLog().flushMessage();
    std::lock_guard<std::mutex> lock(_mutex);
    return _messages;
}

std::string LogCapture::text() const
{
    std::string all;
    for(const LogMessage &message : messages())
        all += message.text;
    return all;
}

std::string LogCapture::text(LogLevel level) const
{
    std::string all;
    for(const LogMessage &message : messages())
        if(message.level == level)
            all += message.text;
    return all;
}

UInt32 LogCapture::count() const
{
    return static_cast<UInt32>(messages().size());
}

UInt32 LogCapture::count(LogLevel level) const
{
    UInt32 number = 0;
    for(const LogMessage &message : messages())
        number += message.level == level;
    return number;
}

bool LogCapture::contains(LogLevel level, const std::string &part) const
{
    for(const LogMessage &message : messages())
        if(message.level == level && message.text.find(part) != std::string::npos)
            return true;
    return false;
}

void LogCapture::clear()
{
    osgLog().flushMessage();
    std::lock_guard<std::mutex> lock(_mutex);
    _messages.clear();
}

void LogCapture::receive(const LogMessage &message)
{
    std::lock_guard<std::mutex> lock(_mutex);
    _messages.push_back(message);
}

OSG_END_NAMESPACE
