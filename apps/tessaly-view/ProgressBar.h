#ifndef TESSALY_VIEW_PROGRESSBAR_H
#define TESSALY_VIEW_PROGRESSBAR_H

/// \file
/// A bar on a terminal's line that tells how far the work is.

#include <functional>
#include <iosfwd>
#include <string>

namespace viewer
{

/// Draws nothing until the work has taken longer than a blink, and takes its line away in the end.
class ProgressBar
{
public:
    /// Seconds on a clock that never goes back.
    using Clock = std::function<double()>;

    /// What takes no longer than this many seconds shows no bar.
    static constexpr double blink = 0.3;
    static constexpr int cells = 30;

    /// \param out the terminal; must outlive the bar
    /// \param enabled false draws nothing, ever: `out` is no terminal
    ProgressBar(std::ostream &out, bool enabled, Clock clock = steadyClock());
    ~ProgressBar();
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;

    /// Tells what comes next and how much is done.
    /// \param done 0 to 1; what is outside is brought inside
    void show(double done, const std::string &what);

    /// Takes the bar away; a later show() brings it back.
    void clear();

    /// "[#########.....................]  31 % drawing"
    static std::string line(double done, const std::string &what);

    static Clock steadyClock();

private:
    std::ostream &_out;
    Clock _clock;
    double _begin;
    bool _enabled;
    bool _visible = false;
};

} // namespace viewer

#endif
