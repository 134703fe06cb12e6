/// \file
/// Bad sizes, missing textures and a GL that lacks something: a line in the log, and the frame goes on.

#include "DropletScene.h"

#include <limits>

#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGWindow.h>
#include <Tessaly/OSGDropletFlowViewport.h>

OSG_USING_NAMESPACE
using namespace droplet_test;

namespace
{

/// A window with a simulation and behind it a viewport that clears to blue: what tells that the frame went
/// on.
struct Window2
{
    Held<WindowPtr> window{EGLWindow::create()};
    std::unique_ptr<RenderAction> action{RenderAction::create()};
    Held<ChunkMaterialPtr> material;
    Held<NodePtr> object{makeObject(material)};
    Held<DropletFlowViewportPtr> droplets;
    Held<ImagePtr> picture;

    Window2()
    {
        window->resize(32, 32);
        window->init();
        droplets->setRoot(object);
        droplets->setMaterial(material);
        droplets->setSurfaceMapSize(Vec2f(16, 16));
        droplets->setDirty(false);
        window->addPort(droplets.ptr);

        const ViewportPtr shown = Viewport::create();
        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(makeCoredNode<Group>());
        camera->setFov(1.0f);
        camera->setNear(0.1f);
        camera->setFar(10.0f);
        shown->setCamera(camera);
        shown->setRoot(makeCoredNode<Group>());
        const SolidBackgroundPtr blue = SolidBackground::create();
        blue->setColor(Color3f(0, 0, 1));
        shown->setBackground(blue);
        picture->set(Image::OSG_RGB_PF, 32, 32);
        const GrabForegroundPtr grab = GrabForeground::create();
        grab->setImage(picture);
        shown->getForegrounds().push_back(grab);
        endEditCP(shown);
        window->addPort(shown);
    }
    ~Window2()
    {
        window->activate();
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    }

    /// Frames in which all sorts of things happen.
    void frames()
    {
        for(int i = 0; i < 6; ++i)
        {
            droplets->setTime(1.0 + i);
            if(i == 3)
                droplets->getSources().push_back(Vec3f(0.5f, 0.5f, 0.5f));
            if(i == 4)
                droplets->getSources().clear();
            droplets->setPerturbAngle(0.1f * Real32(i));
            endEditCP(droplets.ptr, DropletFlowViewport::TimeFieldMask |
                                        DropletFlowViewport::SourcesFieldMask |
                                        DropletFlowViewport::PerturbAngleFieldMask);
            UInt8 *const pixels = picture->editData();
            std::fill(pixels, pixels + picture->getSize(), UInt8(77));
            window->render(action.get());
            EXPECT_EQ(pixels[2], 255) << "frame " << i << " did not go on";
            EXPECT_EQ(pixels[0], 0);
        }
    }
};

struct Unmask
{
    ~Unmask() { osg::Window::unmaskAll(); }
};

} // namespace

TEST(DropletFailures, AMapWithoutCellsLogsALineAndRunsNoStep)
{
    const std::pair<Vec2f, const char *> sizes[] = {
        {Vec2f(0, 16), "0 x 16"},
        {Vec2f(16, 0.5f), "16 x 0"},
        {Vec2f(-5, 16), "-5 x 16"},
        {Vec2f(std::numeric_limits<float>::quiet_NaN(), 3), "0 x 3"},
        {Vec2f(-std::numeric_limits<float>::infinity(), 3), "-2147483648 x 3"}};
    for(const auto &[size, text] : sizes)
        for(const int mode : {0, 1, 2})
        {
            SCOPED_TRACE(text);
            Window2 w;
            w.droplets->setSurfaceMapSize(size);
            w.droplets->setMatMode(mode);
            LogCapture log;
            w.frames();
            EXPECT_EQ(log.text(LOG_WARNING), std::string("DropletFlow: there is no surface map of ") + text +
                                                 " cells, no step runs\n");
            EXPECT_EQ(w.material->getChunks().size(), 0u);
            // And it recovers.
            w.droplets->setSurfaceMapSize(Vec2f(16, 16));
            endEditCP(w.droplets.ptr, DropletFlowViewport::SurfaceMapSizeFieldMask);
            log.clear();
            w.frames();
            EXPECT_EQ(log.text(LOG_WARNING), "");
            EXPECT_EQ(w.material->getChunks().size(), mode == 0 ? 1u : 6u);
        }
}

