/// \file
/// Keeps standard output for the program's own words.

#include "StdoutGuard.h"

#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <unistd.h>

namespace viewer
{

StdoutGuard::StdoutGuard(To to)
{
    std::cout.flush();
    std::fflush(stdout);
    const int target = to == To::Nowhere ? open("/dev/null", O_WRONLY | O_CLOEXEC) : dup(STDERR_FILENO);
    if (target < 0)
    {
        return;
    }
    _saved = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    if (_saved >= 0)
    {
        dup2(target, STDOUT_FILENO);
    }
    close(target);
}

StdoutGuard::~StdoutGuard()
{
    if (_saved < 0)
    {
        return;
    }
    std::cout.flush();
    std::fflush(stdout);
    dup2(_saved, STDOUT_FILENO);
    close(_saved);
}

} // namespace viewer
