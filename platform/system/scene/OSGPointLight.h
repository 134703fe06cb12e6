#ifndef _OSGPOINTLIGHT_H_
#define _OSGPOINTLIGHT_H_

/// \file
/// A light that shines from a point to all sides.

#include "OSGPointLightBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING PointLight : public PointLightBase
{
  public:
    typedef PointLightBase Inherited;

    /// The numbers one by one.
    void setPosition(Real32 x, Real32 y, Real32 z) { setPosition(Pnt3f(x, y, z)); }
    using Inherited::setPosition;

    void activate(DrawActionBase *action, UInt32 index) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    PointLight();
    PointLight(const PointLight &source);
    ~PointLight() override;

  private:
    friend class FieldContainer;
    friend class PointLightBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
