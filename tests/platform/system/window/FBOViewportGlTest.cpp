/// \file
/// Rendering into textures.

#include "OSGTestWindow.h"
#include "Scenes.h"

#include "support/ReadBack.h"

#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGTextureChunk.h>

#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace osg;
using Pixel = test::RgbaImage::Pixel;

/// Half a step of 8 bits, on which 0.5 lies exactly, and what the arithmetic of the conversion adds.
constexpr Real32 ByteStep = 0.5f / 255.0f + 1e-6f;

PFNGLCLEARBUFFERFVPROC clearBuffer = nullptr;

/// A texture without pixels, for drawing into.
TextureChunkPtr makeTarget(Int32 width, Int32 height, GLenum internalFormat, GLenum externalFormat = GL_NONE)
{
    const bool isDepth = externalFormat == GL_DEPTH_COMPONENT;
    const ImagePtr image = Image::create();
    image->set(isDepth ? GL_LUMINANCE : GL_RGBA, width, height);
    endEditCP(image);
    const TextureChunkPtr texture = TextureChunk::create();
    texture->setImage(image);
    texture->setTarget(GL_TEXTURE_2D);
    texture->setInternalFormat(internalFormat);
    if(externalFormat != GL_NONE)
        texture->setExternalFormat(externalFormat);
    texture->setMinFilter(GL_NEAREST);
    texture->setMagFilter(GL_NEAREST);
    endEditCP(texture);
    return texture;
}

class FBOViewportOnGl : public test::OpenSGTest
{
  protected:
    void SetUp() override
    {
        action.reset(RenderAction::create());
        window = makeWindow();
        port = FBOViewport::create();
        addRefCP(port);
        test::fill(port, test::makeBackground(0.25f, 0.5f, 0.75f, 0.125f));
        port->setStorageSize(20, 10);
        endEditCP(port);
        ASSERT_TRUE(window->activate());
        clearBuffer = reinterpret_cast<PFNGLCLEARBUFFERFVPROC>(glFunction("glClearBufferfv"));
    }
    void TearDown() override
    {
        subRefCP(port);
        if(window->activate())
        {
            window->frameExit();
            EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << "pending at the end of the test";
        }
        subRefCP(window);
        TestWindow::reset();
        Window::unmaskAll();
    }

    static TestWindowPtr makeWindow()
    {
        const TestWindowPtr made = TestWindow::create();
        addRefCP(made);
        made->resize(64, 48);
        made->init();
        return made;
    }

    Window::GLExtensionFunction glFunction(const char *name)
    {
        const UInt32 id = Window::registerFunction(name, Window::invalidExtensionID, 0x0300);
        window->frameInit();
        return window->getFunction(id);
    }

    void addTexture(const TextureChunkPtr &texture)
    {
        port->getTextures().push_back(texture);
        endEditCP(port, FBOViewport::TexturesFieldMask);
    }

    /// Renders as the volume viewport does: the parent is set for the pass only.
    void pass()
    {
        port->setParent(window);
        endEditCP(port, Viewport::ParentFieldMask);
        action->setWindow(window.get());
        port->render(action.get());
        port->setParent(NullFC);
        endEditCP(port, Viewport::ParentFieldMask);
    }

