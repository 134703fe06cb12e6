/// \file
/// Opening windows on a display, drawing in them, and closing them.

#include "GLFWStage.h"

#include "support/ReadBack.h"

#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGThread.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

namespace
{

using namespace osg;
using test::pollUntil;
using Pixel = test::RgbaImage::Pixel;

class GLFWWindowTest : public test::GLFWStage
{
};

std::size_t openFiles()
{
    std::size_t count = 0;
    for([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}

TEST_F(GLFWWindowTest, IsMadeByNameAndIsAWindow)
{
    const FieldContainerPtr made = FieldContainerFactory::the()->createFieldContainer("GLFWWindow");
    ASSERT_NE(made, NullFC);
    addRefCP(made);
    const GLFWWindowPtr window = GLFWWindowPtr::dcast(made);
    ASSERT_NE(window, NullFC);
    EXPECT_EQ(&made->getType(), &GLFWWindow::getClassType());
    EXPECT_STREQ(GLFWWindow::getClassType().getCName(), "GLFWWindow");
    EXPECT_EQ(GLFWWindow::getClassType().getParent(), &Window::getClassType());
    EXPECT_EQ(GLFWWindow::getClassType().getNumFieldDescs(), Window::getClassType().getNumFieldDescs());
    EXPECT_FALSE(window->isOpen());
    EXPECT_EQ(window->getHandle(), nullptr);
    EXPECT_EQ(window->getTitle(), "");
    EXPECT_EQ(window->getListener(), nullptr);
    EXPECT_EQ(window->getSwapInterval(), 1);
    subRefCP(made);
}

TEST_F(GLFWWindowTest, DoesNothingBeforeItIsOpen)
{
    const osg::LogCapture log;
    const GLFWWindowPtr window = GLFWWindow::create();
    addRefCP(window);
    EXPECT_FALSE(window->activate());
    EXPECT_FALSE(window->deactivate());
    EXPECT_FALSE(window->isActive());
    EXPECT_FALSE(window->swap());
    EXPECT_FALSE(window->shouldClose());
    EXPECT_FALSE(window->isMinimised());
    window->setShouldClose(true);
    EXPECT_FALSE(window->shouldClose());
    window->render(action.get());
    GLFWWindow::pollEvents();
    GLFWWindow::waitEvents(100);
    GLFWWindow::postEmptyEvent();
    subRefCP(window);
    EXPECT_EQ(log.count(LOG_WARNING) + log.count(LOG_FATAL), 0u) << log.text();
}

TEST_F(GLFWWindowTest, OpensWithTheSizeTitleAndFramebufferThatItPromises)
{
    const GLFWWindowPtr window = openWindow(320, 200, "Kr\xC3\xBCge \xE2\x82\xAC");
    EXPECT_EQ(window->getWidth(), 320);
    EXPECT_EQ(window->getHeight(), 200);
    EXPECT_NE(window->getHandle(), nullptr);
    const test::XInput::WindowId id = idOf(window);
    ASSERT_NE(id, 0u) << "found by its title, umlaut and all";
    EXPECT_EQ(person->sizeOf(id).width, 320);
    EXPECT_EQ(person->sizeOf(id).height, 200);
    window->setTitle("plain");
    EXPECT_EQ(window->getTitle(), "plain");
    EXPECT_EQ(person->findWindow("plain"), id);

    EXPECT_FALSE(window->isActive()) << "init leaves the thread without a context";
    ASSERT_TRUE(window->activate());
    EXPECT_TRUE(window->isActive());
    GLint bits = 0;
    for(const GLenum name : {GL_RED_BITS, GL_GREEN_BITS, GL_BLUE_BITS, GL_ALPHA_BITS, GL_STENCIL_BITS})
    {
        glGetIntegerv(name, &bits);
        EXPECT_EQ(bits, 8) << name;
    }
    glGetIntegerv(GL_DEPTH_BITS, &bits);
    EXPECT_EQ(bits, 24);
    glGetIntegerv(GL_SAMPLES, &bits);
    EXPECT_LE(bits, 1);
    // A compatibility context still has what core contexts lack.
    glBegin(GL_POINTS);
    glEnd();
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    window->frameInit();
    EXPECT_GE(window->getGLVersion(), 0x0201u);
    EXPECT_TRUE(window->deactivate());
    EXPECT_FALSE(window->isActive());
    subRefCP(window);
    EXPECT_TRUE(person->waitUntilGone(id));
}

TEST_F(GLFWWindowTest, ShowsTheVeryPixelsThatTheWindowWithoutADisplayHas)
{
    const EGLWindowPtr hidden = EGLWindow::create();
    addRefCP(hidden);
    hidden->resize(240, 180);
    hidden->init();
    test::addSphereView(hidden);
    ASSERT_TRUE(hidden->activate());
    hidden->render(action.get());
    const test::RgbaImage expected = test::readPixels(0, 0, 240, 180);
    hidden->deactivate();

    const GLFWWindowPtr window = openWindow(240, 180, "sphere");
    test::addSphereView(window);
    window->render(action.get());
    EXPECT_FALSE(window->isActive());
    test::RgbaImage seen;
    pollUntil([&] {
        seen = person->screenshot(idOf(window));
        return seen.bytes == expected.bytes;
    });
    EXPECT_TRUE(test::imagesMatch(seen, expected));
    // Sky at the corners, a sphere lit from the upper right in the middle.
    EXPECT_EQ(seen.at(0, 0), Pixel({51, 51, 102, 255}));
    EXPECT_GT(int(seen.at(140, 110)[0]), int(seen.at(90, 60)[0]) + 50);
    subRefCP(window);
    subRefCP(hidden);
}

TEST_F(GLFWWindowTest, TwoWindowsShowTheirOwn)
{
    const GLFWWindowPtr first = openWindow(100, 80, "first");
    const GLFWWindowPtr second = openWindow(60, 50, "second");
    person->place(idOf(second), 300, 300);
    test::addEmptyView(first, 1, 0, 0);
    test::addEmptyView(second, 0, 0, 1);
    first->render(action.get());
    second->render(action.get());
    EXPECT_TRUE(showsAll(first, {255, 0, 0, 255}));
    EXPECT_TRUE(showsAll(second, {0, 0, 255, 255}));

    // Names of GL objects are each window's own.
    ASSERT_TRUE(first->activate());
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    EXPECT_TRUE(glIsTexture(texture));
    ASSERT_TRUE(second->activate());
    EXPECT_FALSE(first->isActive());
    EXPECT_FALSE(glIsTexture(texture));
    ASSERT_TRUE(first->activate());
    EXPECT_TRUE(glIsTexture(texture));
    first->deactivate();

    const test::XInput::WindowId id = idOf(first);
    subRefCP(first);
    EXPECT_TRUE(person->waitUntilGone(id));
    second->render(action.get());
    EXPECT_TRUE(showsAll(second, {0, 0, 255, 255})) << "one goes, the other stays";
    subRefCP(second);
}

TEST_F(GLFWWindowTest, WithoutADisplayInitSaysWhyAndWorksOnceThereIsOne)
{
    const std::string name = std::getenv("DISPLAY");
    const GLFWWindowPtr window = GLFWWindow::create();
    addRefCP(window);
    window->resize(64, 64);
    unsetenv("DISPLAY");
    {
        const osg::LogCapture log;
        window->init();
        EXPECT_EQ(log.text(LOG_FATAL), "GLFW window: X11: The DISPLAY environment variable is missing\n");
        EXPECT_EQ(log.count(), 1u) << log.text();
    }
    EXPECT_FALSE(window->isOpen());
    EXPECT_FALSE(window->activate());
    window->render(action.get());
    setenv("DISPLAY", ":987", 1);
    {
        const osg::LogCapture log;
        window->init();
        EXPECT_EQ(log.text(LOG_FATAL), "GLFW window: X11: Failed to open display :987\n");
    }
    setenv("DISPLAY", name.c_str(), 1);
    window->init();
    EXPECT_TRUE(window->isOpen());
    EXPECT_TRUE(window->activate());
    subRefCP(window);
}

TEST_F(GLFWWindowTest, RefusesASizeOfNothing)
{
    const GLFWWindowPtr window = GLFWWindow::create();
    addRefCP(window);
    const osg::LogCapture log;
    window->init();
    EXPECT_EQ(log.text(LOG_FATAL), "GLFW window: a size of 0 x 0 pixels can't be opened\n");
    EXPECT_FALSE(window->isOpen());
    subRefCP(window);
}

TEST_F(GLFWWindowTest, RefusesMorePixelsThanTheDriverDraws)
{
    const GLFWWindowPtr window = openWindow(64, 64, "limited");
    GLint limit[2] = {0, 0};
    ASSERT_TRUE(window->activate());
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, limit);
    window->deactivate();
    const std::string line = "GLFW window: a framebuffer of 65535 x 65535 pixels is more than the driver's "
                             "limit of " + std::to_string(limit[0]) + " x " + std::to_string(limit[1]) + "\n";
    {
        const osg::LogCapture log;
        window->resize(65535, 65535);
        EXPECT_EQ(log.text(LOG_WARNING), line);
        EXPECT_EQ(person->sizeOf(idOf(window)).width, 64) << "the window stays as it is";
    }
    window->resize(70, 60);
    EXPECT_TRUE(pollUntil([&] { return person->sizeOf(idOf(window)).width == 70; }));

    const GLFWWindowPtr huge = GLFWWindow::create();
    addRefCP(huge);
    huge->resize(65535, 65535);
    const osg::LogCapture log;
    huge->init();
    EXPECT_EQ(log.text(LOG_FATAL), line);
    EXPECT_FALSE(huge->isOpen());
    subRefCP(huge);
    subRefCP(window);
}

TEST_F(GLFWWindowTest, OpensOnTheMainThreadOnly)
{
    const GLFWWindowPtr window = GLFWWindow::create();
    addRefCP(window);
    window->resize(64, 64);
    const osg::LogCapture log;
    std::thread([&] { window->init(); }).join();
    EXPECT_EQ(log.text(LOG_FATAL), "GLFW window: only the main thread can open it\n");
    EXPECT_FALSE(window->isOpen());
    std::thread([&] { GLFWWindow::pollEvents(); }).join();
    EXPECT_EQ(log.text(LOG_WARNING),
              "GLFW window: events are for the main thread, outside of a listener\n");
    subRefCP(window);
}

TEST_F(GLFWWindowTest, RefusesItsContextToASecondThreadAndBesideEGL)
{
    const GLFWWindowPtr window = openWindow(64, 64, "held");
    ASSERT_TRUE(window->activate());
    const osg::LogCapture log;
    bool got = true;
    std::thread([&] { got = window->activate(); }).join();
    EXPECT_FALSE(got);
    EXPECT_EQ(log.text(LOG_WARNING), "GLFW window: the context is current on another thread\n");
    window->deactivate();
    std::thread([&] {
        got = window->activate();
        window->deactivate();
    }).join();
    EXPECT_TRUE(got);

    const EGLWindowPtr hidden = EGLWindow::create();
    addRefCP(hidden);
    hidden->resize(8, 8);
    hidden->init();
    ASSERT_TRUE(hidden->activate());
    EXPECT_FALSE(window->activate());
    EXPECT_TRUE(log.contains(LOG_WARNING, "GLFW window: an EGL context is current on the thread\n"));
    EXPECT_TRUE(hidden->isActive());
    hidden->deactivate();
    EXPECT_TRUE(window->activate());
    window->deactivate();
    subRefCP(hidden);
    subRefCP(window);
}

TEST_F(GLFWWindowTest, TheProgramsSizeReachesTheScreen)
{
    const GLFWWindowPtr window = openWindow(64, 64, "sized");
    test::Recorder recorder;
    window->setListener(&recorder);
    test::addEmptyView(window, 0, 1, 0);
    const test::XInput::WindowId id = idOf(window);
    window->resize(150, 90);
    EXPECT_TRUE(pollUntil([&] { return recorder.has("resized 150 90"); })) << recorder.all();
    EXPECT_EQ(person->sizeOf(id).width, 150);
    EXPECT_EQ(person->sizeOf(id).height, 90);
    EXPECT_EQ(window->getWidth(), 150);
    EXPECT_EQ(window->getHeight(), 90);
    window->render(action.get());
    EXPECT_TRUE(showsAll(window, {0, 255, 0, 255}));

    // Two in a row come to rest at the last.
    window->resize(100, 100);
    window->resize(80, 120);
    EXPECT_TRUE(pollUntil([&] { return recorder.has("resized 80 120"); })) << recorder.all();
    EXPECT_EQ(window->getWidth(), 80);
    EXPECT_EQ(window->getHeight(), 120);
    EXPECT_EQ(person->sizeOf(id).width, 80);
    EXPECT_EQ(person->sizeOf(id).height, 120);

    // Each of a run of frames has its size from the first on.
    for(int size = 30; size < 90; size += 10)
    {
        window->resize(size, 100 - size);
        ASSERT_TRUE(pollUntil([&] { return person->sizeOf(id).width == size; }));
        window->render(action.get());
        EXPECT_TRUE(showsAll(window, {0, 255, 0, 255})) << size;
    }
    subRefCP(window);
}

TEST_F(GLFWWindowTest, APersonsSizeReachesTheFieldsAndThePicture)
{
    const GLFWWindowPtr window = openWindow(64, 64, "dragged");
    test::Recorder recorder;
    window->setListener(&recorder);
    test::addEmptyView(window, 1, 1, 0);
    window->render(action.get());
    person->resizeWindow(idOf(window), 210, 130);
    EXPECT_TRUE(pollUntil([&] { return window->getWidth() == 210; }));
    EXPECT_EQ(window->getHeight(), 130);
    EXPECT_EQ(recorder.count("resized 210 130"), 1u) << recorder.all();
    window->render(action.get());
    EXPECT_TRUE(showsAll(window, {255, 255, 0, 255}));
    subRefCP(window);
}

TEST_F(GLFWWindowTest, DrawsNothingAndKeepsItsSizeWhileMinimised)
{
    const GLFWWindowPtr window = openWindow(64, 64, "minimised");
    test::addEmptyView(window, 1, 0, 1);
    window->render(action.get());
    ASSERT_TRUE(showsAll(window, {255, 0, 255, 255}));
    const test::XInput::WindowId id = idOf(window);
    person->setMinimised(id, true);
    ASSERT_TRUE(pollUntil([&] { return window->isMinimised(); }));
    const SolidBackgroundPtr background =
        SolidBackgroundPtr::dcast(window->getPort(0)->getBackground());
    background->setColor(Color3f(0, 1, 1));
    endEditCP(background);
    ASSERT_TRUE(window->activate());
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    window->render(action.get());
    EXPECT_EQ(test::readPixel(10, 10), Pixel({0, 0, 0, 0})) << "nothing was drawn";
    window->deactivate();
    EXPECT_EQ(window->getWidth(), 64);
    EXPECT_EQ(window->getHeight(), 64);
    person->setMinimised(id, false);
    ASSERT_TRUE(pollUntil([&] { return !window->isMinimised(); }));
    window->render(action.get());
    EXPECT_TRUE(showsAll(window, {0, 255, 255, 255}));
    subRefCP(window);
}

struct Shared
{
    GLFWWindowPtr window;
    std::atomic<int> drawn{0};
    bool closed = false;
};

constexpr int frames = 12;

void drawFrames(void *argument)
{
    Shared &shared = *static_cast<Shared *>(argument);
    Barrier *const barrier = Barrier::get("drawing on a display");
    RenderAction *const action = RenderAction::create();
    for(int frame = 0; frame < frames; ++frame)
    {
        barrier->enter(2);
        ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
        barrier->enter(2);
        shared.window->render(action);
        shared.drawn = frame + 1;
        GLFWWindow::postEmptyEvent();
        Thread::getCurrentChangeList()->clearAll();
    }
    delete action;
}

TEST_F(GLFWWindowTest, AnotherAspectDrawsWhileTheApplicationEditsAndLooksAfterEvents)
{
    Shared shared;
    shared.window = openWindow(64, 64, "threads");
    test::addEmptyView(shared.window, 0, 0, 0);
    const SolidBackgroundPtr background =
        SolidBackgroundPtr::dcast(shared.window->getPort(0)->getBackground());
    const auto colourOf = [](int frame) { return Real32(10 * (frame + 1)) / 255.0f; };
    background->setColor(Color3f(colourOf(0), 0, 0));
    endEditCP(background);

    Thread *const drawer = Thread::get("drawer on a display");
    ASSERT_TRUE(drawer->runFunction(&drawFrames, 1, &shared));
    Barrier *const barrier = Barrier::get("drawing on a display");
    for(int frame = 0; frame < frames; ++frame)
    {
        barrier->enter(2);
        barrier->enter(2);
        Thread::getCurrentChangeList()->clearAll();
        // The next state, and in the middle another size, while this one is drawn.
        background->setColor(Color3f(colourOf(frame + 1), 0, 0));
        endEditCP(background);
        while(shared.drawn <= frame)
            GLFWWindow::waitEvents(0.01);
        EXPECT_TRUE(showsAll(shared.window, {std::uint8_t(10 * (frame + 1)), 0, 0, 255})) << frame;
        if(frame == frames / 2)
            shared.window->resize(100, 70);
    }
    Thread::join(drawer);
    EXPECT_EQ(shared.window->getWidth(), 100);
    subRefCP(shared.window);
    Thread::getCurrentChangeList()->clearAll();
}

TEST_F(GLFWWindowTest, AWindowThatEndsOnAnotherThreadClosesWithTheNextPoll)
{
    const GLFWWindowPtr window = openWindow(64, 64, "elsewhere");
    const GLFWWindowPtr other = openWindow(64, 64, "here");
    const test::XInput::WindowId id = idOf(window);
    std::thread([&] { subRefCP(window); }).join();
    EXPECT_TRUE(person->exists(id));
    GLFWWindow::pollEvents();
    EXPECT_TRUE(person->waitUntilGone(id));
    EXPECT_TRUE(other->isOpen());
    subRefCP(other);
}

TEST_F(GLFWWindowTest, WaitsAsLongAsItIsToldOrUntilItIsWoken)
{
    using Clock = std::chrono::steady_clock;
    const GLFWWindowPtr window = openWindow(64, 64, "waiting");
    pollUntil([] { return true; });
    // What is still under way from opening ends a wait early, so the longest of a few counts.
    double longest = 0;
    for(int i = 0; i < 5 && longest < 0.2; ++i)
    {
        const Clock::time_point start = Clock::now();
        GLFWWindow::waitEvents(0.2);
        longest = std::max(longest, std::chrono::duration<double>(Clock::now() - start).count());
    }
    EXPECT_GE(longest, 0.19);

    std::atomic<bool> woken{false};
    std::thread waker([&] {
        while(!woken)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            GLFWWindow::postEmptyEvent();
        }
    });
    const Clock::time_point start = Clock::now();
    GLFWWindow::waitEvents(-1);
    GLFWWindow::waitEvents(1e300);
    woken = true;
    waker.join();
    EXPECT_LT(std::chrono::duration<double>(Clock::now() - start).count(), 60.0);
    subRefCP(window);
}

TEST_F(GLFWWindowTest, FiftyWindowsOpenedAndClosedLeaveNothingBehind)
{
    const auto cycle = [this](int number) {
        const GLFWWindowPtr window = openWindow(40, 30, "number " + std::to_string(number));
        test::addEmptyView(window, 0.2f, 0.4f, 0.6f);
        window->render(action.get());
        subRefCP(window);
    };
    // The first has the driver loaded.
    cycle(0);
    const std::size_t files = openFiles();
    const std::size_t windows = person->countWindows();
    for(int i = 1; i <= 50; ++i)
        cycle(i);
    EXPECT_EQ(openFiles(), files);
    EXPECT_EQ(person->countWindows(), windows);

    // And all at once.
    std::vector<GLFWWindowPtr> many;
    for(int i = 0; i < 50; ++i)
    {
        many.push_back(GLFWWindow::create());
        addRefCP(many.back());
        many.back()->resize(20, 20);
        many.back()->init();
        EXPECT_TRUE(many.back()->isOpen());
    }
    EXPECT_GE(person->countWindows(), windows + 50);
    for(const GLFWWindowPtr &window : many)
        subRefCP(window);
    EXPECT_EQ(openFiles(), files);
    EXPECT_EQ(person->countWindows(), windows);
}

TEST_F(GLFWWindowTest, ACopyIsAWindowOfItsOwn)
{
    const GLFWWindowPtr window = openWindow(64, 48, "original");
    window->setSwapInterval(0);
    const GLFWWindowPtr copy = GLFWWindowPtr::dcast(window->shallowCopy());
    ASSERT_NE(copy, NullFC);
    addRefCP(copy);
    EXPECT_FALSE(copy->isOpen());
    EXPECT_EQ(copy->getTitle(), "original");
    EXPECT_EQ(copy->getSwapInterval(), 0);
    EXPECT_EQ(copy->getWidth(), 64);
    subRefCP(copy);
    EXPECT_TRUE(window->isOpen());
    subRefCP(window);
}

} // namespace