TEST(DropletFailures, AMapBeyondAllMemoryIsRefused)
{
    Window2 w;
    w.droplets->setSurfaceMapSize(Vec2f(1e30f, 1e9f));
    LogCapture log;
    w.frames();
    EXPECT_TRUE(log.contains(
        LOG_WARNING,
        "DropletFlow: no memory for surface maps of 2147483647 x 1000000000 cells, no step runs\n"))
        << log.text();
}

TEST(DropletFailures, AMapBeyondTheLimitOfGlRunsNoStepAndLogsIt)
{
    Window2 w;
    w.droplets->setSurfaceMapSize(Vec2f(100000, 2));
    LogCapture log;
    w.frames();
    EXPECT_GE(log.count(LOG_WARNING), 1u);
    w.window->activate();
}

TEST(DropletFailures, ANoiseMapWithoutTexelsLogsALineAndLeavesTheNoise)
{
    for(const auto &[size, text] :
        {std::pair<Vec2f, const char *>{Vec2f(0, 4), "0 x 4"}, {Vec2f(4, -1), "4 x -1"}})
    {
        Stage stage;
        const Held<NodePtr> object(makeObject());
        DropletFlow flow(object, NullFC, 8, 8, 0, NullFC);
        const ImagePtr before = flow.getNoiseMap()->getImage();
        LogCapture log;
        flow.createNoiseMap(Int32(size[0]), Int32(size[1]));
        EXPECT_EQ(log.text(LOG_WARNING),
                  std::string("DropletFlow::createNoiseMap: there is no noise map of ") + text + " texels\n");
        EXPECT_EQ(flow.getNoiseMap()->getImage(), before);
    }
    Window2 w;
    w.droplets->setNoiseMapSize(Vec2f(-3, 8));
    w.frames();
}

TEST(DropletFailures, AnIntervalOfZeroAndAContactAngleOfZeroLogTheirLines)
{
    Window2 w;
    w.droplets->setTimeDelay(0.0);
    w.droplets->setContactAngle(0.0f);
    LogCapture log;
    w.frames();
    EXPECT_EQ(log.text(LOG_WARNING),
              "DropletSources::createSplat: with a contact angle of 0 there is no droplet\n"
              "DropletFlowTimer::setInterval: with an interval of 0 no step runs\n");
}

TEST(DropletFailures, ATextureWithoutAnImageLogsALineAndRunsNoStep)
{
    for(const bool emptyImage : {false, true})
    {
        Window2 w;
        const Held<TextureChunkPtr> texture;
        if(emptyImage)
            texture->setImage(Image::create());
        endEditCP(texture.ptr);
        w.droplets->getTextures().push_back(texture);
        LogCapture log;
        w.frames();
        EXPECT_EQ(log.text(LOG_WARNING),
                  "DropletFlow: the texture for the surface map has no size, no step runs\n");
        EXPECT_EQ(w.material->getChunks().size(), 0u);
    }
    // A null entry is none.
    Window2 w;
    w.droplets->getTextures().push_back(NullFC);
    LogCapture log;
    w.frames();
    EXPECT_EQ(log.text(LOG_WARNING), "");
    EXPECT_EQ(w.material->getChunks().size(), 1u);
}

