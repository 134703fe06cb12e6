#ifndef _OSGSCENEMAKER_H_
#define _OSGSCENEMAKER_H_

/// \file
/// From plain arrays to the scene graph.

#include "OSGNodeFields.h"
#include "OSGSceneData.h"

OSG_BEGIN_NAMESPACE

/// A new tree, without a reference: for each node one with a Transform core, its meshes as its first
/// children, with Geometry cores of one GL_TRIANGLES primitive, its nodes as the others. Cores and materials
/// are shared where meshes are. Meshes without triangles and nodes that don't hang below the first are left
/// out. Materials are SimpleMaterials; where the mesh has colours they follow these (GL_AMBIENT_AND_DIFFUSE),
/// and are transparent where an alpha is below 1. NullFC where findSceneFault has something to say, which
/// goes into the log as a warning behind `name`.
OSG_SYSTEMLIB_DLLMAPPING NodePtr makeScene(const SceneData &scene, const std::string &name = "makeScene");

OSG_END_NAMESPACE

#endif
