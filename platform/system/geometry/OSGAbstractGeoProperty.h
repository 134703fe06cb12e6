#ifndef _OSGABSTRACTGEOPROPERTY_H_
#define _OSGABSTRACTGEOPROPERTY_H_

/// \file
/// What all properties of one kind can be asked, in the kind's own value type, however the values are stored.

#include "OSGGeoProperty.h"

OSG_BEGIN_NAMESPACE

/// Between the generated base of a kind (GeoPositionsBase) and the kind (GeoPositions). Indices are not
/// checked. The caller brackets edits.
template <class BaseT, class ValueT>
class AbstractGeoProperty : public BaseT
{
  public:
    /// The type of a value as this kind of property speaks of it.
    typedef ValueT GenericType;

    /// The value of the index.
    virtual void getValue(ValueT &result, UInt32 index) const = 0;
    ValueT getValue(UInt32 index) const
    {
        ValueT result{};
        getValue(result, index);
        return result;
    }
    /// Replaces the value of the index.
    virtual void setValue(const ValueT &value, UInt32 index) = 0;
    /// Appends.
    virtual void addValue(const ValueT &value) = 0;
    void push_back(const ValueT &value) { addValue(value); }
    /// Puts the value ahead of that of the index.
    virtual void insertValue(const ValueT &value, UInt32 index) = 0;

    /// A new property with the same values that no geometry has yet. No reference is held.
    typename BaseT::Ptr clone() const { return BaseT::Ptr::dcast(this->shallowCopy()); }

  protected:
    AbstractGeoProperty() = default;
    /// Made and ended as containers are.
    AbstractGeoProperty(const AbstractGeoProperty &source) = default;
    ~AbstractGeoProperty() override = default;
};

OSG_END_NAMESPACE

#endif
