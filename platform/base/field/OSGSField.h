#ifndef _OSGSFIELD_H_
#define _OSGSFIELD_H_

/// \file
/// A field that holds one value.

#include "OSGFieldDataTraits.h"

OSG_BEGIN_NAMESPACE

/// A field of one value of type T.
template <class T>
class SField : public Field
{
  public:
    /// The type of the value, and what the field knows of it.
    typedef T StoredType;
    typedef FieldDataTraits<T> SFieldTraits;

    /// The type of the field, of the class instead of an object.
    static const FieldType _fieldType;

    /// The type of the field, of the class instead of an object.
    static const FieldType &getClassType() { return _fieldType; }
    /// A new field on the heap, the caller's.
    static Field *create() { return new SField; }

    SField() : _value(SFieldTraits::getDefault()) {}
    /// A copy has the same value.
    SField(const SField &) = default;
    /// With that value.
    explicit SField(const T &value) : _value(value) {}
    SField &operator=(const SField &) = default;

    /// As Field has it.
    const FieldType &getType() const override { return _fieldType; }
    bool isEmpty() const override { return false; }
    UInt32 getSize() const override { return 1; }

    /// The value.
    T &getValue() { return _value; }
    const T &getValue() const { return _value; }
    /// Sets the value.
    void setValue(const T &value) { _value = value; }
    void setValue(const SField &source) { _value = source._value; }

    void setAbstrValue(const Field &source) override
    {
        if(const SField *same = dynamic_cast<const SField *>(&source))
            _value = same->_value;
    }

    /// Sets the value from its text.
    void setValueByStr(const Char8 *text) { pushValueByStr(text); }

    void pushValueByStr(const Char8 *text) override
    {
        if(text != nullptr)
            SFieldTraits::getFromString(_value, text);
    }

    std::string &getValueByStr(std::string &out) const override
    {
        SFieldTraits::putToString(_value, out);
        return out;
    }

    std::string &getValueByStr(std::string &out, StringConversionStateBase &state) const override
    {
        std::string value;
        state.beginField(this, out);
        SFieldTraits::putToString(_value, value);
        state.addValueStr(value, out);
        state.endField(this, out);
        return out;
    }

    std::string &getValueByStr(std::string &out, UInt32 index) const override
    {
        return index == 0 ? getValueByStr(out) : out;
    }

    /// As Field has it.
    UInt32 getBinSize() override { return SFieldTraits::getBinSize(_value); }
    void copyToBin(BinaryDataHandler &memory) override { SFieldTraits::copyToBin(memory, _value); }
    void copyFromBin(BinaryDataHandler &memory) override { SFieldTraits::copyFromBin(memory, _value); }

    /// Becomes a copy of the same field on another aspect.
    void syncWith(SField &source) { _value = source._value; }

    /// The same value.
    bool operator==(const SField &other) const { return _value == other._value; }

    /// As Field has it.
    void dump() const override {}

  private:
    T _value;
};

template <class T>
const FieldType SField<T>::_fieldType(FieldDataTraits<T>::getSName(), "Field", FieldDataTraits<T>::getType(),
                                      &SField<T>::create, FieldType::SINGLE_FIELD);

OSG_END_NAMESPACE

#endif
