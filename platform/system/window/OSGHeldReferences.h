#ifndef _OSGHELDREFERENCES_H_
#define _OSGHELDREFERENCES_H_

/// \file
/// One reference on each container of a multi field that hosts write to directly.

#include <vector>

#include "OSGFieldContainer.h"

OSG_BEGIN_NAMESPACE

/// A member beside a multi field of pointers. `follow` is called from `changed`, `release` from `onDestroy`.
template <class PtrT>
class HeldReferences
{
  public:
    HeldReferences() = default;
    /// A copy of a container starts without: its `changed` takes the references of the copied field.
    HeldReferences(const HeldReferences &) {}
    HeldReferences &operator=(const HeldReferences &) = delete;

    /// Takes a reference on each entry and gives those back that were held before. References are shared by
    /// all aspects, so a change that comes from another aspect only changes what is known here.
    void follow(const MField<PtrT> &field, UInt32 origin)
    {
        std::vector<PtrT> old;
        old.swap(_held);
        _held = field.getValues();
        if((origin & ChangedOrigin::Sync) != 0)
            return;
        for(const PtrT &entry : _held)
            addRefCP(entry);
        for(const PtrT &entry : old)
            subRefCP(entry);
    }

    /// Gives all references back.
    void release()
    {
        std::vector<PtrT> old;
        old.swap(_held);
        for(const PtrT &entry : old)
            subRefCP(entry);
    }

    /// What references are held on.
    const std::vector<PtrT> &getHeld() const { return _held; }

  private:
    std::vector<PtrT> _held;
};

OSG_END_NAMESPACE

#endif
