#ifndef _OSGGEOPOSITIONS2F_H_
#define _OSGGEOPOSITIONS2F_H_

/// \file
/// Positions, two floats each.

#include "OSGGeoPositions2fBase.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoPositions2f : public TypedGeoProperty<GeoPositions2fBase, Pnt2f>
{
  public:
    typedef TypedGeoProperty<GeoPositions2fBase, Pnt2f> Inherited;

  protected:
    GeoPositions2f() = default;
    GeoPositions2f(const GeoPositions2f &source) = default;
    ~GeoPositions2f() override = default;

  private:
    friend class FieldContainer;
    friend class GeoPositions2fBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
