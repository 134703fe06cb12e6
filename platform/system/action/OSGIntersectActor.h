#ifndef _OSGINTERSECTACTOR_H_
#define _OSGINTERSECTACTOR_H_

/// \file
/// Actors, which do their work at each node while an action of their own kind walks the scene, and the one that finds
/// what a line hits.

#include <functional>
#include <map>
#include <vector>

#include "OSGLine.h"
#include "OSGMatrix.h"
#include "OSGNodeCoreFields.h"
#include "OSGNodeFields.h"

OSG_BEGIN_NAMESPACE

class ActorBase;
class FieldContainerType;
class NewActionBase;

/// The answers of actors.
struct NewActionTypes
{
    /// What an actor says about the way on.
    enum ResultE
    {
        Continue = 0x0000, ///< go on
        Break = 0x0002,    ///< leave out the rest of the siblings
        Skip = 0x0004,     ///< leave out the children
        Quit = 0x0008      ///< end the traversal
    };
};

/// What a functor of an actor is given.
class OSG_SYSTEMLIB_DLLMAPPING ActorFunctorArgument
{
  public:
    /// Made by the action for each call.
    ActorFunctorArgument(NewActionBase *action, ActorBase *actor, const NodePtr &node)
        : _action(action), _actor(actor), _node(node)
    {
    }

    /// What runs, who is called, and at which node.
    NewActionBase *getAction() const { return _action; }
    ActorBase *getActor() const { return _actor; }
    const NodePtr &getNode() const { return _node; }

  private:
    NewActionBase *_action;
    ActorBase *_actor;
    NodePtr _node;
};

/// Does its work at each node that an action visits. An action may have several; it does not own them.
class OSG_SYSTEMLIB_DLLMAPPING ActorBase
{
  public:
    /// The types of what an actor is called with and of what it says.
    typedef NewActionTypes::ResultE ResultE;
    typedef ActorFunctorArgument FunctorArgumentType;
    /// What an actor calls at a core of a type.
    typedef std::function<ResultE(const NodeCorePtr &core, FunctorArgumentType &argument)> Functor;
    /// The functors of all types, by the type's id.
    typedef std::vector<Functor> FunctorStore;

    virtual ~ActorBase();

    /// Called around a traversal.
    virtual ResultE start();
    virtual ResultE stop();
    /// Called at each node, ahead of and behind its children.
    virtual ResultE enterNode(FunctorArgumentType &argument) = 0;
    virtual ResultE leaveNode(FunctorArgumentType &argument) = 0;

  protected:
    ActorBase() = default;

    /// Sets, takes away and calls the functor of a type.
    static void store(FunctorStore &functors, const FieldContainerType &type, const Functor &functor);
    static void remove(FunctorStore &functors, const FieldContainerType &type);
    static ResultE call(const FunctorStore &functors, FunctorArgumentType &argument);
};

/// The functor of an actor that calls `function` of a core.
template <class X>
inline ActorBase::Functor makeActorFunctor(
    ActorBase::ResultE (X::*function)(ActorBase::FunctorArgumentType &))
{
    return [function](const NodeCorePtr &core, ActorBase::FunctorArgumentType &argument) {
        return (reinterpret_cast<X *>(core.getCPtr())->*function)(argument);
    };
}

/// Walks a tree and asks its actors at each node.
class OSG_SYSTEMLIB_DLLMAPPING NewActionBase
{
  public:
    /// What an action says at its end.
    typedef NewActionTypes::ResultE ResultE;

    virtual ~NewActionBase();

    /// The actors take part in the order of their adding; the caller keeps them.
    void addActor(ActorBase *actor) { _actors.push_back(actor); }
    void subActor(ActorBase *actor);
    UInt32 getNumActors() const { return UInt32(_actors.size()); }
    ActorBase *getActor(UInt32 index) const { return _actors[index]; }
    /// Only nodes with a bit of it in their own mask are visited.
    UInt32 getTravMask() const { return _travMask; }
    void setTravMask(UInt32 mask) { _travMask = mask; }

    /// Walks the graph below `root`, that node too.
    virtual ResultE apply(const NodePtr &root) = 0;

  protected:
    NewActionBase() = default;

    /// Tell the actors.
    ResultE enterNode(const NodePtr &node);
    ResultE leaveNode(const NodePtr &node);
    /// Tell the actors.
    ResultE startActors();
    ResultE stopActors();

  private:
    std::vector<ActorBase *> _actors;
    UInt32 _travMask = 0xFFFFFFFFu;
};

/// Parents first, children in their order.
class OSG_SYSTEMLIB_DLLMAPPING DepthFirstAction : public NewActionBase
{
  public:
    /// The caller owns it.
    static DepthFirstAction *create();

    /// As NewActionBase has it.
    ResultE apply(const NodePtr &root) override;

  private:
    ResultE recurse(const NodePtr &node);
};

/// Calls the functors that are registered for the class of a node's core.
class OSG_SYSTEMLIB_DLLMAPPING IntersectActorBase : public ActorBase
{
  public:
    /// For all actors of this class.
    static void regClassEnter(const Functor &functor, const FieldContainerType &type);
    static void regClassLeave(const Functor &functor, const FieldContainerType &type);
    static void unregClassEnter(const FieldContainerType &type);
    static void unregClassLeave(const FieldContainerType &type);

    /// As ActorBase has it.
    ResultE enterNode(FunctorArgumentType &argument) override;
    ResultE leaveNode(FunctorArgumentType &argument) override;

  private:
    static FunctorStore &enterFunctors();
    static FunctorStore &leaveFunctors();
};

/// Finds what a line hits first. Distances are measured along the line, in units of its direction.
class OSG_SYSTEMLIB_DLLMAPPING IntersectActor : public IntersectActorBase
{
  public:
    /// The caller owns it.
    static IntersectActor *create();

    /// The ray, in the coordinates of the node that is visited.
    const Line &getRay() const { return _levels.back().ray; }
    /// In the coordinates of the world.
    void setRay(const Line &ray);
    /// How far the ray reaches.
    Real32 getMaxDistance() const { return _maxDistance; }
    void setMaxDistance(Real32 distance) { _maxDistance = distance; }
    /// Forgets the hit.
    void reset();

    /// What the nearest hit was; only where there was one.
    bool getHit() const { return _hit; }
    Real32 getHitDistance() const { return _hitDistance; }
    Pnt3f getHitPoint() const;
    const Vec3f &getHitNormal() const { return _hitNormal; }
    const NodePtr &getHitObject() const { return _hitObject; }
    Int32 getHitTriangleIndex() const { return _hitTriangle; }

    /// From a functor: a hit at distance `t` on the ray of now.
    bool setHit(Real32 t, const NodePtr &node, Int32 triangle, const Vec3f &normal);

    /// As ActorBase has it.
    ResultE start() override;
    ResultE enterNode(FunctorArgumentType &argument) override;
    ResultE leaveNode(FunctorArgumentType &argument) override;

  private:
    struct Level
    {
        Line ray;
        Real32 scale;
    };

    Line _ray;
    std::vector<Level> _levels{Level{Line(), 1.0f}};
    Real32 _maxDistance = 1e30f;
    bool _hit = false;
    Real32 _hitDistance = 1e30f;
    Vec3f _hitNormal;
    NodePtr _hitObject;
    Int32 _hitTriangle = -1;
};

OSG_END_NAMESPACE

#endif
