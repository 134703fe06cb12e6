#include "OSGGeoProperty.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void GeoProperty::initMethod() {}

GeoProperty::GeoProperty() = default;

GeoProperty::GeoProperty(const GeoProperty &source) : Inherited(source) {}

GeoProperty::~GeoProperty() = default;

void GeoProperty::dump(UInt32, const BitVector) const
{
    SLOG << "Dump " << getTypeName() << " NI" << std::endl;
}

OSG_END_NAMESPACE
