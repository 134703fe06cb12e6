/// \file
/// The air of an 8-bit scan, found and raised.

#include "HiddenAir.h"

namespace viewer
{

bool hidesAir(const std::vector<std::uint8_t> &table)
{
    constexpr std::size_t opacity = 3;
    return table.size() == 4 * 256 && table[opacity] == 0 && table[4 + opacity] == 0;
}

void liftAir(std::uint8_t *voxels, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
    {
        voxels[i] = voxels[i] == 0 ? std::uint8_t(1) : voxels[i];
    }
}

} // namespace viewer
