#ifndef _OSGGEOPROPERTY_H_
#define _OSGGEOPROPERTY_H_

/// \file
/// An array of what a geometry's vertices or primitives have, as memory that GL can read.

#include "OSGAttachment.h"
#include "OSGGeoPropertyBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING GeoProperty : public GeoPropertyBase
{
  public:
    typedef GeoPropertyBase Inherited;

    /// The GL type of a component, GL_FLOAT for instance.
    virtual UInt32 getFormat() const = 0;
    /// Bytes of a component.
    virtual UInt32 getFormatSize() const = 0;
    /// Bytes from one value to the next; 0 if they are packed, which is GL's way to say it. Always 0 here.
    virtual UInt32 getStride() const = 0;
    /// Components of a value, 1 to 4.
    virtual UInt32 getDimension() const = 0;
    /// Number of values.
    virtual UInt32 getSize() const = 0;
    UInt32 size() const { return getSize(); }
    /// The values, getDimension() components each; valid until the number of values changes. May be null if
    /// there are none.
    virtual UInt8 *getData() = 0;
    virtual const UInt8 *getData() const = 0;
    UInt8 *editData() { return getData(); }

    /// New values are zero.
    virtual void resize(std::size_t size) = 0;
    /// Takes all values away.
    virtual void clear() = 0;

    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    GeoProperty();
    /// A copy belongs to no geometry.
    GeoProperty(const GeoProperty &source);
    ~GeoProperty() override;

  private:
    friend class FieldContainer;
    friend class GeoPropertyBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
