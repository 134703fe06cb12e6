/// \file
/// The program in its window, and a person in front of it.

#include "ViewerProcess.h"

#include "support/XServer.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <sstream>
#include <thread>

#include <X11/Xlib.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace program
{

namespace
{

const ::testing::Environment *const server =
    ::testing::AddGlobalTestEnvironment(new test::XServerEnvironment);

constexpr std::chrono::seconds patience(30);
/// Longer than a picture counts as moving.
constexpr std::chrono::milliseconds rest(600);
/// What waiting for events costs in that time, in clock ticks.
constexpr long idleTicks = 1;
constexpr std::chrono::milliseconds breath(30);

/// The processor time of all threads of a process so far, in clock ticks.
long ticksOf(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string text;
    std::getline(file, text);
    // Behind the name, which may hold anything, the state is field 3, and the times are fields 14 and 15.
    std::istringstream fields(text.substr(text.rfind(')') + 1));
    std::string skipped;
    long user = 0;
    long system = 0;
    for (int field = 3; field < 14; ++field)
    {
        fields >> skipped;
    }
    fields >> user >> system;
    return user + system;
}

} // namespace

void WindowTest::SetUp()
{
    ProgramTest::SetUp();
    ASSERT_NE(server, nullptr);
    person = std::make_unique<test::XInput>();
    ASSERT_TRUE(person->isOpen());
}

void WindowTest::TearDown()
{
    if (process > 0)
    {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    person.reset();
    ProgramTest::TearDown();
}

void WindowTest::start(std::vector<std::string> arguments, const std::string &title)
{
    arguments.insert(arguments.begin(), "tessaly-view");
    arguments.insert(arguments.end(), {"--size", std::to_string(width) + "," + std::to_string(height),
                                       "--save-state", "end.ini"});
    std::vector<char *> words;
    for (std::string &argument : arguments)
    {
        words.push_back(argument.data());
    }
    words.push_back(nullptr);
    process = fork();
    ASSERT_GE(process, 0);
    if (process == 0)
    {
        const int log = open(path(".err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (chdir(folder.c_str()) != 0 || log < 0)
        {
            _exit(126);
        }
        dup2(log, STDERR_FILENO);
        dup2(log, STDOUT_FILENO);
        execv(TESSALY_VIEW, words.data());
        _exit(127);
    }
    window = person->findWindow(title, 30);
    ASSERT_NE(window, 0u) << "no window with that title came";
    person->focus(window);
    // Away from the panel, so that nothing is lit up by the mouse.
    person->moveTo(window, width - 5, height - 5);
    until("the first picture",
          [&]
          {
              const test::RgbaImage image = now();
              return image.width == width && image.at(width - 2, 2)[2] != 0;
          });
    atRest();
}

viewer::Options WindowTest::quit()
{
    key("q");
    EXPECT_EQ(wait(), 0);
    const std::string state = path("end.ini");
    const char *const arguments[] = {"tessaly-view", "--load-state", state.c_str()};
    const viewer::CommandLine line = viewer::parseCommandLine(3, arguments);
    EXPECT_TRUE(line.run) << line.text;
    return line.options;
}

int WindowTest::wait()
{
    int status = -1;
    until("the end of the program", [&] { return waitpid(process, &status, WNOHANG) == process; });
    process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void WindowTest::until(const char *what, const std::function<bool()> &reached)
{
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!reached())
    {
        ASSERT_LT(std::chrono::steady_clock::now(), end) << "waited for " << what;
        std::this_thread::sleep_for(breath);
    }
}

test::RgbaImage WindowTest::atRest()
{
    test::RgbaImage last = now();
    long ticks = ticksOf(process);
    auto since = std::chrono::steady_clock::now();
    until("a picture at rest",
          [&]
          {
              // A slow frame shows nothing new for a while, but it works.
              test::RgbaImage next = now();
              if (next.bytes != last.bytes || ticksOf(process) > ticks + idleTicks)
              {
                  last = std::move(next);
                  ticks = ticksOf(process);
                  since = std::chrono::steady_clock::now();
              }
              return std::chrono::steady_clock::now() - since > rest;
          });
    return last;
}

void WindowTest::drag(int button, int fromX, int fromY, int toX, int toY)
{
    constexpr int steps = 8;
    person->moveTo(window, fromX, fromY);
    std::this_thread::sleep_for(4 * breath);
    person->press(button);
    for (int i = 1; i <= steps; ++i)
    {
        std::this_thread::sleep_for(breath);
        person->moveTo(window, fromX + (toX - fromX) * i / steps, fromY + (toY - fromY) * i / steps);
    }
    std::this_thread::sleep_for(4 * breath);
    person->release(button);
}

void WindowTest::click(int x, int y, int button)
{
    person->moveTo(window, x, y);
    std::this_thread::sleep_for(8 * breath);
    person->press(button);
    std::this_thread::sleep_for(8 * breath);
    person->release(button);
    std::this_thread::sleep_for(4 * breath);
}

void WindowTest::key(const char *name)
{
    person->tapKey(XStringToKeysym(name));
}

} // namespace program
