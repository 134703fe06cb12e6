#ifndef TESSALY_VOLUMENODEHANDLER_H
#define TESSALY_VOLUMENODEHANDLER_H

/// \file
/// What turns one volume into something that can be drawn.

#include <OpenSG/OSGChunkMaterialFields.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGNodeFields.h>
#include <OpenSG/OSGSHLChunkFields.h>
#include <OpenSG/OSGTextureChunkFields.h>
#include <OpenSG/OSGVector.h>

class BVGeometry;
class NormalVolume;
class RayGeneration;
class ShadingFunctions;
class Transferfunction;
class TraversalFunctions;
class VolumeData;

/// Holds the voxels and six exchangeable strategies of one volume, joins the GLSL of the strategies into one
/// fragment program, gives it its textures and uniforms, and builds the small scene graphs that the viewport
/// renders: a screen quad that casts the rays, and two graphs whose pictures say where rays start and how
/// long they are.
///
/// Each strategy that is handed in is owned from then on, must not be null, and replaces and deletes the one
/// before. While a part is missing, nothing is built; with the last one, and at each change behind that,
/// everything is brought up to date.
///
/// Used by one thread, on its aspect; other aspects have handlers of their own. No GL context is needed.
class VolumeNodeHandler
{
  public:
    VolumeNodeHandler() = default;
    VolumeNodeHandler(const VolumeNodeHandler &) = delete;
    VolumeNodeHandler &operator=(const VolumeNodeHandler &) = delete;
    virtual ~VolumeNodeHandler();

    /// Makes a new VolumeData of the voxels; the arguments and the result are those of VolumeData::setVolume.
    bool setVolumeData(osg::TextureChunkPtr voxels, bool swapped, bool normalised = false);
    /// Null until set.
    VolumeData *getVolumeData() const { return _volumeData; }

    /// The extent in the scene, at the next rebuild(); with a negative component it is voxels times slice
    /// thickness.
    void setDimensions(const osg::Vec3f &dimensions) { _dimensions = dimensions; }
    /// Sets the uniform only; the program stays.
    void setStepSize(osg::Real32 stepSize);

    /// Alone of the setters this one may be given the object that is held.
    void setRayGeneration(RayGeneration *rayGeneration);
    void setNormalVolume(NormalVolume *normalVolume);
    void setShadingFunctions(ShadingFunctions *shadingFunctions);
    void setTraversalFunctions(TraversalFunctions *traversalFunctions);
    void setBVGeometry(BVGeometry *bvGeometry);
    /// Sets the table's form by the type of the voxels and builds the derived tables.
    void setTransferfunction(Transferfunction *function);

    /// Null until set.
    ShadingFunctions *getShadingFunctions() const { return _shadingFunctions; }

    // Null until everything is there. The handler holds a reference on each.
    osg::NodePtr getRootNode() const { return _rootNode; }   ///< to be hung into the scene
    osg::NodePtr getFrontRoot() const { return _frontRoot; } ///< gives the entry points
    osg::NodePtr getBackRoot() const { return _backRoot; }   ///< gives directions and lengths
    osg::SHLChunkPtr getShader() const { return _shader; }   ///< the ray-casting program

    /// Hands in the textures that the two graphs are rendered to; builds the program anew.
    void setRayTextures(osg::TextureChunkPtr front, osg::TextureChunkPtr back);
    /// Hands in colour and depth of the scene without the volume; builds the program anew.
    void setSceneTextures(osg::TextureChunkPtr color, osg::TextureChunkPtr depth);
    /// The distances of the camera's near and far plane. The scene's depth is taken to be that of a
    /// perspective camera.
    void setDepthRange(osg::Real32 nearPlane, osg::Real32 farPlane);
    /// The camera beacon's matrix to the world, each frame.
    void setViewMatrix(const osg::Matrix &beaconToWorld);

    /// Brings everything into line with the voxels and the strategies. True, with nothing done, while a part
    /// is missing.
    bool rebuild();
    /// Joins the program and sets its textures and uniforms. False while a strategy or the quad is missing;
    /// the program then has its old text, but has lost its parameters.
    bool buildProgram();

  private:
    void setProgramParameters(osg::ChunkMaterialPtr material, osg::SHLChunkPtr shader,
                              osg::UInt32 &textureUnit);
    void createScreenQuad(osg::NodePtr &node);
    void createFrontGraph();
    void createBackGraph();
    void createExitMaterial();
    osg::Matrix placement() const;

    // One reference is held on each, unless told otherwise.
    osg::NodePtr _quadNode;
    osg::NodePtr _rootNode; ///< its core is a new Transform at each rebuild
    osg::ChunkMaterialPtr _material;
    osg::SHLChunkPtr _shader;
    osg::NodePtr _frontRoot;
    osg::NodePtr _backRoot;
    osg::NodePtr _frontFaceNode; ///< no reference, as the two below; shares the core of the bounding geometry
    osg::NodePtr _backFaceNode;
    osg::NodePtr _exitFaceNode;
    osg::SHLChunkPtr _planeShader; ///< no reference
    osg::SHLChunkPtr _exitShader;
    osg::NodePtr _frontTransformNode;    ///< no reference
    osg::NodePtr _backTransformNode;     ///< no reference
    osg::ChunkMaterialPtr _exitMaterial; ///< no reference
    osg::TextureChunkPtr _sceneColor;
    osg::TextureChunkPtr _sceneDepth;
    osg::TextureChunkPtr _frontTexture;
    osg::TextureChunkPtr _backTexture;

    // Owned.
    VolumeData *_volumeData = nullptr;
    BVGeometry *_bvGeometry = nullptr;
    RayGeneration *_rayGeneration = nullptr;
    NormalVolume *_normalVolume = nullptr;
    Transferfunction *_transferfunction = nullptr;
    ShadingFunctions *_shadingFunctions = nullptr;
    TraversalFunctions *_traversalFunctions = nullptr;

    osg::Vec3f _dimensions = osg::Vec3f(-1.0f, -1.0f, -1.0f);
    osg::UInt32 _textureUnit = 0; ///< the next free one while parameters are being set
    osg::Real32 _stepSize = 0.0039f;
};

#endif
