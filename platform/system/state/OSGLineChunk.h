#ifndef _OSGLINECHUNK_H_
#define _OSGLINECHUNK_H_

/// \file
/// How lines are rasterised.

#include "OSGLineChunkBase.h"

OSG_BEGIN_NAMESPACE

/// Width, stipple and smoothing of lines.
class OSG_SYSTEMLIB_DLLMAPPING LineChunk : public LineChunkBase
{
  public:
    typedef LineChunkBase Inherited;

    const StateChunkClass *getClass() const override { return &_class; }
    static const StateChunkClass *getStaticClass() { return &_class; }
    static UInt32 getStaticClassId() { return _class.getId(); }

    void activate(DrawActionBase *action, UInt32 index = 0) override;
    void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0) override;
    void deactivate(DrawActionBase *action, UInt32 index = 0) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    LineChunk();
    LineChunk(const LineChunk &source);
    ~LineChunk() override;

  private:
    friend class FieldContainer;
    friend class LineChunkBase;

    static void initMethod();

    static StateChunkClass _class;
};

OSG_END_NAMESPACE

#endif
