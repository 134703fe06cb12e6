#ifndef _OSGPOLYGONCHUNK_H_
#define _OSGPOLYGONCHUNK_H_

/// \file
/// How polygons are rasterised.

#include "OSGPolygonChunkBase.h"

OSG_BEGIN_NAMESPACE

/// Culling, winding, modes, offsets and stipple of polygons.
class OSG_SYSTEMLIB_DLLMAPPING PolygonChunk : public PolygonChunkBase
{
  public:
    typedef PolygonChunkBase Inherited;

    const StateChunkClass *getClass() const override { return &_class; }
    static const StateChunkClass *getStaticClass() { return &_class; }
    static UInt32 getStaticClassId() { return _class.getId(); }

    void activate(DrawActionBase *action, UInt32 index = 0) override;
    void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0) override;
    void deactivate(DrawActionBase *action, UInt32 index = 0) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    PolygonChunk();
    PolygonChunk(const PolygonChunk &source);
    ~PolygonChunk() override;

  private:
    friend class FieldContainer;
    friend class PolygonChunkBase;

    static void initMethod();

    static StateChunkClass _class;
};

OSG_END_NAMESPACE

#endif
