/// \file
/// A person at an X display, by XTest and by the messages of window managers and file managers.

#include "support/XInput.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <thread>

namespace test
{

namespace
{

using Clock = std::chrono::steady_clock;

Clock::time_point after(double seconds)
{
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

void shortWait()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
}

// Xlib has one handler of errors for the process; errors of other connections go where they went before.
Display *watched = nullptr;
int errorCount = 0;
XErrorHandler handlerBefore = nullptr;

int onError(Display *display, XErrorEvent *event)
{
    if (display == watched)
    {
        ++errorCount;
        return 0;
    }
    return handlerBefore != nullptr ? handlerBefore(display, event) : 0;
}

/// The code points of UTF-8 that is well formed.
std::vector<std::uint32_t> codePoints(const std::string &text)
{
    std::vector<std::uint32_t> points;
    for (const char letter : text)
    {
        const std::uint32_t byte = static_cast<unsigned char>(letter);
        if ((byte & 0xC0u) == 0x80u && !points.empty())
        {
            points.back() = (points.back() << 6) | (byte & 0x3Fu);
        }
        else
        {
            points.push_back(byte < 0x80u   ? byte
                             : byte < 0xE0u ? byte & 0x1Fu
                             : byte < 0xF0u ? byte & 0x0Fu
                                            : byte & 0x07u);
        }
    }
    return points;
}

int lowestBit(unsigned long mask)
{
    int bit = 0;
    while (mask != 0 && (mask & 1ul) == 0)
    {
        mask >>= 1;
        ++bit;
    }
    return bit;
}

} // namespace

std::string fileUri(const std::string &path)
{
    std::string uri = "file://";
    for (const char letter : path)
    {
        const bool plain = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
                           (letter >= '0' && letter <= '9') ||
                           std::string("-._~/").find(letter) != std::string::npos;
        if (plain)
        {
            uri += letter;
        }
        else
        {
            char code[4];
            std::snprintf(code, sizeof(code), "%%%02X", static_cast<unsigned int>(
                                                             static_cast<unsigned char>(letter)));
            uri += code;
        }
    }
    return uri;
}

XInput::XInput(const std::string &display)
{
    _display = XOpenDisplay(display.empty() ? nullptr : display.c_str());
    if (_display == nullptr)
    {
        return;
    }
    int event = 0, error = 0, major = 0, minor = 0;
    if (!XTestQueryExtension(_display, &event, &error, &major, &minor))
    {
        XCloseDisplay(_display);
        _display = nullptr;
        return;
    }
    watched = _display;
    errorCount = 0;
    handlerBefore = XSetErrorHandler(&onError);
}

XInput::~XInput()
{
    if (_display == nullptr)
    {
        return;
    }
    XSync(_display, False);
    XSetErrorHandler(handlerBefore);
    watched = nullptr;
    XCloseDisplay(_display);
}

int XInput::getErrors() const
{
    XSync(_display, False);
    return errorCount;
}

unsigned long XInput::atom(const char *name)
{
    return XInternAtom(_display, name, False);
}

std::string XInput::titleOf(WindowId window)
{
    Atom type = None;
    int format = 0;
    unsigned long count = 0, rest = 0;
    unsigned char *data = nullptr;
    std::string title;
    if (XGetWindowProperty(_display, window, atom("_NET_WM_NAME"), 0, 1024, False, atom("UTF8_STRING"), &type,
                           &format, &count, &rest, &data) == Success &&
        data != nullptr && format == 8)
    {
        title.assign(reinterpret_cast<const char *>(data), count);
    }
    if (data != nullptr)
    {
        XFree(data);
    }
    return title;
}

/// The first visible window with the title below a window; counts those that it has looked at.
XInput::WindowId XInput::search(WindowId below, const std::string &title, std::size_t &count)
{
    Window root = 0, parent = 0, *children = nullptr;
    unsigned int number = 0;
    if (!XQueryTree(_display, below, &root, &parent, &children, &number))
    {
        return 0;
    }
    WindowId found = 0;
    for (unsigned int i = 0; i < number && found == 0; ++i)
    {
        ++count;
        XWindowAttributes attributes;
        if (!title.empty() && XGetWindowAttributes(_display, children[i], &attributes) &&
            attributes.map_state == IsViewable && titleOf(children[i]) == title)
        {
            found = children[i];
        }
        else
        {
            found = search(children[i], title, count);
        }
    }
    if (children != nullptr)
    {
        XFree(children);
    }
    return found;
}

XInput::WindowId XInput::findWindow(const std::string &title, double seconds)
{
    const Clock::time_point limit = after(seconds);
    for (;;)
    {
        std::size_t count = 0;
        const WindowId found = search(DefaultRootWindow(_display), title, count);
        if (found != 0 || Clock::now() > limit)
        {
            return found;
        }
        shortWait();
    }
}

std::size_t XInput::countWindows()
{
    std::size_t count = 0;
    search(DefaultRootWindow(_display), "", count);
    return count;
}

bool XInput::exists(WindowId window)
{
    const int before = getErrors();
    XWindowAttributes attributes;
    const bool there = XGetWindowAttributes(_display, window, &attributes) != 0;
    XSync(_display, False);
    errorCount = before;
    return there;
}

bool XInput::waitUntilGone(WindowId window, double seconds)
{
    const Clock::time_point limit = after(seconds);
    while (exists(window))
    {
        if (Clock::now() > limit)
        {
            return false;
        }
        shortWait();
    }
    return true;
}

XInput::Size XInput::sizeOf(WindowId window)
{
    XWindowAttributes attributes;
    if (!XGetWindowAttributes(_display, window, &attributes))
    {
        return {};
    }
    return {attributes.width, attributes.height};
}

void XInput::place(WindowId window, int x, int y)
{
    XMoveWindow(_display, window, x, y);
    XRaiseWindow(_display, window);
    XSync(_display, False);
}

void XInput::focus(WindowId window)
{
    XSetInputFocus(_display, window, RevertToParent, CurrentTime);
    XSync(_display, False);
}

void XInput::resizeWindow(WindowId window, int width, int height)
{
    XResizeWindow(_display, window, static_cast<unsigned int>(width), static_cast<unsigned int>(height));
    XSync(_display, False);
}

void XInput::sendMessage(WindowId window, const char *type, const long (&data)[5])
{
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = atom(type);
    event.xclient.format = 32;
    for (int i = 0; i < 5; ++i)
    {
        event.xclient.data.l[i] = data[i];
    }
    XSendEvent(_display, window, False, NoEventMask, &event);
    XSync(_display, False);
}

void XInput::closeWindow(WindowId window)
{
    sendMessage(window, "WM_PROTOCOLS", {static_cast<long>(atom("WM_DELETE_WINDOW")), CurrentTime, 0, 0, 0});
}

void XInput::setMinimised(WindowId window, bool minimised)
{
    // As a window manager does: the window off the screen, and the state for the program to read.
    if (minimised)
    {
        XUnmapWindow(_display, window);
    }
    else
    {
        XMapWindow(_display, window);
    }
    const long state[2] = {minimised ? IconicState : NormalState, None};
    const Atom name = atom("WM_STATE");
    XChangeProperty(_display, window, name, name, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char *>(state), 2);
    XSync(_display, False);
}

void XInput::damage(WindowId window)
{
    XClearArea(_display, window, 0, 0, 0, 0, True);
    XSync(_display, False);
}

void XInput::moveTo(WindowId window, int x, int y)
{
    int screenX = 0, screenY = 0;
    Window child = 0;
    const Window root = DefaultRootWindow(_display);
    if (XTranslateCoordinates(_display, window, root, x, y, &screenX, &screenY, &child))
    {
        XTestFakeMotionEvent(_display, DefaultScreen(_display), screenX, screenY, CurrentTime);
    }
    XSync(_display, False);
}

void XInput::press(int button)
{
    XTestFakeButtonEvent(_display, static_cast<unsigned int>(button), True, CurrentTime);
    XSync(_display, False);
}

void XInput::release(int button)
{
    XTestFakeButtonEvent(_display, static_cast<unsigned int>(button), False, CurrentTime);
    XSync(_display, False);
}

void XInput::click(int button)
{
    press(button);
    release(button);
}

void XInput::wheel(int notches)
{
    for (int i = 0; i < (notches < 0 ? -notches : notches); ++i)
    {
        click(notches > 0 ? 4 : 5);
    }
}

void XInput::wheelSideways(int notches)
{
    for (int i = 0; i < (notches < 0 ? -notches : notches); ++i)
    {
        click(notches < 0 ? 6 : 7);
    }
}

/// The key that bears a symbol, and whether it does so with the shift key only; a free one gets it if none
/// does.
unsigned int XInput::keyCode(KeySymbol key, bool &shifted)
{
    shifted = false;
    int lowest = 0, highest = 0;
    XDisplayKeycodes(_display, &lowest, &highest);
    for (const unsigned int level : {0u, 1u})
    {
        for (int code = lowest; code <= highest; ++code)
        {
            if (XkbKeycodeToKeysym(_display, static_cast<KeyCode>(code), 0, level) == key)
            {
                shifted = level == 1;
                return static_cast<unsigned int>(code);
            }
        }
    }
    for (int code = highest; code >= lowest; --code)
    {
        if (XkbKeycodeToKeysym(_display, static_cast<KeyCode>(code), 0, 0) == NoSymbol)
        {
            KeySym both[2] = {key, key};
            XChangeKeyboardMapping(_display, code, 2, both, 1);
            XSync(_display, False);
            return static_cast<unsigned int>(code);
        }
    }
    return 0;
}

void XInput::pressKey(KeySymbol key)
{
    bool shifted = false;
    XTestFakeKeyEvent(_display, keyCode(key, shifted), True, CurrentTime);
    XSync(_display, False);
}

void XInput::releaseKey(KeySymbol key)
{
    bool shifted = false;
    XTestFakeKeyEvent(_display, keyCode(key, shifted), False, CurrentTime);
    XSync(_display, False);
}

void XInput::tapKey(KeySymbol key)
{
    pressKey(key);
    releaseKey(key);
}

void XInput::typeText(const std::string &text)
{
    for (const std::uint32_t point : codePoints(text))
    {
        // Latin-1 has symbols of its own numbers; beyond it they carry a mark.
        const KeySymbol key = point == '\n' ? XK_Return : point < 0x100u ? point : 0x01000000u | point;
        bool shifted = false;
        const unsigned int code = keyCode(key, shifted);
        if (shifted)
        {
            pressKey(XK_Shift_L);
        }
        XTestFakeKeyEvent(_display, code, True, CurrentTime);
        XTestFakeKeyEvent(_display, code, False, CurrentTime);
        if (shifted)
        {
            releaseKey(XK_Shift_L);
        }
        XSync(_display, False);
    }
}

bool XInput::dropFiles(WindowId window, const std::vector<std::string> &files, int x, int y,
                       const Meanwhile &meanwhile, double seconds)
{
    std::string list;
    for (const std::string &file : files)
    {
        list += fileUri(file) + "\r\n";
    }
    int screenX = 0, screenY = 0;
    Window child = 0;
    const Window root = DefaultRootWindow(_display);
    if (!XTranslateCoordinates(_display, window, root, x, y, &screenX, &screenY, &child))
    {
        return false;
    }
    const Window source = XCreateSimpleWindow(_display, root, 0, 0, 1, 1, 0, 0, 0);
    XSetSelectionOwner(_display, atom("XdndSelection"), source, CurrentTime);

    const long self = static_cast<long>(source);
    const long type = static_cast<long>(atom("text/uri-list"));
    const long place = (static_cast<long>(screenX) << 16) | screenY;
    sendMessage(window, "XdndEnter", {self, 5l << 24, type, None, None});
    sendMessage(window, "XdndPosition",
                {self, 0, place, CurrentTime, static_cast<long>(atom("XdndActionCopy"))});

    // The window says whether it would take the files, gets the drop, asks for the list and says that it is
    // through.
    bool taken = false, ended = false;
    const Clock::time_point limit = after(seconds);
    while (!ended && Clock::now() < limit)
    {
        if (meanwhile)
        {
            meanwhile();
        }
        if (XPending(_display) == 0)
        {
            shortWait();
            continue;
        }
        XEvent event;
        XNextEvent(_display, &event);
        if (event.type == ClientMessage && event.xclient.message_type == atom("XdndStatus"))
        {
            if ((event.xclient.data.l[1] & 1) == 0)
            {
                sendMessage(window, "XdndLeave", {self, 0, 0, 0, 0});
                ended = true;
            }
            else
            {
                sendMessage(window, "XdndDrop", {self, 0, CurrentTime, 0, 0});
            }
        }
        else if (event.type == ClientMessage && event.xclient.message_type == atom("XdndFinished"))
        {
            // The lowest bit says so; GLFW 3.3 gives the number of bytes that it took instead.
            taken = event.xclient.data.l[1] != 0;
            ended = true;
        }
        else if (event.type == SelectionRequest)
        {
            const XSelectionRequestEvent &request = event.xselectionrequest;
            XEvent answer = {};
            answer.xselection.type = SelectionNotify;
            answer.xselection.requestor = request.requestor;
            answer.xselection.selection = request.selection;
            answer.xselection.target = request.target;
            answer.xselection.time = request.time;
            if (request.target == static_cast<Atom>(type))
            {
                XChangeProperty(_display, request.requestor, request.property, request.target, 8,
                                PropModeReplace, reinterpret_cast<const unsigned char *>(list.data()),
                                static_cast<int>(list.size()));
                answer.xselection.property = request.property;
            }
            XSendEvent(_display, request.requestor, False, NoEventMask, &answer);
            XSync(_display, False);
        }
    }
    XDestroyWindow(_display, source);
    XSync(_display, False);
    return taken;
}

RgbaImage XInput::screenshot(WindowId window)
{
    const Size size = sizeOf(window);
    if (size.width < 1 || size.height < 1)
    {
        return {};
    }
    XImage *const image = XGetImage(_display, window, 0, 0, static_cast<unsigned int>(size.width),
                                    static_cast<unsigned int>(size.height), AllPlanes, ZPixmap);
    if (image == nullptr)
    {
        return {};
    }
    RgbaImage picture(size.width, size.height);
    const auto channel = [](unsigned long pixel, unsigned long mask)
    { return static_cast<std::uint8_t>((pixel & mask) >> lowestBit(mask)); };
    for (int y = 0; y < size.height; ++y)
    {
        for (int x = 0; x < size.width; ++x)
        {
            const unsigned long pixel = XGetPixel(image, x, y);
            picture.set(x, size.height - 1 - y,
                        {channel(pixel, image->red_mask), channel(pixel, image->green_mask),
                         channel(pixel, image->blue_mask), 255});
        }
    }
    XDestroyImage(image);
    return picture;
}

} // namespace test
