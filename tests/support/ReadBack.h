#ifndef TESTS_SUPPORT_READBACK_H
#define TESTS_SUPPORT_READBACK_H

/// \file
/// Reading pictures back from GL.

#include "support/RgbaImage.h"

namespace test
{

/// The pixels of the framebuffer that is bound for reading, from (x, y), its lower left corner, on. Leaves
/// all GL state as it was, the pixel-pack state included. Needs a current context.
RgbaImage readPixels(int x, int y, int width, int height);

/// The colour of one pixel of it.
RgbaImage::Pixel readPixel(int x, int y);

} // namespace test

#endif
