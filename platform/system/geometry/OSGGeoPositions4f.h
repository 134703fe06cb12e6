#ifndef _OSGGEOPOSITIONS4F_H_
#define _OSGGEOPOSITIONS4F_H_

/// \file
/// Positions, four floats each, homogeneous.

#include "OSGGeoPositions4fBase.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoPositions4f : public TypedGeoProperty<GeoPositions4fBase, Pnt4f>
{
  public:
    typedef TypedGeoProperty<GeoPositions4fBase, Pnt4f> Inherited;

  protected:
    GeoPositions4f() = default;
    GeoPositions4f(const GeoPositions4f &source) = default;
    ~GeoPositions4f() override = default;

  private:
    friend class FieldContainer;
    friend class GeoPositions4fBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
