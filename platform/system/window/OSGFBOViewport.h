#ifndef _OSGFBOVIEWPORT_H_
#define _OSGFBOVIEWPORT_H_

/// \file
/// A viewport that renders into textures.

#include "OSGFBOViewportBase.h"
#include "OSGHeldReferences.h"
#include "OSGNodeFields.h"
#include "OSGTextureChunkFields.h"

OSG_BEGIN_NAMESPACE

class Window;

/// Renders its root with its camera and background into the textures on its list, through a framebuffer
/// object that each window has for itself. The whole storage is drawn to, from pixel (0, 0) on; the edges
/// should say the same: left and bottom 0, right and top storage size - 1. The parent need only be set for
/// the duration of render.
class OSG_SYSTEMLIB_DLLMAPPING FBOViewport : public FBOViewportBase
{
  public:
    typedef FBOViewportBase Inherited;

    /// Sets the storage size and the edges to it.
    void setStorageSize(Int32 width, Int32 height);

    void render(RenderActionBase *action) override;
    // Within render these are about the storage.
    void activate() override;
    void activateSize() override;
    void deactivate() override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    /// The name of an incomplete framebuffer's status, "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT" for 36054;
    /// "unknown status" for anything else.
    static const Char8 *getStatusText(UInt32 status);
    /// Whether textures of that internal or external format are depth textures.
    static bool isDepthFormat(UInt32 format);

  protected:
    FBOViewport();
    FBOViewport(const FBOViewport &source);
    ~FBOViewport() override;

    void onCreate(const FBOViewport *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class FBOViewportBase;

    struct Functions;
    struct Targets;

    static void initMethod();

    static void handleFramebuffer(Window *win, UInt32 idstatus);
    static void deleteDepthBuffer(Window *win, UInt32 idstatus);
    void handleDepthBuffer(Window *win, UInt32 idstatus);

    Targets sortTextures();
    void attach(Window *win, const Functions &gl, const Targets &targets);
    /// Whether the framebuffer is complete; logs what it is else.
    bool reportStatus(UInt32 status);
    /// Draws the scene into what is attached.
    void renderTrees(RenderActionBase *action);
    void readBack(const Targets &targets);

    UInt32 _framebufferId = 0; ///< GL objects
    UInt32 _depthBufferId = 0;
    UInt32 _lastStatus = 0x8CD5; ///< of the last pass; GL_FRAMEBUFFER_COMPLETE ahead of the first
    bool _inPass = false;
    bool _warnedNoFBO = false;
    bool _warnedNoDrawBuffers = false;
    HeldReferences<NodePtr> _heldExcluded;
    HeldReferences<NodePtr> _heldRendered;
    HeldReferences<TextureChunkPtr> _heldTextures;
};

OSG_END_NAMESPACE

#endif
