/// \file
/// Windows without a display, drawn by the machine's GL.

#include "OSGTestWindow.h"
#include "Scenes.h"

#include "support/ReadBack.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGLError.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGPassiveWindow.h>
#include <OpenSG/OSGPolygonForeground.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGTextureChunk.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

namespace
{

using namespace osg;
using Pixel = test::RgbaImage::Pixel;

class WindowOnGl : public test::OpenSGTest
{
  protected:
    void SetUp() override
    {
        action.reset(RenderAction::create());
        window = makeWindow(64, 48);
    }
    void TearDown() override
    {
        if(window->activate())
        {
            EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << "pending at the end of the test";
        }
        subRefCP(window);
        TestWindow::reset();
        Window::unmaskAll();
    }

    static EGLWindowPtr makeWindow(int width, int height)
    {
        const EGLWindowPtr made = EGLWindow::create();
        addRefCP(made);
        made->resize(width, height);
        made->init();
        return made;
    }

    static ViewportPtr addPort(const WindowPtr &to, Real32 left, Real32 bottom, Real32 right, Real32 top,
                               const BackgroundPtr &background)
    {
        const ViewportPtr port = Viewport::create();
        port->setSize(left, bottom, right, top);
        test::fill(port, background);
        to->addPort(port);
        return port;
    }

    static GrabForegroundPtr addGrab(const ViewportPtr &port, UInt32 format, Int32 type = GL_UNSIGNED_BYTE)
    {
        const ImagePtr image = Image::create();
        image->set(format, 1, 1, 1, 1, 1, 0, nullptr, type);
        endEditCP(image);
        const GrabForegroundPtr grab = GrabForeground::create();
        grab->setImage(image);
        endEditCP(grab);
        port->getForegrounds().push_back(grab);
        endEditCP(port, Viewport::ForegroundsFieldMask);
        return grab;
    }

    std::unique_ptr<RenderAction> action;
    EGLWindowPtr window;
};

TEST_F(WindowOnGl, ClearsToTheBackgroundsColourAndAlpha)
{
    ASSERT_TRUE(window->isOpen());
    addPort(window, 0, 0, 1, 1, test::makeBackground(0.2f, 0.4f, 0.6f, 0.8f));
    ASSERT_TRUE(window->activate());
    window->render(action.get());
    EXPECT_TRUE(window->isActive()) << "it was so ahead of render";
    EXPECT_EQ(test::readPixel(0, 0), Pixel({51, 102, 153, 204}));
    EXPECT_EQ(test::readPixel(63, 47), Pixel({51, 102, 153, 204}));
}

TEST_F(WindowOnGl, IsCurrentWithinRenderOnly)
{
    addPort(window, 0, 0, 1, 1, test::makeBackground(0, 0, 0));
    EXPECT_FALSE(window->isActive());
    window->render(action.get());
    EXPECT_FALSE(window->isActive());
}

TEST_F(WindowOnGl, DrawsEachViewportInItsRectangleInListOrder)
{
    addPort(window, 0, 0, 1, 1, test::makeBackground(1, 0, 0));
    addPort(window, 0.5f, 0, 1, 1, test::makeBackground(0, 1, 0));
    addPort(window, 8, 4, 15, 11, test::makeBackground(0, 0, 1));
    ASSERT_TRUE(window->activate());
    window->render(action.get());
    const test::RgbaImage picture = test::readPixels(0, 0, 64, 48);
    for(int y = 0; y < 48; ++y)
    {
        for(int x = 0; x < 64; ++x)
        {
            Pixel expected = x < 32 ? Pixel({255, 0, 0, 255}) : Pixel({0, 255, 0, 255});
            if(x >= 8 && x <= 15 && y >= 4 && y <= 11)
                expected = {0, 0, 255, 255};
            ASSERT_EQ(picture.at(x, y), expected) << x << " " << y;
        }
    }
    EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST)) << "the last viewport's restriction is taken back";
}

TEST_F(WindowOnGl, LetsViewportsShareWhatTheyShow)
{
    const ViewportPtr first = addPort(window, 0, 0, 0.5f, 1, test::makeBackground(1, 1, 0));
    const ViewportPtr second = Viewport::create();
    second->setSize(0.5f, 0, 1, 1);
    second->setCamera(first->getCamera());
    second->setRoot(first->getRoot());
    second->setBackground(first->getBackground());
    window->addPort(second);
    ASSERT_TRUE(window->activate());
    window->render(action.get());
    EXPECT_EQ(test::readPixel(10, 10), Pixel({255, 255, 0, 255}));
    EXPECT_EQ(test::readPixel(50, 10), Pixel({255, 255, 0, 255}));
}

