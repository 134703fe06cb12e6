#ifndef _OSGDIRECTIONALLIGHT_H_
#define _OSGDIRECTIONALLIGHT_H_

/// \file
/// A light that is infinitely far away.

#include "OSGDirectionalLightBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING DirectionalLight : public DirectionalLightBase
{
  public:
    typedef DirectionalLightBase Inherited;

    /// The numbers one by one.
    void setDirection(Real32 x, Real32 y, Real32 z) { setDirection(Vec3f(x, y, z)); }
    using Inherited::setDirection;

    void activate(DrawActionBase *action, UInt32 index) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    DirectionalLight();
    DirectionalLight(const DirectionalLight &source);
    ~DirectionalLight() override;

  private:
    friend class FieldContainer;
    friend class DirectionalLightBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
