#ifndef _OSGACTION_H_
#define _OSGACTION_H_

/// \file
/// A traversal of the scene graph, and the functions of cores that it calls on its way.

#include <functional>
#include <vector>

#include "OSGNodeCoreFields.h"
#include "OSGNodeFields.h"

OSG_BEGIN_NAMESPACE

class FieldContainerType;
class NodeCore;

/// Visits a node and what is below it, depth first. What happens at a node is told by the functors that are registered
/// for the class of its core with this class of action, or, ahead of those, with this one action. A class without a
/// functor lets the action go on to the children: functors are not inherited.
///
/// One thread uses an action at a time.
class OSG_SYSTEMLIB_DLLMAPPING Action
{
  public:
    /// What a functor says about the way on.
    enum ResultE
    {
        Continue = 0, ///< go on to the children
        Skip,         ///< leave the children out; the leave functor runs all the same
        Break,        ///< leave out what is left of this node's parent's children
        Quit          ///< end the traversal
    };

    /// What is called for a core.
    typedef std::function<ResultE(NodeCore *core, Action *action)> Functor;
    /// The functors of all types, by the type's id.
    typedef std::vector<Functor> FunctorStore;

    Action();
    /// A copy has the same functors and no traversal.
    Action(const Action &source);
    virtual ~Action();
    Action &operator=(const Action &) = delete;

    /// Visits the tree below `root`, `root` included. Null: a warning, and Continue.
    virtual ResultE apply(const NodePtr &root);
    virtual ResultE apply(const std::vector<NodePtr> &roots);

    /// A functor for this action alone.
    void registerEnterFunction(const FieldContainerType &type, const Functor &functor);
    void registerLeaveFunction(const FieldContainerType &type, const Functor &functor);

    /// The node being visited; NullFC outside of a traversal.
    const NodePtr &getActNode() const { return _actNode; }
    void setActNode(const NodePtr &node) { _actNode = node; }
    /// The parent of the node being visited, in the scene graph; NullFC where there is none.
    FieldContainerPtr getActParent() const;

    /// The children that are about to be visited.
    UInt32 getNNodes() const;
    /// The child of that index.
    NodePtr getNode(UInt32 index) const;
    /// From an enter functor: only nodes that are added are visited, in the order of adding.
    void addNode(const NodePtr &node);
    /// From an enter functor: whether only nodes that are added are visited. Forgets those added so far.
    void useNodeList(bool use = true);

    /// From an enter functor: of the children that are about to be visited, only those are that `keep(node)` wants, in
    /// their order. \return their number
    template <class PredicateT>
    UInt32 keepNodes(const PredicateT &keep);

    /// Only nodes with a bit of it in their own mask are visited.
    UInt32 getTravMask() const { return _travMask; }
    void setTravMask(UInt32 mask) { _travMask = mask; }

    /// Calls the functor for the core of `node`, without a traversal.
    ResultE callEnter(const NodePtr &node);
    ResultE callLeave(const NodePtr &node);

  protected:
    /// Called around a traversal.
    virtual ResultE start();
    virtual ResultE stop(ResultE result);
    /// Whether the node is visited; this form asks the masks.
    virtual bool mayVisit(const NodePtr &node);

    /// Walks the children.
    ResultE recurse(const NodePtr &node);

    /// The functors registered with this class of action, by type id. Null where the class has none.
    virtual FunctorStore *getDefaultEnterFunctors() = 0;
    virtual FunctorStore *getDefaultLeaveFunctors() = 0;

    /// Sets the functor of a type.
    static void store(FunctorStore &functors, const FieldContainerType &type, const Functor &functor);

  private:
    /// What an enter functor said of the children of one node.
    struct Level
    {
        bool useList = false;
        std::size_t first = 0; ///< in _lists
    };

    ResultE call(const NodePtr &node, const FunctorStore &own, const FunctorStore *defaults);

    NodePtr _actNode;
    UInt32 _travMask = 0xFFFFFFFFu;
    FunctorStore _enter;
    FunctorStore _leave;
    // The lists of all levels, one behind the other, so that a traversal allocates only while it grows.
    std::vector<NodePtr> _lists;
    Level _level;
};

template <class PredicateT>
inline UInt32 Action::keepNodes(const PredicateT &keep)
{
    // The list is written from its begin while it is read ahead of that, or from the node's own children.
    const bool listed = _level.useList;
    const UInt32 count = getNNodes();
    std::size_t end = _level.first;
    for(UInt32 i = 0; i < count; ++i)
    {
        const NodePtr node = getNode(i);
        if(!keep(node))
            continue;
        if(listed)
            _lists[end] = node;
        else
            _lists.push_back(node);
        ++end;
    }
    _lists.resize(end);
    _level.useList = true;
    return UInt32(end - _level.first);
}

/// The functor that calls `function` of a core.
template <class X>
inline Action::Functor makeFunctor(Action::ResultE (X::*function)(Action *))
{
    return [function](NodeCore *core, Action *action) {
        return (reinterpret_cast<X *>(core)->*function)(action);
    };
}

/// The same for a core given by the class of its pointer, under the name that hosts know.
template <class ResultT, class CorePtr, class NodeArgument, class ActionArgument>
inline Action::Functor osgTypedMethodFunctor2BaseCPtrRef(
    Action::ResultE (CorePtr::StoredObjectType::*function)(Action *))
{
    return makeFunctor(function);
}

/// Calls `enter` for `root` and everything below it; a shortcut where no functors are needed.
OSG_SYSTEMLIB_DLLMAPPING Action::ResultE traverse(const NodePtr &root,
                                                  const std::function<Action::ResultE(NodePtr &)> &enter);

/// Declares what each class of actions has of its own: the functors of its types.
#define OSG_ACTION_FUNCTORS                                                                       \
  public:                                                                                         \
    static void registerEnterDefault(const FieldContainerType &type, const Functor &functor);    \
    static void registerLeaveDefault(const FieldContainerType &type, const Functor &functor);    \
                                                                                                  \
  protected:                                                                                      \
    FunctorStore *getDefaultEnterFunctors() override;                                             \
    FunctorStore *getDefaultLeaveFunctors() override;                                             \
                                                                                                  \
  private:                                                                                        \
    static FunctorStore &defaultEnter();                                                          \
    static FunctorStore &defaultLeave();

/// Defines what OSG_ACTION_FUNCTORS declares, in class X.
#define OSG_ACTION_FUNCTORS_IMPL(X)                                                               \
    X::FunctorStore &X::defaultEnter()                                                            \
    {                                                                                             \
        static FunctorStore functors;                                                             \
        return functors;                                                                          \
    }                                                                                             \
    X::FunctorStore &X::defaultLeave()                                                            \
    {                                                                                             \
        static FunctorStore functors;                                                             \
        return functors;                                                                          \
    }                                                                                             \
    void X::registerEnterDefault(const FieldContainerType &type, const Functor &functor)          \
    {                                                                                             \
        store(defaultEnter(), type, functor);                                                     \
    }                                                                                             \
    void X::registerLeaveDefault(const FieldContainerType &type, const Functor &functor)          \
    {                                                                                             \
        store(defaultLeave(), type, functor);                                                     \
    }                                                                                             \
    X::FunctorStore *X::getDefaultEnterFunctors() { return &defaultEnter(); }                     \
    X::FunctorStore *X::getDefaultLeaveFunctors() { return &defaultLeave(); }

OSG_END_NAMESPACE

#endif
