#ifndef _OSGTYPEDGEOPROPERTY_H_
#define _OSGTYPEDGEOPROPERTY_H_

/// \file
/// The property that keeps its values in a field of one type.

#include "OSGGeoConversion.h"

OSG_BEGIN_NAMESPACE

/// Between the generated base of a property (GeoPositions3fBase) and the property (GeoPositions3f). `StoredT`
/// is what the field GeoPropData holds.
template <class BaseT, class StoredT>
class TypedGeoProperty : public BaseT
{
  public:
    /// The types of the values: as the kind of property speaks of them, as they are stored, and of the field
    /// with them.
    typedef typename BaseT::GenericType GenericType;
    typedef StoredT StoredType;
    typedef MField<StoredT> StoredFieldType;

    using BaseT::getField;
    using BaseT::getValue;

    /// As GeoProperty has it.
    UInt32 getFormat() const override { return GeoValueTraits<StoredT>::format; }
    /// As GeoProperty has it.
    UInt32 getFormatSize() const override { return GeoValueTraits<StoredT>::componentBytes; }
    /// As GeoProperty has it.
    UInt32 getStride() const override { return 0; }
    /// As GeoProperty has it.
    UInt32 getDimension() const override { return GeoValueTraits<StoredT>::dimension; }
    /// As GeoProperty has it.
    UInt32 getSize() const override { return this->_mfGeoPropData.size(); }
    /// As GeoProperty has it.
    UInt8 *getData() override { return reinterpret_cast<UInt8 *>(this->_mfGeoPropData.getValues().data()); }
    /// As GeoProperty has it.
    const UInt8 *getData() const override
    {
        return reinterpret_cast<const UInt8 *>(this->_mfGeoPropData.getValues().data());
    }

    /// As GeoProperty has it.
    void resize(std::size_t size) override { this->_mfGeoPropData.resize(size); }
    /// As GeoProperty has it.
    void clear() override { this->_mfGeoPropData.clear(); }

    /// As AbstractGeoProperty has it: the value is converted from and to what is stored.
    void getValue(GenericType &result, UInt32 index) const override
    {
        convertGeoValue(this->_mfGeoPropData[index], result);
    }
    /// As AbstractGeoProperty has it: the value is converted from and to what is stored.
    void setValue(const GenericType &value, UInt32 index) override
    {
        convertGeoValue(value, this->_mfGeoPropData[index]);
    }
    /// As AbstractGeoProperty has it: the value is converted from and to what is stored.
    void addValue(const GenericType &value) override
    {
        StoredT stored{};
        convertGeoValue(value, stored);
        this->_mfGeoPropData.push_back(stored);
    }
    /// As AbstractGeoProperty has it: the value is converted from and to what is stored.
    void insertValue(const GenericType &value, UInt32 index) override
    {
        StoredT stored{};
        convertGeoValue(value, stored);
        this->_mfGeoPropData.insert(this->_mfGeoPropData.begin() + index, stored);
    }

    /// The values as they are stored.
    StoredFieldType &getField() { return this->_mfGeoPropData; }
    const StoredFieldType &getField() const { return this->_mfGeoPropData; }
    StoredFieldType &editField() { return this->_mfGeoPropData; }
    StoredFieldType *getFieldPtr() { return &this->_mfGeoPropData; }
    const StoredFieldType *getFieldPtr() const { return &this->_mfGeoPropData; }
    StoredFieldType *editFieldPtr() { return &this->_mfGeoPropData; }

  protected:
    TypedGeoProperty() = default;
    /// Made and ended as containers are.
    TypedGeoProperty(const TypedGeoProperty &source) = default;
    ~TypedGeoProperty() override = default;
};

OSG_END_NAMESPACE

#endif
