#ifndef _OSGDATATYPE_H_
#define _OSGDATATYPE_H_

/// \file
/// The run-time record of a type that has a name: values, fields and containers all have one.

#include <string>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// What every type record has: a name, the name of its parent, and an id that is unique in the process. Records are
/// made by static initialisers, in any order; a parent is therefore named, not pointed to. A record registers itself
/// with the TypeFactory when it is made and leaves it when it is destroyed.
class OSG_BASELIB_DLLMAPPING TypeBase
{
  public:
    /// Both texts are copied; the type enters the table of all types.
    TypeBase(const Char8 *name, const Char8 *parentName, UInt32 nameSpace = 0);
    virtual ~TypeBase();

    TypeBase(const TypeBase &) = delete;
    TypeBase &operator=(const TypeBase &) = delete;

    /// The id, the name and the parent's name.
    UInt32 getId() const { return _id; }
    const Char8 *getCName() const { return _name.c_str(); }
    const std::string &getName() const { return _name; }
    const Char8 *getCParentName() const { return _parentName.c_str(); }
    const std::string &getParentName() const { return _parentName; }
    /// The number that the type was made with; it means nothing here.
    UInt32 getNameSpace() const { return _nameSpace; }

    /// The same type.
    bool operator==(const TypeBase &other) const { return _id == other._id; }
    bool operator!=(const TypeBase &other) const { return _id != other._id; }

  private:
    std::string _name;
    std::string _parentName;
    UInt32 _nameSpace;
    UInt32 _id;
};

/// The record of a type that a field can hold.
class OSG_BASELIB_DLLMAPPING DataType : public TypeBase
{
  public:
    /// As the parent.
    DataType(const Char8 *name, const Char8 *parentName, UInt32 nameSpace = 0);
};

/// All type records of the process by name. Thread-safe; the records are not owned.
class OSG_BASELIB_DLLMAPPING TypeFactory
{
  public:
    /// The only one.
    static TypeFactory *the();

    /// The record of that name, or null. Where two have it (a second library), the one that was made first.
    TypeBase *findType(const Char8 *name) const;
    /// Types.
    UInt32 getNumTypes() const;

  private:
    friend class TypeBase;
    struct Content;

    TypeFactory();

    UInt32 add(TypeBase *type);
    void remove(TypeBase *type);

    Content *_content;
};

OSG_END_NAMESPACE

#endif
