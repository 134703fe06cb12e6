#ifndef _OSGGEOTEXCOORDS4F_H_
#define _OSGGEOTEXCOORDS4F_H_

/// \file
/// Texture coordinates, four floats each.

#include "OSGGeoTexCoords4fBase.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoTexCoords4f : public TypedGeoProperty<GeoTexCoords4fBase, Vec4f>
{
  public:
    typedef TypedGeoProperty<GeoTexCoords4fBase, Vec4f> Inherited;

  protected:
    GeoTexCoords4f() = default;
    GeoTexCoords4f(const GeoTexCoords4f &source) = default;
    ~GeoTexCoords4f() override = default;

  private:
    friend class FieldContainer;
    friend class GeoTexCoords4fBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
