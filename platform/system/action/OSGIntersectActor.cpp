#include "OSGIntersectActor.h"

#include <algorithm>

#include "OSGLog.h"
#include "OSGNode.h"
#include "OSGTransform.h"

OSG_BEGIN_NAMESPACE

ActorBase::~ActorBase() = default;

ActorBase::ResultE ActorBase::start()
{
    return NewActionTypes::Continue;
}

ActorBase::ResultE ActorBase::stop()
{
    return NewActionTypes::Continue;
}

void ActorBase::store(FunctorStore &functors, const FieldContainerType &type, const Functor &functor)
{
    if(functors.size() <= type.getId())
        functors.resize(type.getId() + 1);
    functors[type.getId()] = functor;
}

void ActorBase::remove(FunctorStore &functors, const FieldContainerType &type)
{
    if(type.getId() < functors.size())
        functors[type.getId()] = nullptr;
}

ActorBase::ResultE ActorBase::call(const FunctorStore &functors, FunctorArgumentType &argument)
{
    const NodeCorePtr core = argument.getNode()->getCore();
    const UInt32 type = core->getTypeId();
    if(type >= functors.size() || !functors[type])
        return NewActionTypes::Continue;
    return functors[type](core, argument);
}

NewActionBase::~NewActionBase() = default;

void NewActionBase::subActor(ActorBase *actor)
{
    _actors.erase(std::remove(_actors.begin(), _actors.end(), actor), _actors.end());
}

// The strongest answer of all actors holds.
NewActionBase::ResultE NewActionBase::enterNode(const NodePtr &node)
{
    int result = NewActionTypes::Continue;
    for(ActorBase *actor : _actors)
    {
        ActorFunctorArgument argument(this, actor, node);
        result = std::max<int>(result, actor->enterNode(argument));
    }
    return ResultE(result);
}

NewActionBase::ResultE NewActionBase::leaveNode(const NodePtr &node)
{
    int result = NewActionTypes::Continue;
    for(ActorBase *actor : _actors)
    {
        ActorFunctorArgument argument(this, actor, node);
        result = std::max<int>(result, actor->leaveNode(argument));
    }
    return ResultE(result);
}

NewActionBase::ResultE NewActionBase::startActors()
{
    for(ActorBase *actor : _actors)
        actor->start();
    return NewActionTypes::Continue;
}

NewActionBase::ResultE NewActionBase::stopActors()
{
    for(ActorBase *actor : _actors)
        actor->stop();
    return NewActionTypes::Continue;
}

DepthFirstAction *DepthFirstAction::create()
{
    return new DepthFirstAction;
}

NewActionBase::ResultE DepthFirstAction::apply(const NodePtr &root)
{
    if(root == NullFC)
    {
        SWARNING << "DepthFirstAction::apply: there is no node to start from" << std::endl;
        return NewActionTypes::Continue;
    }
    startActors();
    const ResultE result = recurse(root);
    stopActors();
    return result == NewActionTypes::Quit ? NewActionTypes::Quit : NewActionTypes::Continue;
}

NewActionBase::ResultE DepthFirstAction::recurse(const NodePtr &node)
{
    if(node == NullFC || node->getCore() == NullFC || (node->getTravMask() & getTravMask()) == 0)
        return NewActionTypes::Continue;
    const ResultE entered = enterNode(node);
    if(entered == NewActionTypes::Quit)
        return entered;
    if(entered == NewActionTypes::Continue)
    {
        for(UInt32 i = 0; i < node->getNChildren(); ++i)
        {
            const ResultE child = recurse(node->getChild(i));
            if(child == NewActionTypes::Quit)
                return child;
            if(child == NewActionTypes::Break)
                break;
        }
    }
    const ResultE left = leaveNode(node);
    return left == NewActionTypes::Quit || entered == NewActionTypes::Continue ? left : entered;
}

IntersectActorBase::FunctorStore &IntersectActorBase::enterFunctors()
{
    static FunctorStore functors;
    return functors;
}

IntersectActorBase::FunctorStore &IntersectActorBase::leaveFunctors()
{
    static FunctorStore functors;
    return functors;
}

void IntersectActorBase::regClassEnter(const Functor &functor, const FieldContainerType &type)
{
    store(enterFunctors(), type, functor);
}

void IntersectActorBase::regClassLeave(const Functor &functor, const FieldContainerType &type)
{
    store(leaveFunctors(), type, functor);
}

void IntersectActorBase::unregClassEnter(const FieldContainerType &type)
{
    remove(enterFunctors(), type);
}

void IntersectActorBase::unregClassLeave(const FieldContainerType &type)
{
    remove(leaveFunctors(), type);
}

ActorBase::ResultE IntersectActorBase::enterNode(FunctorArgumentType &argument)
{
    return call(enterFunctors(), argument);
}

ActorBase::ResultE IntersectActorBase::leaveNode(FunctorArgumentType &argument)
{
    return call(leaveFunctors(), argument);
}

IntersectActor *IntersectActor::create()
{
    return new IntersectActor;
}

void IntersectActor::setRay(const Line &ray)
{
    _ray = ray;
    reset();
}

void IntersectActor::reset()
{
    _levels.assign(1, Level{_ray, 1.0f});
    _hit = false;
    _hitDistance = _maxDistance;
    _hitObject = NullFC;
    _hitTriangle = -1;
}

ActorBase::ResultE IntersectActor::start()
{
    reset();
    return NewActionTypes::Continue;
}

Pnt3f IntersectActor::getHitPoint() const
{
    return _ray.getPosition() + _ray.getDirection() * _hitDistance;
}

bool IntersectActor::setHit(Real32 t, const NodePtr &node, Int32 triangle, const Vec3f &normal)
{
    const Real32 distance = t / _levels.back().scale;
    if(!(distance >= 0.0f && distance < _hitDistance && distance <= _maxDistance))
        return false;
    _hit = true;
    _hitDistance = distance;
    _hitObject = node;
    _hitTriangle = triangle;
    _hitNormal = normal;
    return true;
}

// The actor knows transformations itself; all other cores come through their functors.
ActorBase::ResultE IntersectActor::enterNode(FunctorArgumentType &argument)
{
    const NodePtr &node = argument.getNode();
    Real32 enter = 0.0f;
    Real32 leave = 0.0f;
    const bool missed = !node->getVolume(true).intersect(getRay(), enter, leave);
    Level level = _levels.back();
    Matrix matrix;
    node->getCore()->accumulateMatrix(matrix);
    Matrix inverse;
    bool usable = matrix.inverse(inverse);
    if(usable)
    {
        Pnt3f position;
        Vec3f direction;
        inverse.multMatrixPnt(level.ray.getPosition(), position);
        inverse.multMatrixVec(level.ray.getDirection(), direction);
        const Real32 length = direction.length();
        usable = length > 1e-30f;
        if(usable)
        {
            level.ray.setValue(position, direction);
            level.scale *= length;
        }
    }
    _levels.push_back(level);
    if(missed || !usable)
        return NewActionTypes::Skip;
    return IntersectActorBase::enterNode(argument);
}

ActorBase::ResultE IntersectActor::leaveNode(FunctorArgumentType &argument)
{
    const ResultE result = IntersectActorBase::leaveNode(argument);
    if(_levels.size() > 1)
        _levels.pop_back();
    return result;
}

OSG_END_NAMESPACE
