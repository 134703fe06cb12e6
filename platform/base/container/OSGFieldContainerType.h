#ifndef _OSGFIELDCONTAINERTYPE_H_
#define _OSGFIELDCONTAINERTYPE_H_

/// \file
/// The run-time record of a container class and of its fields.

#include <vector>

#include "OSGField.h"
#include "OSGFieldContainerPtr.h"

OSG_BEGIN_NAMESPACE

class FieldContainer;

/// The record of one field of a container class.
class OSG_BASELIB_DLLMAPPING FieldDescription
{
  public:
    /// Gives the field of that container.
    typedef Field *(*FieldAccessMethod)(FieldContainer &container);

    /// `type` and `name` are kept by address. `internal` marks a field that is of no interest outside the process.
    FieldDescription(const FieldType &type, const Char8 *name, UInt32 fieldId, BitVector fieldMask, bool internal,
                     FieldAccessMethod access);

    /// The type of the field.
    const FieldType &getType() const { return _type; }
    /// The name of the field's type, as SFBool.
    const Char8 *getTypeName() const { return _type.getCName(); }
    /// The name of the field.
    const Char8 *getCName() const { return _name; }
    /// The id, the mask with just its bit, and whether the field is of no interest outside the process.
    UInt32 getFieldId() const { return _fieldId; }
    BitVector getFieldMask() const { return _fieldMask; }
    bool isInternal() const { return _internal; }
    /// The field of a container.
    Field *access(FieldContainer &container) const { return _access(container); }

  private:
    const FieldType &_type;
    const Char8 *_name;
    UInt32 _fieldId;
    BitVector _fieldMask;
    bool _internal;
    FieldAccessMethod _access;
};

/// Turns an accessor of a class into a FieldAccessMethod.
template <class C, class F, F *(C::*method)()>
inline Field *accessField(FieldContainer &container)
{
    return (static_cast<C &>(container).*method)();
}

/// Makes the prototype of a class.
typedef FieldContainerPtr (*PrototypeCreateF)();
/// What a class does when it enters the table of all types.
typedef void (*InitContainerF)();

/// The record of a container class. Made by a static initialiser; the factory initialises it (parent, fields,
/// prototype, `initMethod`) when OpenSG is initialised or, if that was before, when somebody first asks for it.
class OSG_BASELIB_DLLMAPPING FieldContainerType : public DataType
{
  public:
    /// `descriptions` is an array of `descriptionBytes` bytes of pointers to records that this type then owns, in the
    /// order of the field ids. A class without `createPrototype` is abstract.
    FieldContainerType(const Char8 *name, const Char8 *parentName, const Char8 *groupName,
                       PrototypeCreateF createPrototype, InitContainerF initMethod, FieldDescription **descriptions,
                       UInt32 descriptionBytes, bool descriptionsAddable = false);
    ~FieldContainerType() override;

    /// The id and the name of the group.
    UInt16 getGroupId() const { return _groupId; }
    const Char8 *getCGroupName() const { return _groupName.c_str(); }
    /// The type of the parent class; null for the root.
    FieldContainerType *getParent() const { return _parent; }
    /// Whether it is the other type or below it.
    bool isDerivedFrom(const FieldContainerType &other) const;
    /// Whether there are no objects of it.
    bool isAbstract() const { return _createPrototype == nullptr; }
    /// Whether its objects are nodes, cores or attachments.
    bool isNode() const;
    bool isNodeCore() const;
    bool isAttachment() const;

    /// Own and inherited fields.
    UInt32 getNumFieldDescs() const;
    /// The record of that id, or null; ids begin at 1.
    FieldDescription *getFieldDescription(UInt32 fieldId) const;
    /// The record of that name, or null.
    FieldDescription *findFieldDescription(const Char8 *name) const;

    /// The container that `create` copies; NullFC before initialisation and for abstract classes.
    FieldContainerPtr getPrototype() const;
    /// Takes another prototype; a reference is held.
    bool setPrototype(const FieldContainerPtr &prototype);
    /// A copy of the prototype, or NullFC.
    FieldContainerPtr createFieldContainer() const;

    /// Whether osgInit has been at it.
    bool isInitialized() const { return _initialized; }

  private:
    friend class FieldContainerFactory;

    /// Parents first. False, with a fatal line, if the parent class is unknown.
    bool initialize();
    void terminate();
    /// Whether a class of that name is above it.
    bool hasAncestor(const Char8 *name) const;

    std::string _groupName;
    UInt16 _groupId = 0;
    PrototypeCreateF _createPrototype;
    InitContainerF _initMethod;
    std::vector<FieldDescription *> _ownDescriptions;
    std::vector<FieldDescription *> _allDescriptions;
    FieldContainerType *_parent = nullptr;
    FieldContainerPtr _prototype;
    bool _initialized = false;
};

OSG_END_NAMESPACE

#endif
