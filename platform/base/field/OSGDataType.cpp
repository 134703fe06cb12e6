#include "OSGDataType.h"

#include <mutex>
#include <unordered_map>
#include <vector>

OSG_BEGIN_NAMESPACE

struct TypeFactory::Content
{
    mutable std::mutex mutex;
    std::unordered_map<std::string, std::vector<TypeBase *>> byName;
    UInt32 lastId = 0;
    UInt32 count = 0;
};

TypeFactory::TypeFactory() : _content(new Content) {}

// The factory is never destroyed: records of other libraries leave it in an order that nobody can tell.
TypeFactory *TypeFactory::the()
{
    static TypeFactory *const factory = new TypeFactory;
    return factory;
}

TypeBase *TypeFactory::findType(const Char8 *name) const
{
    if(name == nullptr)
        return nullptr;
    std::lock_guard<std::mutex> lock(_content->mutex);
    const auto found = _content->byName.find(name);
    return found == _content->byName.end() ? nullptr : found->second.front();
}

UInt32 TypeFactory::getNumTypes() const
{
    std::lock_guard<std::mutex> lock(_content->mutex);
    return _content->count;
}

UInt32 TypeFactory::add(TypeBase *type)
{
    std::lock_guard<std::mutex> lock(_content->mutex);
    _content->byName[type->getName()].push_back(type);
    ++_content->count;
    return ++_content->lastId;
}

void TypeFactory::remove(TypeBase *type)
{
    std::lock_guard<std::mutex> lock(_content->mutex);
    const auto found = _content->byName.find(type->getName());
    if(found == _content->byName.end())
        return;
    std::vector<TypeBase *> &same = found->second;
    for(auto it = same.begin(); it != same.end(); ++it)
    {
        if(*it == type)
        {
            same.erase(it);
            --_content->count;
            break;
        }
    }
    if(same.empty())
        _content->byName.erase(found);
}

TypeBase::TypeBase(const Char8 *name, const Char8 *parentName, UInt32 nameSpace)
    : _name(name != nullptr ? name : ""), _parentName(parentName != nullptr ? parentName : ""),
      _nameSpace(nameSpace), _id(0)
{
    _id = TypeFactory::the()->add(this);
}

TypeBase::~TypeBase()
{
    TypeFactory::the()->remove(this);
}

DataType::DataType(const Char8 *name, const Char8 *parentName, UInt32 nameSpace)
    : TypeBase(name, parentName, nameSpace)
{
}

OSG_END_NAMESPACE
