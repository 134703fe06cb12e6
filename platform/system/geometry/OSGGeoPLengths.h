#ifndef _OSGGEOPLENGTHS_H_
#define _OSGGEOPLENGTHS_H_

/// \file
/// Primitive lengths of a geometry, however they are stored.

#include "OSGAbstractGeoProperty.h"
#include "OSGGeoPLengthsBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoPLengths : public AbstractGeoProperty<GeoPLengthsBase, UInt32>
{
  public:
    typedef AbstractGeoProperty<GeoPLengthsBase, UInt32> Inherited;

  protected:
    GeoPLengths() = default;
    GeoPLengths(const GeoPLengths &source) = default;
    ~GeoPLengths() override = default;

  private:
    friend class FieldContainer;
    friend class GeoPLengthsBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
