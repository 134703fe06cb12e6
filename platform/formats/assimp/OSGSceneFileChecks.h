#ifndef _OSGSCENEFILECHECKS_H_
#define _OSGSCENEFILECHECKS_H_

/// \file
/// Whether simple files hold what their headers promise.

#include <cstddef>
#include <string>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

// Readers allocate what a header promises and follow the counts in lists, so both are checked ahead. One line
// that tells the fault, empty where there is none.

/// A binary file must be as long as its count of triangles says, and text must end in "endsolid" and a name.
std::string findStlFault(const UInt8 *bytes, std::size_t size);

/// The header must be complete, and the data, which are followed to their end, no shorter than what it says.
std::string findPlyFault(const UInt8 *bytes, std::size_t size);

OSG_END_NAMESPACE

#endif
