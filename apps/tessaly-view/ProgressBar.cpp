/// \file
/// A bar on a terminal's line that tells how far the work is.

#include "ProgressBar.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ostream>
#include <utility>

namespace viewer
{

namespace
{

/// To the line's begin, and erase to its end.
const char *const eraseLine = "\r\033[K";

} // namespace

ProgressBar::ProgressBar(std::ostream &out, bool enabled, Clock clock)
    : _out(out), _clock(std::move(clock)), _begin(_clock()), _enabled(enabled)
{
}

ProgressBar::~ProgressBar()
{
    clear();
}

void ProgressBar::show(double done, const std::string &what)
{
    if (!_enabled || _clock() - _begin <= blink)
    {
        return;
    }
    _out << eraseLine << line(done, what) << std::flush;
    _visible = true;
}

void ProgressBar::clear()
{
    if (_visible)
    {
        _out << eraseLine << std::flush;
        _visible = false;
    }
}

std::string ProgressBar::line(double done, const std::string &what)
{
    const double share = done > 0.0 ? std::min(done, 1.0) : 0.0;
    const auto full = static_cast<std::size_t>(share * cells);
    char percent[16];
    std::snprintf(percent, sizeof(percent), "%3d %% ", static_cast<int>(share * 100.0));
    return "[" + std::string(full, '#') + std::string(cells - full, '.') + "] " + percent + what;
}

ProgressBar::Clock ProgressBar::steadyClock()
{
    return []
    {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration<double>(now).count();
    };
}

} // namespace viewer
