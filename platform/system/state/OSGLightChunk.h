#ifndef _OSGLIGHTCHUNK_H_
#define _OSGLIGHTCHUNK_H_

/// \file
/// A light source.

#include "OSGLightChunkBase.h"

OSG_BEGIN_NAMESPACE

/// A light source; the slot of the chunk, 0 to 7, is the number of the light.
class OSG_SYSTEMLIB_DLLMAPPING LightChunk : public LightChunkBase
{
  public:
    typedef LightChunkBase Inherited;

    const StateChunkClass *getClass() const override { return &_class; }
    static const StateChunkClass *getStaticClass() { return &_class; }
    static UInt32 getStaticClassId() { return _class.getId(); }

    void activate(DrawActionBase *action, UInt32 index = 0) override;
    void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0) override;
    void deactivate(DrawActionBase *action, UInt32 index = 0) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    LightChunk();
    LightChunk(const LightChunk &source);
    ~LightChunk() override;

  private:
    friend class FieldContainer;
    friend class LightChunkBase;

    static void initMethod();

    static StateChunkClass _class;
};

OSG_END_NAMESPACE

#endif
