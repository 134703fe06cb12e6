#ifndef TESSALY_DROPLETFLOWCONTEXT_H
#define TESSALY_DROPLETFLOWCONTEXT_H

/// \file
/// The render call in progress, and makers of what the droplet simulation draws with.

#include <vector>

#include <OpenSG/OSGBackgroundFields.h>
#include <OpenSG/OSGFBOViewportFields.h>
#include <OpenSG/OSGNodeFields.h>
#include <OpenSG/OSGSHLChunkFields.h>
#include <OpenSG/OSGStateChunkFields.h>
#include <OpenSG/OSGTextureChunkFields.h>
#include <OpenSG/OSGWindowFields.h>

OSG_BEGIN_NAMESPACE
class RenderActionBase;
OSG_END_NAMESPACE

/// One object for the process, without a lock: only one render call at a time may use it. Window and action
/// are those of the last setRender; no reference is held on the window, and both are only used within that
/// call.
///
/// What is made here has no reference yet.
class DropletFlowContext
{
  public:
    /// Never null; made at the first call and never deleted.
    static DropletFlowContext *get();

    DropletFlowContext(const DropletFlowContext &) = delete;
    DropletFlowContext &operator=(const DropletFlowContext &) = delete;

    /// With a null window, viewports render in the window of the action.
    void setRender(const osg::WindowPtr &window, osg::RenderActionBase *action);
    osg::WindowPtr getWindow() const { return _window; }
    osg::RenderActionBase *getAction() const { return _action; }

    osg::SHLChunkPtr makeShader(const char *vertexText, const char *fragmentText) const;
    /// A square around the origin in the plane z = 0, with a material of all the chunks in automatic slots.
    osg::NodePtr makeQuad(const std::vector<osg::StateChunkPtr> &chunks, osg::Real32 side = 1.0f) const;
    /// A viewport that renders `root` into `target`, from where the square of -0.5 to 0.5 in the plane z = 0
    /// fills it, whatever its sides. Without a background one of grey is made. NullFC for a target without a
    /// size.
    osg::FBOViewportPtr makeViewport(const osg::NodePtr &root, const osg::TextureChunkPtr &target,
                                     const osg::BackgroundPtr &background) const;

    /// Renders into the textures of a viewport, nothing of it culled; needs a current GL context. False, with
    /// one line logged, if no render call is known; false for NullFC.
    bool render(const osg::FBOViewportPtr &viewport) const;

  private:
    DropletFlowContext() = default;

    osg::WindowPtr _window;
    osg::RenderActionBase *_action = nullptr;
};

#endif
