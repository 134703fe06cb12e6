#ifndef _OSGGEOINDICESUI8_H_
#define _OSGGEOINDICESUI8_H_

/// \file
/// Indices, a byte each.

#include "OSGGeoIndicesUI8Base.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoIndicesUI8 : public TypedGeoProperty<GeoIndicesUI8Base, UInt8>
{
  public:
    typedef TypedGeoProperty<GeoIndicesUI8Base, UInt8> Inherited;

  protected:
    GeoIndicesUI8() = default;
    GeoIndicesUI8(const GeoIndicesUI8 &source) = default;
    ~GeoIndicesUI8() override = default;

  private:
    friend class FieldContainer;
    friend class GeoIndicesUI8Base;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
