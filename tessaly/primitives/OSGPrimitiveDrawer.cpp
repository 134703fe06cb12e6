#include <Tessaly/OSGPrimitiveDrawer.h>

#include <atomic>

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGThread.h>
#include <OpenSG/OSGVolume.h>

#include "PluginName.h"

OSG_BEGIN_NAMESPACE

/// One loading of a plug-in.
struct PrimitiveDrawer::PlugIn
{
    void *handle = nullptr;
    DrawPrimFunction drawPrim = nullptr;
    GetBBoxFunction getBBox = nullptr;
    SetParamFunction setParam = nullptr;
    std::atomic<bool> isOpen{true};
};

/// What all aspects' copies of one core know.
struct PrimitiveDrawer::Content
{
    std::shared_ptr<PlugIn> plugIn; ///< what was asked for last; null if it could not be opened
};

void PrimitiveDrawer::initMethod()
{
    DrawAction::registerEnterDefault(getClassType(), makeFunctor(&MaterialDrawable::drawActionEnterHandler));
    DrawAction::registerLeaveDefault(getClassType(), makeFunctor(&MaterialDrawable::drawActionLeaveHandler));
    RenderAction::registerEnterDefault(getClassType(),
                                       makeFunctor(&MaterialDrawable::renderActionEnterHandler));
    RenderAction::registerLeaveDefault(getClassType(),
                                       makeFunctor(&MaterialDrawable::renderActionLeaveHandler));
    IntersectAction::registerEnterDefault(getClassType(), makeFunctor(&PrimitiveDrawer::intersect));
}

PrimitiveDrawer::PrimitiveDrawer() = default;

PrimitiveDrawer::PrimitiveDrawer(const PrimitiveDrawer &source)
    : Inherited(source), symbolPrefix(source.symbolPrefix), handle(source.handle), drawPrim(source.drawPrim),
      getBBox(source.getBBox), setParam(source.setParam), _plugIn(source._plugIn)
{
}

PrimitiveDrawer::~PrimitiveDrawer()
{
    shutdown();
}

void PrimitiveDrawer::onCreate(const PrimitiveDrawer *source)
{
    const auto content = std::make_shared<Content>();
    content->plugIn = _plugIn;
    const PrimitiveDrawerPtr self(*this);
    for(UInt32 aspect = 0; aspect < ThreadManager::getNumAspects(); ++aspect)
        self.getAspectCPtr(aspect)->_content = content;
    Inherited::onCreate(source);
}

bool PrimitiveDrawer::isLoaded() const
{
    return _plugIn != nullptr && _plugIn->isOpen.load();
}

void PrimitiveDrawer::shutdown()
{
    if(!library.isOpen())
        return;
    const std::string name = symbolPrefix + "_shutdown";
    if(const auto end = reinterpret_cast<ShutdownFunction>(library.getSymbol(name.c_str())))
        end(handle);
    // All who share the plug-in know from here on that it is gone. The pointers stay.
    _plugIn->isOpen.store(false);
    if(!library.close())
        FWARNING(("Could not close shared library %s", library.getName()));
}

void PrimitiveDrawer::load()
{
    shutdown();
    const tessaly::PluginName name = tessaly::splitPluginName(getLibName());
    symbolPrefix = name.prefix;
    // An empty name would open the program itself.
    if(name.library.empty() || !library.open(name.library.c_str()))
        library.open((name.library + ".dll").c_str());
    if(!library.isOpen())
    {
        FWARNING(("Could not open shared library %s", getLibName().c_str()));
        _content->plugIn = nullptr;
        return;
    }

    const auto symbol = [this](const char *suffix) {
        return library.getSymbol((symbolPrefix + suffix).c_str());
    };
    const auto plugIn = std::make_shared<PlugIn>();
    if(const auto initialize = reinterpret_cast<InitializeFunction>(symbol("_initialize")))
        plugIn->handle = initialize();
    plugIn->drawPrim = reinterpret_cast<DrawPrimFunction>(symbol("_drawPrim"));
    plugIn->getBBox = reinterpret_cast<GetBBoxFunction>(symbol("_getBBox"));
    plugIn->setParam = reinterpret_cast<SetParamFunction>(symbol("_setParam"));

    _plugIn = _content->plugIn = plugIn;
    handle = plugIn->handle;
    drawPrim = plugIn->drawPrim;
    getBBox = plugIn->getBBox;
    setParam = plugIn->setParam;
    if(drawPrim == nullptr || getBBox == nullptr || setParam == nullptr)
        FWARNING(("Could not load correct symbols from library %s", library.getName()));
    invalidateVolume();
}

void PrimitiveDrawer::share()
{
    if(_content->plugIn != _plugIn)
        shutdown();
    if(_content->plugIn == nullptr || _content->plugIn == _plugIn)
        return;
    _plugIn = _content->plugIn;
    handle = _plugIn->handle;
    drawPrim = _plugIn->drawPrim;
    getBBox = _plugIn->getBBox;
    setParam = _plugIn->setParam;
    invalidateVolume();
}

void PrimitiveDrawer::sendParameters()
{
    if(setParam == nullptr || !isLoaded())
    {
        FWARNING(("Missing function pointer: setParam"));
        return;
    }
    const MFString &parameters = getParamDic();
    for(UInt32 i = 0; i + 1 < parameters.size(); i += 2)
        if(setParam(handle, parameters[i].c_str(), parameters[i + 1].c_str()) == 0)
            FWARNING(("Could not set parameter %s to %s", parameters[i].c_str(), parameters[i + 1].c_str()));
    if(parameters.size() % 2 != 0)
        SWARNING << "PrimitiveDrawer: parameter " << parameters[parameters.size() - 1] << " has no value"
                 << std::endl;
}

void PrimitiveDrawer::changed(BitVector whichField, UInt32 origin)
{
    // What another aspect has loaded and told the plug-in is not done twice.
    const bool isSync = (origin & ChangedOrigin::Sync) != 0;
    if((whichField & LibNameFieldMask) != 0)
    {
        if(isSync)
            share();
        else
            load();
    }
    if((whichField & ParamDicFieldMask) != 0 && !isSync)
        sendParameters();
    Inherited::changed(whichField, origin);
}

void PrimitiveDrawer::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PrimitiveDrawer NI" << std::endl;
}

Action::ResultE PrimitiveDrawer::intersect(Action *)
{
    return Action::Continue;
}

Action::ResultE PrimitiveDrawer::drawPrimitives(DrawActionBase *)
{
    if(drawPrim == nullptr || !isLoaded())
        FWARNING(("Missing function pointer: drawPrim"));
    else
        drawPrim(handle);
    return Action::Continue;
}

void PrimitiveDrawer::adjustVolume(Volume &volume)
{
    if(getBBox == nullptr || !isLoaded())
    {
        FWARNING(("Missing function pointer: getBBox"));
        return;
    }
    Real32 first[3] = {0.f, 0.f, 0.f};
    Real32 second[3] = {0.f, 0.f, 0.f};
    getBBox(handle, first, second);
    volume.extendBy(Pnt3f(first[0], first[1], first[2]));
    volume.extendBy(Pnt3f(second[0], second[1], second[2]));
}

OSG_END_NAMESPACE
