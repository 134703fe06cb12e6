#include "OSGBaseInitFunctions.h"

#include <vector>

#include "OSGChangeList.h"
#include "OSGFieldContainerFactory.h"
#include "OSGLog.h"
#include "OSGThread.h"

OSG_BEGIN_NAMESPACE

SystemState GlobalSystemState = Startup;

namespace
{

struct Functions
{
    std::vector<InitFuncF> init;
    std::vector<ExitFuncF> exit;
    bool initialized = false;
};

Functions &functions()
{
    static Functions *const all = new Functions;
    return *all;
}

} // namespace

void addInitFunction(InitFuncF function)
{
    functions().init.push_back(function);
    if(functions().initialized)
        function();
}

void addSystemExitFunction(ExitFuncF function)
{
    functions().exit.push_back(function);
}

bool osgInit(int, char **)
{
    if(functions().initialized)
        return true;
    bool good = ThreadManager::initialize() && FieldContainerFactory::the()->initialize();
    functions().initialized = true;
    const std::vector<InitFuncF> init = functions().init;
    for(const InitFuncF function : init)
        good = function() && good;
    GlobalSystemState = Running;
    return good;
}

bool osgExit()
{
    if(!functions().initialized)
        return true;
    GlobalSystemState = Shutdown;
    bool good = true;
    const std::vector<ExitFuncF> exit = functions().exit;
    for(auto it = exit.rbegin(); it != exit.rend(); ++it)
        good = (*it)() && good;
    functions().initialized = false;
    good = FieldContainerFactory::the()->terminate() && good;
    Thread::getCurrentChangeList()->clearAll();
    good = ThreadManager::terminate() && good;
    GlobalSystemState = Startup;
    return good;
}

OSG_END_NAMESPACE
