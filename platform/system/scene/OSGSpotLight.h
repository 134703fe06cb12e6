#ifndef _OSGSPOTLIGHT_H_
#define _OSGSPOTLIGHT_H_

/// \file
/// A light that shines from a point into a cone.

#include "OSGSpotLightBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING SpotLight : public SpotLightBase
{
  public:
    typedef SpotLightBase Inherited;

    /// The numbers one by one.
    void setDirection(Real32 x, Real32 y, Real32 z) { setDirection(Vec3f(x, y, z)); }
    using Inherited::setDirection;

    void activate(DrawActionBase *action, UInt32 index) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    SpotLight();
    SpotLight(const SpotLight &source);
    ~SpotLight() override;

  private:
    friend class FieldContainer;
    friend class SpotLightBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
