#ifndef _OSGGEOCOLORS4UB_H_
#define _OSGGEOCOLORS4UB_H_

/// \file
/// Colours, four bytes each.

#include "OSGGeoColors4ubBase.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoColors4ub : public TypedGeoProperty<GeoColors4ubBase, Color4ub>
{
  public:
    typedef TypedGeoProperty<GeoColors4ubBase, Color4ub> Inherited;

  protected:
    GeoColors4ub() = default;
    GeoColors4ub(const GeoColors4ub &source) = default;
    ~GeoColors4ub() override = default;

  private:
    friend class FieldContainer;
    friend class GeoColors4ubBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
