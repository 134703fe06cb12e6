/// \file
/// Which tables hide the air, and what becomes of it.

#include "HiddenAir.h"

#include <gtest/gtest.h>

namespace
{

using namespace viewer;

TEST(HiddenAir, ATableHidesAirIfItsFirstTwoEntriesAreTransparent)
{
    std::vector<std::uint8_t> table(4 * 256, 200);
    EXPECT_FALSE(hidesAir(table));
    table[3] = 0;
    EXPECT_FALSE(hidesAir(table)) << "values between 0 and 1 are mixed from both entries";
    table[7] = 0;
    EXPECT_TRUE(hidesAir(table));
    table[3] = 1;
    EXPECT_FALSE(hidesAir(table));
    EXPECT_FALSE(hidesAir({})) << "no table of bytes";
}

TEST(HiddenAir, OnlyZerosAreRaised)
{
    std::vector<std::uint8_t> voxels(256 + 37);
    for (std::size_t i = 0; i < voxels.size(); ++i)
    {
        voxels[i] = static_cast<std::uint8_t>(i);
    }
    liftAir(voxels.data(), 256 + 3);
    for (std::size_t i = 0; i < voxels.size(); ++i)
    {
        const bool raised = i == 0 || i == 256;
        EXPECT_EQ(voxels[i], raised ? 1 : static_cast<std::uint8_t>(i)) << i;
    }
    liftAir(nullptr, 0);
}

} // namespace
