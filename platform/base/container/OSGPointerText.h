#ifndef _OSGPOINTERTEXT_H_
#define _OSGPOINTERTEXT_H_

/// \file
/// The form in which messages show container pointers.

#include <ostream>

#include "OSGFieldContainerPtr.h"

OSG_BEGIN_NAMESPACE

/// Writes "FCPtr 0x", the pointer in hexadecimal, " ", the name of the container's class, "Ptr(0x", the address of the calling
/// thread's copy and ")"; for null "FCPtr 0x", the pointer and ":NullFC". The stream's number format stays as it was.
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &stream, const FieldContainerPtr &container);

OSG_END_NAMESPACE

#endif
