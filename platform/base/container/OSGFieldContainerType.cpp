#include "OSGFieldContainerType.h"

#include "OSGFieldContainer.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

FieldDescription::FieldDescription(const FieldType &type, const Char8 *name, UInt32 fieldId, BitVector fieldMask,
                                   bool internal, FieldAccessMethod access)
    : _type(type), _name(name), _fieldId(fieldId), _fieldMask(fieldMask), _internal(internal), _access(access)
{
}

FieldContainerType::FieldContainerType(const Char8 *name, const Char8 *parentName, const Char8 *groupName,
                                       PrototypeCreateF createPrototype, InitContainerF initMethod,
                                       FieldDescription **descriptions, UInt32 descriptionBytes, bool)
    : DataType(name, parentName, 2), _groupName(groupName != nullptr ? groupName : ""),
      _createPrototype(createPrototype), _initMethod(initMethod),
      _ownDescriptions(descriptions, descriptions + descriptionBytes / sizeof(FieldDescription *))
{
    FieldContainerFactory::the()->addType(this);
}

FieldContainerType::~FieldContainerType()
{
    FieldContainerFactory::the()->removeType(this);
    for(FieldDescription *description : _ownDescriptions)
        delete description;
}

bool FieldContainerType::initialize()
{
    if(_initialized)
        return true;

    if(!getParentName().empty())
    {
        _parent = dynamic_cast<FieldContainerType *>(TypeFactory::the()->findType(getCParentName()));
        if(_parent == nullptr || !_parent->initialize())
        {
            FFATAL(("FieldContainerType: the class %s has an unknown parent class %s\n", getCName(),
                    getCParentName()));
            return false;
        }
        _allDescriptions = _parent->_allDescriptions;
    }
    _allDescriptions.insert(_allDescriptions.end(), _ownDescriptions.begin(), _ownDescriptions.end());
    if(_groupName.empty())
        _groupId = _parent != nullptr ? _parent->_groupId : 0;
    else
        _groupId = FieldContainerFactory::the()->groupId(_groupName);

    // From here on: `initMethod` may create objects of this class.
    _initialized = true;
    if(_createPrototype != nullptr)
    {
        _prototype = _createPrototype();
        addRefCP(_prototype);
    }
    if(_initMethod != nullptr)
        _initMethod();
    return true;
}

void FieldContainerType::terminate()
{
    const FieldContainerPtr prototype = _prototype;
    _prototype = NullFC;
    subRefCP(prototype);
    _allDescriptions.clear();
    _initialized = false;
}

bool FieldContainerType::isDerivedFrom(const FieldContainerType &other) const
{
    for(const FieldContainerType *type = this; type != nullptr; type = type->_parent)
        if(type == &other)
            return true;
    return false;
}

bool FieldContainerType::hasAncestor(const Char8 *name) const
{
    for(const FieldContainerType *type = this; type != nullptr; type = type->_parent)
        if(type->getName() == name)
            return true;
    return false;
}

bool FieldContainerType::isNode() const
{
    return hasAncestor("Node");
}

bool FieldContainerType::isNodeCore() const
{
    return hasAncestor("NodeCore");
}

bool FieldContainerType::isAttachment() const
{
    return hasAncestor("Attachment");
}

UInt32 FieldContainerType::getNumFieldDescs() const
{
    return UInt32(_allDescriptions.size());
}

FieldDescription *FieldContainerType::getFieldDescription(UInt32 fieldId) const
{
    for(FieldDescription *description : _allDescriptions)
        if(description->getFieldId() == fieldId)
            return description;
    return nullptr;
}

FieldDescription *FieldContainerType::findFieldDescription(const Char8 *name) const
{
    if(name == nullptr)
        return nullptr;
    for(FieldDescription *description : _allDescriptions)
        if(std::string(description->getCName()) == name)
            return description;
    return nullptr;
}

FieldContainerPtr FieldContainerType::getPrototype() const
{
    if(!_initialized)
        FieldContainerFactory::the()->initializeNewTypes();
    return _prototype;
}

bool FieldContainerType::setPrototype(const FieldContainerPtr &prototype)
{
    if(prototype == NullFC)
        return false;
    setRefdCP(_prototype, prototype);
    return true;
}

FieldContainerPtr FieldContainerType::createFieldContainer() const
{
    const FieldContainerPtr prototype = getPrototype();
    return prototype == NullFC ? FieldContainerPtr() : prototype->shallowCopy();
}

OSG_END_NAMESPACE
