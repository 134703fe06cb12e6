#ifndef _OSGDISPLAYFILTERGROUP_H_
#define _OSGDISPLAYFILTERGROUP_H_

/// \file
/// The picture of a viewport as a texture, and the quad that draws it again.

#include <string>

#include "OSGChunkMaterial.h"
#include "OSGImage.h"
#include "OSGPolygonForeground.h"
#include "OSGTextureChunk.h"

OSG_BEGIN_NAMESPACE

/// Grabs the viewport's picture and draws it over the viewport with a material to which filters add their
/// chunks. The picture is the material's first texture, on unit 0: as large as the viewport, RGBA, filtered
/// linearly and clamped to its edge. The quad's vertices and texture coordinates run from 0 to 1; the texture
/// matrix of unit 0 maps these onto the picture where a driver had to pad the texture.
///
/// Belongs to a DisplayFilterForeground. Where a program discards fragments the grabbed picture stays.
class OSG_SYSTEMLIB_DLLMAPPING DisplayFilterGroup
{
  public:
    /// The name is that of the filters.
    explicit DisplayFilterGroup(const std::string &name);
    ~DisplayFilterGroup();
    DisplayFilterGroup(const DisplayFilterGroup &) = delete;
    DisplayFilterGroup &operator=(const DisplayFilterGroup &) = delete;

    /// What it was made with.
    const std::string &getName() const { return _name; }
    /// Never null; goes with the group.
    ChunkMaterialPtr getMaterial() const { return _material; }

    /// Grabs and draws. Nothing for a viewport without pixels. GL's state is left as it was.
    void draw(DrawActionBase *action, Viewport *port);

  private:
    std::string _name;
    ImagePtr _image; ///< tells the size only
    TextureChunkPtr _picture;
    ChunkMaterialPtr _material;
    PolygonForegroundPtr _quad;
};

OSG_END_NAMESPACE

#endif
