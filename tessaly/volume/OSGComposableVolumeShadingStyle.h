#ifndef _OSGCOMPOSABLEVOLUMESHADINGSTYLE_H_
#define _OSGCOMPOSABLEVOLUMESHADINGSTYLE_H_

/// \file
/// The style that weights opacity by the gradient.

#include <Tessaly/OSGComposableVolumeShadingStyleBase.h>

OSG_BEGIN_NAMESPACE

/// Weights the opacity of a sample by retainedOpacity + boundaryOpacity * length of the gradient ^
/// opacityFactor, where the installed shading function is direct volume rendering. The only shadingFuncType
/// that it knows is 3; any other is logged and taken as 3.
class OSG_TESSALY_DLLMAPPING ComposableVolumeShadingStyle : public ComposableVolumeShadingStyleBase
{
  public:
    typedef ComposableVolumeShadingStyleBase Inherited;

    void paramShading(VolumeNodeHandler *handler) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ComposableVolumeShadingStyle();
    ComposableVolumeShadingStyle(const ComposableVolumeShadingStyle &source);
    ~ComposableVolumeShadingStyle() override;

  private:
    friend class FieldContainer;
    friend class ComposableVolumeShadingStyleBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
