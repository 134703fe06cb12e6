#ifndef _OSGGEOPOSITIONS3F_H_
#define _OSGGEOPOSITIONS3F_H_

/// \file
/// Positions, three floats each.

#include "OSGGeoPositions3fBase.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoPositions3f : public TypedGeoProperty<GeoPositions3fBase, Pnt3f>
{
  public:
    typedef TypedGeoProperty<GeoPositions3fBase, Pnt3f> Inherited;

  protected:
    GeoPositions3f() = default;
    GeoPositions3f(const GeoPositions3f &source) = default;
    ~GeoPositions3f() override = default;

  private:
    friend class FieldContainer;
    friend class GeoPositions3fBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
