#ifndef _OSGGEOCOLORS4F_H_
#define _OSGGEOCOLORS4F_H_

/// \file
/// Colours, four floats each.

#include "OSGGeoColors4fBase.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoColors4f : public TypedGeoProperty<GeoColors4fBase, Color4f>
{
  public:
    typedef TypedGeoProperty<GeoColors4fBase, Color4f> Inherited;

  protected:
    GeoColors4f() = default;
    GeoColors4f(const GeoColors4f &source) = default;
    ~GeoColors4f() override = default;

  private:
    friend class FieldContainer;
    friend class GeoColors4fBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
