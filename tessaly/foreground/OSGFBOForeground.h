#ifndef _OSGFBOFOREGROUND_H_
#define _OSGFBOFOREGROUND_H_

/// \file
/// Draws another foreground into textures.

#include <OpenSG/OSGHeldReferences.h>
#include <Tessaly/OSGFBOForegroundBase.h>
#include <Tessaly/OSGKeptPointer.h>

#include <vector>

OSG_BEGIN_NAMESPACE

class Window;

/// While it is drawn, a framebuffer object with the textures attached is bound, and the inner foreground
/// draws into it. Behind that the window's own framebuffer is bound. Neither a depth nor a stencil buffer
/// stands beside colour textures: what has to be hidden by depth can't be drawn into colour here, as is
/// meant.
///
/// The framebuffer object is made in the first frame and stays, also behind the foreground's end; one serves
/// all windows. Textures with a mipmap filter get their levels ahead of the drawing: the levels are of the
/// frame before.
///
/// Belongs to the thread that draws the viewport, with the window's context current.
class OSG_TESSALY_DLLMAPPING FBOForeground : public FBOForegroundBase
{
  public:
    typedef FBOForegroundBase Inherited;

    /// Takes a reference and gives the old one back.
    void setForeground(const ForegroundPtr &value);

    /// Does nothing while not active, and without textures. Does not look whether the framebuffer is
    /// complete: the inner foreground is drawn all the same. A texture that is null or has no image is passed
    /// over with one warning. Without framebuffer objects nothing is drawn, with one fatal line until the
    /// fields change.
    void draw(DrawActionBase *action, Viewport *port) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    FBOForeground();
    /// A copy has a framebuffer object of its own.
    FBOForeground(const FBOForeground &source);
    ~FBOForeground() override;

    void onCreate(const FBOForeground *source = nullptr);
    void onDestroy() override;

    /// Makes the framebuffer object, if there is none or it is dirty. The index is ignored.
    /// \return false where the window has no framebuffer objects
    bool initialize(Window *win, UInt32 index);
    /// Binds the framebuffer object; one warning where there is none.
    void bind(Window *win);
    /// Binds what is to be bound behind the drawing: getSavedGlFramebufferId, which only a derived class
    /// sets.
    void unbind(Window *win);
    /// Attaches level 0 of a texture, of a three-dimensional one the layer `zOffset`. A GL error is logged.
    /// \param id GL's name of the texture
    void setTarget(Window *win, UInt32 id, UInt32 attachment, UInt32 target, Int32 zOffset);
    /// How many colour textures a framebuffer object can have.
    Int32 getMaxBuffers();

    // For derived classes; draw calls neither.

    /// Whether the window has framebuffer objects; one warning where not.
    bool extensionCheck(Window &win);
    /// Logs the state of the bound framebuffer.
    /// \return false for an unsupported or unknown state and on a GL error; true also for the other
    /// incomplete states
    bool checkFrameBufferStatus(Window *win);

    /// The framebuffer object in use, and the one that was bound ahead of it.
    UInt32 getGlFramebufferId() const { return _glFramebufferId; }
    void setGlFramebufferId(UInt32 id) { _glFramebufferId = id; }
    UInt32 getSavedGlFramebufferId() const { return _savedGlFramebufferId; }
    /// Sets the one that was bound ahead; the name's spelling is meant.
    void setSavedtGlFramebufferId(UInt32 id) { _savedGlFramebufferId = id; }
    /// Whether the framebuffer object is set up again at the next drawing.
    bool getDirty() const { return _dirty; }
    /// True makes the next frame make another framebuffer object.
    void setDirty(bool dirty) { _dirty = dirty; }

    /// Ids of extensions and functions with Window.
    static UInt32 _tex3D_extension;
    static UInt32 _framebuffer_object_extension;
    static UInt32 _draw_buffers_extension;
    static UInt32 _funcDrawBuffers;
    static UInt32 _funcBindFramebuffer;
    static UInt32 _funcBindRenderbuffer;
    static UInt32 _funcCheckFramebufferStatus;
    static UInt32 _funcDeleteFramebuffers;
    static UInt32 _funcDeleteRenderbuffers;
    static UInt32 _funcFramebufferRenderbuffer;
    static UInt32 _funcFramebufferTexture1D;
    static UInt32 _funcFramebufferTexture2D;
    static UInt32 _funcFramebufferTexture3D;
    static UInt32 _funcGenFramebuffers;
    static UInt32 _funcGenRenderbuffers;
    static UInt32 _funcGenerateMipmap;
    static UInt32 _funcGetFramebufferAttachmentParameteriv;
    static UInt32 _funcGetRenderbufferParameteriv;
    static UInt32 _funcIsFramebuffer;
    static UInt32 _funcIsRenderbuffer;
    static UInt32 _funcRenderbufferStorage;
    static UInt32 _funcCopyTexSubImage3D;

  private:
    friend class FieldContainer;
    friend class FBOForegroundBase;

    struct Targets;

    static void initMethod();

    /// The first `count` textures by their internal formats.
    Targets sortTextures(UInt32 count) const;
    static bool haveSidesOfPowersOf2(const Targets &targets);
    void resizeImages(const Targets &targets, Window *win, Viewport *port) const;
    /// Makes a texture ready and attaches it.
    void attach(Window *win, const TextureChunkPtr &texture, UInt32 attachment, bool withMipmaps);
    void attachColors(Window *win, const Targets &targets);
    void attachDepthOrStencil(Window *win, const Targets &targets);
    /// Takes away what an earlier frame attached and this one did not.
    void detachOthers(Window *win, const std::vector<UInt32> &attachments);
    /// Sets GL's viewport. \return whether it was touched
    bool applyOverride(const Targets &targets) const;
    /// Whether the window's context has the functions that are needed.
    bool hasFramebufferFunctions(Window *win) const;

    UInt32 _glFramebufferId = 0; ///< GL's name
    UInt32 _savedGlFramebufferId = 0;
    bool _dirty = false;
    bool _drawing = false;
    bool _initializing = false;
    bool _warned = false;
    std::vector<UInt32> _attachments; ///< in the framebuffer object
    KeptPointer<ForegroundPtr> _keptForeground;
    HeldReferences<TextureChunkPtr> _heldTextures;
};

OSG_END_NAMESPACE

#endif
