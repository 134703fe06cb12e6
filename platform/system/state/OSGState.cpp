#include "OSGState.h"

#include <algorithm>

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void State::initMethod() {}

State::State() = default;

State::State(const State &source) : Inherited(source) {}

State::~State() = default;

void State::onCreate(const State *source)
{
    Inherited::onCreate(source);
    for(const StateChunkPtr &chunk : _mfChunks)
        addRefCP(chunk);
}

void State::onDestroy()
{
    clearChunks();
    Inherited::onDestroy();
}

bool State::addChunk(const StateChunkPtr &chunk, Int32 index)
{
    if(chunk == NullFC)
        return false;
    const StateChunkClass *const chunkClass = chunk->getClass();
    const UInt32 first = chunkClass->getId();
    const UInt32 numSlots = chunkClass->getNumSlots();

    UInt32 slot = 0;
    if(index >= 0)
    {
        slot = UInt32(index);
        if(slot >= numSlots)
        {
            SWARNING << "State::addChunk: a chunk of class " << chunkClass->getName() << " can't be in slot "
                     << slot << ", there are " << numSlots << std::endl;
            return false;
        }
    }
    else
    {
        while(slot < numSlots && chunkPresent(first + slot))
            ++slot;
        if(slot == numSlots)
        {
            if(index != AutoSlotReplace)
            {
                SWARNING << "State::addChunk: no free slot for a chunk of class " << chunkClass->getName()
                         << ", all " << numSlots << " are taken" << std::endl;
                return false;
            }
            slot = 0;
        }
    }

    if(_mfChunks.size() <= first + slot)
        _mfChunks.resize(first + slot + 1);
    const StateChunkPtr old = _mfChunks[first + slot];
    addRefCP(chunk);
    _mfChunks[first + slot] = chunk;
    subRefCP(old);
    return true;
}

bool State::subChunk(const StateChunkPtr &chunk, Int32 index)
{
    if(chunk == NullFC)
        return false;
    const UInt32 first = chunk->getClassId();
    const UInt32 numSlots = chunk->getClass()->getNumSlots();
    for(UInt32 slot = 0; slot < numSlots; ++slot)
    {
        if((index < 0 || UInt32(index) == slot) && getChunk(first + slot) == chunk)
            return subChunk(first + slot);
    }
    return false;
}

bool State::subChunk(UInt32 classId)
{
    const StateChunkPtr old = getChunk(classId);
    if(old == NullFC)
        return false;
    _mfChunks[classId] = NullFC;
    subRefCP(old);
    return true;
}

StateChunkPtr State::getChunk(UInt32 classId) const
{
    return classId < _mfChunks.size() ? _mfChunks[classId] : StateChunkPtr();
}

void State::clearChunks()
{
    MFStateChunkPtr old;
    old.swap(_mfChunks);
    for(const StateChunkPtr &chunk : old)
        subRefCP(chunk);
}

StateChunk *State::usedChunk(UInt32 place) const
{
    if(place >= _mfChunks.size())
        return nullptr;
    StateChunk *const chunk = _mfChunks[place].get();
    return chunk == nullptr || chunk->getIgnore() ? nullptr : chunk;
}

void State::activate(DrawActionBase *action)
{
    for(UInt32 place = 0; place < _mfChunks.size(); ++place)
    {
        if(StateChunk *const chunk = usedChunk(place))
            chunk->activate(action, place - chunk->getClassId());
    }
}

void State::changeFrom(DrawActionBase *action, State *old)
{
    if(old == nullptr)
    {
        activate(action);
        return;
    }
    const UInt32 numPlaces = std::max(_mfChunks.size(), old->_mfChunks.size());
    for(UInt32 place = 0; place < numPlaces; ++place)
    {
        StateChunk *const now = usedChunk(place);
        StateChunk *const before = old->usedChunk(place);
        if(now != nullptr && before != nullptr)
            now->changeFrom(action, before, place - now->getClassId());
        else if(now != nullptr)
            now->activate(action, place - now->getClassId());
        else if(before != nullptr)
            before->deactivate(action, place - before->getClassId());
    }
}

void State::deactivate(DrawActionBase *action)
{
    for(UInt32 place = 0; place < _mfChunks.size(); ++place)
    {
        if(StateChunk *const chunk = usedChunk(place))
            chunk->deactivate(action, place - chunk->getClassId());
    }
}

Real32 State::switchCost(State *state)
{
    Real32 cost = 0.f;
    if(state == nullptr)
        return cost;
    for(UInt32 place = 0; place < _mfChunks.size(); ++place)
    {
        StateChunk *const now = usedChunk(place);
        StateChunk *const before = state->usedChunk(place);
        if(now != nullptr && before != nullptr && now != before)
            cost += now->switchCost(before);
    }
    return cost;
}

bool State::operator<(const State &other) const
{
    return std::lexicographical_compare(_mfChunks.begin(), _mfChunks.end(), other._mfChunks.begin(),
                                        other._mfChunks.end());
}

bool State::operator==(const State &other) const
{
    const UInt32 numPlaces = std::max(_mfChunks.size(), other._mfChunks.size());
    for(UInt32 place = 0; place < numPlaces; ++place)
    {
        const StateChunkPtr mine = getChunk(place);
        const StateChunkPtr theirs = other.getChunk(place);
        if(mine == theirs)
            continue;
        if(mine == NullFC || theirs == NullFC || *mine != *theirs)
            return false;
    }
    return true;
}

bool State::operator!=(const State &other) const
{
    return !(*this == other);
}

void State::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void State::dump(UInt32, const BitVector) const
{
    SLOG << "Dump State NI" << std::endl;
}

OSG_END_NAMESPACE
