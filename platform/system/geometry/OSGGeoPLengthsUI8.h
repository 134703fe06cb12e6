#ifndef _OSGGEOPLENGTHSUI8_H_
#define _OSGGEOPLENGTHSUI8_H_

/// \file
/// Primitive lengths, a byte each.

#include "OSGGeoPLengthsUI8Base.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoPLengthsUI8 : public TypedGeoProperty<GeoPLengthsUI8Base, UInt8>
{
  public:
    typedef TypedGeoProperty<GeoPLengthsUI8Base, UInt8> Inherited;

  protected:
    GeoPLengthsUI8() = default;
    GeoPLengthsUI8(const GeoPLengthsUI8 &source) = default;
    ~GeoPLengthsUI8() override = default;

  private:
    friend class FieldContainer;
    friend class GeoPLengthsUI8Base;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
