/// \file
/// Viewports and windows as far as they need no GL.

#include "OSGTestWindow.h"
#include "Scenes.h"

#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGRenderAction.h>

#include <limits>
#include <memory>

namespace
{

using namespace osg;

class Viewports : public test::OpenSGTest
{
  protected:
    void SetUp() override
    {
        TestWindow::withoutGL = true;
        window = TestWindow::create();
        addRefCP(window);
        window->resize(400, 200);
    }
    void TearDown() override
    {
        subRefCP(window);
        TestWindow::reset();
        Window::unmaskAll();
    }

    ViewportPtr makePort(Real32 left, Real32 bottom, Real32 right, Real32 top)
    {
        const ViewportPtr port = Viewport::create();
        port->setSize(left, bottom, right, top);
        endEditCP(port);
        window->addPort(port);
        return port;
    }

    TestWindowPtr window;
};

TEST_F(Viewports, HaveTheFieldIdsThatDerivedClassesCountOn)
{
    EXPECT_EQ(int(Viewport::NextFieldId), 13);
    EXPECT_EQ(int(Background::NextFieldId), 2);
    EXPECT_EQ(int(Foreground::NextFieldId), 3);
    EXPECT_EQ(int(GrabForeground::NextFieldId), 5);
}

TEST_F(Viewports, OfSharesUpToOneCoverThatShareOfTheWindow)
{
    const ViewportPtr port = makePort(0.25f, 0.5f, 0.75f, 1.0f);
    EXPECT_EQ(port->getPixelLeft(), 100);
    EXPECT_EQ(port->getPixelRight(), 299);
    EXPECT_EQ(port->getPixelBottom(), 100);
    EXPECT_EQ(port->getPixelTop(), 199);
    EXPECT_EQ(port->getPixelWidth(), 200);
    EXPECT_EQ(port->getPixelHeight(), 100);
    EXPECT_FALSE(port->isFullWindow());
    window->resize(800, 400);
    EXPECT_EQ(port->getPixelWidth(), 400);
}

TEST_F(Viewports, AboveOneCountPixels)
{
    const ViewportPtr port = makePort(5, 6, 104, 55.9f);
    EXPECT_EQ(port->getPixelLeft(), 5);
    EXPECT_EQ(port->getPixelRight(), 104);
    EXPECT_EQ(port->getPixelBottom(), 6);
    EXPECT_EQ(port->getPixelTop(), 55);
    EXPECT_EQ(port->getPixelWidth(), 100);
    EXPECT_EQ(port->getPixelHeight(), 50);
}

TEST_F(Viewports, OfTheWholeWindowKnowIt)
{
    EXPECT_TRUE(makePort(0, 0, 1, 1)->isFullWindow());
    EXPECT_TRUE(makePort(0, 0, 399, 199)->isFullWindow());
    EXPECT_FALSE(makePort(0, 0, 398, 199)->isFullWindow());
    const ViewportPtr alone = Viewport::create();
    EXPECT_FALSE(alone->isFullWindow());
    subRefCP(alone);
}

TEST_F(Viewports, WithoutAWindowAreEmptyUnlessInPixels)
{
    const ViewportPtr port = Viewport::create();
    EXPECT_EQ(port->getPixelWidth(), 0);
    EXPECT_EQ(port->getPixelHeight(), 0);
    port->setSize(0, 0, 99, 49);
    EXPECT_EQ(port->getPixelWidth(), 100);
    EXPECT_EQ(port->getPixelHeight(), 50);
    subRefCP(port);
}

TEST_F(Viewports, TakeAnyNumberAsAnEdge)
{
    const Real32 infinity = std::numeric_limits<Real32>::infinity();
    const ViewportPtr port = makePort(std::numeric_limits<Real32>::quiet_NaN(), -infinity, infinity, 1e30f);
    EXPECT_EQ(port->getPixelLeft(), 0);
    EXPECT_EQ(port->getPixelBottom(), 0);
    EXPECT_EQ(port->getPixelRight(), 1000000);
    EXPECT_EQ(port->getPixelTop(), 1000000);
}

TEST_F(Viewports, KnowTheWindowThatListsThem)
{
    const ViewportPtr first = Viewport::create();
    const ViewportPtr second = Viewport::create();
    const ViewportPtr third = Viewport::create();
    addRefCP(first);
    window->addPort(first);
    window->addPort(second);
    EXPECT_EQ(first->getParent(), WindowPtr(window));
    EXPECT_EQ(first.getRefCount(), 2);
    EXPECT_EQ(second.getRefCount(), 1);

    window->insertPort(second, third);
    ASSERT_EQ(window->getPort().size(), 3u);
    EXPECT_EQ(window->getPort(0), first);
    EXPECT_EQ(window->getPort(1), third);
    EXPECT_EQ(window->getPort(2), second);

    window->subPort(first);
    EXPECT_EQ(first->getParent(), WindowPtr(NullFC));
    EXPECT_EQ(first.getRefCount(), 1);
    window->replacePort(third, first);
    EXPECT_EQ(window->getPort(0), first);
    EXPECT_EQ(first->getParent(), WindowPtr(window));
    window->subPort(1);
    EXPECT_EQ(window->getPort().size(), 1u);

    // Written directly, as hosts do.
    window->getPort().clear();
    endEditCP(window, Window::PortFieldMask);
    EXPECT_EQ(first.getRefCount(), 1);
    EXPECT_EQ(first->getParent(), WindowPtr(NullFC));
    subRefCP(first);
}

TEST_F(Viewports, AreLetGoWhenTheirWindowGoes)
{
    const ViewportPtr port = Viewport::create();
    addRefCP(port);
    const TestWindowPtr other = TestWindow::create();
    addRefCP(other);
    other->addPort(port);
    subRefCP(other);
    EXPECT_EQ(port.getRefCount(), 1);
    EXPECT_EQ(port->getParent(), WindowPtr(NullFC));
    subRefCP(port);
}

TEST_F(Viewports, HoldOneReferenceOnEachThingTheyShow)
{
    const NodePtr root = makeCoredNode<Group>();
    const PerspectiveCameraPtr camera = test::makeCamera();
    const SolidBackgroundPtr background = test::makeBackground(0, 0, 0);
    const GrabForegroundPtr foreground = GrabForeground::create();
    for(const FieldContainerPtr &held : {FieldContainerPtr(root), FieldContainerPtr(camera),
                                         FieldContainerPtr(background), FieldContainerPtr(foreground)})
        addRefCP(held);

    const ViewportPtr first = Viewport::create();
    const ViewportPtr second = Viewport::create();
    addRefCP(first);
    addRefCP(second);
    for(const ViewportPtr &port : {first, second})
    {
        port->setRoot(root);
        port->setCamera(camera);
        port->setBackground(background);
        port->getForegrounds().push_back(foreground);
        endEditCP(port);
        endEditCP(port);
    }
    EXPECT_EQ(root.getRefCount(), 3);
    EXPECT_EQ(camera.getRefCount(), 3);
    EXPECT_EQ(background.getRefCount(), 3);
    EXPECT_EQ(foreground.getRefCount(), 3);
    subRefCP(first);
    second->getForegrounds().clear();
    endEditCP(second, Viewport::ForegroundsFieldMask);
    EXPECT_EQ(foreground.getRefCount(), 1);
    subRefCP(second);
    EXPECT_EQ(root.getRefCount(), 1);
    EXPECT_EQ(camera.getRefCount(), 1);
    EXPECT_EQ(background.getRefCount(), 1);
    for(const FieldContainerPtr &held : {FieldContainerPtr(root), FieldContainerPtr(camera),
                                         FieldContainerPtr(background), FieldContainerPtr(foreground)})
        subRefCP(held);
}

TEST_F(Viewports, SayOnceWhatIsMissingAndDrawNothing)
{
    const std::unique_ptr<RenderAction> action(RenderAction::create());
    const ViewportPtr port = makePort(0, 0, 1, 1);
    LogCapture log;
    for(int i = 0; i < 3; ++i)
        window->render(action.get());
    EXPECT_EQ(log.count(LOG_WARNING), 1u);
    EXPECT_EQ(log.text(LOG_WARNING), "Viewport::render: no camera, nothing is drawn\n");
    log.clear();
    port->setCamera(test::makeCamera());
    endEditCP(port, Viewport::CameraFieldMask);
    window->render(action.get());
    EXPECT_EQ(log.text(LOG_WARNING), "Viewport::render: no background, nothing is drawn\n");
    log.clear();
    port->setBackground(test::makeBackground(0, 0, 0));
    endEditCP(port, Viewport::BackgroundFieldMask);
    window->render(action.get());
    window->render(action.get());
    EXPECT_EQ(log.text(LOG_WARNING), "Viewport::render: no root, nothing is drawn\n");
}

TEST_F(Viewports, AreNotDrawnWithoutAnAction)
{
    makePort(0, 0, 1, 1);
    LogCapture log;
    window->render(nullptr);
    EXPECT_EQ(log.text(LOG_WARNING), "Window::render: no action\n");
    window->getPort(0)->render(nullptr);
    EXPECT_EQ(log.count(LOG_WARNING), 1u);
}

TEST_F(Viewports, FollowTheWindowsSizeAtTheNextFrameOnce)
{
    window->frameInit();
    EXPECT_EQ(TestWindow::resized, 1);
    EXPECT_FALSE(window->isResizePending());
    window->frameInit();
    EXPECT_EQ(TestWindow::resized, 1) << "preparing again within a frame does nothing";
    window->resize(100, 0);
    EXPECT_TRUE(window->isResizePending());
    EXPECT_EQ(window->getWidth(), 100);
    EXPECT_EQ(window->getHeight(), 1);
    window->frameInit();
    EXPECT_EQ(TestWindow::resized, 2);
}

TEST_F(Viewports, FindExtensionsAfterTheFirstPreparation)
{
    TestWindow::extensions = "GL_TEST_present GL_TEST_other";
    TestWindow::version = "2.1 made up";
    const UInt32 present = Window::registerExtension("GL_TEST_present");
    const UInt32 absent = Window::registerExtension("GL_TEST_absent");
    static const auto made = reinterpret_cast<Window::GLExtensionFunction>(&osgInit);
    TestWindow::functions["glTestFunction"] = made;
    const UInt32 function = Window::registerFunction("glTestFunction", present, 0xFFFF);
    EXPECT_FALSE(window->hasExtension(present));
    window->frameInit();
    EXPECT_TRUE(window->hasExtension(present));
    EXPECT_FALSE(window->hasExtension(absent));
    EXPECT_EQ(window->getFunction(function), made);
    EXPECT_EQ(window->getGLVersion(), 0x0201u);
    Window::maskExtension("GL_TEST_present");
    EXPECT_FALSE(window->hasExtension(present));
    EXPECT_EQ(window->getFunction(function), nullptr);
}

TEST_F(Viewports, CallGLObjectsWithTheWindow)
{
    std::vector<std::pair<Window *, UInt32>> calls;
    const UInt32 id = Window::registerGLObject(
        [&](Window *win, UInt32 idstatus) { calls.emplace_back(win, idstatus); }, 1);
    window->validateGLObject(id);
    window->setGLObjectId(id, 42);
    EXPECT_EQ(window->getGLObjectId(id), 42u);
    Window::destroyGLObject(id, 1);
    EXPECT_EQ(calls.size(), 1u);
    window->frameExit();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0].first, window.get());
    EXPECT_EQ(calls[0].second, Window::packIdStatus(id, Window::initialize));
    EXPECT_EQ(calls[1].second, Window::packIdStatus(id, Window::destroy));
    EXPECT_EQ(calls[2].second, Window::packIdStatus(id, Window::finaldestroy));
}

struct ValidateJob
{
    TestWindowPtr window;
    UInt32 id;
};

void validateOnOtherAspect(void *argument)
{
    const ValidateJob &job = *static_cast<ValidateJob *>(argument);
    job.window->validateGLObject(job.id);
    job.window->validateGLObject(job.id);
}

TEST_F(Viewports, ReinitialiseGLObjectsThatWereMadeOfAnotherAspectsData)
{
    std::vector<UInt32> statuses;
    const UInt32 id =
        Window::registerGLObject([&](Window *, UInt32 idstatus) { statuses.push_back(idstatus & 7); }, 1);
    window->validateGLObject(id);
    window->setGLObjectId(id, 42);
    ValidateJob job{window, id};
    Thread *const thread = Thread::get("validator");
    ASSERT_TRUE(thread->runFunction(&validateOnOtherAspect, 1, &job));
    Thread::join(thread);
    EXPECT_EQ(statuses, std::vector<UInt32>({Window::initialize, Window::reinitialize}));
    EXPECT_EQ(window->getGLObjectId(id), 42u) << "names belong to the window, whatever the aspect";
    Window::destroyGLObject(id, 1);
    window->frameExit();
}

} // namespace
