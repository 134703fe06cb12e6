#ifndef _OSGSFIELD_H_
#define _OSGSFIELD_H_

/// \file
/// A field that holds one value.

#include "OSGFieldDataTraits.h"

OSG_BEGIN_NAMESPACE

template <class T>
class SField : public Field
{
  public:
    typedef T StoredType;
    typedef FieldDataTraits<T> SFieldTraits;

    static const FieldType _fieldType;

    static const FieldType &getClassType() { return _fieldType; }
    static Field *create() { return new SField; }

    SField() : _value(SFieldTraits::getDefault()) {}
    SField(const SField &) = default;
    explicit SField(const T &value) : _value(value) {}
    SField &operator=(const SField &) = default;

    const FieldType &getType() const override { return _fieldType; }
    bool isEmpty() const override { return false; }
    UInt32 getSize() const override { return 1; }

    T &getValue() { return _value; }
    const T &getValue() const { return _value; }
    void setValue(const T &value) { _value = value; }
    void setValue(const SField &source) { _value = source._value; }

    void setAbstrValue(const Field &source) override
    {
        if(const SField *same = dynamic_cast<const SField *>(&source))
            _value = same->_value;
    }

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

    UInt32 getBinSize() override { return SFieldTraits::getBinSize(_value); }
    void copyToBin(BinaryDataHandler &memory) override { SFieldTraits::copyToBin(memory, _value); }
    void copyFromBin(BinaryDataHandler &memory) override { SFieldTraits::copyFromBin(memory, _value); }

    void syncWith(SField &source) { _value = source._value; }

    bool operator==(const SField &other) const { return _value == other._value; }

    void dump() const override {}

  private:
    T _value;
};

template <class T>
const FieldType SField<T>::_fieldType(FieldDataTraits<T>::getSName(), "Field", FieldDataTraits<T>::getType(),
                                      &SField<T>::create, FieldType::SINGLE_FIELD);

OSG_END_NAMESPACE

#endif
