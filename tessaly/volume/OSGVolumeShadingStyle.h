#ifndef _OSGVOLUMESHADINGSTYLE_H_
#define _OSGVOLUMESHADINGSTYLE_H_

/// \file
/// The base of the shading styles of volumes.

#include <Tessaly/OSGVolumeShadingStyleBase.h>

class ShadingFunctions;
class VolumeNodeHandler;

OSG_BEGIN_NAMESPACE

/// Parameters of how a volume is shaded, in the fields of VolumeNode: shadingStyle, composableStyle. A style
/// is passive; each frame in which it has changed, the node asks it to act on the volume's handler. Needs no
/// GL context. This class acts on nothing.
class OSG_TESSALY_DLLMAPPING VolumeShadingStyle : public VolumeShadingStyleBase
{
  public:
    typedef VolumeShadingStyleBase Inherited;

    /// The fields that were changed on this aspect since the style acted last.
    BitVector hasChanged() const { return _changes; }

    /// The shading function that the style made last, for the application; null at first. Not owned: it may
    /// be gone once the handler has been given another.
    virtual void setShadingFunction(ShadingFunctions *shadingFunction);
    virtual ShadingFunctions *getShadingFunction();
    /// Brings the handler, which must not be null, into line with the fields.
    virtual void paramShading(VolumeNodeHandler *handler);

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    VolumeShadingStyle();
    /// A copy has made no shading function and seen no change.
    VolumeShadingStyle(const VolumeShadingStyle &source);
    ~VolumeShadingStyle() override;

    ShadingFunctions *_shadingFunction = nullptr; ///< what the style contributes
    BitVector _changes = 0; ///< fields that changed since the last frame

  private:
    friend class FieldContainer;
    friend class VolumeShadingStyleBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
