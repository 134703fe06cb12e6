#ifndef _OSGMFIELD_H_
#define _OSGMFIELD_H_

/// \file
/// A field that holds a sequence of values.

#include <algorithm>
#include <cstdio>
#include <vector>

#include "OSGBinaryDataHandler.h"
#include "OSGFieldDataTraits.h"

OSG_BEGIN_NAMESPACE

/// A field of any number of values of type T, one behind the other. Indices are not checked.
template <class T>
class MField : public Field
{
  public:
    /// The types of a value, of what keeps the values, and of iterators, as a std::vector has them.
    typedef T StoredType;
    typedef std::vector<T> StorageType;
    typedef FieldDataTraits<T> MFieldTraits;
    typedef typename StorageType::iterator iterator;
    typedef typename StorageType::const_iterator const_iterator;
    typedef typename StorageType::reverse_iterator reverse_iterator;
    typedef typename StorageType::const_reverse_iterator const_reverse_iterator;
    typedef typename StorageType::reference reference;
    typedef typename StorageType::const_reference const_reference;

    /// The type of the field, of the class instead of an object.
    static const FieldType _fieldType;

    /// The type of the field, of the class instead of an object.
    static const FieldType &getClassType() { return _fieldType; }
    /// A new field on the heap, the caller's.
    static Field *create() { return new MField; }

    MField() = default;
    /// A copy has the same values.
    MField(const MField &) = default;
    /// That many default values.
    explicit MField(UInt32 size) : _values(size) {}
    /// Becomes a copy.
    MField &operator=(const MField &) = default;

    /// As Field has it.
    const FieldType &getType() const override { return _fieldType; }
    bool isEmpty() const override { return _values.empty(); }
    UInt32 getSize() const override { return static_cast<UInt32>(_values.size()); }

    /// All values.
    StorageType &getValues() { return _values; }
    const StorageType &getValues() const { return _values; }
    /// One value.
    reference getValue(UInt32 index) { return _values[index]; }
    const_reference getValue(UInt32 index) const { return _values[index]; }
    /// Sets one value.
    void setValue(const T &value, UInt32 index) { _values[index] = value; }
    /// Replaces all values.
    void setValues(const StorageType &values) { _values = values; }
    void setValues(const MField &source) { _values = source._values; }
    /// Appends a value.
    void addValue(const T &value) { _values.push_back(value); }

    void setAbstrValue(const Field &source) override
    {
        if(const MField *same = dynamic_cast<const MField *>(&source))
            _values = same->_values;
    }

    /// As std::vector has it.
    iterator begin() { return _values.begin(); }
    const_iterator begin() const { return _values.begin(); }
    iterator end() { return _values.end(); }
    const_iterator end() const { return _values.end(); }
    reverse_iterator rbegin() { return _values.rbegin(); }
    const_reverse_iterator rbegin() const { return _values.rbegin(); }
    reverse_iterator rend() { return _values.rend(); }
    const_reverse_iterator rend() const { return _values.rend(); }
    reference front() { return _values.front(); }
    const_reference front() const { return _values.front(); }
    reference back() { return _values.back(); }
    const_reference back() const { return _values.back(); }
    reference operator[](UInt32 index) { return _values[index]; }
    const_reference operator[](UInt32 index) const { return _values[index]; }

    /// The first value that is the same as this one, or end().
    iterator find(const T &value) { return std::find(_values.begin(), _values.end(), value); }
    const_iterator find(const T &value) const { return std::find(_values.begin(), _values.end(), value); }
    /// As std::vector has it.
    iterator insert(iterator at, const T &value) { return _values.insert(at, value); }
    template <class InputIterator>
    void insert(iterator at, InputIterator first, InputIterator last)
    {
        _values.insert(at, first, last);
    }
    iterator erase(iterator at) { return _values.erase(at); }
    iterator erase(iterator first, iterator last) { return _values.erase(first, last); }
    void push_back(const T &value) { _values.push_back(value); }
    void pop_back() { _values.pop_back(); }
    void clear() { _values.clear(); }
    UInt32 size() const { return static_cast<UInt32>(_values.size()); }
    void resize(std::size_t size, const T &value = T()) { _values.resize(size, value); }
    void reserve(std::size_t size) { _values.reserve(size); }
    UInt32 capacity() const { return static_cast<UInt32>(_values.capacity()); }
    bool empty() const { return _values.empty(); }
    void swap(MField &other) { _values.swap(other._values); }

    /// Replaces all values by the one in the text.
    void setValueByStr(const Char8 *text)
    {
        _values.clear();
        pushValueByStr(text);
    }

    /// Appends one value. A failed conversion still appends the default value: fields of pointers, which have no text
    /// form, grow by one null element, and that is meant.
    void pushValueByStr(const Char8 *text) override
    {
        T value = MFieldTraits::getDefault();
        if(text != nullptr)
            MFieldTraits::getFromString(value, text);
        _values.push_back(value);
    }

    std::string &getValueByStr(std::string &out) const override
    {
        std::string text;
        for(std::size_t i = 0; i < _values.size(); ++i)
        {
            if(i != 0)
                out += ", ";
            text.clear();
            MFieldTraits::putToString(_values[i], text);
            out += text;
        }
        return out;
    }

    std::string &getValueByStr(std::string &out, StringConversionStateBase &state) const override
    {
        std::string text;
        state.beginField(this, out);
        for(std::size_t i = 0; i < _values.size(); ++i)
        {
            text.clear();
            MFieldTraits::putToString(_values[i], text);
            state.addValueStr(text, out);
        }
        state.endField(this, out);
        return out;
    }

    std::string &getValueByStr(std::string &out, UInt32 index) const override
    {
        if(index < _values.size())
        {
            std::string text;
            MFieldTraits::putToString(_values[index], text);
            out += text;
        }
        return out;
    }

    /// As Field has it.
    UInt32 getBinSize() override
    {
        return static_cast<UInt32>(sizeof(UInt32)) + (_values.empty() ? 0 : MFieldTraits::getBinSize(data(), size()));
    }

    /// As Field has it.
    void copyToBin(BinaryDataHandler &memory) override
    {
        const UInt32 count = size();
        memory.putValue(count);
        if(count != 0)
            MFieldTraits::copyToBin(memory, data(), count);
    }

    /// A count that the stream can't hold gives an empty field.
    void copyFromBin(BinaryDataHandler &memory) override
    {
        UInt32 count = 0;
        memory.getValue(count);
        _values.clear();
        if(!memory.canRead(UInt64(count) * smallestBinSize()))
            return;
        _values.resize(count);
        if(count != 0)
            MFieldTraits::copyFromBin(memory, data(), count);
    }

    /// Becomes a copy of the same field on another aspect.
    void syncWith(MField &source) { _values = source._values; }

    /// The same values.
    bool operator==(const MField &other) const { return _values == other._values; }

    /// As Field has it.
    void dump() const override
    {
        std::printf("STMFST : \n");
        std::printf("\n");
    }

  private:
    T *data() { return _values.data(); }

    /// No value takes less than a default one.
    static UInt32 smallestBinSize() { return MFieldTraits::getBinSize(MFieldTraits::getDefault()); }

    StorageType _values;
};

template <class T>
const FieldType MField<T>::_fieldType(FieldDataTraits<T>::getMName(), "Field", FieldDataTraits<T>::getType(),
                                      &MField<T>::create, FieldType::MULTI_FIELD);

OSG_END_NAMESPACE

#endif
