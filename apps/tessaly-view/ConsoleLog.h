#ifndef TESSALY_VIEW_CONSOLELOG_H
#define TESSALY_VIEW_CONSOLELOG_H

/// \file
/// Brings the log of the libraries to a terminal, in the program's own form.

#include <OpenSG/OSGLog.h>

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace viewer
{

/// How much of the log a user sees.
enum class Chatter
{
    Quiet,   ///< nothing
    Normal,  ///< warnings and worse
    Verbose, ///< notices too
};

/// Takes the log's messages for as long as it lives. Messages that are held back are not shown: whoever held
/// them back tells what came of them.
class ConsoleLog : private osg::LogSink
{
public:
    /// \param out gets one line a message, "tessaly-view: warning: ..." or, for notices, the text alone
    /// \param beforeLine called ahead of each line, to take a progress bar away
    ConsoleLog(std::ostream &out, Chatter chatter, std::function<void()> beforeLine);
    ~ConsoleLog() override;
    ConsoleLog(const ConsoleLog &) = delete;
    ConsoleLog &operator=(const ConsoleLog &) = delete;

    /// Holds warnings back from now on.
    void hold();
    /// Ends that. The text of the first warning that was held back, one line without its end, or "".
    std::string drop();
    /// Ends that, and shows what was held back.
    void release();

private:
    void receive(const osg::LogMessage &message) override;
    void show(const osg::LogMessage &message);

    std::ostream &_out;
    Chatter _chatter;
    std::function<void()> _beforeLine;
    bool _holding = false;
    std::vector<osg::LogMessage> _held;
};

} // namespace viewer

#endif
