#ifndef _OSGGEOINDICESUI32_H_
#define _OSGGEOINDICESUI32_H_

/// \file
/// Indices, four bytes each.

#include "OSGGeoIndicesUI32Base.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoIndicesUI32 : public TypedGeoProperty<GeoIndicesUI32Base, UInt32>
{
  public:
    typedef TypedGeoProperty<GeoIndicesUI32Base, UInt32> Inherited;

  protected:
    GeoIndicesUI32() = default;
    GeoIndicesUI32(const GeoIndicesUI32 &source) = default;
    ~GeoIndicesUI32() override = default;

  private:
    friend class FieldContainer;
    friend class GeoIndicesUI32Base;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
