#ifndef TESSALY_DROPLETSOURCES_H
#define TESSALY_DROPLETSOURCES_H

/// \file
/// What stamps droplets into a surface map.

#include <vector>

#include <OpenSG/OSGFBOViewportFields.h>
#include <OpenSG/OSGNodeFields.h>
#include <OpenSG/OSGTextureChunkFields.h>
#include <OpenSG/OSGVector.h>

/// A list of droplets and their profile. Used by the thread that draws; only render needs a GL context.
class DropletSources
{
  public:
    /// `target` gets the droplets; a reference is held. Without one, or with one without a size, nothing is
    /// drawn.
    explicit DropletSources(const osg::TextureChunkPtr &target);
    DropletSources(const DropletSources &) = delete;
    DropletSources &operator=(const DropletSources &) = delete;
    ~DropletSources();

    /// x and y in the map's range of 0 to 1, z size as a fraction of the map, w amount.
    void addSource(const osg::Vec4f &drop);
    void clearSources();
    /// Makes the profile for a contact angle in radians. An angle without a droplet, such as 0, logs one
    /// line; droplets then add nothing.
    void createSplat(osg::Real32 contactAngle);
    /// Adds the droplets to what the map holds; with `clear`, the map is emptied of liquid and velocity
    /// first.
    void render(bool clear);

    /// Null ahead of the first createSplat.
    osg::TextureChunkPtr getSplat() const { return _splat; }
    const std::vector<osg::Vec4f> &getDrops() const { return _drops; }
    /// Null until first used.
    osg::FBOViewportPtr getViewport() const { return _viewport; }

  private:
    void rebuild(bool clear);
    osg::NodePtr makeRoot() const;

    osg::FBOViewportPtr _viewport; ///< one reference is held, as on the next two
    osg::TextureChunkPtr _target;
    osg::TextureChunkPtr _splat;
    std::vector<osg::Vec4f> _drops;
    bool _dirty = false;
};

#endif
