#ifndef _OSGTRANSFORMCHUNK_H_
#define _OSGTRANSFORMCHUNK_H_

/// \file
/// A matrix on the model-view matrix.

#include "OSGTransformChunkBase.h"

OSG_BEGIN_NAMESPACE

/// A matrix on the model-view matrix, for as long as the chunk is active.
class OSG_SYSTEMLIB_DLLMAPPING TransformChunk : public TransformChunkBase
{
  public:
    typedef TransformChunkBase Inherited;

    const StateChunkClass *getClass() const override { return &_class; }
    static const StateChunkClass *getStaticClass() { return &_class; }
    static UInt32 getStaticClassId() { return _class.getId(); }

    void activate(DrawActionBase *action, UInt32 index = 0) override;
    void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0) override;
    void deactivate(DrawActionBase *action, UInt32 index = 0) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    TransformChunk();
    TransformChunk(const TransformChunk &source);
    ~TransformChunk() override;

  private:
    friend class FieldContainer;
    friend class TransformChunkBase;

    static void initMethod();

    static StateChunkClass _class;
};

OSG_END_NAMESPACE

#endif
