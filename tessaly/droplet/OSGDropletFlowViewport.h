#ifndef _OSGDROPLETFLOWVIEWPORT_H_
#define _OSGDROPLETFLOWVIEWPORT_H_

/// \file
/// The viewport that runs the simulation of droplets.

#include <vector>

#include <OpenSG/OSGHeldReferences.h>
#include <Tessaly/OSGDropletFlowViewportBase.h>
#include <Tessaly/OSGKeptPointer.h>

class DropletFlow;
class DropletFlowContext;

OSG_BEGIN_NAMESPACE

/// Stands in the window's list ahead of the viewport that shows the object, and draws nothing into the
/// window. `root` is the object: texture coordinates 0 are an unwrap of 0 to 1 without overlaps, texture
/// coordinates 1 are tangents. The simulation is made in the first frame with a root and bakes normals and
/// tangents in the next; from then on, a frame applies the changed fields and runs a step where the clock
/// says so.
///
/// The clock is the field `time`, which the host advances, or the system's where the host sets `dirty` each
/// frame. A change of `textures`, `material` or `surfaceMapSize` makes the simulation anew, without liquid;
/// that holds for changes ahead of the first frame too, which are noticed once the simulation runs.
///
/// With the environment variable DEBUG_DROPFLOW set, six planes with the textures hang under the top of the
/// scene.
///
/// References: one is held on the material and on each entry of textures, from the end of the edit on.
///
/// Everything but `changed` belongs to the thread that draws the window, with its context current. Only one
/// such viewport of a process may render at a time.
class OSG_TESSALY_DLLMAPPING DropletFlowViewport : public DropletFlowViewportBase
{
  public:
    typedef DropletFlowViewportBase Inherited;

    void render(RenderActionBase *action) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    DropletFlowViewport();
    /// A copy has no simulation.
    DropletFlowViewport(const DropletFlowViewport &source);
    ~DropletFlowViewport() override;

    void onCreate(const DropletFlowViewport *source = nullptr);
    void onDestroy() override;

    /// Applies the changed fields to a running simulation.
    /// \return whether there is a simulation that has baked its maps
    bool initialize();

  private:
    friend class FieldContainer;
    friend class DropletFlowViewportBase;

    static void initMethod();

    void setupDropletFlow(NodePtr root);
    void updateRenderMode(bool renderSources, bool clearSurface);
    void applyClock();
    void applySources();
    void applySimulationParameters();
    void showTextures(const NodePtr &root);
    void deleteDropletFlow();

    DropletFlowContext *_context = nullptr; ///< the process's
    DropletFlow *_droplet = nullptr;        ///< owned
    BitVector _changedFields = 0;
    bool _initialized = false;
    bool _renderSources = false;
    bool _clearSurface = false;

    std::vector<NodePtr> _debugPlanes; ///< one reference is held on each
    KeptPointer<ChunkMaterialPtr> _keptMaterial;
    HeldReferences<TextureChunkPtr> _heldTextures;
};

OSG_END_NAMESPACE

#endif
