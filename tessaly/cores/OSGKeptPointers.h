#ifndef _OSGKEPTPOINTERS_H_
#define _OSGKEPTPOINTERS_H_

/// \file
/// One reference on each container of a multi field that has list operations but may also be written to
/// directly.

#include <algorithm>
#include <vector>

#include <OpenSG/OSGFieldContainer.h>

OSG_BEGIN_NAMESPACE

/// A member beside a multi field of pointers. It knows on which containers a reference is held, whatever the
/// field says meanwhile. List operations call `keep` and `drop`, `changed` and the `onCreate` of a copy call
/// `follow`, and `onDestroy` calls `release`.
template <class PtrT>
class KeptPointers
{
  public:
    KeptPointers() = default;
    KeptPointers(const KeptPointers &) = delete;
    KeptPointers &operator=(const KeptPointers &) = delete;

    /// Takes a reference.
    void keep(const PtrT &container)
    {
        addRefCP(container);
        _kept.push_back(container);
    }

    /// Gives one reference back, if one is held.
    void drop(const PtrT &container)
    {
        const auto found = std::find(_kept.begin(), _kept.end(), container);
        if(found == _kept.end())
            return;
        const PtrT held = *found;
        _kept.erase(found);
        subRefCP(held);
    }

    /// Brings what is kept into line with the field. References are shared by all aspects, so a change that
    /// comes from another aspect only changes what is known here.
    void follow(const MField<PtrT> &field, UInt32 origin)
    {
        const std::vector<PtrT> old = std::move(_kept);
        _kept = field.getValues();
        if((origin & ChangedOrigin::Sync) != 0)
            return;
        for(const PtrT &container : _kept)
            addRefCP(container);
        for(const PtrT &container : old)
            subRefCP(container);
    }

    /// Gives all references back.
    void release()
    {
        const std::vector<PtrT> old = std::move(_kept);
        _kept.clear();
        for(const PtrT &container : old)
            subRefCP(container);
    }

  private:
    std::vector<PtrT> _kept;
};

OSG_END_NAMESPACE

#endif