TEST_F(WindowOnGl, DrawsTheSameWithTheActionThatDoesNotSort)
{
    addPort(window, 0, 0, 1, 1, test::makeBackground(1, 0, 0));
    addPort(window, 0.5f, 0, 1, 1, test::makeBackground(0, 1, 0));
    const std::unique_ptr<DrawAction> plain(DrawAction::create());
    ASSERT_TRUE(window->activate());
    window->draw(plain.get());
    EXPECT_EQ(test::readPixel(31, 47), Pixel({255, 0, 0, 255}));
    EXPECT_EQ(test::readPixel(32, 47), Pixel({0, 255, 0, 255}));
}

TEST_F(WindowOnGl, ClearsDepthAndStencilAsTheBackgroundSays)
{
    const SolidBackgroundPtr background = test::makeBackground(0, 0, 0);
    background->setDepth(0.25f);
    background->setClearStencilBit(5);
    addPort(window, 0, 0, 1, 1, background);
    ASSERT_TRUE(window->activate());
    window->render(action.get());
    float depth = -1;
    GLubyte stencil = 0;
    glReadPixels(3, 3, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    glReadPixels(3, 3, 1, 1, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, &stencil);
    EXPECT_NEAR(depth, 0.25f, 1e-6f);
    EXPECT_EQ(stencil, 5);
}

TEST_F(WindowOnGl, KeepsWhatIsThereWithAPassiveBackground)
{
    addPort(window, 0, 0, 1, 1, test::makeBackground(1, 0, 1));
    addPort(window, 0, 0, 0.5f, 0.5f, PassiveBackground::create());
    ASSERT_TRUE(window->activate());
    window->render(action.get());
    EXPECT_EQ(test::readPixel(2, 2), Pixel({255, 0, 255, 255}));
}

TEST_F(WindowOnGl, FollowsAResizeAtTheNextFrame)
{
    addPort(window, 0, 0, 1, 1, test::makeBackground(0, 1, 1));
    window->render(action.get());
    window->resize(200, 100);
    ASSERT_TRUE(window->activate());
    window->render(action.get());
    EXPECT_EQ(test::readPixel(199, 99), Pixel({0, 255, 255, 255}));
}

TEST_F(WindowOnGl, GrabsThePictureToTheByte)
{
    const ViewportPtr port = addPort(window, 0, 0, 1, 1, test::makeBackground(0.2f, 0.4f, 0.6f, 1.0f));
    const GrabForegroundPtr grab = addGrab(port, GL_RGB);
    window->render(action.get());
    const ImagePtr image = grab->getImage();
    ASSERT_EQ(image->getWidth(), 64);
    ASSERT_EQ(image->getHeight(), 48);
    const UInt8 *const data = image->getData();
    for(int i = 0; i < 64 * 48; ++i)
    {
        ASSERT_EQ(data[3 * i], 51) << i;
        ASSERT_EQ(data[3 * i + 1], 102) << i;
        ASSERT_EQ(data[3 * i + 2], 153) << i;
    }
}

TEST_F(WindowOnGl, GrabsRowsWithoutPaddingLowestRowFirst)
{
    window->resize(7, 5);
    addPort(window, 0, 0, 1, 1, test::makeBackground(1, 0, 0));
    addPort(window, 2, 2, 6, 4, test::makeBackground(0, 1, 0));
    const ViewportPtr last = addPort(window, 0, 0, 1, 1, PassiveBackground::create());
    const GrabForegroundPtr grab = addGrab(last, GL_RGB);
    ASSERT_TRUE(window->activate());
    window->frameInit();
    glPixelStorei(GL_PACK_ALIGNMENT, 2);
    window->render(action.get());
    const ImagePtr image = grab->getImage();
    ASSERT_EQ(image->getWidth(), 7);
    for(int y = 0; y < 5; ++y)
    {
        for(int x = 0; x < 7; ++x)
        {
            const UInt8 *const pixel = image->getData() + 3 * (7 * y + x);
            const bool green = x >= 2 && y >= 2;
            EXPECT_EQ(pixel[0], green ? 0 : 255) << x << " " << y;
            EXPECT_EQ(pixel[1], green ? 255 : 0) << x << " " << y;
        }
    }
    GLint alignment = 0;
    glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
    EXPECT_EQ(alignment, 2) << "left as it was";
}

TEST_F(WindowOnGl, GrabsOnlyItsViewportAndInTheImagesFormat)
{
    addPort(window, 0, 0, 1, 1, test::makeBackground(1, 0, 0));
    const ViewportPtr port = addPort(window, 10, 20, 19, 24, test::makeBackground(0.5f, 0.25f, 1, 1));
    const GrabForegroundPtr bytes = addGrab(port, GL_RGBA);
    const GrabForegroundPtr floats = addGrab(port, GL_RGB, GL_FLOAT);
    const GrabForegroundPtr grey = addGrab(port, GL_LUMINANCE);
    window->render(action.get());
    EXPECT_EQ(bytes->getImage()->getWidth(), 10);
    EXPECT_EQ(bytes->getImage()->getHeight(), 5);
    EXPECT_EQ(bytes->getImage()->getData()[3], 255);
    EXPECT_EQ(bytes->getImage()->getData()[0], 128);
    Real32 value[3];
    std::memcpy(value, floats->getImage()->getData() + sizeof(value) * 49, sizeof(value));
    EXPECT_NEAR(value[1], 0.25f, 1.0f / 255.0f);
    // GL gives the sum of red, green and blue as luminance, clamped.
    EXPECT_EQ(grey->getImage()->getData()[49], 255);
}

TEST_F(WindowOnGl, GrabsNothingWhileInactiveAndKeepsASizeThatIsFixed)
{
    const ViewportPtr port = addPort(window, 0, 0, 1, 1, test::makeBackground(1, 1, 1));
    const GrabForegroundPtr fixed = addGrab(port, GL_RGB);
    fixed->getImage()->set(GL_RGB, 10, 100);
    std::fill_n(fixed->getImage()->editData(), 3000, UInt8(7));
    fixed->setAutoResize(false);
    const GrabForegroundPtr off = addGrab(port, GL_RGB);
    off->setActive(false);
    window->render(action.get());
    EXPECT_EQ(off->getImage()->getWidth(), 1);
    ASSERT_EQ(fixed->getImage()->getWidth(), 10);
    ASSERT_EQ(fixed->getImage()->getHeight(), 100);
    const UInt8 *const data = fixed->getImage()->getData();
    EXPECT_EQ(data[0], 255);
    EXPECT_EQ(data[3 * (47 * 10 + 9)], 255);
    EXPECT_EQ(data[3 * (48 * 10)], 7) << "rows above the viewport's height stay";
}

TEST_F(WindowOnGl, HasGLObjectsOfItsOwn)
{
    const EGLWindowPtr other = makeWindow(16, 16);
    addPort(window, 0, 0, 1, 1, test::makeBackground(0, 0, 0));
    int initialised = 0;
    int destroyed = 0;
    const UInt32 id = Window::registerGLObject(
        [&](Window *win, UInt32 idstatus) {
            GLuint name = win->getGLObjectId(idstatus >> 3);
            if((idstatus & 7) == Window::initialize)
            {
                ++initialised;
                glGenTextures(1, &name);
                glBindTexture(GL_TEXTURE_2D, name);
                win->setGLObjectId(idstatus >> 3, name);
            }
            else if((idstatus & 7) == Window::destroy)
            {
                ++destroyed;
                EXPECT_TRUE(glIsTexture(name));
                glDeleteTextures(1, &name);
            }
        },
        1);
    for(const EGLWindowPtr &each : {window, other})
    {
        ASSERT_TRUE(each->activate());
        each->validateGLObject(id);
        each->validateGLObject(id);
        EXPECT_TRUE(glIsTexture(each->getGLObjectId(id)));
    }
    EXPECT_EQ(initialised, 2);
    subRefCP(other);
    EXPECT_EQ(destroyed, 1) << "the window that closes";
    Window::destroyGLObject(id, 1);
    window->render(action.get());
    EXPECT_EQ(destroyed, 2);
}

TEST_F(WindowOnGl, DrawsAPolygonOverTheScene)
{
    const ViewportPtr port = addPort(window, 0, 0, 1, 1, test::makeBackground(0, 0, 0));
    const ImagePtr image = Image::create();
    const UInt8 texels[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255};
    image->set(GL_RGB, 2, 2, 1, 1, 1, 0, texels);
    const TextureChunkPtr texture = TextureChunk::create();
    texture->setImage(image);
    texture->setMinFilter(GL_NEAREST);
    texture->setMagFilter(GL_NEAREST);
    endEditCP(texture);
    const ChunkMaterialPtr material = ChunkMaterial::create();
    material->addChunk(texture);
    endEditCP(material);
    const PolygonForegroundPtr polygon = PolygonForeground::create();
    polygon->setMaterial(material);
    for(int i = 0; i < 4; ++i)
    {
        const Real32 x = i == 1 || i == 2 ? 1.0f : 0.0f;
        const Real32 y = i >= 2 ? 1.0f : 0.0f;
        polygon->getPositions().push_back(Pnt2f(0.5f + 0.5f * x, 0.5f * y));
        polygon->getTexCoords().push_back(Vec3f(x, y, 0));
    }
    endEditCP(polygon);
    port->getForegrounds().push_back(polygon);
    endEditCP(port);
    ASSERT_TRUE(window->activate());
    window->render(action.get());
    EXPECT_EQ(test::readPixel(36, 3), Pixel({255, 0, 0, 255}));
    EXPECT_EQ(test::readPixel(60, 3), Pixel({0, 255, 0, 255}));
    EXPECT_EQ(test::readPixel(36, 20), Pixel({0, 0, 255, 255}));
    EXPECT_EQ(test::readPixel(60, 20), Pixel({255, 255, 255, 255}));
    EXPECT_EQ(test::readPixel(31, 3), Pixel({0, 0, 0, 255}));
    EXPECT_EQ(test::readPixel(60, 25), Pixel({0, 0, 0, 255}));

    // The same in pixels.
    polygon->setNormalizedX(false);
    polygon->setNormalizedY(false);
    polygon->getPositions()[0] = Pnt2f(2, 2);
    polygon->getPositions()[1] = Pnt2f(4, 2);
    polygon->getPositions()[2] = Pnt2f(4, 4);
    polygon->getPositions()[3] = Pnt2f(2, 4);
    window->render(action.get());
    EXPECT_EQ(test::readPixel(2, 2), Pixel({255, 0, 0, 255}));
    EXPECT_EQ(test::readPixel(3, 3), Pixel({255, 255, 255, 255}));
    EXPECT_EQ(test::readPixel(4, 4), Pixel({0, 0, 0, 255}));
}

TEST_F(WindowOnGl, DrawsInAContextThatTheHostKeepsCurrent)
{
    ASSERT_TRUE(window->activate());
    const PassiveWindowPtr passive = PassiveWindow::create();
    addRefCP(passive);
    passive->resize(64, 48);
    passive->init();
    addPort(passive, 0, 0, 0.5f, 1, test::makeBackground(0, 0, 1));
    const UInt32 extension = Window::registerExtension("GL_ARB_draw_buffers");
    const UInt32 function = Window::registerFunction("glDrawBuffers", extension, 0xFFFF);
    passive->render(action.get());
    EXPECT_EQ(test::readPixel(5, 5), Pixel({0, 0, 255, 255}));
    EXPECT_TRUE(passive->hasExtension(extension));
    EXPECT_NE(passive->getFunction(function), nullptr);
    EXPECT_GE(passive->getGLVersion(), 0x0201u);
    subRefCP(passive);
}

TEST_F(WindowOnGl, HasTheExtensionsThatTheLibraryAsksForUnlessMasked)
{
    window->frameInit();
    for(const char *name : {"GL_EXT_framebuffer_object", "GL_ARB_draw_buffers", "GL_ARB_vertex_buffer_object",
                            "GL_ARB_pixel_buffer_object", "GL_EXT_texture3D", "GL_ARB_multitexture",
                            "GL_EXT_draw_range_elements"})
    {
        const UInt32 id = Window::registerExtension(name);
        EXPECT_TRUE(window->hasExtension(id)) << name;
        Window::maskExtension(name);
        EXPECT_FALSE(window->hasExtension(id)) << name;
    }
    Window::unmaskAll();
}

TEST_F(WindowOnGl, SaysOnceWhyItCouldNotBeOpenedAndDrawsNothing)
{
    LogCapture log;
    const EGLWindowPtr failing = EGLWindow::create();
    addRefCP(failing);
    failing->init();
    EXPECT_FALSE(failing->isOpen());
    EXPECT_EQ(log.text(LOG_FATAL), "EGL context: a size of 0 x 0 pixels can't be opened\n");
    failing->render(action.get());
    failing->render(action.get());
    EXPECT_EQ(log.count(LOG_FATAL), 1u);
    EXPECT_EQ(log.count(LOG_WARNING), 0u);
    subRefCP(failing);
}

TEST_F(WindowOnGl, ReportsGLErrorsWithTheirPlace)
{
    ASSERT_TRUE(window->activate());
    EXPECT_FALSE(osgGlCheckError("OSGSome", "nothing"));
    LogCapture log;
    glEnable(0xFFFF);
    EXPECT_TRUE(osgGlCheckError("OSGSome", "setTarget post"));
    EXPECT_EQ(log.text(LOG_WARNING), "OSGSome: setTarget post: invalid enumerant\n");
    EXPECT_FALSE(osgGlCheckError("OSGSome", "again"));
}

struct Job
{
    EGLWindowPtr window;
    RenderAction *action;
    std::vector<UInt8> pixels;
};

void drawOnOtherAspect(void *argument)
{
    Job &job = *static_cast<Job *>(argument);
    ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
    job.window->render(job.action);
    const ViewportPtr port = job.window->getPort(0);
    const ImagePtr image = GrabForegroundPtr::dcast(port->getForegrounds(0))->getImage();
    job.pixels.assign(image->getData(), image->getData() + 3);
}

TEST_F(WindowOnGl, IsDrawnOnAnotherAspectThanItWasMadeOn)
{
    const SolidBackgroundPtr background = test::makeBackground(0, 1, 0);
    const ViewportPtr port = addPort(window, 0, 0, 1, 1, background);
    const GrabForegroundPtr grab = addGrab(port, GL_RGB);
    window->render(action.get());
    background->setColor(Color3f(1, 0, 0));
    endEditCP(background);
    window->resize(32, 32);

    const std::unique_ptr<RenderAction> other(RenderAction::create());
    Job job{window, other.get(), {}};
    Thread *const thread = Thread::get("drawer");
    ASSERT_TRUE(thread->runFunction(&drawOnOtherAspect, 1, &job));
    Thread::join(thread);
    EXPECT_EQ(job.pixels, std::vector<UInt8>({255, 0, 0}));
    EXPECT_EQ(grab->getImage()->getData()[1], 255) << "this aspect still has its own picture";
    window->render(action.get());
    EXPECT_EQ(grab->getImage()->getWidth(), 32);
    EXPECT_EQ(grab->getImage()->getData()[0], 255);
}

/// The process's resident memory in KiB.
long residentMemory()
{
    std::ifstream status("/proc/self/status");
    for(std::string line; std::getline(status, line);)
    {
        if(line.rfind("VmRSS:", 0) == 0)
            return std::stol(line.substr(6));
    }
    return 0;
}

TEST_F(WindowOnGl, LeavesNothingBehindWhenClosed)
{
    const auto openDrawClose = [this] {
        const EGLWindowPtr each = makeWindow(64, 48);
        const ViewportPtr port = addPort(each, 0, 0, 1, 1, test::makeBackground(0, 1, 0));
        const GrabForegroundPtr grab = addGrab(port, GL_RGB);
        each->render(action.get());
        ASSERT_EQ(grab->getImage()->getData()[1], 255);
        subRefCP(each);
        Thread::getCurrentChangeList()->clearAll();
    };
    for(int i = 0; i < 100; ++i)
        openDrawClose();
    const std::size_t objects = GLObjectTable::getNumRegistered();
    const long before = residentMemory();
    for(int i = 0; i < 1000; ++i)
    {
        openDrawClose();
        ASSERT_FALSE(HasFatalFailure());
    }
    const long growth = residentMemory() - before;
    std::printf("1000 windows: %ld KiB more than %ld KiB of resident memory\n", growth, before);
    EXPECT_GT(before, 0);
    EXPECT_EQ(GLObjectTable::getNumRegistered(), objects);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // The sanitizers keep freed blocks for a while, so with them the number says nothing.
    EXPECT_LT(growth, 2048);
#endif
}

} // namespace
