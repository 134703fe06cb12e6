#ifndef TESSALY_TESSALY_H
#define TESSALY_TESSALY_H

/// \file
/// The library's entry.

#include <OpenSG/OSGConfig.h>

#include "OSGTessalyDef.h"

OSG_BEGIN_NAMESPACE

/// Does nothing and registers nothing. A host that calls it has to link the library, which is thereby loaded;
/// the classes are registered by then. May be called at any time, also before osgInit, any number of times.
OSG_TESSALY_DLLMAPPING void initTessalyExtention(void);

OSG_END_NAMESPACE

#endif
