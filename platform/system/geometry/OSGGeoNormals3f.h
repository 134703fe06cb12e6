#ifndef _OSGGEONORMALS3F_H_
#define _OSGGEONORMALS3F_H_

/// \file
/// Normals, three floats each.

#include "OSGGeoNormals3fBase.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoNormals3f : public TypedGeoProperty<GeoNormals3fBase, Vec3f>
{
  public:
    typedef TypedGeoProperty<GeoNormals3fBase, Vec3f> Inherited;

  protected:
    GeoNormals3f() = default;
    GeoNormals3f(const GeoNormals3f &source) = default;
    ~GeoNormals3f() override = default;

  private:
    friend class FieldContainer;
    friend class GeoNormals3fBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
