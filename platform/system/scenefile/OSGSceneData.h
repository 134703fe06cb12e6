#ifndef _OSGSCENEDATA_H_
#define _OSGSCENEDATA_H_

/// \file
/// A scene in plain arrays: what readers of scene files hand over.

#include <string>
#include <vector>

#include "OSGColor.h"
#include "OSGMatrix.h"
#include "OSGVector.h"

OSG_BEGIN_NAMESPACE

/// Colours of a surface, 0 to 1, as SimpleMaterial has them.
struct SceneMaterial
{
    std::string name;                  ///< may be empty
    Color3f ambient{0.2f, 0.2f, 0.2f}; ///< in light from everywhere
    Color3f diffuse{0.8f, 0.8f, 0.8f}; ///< in light from a lamp
    Color3f specular{0.f, 0.f, 0.f};   ///< of the highlight
    Color3f emission{0.f, 0.f, 0.f};   ///< without light
    Real32 shininess = 1.f;            ///< exponent of the highlight, 0 to 128
    Real32 opacity = 1.f;              ///< 0 is invisible, 1 opaque
};

/// Triangles, counter-clockwise seen from outside. Normals, colours and texture coordinates are empty or as
/// many as the positions.
struct SceneMesh
{
    std::string name;             ///< may be empty
    std::vector<Pnt3f> positions; ///< of the vertices
    std::vector<Vec3f> normals;   ///< of length 1
    /// In place of the material's ambient and diffuse colour; the alphas are multiplied by its opacity.
    std::vector<Color4f> colors;
    std::vector<Vec2f> texCoords; ///< (0, 0) is the lower left corner of a picture
    std::vector<UInt32> triangles; ///< three vertices each
    Int32 material = -1; ///< -1: the default material
};

/// A place in the tree.
struct SceneNode
{
    std::string name; ///< may be empty
    Matrix matrix; ///< from this node's coordinates to its parent's
    std::vector<UInt32> meshes;   ///< what hangs here
    std::vector<UInt32> children; ///< a node has one parent at most
};

/// A whole scene. Materials, meshes and nodes are named by their places here.
struct SceneData
{
    std::vector<SceneMaterial> materials; ///< of the meshes
    std::vector<SceneMesh> meshes;    ///< may stand below several nodes
    std::vector<SceneNode> nodes;     ///< the first is the root
    std::vector<std::string> notices; ///< one line each, without a line end: what was left out on the way in
};

/// How deep nodes may be nested, as actions walk down on the stack.
constexpr UInt32 MaxSceneDepth = 500;

/// What makes a scene unusable, in one line; empty where nothing does: no nodes, indices out of range, arrays
/// that don't fit together, positions, colours or matrices that are not finite, nodes with two parents or
/// below themselves, nodes nested deeper than MaxSceneDepth.
OSG_SYSTEMLIB_DLLMAPPING std::string findSceneFault(const SceneData &scene);

/// Gives a mesh normals of length 1: at each corner of a triangle the mean, weighted by the angles there, of
/// the triangles that meet at that place and lean to it by `creaseAngle` (radians) at most. Afterwards no two
/// triangles share vertices. Indices must be in range. Where more than 256 triangles meet they are all
/// averaged, so that the time stays in proportion to the triangles.
OSG_SYSTEMLIB_DLLMAPPING void addSmoothNormals(SceneMesh &mesh, Real32 creaseAngle);

/// Joins vertices that are alike in everything, in the order in which triangles use them, and drops those
/// that no triangle uses. Indices must be in range.
OSG_SYSTEMLIB_DLLMAPPING void joinSceneVertices(SceneMesh &mesh);

OSG_END_NAMESPACE

#endif
