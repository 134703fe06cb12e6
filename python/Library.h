#ifndef TESSALY_PYTHON_LIBRARY_H
#define TESSALY_PYTHON_LIBRARY_H

/// \file
/// The one door between a Python process and the library: one call at a time, nothing printed, the host's GL
/// context put back. Knows nothing of Python.

#include <functional>
#include <string>
#include <vector>

namespace binding
{

/// What a call left behind.
struct Outcome
{
    bool good = false;
    std::string error;                 ///< one line without its end, where it is not good
    std::vector<std::string> warnings; ///< the same of each, where it is good
};

/// Returns false with one line in its argument for a failure.
using Work = std::function<bool(std::string &error)>;

/// Does the work on this thread while no other thread is in the library, which is set up at the first call.
/// What the library writes to standard output goes nowhere. Problems that it logs become warnings, or, where
/// the work fails, the first of them its error. What EGL context was current is so again afterwards. To be
/// called without the interpreter's lock, since it waits.
Outcome inLibrary(const Work &work);

/// Ends the library, if it was begun, in the process that began it; from then on inLibrary() fails.
void endLibrary();

} // namespace binding

#endif
