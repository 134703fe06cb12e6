#include "OSGStateChunk.h"

#include <functional>
#include <vector>

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

namespace
{

struct ClassRecord
{
    std::string name;
    UInt32 id;
    UInt32 numSlots;
};

/// By id, a class of n slots n times. Filled by static initialisers, in whatever order they run.
std::vector<ClassRecord> &classRecords()
{
    static std::vector<ClassRecord> records;
    return records;
}

const ClassRecord *findClass(UInt32 id)
{
    return id < classRecords().size() ? &classRecords()[id] : nullptr;
}

} // namespace

StateChunkClass::StateChunkClass(const Char8 *name, UInt32 numSlots) : _id(getNumIds())
{
    const ClassRecord record{name, _id, numSlots};
    classRecords().insert(classRecords().end(), numSlots, record);
}

const Char8 *StateChunkClass::getName() const
{
    return getName(_id);
}

UInt32 StateChunkClass::getNumSlots() const
{
    return getNumSlots(_id);
}

const Char8 *StateChunkClass::getName(UInt32 id)
{
    const ClassRecord *const record = findClass(id);
    return record == nullptr ? nullptr : record->name.c_str();
}

UInt32 StateChunkClass::getNumSlots(UInt32 id)
{
    const ClassRecord *const record = findClass(id);
    return record == nullptr ? 0 : record->numSlots;
}

UInt32 StateChunkClass::getNumIds()
{
    return UInt32(classRecords().size());
}

void StateChunk::initMethod() {}

StateChunk::StateChunk() = default;

StateChunk::StateChunk(const StateChunk &source) : Inherited(source) {}

StateChunk::~StateChunk() = default;

void StateChunk::update(DrawActionBase *) {}

void StateChunk::activate(DrawActionBase *, UInt32) {}

void StateChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    if(old == this)
        return;
    if(old != nullptr)
        old->deactivate(action, index);
    activate(action, index);
}

void StateChunk::deactivate(DrawActionBase *, UInt32) {}

bool StateChunk::isTransparent() const
{
    return false;
}

Real32 StateChunk::switchCost(StateChunk *)
{
    return 0.f;
}

bool StateChunk::operator<(const StateChunk &other) const
{
    return std::less<const StateChunk *>()(this, &other);
}

bool StateChunk::operator==(const StateChunk &other) const
{
    return this == &other;
}

bool StateChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void StateChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void StateChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump StateChunk NI" << std::endl;
}

OSG_END_NAMESPACE
