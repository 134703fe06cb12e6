#ifndef TESSALY_BOUNDARYQUADS_H
#define TESSALY_BOUNDARYQUADS_H

/// \file
/// Vertices and quads of the shapes that the ray caster rasterises: the unit cube, the surface of the visible
/// blocks, and the quad over the viewport.

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "VoxelPasses.h"

namespace tessaly
{

/// The corners of the unit cube, three coordinates each.
extern const std::array<std::array<float, 3>, 8> boxPositions;

/// Six quads over boxPositions, counter-clockwise seen from outside.
extern const std::array<std::uint32_t, 24> boxIndices;

/// The corners of the viewport in clip coordinates, two each; the quad is 0 1 2 3.
extern const std::array<std::array<float, 2>, 4> screenQuadPositions;

/// The texture coordinates that belong to screenQuadPositions.
extern const std::array<std::array<float, 2>, 4> screenQuadTexCoords;

/// The corners of all blocks, each once, in the unit cube: corner (i, j, k) lies at (i / W, j / H, k / D) and
/// has the index (k * (H + 1) + j) * (W + 1) + i.
/// \param blocks W, H and D, blocks per axis
/// \return nothing if one of them is 0
std::vector<std::array<float, 3>> blockCorners(const Sides &blocks);

/// The quads between occupied and empty blocks, with everything beyond the grid empty: a closed surface, each
/// quad once, counter-clockwise seen from its empty side. Blocks are gone through x fastest, then y, then z;
/// each gives the quads on the volume's lower faces, x, y, z, and then those towards its next neighbours, z,
/// x, y.
/// \param occupied one byte per block, 0 for an empty one
/// \return four indices into blockCorners() per quad
std::vector<std::uint32_t> boundaryQuads(const std::uint8_t *occupied, const Sides &blocks);

} // namespace tessaly

#endif
