#ifndef TESTS_APPS_TESSALY_VIEW_VIEWERPROCESS_H
#define TESTS_APPS_TESSALY_VIEW_VIEWERPROCESS_H

/// \file
/// The program in its window, and a person in front of it.

#include "Options.h"
#include "Program.h"

#include "support/RgbaImage.h"
#include "support/XInput.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

namespace program
{

/// Starts the program in the test's folder, and works its window. Waiting ends after half a minute, as a
/// failure of the test.
class WindowTest : public ProgramTest
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Runs the program, and waits for its window and for its first picture. The state is saved at its end.
    void start(std::vector<std::string> arguments, const std::string &title);
    /// Ends the program by Q, and gives the options that it saved.
    viewer::Options quit();
    /// Waits for the end of the program; its exit status.
    int wait();

    /// Waits for something that has to come.
    void until(const char *what, const std::function<bool()> &reached);
    /// What the window shows once it has not changed for a while.
    test::RgbaImage atRest();
    test::RgbaImage now() { return person->screenshot(window); }
    /// Drags with a button from one place to another, in steps.
    void drag(int button, int fromX, int fromY, int toX, int toY);
    void click(int x, int y, int button = 1);
    void key(const char *name);

    static constexpr int width = 640;
    static constexpr int height = 480;

    std::unique_ptr<test::XInput> person;
    test::XInput::WindowId window = 0;
    pid_t process = -1;
};

} // namespace program

#endif
