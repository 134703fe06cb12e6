/// \file
/// A plug-in for PrimitiveDrawer: ribbons that wind round a torus, drawn with plain OpenGL. Its parameters
/// are "ribbons", how many, and "turns", how often each winds round.

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr float pi = 3.14159265f;
constexpr float majorRadius = 1.f;
constexpr float minorRadius = 0.45f;
constexpr float halfWidth = 0.06f;

struct Ribbons
{
    int count = 3;
    int turns = 5;
};

/// The point of the torus at angle `a` round its axis and `b` round its tube.
void sendVertex(float a, float b)
{
    const float out = std::cos(b);
    glNormal3f(out * std::cos(a), std::sin(b), out * std::sin(a));
    glVertex3f((majorRadius + minorRadius * out) * std::cos(a), minorRadius * std::sin(b),
               (majorRadius + minorRadius * out) * std::sin(a));
}

void setColor(float share)
{
    const auto wave = [share](float phase) { return 0.55f + 0.4f * std::cos(2.f * pi * (share + phase)); };
    glColor3f(wave(0.f), wave(0.65f), wave(0.35f));
}

} // namespace

extern "C" void *ribbons_initialize()
{
    return new Ribbons;
}

extern "C" void ribbons_shutdown(void *handle)
{
    delete static_cast<Ribbons *>(handle);
}

/// 0 for a name that is unknown or a number out of range.
extern "C" int ribbons_setParam(void *handle, const char *name, const char *value)
{
    Ribbons &ribbons = *static_cast<Ribbons *>(handle);
    const long number = std::strtol(value, nullptr, 10);
    if(number < 1 || number > 100)
        return 0;
    if(std::strcmp(name, "ribbons") == 0)
        ribbons.count = int(number);
    else if(std::strcmp(name, "turns") == 0)
        ribbons.turns = int(number);
    else
        return 0;
    return 1;
}

extern "C" void ribbons_getBBox(void *, float *min, float *max)
{
    min[0] = min[2] = -(majorRadius + minorRadius);
    min[1] = -minorRadius;
    max[0] = max[2] = majorRadius + minorRadius;
    max[1] = minorRadius;
}

extern "C" void ribbons_drawPrim(void *handle)
{
    const Ribbons &ribbons = *static_cast<const Ribbons *>(handle);
    const int steps = 60 * ribbons.turns;
    const float width = 2.f * pi * halfWidth / minorRadius;
    for(int ribbon = 0; ribbon < ribbons.count; ++ribbon)
    {
        const float share = float(ribbon) / float(ribbons.count);
        setColor(share);
        glBegin(GL_QUAD_STRIP);
        for(int i = 0; i <= steps; ++i)
        {
            const float a = 2.f * pi * float(i) / float(steps);
            const float b = a * float(ribbons.turns) + 2.f * pi * share;
            sendVertex(a, b + 0.5f * width);
            sendVertex(a, b - 0.5f * width);
        }
        glEnd();
    }
}
