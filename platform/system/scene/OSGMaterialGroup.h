#ifndef _OSGMATERIALGROUP_H_
#define _OSGMATERIALGROUP_H_

/// \file
/// The core that draws everything below it with one material.

#include "OSGAction.h"
#include "OSGMaterialGroupBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING MaterialGroup : public MaterialGroupBase
{
  public:
    typedef MaterialGroupBase Inherited;

    /// The material; NullFC without one.
    MaterialPtr getMaterial() const { return _sfMaterial.getValue(); }
    SFMaterialPtr *getSFMaterial() { return &_sfMaterial; }
    /// Takes a reference on the material and gives back that on the old one.
    void setMaterial(const MaterialPtr &material);

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    Action::ResultE drawEnter(Action *action);
    Action::ResultE drawLeave(Action *action);
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);

  protected:
    MaterialGroup();
    MaterialGroup(const MaterialGroup &source);
    ~MaterialGroup() override;

    void onCreate(const MaterialGroup *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class MaterialGroupBase;

    static void initMethod();

    using Inherited::setMaterial;
};

OSG_END_NAMESPACE

#endif
