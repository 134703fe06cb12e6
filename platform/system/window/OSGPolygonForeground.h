#ifndef _OSGPOLYGONFOREGROUND_H_
#define _OSGPOLYGONFOREGROUND_H_

/// \file
/// Draws a polygon over the scene.

#include "OSGMaterialFields.h"
#include "OSGPolygonForegroundBase.h"

OSG_BEGIN_NAMESPACE

/// One convex polygon in the plane of the picture, drawn with `material`, without lighting or depth test
/// unless the material sets them. Nothing is drawn without a material, or where there are neither no texture
/// coordinates nor one for each corner.
class OSG_SYSTEMLIB_DLLMAPPING PolygonForeground : public PolygonForegroundBase
{
  public:
    typedef PolygonForegroundBase Inherited;

    /// Takes a reference and gives the old one back.
    void setMaterial(const MaterialPtr &material);

    void draw(DrawActionBase *action, Viewport *port) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    PolygonForeground();
    PolygonForeground(const PolygonForeground &source);
    ~PolygonForeground() override;

    void onCreate(const PolygonForeground *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class PolygonForegroundBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
