#ifndef _OSGGLFWWINDOW_H_
#define _OSGGLFWWINDOW_H_

/// \file
/// A window on the desktop.

#include <string>

#include "OSGGLFWWindowBase.h"
#include "OSGGLFWWindowListener.h"

/// GLFW's window, for hosts that include GLFW's header themselves.
struct GLFWwindow;

OSG_BEGIN_NAMESPACE

struct GLFWWindowContent;

/// Set the size, call init; then render and pollEvents in turn until shouldClose. The framebuffer has 8 bits
/// each of red, green, blue and alpha, 24 of depth and 8 of stencil, one sample, and two buffers; the context
/// is a compatibility context of GL 2.1 or above. Windows share no GL objects.
///
/// Everything here is for the main thread, the one that called osgInit, except for what Window::render needs
/// (activate, isActive, swap, deactivate) and what says otherwise: another thread, on an aspect of its own,
/// may draw. A window should go on the main thread; one that loses its last reference elsewhere, or within
/// a listener's operation, is closed by the next pollEvents or waitEvents. Its context must not be current on
/// another thread by then. As GL's libraries tell them apart, a thread on which an EGLWindow is active must
/// deactivate that first.
///
/// GLFW is started with the first window that opens and ended with the last; between the two a host may use
/// it with the handle. GLFW's user pointer of the window belongs to this class, and so do its callbacks: a
/// host that sets one of its own calls the one it found there. What GLFW complains about goes to the log, one
/// warning each.
class OSG_WINDOWGLFW_DLLMAPPING GLFWWindow : public GLFWWindowBase
{
  public:
    typedef GLFWWindowBase Inherited;

    /// The keys, with GLFW's numbers.
    enum Key
    {
        KeyUnknown = -1, KeySpace = 32, KeyApostrophe = 39, KeyComma = 44, KeyMinus = 45, KeyPeriod = 46,
        KeySlash = 47, Key0 = 48, Key1 = 49, Key2 = 50, Key3 = 51, Key4 = 52, Key5 = 53, Key6 = 54,
        Key7 = 55, Key8 = 56, Key9 = 57, KeySemicolon = 59, KeyEqual = 61, KeyA = 65, KeyB = 66, KeyC = 67,
        KeyD = 68, KeyE = 69, KeyF = 70, KeyG = 71, KeyH = 72, KeyI = 73, KeyJ = 74, KeyK = 75, KeyL = 76,
        KeyM = 77, KeyN = 78, KeyO = 79, KeyP = 80, KeyQ = 81, KeyR = 82, KeyS = 83, KeyT = 84, KeyU = 85,
        KeyV = 86, KeyW = 87, KeyX = 88, KeyY = 89, KeyZ = 90, KeyLeftBracket = 91, KeyBackslash = 92,
        KeyRightBracket = 93, KeyGraveAccent = 96, KeyWorld1 = 161, KeyWorld2 = 162, KeyEscape = 256,
        KeyEnter = 257, KeyTab = 258, KeyBackspace = 259, KeyInsert = 260, KeyDelete = 261, KeyRight = 262,
        KeyLeft = 263, KeyDown = 264, KeyUp = 265, KeyPageUp = 266, KeyPageDown = 267, KeyHome = 268,
        KeyEnd = 269, KeyCapsLock = 280, KeyScrollLock = 281, KeyNumLock = 282, KeyPrintScreen = 283,
        KeyPause = 284, KeyF1 = 290, KeyF2 = 291, KeyF3 = 292, KeyF4 = 293, KeyF5 = 294, KeyF6 = 295,
        KeyF7 = 296, KeyF8 = 297, KeyF9 = 298, KeyF10 = 299, KeyF11 = 300, KeyF12 = 301, KeyF13 = 302,
        KeyF14 = 303, KeyF15 = 304, KeyF16 = 305, KeyF17 = 306, KeyF18 = 307, KeyF19 = 308, KeyF20 = 309,
        KeyF21 = 310, KeyF22 = 311, KeyF23 = 312, KeyF24 = 313, KeyF25 = 314, KeyPad0 = 320, KeyPad1 = 321,
        KeyPad2 = 322, KeyPad3 = 323, KeyPad4 = 324, KeyPad5 = 325, KeyPad6 = 326, KeyPad7 = 327,
        KeyPad8 = 328, KeyPad9 = 329, KeyPadDecimal = 330, KeyPadDivide = 331, KeyPadMultiply = 332,
        KeyPadSubtract = 333, KeyPadAdd = 334, KeyPadEnter = 335, KeyPadEqual = 336, KeyLeftShift = 340,
        KeyLeftControl = 341, KeyLeftAlt = 342, KeyLeftSuper = 343, KeyRightShift = 344,
        KeyRightControl = 345, KeyRightAlt = 346, KeyRightSuper = 347, KeyMenu = 348
    };

