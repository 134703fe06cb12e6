#ifndef _OSGOCULUSRIFTFILTER2_H_
#define _OSGOCULUSRIFTFILTER2_H_

/// \file
/// Warps the picture of one eye for the lens of a head-mounted display, second form.

#include <OpenSG/OSGDisplayFilter.h>
#include <OpenSG/OSGSHLChunkFields.h>
#include <Tessaly/OSGOculusRiftFilter2Base.h>

OSG_BEGIN_NAMESPACE

/// A barrel distortion around the lens centre, in coordinates from 0 to 1, always with chromatic correction,
/// and with green sharpened by a box of five samples. What lies outside of the picture is left as it is on
/// the screen. The viewport is one eye's half of a display of 8 to 5.
///
/// Works in the read-back group "ColorDisplayFilter". A change of any field reaches the next frame.
class OSG_TESSALY_DLLMAPPING OculusRiftFilter2 : public OculusRiftFilter2Base
{
  public:
    typedef OculusRiftFilter2Base Inherited;

    void createFilter(DisplayFilterForeground *foreground, Viewport *port) override;
    /// Sends all uniforms anew; does nothing ahead of createFilter.
    virtual void updateShaderParameters();

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    OculusRiftFilter2();
    /// A copy is to be set up itself.
    OculusRiftFilter2(const OculusRiftFilter2 &source);
    ~OculusRiftFilter2() override;

    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class OculusRiftFilter2Base;

    static void initMethod();

    SHLChunkPtr _shlChunk; ///< a reference is held
};

OSG_END_NAMESPACE

#endif
