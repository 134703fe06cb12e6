#ifndef _OSGSIMPLEMATERIAL_H_
#define _OSGSIMPLEMATERIAL_H_

/// \file
/// A material of plain colours.

#include "OSGBlendChunk.h"
#include "OSGMaterialChunk.h"
#include "OSGSimpleMaterialBase.h"

OSG_BEGIN_NAMESPACE

/// A material of plain colours; further chunks may be added. Its own chunks come first in the state.
class OSG_SYSTEMLIB_DLLMAPPING SimpleMaterial : public SimpleMaterialBase
{
  public:
    typedef SimpleMaterialBase Inherited;

    StatePtr makeState() override;
    void rebuildState() override;
    bool isTransparent() const override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    SimpleMaterial();
    SimpleMaterial(const SimpleMaterial &source);
    ~SimpleMaterial() override;

  private:
    friend class FieldContainer;
    friend class SimpleMaterialBase;

    static void initMethod();

    /// Brings the two chunks into line with the fields and adds them, and all others, to a state.
    void fill(const StatePtr &state);

    MaterialChunkPtr _materialChunk; ///< of this aspect; one reference held, null until needed
    BlendChunkPtr _blendChunk;       ///< likewise
};

OSG_END_NAMESPACE

#endif
