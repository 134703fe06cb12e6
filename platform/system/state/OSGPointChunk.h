#ifndef _OSGPOINTCHUNK_H_
#define _OSGPOINTCHUNK_H_

/// \file
/// How points are rasterised.

#include "OSGPointChunkBase.h"

OSG_BEGIN_NAMESPACE

/// Size, attenuation and smoothing of points, and point sprites.
class OSG_SYSTEMLIB_DLLMAPPING PointChunk : public PointChunkBase
{
  public:
    typedef PointChunkBase Inherited;

    const StateChunkClass *getClass() const override { return &_class; }
    static const StateChunkClass *getStaticClass() { return &_class; }
    static UInt32 getStaticClassId() { return _class.getId(); }

    void activate(DrawActionBase *action, UInt32 index = 0) override;
    void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0) override;
    void deactivate(DrawActionBase *action, UInt32 index = 0) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    PointChunk();
    PointChunk(const PointChunk &source);
    ~PointChunk() override;

  private:
    friend class FieldContainer;
    friend class PointChunkBase;

    static void initMethod();

    static StateChunkClass _class;
};

OSG_END_NAMESPACE

#endif
