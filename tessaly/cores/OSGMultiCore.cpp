#include <Tessaly/OSGMultiCore.h>

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPointerText.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

namespace
{

/// Switches frustum culling off for as long as it lives: the carrier has no volume and would be culled.
class WithoutCulling
{
  public:
    explicit WithoutCulling(Action *action) : _action(dynamic_cast<DrawActionBase *>(action))
    {
        if(_action != nullptr && !_action->getFrustumCulling())
            _action = nullptr;
        if(_action != nullptr)
            _action->setFrustumCulling(false);
    }
    ~WithoutCulling()
    {
        if(_action != nullptr)
            _action->setFrustumCulling(true);
    }
    WithoutCulling(const WithoutCulling &) = delete;
    WithoutCulling &operator=(const WithoutCulling &) = delete;

  private:
    DrawActionBase *_action;
};

/// The calling thread works on another aspect for as long as it lives.
class OnAspect
{
  public:
    explicit OnAspect(UInt32 aspect) : _own(currentThreadState.aspect) { currentThreadState.aspect = aspect; }
    ~OnAspect() { currentThreadState.aspect = _own; }
    OnAspect(const OnAspect &) = delete;
    OnAspect &operator=(const OnAspect &) = delete;

  private:
    UInt32 _own;
};

/// A core that skips ends the dispatch, but not the way to the children.
Action::ResultE answerOf(Action::ResultE result)
{
    return result == Action::Skip ? Action::Continue : result;
}

} // namespace

void MultiCore::initMethod()
{
    DrawAction::registerEnterDefault(getClassType(), makeFunctor(&MultiCore::drawEnter));
    DrawAction::registerLeaveDefault(getClassType(), makeFunctor(&MultiCore::drawLeave));
    IntersectAction::registerEnterDefault(getClassType(), makeFunctor(&MultiCore::intersectEnter));
    IntersectAction::registerLeaveDefault(getClassType(), makeFunctor(&MultiCore::intersectLeave));
    RenderAction::registerEnterDefault(getClassType(), makeFunctor(&MultiCore::renderEnter));
    RenderAction::registerLeaveDefault(getClassType(), makeFunctor(&MultiCore::renderLeave));
    IntersectActorBase::regClassEnter(makeActorFunctor(&MultiCore::intersectActorEnter), getClassType());
    IntersectActorBase::regClassLeave(makeActorFunctor(&MultiCore::intersectActorLeave), getClassType());
}

MultiCore::MultiCore() = default;

MultiCore::MultiCore(const MultiCore &source) : Inherited(source) {}

// Other aspects' carriers are left by now; the references on the cores went in onDestroy, once for all
// aspects.
MultiCore::~MultiCore()
{
    releaseCarrier();
}

void MultiCore::onCreate(const MultiCore *source)
{
    Inherited::onCreate(source);
    _kept.follow(_mfCores, ChangedOrigin::External);
}

void MultiCore::onDestroy()
{
    releaseCarrier();
    _kept.release();
    Inherited::onDestroy();
}

void MultiCore::makeCarrier()
{
    if(_tmpNode != NullFC)
        return;
    _tmpNode = Node::create();
    addRefCP(_tmpNode);
    _carrierAspect = Thread::getAspect();
}

void MultiCore::releaseCarrier()
{
    if(_tmpNode == NullFC)
        return;
    // The link from the carrier to its core exists on the carrier's aspect alone, and is to be undone there.
    const OnAspect there(_carrierAspect);
    clearRefCP(_tmpNode);
}

void MultiCore::addCore(const NodeCorePtr &core)
{
    insertCore(_mfCores.size(), core);
}

void MultiCore::insertCore(UInt32 index, const NodeCorePtr &core)
{
    if(core == NullFC)
        return;
    _kept.keep(core);
    _mfCores.insert(_mfCores.begin() + index, core);
}

void MultiCore::subCore(const NodeCorePtr &core)
{
    const Int32 index = findCore(core);
    if(index < 0)
    {
        // The spelling of the message is meant.
        SWARNING << "MultiCore(" << static_cast<const void *>(this) << ")::subCcore: " << core
                 << " is not one of my cores!" << std::endl;
        return;
    }
    subCore(UInt32(index));
}

void MultiCore::subCore(UInt32 index)
{
    if(index == _mfCores.size())
        return;
    const NodeCorePtr old = _mfCores[index];
    _mfCores.erase(_mfCores.begin() + index);
    _kept.drop(old);
}

void MultiCore::replaceCore(UInt32 index, const NodeCorePtr &newCore)
{
    if(newCore == NullFC || index >= _mfCores.size())
        return;
    const NodeCorePtr old = _mfCores[index];
    _kept.keep(newCore);
    _mfCores[index] = newCore;
    _kept.drop(old);
}

bool MultiCore::replaceCoreBy(const NodeCorePtr &oldCore, const NodeCorePtr &newCore)
{
    const Int32 index = findCore(oldCore);
    if(newCore == NullFC || index < 0)
        return false;
    replaceCore(UInt32(index), newCore);
    return true;
}

Int32 MultiCore::findCore(const NodeCorePtr &core) const
{
    const auto found = _mfCores.find(core);
    return found == _mfCores.end() ? -1 : Int32(found - _mfCores.begin());
}

NodeCorePtr MultiCore::getCore(UInt32 index) const
{
    return _mfCores[index];
}

UInt32 MultiCore::getNCores() const
{
    return _mfCores.size();
}

void MultiCore::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & CoresFieldMask) != 0)
    {
        _kept.follow(_mfCores, origin);
        invalidateVolume();
    }
    Inherited::changed(whichField, origin);
}

// The one class of the library that has no line of its own; that is meant.
void MultiCore::dump(UInt32 indent, const BitVector flags) const
{
    Group::dump(indent, flags);
}

Action::ResultE MultiCore::renderEnter(Action *action)
{
    makeCarrier();
    const WithoutCulling culling(action);
    Action::ResultE result = Action::Continue;
    for(UInt32 i = 0; i < _mfCores.size() && result == Action::Continue; ++i)
    {
        _tmpNode->setCore(_mfCores[i]);
        result = action->callEnter(_tmpNode);
    }
    return answerOf(result);
}

// Walks all cores also where the way in has ended early; that is meant.
Action::ResultE MultiCore::renderLeave(Action *action)
{
    makeCarrier();
    const WithoutCulling culling(action);
    Action::ResultE result = Action::Continue;
    for(UInt32 i = _mfCores.size(); i > 0 && result == Action::Continue; --i)
    {
        _tmpNode->setCore(_mfCores[i - 1]);
        result = action->callLeave(_tmpNode);
    }
    return answerOf(result);
}

Action::ResultE MultiCore::drawEnter(Action *action)
{
    return renderEnter(action);
}

Action::ResultE MultiCore::drawLeave(Action *action)
{
    return renderLeave(action);
}

Action::ResultE MultiCore::intersectEnter(Action *)
{
    return Action::Continue;
}

Action::ResultE MultiCore::intersectLeave(Action *)
{
    return Action::Continue;
}

NewActionTypes::ResultE MultiCore::intersectActorEnter(FunctorArgumentType &)
{
    return NewActionTypes::Continue;
}

NewActionTypes::ResultE MultiCore::intersectActorLeave(FunctorArgumentType &)
{
    return NewActionTypes::Continue;
}

OSG_END_NAMESPACE
