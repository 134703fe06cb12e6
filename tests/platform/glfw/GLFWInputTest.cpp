/// \file
/// What a person does to a window, as its listener is told.

#include "GLFWStage.h"

#include <OpenSG/OSGLogCapture.h>

#define GLFW_INCLUDE_NONE
#include <GLFW/glfw3.h>

#include <X11/keysym.h>

#include <string>

namespace
{

using namespace osg;
using test::pollUntil;

class GLFWInputTest : public test::GLFWStage
{
  protected:
    void SetUp() override
    {
        GLFWStage::SetUp();
        window = openWindow(200, 100, "input");
        id = idOf(window);
        // Away from the corner, so that places in the window are none on the screen.
        person->place(id, 50, 70);
        person->moveTo(id, 1, 1);
        window->setListener(&recorder);
        pollUntil([this] { return recorder.has("moved 1 1"); });
        recorder.events.clear();
    }
    void TearDown() override
    {
        if(window != NullFC)
            subRefCP(window);
        GLFWStage::TearDown();
    }
    bool comes(const std::string &event)
    {
        return pollUntil([&] { return recorder.has(event); });
    }

    GLFWWindowPtr window;
    test::XInput::WindowId id = 0;
    test::Recorder recorder;
};

TEST_F(GLFWInputTest, TheMouseTellsWhereItIs)
{
    person->moveTo(id, 20, 30);
    EXPECT_TRUE(comes("moved 20 30")) << recorder.all();
    person->moveTo(id, 199, 0);
    EXPECT_TRUE(comes("moved 199 0")) << recorder.all();
}

TEST_F(GLFWInputTest, ButtonsTellWhichAndWhereAndWhatIsHeld)
{
    person->moveTo(id, 20, 30);
    person->click(1);
    person->pressKey(XK_Shift_L);
    person->click(3);
    person->pressKey(XK_Control_L);
    person->press(2);
    person->moveTo(id, 40, 35);
    person->release(2);
    person->releaseKey(XK_Control_L);
    person->releaseKey(XK_Shift_L);
    ASSERT_TRUE(comes("key " + std::to_string(GLFWWindow::KeyLeftShift) + " up 1")) << recorder.all();
    const int both = GLFWWindow::ModifierShift | GLFWWindow::ModifierControl;
    std::vector<std::string> buttons;
    for(const std::string &event : recorder.events)
    {
        if(event.rfind("button", 0) == 0)
            buttons.push_back(event);
    }
    const std::vector<std::string> expected = {
        "button 0 down 20 30 0", "button 0 up 20 30 0", "button 1 down 20 30 1", "button 1 up 20 30 1",
        "button 2 down 20 30 " + std::to_string(both), "button 2 up 40 35 " + std::to_string(both)};
    EXPECT_EQ(buttons, expected);
}

TEST_F(GLFWInputTest, TheWheelTurnsBothWaysAndSideways)
{
    person->moveTo(id, 20, 30);
    person->wheel(2);
    person->wheel(-1);
    person->wheelSideways(1);
    person->wheelSideways(-1);
    ASSERT_TRUE(comes("scrolled 1 0 20 30")) << recorder.all();
    EXPECT_EQ(recorder.count("scrolled 0 1 20 30"), 2u) << recorder.all();
    EXPECT_EQ(recorder.count("scrolled 0 -1 20 30"), 1u) << recorder.all();
    EXPECT_EQ(recorder.count("scrolled -1 0 20 30"), 1u) << recorder.all();
}

TEST_F(GLFWInputTest, KeysTellWhichAndWhatIsHeld)
{
    struct Case
    {
        test::XInput::KeySymbol pressed;
        int told;
    };
    const Case cases[] = {{XK_a, GLFWWindow::KeyA},           {XK_7, GLFWWindow::Key7},
                          {XK_F5, GLFWWindow::KeyF5},         {XK_Escape, GLFWWindow::KeyEscape},
                          {XK_Return, GLFWWindow::KeyEnter},  {XK_Left, GLFWWindow::KeyLeft},
                          {XK_Prior, GLFWWindow::KeyPageUp},  {XK_space, GLFWWindow::KeySpace},
                          {XK_Delete, GLFWWindow::KeyDelete}, {XK_Tab, GLFWWindow::KeyTab}};
    for(const Case &one : cases)
    {
        person->tapKey(one.pressed);
        const std::string key = "key " + std::to_string(one.told);
        EXPECT_TRUE(comes(key + " up 0")) << key << "\n" << recorder.all();
        EXPECT_EQ(recorder.count(key + " down 0"), 1u) << key;
    }
    recorder.events.clear();
    person->pressKey(XK_Control_L);
    person->pressKey(XK_Alt_L);
    person->tapKey(XK_s);
    person->releaseKey(XK_Alt_L);
    person->releaseKey(XK_Control_L);
    EXPECT_TRUE(comes("key " + std::to_string(GLFWWindow::KeyS) + " up " +
                      std::to_string(GLFWWindow::ModifierControl | GLFWWindow::ModifierAlt)))
        << recorder.all();
}

TEST_F(GLFWInputTest, AKeyThatIsHeldRepeats)
{
    person->pressKey(XK_Down);
    EXPECT_TRUE(comes("key " + std::to_string(GLFWWindow::KeyDown) + " again 0")) << recorder.all();
    person->releaseKey(XK_Down);
    EXPECT_TRUE(comes("key " + std::to_string(GLFWWindow::KeyDown) + " up 0"));
    EXPECT_EQ(recorder.events.front(), "key " + std::to_string(GLFWWindow::KeyDown) + " down 0");
}

TEST_F(GLFWInputTest, TypedTextArrivesCharacterByCharacter)
{
    person->typeText("Az 9!\xC3\xA4\xE2\x82\xAC"); // a umlaut, Euro
    ASSERT_TRUE(comes("character 8364")) << recorder.all();
    std::string typed;
    for(const std::string &event : recorder.events)
    {
        if(event.rfind("character", 0) == 0)
            typed += event.substr(9);
    }
    EXPECT_EQ(typed, " 65 122 32 57 33 228 8364");
}

TEST_F(GLFWInputTest, FilesDroppedArriveWithTheirNames)
{
    const std::vector<std::string> files = {"/data/two words, 100%.nii",
                                            "/data/Sch\xC3\xA4" "del \xE2\x82\xAC#1.png"};
    EXPECT_TRUE(person->dropFiles(id, files, 33, 44, [] { GLFWWindow::pollEvents(); }));
    EXPECT_TRUE(recorder.has("dropped [" + files[0] + "] [" + files[1] + "]")) << recorder.all();
    EXPECT_TRUE(recorder.has("moved 33 44")) << "the place of the drop is told ahead\n" << recorder.all();
}

TEST_F(GLFWInputTest, ClosingAsksAndCanBeRefused)
{
    EXPECT_FALSE(window->shouldClose());
    person->closeWindow(id);
    EXPECT_TRUE(comes("close")) << recorder.all();
    EXPECT_TRUE(window->shouldClose());
    EXPECT_TRUE(window->isOpen()) << "it is the program that closes";
    window->setShouldClose(false);
    EXPECT_FALSE(window->shouldClose());
    EXPECT_TRUE(person->exists(id));
}

TEST_F(GLFWInputTest, DamageIsTold)
{
    person->damage(id);
    EXPECT_TRUE(comes("refreshed")) << recorder.all();
}

TEST_F(GLFWInputTest, EachWindowHasItsOwnListener)
{
    const GLFWWindowPtr second = openWindow(200, 100, "other input");
    person->place(idOf(second), 500, 500);
    test::Recorder other;
    second->setListener(&other);
    person->moveTo(idOf(second), 5, 6);
    person->click();
    EXPECT_TRUE(pollUntil([&] { return other.has("button 0 up 5 6 0"); })) << other.all();
    EXPECT_FALSE(recorder.has("button 0 up 5 6 0")) << recorder.all();
    subRefCP(second);
}

TEST_F(GLFWInputTest, WithoutAListenerTheFieldsStillFollow)
{
    window->setListener(nullptr);
    EXPECT_EQ(window->getListener(), nullptr);
    person->moveTo(id, 20, 30);
    person->click();
    person->wheel(1);
    person->tapKey(XK_a);
    person->damage(id);
    person->closeWindow(id);
    EXPECT_TRUE(person->dropFiles(id, {"/data/x"}, 3, 4, [] { GLFWWindow::pollEvents(); }));
    person->resizeWindow(id, 90, 91);
    EXPECT_TRUE(pollUntil([&] { return window->getWidth() == 90 && window->getHeight() == 91; }));
    EXPECT_TRUE(window->shouldClose());
    EXPECT_EQ(recorder.all(), "");
}

/// Lets go of its window as soon as a button is pressed.
class Ender : public test::Recorder
{
  public:
    explicit Ender(GLFWWindowPtr &window) : _window(window) {}
    void mouseButton(Int32 button, bool pressed, Real64 x, Real64 y, Int32 modifiers) override
    {
        Recorder::mouseButton(button, pressed, x, y, modifiers);
        GLFWWindow::pollEvents(); // refused here
        subRefCP(_window);
        _window = NullFC;
    }

