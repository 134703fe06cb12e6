#ifndef _OSGGEOINDICESUI16_H_
#define _OSGGEOINDICESUI16_H_

/// \file
/// Indices, two bytes each.

#include "OSGGeoIndicesUI16Base.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoIndicesUI16 : public TypedGeoProperty<GeoIndicesUI16Base, UInt16>
{
  public:
    typedef TypedGeoProperty<GeoIndicesUI16Base, UInt16> Inherited;

  protected:
    GeoIndicesUI16() = default;
    GeoIndicesUI16(const GeoIndicesUI16 &source) = default;
    ~GeoIndicesUI16() override = default;

  private:
    friend class FieldContainer;
    friend class GeoIndicesUI16Base;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
