/// \file
/// Stream output of vectors and points.

#include "OSGVector.h"

#include <ostream>

OSG_BEGIN_NAMESPACE

namespace
{

template <class TupleT>
std::ostream &putTuple(std::ostream &os, const TupleT &tuple)
{
    // the plus makes numbers of bytes, which would come out as characters
    os << +tuple[0];
    for (UInt32 i = 1; i < TupleT::_iSize; ++i)
        os << ' ' << +tuple[i];
    return os;
}

} // namespace

template <class ValueT, UInt32 SizeI>
std::ostream &operator<<(std::ostream &os, const Vector<ValueT, SizeI> &v)
{
    return putTuple(os, v);
}

template <class ValueT, UInt32 SizeI>
std::ostream &operator<<(std::ostream &os, const Point<ValueT, SizeI> &p)
{
    return putTuple(os, p);
}

#define OSG_INSTANTIATE_OUTPUT(TYPE)                                                           \
    template OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &, const TYPE<2> &); \
    template OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &, const TYPE<3> &); \
    template OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &, const TYPE<4> &);

#define OSG_INSTANTIATE_FOR(VALUE)                \
    namespace                                     \
    {                                             \
    template <UInt32 SizeI>                       \
    using VectorOf##VALUE = Vector<VALUE, SizeI>; \
    template <UInt32 SizeI>                       \
    using PointOf##VALUE = Point<VALUE, SizeI>;   \
    }                                             \
    OSG_INSTANTIATE_OUTPUT(VectorOf##VALUE)       \
    OSG_INSTANTIATE_OUTPUT(PointOf##VALUE)

OSG_INSTANTIATE_FOR(Int8)
OSG_INSTANTIATE_FOR(UInt8)
OSG_INSTANTIATE_FOR(Int16)
OSG_INSTANTIATE_FOR(UInt16)
OSG_INSTANTIATE_FOR(Int32)
OSG_INSTANTIATE_FOR(UInt32)
OSG_INSTANTIATE_FOR(Real32)
OSG_INSTANTIATE_FOR(Real64)

OSG_END_NAMESPACE
