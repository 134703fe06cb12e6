#ifndef _OSGRENDERACTION_H_
#define _OSGRENDERACTION_H_

/// \file
/// The action that draws a scene sorted by material and transparency.

#include <map>

#include "OSGRenderActionBase.h"

OSG_BEGIN_NAMESPACE

class Geometry;
class State;

/// One thing to draw.
struct DrawTreeNode
{
    Material::DrawFunctor functor; ///< draws it
    Geometry *geometry = nullptr; ///< drawn where there is no functor
    Material *material = nullptr; ///< of it
    State *state = nullptr; ///< what is set for it
    Int32 sortKey = 0; ///< lower ones are drawn first
    bool transparent = false; ///< drawn behind the opaque ones, from far to near
    UInt32 group = 0;       ///< the how manieth state of the traversal
    UInt32 matrix = 0;      ///< index
    UInt32 lights = 0;      ///< index
    Real32 depth = 0.0f;    ///< of the centre of its volume in the camera's coordinates; more negative is farther
    NodePtr node; ///< where it hangs
};

/// Walks the scene, collects what the cores drop, and draws it at the end:
///
/// 1. materials in ascending order of their sort key;
/// 2. with the same key, what is opaque ahead of what is transparent;
/// 3. what is opaque, state by state, in the order in which the traversal first met the states, and with the same state
///    in the order of the traversal;
/// 4. what is transparent from the far to the near, by the centres of the nodes' volumes, without writing depth unless
///    setZWriteTrans says so.
class OSG_SYSTEMLIB_DLLMAPPING RenderAction : public RenderActionBase
{
    OSG_ACTION_FUNCTORS

  public:
    /// What a frame's statistics count.
    static StatElemDesc<StatTimeElem> statDrawTime;
    static StatElemDesc<StatIntElem> statNMaterials;
    static StatElemDesc<StatIntElem> statNMatrices;
    static StatElemDesc<StatIntElem> statNGeometries;
    static StatElemDesc<StatIntElem> statNTransGeometries;

    /// A new action with the settings of the prototype; the caller owns it.
    static RenderAction *create();
    static void setPrototype(RenderAction *prototype);
    static RenderAction *getPrototype();

    RenderAction();
    /// A copy has the same settings and no traversal.
    RenderAction(const RenderAction &source);
    ~RenderAction() override;

    /// Enters and leaves a transformation.
    void push_matrix(const Matrix &matrix);
    void pop_matrix();
    /// While collecting, the matrix of the node being visited; while drawing, that of what is drawn. To the world.
    const Matrix &top_matrix() const;

    /// From a core: collects what is to be drawn, or changes the lights for what is below.
    void dropGeometry(Geometry *geometry);
    void dropFunctor(Material::DrawFunctor &functor, Material *material) override;
    void dropLight(Light *light) override;
    void undropLight(Light *light) override;
    bool isVisible(Node *node) override;

    /// Transparent things are drawn in the order of the traversal if false.
    void setSortTrans(bool sort) { _sortTrans = sort; }
    bool getSortTrans() const { return _sortTrans; }
    /// Transparent things write depth if true.
    void setZWriteTrans(bool write) { _zWriteTrans = write; }
    bool getZWriteTrans() const { return _zWriteTrans; }
    /// A light shines only on what is below it; if false, on everything.
    void setLocalLights(bool local) { _localLights = local; }
    bool getLocalLights() const { return _localLights; }
    /// True while an effect (shadow, reflection, depth) is rendered with this action, not the picture itself. Set by who
    /// renders the effect; cores that do costly work once a frame leave it out then.
    void setEffectsPass(bool effects) { _effectsPass = effects; }
    bool getEffectsPass() const { return _effectsPass; }

    /// The state that is set in GL.
    State *getActiveState() const { return _activeState; }
    void setActiveState(State *state) { _activeState = state; }

    /// What is collected, in the order in which it would be drawn; for tests and tools, within a traversal.
    std::vector<const DrawTreeNode *> getDrawOrder();

  protected:
    /// As Action has it.
    ResultE start() override;
    ResultE stop(ResultE result) override;

  private:
    struct DroppedLight
    {
        Light *light;
        Matrix beaconToWorld;
    };

    void drop(DrawTreeNode &&node, Material *material);
    void dropLightSet();
    void draw();
    void activateMatrix(UInt32 matrix);
    void activateLights(UInt32 lights);

    std::vector<UInt32> _matrixStack;  ///< indices of _matrices
    std::vector<Matrix> _matrices;
    std::vector<DroppedLight> _droppedLights;
    std::vector<UInt32> _shining;                ///< indices of _droppedLights
    std::vector<std::vector<UInt32>> _lightSets;
    bool _lightSetValid = false;
    std::map<State *, UInt32> _groups;
    std::vector<DrawTreeNode> _nodes;

    State *_activeState = nullptr;
    UInt32 _activeMatrix = 0;
    UInt32 _activeLights = 0;
    UInt32 _numLightsOn = 0;
    bool _drawing = false;
    bool _sortTrans = true;
    bool _zWriteTrans = false;
    bool _localLights = true;
    bool _effectsPass = false;
};

OSG_END_NAMESPACE

#endif
