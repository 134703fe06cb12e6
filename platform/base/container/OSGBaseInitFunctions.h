#ifndef _OSGBASEINITFUNCTIONS_H_
#define _OSGBASEINITFUNCTIONS_H_

/// \file
/// What libraries want done when OpenSG is initialised and when it ends.

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// Where OpenSG is in its life. Prototypes are made during Startup; GL objects are not registered for them.
enum SystemState
{
    Startup,
    Running,
    Shutdown
};

extern OSG_BASELIB_DLLMAPPING SystemState GlobalSystemState; ///< what osgInit and osgExit have done

/// What osgInit and osgExit call; false for a failure.
typedef bool (*InitFuncF)();
typedef bool (*ExitFuncF)();

/// `function` runs in osgInit, behind the initialisation of the container classes, in the order of adding; at once
/// if that is over.
OSG_BASELIB_DLLMAPPING void addInitFunction(InitFuncF function);
/// `function` runs in osgExit, ahead of the end of the container classes, in the reverse order of adding.
OSG_BASELIB_DLLMAPPING void addSystemExitFunction(ExitFuncF function);

OSG_END_NAMESPACE

#endif