TEST(DropletFailures, AnObjectWithoutCoordinatesOrCoreIsNoFailure)
{
    Window2 w;
    w.droplets->setRoot(Node::create());
    w.droplets->setMaterial(NullFC);
    LogCapture log;
    w.frames();
    const GeometryPtr bare = makePlaneGeo(1, 1, 1, 1);
    bare->setTexCoords(NullFC);
    bare->setNormals(NullFC);
    endEditCP(bare);
    w.droplets->setRoot(makeNodeFor(bare));
    endEditCP(w.droplets.ptr, DropletFlowViewport::SurfaceMapSizeFieldMask);
    w.frames();
    EXPECT_EQ(log.text(LOG_WARNING), "");
}

TEST(DropletFailures, NothingAtAllIsNoFailureOfTheSimulation)
{
    Stage stage;
    DropletFlow flow(NullFC, NullFC, 8, 8, 2, NullFC);
    flow.bakeSurfaceMaps(0.5f);
    flow.updateInvViewMatrix();
    flow.tick(nullptr, 0.0, 0);
    EXPECT_EQ(uniform<Matrix>(flow.getForceShader(), "invViewMatrix"), Matrix());
    for(const auto &cell : stage.read(flow.getNormalMap()).cells)
        ASSERT_EQ(cell[2], 1.0f);
}

TEST(DropletFailures, WithoutARenderCallNothingIsDrawn)
{
    Stage stage;
    const Held<NodePtr> object(makeObject());
    DropletFlow flow(object, NullFC, 8, 8, 0, NullFC);
    DropletFlowContext::get()->setRender(NullFC, nullptr);
    EXPECT_FALSE(flow.tick(nullptr, 0.0, 0));
    flow.bakeSurfaceMaps(0.5f);
    LogCapture log;
    flow.getSources()->addSource(Vec4f(0.5f, 0.5f, 0.5f, 1));
    flow.getSources()->render(false);
    EXPECT_EQ(log.text(LOG_WARNING), "DropletFlowContext::render: there is no action with a window\n");
    EXPECT_EQ(stage.read(flow.getSurfaceMap(1)).volume(), 0.0);
    stage.begin();
    flow.getSources()->render(false);
    EXPECT_GT(stage.read(flow.getSurfaceMap(1)).volume(), 1.0);
}

TEST(DropletFailures, AGlWithoutFramebufferObjectsLogsItAndGoesOn)
{
    const Unmask unmask;
    osg::Window::maskExtension("GL_EXT_framebuffer_object");
    osg::Window::maskExtension("GL_ARB_framebuffer_object");
    Window2 w;
    LogCapture log;
    w.frames();
    EXPECT_TRUE(log.contains(LOG_WARNING, "FBOViewport::render: the window has no framebuffer objects\n"))
        << log.text();
}

TEST(DropletFailures, AGlWithoutProgramsLogsItOnceAndGoesOn)
{
    const Unmask unmask;
    for(const char *const name : {"GL_ARB_shader_objects", "GL_ARB_shading_language_100",
                                  "GL_ARB_vertex_shader", "GL_ARB_fragment_shader"})
        osg::Window::maskExtension(name);
    Window2 w;
    LogCapture log;
    w.frames();
    if(log.count(LOG_WARNING) != 0)
        EXPECT_EQ(log.text(LOG_WARNING), "DropletFlow: the window has no GLSL, no step runs\n");
    else
        ADD_FAILURE() << "the mask has no effect";
}

namespace
{

/// The maps of volume and of normals behind five steps with a droplet, in a GL without that extension.
std::vector<Map> mapsWithout(const char *extension, int width, int height)
{
    const Unmask unmask;
    osg::Window::maskExtension(extension);
    Stage stage;
    const Held<NodePtr> object(makeObject());
    DropletFlow flow(object, NullFC, width, height, 0, NullFC);
    flow.bakeSurfaceMaps(0.0f);
    flow.getSources()->createSplat(1.570796f);
    flow.getSources()->addSource(Vec4f(0.5f, 0.5f, 0.5f, 1));
    flow.getSources()->render(false);
    for(int step = 0; step < 5; ++step)
        flow.tick(nullptr, 0.0, 0);
    return {stage.read(flow.getSurfaceMap(1)), stage.read(flow.getNormalMap())};
}

} // namespace

