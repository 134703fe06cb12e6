#ifndef TESSALY_BENCH_QUIET_H
#define TESSALY_BENCH_QUIET_H

/// \file
/// Keeps what the library tells about volumes away from the results.

#include <OpenSG/OSGLog.h>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

/// Lets nothing but warnings and worse through, to standard error, while it lives.
class QuietLog : public osg::LogSink
{
public:
    QuietLog() { osg::osgLog().addSink(this, osg::LOG_WARNING); }
    QuietLog(const QuietLog &) = delete;
    QuietLog &operator=(const QuietLog &) = delete;
    ~QuietLog() override { osg::osgLog().removeSink(this); }

    void receive(const osg::LogMessage &message) override
    {
        if(message.level == osg::LOG_FATAL || message.level == osg::LOG_WARNING)
            std::fprintf(stderr, "%s\n", message.text.c_str());
    }
};

/// Sends what is written to standard output nowhere while it lives.
class Hush
{
public:
    Hush()
    {
        std::fflush(stdout);
        _kept = dup(STDOUT_FILENO);
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }
    Hush(const Hush &) = delete;
    Hush &operator=(const Hush &) = delete;
    ~Hush()
    {
        std::fflush(stdout);
        dup2(_kept, STDOUT_FILENO);
        close(_kept);
    }

    /// Standard output as it was before; owned by this object.
    int kept() const { return _kept; }

private:
    int _kept = -1;
};

#endif
