/// \file
/// A picture in a texture.

#include "PictureCache.h"

#include <OpenSG/OSGGL.h>

#include <initializer_list>

namespace viewer
{

void PictureCache::keep(int width, int height)
{
    if (_texture == 0)
    {
        glGenTextures(1, &_texture);
    }
    glBindTexture(GL_TEXTURE_2D, _texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glCopyTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, 0, 0, width, height, 0);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void PictureCache::draw(int width, int height) const
{
    glViewport(0, 0, width, height);
    glClearColor(0.07f, 0.08f, 0.11f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (_texture == 0)
    {
        return;
    }
    glPushAttrib(GL_ENABLE_BIT | GL_TEXTURE_BIT | GL_CURRENT_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_BLEND);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, _texture);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    for (const GLenum mode : {GL_PROJECTION, GL_MODELVIEW})
    {
        glMatrixMode(mode);
        glPushMatrix();
        glLoadIdentity();
    }
    glBegin(GL_QUADS);
    for (const int corner : {0, 1, 3, 2})
    {
        const float x = static_cast<float>(corner & 1);
        const float y = static_cast<float>(corner >> 1);
        glTexCoord2f(x, y);
        glVertex2f(2.0f * x - 1.0f, 2.0f * y - 1.0f);
    }
    glEnd();
    for (const GLenum mode : {GL_MODELVIEW, GL_PROJECTION})
    {
        glMatrixMode(mode);
        glPopMatrix();
    }
    glMatrixMode(GL_MODELVIEW);
    glPopAttrib();
}

} // namespace viewer