    /// The texels of a colour texture as floats, four each.
    std::vector<Real32> texels(const TextureChunkPtr &texture, GLenum format = GL_RGBA)
    {
        const ImagePtr image = texture->getImage();
        std::vector<Real32> values(std::size_t(image->getWidth() * image->getHeight()) *
                                   (format == GL_RGBA ? 4 : 1));
        glBindTexture(GL_TEXTURE_2D, window->getGLObjectId(texture->getGLId()));
        glGetTexImage(GL_TEXTURE_2D, 0, format, GL_FLOAT, values.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        return values;
    }

    void expectAll(const TextureChunkPtr &texture, const std::vector<Real32> &colour, Real32 tolerance)
    {
        const std::vector<Real32> values = texels(texture);
        for(std::size_t i = 0; i < values.size(); ++i)
            ASSERT_NEAR(values[i], colour[i % 4], tolerance) << "value " << i;
    }

    std::unique_ptr<RenderAction> action;
    TestWindowPtr window;
    FBOViewportPtr port;
};

TEST_F(FBOViewportOnGl, FillsTexturesOfEachFormatWithTheBackground)
{
    struct Case
    {
        GLenum format;
        Real32 tolerance;
        const char *reason;
    };
    for(const Case &each :
        {Case{GL_RGBA8, ByteStep, "rounded to 8 bits"}, Case{GL_RGBA16F, 0.0f, "exact in binary"},
         Case{GL_RGBA32F, 0.0f, "exact in binary"}})
    {
        port->getTextures().clear();
        const TextureChunkPtr texture = makeTarget(20, 10, each.format);
        addTexture(texture);
        pass();
        SCOPED_TRACE(each.reason);
        expectAll(texture, {0.25f, 0.5f, 0.75f, 0.125f}, each.tolerance);
    }
}

TEST_F(FBOViewportOnGl, LeavesTheWindowAndItsStateAlone)
{
    const ViewportPtr shown = Viewport::create();
    test::fill(shown, test::makeBackground(1, 0, 0));
    window->addPort(shown);
    window->render(action.get());
    glViewport(1, 2, 3, 4);
    glEnable(GL_SCISSOR_TEST);
    addTexture(makeTarget(20, 10, GL_RGBA8));
    pass();
    GLint value[4] = {};
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, value);
    EXPECT_EQ(value[0], 0);
    glGetIntegerv(GL_DRAW_BUFFER, value);
    EXPECT_EQ(value[0], GL_BACK);
    glGetIntegerv(GL_VIEWPORT, value);
    EXPECT_EQ(value[0], 1);
    EXPECT_EQ(value[3], 4);
    EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
    glDisable(GL_SCISSOR_TEST);
    EXPECT_EQ(test::readPixel(3, 3), Pixel({255, 0, 0, 255}));
}

TEST_F(FBOViewportOnGl, WritesDepthIntoTheDepthTextureOnItsList)
{
    const TextureChunkPtr colour = makeTarget(20, 10, GL_RGBA16F);
    const TextureChunkPtr depth = makeTarget(20, 10, GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT);
    const SolidBackgroundPtr background = test::makeBackground(0, 0, 0, 0);
    background->setDepth(0.5f);
    port->setBackground(background);
    addTexture(colour);
    addTexture(depth);
    port->setGenerateDepthmaps(true);
    endEditCP(port);
    pass();
    for(const Real32 value : texels(depth, GL_DEPTH_COMPONENT))
        ASSERT_NEAR(value, 0.5f, 1e-6f);
    background->setDepth(0.125f);
    pass();
    EXPECT_NEAR(texels(depth, GL_DEPTH_COMPONENT)[0], 0.125f, 1e-6f);

    // Without the flag depth goes elsewhere.
    port->setGenerateDepthmaps(false);
    endEditCP(port, FBOViewport::GenerateDepthmapsFieldMask);
    background->setDepth(1.0f);
    pass();
    EXPECT_NEAR(texels(depth, GL_DEPTH_COMPONENT)[0], 0.125f, 1e-6f);
    expectAll(colour, {0, 0, 0, 0}, 0);
}

