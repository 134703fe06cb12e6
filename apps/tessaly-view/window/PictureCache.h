#ifndef TESSALY_VIEW_PICTURECACHE_H
#define TESSALY_VIEW_PICTURECACHE_H

/// \file
/// The picture of the volume as it was drawn last, so that a panel over it costs no rays.

namespace viewer
{

/// A copy of the window's picture on the GPU. All operations need the window's context current; it goes with
/// the context.
class PictureCache
{
public:
    /// Copies the lower left part of the framebuffer, of that size.
    void keep(int width, int height);
    /// Draws the copy over the whole framebuffer of that size; a dark ground without one.
    void draw(int width, int height) const;

private:
    unsigned _texture = 0;
};

} // namespace viewer

#endif
