#ifndef _OSGINTERSECTACTORBASE_H_
#define _OSGINTERSECTACTORBASE_H_

/// \file
/// The actor that cores register their intersection with.

#include "OSGIntersectActor.h"

#endif
