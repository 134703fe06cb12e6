#ifndef _OSGMULTICORE_H_
#define _OSGMULTICORE_H_

/// \file
/// Lets one node act as if it had several cores.

#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGIntersectActor.h>
#include <OpenSG/OSGNodeFields.h>
#include <Tessaly/OSGKeptPointers.h>
#include <Tessaly/OSGMultiCoreBase.h>

OSG_BEGIN_NAMESPACE

/// While the node is drawn, the enter handlers of the contained cores run from first to last, then the node's
/// children are visited, then the leave handlers run from last to first. Picking sees the children only, and
/// the contained cores add nothing to the node's volume or matrix. A core that finds no child to go to
/// answers Skip, as groups and transformations do, and so keeps the cores behind it from being entered:
/// without children shapes go ahead of them.
///
/// The list operations take and give back the reference that the list holds on each core, and are no edits by
/// themselves: the caller brackets them with beginEditCP and endEditCP and CoresFieldMask. Cores that were
/// written to the field in another way are counted from the end of the edit on.
///
/// Each aspect has a carrier node of its own, through which the cores are dispatched, so two threads of one
/// aspect must not traverse one MultiCore at once. The core dispatched last stays referenced by the carrier
/// as long as this object lives.
class OSG_TESSALY_DLLMAPPING MultiCore : public MultiCoreBase
{
  public:
    typedef MultiCoreBase Inherited;

    using Inherited::getCores;

    /// Appends; null is ignored.
    void addCore(const NodeCorePtr &core);
    /// Inserts ahead of `index`, which may be the size and is not checked; null is ignored.
    void insertCore(UInt32 index, const NodeCorePtr &core);
    /// Removes the first entry that is `core`. A warning if there is none.
    void subCore(const NodeCorePtr &core);
    /// Removes an entry; the index behind the last does nothing, one beyond that is not checked.
    void subCore(UInt32 index);
    /// Null and an index beyond the end are ignored.
    void replaceCore(UInt32 index, const NodeCorePtr &newCore);
    /// False, with nothing done, if `newCore` is null or `oldCore` is not in the list.
    bool replaceCoreBy(const NodeCorePtr &oldCore, const NodeCorePtr &newCore);
    /// The index of the first entry that is `core`, or -1.
    Int32 findCore(const NodeCorePtr &core) const;
    /// No check of the index.
    NodeCorePtr getCore(UInt32 index) const;
    /// Cores.
    UInt32 getNCores() const;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    /// What an actor calls with.
    typedef ActorBase::FunctorArgumentType FunctorArgumentType;

    MultiCore();
    /// A copy makes a carrier of its own.
    MultiCore(const MultiCore &source);
    ~MultiCore() override;

    void onCreate(const MultiCore *source = nullptr);
    void onDestroy() override;

    /// Enters the cores in order until one answers otherwise than Continue. A Skip only ends that: the
    /// children are visited.
    Action::ResultE renderEnter(Action *action);
    /// Leaves all cores in the reverse order, those too that were not entered, until one answers otherwise
    /// than Continue.
    Action::ResultE renderLeave(Action *action);
    Action::ResultE drawEnter(Action *action);
    Action::ResultE drawLeave(Action *action);

    // The contained cores take no part in picking; all four do nothing and go on.
    Action::ResultE intersectEnter(Action *action);
    Action::ResultE intersectLeave(Action *action);
    /// What an intersection with actors calls at a node with this core.
    NewActionTypes::ResultE intersectActorEnter(FunctorArgumentType &argument);
    NewActionTypes::ResultE intersectActorLeave(FunctorArgumentType &argument);

  private:
    friend class FieldContainer;
    friend class MultiCoreBase;

    static void initMethod();

    void makeCarrier();
    void releaseCarrier();

    NodePtr _tmpNode;          ///< the carrier of this aspect; one reference is held
    UInt32 _carrierAspect = 0; ///< where it was made
    KeptPointers<NodeCorePtr> _kept;
};

OSG_END_NAMESPACE

#endif
