#ifndef _OSGDRAWACTIONBASE_H_
#define _OSGDRAWACTIONBASE_H_

/// \file
/// What all actions that draw have in common.

#include "OSGAction.h"
#include "OSGFrustumVolume.h"
#include "OSGMatrix.h"
#include "OSGStatCollector.h"

OSG_BEGIN_NAMESPACE

class Background;
class Camera;
class Light;
class Material;
class Node;
class Viewport;
class Window;

/// Knows where to draw (window, viewport), from where (camera) and on what (background), and which nodes are in the
/// camera's frustum. A viewport sets these ahead of each use; none of them is owned.
///
/// A GL context must be current while the action is applied.
class OSG_SYSTEMLIB_DLLMAPPING DrawActionBase : public Action
{
  public:
    /// What a frame's statistics count.
    static StatElemDesc<StatIntElem> statCullTestedNodes;
    static StatElemDesc<StatIntElem> statCulledNodes;

    DrawActionBase();
    /// A copy has the same settings and no traversal.
    DrawActionBase(const DrawActionBase &source);
    ~DrawActionBase() override;

    /// Set by a viewport ahead of each use; null until then.
    Window *getWindow() const { return _window; }
    void setWindow(Window *window) { _window = window; }
    Viewport *getViewport() const { return _viewport; }
    void setViewport(Viewport *viewport) { _viewport = viewport; }
    Camera *getCamera() const { return _camera; }
    void setCamera(Camera *camera) { _camera = camera; }
    Background *getBackground() const { return _background; }
    void setBackground(Background *background) { _background = background; }

    /// From the camera's coordinates to the world's: the inverse of the viewing matrix. Set at the start of a traversal.
    const Matrix &getCameraToWorld() const { return _cameraToWorld; }
    /// From the world's coordinates to the camera's.
    const Matrix &getViewing() const { return _viewing; }

    /// In the coordinates of the world.
    const FrustumVolume &getFrustum() const { return _frustum; }
    void setFrustum(const FrustumVolume &frustum) { _frustum = frustum; }
    /// Whether nodes outside of the frustum are left out.
    bool getFrustumCulling() const { return _frustumCulling; }
    void setFrustumCulling(bool culling) { _frustumCulling = culling; }
    /// While true, the frustum is computed from the camera at the start of each traversal.
    bool getAutoFrustum() const { return _autoFrustum; }
    void setAutoFrustum(bool automatic) { _autoFrustum = automatic; }

    /// Whether the node, a child of the node being visited, may be in the frustum. Always, while culling is off.
    virtual bool isVisible(Node *node);
    /// Adds those children that are visible to the nodes to visit, and returns their number.
    UInt32 selectVisibles();

    /// The material that everything is drawn with, in place of its own, or null. A material set within another's range
    /// is counted but has no effect: the outermost holds.
    Material *getMaterial() const { return _material; }
    /// The node that set the material.
    NodePtr getMaterialNode() const { return _materialNode; }
    /// Null ends the range of the last material set.
    void setMaterial(Material *material, const NodePtr &node);

    /// From here on, until undropLight, the light shines.
    virtual void dropLight(Light *light) = 0;
    /// The light shines no longer.
    virtual void undropLight(Light *light) = 0;

    /// Bit n is set while GL_LIGHT0 + n shines on what is being drawn.
    UInt32 getActiveLightsMask() const { return _activeLightsMask; }

    /// What is counted; made when it is first asked for. The action owns a collector that it made itself.
    StatCollector *getStatistics();
    void setStatistics(StatCollector *statistics);

  protected:
    ResultE start() override;
    ResultE stop(ResultE result) override;

    /// Loads the camera's matrices into GL and computes frustum and camera-to-world; nothing without a camera.
    void setupCamera();
    /// Whether the node's volume, brought to the world, meets the frustum.
    bool volumeIsVisible(Node *node, const Matrix &toWorld);

    UInt32 _activeLightsMask = 0; ///< bit i is set while light i shines

  private:
    Window *_window = nullptr;
    Viewport *_viewport = nullptr;
    Camera *_camera = nullptr;
    Background *_background = nullptr;
    Matrix _cameraToWorld;
    Matrix _viewing;
    FrustumVolume _frustum;
    bool _frustumCulling = true;
    bool _autoFrustum = true;
    Material *_material = nullptr;
    NodePtr _materialNode;
    UInt32 _materialDepth = 0;
    StatCollector *_statistics = nullptr;
    std::unique_ptr<StatCollector> _ownStatistics;
};

OSG_END_NAMESPACE

#endif