TEST(DropletFailures, AGlWithoutOtherExtensionsGivesTheSameMaps)
{
    const std::vector<Map> expected = mapsWithout("none at all", 16, 8);
    ASSERT_GT(expected[0].volume(), 2.0);
    ASSERT_NE(expected[0].at(8, 4)[1], 0.0f);
    ASSERT_EQ(expected[1].at(8, 4)[2], 1.0f);
    for(const char *const name : {"GL_ARB_texture_float", "GL_ARB_texture_non_power_of_two",
                                  "GL_ARB_multitexture", "GL_EXT_framebuffer_object"})
    {
        SCOPED_TRACE(name);
        LogCapture log;
        const std::vector<Map> maps = mapsWithout(name, 16, 8);
        EXPECT_EQ(log.text(LOG_WARNING), "");
        for(std::size_t i = 0; i < maps.size(); ++i)
        {
            EXPECT_EQ(maps[i].width, 16);
            EXPECT_EQ(maps[i].height, 8);
            EXPECT_EQ(maps[i].cells, expected[i].cells);
        }
    }
}

TEST(DropletFailures, AGlWithoutTexturesOfTheMapsSizeLogsItOnceAndRunsNoStep)
{
    const Unmask unmask;
    osg::Window::maskExtension("GL_ARB_texture_non_power_of_two");
    for(const auto &[size, text] :
        {std::pair<Vec2f, const char *>{Vec2f(20, 16), "20 x 16"}, {Vec2f(16, 12), "16 x 12"}})
    {
        Window2 w;
        w.droplets->setSurfaceMapSize(size);
        w.droplets->setMatMode(1);
        LogCapture log;
        w.frames();
        EXPECT_EQ(log.text(LOG_WARNING),
                  std::string("DropletFlow: the window has no textures of ") + text +
                      " (GL_ARB_texture_non_power_of_two), no step runs\n");
    }
    // Sides that are powers of two need nothing of that.
    Window2 w;
    LogCapture log;
    w.frames();
    EXPECT_EQ(log.text(LOG_WARNING), "");
}

TEST(DropletFailures, AMapWhoseFormatCannotBeDrawnToLogsTheIncompleteFramebuffer)
{
    Window2 w;
    const Held<TextureChunkPtr> texture;
    const Held<ImagePtr> image;
    image->set(Image::OSG_L_PF, 16, 16);
    endEditCP(image.ptr);
    texture->setImage(image);
    // A compressed texture is none that anything can be drawn to.
    texture->setInternalFormat(0x83F1);
    endEditCP(texture.ptr);
    w.droplets->getTextures().push_back(texture);
    LogCapture log;
    w.frames();
    EXPECT_TRUE(
        log.contains(LOG_WARNING, "FBOViewport::render: the framebuffer of 16 x 16 pixels is not complete"))
        << log.text();
}

TEST(DropletFailures, AWindowThatGoesIsNotMissed)
{
    Held<ChunkMaterialPtr> material;
    const Held<NodePtr> object(makeObject(material));
    const Held<DropletFlowViewportPtr> droplets;
    droplets->setRoot(object);
    droplets->setMaterial(material);
    droplets->setSurfaceMapSize(Vec2f(16, 16));
    for(int i = 0; i < 3; ++i)
    {
        const Held<WindowPtr> window{WindowPtr(EGLWindow::create())};
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        window->resize(16, 16);
        window->init();
        window->addPort(droplets.ptr);
        for(int frame = 0; frame < 3; ++frame)
        {
            droplets->setTime(i * 10.0 + frame);
            endEditCP(droplets.ptr, DropletFlowViewport::TimeFieldMask);
            window->render(action.get());
        }
        window->subPort(ViewportPtr(droplets.ptr));
    }
    EXPECT_EQ(material->getChunks().size(), 1u);
    DropletFlowContext::get()->setRender(NullFC, nullptr);
}
