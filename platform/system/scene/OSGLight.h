#ifndef _OSGLIGHT_H_
#define _OSGLIGHT_H_

/// \file
/// What all lights have in common.

#include "OSGAction.h"
#include "OSGLightBase.h"

OSG_BEGIN_NAMESPACE

class DrawActionBase;

/// A light shines on everything below its node. Drawing uses as many lights as GL has; what is beyond is left out.
class OSG_SYSTEMLIB_DLLMAPPING Light : public LightBase
{
  public:
    typedef LightBase Inherited;

    /// The node whose coordinates the light is in; a reference is held.
    NodePtr getBeacon() const { return _sfBeacon.getValue(); }
    SFNodePtr *getSFBeacon() { return &_sfBeacon; }
    /// Takes a reference on the beacon and gives back that on the old one.
    void setBeacon(const NodePtr &beacon);

    /// The channels one by one.
    void setAmbient(Real32 red, Real32 green, Real32 blue, Real32 alpha) { setAmbient(Color4f(red, green, blue, alpha)); }
    void setDiffuse(Real32 red, Real32 green, Real32 blue, Real32 alpha) { setDiffuse(Color4f(red, green, blue, alpha)); }
    void setSpecular(Real32 red, Real32 green, Real32 blue, Real32 alpha)
    {
        setSpecular(Color4f(red, green, blue, alpha));
    }
    using Inherited::setAmbient;
    using Inherited::setDiffuse;
    using Inherited::setSpecular;

    /// Sets GL_LIGHT0 + `index` and enables it. GL's modelview matrix must be that of the beacon seen from the camera.
    virtual void activate(DrawActionBase *action, UInt32 index);
    /// Disables GL_LIGHT0 + `index`.
    virtual void deactivate(DrawActionBase *action, UInt32 index);
    /// Multiplies what takes the beacon's coordinates to the world's into `result`.
    void getBeaconToWorld(Matrix &result) const;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    Action::ResultE drawEnter(Action *action);
    Action::ResultE drawLeave(Action *action);
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);

  protected:
    Light();
    Light(const Light &source);
    ~Light() override;

    void onCreate(const Light *source = nullptr);
    void onDestroy() override;

    /// Registers the functors of lights for a class of light.
    static void registerFunctors(const FieldContainerType &type);

  private:
    friend class FieldContainer;
    friend class LightBase;

    static void initMethod();

    using Inherited::setBeacon;
};

OSG_END_NAMESPACE

#endif
