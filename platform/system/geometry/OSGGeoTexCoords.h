#ifndef _OSGGEOTEXCOORDS_H_
#define _OSGGEOTEXCOORDS_H_

/// \file
/// Texture coordinates of a geometry, however they are stored.

#include "OSGAbstractGeoProperty.h"
#include "OSGGeoTexCoordsBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoTexCoords : public AbstractGeoProperty<GeoTexCoordsBase, Vec2f>
{
  public:
    typedef AbstractGeoProperty<GeoTexCoordsBase, Vec2f> Inherited;

  protected:
    GeoTexCoords() = default;
    GeoTexCoords(const GeoTexCoords &source) = default;
    ~GeoTexCoords() override = default;

  private:
    friend class FieldContainer;
    friend class GeoTexCoordsBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
