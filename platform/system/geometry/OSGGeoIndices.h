#ifndef _OSGGEOINDICES_H_
#define _OSGGEOINDICES_H_

/// \file
/// Indices of a geometry, however they are stored.

#include "OSGAbstractGeoProperty.h"
#include "OSGGeoIndicesBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoIndices : public AbstractGeoProperty<GeoIndicesBase, UInt32>
{
  public:
    typedef AbstractGeoProperty<GeoIndicesBase, UInt32> Inherited;

  protected:
    GeoIndices() = default;
    GeoIndices(const GeoIndices &source) = default;
    ~GeoIndices() override = default;

  private:
    friend class FieldContainer;
    friend class GeoIndicesBase;

    static void initMethod() {}
};

OSG_END_NAMESPACE

#endif
