#ifndef _OSGFIELD_H_
#define _OSGFIELD_H_

/// \file
/// What a single and a multi field have in common, and the record that describes a kind of field.

#include <string>

#include "OSGDataType.h"

OSG_BEGIN_NAMESPACE

class BinaryDataHandler;
class Field;

/// The record of a kind of field: SFBool, MFVec3f, SFNodePtr and so on.
class OSG_BASELIB_DLLMAPPING FieldType : public TypeBase
{
  public:
    /// One value or any number.
    enum Cardinality
    {
        SINGLE_FIELD = 0,
        MULTI_FIELD = 1
    };

    /// Makes a field.
    typedef Field *(*CreateFieldMethod)();

    /// `contentType` is kept by address, so it may be constructed later than this.
    FieldType(const Char8 *name, const Char8 *parentName, const DataType &contentType, CreateFieldMethod create,
              Cardinality cardinality);

    /// The type of a value, and how many there are.
    const DataType &getContentType() const { return _contentType; }
    Cardinality getCardinality() const { return _cardinality; }
    /// A new, default field; the caller owns it.
    Field *createField() const { return _create(); }

  private:
    const DataType &_contentType;
    Cardinality _cardinality;
    CreateFieldMethod _create;
};

/// Lets a caller decide how the values of a field are written one behind the other.
class OSG_BASELIB_DLLMAPPING StringConversionStateBase
{
  public:
    virtual ~StringConversionStateBase();

    /// What a writer does ahead of a field, with each value, and behind the field.
    virtual std::string &beginField(const Field *field, std::string &out) = 0;
    virtual std::string &addValueStr(std::string &value, std::string &out) = 0;
    virtual std::string &endField(const Field *field, std::string &out) = 0;
};

/// A field of any type. A field belongs to one aspect's copy of a container and is used by that aspect's thread only.
class OSG_BASELIB_DLLMAPPING Field
{
  public:
    virtual ~Field();

    /// What the field is made of.
    virtual const FieldType &getType() const = 0;
    const DataType &getContentType() const { return getType().getContentType(); }
    FieldType::Cardinality getCardinality() const { return getType().getCardinality(); }

    /// Whether there is no value, and how many there are.
    virtual bool isEmpty() const = 0;
    virtual UInt32 getSize() const = 0;

    /// Takes the content of `source`, which must be of the same type; any other is left alone.
    virtual void setAbstrValue(const Field &source) = 0;

    /// Text of all values, appended; see SField and MField.
    virtual std::string &getValueByStr(std::string &out) const = 0;
    virtual std::string &getValueByStr(std::string &out, StringConversionStateBase &state) const = 0;
    virtual std::string &getValueByStr(std::string &out, UInt32 index) const = 0;
    virtual void pushValueByStr(const Char8 *text) = 0;

    /// The binary form: its size, writing and reading it.
    virtual UInt32 getBinSize() = 0;
    virtual void copyToBin(BinaryDataHandler &memory) = 0;
    virtual void copyFromBin(BinaryDataHandler &memory) = 0;

    /// Writes it to the log.
    virtual void dump() const = 0;

  protected:
    Field() = default;
    /// All values are copied.
    Field(const Field &) = default;
    Field &operator=(const Field &) = default;
};

/// What the text conversion of a type without a text form ends up in: one log line, nothing else. The lines name no
/// type behind their "for ", and that is meant.
OSG_BASELIB_DLLMAPPING void logNoConversionFromString();
OSG_BASELIB_DLLMAPPING void logNoConversionToString();

/// The field types of the process by name; a view on the TypeFactory.
class OSG_BASELIB_DLLMAPPING FieldFactory
{
  public:
    /// The only one.
    static FieldFactory &the();

    /// The type of that name, or null.
    FieldType *getFieldType(const Char8 *name) const;
    /// A new field of that type, which the caller owns, or null.
    Field *createField(const Char8 *name) const;
};

OSG_END_NAMESPACE

#endif
