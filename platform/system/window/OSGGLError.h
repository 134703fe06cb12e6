#ifndef _OSGGLERROR_H_
#define _OSGGLERROR_H_

/// \file
/// Checks for pending GL errors.

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

/// The text of a GL error code, "unknown GL error" for anything else.
OSG_SYSTEMLIB_DLLMAPPING const Char8 *glErrorText(UInt32 error);

/// Takes all pending GL errors of the current context and logs one warning for each,
/// "<where>: <text>: <error's text>". True if there was one. Null texts count as "".
OSG_SYSTEMLIB_DLLMAPPING bool osgGlCheckError(const Char8 *where, const Char8 *text);

OSG_END_NAMESPACE

/// Takes and logs pending GL errors under the source file's name.
#define glErr(text) ((void)::osg::osgGlCheckError(OSG_LOG_SOURCE, text))

#endif
