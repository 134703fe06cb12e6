#ifndef _OSGGEOPTYPES_H_
#define _OSGGEOPTYPES_H_

/// \file
/// Primitive types of a geometry, however they are stored.

#include "OSGAbstractGeoProperty.h"
#include "OSGGeoPTypesBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoPTypes : public AbstractGeoProperty<GeoPTypesBase, UInt32>
{
  public:
    typedef AbstractGeoProperty<GeoPTypesBase, UInt32> Inherited;

  protected:
    GeoPTypes() = default;
    GeoPTypes(const GeoPTypes &source) = default;
    ~GeoPTypes() override = default;

  private:
    friend class FieldContainer;
    friend class GeoPTypesBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
