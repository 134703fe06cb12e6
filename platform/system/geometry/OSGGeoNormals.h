#ifndef _OSGGEONORMALS_H_
#define _OSGGEONORMALS_H_

/// \file
/// Normals of a geometry, however they are stored.

#include "OSGAbstractGeoProperty.h"
#include "OSGGeoNormalsBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoNormals : public AbstractGeoProperty<GeoNormalsBase, Vec3f>
{
  public:
    typedef AbstractGeoProperty<GeoNormalsBase, Vec3f> Inherited;

  protected:
    GeoNormals() = default;
    GeoNormals(const GeoNormals &source) = default;
    ~GeoNormals() override = default;

  private:
    friend class FieldContainer;
    friend class GeoNormalsBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
