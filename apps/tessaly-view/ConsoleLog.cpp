/// \file
/// Brings the log of the libraries to a terminal, in the program's own form.

#include "ConsoleLog.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace viewer
{

namespace
{

/// Level 0 tells how things go on, for all its rank.
bool isProblem(const osg::LogMessage &message)
{
    return message.level == osg::LOG_FATAL || message.level == osg::LOG_WARNING;
}

std::string oneLine(std::string text)
{
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
    {
        text.pop_back();
    }
    return text;
}

} // namespace

ConsoleLog::ConsoleLog(std::ostream &out, Chatter chatter, std::function<void()> beforeLine)
    : _out(out), _chatter(chatter), _beforeLine(std::move(beforeLine))
{
    osg::osgLog().addSink(this, chatter == Chatter::Verbose ? osg::LOG_NOTICE : osg::LOG_WARNING);
}

ConsoleLog::~ConsoleLog()
{
    osg::osgLog().removeSink(this);
}

void ConsoleLog::hold()
{
    osg::osgLog().flushMessage();
    _holding = true;
}

std::string ConsoleLog::drop()
{
    osg::osgLog().flushMessage();
    _holding = false;
    std::string first;
    if (!_held.empty())
    {
        // A driver's words may have lines of their own.
        first = oneLine(_held.front().text);
        std::replace(first.begin(), first.end(), '\n', ' ');
    }
    _held.clear();
    return first;
}

void ConsoleLog::release()
{
    osg::osgLog().flushMessage();
    _holding = false;
    for (const osg::LogMessage &message : _held)
    {
        show(message);
    }
    _held.clear();
}

void ConsoleLog::receive(const osg::LogMessage &message)
{
    if (_holding && isProblem(message))
    {
        _held.push_back(message);
        return;
    }
    show(message);
}

void ConsoleLog::show(const osg::LogMessage &message)
{
    const std::string text = oneLine(message.text);
    if (text.empty() || _chatter == Chatter::Quiet || (_chatter == Chatter::Normal && !isProblem(message)))
    {
        return;
    }
    _beforeLine();
    if (isProblem(message))
    {
        _out << "tessaly-view: " << (message.level == osg::LOG_FATAL ? "error: " : "warning: ");
    }
    _out << text << std::endl;
}

} // namespace viewer
