#ifndef TESTS_SUPPORT_XINPUT_H
#define TESTS_SUPPORT_XINPUT_H

/// \file
/// A person at an X display: mouse, keys, window frame, files dropped, and eyes.

#include "support/RgbaImage.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

struct _XDisplay;

namespace test
{

/// Works on the windows of any process at the display, through a connection of its own. Mouse and keys go
/// through the server as a device's do: to the window under the pointer, and to the one that has the focus.
/// Without a window manager, windows open at the upper left corner, one above the other, so a test of several
/// places them apart.
///
/// Positions are in pixels of the window named, (0, 0) its upper left corner. All operations return when the
/// server has done its part; the window's process gets to know when it next looks. An operation on a window
/// that does not exist is without effect and noted by getErrors. One thread at a time. A test's process has
/// one object at a time.
class XInput
{
public:
    using WindowId = unsigned long;
    /// As in X11/keysym.h.
    using KeySymbol = unsigned long;

    /// Called again and again while an operation waits for the window's process, for the case that this is
    /// the calling one.
    using Meanwhile = std::function<void()>;

    struct Size
    {
        int width = 0;
        int height = 0;
    };

    /// Connects to `display`, or to what DISPLAY names where empty.
    explicit XInput(const std::string &display = "");
    XInput(const XInput &) = delete;
    XInput &operator=(const XInput &) = delete;
    ~XInput();

    /// Whether the display answers and has XTest; nothing else may be called otherwise.
    bool isOpen() const { return _display != nullptr; }
    /// Errors of the server to this connection so far.
    int getErrors() const;

    // Windows.

    /// The visible window with that title, waited for so many seconds; 0 if none comes.
    WindowId findWindow(const std::string &title, double seconds = 10);
    bool exists(WindowId window);
    /// Waits until the window does not exist any more; false if it still does after so many seconds.
    bool waitUntilGone(WindowId window, double seconds = 10);
    /// How many windows there are at the display, of all processes, at all depths.
    std::size_t countWindows();
    Size sizeOf(WindowId window);
    std::string titleOf(WindowId window);
    /// Puts the window's upper left corner there on the screen, above all others.
    void place(WindowId window, int x, int y);
    /// Keys go to the window from now on.
    void focus(WindowId window);
    void resizeWindow(WindowId window, int width, int height);
    /// What a frame's close button does: asks the program.
    void closeWindow(WindowId window);
    /// What a frame's minimise button does.
    void setMinimised(WindowId window, bool minimised);
    /// Has the server clear the window and say that its content is gone.
    void damage(WindowId window);

    // The mouse. Buttons: 1 left, 2 middle, 3 right.

    void moveTo(WindowId window, int x, int y);
    void press(int button = 1);
    void release(int button = 1);
    void click(int button = 1);
    /// So many notches; away from the person where positive.
    void wheel(int notches);
    /// So many notches; to the right where positive.
    void wheelSideways(int notches);

    // The keyboard.

    void pressKey(KeySymbol key);
    void releaseKey(KeySymbol key);
    void tapKey(KeySymbol key);
    /// UTF-8; characters that the keyboard lacks are put on free keys first.
    void typeText(const std::string &text);

    /// Drops files, absolute paths in UTF-8, on the window as a file manager does. False if the window does
    /// not take them, or does not answer within the seconds.
    bool dropFiles(WindowId window, const std::vector<std::string> &files, int x, int y,
                   const Meanwhile &meanwhile = Meanwhile(), double seconds = 10);

    /// What the window shows, alpha 255; an empty picture if it can't be had. What lies outside of the screen
    /// or under other windows is not the window's own.
    RgbaImage screenshot(WindowId window);

private:
    unsigned long atom(const char *name);
    WindowId search(WindowId below, const std::string &title, std::size_t &count);
    void sendMessage(WindowId window, const char *type, const long (&data)[5]);
    unsigned int keyCode(KeySymbol key, bool &shifted);

    _XDisplay *_display = nullptr;
};

/// "file://" and the path, with all but letters, digits and "-._~/" written as %XX.
std::string fileUri(const std::string &path);

} // namespace test

#endif
