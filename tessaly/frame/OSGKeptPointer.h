#ifndef _OSGKEPTPOINTER_H_
#define _OSGKEPTPOINTER_H_

/// \file
/// One reference on the container of a single field that hosts may also write to directly.

#include <OpenSG/OSGFieldContainer.h>

OSG_BEGIN_NAMESPACE

/// A member beside a single field of a pointer type. It knows on which container a reference is held,
/// whatever the field says meanwhile, so that a field filled by a setter, by `getSFFoo` or from binary data
/// is never released without having been counted. The setter calls `keep`, `changed` calls `follow`,
/// `onCreate` calls `adopt` and `onDestroy` calls `release`.
template <class PtrT>
class KeptPointer
{
  public:
    KeptPointer() = default;
    /// For the copy of a container: knows what the copied field holds, without counting yet.
    explicit KeptPointer(const PtrT &value) : _kept(value) {}
    KeptPointer(const KeptPointer &) = delete;
    KeptPointer &operator=(const KeptPointer &) = delete;

    /// Takes a reference on `value` and gives back that on what was kept before.
    void keep(const PtrT &value) { setRefdCP(_kept, PtrT(value)); }

    /// Brings what is kept into line with the field. References are shared by all aspects, so a change that
    /// comes from another aspect only changes what is known here.
    void follow(const PtrT &value, UInt32 origin)
    {
        if((origin & ChangedOrigin::Sync) != 0)
            _kept = value;
        else
            keep(value);
    }

    /// Takes the reference for what the copy constructor has stored.
    void adopt() { addRefCP(_kept); }

    /// Gives the reference back.
    void release() { clearRefCP(_kept); }

    /// What the reference is on.
    const PtrT &get() const { return _kept; }

  private:
    PtrT _kept;
};

OSG_END_NAMESPACE

#endif
