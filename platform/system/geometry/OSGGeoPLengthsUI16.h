#ifndef _OSGGEOPLENGTHSUI16_H_
#define _OSGGEOPLENGTHSUI16_H_

/// \file
/// Primitive lengths, two bytes each.

#include "OSGGeoPLengthsUI16Base.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoPLengthsUI16 : public TypedGeoProperty<GeoPLengthsUI16Base, UInt16>
{
  public:
    typedef TypedGeoProperty<GeoPLengthsUI16Base, UInt16> Inherited;

  protected:
    GeoPLengthsUI16() = default;
    GeoPLengthsUI16(const GeoPLengthsUI16 &source) = default;
    ~GeoPLengthsUI16() override = default;

  private:
    friend class FieldContainer;
    friend class GeoPLengthsUI16Base;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
