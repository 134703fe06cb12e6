#ifndef _OSGBLENDCHUNK_H_
#define _OSGBLENDCHUNK_H_

/// \file
/// Blending and the alpha test.

#include "OSGBlendChunkBase.h"

OSG_BEGIN_NAMESPACE

/// Blending and the alpha test. Transparent where the factor on the frame buffer is not GL_ZERO.
class OSG_SYSTEMLIB_DLLMAPPING BlendChunk : public BlendChunkBase
{
  public:
    typedef BlendChunkBase Inherited;

    const StateChunkClass *getClass() const override { return &_class; }
    static const StateChunkClass *getStaticClass() { return &_class; }
    static UInt32 getStaticClassId() { return _class.getId(); }

    void activate(DrawActionBase *action, UInt32 index = 0) override;
    void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0) override;
    void deactivate(DrawActionBase *action, UInt32 index = 0) override;
    bool isTransparent() const override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    BlendChunk();
    BlendChunk(const BlendChunk &source);
    ~BlendChunk() override;

  private:
    friend class FieldContainer;
    friend class BlendChunkBase;

    static void initMethod();

    static StateChunkClass _class;
};

OSG_END_NAMESPACE

#endif
