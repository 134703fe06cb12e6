#ifndef _OSGGEOTEXCOORDS3F_H_
#define _OSGGEOTEXCOORDS3F_H_

/// \file
/// Texture coordinates, three floats each.

#include "OSGGeoTexCoords3fBase.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoTexCoords3f : public TypedGeoProperty<GeoTexCoords3fBase, Vec3f>
{
  public:
    typedef TypedGeoProperty<GeoTexCoords3fBase, Vec3f> Inherited;

  protected:
    GeoTexCoords3f() = default;
    GeoTexCoords3f(const GeoTexCoords3f &source) = default;
    ~GeoTexCoords3f() override = default;

  private:
    friend class FieldContainer;
    friend class GeoTexCoords3fBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
