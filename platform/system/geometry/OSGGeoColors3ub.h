#ifndef _OSGGEOCOLORS3UB_H_
#define _OSGGEOCOLORS3UB_H_

/// \file
/// Colours, three bytes each.

#include "OSGGeoColors3ubBase.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoColors3ub : public TypedGeoProperty<GeoColors3ubBase, Color3ub>
{
  public:
    typedef TypedGeoProperty<GeoColors3ubBase, Color3ub> Inherited;

  protected:
    GeoColors3ub() = default;
    GeoColors3ub(const GeoColors3ub &source) = default;
    ~GeoColors3ub() override = default;

  private:
    friend class FieldContainer;
    friend class GeoColors3ubBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
