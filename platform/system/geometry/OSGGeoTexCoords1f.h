#ifndef _OSGGEOTEXCOORDS1F_H_
#define _OSGGEOTEXCOORDS1F_H_

/// \file
/// Texture coordinates, one float each.

#include "OSGGeoTexCoords1fBase.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoTexCoords1f : public TypedGeoProperty<GeoTexCoords1fBase, Real32>
{
  public:
    typedef TypedGeoProperty<GeoTexCoords1fBase, Real32> Inherited;

  protected:
    GeoTexCoords1f() = default;
    GeoTexCoords1f(const GeoTexCoords1f &source) = default;
    ~GeoTexCoords1f() override = default;

  private:
    friend class FieldContainer;
    friend class GeoTexCoords1fBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
