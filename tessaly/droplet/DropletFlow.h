#ifndef TESSALY_DROPLETFLOW_H
#define TESSALY_DROPLETFLOW_H

/// \file
/// The simulation of liquid that runs down the surface of a textured object.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <OpenSG/OSGChunkMaterialFields.h>
#include <OpenSG/OSGColor.h>
#include <OpenSG/OSGFBOViewportFields.h>
#include <OpenSG/OSGNodeFields.h>
#include <OpenSG/OSGSHLChunkFields.h>
#include <OpenSG/OSGStateChunkFields.h>
#include <OpenSG/OSGTextureChunkFields.h>
#include <OpenSG/OSGVector.h>

#include "DropletFlowTimer.h"

class DropletFlowContext;
class DropletSources;

/// The liquid lives in a pair of textures over the object's texture coordinates 0, the surface maps. A texel
/// is a cell: red and green are the velocity along tangent and bitangent in cells per unit of time step, blue
/// is the volume, 0 to 1. A step is two passes: force from map 1 to map 0, advection from map 0 to map 1. The
/// material shows map 0.
///
/// The object carries an unwrap without overlaps in texture coordinates 0 and tangents in texture
/// coordinates 1.
///
/// Made, used and deleted by the thread that draws. Only what says so draws: it needs the window and the
/// action of the DropletFlowContext, with that window's GL context current.
class DropletFlow : public Timeable
{
  public:
    /// References are held on the scene (the object's root) and the material, which may be null; the material
    /// gets the chunks that show the liquid, until this is deleted.
    /// \param width, height of the surface map in cells. With a side below 1, or one for which memory is
    ///     short, one line is logged, and nothing is ever drawn or added to the material.
    /// \param matMode 0: the material only gets the surface map, in the next free slot; 1: the liquid alone is
    ///     shown; 2 and above: the liquid over the texture in slot 0; below 0 the material stays as it is
    /// \param surfaceTexture becomes the first surface map, unless null; it keeps its own image, whose size
    ///     may differ
    DropletFlow(osg::NodePtr scene, osg::ChunkMaterialPtr material, osg::Int32 width, osg::Int32 height,
                osg::Int32 matMode, osg::TextureChunkPtr surfaceTexture);
    DropletFlow(const DropletFlow &) = delete;
    DropletFlow &operator=(const DropletFlow &) = delete;
    /// Takes its chunks off the material.
    ~DropletFlow() override;

    /// \param interval seconds between steps
    /// \param timeStep of a step, in its own unit
    /// \param density the larger, the smaller the acceleration
    /// \param viscosity factor on the velocity, which is clamped to 1: the larger, the less damping
    /// \param frictionN, frictionSigma exponent and divisor of the damping of thin films
    void setSimulationParameters(osg::Real32 interval, osg::Real32 timeStep, osg::Real32 density,
                                 osg::Real32 viscosity, osg::Real32 frictionN, osg::Real32 frictionSigma);
    /// In world coordinates.
    void setForce(const osg::Vec3f &force);
    /// Nothing without a display shader.
    void setFluidColor(const osg::Color4f &color);
    /// The random axes of the bake. A side below 1 logs one line and leaves the noise as it is.
    void createNoiseMap(osg::Int32 width, osg::Int32 height);
    /// Draws the object's normals and tangents, each tilted by that angle in radians about a random axis,
    /// into textures over the object's texture coordinates.
    void bakeSurfaceMaps(osg::Real32 perturbAngle);
    /// Takes over where the scene is now.
    void updateInvViewMatrix();

    /// Draws one step. Always false: steps that were missed are dropped.
    bool tick(DropletFlowTimer *timer, osg::Real64 elapsed, osg::UInt32 remaining) override;

    /// Never null; owned.
    DropletFlowTimer *getTimer() { return _timer.get(); }
    DropletSources *getSources() { return _sources.get(); }

    /// 0 is what force writes and the material shows, 1 what advection writes and droplets are stamped into.
    osg::TextureChunkPtr getSurfaceMap(osg::UInt32 index) const { return _surfaceMaps[index & 1]; }
    osg::TextureChunkPtr getNormalMap() const { return _normalMap; }
    osg::TextureChunkPtr getTangentMap() const { return _tangentMap; }
    osg::TextureChunkPtr getNoiseMap() const { return _noiseMap; }
    osg::SHLChunkPtr getForceShader() const { return _forceShader; }
    osg::SHLChunkPtr getAdvectionShader() const { return _advectionShader; }
    /// Null in mode 0.
    osg::SHLChunkPtr getRenderShader() const { return _renderShader; }
    /// Whether there is something to simulate on.
    bool isUsable() const { return _usable; }

  private:
    bool makeMaps(const osg::TextureChunkPtr &surfaceTexture);
    void makePasses();
    void extendMaterial(osg::Int32 matMode);
    void addToMaterial(const osg::StateChunkPtr &chunk, osg::Int32 slot);
    void bake(const osg::TextureChunkPtr &target, const osg::SHLChunkPtr &shader,
              const osg::Color3f &background);
    /// Whether the window has what a step needs; else logs one line, once.
    bool canDraw();
    bool refuse(const std::string &why);

    // One reference is held on each container.
    osg::NodePtr _scene;
    osg::ChunkMaterialPtr _material;
    osg::NodePtr _flowNodes[2];
    osg::SHLChunkPtr _advectionShader;
    osg::SHLChunkPtr _renderShader;
    osg::SHLChunkPtr _normalShader;
    osg::SHLChunkPtr _tangentShader;
    osg::SHLChunkPtr _forceShader;
    osg::FBOViewportPtr _passes[2];
    osg::TextureChunkPtr _surfaceMaps[2];
    osg::TextureChunkPtr _normalMap;
    osg::TextureChunkPtr _tangentMap;
    osg::TextureChunkPtr _noiseMap;
    osg::Int32 _width = 0;
    osg::Int32 _height = 0;
    bool _ownsMaps = true; ///< whether no surface map is the host's
    std::unique_ptr<DropletSources> _sources;
    std::unique_ptr<DropletFlowTimer> _timer;

    DropletFlowContext *_context = nullptr;
    std::vector<std::pair<osg::StateChunkPtr, osg::Int32>> _added; ///< to the material, with their slots
    bool _usable = false;
    bool _warned = false;
};

#endif
