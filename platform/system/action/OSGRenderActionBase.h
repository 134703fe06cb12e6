#ifndef _OSGRENDERACTIONBASE_H_
#define _OSGRENDERACTIONBASE_H_

/// \file
/// What a window and its viewports render with.

#include "OSGDrawActionBase.h"
#include "OSGMaterial.h"

OSG_BEGIN_NAMESPACE

/// An action that collects what is to be drawn and draws it in an order of its own.
class OSG_SYSTEMLIB_DLLMAPPING RenderActionBase : public DrawActionBase
{
  public:
    RenderActionBase();
    /// A copy has the same settings and no traversal.
    RenderActionBase(const RenderActionBase &source);
    ~RenderActionBase() override;

    /// Draws `functor` with `material`, some time before the traversal ends, under the matrix and lights of now.
    virtual void dropFunctor(Material::DrawFunctor &functor, Material *material) = 0;
};

OSG_END_NAMESPACE

#endif
