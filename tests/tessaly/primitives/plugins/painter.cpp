/// \file
/// A plug-in that paints the left half of what is seen, in the colour that the material has set.

#include <GL/gl.h>

extern "C" void painter_drawPrim(void *)
{
    glRectf(-1.f, -1.f, 0.f, 1.f);
}

extern "C" void painter_getBBox(void *, float *min, float *max)
{
    min[0] = min[1] = -1.f;
    max[1] = 1.f;
}

extern "C" int painter_setParam(void *, const char *, const char *)
{
    return 1;
}
