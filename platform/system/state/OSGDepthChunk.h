#ifndef _OSGDEPTHCHUNK_H_
#define _OSGDEPTHCHUNK_H_

/// \file
/// The depth test.

#include "OSGDepthChunkBase.h"

OSG_BEGIN_NAMESPACE

/// The depth test. Behind it the test is on, with GL_LEQUAL, and the depth mask is what it was ahead of it.
class OSG_SYSTEMLIB_DLLMAPPING DepthChunk : public DepthChunkBase
{
  public:
    typedef DepthChunkBase Inherited;

    const StateChunkClass *getClass() const override { return &_class; }
    static const StateChunkClass *getStaticClass() { return &_class; }
    static UInt32 getStaticClassId() { return _class.getId(); }

    void activate(DrawActionBase *action, UInt32 index = 0) override;
    void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0) override;
    void deactivate(DrawActionBase *action, UInt32 index = 0) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    DepthChunk();
    DepthChunk(const DepthChunk &source);
    ~DepthChunk() override;

  private:
    friend class FieldContainer;
    friend class DepthChunkBase;

    static void initMethod();

    static StateChunkClass _class;

    GLboolean _maskBefore = GL_TRUE; ///< the depth mask to go back to
};

OSG_END_NAMESPACE

#endif
