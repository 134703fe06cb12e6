#ifndef _OSGGEOPLENGTHSUI32_H_
#define _OSGGEOPLENGTHSUI32_H_

/// \file
/// Primitive lengths, four bytes each.

#include "OSGGeoPLengthsUI32Base.h"
#include "OSGTypedGeoProperty.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoPLengthsUI32 : public TypedGeoProperty<GeoPLengthsUI32Base, UInt32>
{
  public:
    typedef TypedGeoProperty<GeoPLengthsUI32Base, UInt32> Inherited;

  protected:
    GeoPLengthsUI32() = default;
    GeoPLengthsUI32(const GeoPLengthsUI32 &source) = default;
    ~GeoPLengthsUI32() override = default;

  private:
    friend class FieldContainer;
    friend class GeoPLengthsUI32Base;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
