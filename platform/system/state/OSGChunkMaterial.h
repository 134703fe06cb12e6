#ifndef _OSGCHUNKMATERIAL_H_
#define _OSGCHUNKMATERIAL_H_

/// \file
/// A material made of state chunks.

#include "OSGChunkMaterialBase.h"

OSG_BEGIN_NAMESPACE

/// A material made of chunks. With the slot State::AutoSlot the chunks of a class take its slots in the
/// order of their addition: the n-th texture is on texture unit n. After an edit, endEditCP with
/// ChunksFieldMask brings the state up to date.
class OSG_SYSTEMLIB_DLLMAPPING ChunkMaterial : public ChunkMaterialBase
{
  public:
    typedef ChunkMaterialBase Inherited;

    /// How isTransparent is found.
    enum TransparencyMode
    {
        TransparencyAutoDetection = 0,
        TransparencyForceOpaque = 1,
        TransparencyForceTransparent = 2
    };

    /// Appends a chunk, of which a reference is held; the slot is what State::addChunk takes. False for
    /// NullFC.
    bool addChunk(const StateChunkPtr &chunk, Int32 slot = State::AutoSlotReplace);
    /// Removes the chunk that was added with this slot; false if it isn't there.
    bool subChunk(const StateChunkPtr &chunk, Int32 slot = State::AutoSlotReplace);
    /// The index of a chunk among the chunks, or -1.
    Int32 find(const StateChunkPtr &chunk) const;
    /// The chunk of exactly this type that was added with the slot, or the `slot`-th of those added without
    /// one; or NullFC.
    StateChunkPtr find(const FieldContainerType &type, Int32 slot = State::AutoSlotReplace) const;
    /// The chunk at an index, or NullFC.
    StateChunkPtr getChunk(UInt32 index) const;
    /// Removes all chunks.
    void clearChunks();

    StatePtr makeState() override;
    void rebuildState() override;
    bool isTransparent() const override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ChunkMaterial();
    ChunkMaterial(const ChunkMaterial &source);
    ~ChunkMaterial() override;

    void onCreate(const ChunkMaterial *source = nullptr);
    void onDestroy() override;

    /// Adds the chunks to a state.
    void addChunksTo(const StatePtr &state) const;

  private:
    friend class FieldContainer;
    friend class ChunkMaterialBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
