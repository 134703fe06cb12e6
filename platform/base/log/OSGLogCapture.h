#ifndef _OSGLOGCAPTURE_H_
#define _OSGLOGCAPTURE_H_

/// \file
/// Records the messages of the log for as long as an object lives.

#include <mutex>
#include <string>
#include <vector>

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

/// Takes the log's messages, of all threads, from its construction to its destruction, in place of the normal
/// output. Captures may overlap: each records every message. The accessors may be called on any thread; what
/// the calling thread has sent without a line end so far is delivered first.
class OSG_BASELIB_DLLMAPPING LogCapture : private LogSink
{
  public:
    /// Records messages up to `level`, whatever the log's own level is: with the default, everything.
    explicit LogCapture(LogLevel level = LOG_DEBUG);
    ~LogCapture() override;
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    /// What was logged so far.
    std::vector<LogMessage> messages() const;
    /// The texts of all messages, or of one level's, one behind the other as they were sent.
    std::string text() const;
    std::string text(LogLevel level) const;
    /// How many messages came, or came at one level.
    UInt32 count() const;
    UInt32 count(LogLevel level) const;
    /// Whether a message of the level has `part` in its text.
    bool contains(LogLevel level, const std::string &part) const;
    /// Forgets what came so far.
    void clear();

  private:
    void receive(const LogMessage &message) override;

    mutable std::mutex _mutex;
    std::vector<LogMessage> _messages;
};

OSG_END_NAMESPACE

#endif
