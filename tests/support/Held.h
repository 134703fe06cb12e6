#ifndef TESTS_SUPPORT_HELD_H
#define TESTS_SUPPORT_HELD_H

/// \file
/// A reference that lives as long as a variable of a test.

#include <OpenSG/OSGFieldContainerPtr.h>

namespace test
{

/// A container with one reference, given back at the end.
template <class PtrT>
struct Held
{
    PtrT ptr;

    explicit Held(const PtrT &container) : ptr(container) { osg::addRefCP(ptr); }
    Held() : Held(PtrT::StoredObjectType::create()) {}
    Held(const Held &) = delete;
    Held &operator=(const Held &) = delete;
    ~Held() { osg::subRefCP(ptr); }

    typename PtrT::StoredObjectType *operator->() const { return ptr.getCPtr(); }
    operator const PtrT &() const { return ptr; }
};

} // namespace test

#endif
