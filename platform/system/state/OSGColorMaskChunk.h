#ifndef _OSGCOLORMASKCHUNK_H_
#define _OSGCOLORMASKCHUNK_H_

/// \file
/// Which channels are written.

#include "OSGColorMaskChunkBase.h"

OSG_BEGIN_NAMESPACE

/// Which channels of the colour buffers are written. Behind it all are.
class OSG_SYSTEMLIB_DLLMAPPING ColorMaskChunk : public ColorMaskChunkBase
{
  public:
    typedef ColorMaskChunkBase Inherited;

    const StateChunkClass *getClass() const override { return &_class; }
    static const StateChunkClass *getStaticClass() { return &_class; }
    static UInt32 getStaticClassId() { return _class.getId(); }

    void activate(DrawActionBase *action, UInt32 index = 0) override;
    void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0) override;
    void deactivate(DrawActionBase *action, UInt32 index = 0) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ColorMaskChunk();
    ColorMaskChunk(const ColorMaskChunk &source);
    ~ColorMaskChunk() override;

  private:
    friend class FieldContainer;
    friend class ColorMaskChunkBase;

    static void initMethod();

    static StateChunkClass _class;
};

OSG_END_NAMESPACE

#endif
