#ifndef _OSGOCULUSRIFTFILTER_H_
#define _OSGOCULUSRIFTFILTER_H_

/// \file
/// Warps the picture of one eye for the lens of a head-mounted display.

#include <OpenSG/OSGDisplayFilter.h>
#include <OpenSG/OSGSHLChunkFields.h>
#include <Tessaly/OSGOculusRiftFilterBase.h>

OSG_BEGIN_NAMESPACE

/// A barrel distortion around the lens centre, in coordinates from -1 to 1, with a chromatic correction
/// unless that is (1, 0, 1, 0) within 1e-6, for which a cheaper program does. What lies outside of the
/// picture is black. The viewport is one eye's half of the display.
///
/// Works in the read-back group "ColorDisplayFilter". A change of any field reaches the next frame.
class OSG_TESSALY_DLLMAPPING OculusRiftFilter : public OculusRiftFilterBase
{
  public:
    typedef OculusRiftFilterBase Inherited;

    void createFilter(DisplayFilterForeground *foreground, Viewport *port) override;
    /// Sends all uniforms anew, and another program where chroma asks for it; does nothing ahead of
    /// createFilter.
    virtual void updateShaderParameters();

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    OculusRiftFilter();
    /// A copy is to be set up itself.
    OculusRiftFilter(const OculusRiftFilter &source);
    ~OculusRiftFilter() override;

    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class OculusRiftFilterBase;

    static void initMethod();

    SHLChunkPtr _shlChunk;   ///< a reference is held
    bool _useChroma = false; ///< whether the program is the chromatic one
};

OSG_END_NAMESPACE

#endif
