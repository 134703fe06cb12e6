#ifndef _OSGTIME_H_
#define _OSGTIME_H_

/// \file
/// The clocks that animation and measuring go by.

#include <chrono>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// Seconds of a clock that never goes back; only differences mean something.
inline Time getSystemTime()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Milliseconds of the same clock, wrapping around after 2^32: take differences in UInt32.
inline UInt32 getSystemTimeMs()
{
    using std::chrono::milliseconds;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<UInt32>(std::chrono::duration_cast<milliseconds>(now).count());
}

OSG_END_NAMESPACE

#endif
