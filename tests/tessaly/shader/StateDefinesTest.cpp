#include <shader/StateDefines.h>

#include <gtest/gtest.h>

using tessaly::RenderingState;
using tessaly::stateDefines;
using tessaly::stateKey;

TEST(StateDefines, LightsZeroAndTwo)
{
    RenderingState state;
    state.lights = 5;
    EXPECT_EQ(stateDefines(state), "#define OSG_LIGHT_0_ACTIVE 1\n"
                                   "#define OSG_LIGHT_1_ACTIVE 0\n"
                                   "#define OSG_LIGHT_2_ACTIVE 1\n"
                                   "#define OSG_LIGHT_3_ACTIVE 0\n"
                                   "#define OSG_LIGHT_4_ACTIVE 0\n"
                                   "#define OSG_LIGHT_5_ACTIVE 0\n"
                                   "#define OSG_LIGHT_6_ACTIVE 0\n"
                                   "#define OSG_LIGHT_7_ACTIVE 0\n"
                                   "#define OSG_ACTIVE_LIGHTS_COUNT 2\n"
                                   "#define OSG_ACTIVE_LIGHTS_MASK 5\n"
                                   "#define OSG_STEREO_LEFT_EYE -1\n"
                                   "#define OSG_FOG 0\n");
}

TEST(StateDefines, TheMaskIsUnsignedAndTheCountIsOfTheFirstEight)
{
    const std::string text = stateDefines({0xFFFFFF81u, 1, 3});
    EXPECT_NE(text.find("OSG_LIGHT_0_ACTIVE 1\n"), std::string::npos);
    EXPECT_NE(text.find("OSG_LIGHT_7_ACTIVE 1\n"), std::string::npos);
    EXPECT_NE(text.find("OSG_ACTIVE_LIGHTS_COUNT 2\n"), std::string::npos);
    EXPECT_NE(text.find("OSG_ACTIVE_LIGHTS_MASK 4294967169\n"), std::string::npos);
    EXPECT_NE(text.find("OSG_STEREO_LEFT_EYE 1\n"), std::string::npos);
    EXPECT_NE(text.find("OSG_FOG 3\n"), std::string::npos);
}

TEST(StateDefines, StatesOfEightLightsHaveNumbersOfTheirOwnAndFurtherLightsCollide)
{
    EXPECT_EQ(stateKey({0, -1, 0}), 0u);
    EXPECT_EQ(stateKey({5, 0, 2}), 5u | 1u << 8 | 2u << 10);
    EXPECT_EQ(stateKey({255, 1, 3}), 255u | 2u << 8 | 3u << 10);
    EXPECT_EQ(stateKey({256, -1, 0}), stateKey({0, 0, 0})) << "meant: there are only eight lights";
}