    /// The buttons of a mouse, with GLFW's numbers; further ones follow.
    enum Button
    {
        ButtonLeft = 0,
        ButtonRight = 1,
        ButtonMiddle = 2
    };

    /// What is held or locked while a key or a button is used, as a set of bits.
    enum Modifier
    {
        ModifierShift = 0x01,
        ModifierControl = 0x02,
        ModifierAlt = 0x04,
        ModifierSuper = 0x08
    };

    /// Opens the window with the size of the fields. If that can't be, one fatal line says why, in GLFW's
    /// words, and the window draws nothing; init may be called again. A window that is open stays as it is.
    void init() override;
    /// False, with a warning, while another thread has the context, or while an EGL context is current on
    /// this one.
    bool activate() override;
    bool deactivate() override;
    bool isActive() override;
    bool swap() override;

    /// As Window's, except that a minimised window draws nothing.
    void render(RenderActionBase *action) override;
    void draw(DrawAction *action) override;

    /// Whether init has opened the window. Any thread.
    bool isOpen() const;
    /// Whether the window is minimised. Any thread.
    bool isMinimised() const;

    /// The text in the window's frame, UTF-8; "" at first. May be set ahead of init.
    void setTitle(const std::string &title);
    std::string getTitle() const;

    /// How many refreshes of the screen swap waits for, 0 or more; 1 at first. Takes effect with the next
    /// swap. Any thread.
    void setSwapInterval(Int32 interval);
    Int32 getSwapInterval() const;

    /// Whether the window has been asked to close; nothing else comes of it. False while not open. Any
    /// thread.
    bool shouldClose() const;
    void setShouldClose(bool close);

    /// Who is told what a person does. Not owned; null for nobody.
    void setListener(GLFWWindowListener *listener);
    GLFWWindowListener *getListener() const;

    /// GLFW's window; null while not open.
    ::GLFWwindow *getHandle() const;

    /// Works off what has happened to all windows and tells their listeners. The sizes of the windows and
    /// their fields are brought together. Returns at once; does nothing without an open window.
    static void pollEvents();
    /// The same, but waits up to so many seconds for something to happen, without an end where negative.
    static void waitEvents(Real64 seconds);
    /// Has waitEvents return. Any thread.
    static void postEmptyEvent();

    /// A change of width or height on the main thread, as by Window::resize, resizes the open window here; a
    /// change made on another thread does so in the next pollEvents or waitEvents.
    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    GLFWWindow();
    GLFWWindow(const GLFWWindow &source);
    ~GLFWWindow() override;

    void onCreate(const GLFWWindow *source = nullptr);
    void onDestroy() override;

    GLExtensionFunction getFunctionByName(const Char8 *name) override;

  private:
    friend class FieldContainer;
    friend class GLFWWindowBase;
    friend struct GLFWWindowContent;

    static void initMethod();

    GLFWWindowContent *_content = nullptr; ///< one for the copies of all aspects
};

OSG_END_NAMESPACE

#endif
