#ifndef _OSGSTATECHUNK_H_
#define _OSGSTATECHUNK_H_

/// \file
/// The base of all state chunks, and the numbering of their classes.

#include <string>

#include "OSGGL.h"
#include "OSGStateChunkBase.h"

OSG_BEGIN_NAMESPACE

class DrawActionBase;

/// The record of one class of chunks, a static of that class. A class has as many consecutive ids as slots,
/// so the id plus a slot is the place of a chunk in a State.
class OSG_SYSTEMLIB_DLLMAPPING StateChunkClass
{
  public:
    /// `numSlots` is how many chunks of the class can be active at once, 1 or more.
    explicit StateChunkClass(const Char8 *name, UInt32 numSlots = 1);

    /// The id of slot 0.
    UInt32 getId() const { return _id; }
    /// The name and the number of slots.
    const Char8 *getName() const;
    UInt32 getNumSlots() const;

    /// The name and the number of slots of the class that has this id, of whichever slot; null and 0 for an
    /// unknown id.
    static const Char8 *getName(UInt32 id);
    static UInt32 getNumSlots(UInt32 id);
    /// How many ids are given out.
    static UInt32 getNumIds();

  private:
    UInt32 _id;
};

/// One piece of GL state. `activate` brings it about on top of the base state (the state of a fresh context
/// with depth test on), `deactivate` goes back there, and `changeFrom` goes over from another chunk of the
/// same class. These three need the GL context of the action's window current and run on the thread that
/// draws. `index` is the slot.
class OSG_SYSTEMLIB_DLLMAPPING StateChunk : public StateChunkBase
{
  public:
    typedef StateChunkBase Inherited;

    /// The class of chunks that this is one of, and its id.
    virtual const StateChunkClass *getClass() const = 0;
    UInt32 getClassId() const { return getClass()->getId(); }

    /// For an active chunk: follows what has changed around it since, the matrices for instance.
    virtual void update(DrawActionBase *action);
    /// Brings the state about in GL, whose context is current.
    virtual void activate(DrawActionBase *action, UInt32 index = 0);
    /// Does deactivate and activate unless a class knows better; nothing where `old` is this. `old` may be
    /// null.
    virtual void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0);
    /// Brings GL's default back.
    virtual void deactivate(DrawActionBase *action, UInt32 index = 0);

    /// Whether what is drawn with the chunk has to be drawn behind all opaque things, from far to near.
    virtual bool isTransparent() const;

    /// What changing over from `chunk` costs, for sorting; 0 where nobody knows.
    virtual Real32 switchCost(StateChunk *chunk);

    /// An order among chunks, for sorting; equality means that both bring about the same state.
    virtual bool operator<(const StateChunk &other) const;
    virtual bool operator==(const StateChunk &other) const;
    virtual bool operator!=(const StateChunk &other) const;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    StateChunk();
    StateChunk(const StateChunk &source);
    ~StateChunk() override;

  private:
    friend class FieldContainer;
    friend class StateChunkBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
