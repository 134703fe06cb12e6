#ifndef _OSGGEOCOLORS3F_H_
#define _OSGGEOCOLORS3F_H_

/// \file
/// Colours, three floats each.

#include "OSGGeoColors3fBase.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoColors3f : public TypedGeoProperty<GeoColors3fBase, Color3f>
{
  public:
    typedef TypedGeoProperty<GeoColors3fBase, Color3f> Inherited;

  protected:
    GeoColors3f() = default;
    GeoColors3f(const GeoColors3f &source) = default;
    ~GeoColors3f() override = default;

  private:
    friend class FieldContainer;
    friend class GeoColors3fBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
