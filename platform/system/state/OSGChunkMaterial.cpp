#include "OSGChunkMaterial.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void ChunkMaterial::initMethod() {}

ChunkMaterial::ChunkMaterial() = default;

ChunkMaterial::ChunkMaterial(const ChunkMaterial &source) : Inherited(source) {}

ChunkMaterial::~ChunkMaterial() = default;

void ChunkMaterial::onCreate(const ChunkMaterial *source)
{
    Inherited::onCreate(source);
    for(const StateChunkPtr &chunk : _mfChunks)
        addRefCP(chunk);
}

void ChunkMaterial::onDestroy()
{
    clearChunks();
    Inherited::onDestroy();
}

bool ChunkMaterial::addChunk(const StateChunkPtr &chunk, Int32 slot)
{
    if(chunk == NullFC)
        return false;
    addRefCP(chunk);
    // Chunks that were written into the field directly have no slot said.
    _mfSlots.resize(_mfChunks.size(), State::AutoSlotReplace);
    _mfChunks.push_back(chunk);
    _mfSlots.push_back(slot);
    return true;
}

bool ChunkMaterial::subChunk(const StateChunkPtr &chunk, Int32 slot)
{
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
    {
        const Int32 itsSlot = i < _mfSlots.size() ? _mfSlots[i] : Int32(State::AutoSlotReplace);
        if(_mfChunks[i] != chunk || itsSlot != slot)
            continue;
        const StateChunkPtr old = _mfChunks[i];
        _mfChunks.erase(_mfChunks.begin() + i);
        if(i < _mfSlots.size())
            _mfSlots.erase(_mfSlots.begin() + i);
        subRefCP(old);
        return true;
    }
    return false;
}

Int32 ChunkMaterial::find(const StateChunkPtr &chunk) const
{
    const auto found = _mfChunks.find(chunk);
    return found == _mfChunks.end() ? -1 : Int32(found - _mfChunks.begin());
}

StateChunkPtr ChunkMaterial::find(const FieldContainerType &type, Int32 slot) const
{
    Int32 withoutSlot = 0;
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
    {
        if(_mfChunks[i] == NullFC || _mfChunks[i]->getType().getId() != type.getId())
            continue;
        const Int32 itsSlot = i < _mfSlots.size() ? _mfSlots[i] : Int32(State::AutoSlotReplace);
        if(itsSlot == slot || (itsSlot < 0 && (slot < 0 || withoutSlot == slot)))
            return _mfChunks[i];
        if(itsSlot < 0)
            ++withoutSlot;
    }
    return NullFC;
}

StateChunkPtr ChunkMaterial::getChunk(UInt32 index) const
{
    return index < _mfChunks.size() ? _mfChunks[index] : StateChunkPtr();
}

void ChunkMaterial::clearChunks()
{
    MFStateChunkPtr old;
    old.swap(_mfChunks);
    _mfSlots.clear();
    for(const StateChunkPtr &chunk : old)
        subRefCP(chunk);
}

void ChunkMaterial::addChunksTo(const StatePtr &state) const
{
    for(UInt32 i = 0; i < _mfChunks.size(); ++i)
        state->addChunk(_mfChunks[i], i < _mfSlots.size() ? _mfSlots[i] : Int32(State::AutoSlotReplace));
}

StatePtr ChunkMaterial::makeState()
{
    const StatePtr state = State::create();
    addChunksTo(state);
    return state;
}

void ChunkMaterial::rebuildState()
{
    addChunksTo(emptiedState());
}

bool ChunkMaterial::isTransparent() const
{
    if(getTransparencyMode() == TransparencyForceOpaque)
        return false;
    if(getTransparencyMode() == TransparencyForceTransparent)
        return true;
    for(const StateChunkPtr &chunk : _mfChunks)
    {
        if(chunk != NullFC && !chunk->getIgnore() && chunk->isTransparent())
            return true;
    }
    return false;
}

void ChunkMaterial::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ChunkMaterial::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ChunkMaterial NI" << std::endl;
}

OSG_END_NAMESPACE
