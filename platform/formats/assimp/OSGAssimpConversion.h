#ifndef _OSGASSIMPCONVERSION_H_
#define _OSGASSIMPCONVERSION_H_

/// \file
/// From assimp's scenes to plain arrays.

#include "OSGSceneData.h"

struct aiScene;

OSG_BEGIN_NAMESPACE

/// What in a scene just imported later steps could stumble over: indices out of range, positions that are not
/// finite. One line, empty where nothing is wrong.
std::string findImportFault(const aiScene &source);

/// Converts a scene of triangles, points and lines into an empty one. `isGltf`: vertex colours are factors of
/// the base colour, and alpha matters where the material says so. One line where that fails, else empty.
std::string convertScene(const aiScene &source, bool isGltf, SceneData &scene);

OSG_END_NAMESPACE

#endif
