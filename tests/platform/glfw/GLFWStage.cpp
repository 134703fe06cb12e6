/// \file
/// What the tests of windows on a display have in common.

#include "GLFWStage.h"

#include "support/XServer.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <thread>

namespace test
{

using namespace osg;

namespace
{

::testing::Environment *const display = ::testing::AddGlobalTestEnvironment(new XServerEnvironment);

template <class... Values>
std::string text(const Values &...values)
{
    std::ostringstream stream;
    const char *gap = "";
    ((stream << gap << values, gap = " "), ...);
    return stream.str();
}

} // namespace

void Recorder::resized(Int32 width, Int32 height)
{
    events.push_back(text("resized", width, height));
}

void Recorder::mouseMoved(Real64 x, Real64 y)
{
    events.push_back(text("moved", x, y));
}

void Recorder::mouseButton(Int32 button, bool pressed, Real64 x, Real64 y, Int32 modifiers)
{
    events.push_back(text("button", button, pressed ? "down" : "up", x, y, modifiers));
}

void Recorder::scrolled(Real64 dx, Real64 dy, Real64 x, Real64 y)
{
    events.push_back(text("scrolled", dx, dy, x, y));
}

void Recorder::key(Int32 key, bool pressed, bool repeated, Int32 modifiers)
{
    events.push_back(text("key", key, repeated ? "again" : pressed ? "down" : "up", modifiers));
}

void Recorder::character(UInt32 codepoint)
{
    events.push_back(text("character", codepoint));
}

void Recorder::dropped(const std::vector<std::string> &files)
{
    std::string event = "dropped";
    for(const std::string &file : files)
        event += " [" + file + "]";
    events.push_back(event);
}

void Recorder::closeRequested()
{
    events.push_back("close");
}

void Recorder::refreshed()
{
    events.push_back("refreshed");
}

bool Recorder::has(const std::string &event) const
{
    return count(event) > 0;
}

std::size_t Recorder::count(const std::string &event) const
{
    return std::size_t(std::count(events.begin(), events.end(), event));
}

std::string Recorder::all() const
{
    std::string lines;
    for(const std::string &event : events)
        lines += event + "\n";
    return lines;
}

bool pollUntil(const std::function<bool()> &reached)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    for(;;)
    {
        GLFWWindow::pollEvents();
        if(reached())
            return true;
        if(std::chrono::steady_clock::now() > limit)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

void GLFWStage::SetUpTestSuite()
{
    ASSERT_TRUE(osgInit(0, nullptr));
}

void GLFWStage::SetUp()
{
    person = std::make_unique<XInput>();
    ASSERT_TRUE(person->isOpen());
    action.reset(RenderAction::create());
}

void GLFWStage::TearDown()
{
    EXPECT_EQ(person->getErrors(), 0) << "of the display server, to the test's own requests";
}

GLFWWindowPtr GLFWStage::openWindow(int width, int height, const std::string &title)
{
    const GLFWWindowPtr window = GLFWWindow::create();
    addRefCP(window);
    window->resize(width, height);
    window->setTitle(title);
    window->init();
    EXPECT_TRUE(window->isOpen());
    // A first look, so that what comes with opening is behind.
    const XInput::WindowId id = idOf(window);
    EXPECT_NE(id, 0u) << title;
    person->focus(id);
    GLFWWindow::pollEvents();
    return window;
}

XInput::WindowId GLFWStage::idOf(const GLFWWindowPtr &window)
{
    return person->findWindow(window->getTitle());
}

::testing::AssertionResult GLFWStage::showsAll(const GLFWWindowPtr &window, RgbaImage::Pixel colour)
{
    const XInput::WindowId id = idOf(window);
    const RgbaImage wanted(window->getWidth(), window->getHeight(), colour);
    RgbaImage seen;
    if(pollUntil([&] {
           seen = person->screenshot(id);
           return seen.bytes == wanted.bytes;
       }))
        return ::testing::AssertionSuccess();
    return imagesMatch(seen, wanted);
}

namespace
{

ViewportPtr addView(const WindowPtr &window, const NodePtr &root, const NodePtr &beacon, Color3f sky)
{
    const SolidBackgroundPtr background = SolidBackground::create();
    background->setColor(sky);
    background->setAlpha(1.0f);
    endEditCP(background);
    const PerspectiveCameraPtr camera = PerspectiveCamera::create();
    camera->setBeacon(beacon);
    camera->setFov(1.0f);
    camera->setNear(0.1f);
    camera->setFar(10.0f);
    endEditCP(camera);
    const ViewportPtr view = Viewport::create();
    view->setCamera(camera);
    view->setRoot(root);
    view->setBackground(background);
    view->setSize(0, 0, 1, 1);
    endEditCP(view);
    window->addPort(view);
    return view;
}

} // namespace

void addEmptyView(const WindowPtr &window, Real32 red, Real32 green, Real32 blue)
{
    const NodePtr root = makeCoredNode<Group>();
    addView(window, root, root, Color3f(red, green, blue));
}

void addSphereView(const WindowPtr &window)
{
    TransformPtr eye;
    const NodePtr beacon = makeCoredNode<Transform>(&eye);
    Matrix back;
    back.setTranslate(0, 0, 3);
    eye->setMatrix(back);
    endEditCP(eye);

    const SimpleMaterialPtr material = SimpleMaterial::create();
    material->setDiffuse(Color3f(0.9f, 0.5f, 0.2f));
    endEditCP(material);
    const GeometryPtr sphere = makeSphereGeo(3, 1.0f);
    sphere->setMaterial(material);
    endEditCP(sphere);

    DirectionalLightPtr light;
    const NodePtr root = makeCoredNode<DirectionalLight>(&light);
    light->setDiffuse(1, 1, 1, 1);
    light->setDirection(1, 1, 1);
    light->setBeacon(beacon);
    endEditCP(light);
    root->addChild(beacon);
    root->addChild(makeNodeFor(sphere));
    endEditCP(root);
    addView(window, root, beacon, Color3f(0.2f, 0.2f, 0.4f));
}

} // namespace test
