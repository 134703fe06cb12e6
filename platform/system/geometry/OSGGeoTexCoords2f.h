#ifndef _OSGGEOTEXCOORDS2F_H_
#define _OSGGEOTEXCOORDS2F_H_

/// \file
/// Texture coordinates, two floats each.

#include "OSGGeoTexCoords2fBase.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoTexCoords2f : public TypedGeoProperty<GeoTexCoords2fBase, Vec2f>
{
  public:
    typedef TypedGeoProperty<GeoTexCoords2fBase, Vec2f> Inherited;

  protected:
    GeoTexCoords2f() = default;
    GeoTexCoords2f(const GeoTexCoords2f &source) = default;
    ~GeoTexCoords2f() override = default;

  private:
    friend class FieldContainer;
    friend class GeoTexCoords2fBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
