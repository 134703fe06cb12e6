#ifndef _OSGWINDOW_H_
#define _OSGWINDOW_H_

/// \file
/// The window: a GL context, its framebuffer and its viewports.

#include "OSGGLExtensions.h"
#include "OSGGLObjects.h"
#include "OSGHeldReferences.h"
#include "OSGViewportFields.h"
#include "OSGWindowBase.h"

OSG_BEGIN_NAMESPACE

class DrawAction;
class RenderActionBase;

/// A window draws its viewports in list order. It is drawn by one thread at a time, on any aspect; what
/// belongs to GL (context, objects, extensions) is one for all aspects. Fields are edited on the
/// application's aspect.
///
/// The context is current only within `render`, unless the caller has made it current with `activate` ahead.
class OSG_SYSTEMLIB_DLLMAPPING Window : public WindowBase
{
  public:
    typedef WindowBase Inherited;
    /// The name without the namespace.
    typedef osg::GLExtensionFunction GLExtensionFunction;
    typedef osg::GLObjectFunctor GLObjectFunctor;

    /// The status that a GL object's functor is called with.
    enum GLObjectStatusE
    {
        notused = GLObjectNotUsed,
        initialize = GLObjectInitialize,
        reinitialize = GLObjectReinitialize,
        initialized = GLObjectInitialized,
        needrefresh = GLObjectNeedRefresh,
        destroy = GLObjectDestroy,
        finaldestroy = GLObjectFinalDestroy
    };
    enum
    {
        statusShift = 3,
        statusMask = 7
    };

    /// What is registered for nothing.
    static constexpr UInt32 invalidExtensionID = GLExtensionTable::InvalidId;
    static constexpr UInt32 invalidFunctionID = GLExtensionTable::InvalidId;

    // Life. Operations that need the context say so.

    /// Makes the context. The size must be set. Leaves the calling thread without a current context.
    virtual void init() = 0;
    /// Makes the context current on the calling thread. False, with one line logged, if it can't be.
    virtual bool activate() = 0;
    /// The preparing call: makes the context current where it isn't, and the extensions ready. May be called
    /// at any time and again within a frame. Never to be relied on for the size: that is looked at here once
    /// a frame.
    virtual void frameInit();
    /// Frees what has been asked to be destroyed. The context must be current.
    virtual void frameExit();
    /// Leaves the calling thread without the context.
    virtual bool deactivate() = 0;
    /// Whether the context is current on the calling thread.
    virtual bool isActive() = 0;
    /// Shows the frame. The context must be current.
    virtual bool swap() = 0;

    /// A whole frame: activate, frameInit, renderAllViewports, swap, frameExit. Nothing is drawn without a
    /// context or without an action. Leaves the context current if it was so before.
    virtual void render(RenderActionBase *action);
    /// The viewports in their order.
    virtual void renderAllViewports(RenderActionBase *action);
    /// The same with the action that does not sort.
    virtual void draw(DrawAction *action);
    /// The viewports in their order.
    virtual void drawAllViewports(DrawAction *action);

    /// Sets the size in pixels, each 1 to 65535, within an edit or without. The framebuffer follows at the
    /// next frame.
    virtual void resize(int width, int height);

    /// Whether the size changed since the last frame.
    bool isResizePending() const { return getResizePending(); }

    // Viewports. The list may also be written directly; its order is the order of drawing.

    /// Appends a viewport, which is drawn behind those that are there.
    void addPort(const ViewportPtr &port);
    /// Puts `port` ahead of `before`, or at the end where that is not in the list.
    void insertPort(const ViewportPtr &before, const ViewportPtr &port);
    /// Puts `port` in the place of `old`.
    void replacePort(const ViewportPtr &old, const ViewportPtr &port);
    /// Takes a viewport away.
    void subPort(const ViewportPtr &port);
    void subPort(UInt32 index);

    // GL objects. See GLObjectTable for what the static operations promise.

    /// Ids for num GL objects, made and ended by the functor and the destroyer; then what has to happen to
    /// them.
    static UInt32 registerGLObject(const GLObjectFunctor &functor, UInt32 num,
                                   GLObjectDestroyF destroyer = nullptr);
    static void refreshGLObject(UInt32 id, UInt32 num = 1);
    static void reinitializeGLObject(UInt32 id, UInt32 num = 1);
    static void destroyGLObject(UInt32 id, UInt32 num);

    /// Makes this window's object of that id ready. The context must be current. Ids that are not registered
    /// are passed over.
    void validateGLObject(UInt32 id);
    /// The name that GL knows the object by in this window, 0 if none was set.
    UInt32 getGLObjectId(UInt32 osgId) const;
    void setGLObjectId(UInt32 osgId, UInt32 glId);

    /// An id and what is to happen to its object, in one number, and back.
    static UInt32 packIdStatus(UInt32 id, GLObjectStatusE status)
    {
        return (id << statusShift) | UInt32(status);
    }
    static void unPackIdStatus(UInt32 idstatus, UInt32 &id, GLObjectStatusE &status)
    {
        id = idstatus >> statusShift;
        status = GLObjectStatusE(idstatus & statusMask);
    }

    // Extensions. See GLExtensionTable for the rules. Queries before the first frame find nothing.

    /// Registers by name, for all windows; the same name gives the same id.
    static UInt32 registerExtension(const Char8 *name);
    /// Registers a function that comes with an extension or with a version of GL.
    static UInt32 registerFunction(const Char8 *name, UInt32 extension = invalidExtensionID,
                                   UInt32 version = GLExtensionTable::NoVersion);
    /// Whether the window's context has the extension.
    bool hasExtension(UInt32 id);
    /// The function in the window's context; null where it has none.
    GLExtensionFunction getFunction(UInt32 id);
    /// 0x0405 for GL 4.5, 0 before the first frame.
    UInt32 getGLVersion() const;

    /// For tests: the extension counts as absent in all windows until unmaskAll.
    static void maskExtension(const Char8 *name);
    /// Ends all masking.
    static void unmaskAll();

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    Window();
    Window(const Window &source);
    ~Window() override;

    void onCreate(const Window *source = nullptr);
    void onDestroy() override;

    /// The context's function of that name, or null.
    virtual GLExtensionFunction getFunctionByName(const Char8 *name) = 0;
    /// What GL_EXTENSIONS holds, names separated by spaces, and GL_VERSION. The context is current.
    virtual std::string getExtensionString();
    virtual std::string getVersionString();
    /// Gives the framebuffer the size of the fields; called with the context current, in the first frameInit
    /// behind a change.
    virtual void resizeGL();
    /// Puts a new context into the state that chunks come back to.
    virtual void setupGL();

  private:
    friend class FieldContainer;
    friend class WindowBase;

    struct Content; ///< one for the copies of all aspects

    static void initMethod();

    Content *_content = nullptr;
    HeldReferences<ViewportPtr> _heldPorts;
};

OSG_END_NAMESPACE

#endif