  private:
    GLFWWindowPtr &_window;
};

TEST_F(GLFWInputTest, AListenerMayEndItsWindow)
{
    Ender ender(window);
    window->setListener(&ender);
    const osg::LogCapture log;
    person->moveTo(id, 20, 30);
    person->click();
    EXPECT_TRUE(pollUntil([&] { return window == NullFC; }));
    EXPECT_EQ(ender.count("button 0 down 20 30 0"), 1u);
    EXPECT_TRUE(person->waitUntilGone(id));
    EXPECT_EQ(ender.count("button 0 up 20 30 0"), 0u) << "nobody is told any more";
    EXPECT_EQ(log.text(LOG_WARNING),
              "GLFW window: events are for the main thread, outside of a listener\n");
}

GLFWmousebuttonfun chained = nullptr;
int guiClicks = 0;

void onGuiButton(::GLFWwindow *handle, int button, int act, int modifiers)
{
    ++guiClicks;
    if(chained != nullptr)
        chained(handle, button, act, modifiers);
}

TEST_F(GLFWInputTest, AGuiThatChainsCallbacksLeavesTheListenerItsShare)
{
    chained = glfwSetMouseButtonCallback(window->getHandle(), &onGuiButton);
    ASSERT_NE(chained, nullptr);
    person->moveTo(id, 20, 30);
    person->click();
    EXPECT_TRUE(comes("button 0 up 20 30 0")) << recorder.all();
    EXPECT_EQ(guiClicks, 2);
}

TEST_F(GLFWInputTest, GLFWsComplaintsBecomeWarnings)
{
    const osg::LogCapture log;
    glfwSetInputMode(window->getHandle(), 0, 0);
    EXPECT_EQ(log.count(), 1u);
    EXPECT_EQ(log.text(LOG_WARNING), "GLFW: Invalid input mode 0x00000000\n");
}

} // namespace
