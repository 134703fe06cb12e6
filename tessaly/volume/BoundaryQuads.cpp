#include "BoundaryQuads.h"

namespace tessaly
{

const std::array<std::array<float, 3>, 8> boxPositions = {{{0.0f, 0.0f, 1.0f},
                                                           {1.0f, 0.0f, 1.0f},
                                                           {1.0f, 1.0f, 1.0f},
                                                           {0.0f, 1.0f, 1.0f},
                                                           {0.0f, 0.0f, 0.0f},
                                                           {0.0f, 1.0f, 0.0f},
                                                           {1.0f, 1.0f, 0.0f},
                                                           {1.0f, 0.0f, 0.0f}}};

const std::array<std::uint32_t, 24> boxIndices = {0, 1, 2, 3, 1, 7, 6, 2, 4, 5, 6, 7,
                                                  4, 0, 3, 5, 3, 2, 6, 5, 0, 4, 7, 1};

const std::array<std::array<float, 2>, 4> screenQuadPositions = {
    {{-1.0f, -1.0f}, {1.0f, -1.0f}, {1.0f, 1.0f}, {-1.0f, 1.0f}}};

const std::array<std::array<float, 2>, 4> screenQuadTexCoords = {
    {{0.0f, 0.0f}, {1.0f, 0.0f}, {1.0f, 1.0f}, {0.0f, 1.0f}}};

std::vector<std::array<float, 3>> blockCorners(const Sides &blocks)
{
    std::vector<std::array<float, 3>> corners;
    if(voxelCount(blocks) == 0)
        return corners;
    corners.reserve(voxelCount({blocks[0] + 1, blocks[1] + 1, blocks[2] + 1}));
    const auto at = [&](std::uint32_t corner, int axis) {
        return static_cast<float>(corner) / static_cast<float>(blocks[axis]);
    };
    for(std::uint32_t k = 0; k <= blocks[2]; ++k)
        for(std::uint32_t j = 0; j <= blocks[1]; ++j)
            for(std::uint32_t i = 0; i <= blocks[0]; ++i)
                corners.push_back({at(i, 0), at(j, 1), at(k, 2)});
    return corners;
}

std::vector<std::uint32_t> boundaryQuads(const std::uint8_t *occupied, const Sides &blocks)
{
    std::vector<std::uint32_t> indices;
    const std::uint32_t width = blocks[0];
    const std::uint32_t height = blocks[1];
    const std::uint32_t depth = blocks[2];

    const auto isOccupied = [&](std::uint32_t x, std::uint32_t y, std::uint32_t z) {
        return x < width && y < height && z < depth &&
               occupied[(static_cast<std::size_t>(z) * height + y) * width + x] != 0;
    };

    for(std::uint32_t z = 0; z < depth; ++z) {
        for(std::uint32_t y = 0; y < height; ++y) {
            for(std::uint32_t x = 0; x < width; ++x) {
                const auto corner = [&](std::uint32_t i, std::uint32_t j, std::uint32_t k) {
                    return ((z + k) * (height + 1) + y + j) * (width + 1) + x + i;
                };
                const auto quad = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
                    indices.insert(indices.end(), {a, b, c, d});
                };
                const bool inside = isOccupied(x, y, z);

                // The lower outer faces, which no block looks at from below.
                if(inside && x == 0)
                    quad(corner(0, 0, 0), corner(0, 0, 1), corner(0, 1, 1), corner(0, 1, 0));
                if(inside && y == 0)
                    quad(corner(0, 0, 0), corner(1, 0, 0), corner(1, 0, 1), corner(0, 0, 1));
                if(inside && z == 0)
                    quad(corner(0, 0, 0), corner(0, 1, 0), corner(1, 1, 0), corner(1, 0, 0));

                const bool nextX = isOccupied(x + 1, y, z);
                const bool nextY = isOccupied(x, y + 1, z);
                const bool nextZ = isOccupied(x, y, z + 1);
                if(!inside) {
                    // Faces of the next blocks, seen from this empty one.
                    if(nextZ)
                        quad(corner(0, 0, 1), corner(0, 1, 1), corner(1, 1, 1), corner(1, 0, 1));
                    if(nextX)
                        quad(corner(1, 0, 0), corner(1, 0, 1), corner(1, 1, 1), corner(1, 1, 0));
                    if(nextY)
                        quad(corner(0, 1, 0), corner(1, 1, 0), corner(1, 1, 1), corner(0, 1, 1));
                }
                else {
                    // Faces of this block, seen from the next empty ones.
                    if(!nextZ)
                        quad(corner(0, 0, 1), corner(1, 0, 1), corner(1, 1, 1), corner(0, 1, 1));
                    if(!nextX)
                        quad(corner(1, 0, 0), corner(1, 1, 0), corner(1, 1, 1), corner(1, 0, 1));
                    if(!nextY)
                        quad(corner(0, 1, 0), corner(0, 1, 1), corner(1, 1, 1), corner(1, 1, 0));
                }
            }
        }
    }
    return indices;
}

} // namespace tessaly
