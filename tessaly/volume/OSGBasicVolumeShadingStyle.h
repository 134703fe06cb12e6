#ifndef _OSGBASICVOLUMESHADINGSTYLE_H_
#define _OSGBASICVOLUMESHADINGSTYLE_H_

/// \file
/// The style that sets the shading function of a volume.

#include <Tessaly/OSGBasicVolumeShadingStyleBase.h>

OSG_BEGIN_NAMESPACE

/// Installs the shading function that shadingFuncType and lighting name, or plain direct volume rendering if
/// not enabled. An unknown shadingFuncType is logged, and leaves the function that is there.
class OSG_TESSALY_DLLMAPPING BasicVolumeShadingStyle : public BasicVolumeShadingStyleBase
{
  public:
    typedef BasicVolumeShadingStyleBase Inherited;

    void paramShading(VolumeNodeHandler *handler) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    BasicVolumeShadingStyle();
    BasicVolumeShadingStyle(const BasicVolumeShadingStyle &source);
    ~BasicVolumeShadingStyle() override;

  private:
    friend class FieldContainer;
    friend class BasicVolumeShadingStyleBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
