/// \file
/// Read-back through glReadPixels with a pixel-pack state of its own.

#include "support/ReadBack.h"

#include <OpenSG/OSGEGLContext.h>

#include <GL/gl.h>
#include <GL/glext.h>

test::RgbaImage test::readPixels(int x, int y, int width, int height)
{
    const auto bindBuffer =
        reinterpret_cast<PFNGLBINDBUFFERPROC>(osg::EGLContextHandle::getProcAddress("glBindBuffer"));
    GLint packBuffer = 0;
    glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &packBuffer);
    bindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_PACK_SWAP_BYTES, GL_FALSE);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    glPixelStorei(GL_PACK_SKIP_ROWS, 0);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);

    RgbaImage image(width, height);
    glReadPixels(x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, image.bytes.data());

    glPopClientAttrib();
    bindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(packBuffer));
    return image;
}

test::RgbaImage::Pixel test::readPixel(int x, int y)
{
    return readPixels(x, y, 1, 1).at(0, 0);
}
