#ifndef _OSGSTATE_H_
#define _OSGSTATE_H_

/// \file
/// A set of state chunks.

#include "OSGStateBase.h"
#include "OSGStateChunk.h"

OSG_BEGIN_NAMESPACE

/// A set of chunks, one for each slot of each class. Materials make and keep it.
class OSG_SYSTEMLIB_DLLMAPPING State : public StateBase
{
  public:
    typedef StateBase Inherited;

    enum
    {
        AutoSlotReplace =
            -1, ///< the first free slot of the class; without one, slot 0 and what is in it goes
        AutoSlot = -2         ///< the first free slot of the class; without one the chunk is refused
    };

    /// Adds a chunk, of which a reference is held, in a slot of its class: a number from 0 on, where it
    /// replaces what is there, or one of the two above. False, with one warning, where there is no such
    /// slot or none free; false for NullFC.
    bool addChunk(const StateChunkPtr &chunk, Int32 index = AutoSlotReplace);
    /// Removes a chunk from the slot, or, with AutoSlot and AutoSlotReplace, from wherever it is; false if
    /// it isn't there.
    bool subChunk(const StateChunkPtr &chunk, Int32 index = AutoSlotReplace);
    /// Removes what is at a class id plus slot; false if there is nothing.
    bool subChunk(UInt32 classId);
    /// What is at a class id plus slot, or NullFC.
    StateChunkPtr getChunk(UInt32 classId) const;
    /// Whether there is one.
    bool chunkPresent(UInt32 classId) const { return getChunk(classId) != NullFC; }
    /// Takes all chunks away.
    void clearChunks();

    /// These three go through the chunks in the order of their ids, passing over the ignored ones. The GL
    /// context of the action's window has to be current. What `old` has and this has not is deactivated. A
    /// chunk that both have is told too: some have to look at what is around them.
    void activate(DrawActionBase *action);
    void changeFrom(DrawActionBase *action, State *old);
    void deactivate(DrawActionBase *action);

    /// The sum of the chunks' costs of changing over from `state`.
    virtual Real32 switchCost(State *state);

    /// An order among states by their chunks, and whether both have the same chunks.
    virtual bool operator<(const State &other) const;
    /// Whether both have the same chunks.
    virtual bool operator==(const State &other) const;
    virtual bool operator!=(const State &other) const;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    State();
    State(const State &source);
    ~State() override;

    void onCreate(const State *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class StateBase;

    static void initMethod();

    /// The chunk at a place if it is to be used, else null.
    StateChunk *usedChunk(UInt32 place) const;
};

OSG_END_NAMESPACE

#endif
