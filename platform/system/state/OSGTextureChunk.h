#ifndef _OSGTEXTURECHUNK_H_
#define _OSGTEXTURECHUNK_H_

/// \file
/// A texture on a texture unit.

#include <map>
#include <vector>

#include "OSGImage.h"
#include "OSGTextureChunkBase.h"
#include "OSGTextureUpload.h"

OSG_BEGIN_NAMESPACE

class Window;

/// A texture; its slot is the number of the texture unit, 0 to 15.
///
/// The GL object belongs to a window and is made when the chunk is first activated there, or validated by
/// Window::validateGLObject with the id in the field GLId. After that a changed filter or wrapping reaches
/// GL without a transfer of pixels; endEditCP with ImageFieldMask, and imageContentChanged, transfer them
/// anew. An image without pixels makes a texture of its size with undefined content, for drawing into. A
/// chunk without an image draws as if the unit were off. What the window's GL can't do (a kind of texture,
/// a size) gives one warning for each window and change, and the unit is off.
///
/// Copies of different aspects may be used by different threads; the copy of one aspect is drawn by one
/// thread.
class OSG_SYSTEMLIB_DLLMAPPING TextureChunk : public TextureChunkBase
{
  public:
    typedef TextureChunkBase Inherited;

    const StateChunkClass *getClass() const override { return &_class; }
    static const StateChunkClass *getStaticClass() { return &_class; }
    static UInt32 getStaticClassId() { return _class.getId(); }

    /// The image; NullFC without one.
    ImagePtr getImage() const { return _sfImage.getValue(); }
    /// Takes another image, or none. A reference is held on it, and given back for the old one.
    void setImage(const ImagePtr &image);

    /// Tells that pixels of the image have changed: those from the first to the last column, row and plane,
    /// each counted from 0, where -1 in the first or last stands for the border of the image. Without
    /// arguments, all pixels, and the form of the image may have changed too. Does an edit of its own on
    /// the chunk.
    void imageContentChanged(Int32 minX = -1, Int32 maxX = -1, Int32 minY = -1, Int32 maxY = -1,
                             Int32 minZ = -1, Int32 maxZ = -1);

    /// The kind of texture: the field `target`, or what suits the image; GL_NONE without an image.
    GLenum effectiveTarget() const;

    void update(DrawActionBase *action) override;
    void activate(DrawActionBase *action, UInt32 index = 0) override;
    void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0) override;
    void deactivate(DrawActionBase *action, UInt32 index = 0) override;

    /// Never: what a texture does to the frame buffer, blending decides.
    bool isTransparent() const override;

    /// How often this aspect's copy has transferred pixels, in whole or in part, for tests and statistics.
    UInt32 getNumTransfers() const { return _numTransfers; }

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    TextureChunk();
    TextureChunk(const TextureChunk &source);
    ~TextureChunk() override;

    void onCreate(const TextureChunk *source = nullptr);
    void onDestroy() override;

    void handleGL(Window *win, UInt32 idstatus);

  private:
    friend class FieldContainer;
    friend class TextureChunkBase;

    static void initMethod();

    /// What a window's GL object looks like.
    struct WindowTexture
    {
        bool usable = false;         ///< there is something to draw with
        GLenum target = GL_NONE;
        TextureStorage storage;      ///< what was allocated
        bool hasMipmaps = false;
        UInt32 contentRevision = 0;  ///< up to which changes of pixels have been transferred
        UInt32 settingsRevision = 0; ///< the same for filters and the like
        UInt32 fixedUnits = 1;       ///< units of the fixed pipeline
        UInt32 coordinateUnits = 1;  ///< units that have texture coordinates and a matrix
        UInt32 imageUnits = 1;       ///< units that programs can read
        bool unitWarned = false;
    };

    /// A change of pixels.
    struct ContentChange
    {
        UInt32 revision;
        TextureBlock block;
    };

    void queryUnits(WindowTexture &texture) const;
    /// Whether the window has that unit; if not, warns once.
    static bool unitIsThere(const TextureFunctions &gl, WindowTexture &texture, UInt32 unit);
    TextureSettings settings() const;
    void noteContentChange(const TextureBlock &block);
    /// The union of the blocks that changed behind a revision; a whole block where that isn't known any more.
    TextureBlock changedSince(UInt32 revision) const;

    void setEnvironment(const TextureFunctions &gl, const WindowTexture &texture, UInt32 unit) const;
    void resetEnvironment(const TextureFunctions &gl, const WindowTexture &texture, UInt32 unit) const;

    static StateChunkClass _class;

    std::map<Window *, WindowTexture> _windows;
    std::vector<ContentChange> _changes; ///< the latest
    UInt32 _contentRevision = 1;
    UInt32 _settingsRevision = 1;
    UInt32 _numTransfers = 0;
};

OSG_END_NAMESPACE

#endif
