#ifndef TESSALY_VIEW_STDOUTGUARD_H
#define TESSALY_VIEW_STDOUTGUARD_H

/// \file
/// Keeps standard output for the program's own words.

namespace viewer
{

/// The library tells about volumes on standard output by design. While a guard lives, whatever is written
/// there, in whatever way, goes nowhere, or to standard error. One at a time.
class StdoutGuard
{
public:
    enum class To
    {
        Nowhere,
        StandardError,
    };

    explicit StdoutGuard(To to);
    ~StdoutGuard();
    StdoutGuard(const StdoutGuard &) = delete;
    StdoutGuard &operator=(const StdoutGuard &) = delete;

private:
    int _saved = -1; ///< a copy of what standard output was, -1 where nothing was changed
};

} // namespace viewer

#endif
