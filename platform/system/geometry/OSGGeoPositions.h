#ifndef _OSGGEOPOSITIONS_H_
#define _OSGGEOPOSITIONS_H_

/// \file
/// Positions of a geometry, however they are stored.

#include "OSGAbstractGeoProperty.h"
#include "OSGGeoPositionsBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoPositions : public AbstractGeoProperty<GeoPositionsBase, Pnt3f>
{
  public:
    typedef AbstractGeoProperty<GeoPositionsBase, Pnt3f> Inherited;

  protected:
    GeoPositions() = default;
    GeoPositions(const GeoPositions &source) = default;
    ~GeoPositions() override = default;

  private:
    friend class FieldContainer;
    friend class GeoPositionsBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
