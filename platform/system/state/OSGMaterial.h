#ifndef _OSGMATERIAL_H_
#define _OSGMATERIAL_H_

/// \file
/// What a surface looks like.

#include <functional>

#include "OSGAction.h"
#include "OSGMaterialBase.h"
#include "OSGState.h"

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class Geometry;

/// What a surface looks like. Each aspect has a State of its own, which is made when it is first asked for
/// and brought up to date, in place, behind every change.
class OSG_SYSTEMLIB_DLLMAPPING Material : public MaterialBase
{
  public:
    typedef MaterialBase Inherited;

    /// Draws something; called with the material's state active.
    typedef std::function<Action::ResultE(DrawActionBase *action)> DrawFunctor;

    /// Draws with the state of this material around it. A GL context has to be current.
    virtual void draw(DrawFunctor &functor, DrawActionBase *action);
    virtual void draw(Geometry *geometry, DrawActionBase *action);

    /// A new state, which the caller owns without a reference on it yet.
    virtual StatePtr makeState() = 0;
    /// Brings the state up to date now, rather than at the next getState.
    virtual void rebuildState() = 0;
    /// The state of the calling thread's aspect. The material holds the reference; the pointer stays the
    /// same for the life of the material.
    StatePtr getState();

    /// Whether it is drawn behind the opaque ones, from far to near.
    virtual bool isTransparent() const;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    Material();
    /// A copy has a state of its own.
    Material(const Material &source);
    ~Material() override;

    void onCreate(const Material *source = nullptr);

    /// An empty state, to be filled by rebuildState.
    const StatePtr &emptiedState();

    StatePtr _pState; ///< of this aspect; one reference held

  private:
    friend class FieldContainer;
    friend class MaterialBase;

    static void initMethod();

    bool _stateOutdated = true;
};

/// A lit material of a light yellow with a highlight, for what has none; made at the first call and kept.
OSG_SYSTEMLIB_DLLMAPPING MaterialPtr getDefaultMaterial();
/// The same without lighting.
OSG_SYSTEMLIB_DLLMAPPING MaterialPtr getDefaultUnlitMaterial();

OSG_END_NAMESPACE

#endif
