#ifndef _OSGASSIMPREADER_H_
#define _OSGASSIMPREADER_H_

/// \file
/// Scene files into plain arrays, through the library assimp.

#include "OSGSceneData.h"

OSG_BEGIN_NAMESPACE

/// Reads a file of the format "glTF", "OBJ", "PLY" or "STL" into an empty scene, which findSceneFault accepts
/// afterwards. Polygons become triangles; normals are made where the file has none (crease angle 60 degrees);
/// vertices that are alike are joined; points, lines and textures are left out, with a notice each. Axes stay
/// as they are. Any thread. False, with one line in `error` that names the file, where it is over 4 GiB,
/// can't be read, is damaged or has no triangles.
bool readAssimpScene(const std::string &format, const std::string &fileName, SceneData &scene,
                     std::string &error);

OSG_END_NAMESPACE

#endif
