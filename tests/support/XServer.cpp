/// \file
/// An X server of the test's own, without a screen.

#include "support/XServer.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

extern char **environ;

namespace test
{

namespace
{

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds startLimit(30);
constexpr std::chrono::seconds stopLimit(10);

/// The environment without what is meant for the test's own process.
std::vector<char *> serverEnvironment()
{
    std::vector<char *> kept;
    for (char **entry = environ; *entry != nullptr; ++entry)
    {
        if (std::strncmp(*entry, "LD_PRELOAD=", 11) != 0 && std::strncmp(*entry, "DISPLAY=", 8) != 0)
        {
            kept.push_back(*entry);
        }
    }
    kept.push_back(nullptr);
    return kept;
}

/// What comes through a pipe up to the first line end, or "" if that does not come in time.
std::string readLine(int pipe)
{
    const Clock::time_point limit = Clock::now() + startLimit;
    std::string line;
    while (Clock::now() < limit)
    {
        pollfd waiting = {pipe, POLLIN, 0};
        if (poll(&waiting, 1, 100) <= 0)
        {
            continue;
        }
        char letter = 0;
        if (read(pipe, &letter, 1) != 1)
        {
            return "";
        }
        if (letter == '\n')
        {
            return line;
        }
        line += letter;
    }
    return "";
}

} // namespace

XServer::~XServer()
{
    stop();
}

bool XServer::start()
{
    if (isRunning())
    {
        return true;
    }
    _error.clear();
    int ends[2];
    // Xvfb inherits the end that it writes to; nobody else shall.
    if (pipe2(ends, O_CLOEXEC) != 0)
    {
        _error = "Xvfb: no pipe";
        return false;
    }
    const std::string number = std::to_string(ends[1]);
    const char *const arguments[] = {"Xvfb",   "-displayfd", number.c_str(), "-screen", "0",   "1280x1024x24",
                                     "-nolisten", "tcp",     "-noreset",     "+extension", "GLX", nullptr};
    std::vector<char *> environment = serverEnvironment();

    _process = fork();
    if (_process == 0)
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        fcntl(ends[1], F_SETFD, 0);
        const int nowhere = open("/dev/null", O_RDWR);
        dup2(nowhere, 0);
        dup2(nowhere, 1);
        dup2(nowhere, 2);
        execvpe("Xvfb", const_cast<char *const *>(arguments), environment.data());
        _exit(127);
    }
    close(ends[1]);
    if (_process < 0)
    {
        close(ends[0]);
        _error = "Xvfb: no process";
        return false;
    }
    const std::string display = readLine(ends[0]);
    close(ends[0]);
    if (display.empty())
    {
        kill(_process, SIGKILL);
        waitpid(_process, nullptr, 0);
        _process = -1;
        _error = "Xvfb does not start; is Debian's package xvfb installed?";
        return false;
    }

    _display = ":" + display;
    const char *const old = std::getenv("DISPLAY");
    _hadDisplay = old != nullptr;
    _oldDisplay = _hadDisplay ? old : "";
    setenv("DISPLAY", _display.c_str(), 1);
    return true;
}

void XServer::stop()
{
    if (!isRunning())
    {
        return;
    }
    kill(_process, SIGTERM);
    const Clock::time_point limit = Clock::now() + stopLimit;
    while (waitpid(_process, nullptr, WNOHANG) == 0)
    {
        if (Clock::now() > limit)
        {
            kill(_process, SIGKILL);
            waitpid(_process, nullptr, 0);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    _process = -1;
    _display.clear();
    if (_hadDisplay)
    {
        setenv("DISPLAY", _oldDisplay.c_str(), 1);
    }
    else
    {
        unsetenv("DISPLAY");
    }
}

} // namespace test
