#ifndef _OSGMATERIALCHUNK_H_
#define _OSGMATERIALCHUNK_H_

/// \file
/// The terms of the fixed lighting equation.

#include "OSGMaterialChunkBase.h"

OSG_BEGIN_NAMESPACE

/// The terms of the fixed lighting equation. Transparent where the diffuse alpha is below 1.
class OSG_SYSTEMLIB_DLLMAPPING MaterialChunk : public MaterialChunkBase
{
  public:
    typedef MaterialChunkBase Inherited;

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
    MaterialChunk();
    MaterialChunk(const MaterialChunk &source);
    ~MaterialChunk() override;

  private:
    friend class FieldContainer;
    friend class MaterialChunkBase;

    static void initMethod();

    static StateChunkClass _class;
};

OSG_END_NAMESPACE

#endif
