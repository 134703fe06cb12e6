#ifndef _OSGMATERIALDRAWABLE_H_
#define _OSGMATERIALDRAWABLE_H_

/// \file
/// The core that is drawn with a material.

#include "OSGMaterialDrawableBase.h"
#include "OSGMaterialFields.h"

OSG_BEGIN_NAMESPACE

class Material;

class OSG_SYSTEMLIB_DLLMAPPING MaterialDrawable : public MaterialDrawableBase
{
  public:
    typedef MaterialDrawableBase Inherited;

    /// The material; NullFC without one.
    MaterialPtr getMaterial() const { return _sfMaterial.getValue(); }
    SFMaterialPtr *getSFMaterial() { return &_sfMaterial; }
    /// Takes a reference on the material and gives back that on the old one.
    void setMaterial(const MaterialPtr &material);

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    /// Draws at once, with the action's material if it has one, else the own one, else the default material.
    Action::ResultE drawActionEnterHandler(Action *action);
    Action::ResultE drawActionLeaveHandler(Action *action);
    /// Hands the drawing over to the action, which sorts.
    Action::ResultE renderActionEnterHandler(Action *action);
    Action::ResultE renderActionLeaveHandler(Action *action);

  protected:
    MaterialDrawable();
    MaterialDrawable(const MaterialDrawable &source);
    ~MaterialDrawable() override;

    void onCreate(const MaterialDrawable *source = nullptr);
    void onDestroy() override;

    /// What it is drawn with; null only if there is no default material.
    Material *findMaterial(DrawActionBase *action) const;

  private:
    friend class FieldContainer;
    friend class MaterialDrawableBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
