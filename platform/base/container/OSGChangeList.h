#ifndef _OSGCHANGELIST_H_
#define _OSGCHANGELIST_H_

/// \file
/// What a thread did to containers, to be carried to another aspect.

#include <unordered_map>
#include <vector>

#include "OSGFieldContainerPtr.h"

OSG_BEGIN_NAMESPACE

/// Records the containers that one thread created, changed, referenced and destroyed, each once, however often it was
/// touched. Written by its thread only. Another thread may read it, merge it or apply it while its own thread waits,
/// usually at a Barrier:
///
///     application thread                     drawing thread, on an aspect of its own
///     ... edits ...
///     barrier->enter(2);                     barrier->enter(2);
///                                            appThread->getChangeList()->applyToCurrent();
///     barrier->enter(2);                     barrier->enter(2);
///     getCurrentChangeList()->clearAll();    ... draws ...
///
/// A container that loses its last reference while threads run on several aspects lives on until the list of the thread
/// that took it away is cleared: the other aspects can go on using it until they are synchronised, and if one of them
/// has taken a reference of its own by then, the container stays. What it changes in others as it ends is the first that
/// the list then records, and its memory is given back when the list is cleared once more, as the other aspects see these
/// changes only with the next synchronisation.
///
/// A container that was created and destroyed within one list leaves no trace in it.
class OSG_BASELIB_DLLMAPPING ChangeList
{
  public:
    /// The types of what is noted.
    typedef std::vector<UInt32> IdStore;
    typedef std::pair<UInt32, BitVector> ChangedEntry; ///< container id, fields
    typedef std::vector<ChangedEntry> ChangedStore;

    ChangeList();
    ~ChangeList();
    ChangeList(const ChangeList &) = delete;
    ChangeList &operator=(const ChangeList &) = delete;

    /// Notes what happened to a container.
    void addCreated(UInt32 containerId);
    void addChanged(const FieldContainerPtr &container, BitVector whichField);
    void addAddRefd(UInt32 containerId);
    void addSubRefd(UInt32 containerId);
    void addDestroyed(UInt32 containerId);

    /// In the order in which the containers entered the list.
    IdStore getCreated() const;
    /// The containers that were edited, with the fields.
    ChangedStore getChanged() const;
    /// A container stands once per reference.
    IdStore getAddRefd() const;
    IdStore getSubRefd() const;
    /// The containers that ended.
    IdStore getDestroyed() const { return _destroyed; }
    /// Whether nothing is noted.
    bool isEmpty() const { return _entries.empty() && _destroyed.empty(); }
    /// How many entries the stores have.
    UInt32 getNumCreated() const { return UInt32(getCreated().size()); }
    UInt32 getNumChanged() const { return UInt32(getChanged().size()); }
    UInt32 getNumDestroyed() const { return UInt32(_destroyed.size()); }

    /// Brings the calling thread's aspect into line with this list's: takes over the changed fields of every container
    /// that still exists, then calls `changed` on each with ChangedOrigin::Sync. References are shared by all aspects
    /// and created containers exist in all of them, so there is nothing to do for these. The same aspect: nothing.
    void applyToCurrent();
    /// applyToCurrent, then clearAll.
    void applyAndClear();
    /// applyToCurrent alone.
    void applyNoClear() { applyToCurrent(); }

    /// Adds what stands in `other`, as if this list's thread had done it.
    void merge(const ChangeList &other);
    /// Forgets what was recorded, ends the containers whose end it held back and that still have no reference, and frees
    /// those that ended so when it was last cleared; at once where no thread runs on another aspect.
    void clearAll();

    /// The aspect whose copies the list's thread edits.
    void setAspect(UInt32 aspect) { _aspect = aspect; }
    UInt32 getAspect() const { return _aspect; }

    /// While true, nothing is recorded.
    void setReadOnly(bool readOnly) { _readOnly = readOnly; }
    bool isReadOnly() const { return _readOnly; }

    /// Writes the list to the log.
    void dump() const;

  private:
    friend class FieldContainerPtr;

    struct Entry
    {
        UInt64 order = 0;
        BitVector whichField = 0;
        UInt32 addRefd = 0;
        UInt32 subRefd = 0;
        bool created = false;
    };

    void freeEnded();
    Entry &entry(UInt32 containerId);
    std::vector<std::pair<UInt32, Entry>> inOrder() const;
    /// Leaves the end of a container without a reference to clearAll.
    void endWhenCleared(UInt32 containerId) { _unreferenced.push_back(containerId); }

    std::unordered_map<UInt32, Entry> _entries;
    IdStore _destroyed;
    IdStore _unreferenced;
    std::vector<FieldContainerPtr> _ended;
    UInt64 _lastOrder = 0;
    UInt32 _aspect = 0;
    bool _readOnly = false;
};

OSG_END_NAMESPACE

#endif
