#ifndef _OSGGEOCOLORS_H_
#define _OSGGEOCOLORS_H_

/// \file
/// Colours of a geometry, however they are stored.

#include "OSGAbstractGeoProperty.h"
#include "OSGGeoColorsBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoColors : public AbstractGeoProperty<GeoColorsBase, Color3f>
{
  public:
    typedef AbstractGeoProperty<GeoColorsBase, Color3f> Inherited;

  protected:
    GeoColors() = default;
    GeoColors(const GeoColors &source) = default;
    ~GeoColors() override = default;

  private:
    friend class FieldContainer;
    friend class GeoColorsBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
