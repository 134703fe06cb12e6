#ifndef _OSGVOLUMEVIEWPORT_H_
#define _OSGVOLUMEVIEWPORT_H_

/// \file
/// The viewport that runs the passes of the ray caster.

#include <OpenSG/OSGFBOViewportFields.h>
#include <OpenSG/OSGHeldReferences.h>
#include <OpenSG/OSGPolygonForegroundFields.h>
#include <OpenSG/OSGTextureChunkFields.h>
#include <Tessaly/OSGVolumeViewportBase.h>

OSG_BEGIN_NAMESPACE

class RenderAction;
class VolumeNode;

/// Stands in the window's list ahead of the viewport that shows the scene, with the same camera and root, and
/// draws nothing into the window. Each frame it renders the opaque scene, the rays' starts and their
/// directions into textures; the picture appears when the last viewport of the window comes to the VolumeNode
/// and meets the quad that casts the rays.
///
/// The first frame with everything in place only prepares. A change of volumeNodes, camera, background or
/// root makes all textures and passes anew in the next frame; with several volumes the passes show the last.
///
/// With the environment variable DEBUG_VOLUME set, four thumbnails of the textures are added to the window's
/// last viewport.
///
/// References: one is held on each entry of excludeNodes and volumeNodes, from the end of the edit on.
///
/// Everything but `changed` belongs to the thread that draws the window, with its context current.
class OSG_TESSALY_DLLMAPPING VolumeViewport : public VolumeViewportBase
{
  public:
    typedef VolumeViewportBase Inherited;

    /// Makes textures and passes where there is need, and hands the textures to the volumes.
    /// \return false while a volume node is not usable or there is none
    bool initialize(void);
    /// Gives this viewport and its textures another size in pixels; only after an initialize().
    void resize(int width, int height);
    /// Does nothing with an action that is no RenderAction.
    void render(RenderActionBase *action) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    VolumeViewport();
    /// A copy has nothing prepared.
    VolumeViewport(const VolumeViewport &source);
    ~VolumeViewport() override;

    void onCreate(const VolumeViewport *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class VolumeViewportBase;

    static void initMethod();

    void initPolygonForegrounds(void);
    /// The volume node of that entry, or null.
    VolumeNode *volumeNode(UInt32 index);
    void setPixelSize(Int32 width, Int32 height);
    /// Puts the debugging thumbnails over the window's last viewport, once.
    void showPolygons(const ViewportPtr &port);
    /// Says once where the window's GL would make the textures larger than the viewport.
    void checkTextureSizes(Int32 width, Int32 height);
    void renderPass(const FBOViewportPtr &port, RenderActionBase *action);

    RenderAction *_frontAction = nullptr; ///< stays allocated for good, as the next
    RenderAction *_backAction = nullptr;
    FBOViewportPtr _frontPort; ///< one reference is held, as on all below
    FBOViewportPtr _backPort;
    FBOViewportPtr _scenePort;
    TextureChunkPtr _frontTexture;
    TextureChunkPtr _backTexture;
    TextureChunkPtr _sceneColor;
    TextureChunkPtr _sceneDepth;
    PolygonForegroundPtr _frontPolygon;
    PolygonForegroundPtr _backPolygon;
    PolygonForegroundPtr _colorPolygon;
    PolygonForegroundPtr _depthPolygon;
    BitVector _changes = 0;
    bool _initialized = false;
    bool _warned = false;

    HeldReferences<NodePtr> _heldExcludeNodes;
    HeldReferences<NodeCorePtr> _heldVolumeNodes;
};

OSG_END_NAMESPACE

#endif