TEST_F(FBOViewportOnGl, HasADepthBufferWithoutADepthTexture)
{
    const SolidBackgroundPtr background = test::makeBackground(0, 0, 0, 0);
    background->setDepth(0.75f);
    port->setBackground(background);
    addTexture(makeTarget(20, 10, GL_RGBA8));
    Real32 depth = -1;
    action->registerEnterFunction(Group::getClassType(), [&](NodeCore *, Action *) {
        glReadPixels(19, 9, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        return Action::Continue;
    });
    pass();
    EXPECT_NEAR(depth, 0.75f, 1e-6f);
}

TEST_F(FBOViewportOnGl, RendersDepthAlone)
{
    const TextureChunkPtr depth = makeTarget(20, 10, GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT);
    addTexture(depth);
    port->setGenerateDepthmaps(true);
    endEditCP(port);
    LogCapture log;
    pass();
    EXPECT_EQ(log.count(LOG_WARNING), 0u);
    EXPECT_EQ(texels(depth, GL_DEPTH_COMPONENT)[0], 1.0f);
}

TEST_F(FBOViewportOnGl, AttachesColourTexturesInTheirOrder)
{
    const TextureChunkPtr first = makeTarget(20, 10, GL_RGBA32F);
    const TextureChunkPtr second = makeTarget(20, 10, GL_RGBA32F);
    addTexture(first);
    addTexture(second);
    action->registerEnterFunction(Group::getClassType(), [](NodeCore *, Action *) {
        const GLfloat one[] = {1, 2, 3, 4};
        const GLfloat two[] = {5, 6, 7, 8};
        clearBuffer(GL_COLOR, 0, one);
        clearBuffer(GL_COLOR, 1, two);
        return Action::Continue;
    });
    pass();
    expectAll(first, {1, 2, 3, 4}, 0);
    expectAll(second, {5, 6, 7, 8}, 0);

    // A list that has become shorter.
    port->getTextures().erase(port->getTextures().begin());
    endEditCP(port, FBOViewport::TexturesFieldMask);
    LogCapture log;
    pass();
    EXPECT_EQ(log.count(LOG_WARNING), 0u);
    expectAll(second, {1, 2, 3, 4}, 0);
}

TEST_F(FBOViewportOnGl, DrawsIntoTheFirstTextureWhereThereIsButOneDrawBuffer)
{
    Window::maskExtension("GL_ARB_draw_buffers");
    const TextureChunkPtr first = makeTarget(20, 10, GL_RGBA8);
    addTexture(first);
    addTexture(makeTarget(20, 10, GL_RGBA8));
    LogCapture log;
    pass();
    pass();
    EXPECT_EQ(log.text(LOG_WARNING),
              "FBOViewport::render: no GL_ARB_draw_buffers, only the first texture is drawn to\n");
    expectAll(first, {0.25f, 0.5f, 0.75f, 0.125f}, ByteStep);
}

TEST_F(FBOViewportOnGl, DrawsWithTheFunctionsOfEitherExtension)
{
    const TextureChunkPtr texture = makeTarget(20, 10, GL_RGBA16F);
    addTexture(texture);
    Window::maskExtension("GL_EXT_framebuffer_object");
    pass();
    expectAll(texture, {0.25f, 0.5f, 0.75f, 0.125f}, 0);
    Window::unmaskAll();
    Window::maskExtension("GL_ARB_framebuffer_object");
    port->setBackground(test::makeBackground(1, 0, 0, 1));
    pass();
    expectAll(texture, {1, 0, 0, 1}, 0);
}

TEST_F(FBOViewportOnGl, SaysOnceThatThereAreNoFramebufferObjects)
{
    Window::maskExtension("GL_EXT_framebuffer_object");
    Window::maskExtension("GL_ARB_framebuffer_object");
    addTexture(makeTarget(20, 10, GL_RGBA8));
    LogCapture log;
    pass();
    pass();
    EXPECT_EQ(log.text(LOG_WARNING), "FBOViewport::render: the window has no framebuffer objects\n");
}

TEST_F(FBOViewportOnGl, FollowsItsStorageSize)
{
    const TextureChunkPtr texture = makeTarget(20, 10, GL_RGBA8);
    addTexture(texture);
    pass();
    texture->getImage()->set(GL_RGBA, 40, 30);
    endEditCP(texture->getImage());
    texture->imageContentChanged();
    endEditCP(texture);
    port->setStorageSize(40, 30);
    port->setDirty(true);
    endEditCP(port);
    pass();
    EXPECT_FALSE(port->getDirty());
    expectAll(texture, {0.25f, 0.5f, 0.75f, 0.125f}, ByteStep);
}

TEST_F(FBOViewportOnGl, LeavesOutExcludedNodesAndPutsTheirMasksBack)
{
    const NodePtr root = makeCoredNode<Group>();
    NodePtr children[3];
    for(NodePtr &child : children)
    {
        child = makeCoredNode<Switch>();
        root->addChild(child);
    }
    children[1]->setTravMask(6);
    port->setRoot(root);
    port->getExcludeNodes().push_back(children[1]);
    port->getExcludeNodes().push_back(NullFC);
    port->getExcludeNodes().push_back(children[1]);
    endEditCP(port);
    addTexture(makeTarget(20, 10, GL_RGBA8));
    action->setFrustumCulling(false);
    std::vector<NodePtr> visited;
    action->registerEnterFunction(Switch::getClassType(), [&](NodeCore *, Action *on) {
        visited.push_back(on->getActNode());
        return Action::Continue;
    });
    pass();
    EXPECT_EQ(visited, std::vector<NodePtr>({children[0], children[2]}));
    EXPECT_EQ(children[1]->getTravMask(), 6u);
}

TEST_F(FBOViewportOnGl, RendersItsListOfTreesInPlaceOfTheRoot)
{
    const NodePtr one = makeCoredNode<Switch>();
    const NodePtr two = makeCoredNode<Switch>();
    port->getRenderNodes().push_back(one);
    port->getRenderNodes().push_back(two);
    endEditCP(port);
    const TextureChunkPtr texture = makeTarget(20, 10, GL_RGBA32F);
    addTexture(texture);
    std::vector<NodePtr> visited;
    action->registerEnterFunction(Switch::getClassType(), [&](NodeCore *, Action *on) {
        visited.push_back(on->getActNode());
        if(visited.size() == 1)
        {
            const GLfloat value[] = {9, 9, 9, 9};
            clearBuffer(GL_COLOR, 0, value);
        }
        return Action::Continue;
    });
    pass();
    EXPECT_EQ(visited, std::vector<NodePtr>({one, two}));
    expectAll(texture, {9, 9, 9, 9}, 0);
}

TEST_F(FBOViewportOnGl, KeepsTheTexturesContentWithAPassiveBackground)
{
    const TextureChunkPtr texture = makeTarget(20, 10, GL_RGBA16F);
    addTexture(texture);
    pass();
    port->setBackground(PassiveBackground::create());
    pass();
    expectAll(texture, {0.25f, 0.5f, 0.75f, 0.125f}, 0);
}

TEST_F(FBOViewportOnGl, MakesTheMipmapsOfWhatItHasRendered)
{
    const TextureChunkPtr texture = makeTarget(16, 16, GL_RGBA16F);
    texture->setMinFilter(GL_LINEAR_MIPMAP_LINEAR);
    endEditCP(texture);
    port->setStorageSize(16, 16);
    endEditCP(port);
    addTexture(texture);
    pass();
    std::vector<Real32> values(4 * 4 * 4);
    glBindTexture(GL_TEXTURE_2D, window->getGLObjectId(texture->getGLId()));
    glGetTexImage(GL_TEXTURE_2D, 2, GL_RGBA, GL_FLOAT, values.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_EQ(values[0], 0.25f);
    EXPECT_EQ(values[63], 0.125f);
}

TEST_F(FBOViewportOnGl, ReadsItsTexturesBackIntoTheirImages)
{
    const TextureChunkPtr texture = makeTarget(20, 10, GL_RGBA8);
    addTexture(texture);
    port->setReadBuffer(true);
    endEditCP(port);
    pass();
    const UInt8 *const data = texture->getImage()->getData();
    EXPECT_EQ(data[0], 64);
    EXPECT_EQ(data[4 * 199 + 3], 32);
}

TEST_F(FBOViewportOnGl, GrabsItsOwnPicture)
{
    addTexture(makeTarget(20, 10, GL_RGBA8));
    const ImagePtr image = Image::create();
    image->set(GL_RGBA, 1, 1);
    const GrabForegroundPtr grab = GrabForeground::create();
    grab->setImage(image);
    port->getForegrounds().push_back(grab);
    endEditCP(port);
    pass();
    ASSERT_EQ(image->getWidth(), 20);
    ASSERT_EQ(image->getHeight(), 10);
    EXPECT_EQ(image->getData()[4 * 199 + 2], 191);
}

TEST_F(FBOViewportOnGl, DoesNothingWhileNotEnabled)
{
    const TextureChunkPtr texture = makeTarget(20, 10, GL_RGBA8);
    addTexture(texture);
    port->setEnabled(false);
    pass();
    EXPECT_EQ(window->getGLObjectId(texture->getGLId()), 0u);
}

TEST_F(FBOViewportOnGl, RendersIntoTheWindowWithTheFramebufferSwitchedOff)
{
    port->setFboOn(false);
    port->setSize(0, 0, 1, 1);
    pass();
    EXPECT_EQ(test::readPixel(63, 47), Pixel({64, 128, 191, 32}));
}

TEST_F(FBOViewportOnGl, HasAFramebufferInEachWindowThatDrawsIt)
{
    const TextureChunkPtr texture = makeTarget(20, 10, GL_RGBA16F);
    addTexture(texture);
    const TestWindowPtr first = window;
    pass();
    window = makeWindow();
    ASSERT_TRUE(window->activate());
    pass();
    expectAll(texture, {0.25f, 0.5f, 0.75f, 0.125f}, 0);
    subRefCP(window);
    window = first;
    ASSERT_TRUE(window->activate());
    port->setBackground(test::makeBackground(1, 1, 1, 1));
    pass();
    expectAll(texture, {1, 1, 1, 1}, 0);
}

TEST_F(FBOViewportOnGl, GivesBackItsGLObjectsWithTheViewport)
{
    const FBOViewportPtr other = FBOViewport::create();
    addRefCP(other);
    test::fill(other, test::makeBackground(0, 0, 0));
    other->setStorageSize(8, 8);
    other->getTextures().push_back(makeTarget(8, 8, GL_RGBA8));
    endEditCP(other);
    const std::size_t before = GLObjectTable::getNumRegistered();
    other->setParent(window);
    action->setWindow(window.get());
    other->render(action.get());
    subRefCP(other);
    EXPECT_EQ(GLObjectTable::getNumRegistered(), before) << "the window still has them";
    window->frameExit();
    EXPECT_EQ(GLObjectTable::getNumRegistered(), before - 3) << "framebuffer, depth buffer and texture";
}

TEST_F(FBOViewportOnGl, NamesEachStatusOfAnIncompleteFramebufferOnceAndGoesOn)
{
    struct Case
    {
        GLenum status;
        const char *text;
    };
    const Case cases[] = {
        {GL_FRAMEBUFFER_UNDEFINED, "GL_FRAMEBUFFER_UNDEFINED (0x8219)"},
        {GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT, "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT (0x8cd6)"},
        {GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT,
         "GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT (0x8cd7)"},
        {GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS_EXT, "GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS (0x8cd9)"},
        {GL_FRAMEBUFFER_INCOMPLETE_FORMATS_EXT, "GL_FRAMEBUFFER_INCOMPLETE_FORMATS (0x8cda)"},
        {GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER, "GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER (0x8cdb)"},
        {GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER, "GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER (0x8cdc)"},
        {GL_FRAMEBUFFER_UNSUPPORTED, "GL_FRAMEBUFFER_UNSUPPORTED (0x8cdd)"},
        {GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE, "GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE (0x8d56)"},
        {GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS, "GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS (0x8da8)"},
        {0x1234, "unknown status (0x1234)"},
    };
    // A window of its own, whose functions are replaced ahead of its first frame.
    subRefCP(window);
    static GLenum status = 0;
    TestWindow::functions["glCheckFramebufferStatusEXT"] = reinterpret_cast<Window::GLExtensionFunction>(
        static_cast<GLenum (*)(GLenum)>([](GLenum) { return status; }));
    window = makeWindow();
    ASSERT_TRUE(window->activate());
    addTexture(makeTarget(20, 10, GL_RGBA8));
    int traversals = 0;
    action->registerEnterFunction(Group::getClassType(), [&](NodeCore *, Action *) {
        ++traversals;
        return Action::Continue;
    });
    for(const Case &each : cases)
    {
        status = each.status;
        LogCapture log;
        pass();
        pass();
        EXPECT_EQ(log.text(LOG_WARNING),
                  "FBOViewport::render: the framebuffer of 20 x 10 pixels is not complete: " +
                      std::string(each.text) + "\n");
        GLint bound = -1;
        glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
        EXPECT_EQ(bound, 0);
    }
    EXPECT_EQ(traversals, 0);
    status = GL_FRAMEBUFFER_COMPLETE;
    pass();
    EXPECT_EQ(traversals, 1);
}

TEST_F(FBOViewportOnGl, SaysWhyAStorageBeyondTheDriversLimitDrawsNothing)
{
    addTexture(makeTarget(20, 10, GL_RGBA8));
    port->setStorageSize(1 << 28, 10);
    endEditCP(port);
    LogCapture log;
    pass();
    EXPECT_TRUE(log.contains(LOG_WARNING, "OSGFBOViewport: depth buffer: ")) << log.text();
    EXPECT_TRUE(log.contains(LOG_WARNING, "is not complete: GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT"))
        << log.text();
}

TEST(FBOViewportFormats, AreSortedIntoDepthAndColour)
{
    for(const UInt32 format : {0x1902, 0x81A5, 0x81A6, 0x81A7, 0x8CAC})
        EXPECT_TRUE(FBOViewport::isDepthFormat(format)) << format;
    for(const UInt32 format : {GL_NONE, GL_RGBA, GL_RGBA8, GL_RGBA16F, GL_RGBA32F, GL_LUMINANCE})
        EXPECT_FALSE(FBOViewport::isDepthFormat(format)) << format;
    EXPECT_STREQ(FBOViewport::getStatusText(36053), "GL_FRAMEBUFFER_COMPLETE");
}

} // namespace
