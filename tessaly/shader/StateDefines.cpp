#include "StateDefines.h"

namespace tessaly
{

std::uint32_t stateKey(const RenderingState &state)
{
    return state.lights | static_cast<std::uint32_t>(state.eye + 1) << 8 |
           static_cast<std::uint32_t>(state.fog) << 10;
}

std::string stateDefines(const RenderingState &state)
{
    constexpr unsigned numLights = 8;
    std::string text;
    unsigned count = 0;
    for(unsigned i = 0; i < numLights; ++i)
    {
        const unsigned active = state.lights >> i & 1u;
        count += active;
        text += "#define OSG_LIGHT_" + std::to_string(i) + "_ACTIVE " + std::to_string(active) + "\n";
    }
    text += "#define OSG_ACTIVE_LIGHTS_COUNT " + std::to_string(count) + "\n";
    text += "#define OSG_ACTIVE_LIGHTS_MASK " + std::to_string(state.lights) + "\n";
    text += "#define OSG_STEREO_LEFT_EYE " + std::to_string(state.eye) + "\n";
    text += "#define OSG_FOG " + std::to_string(state.fog) + "\n";
    return text;
}

} // namespace tessaly
