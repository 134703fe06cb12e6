#ifndef _OSGGEOPTYPESUI8_H_
#define _OSGGEOPTYPESUI8_H_

/// \file
/// Primitive types, a byte each.

#include "OSGGeoPTypesUI8Base.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoPTypesUI8 : public TypedGeoProperty<GeoPTypesUI8Base, UInt8>
{
  public:
    typedef TypedGeoProperty<GeoPTypesUI8Base, UInt8> Inherited;

  protected:
    GeoPTypesUI8() = default;
    GeoPTypesUI8(const GeoPTypesUI8 &source) = default;
    ~GeoPTypesUI8() override = default;

  private:
    friend class FieldContainer;
    friend class GeoPTypesUI8Base;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
