#ifndef _OSGGLTFCLEANER_H_
#define _OSGGLTFCLEANER_H_

/// \file
/// glTF 2 files brought to what is read of them, and checked.

#include <string>
#include <vector>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// Takes a .gltf or .glb file and replaces it by one of the same form that has nodes, triangles with
/// positions, normals, first texture coordinates and first colours, and plain materials, and nothing else. In
/// what is left, references are in range, data lie within their buffers, and nodes are a forest no deeper
/// than MaxSceneDepth. `textures` gets the names of the pictures that were taken out. One line where the file
/// is damaged, is glTF 1 or needs an extension that is not read; else empty.
std::string cleanGltf(std::vector<UInt8> &bytes, std::vector<std::string> &textures);

OSG_END_NAMESPACE

#endif
