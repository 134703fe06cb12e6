#include <Tessaly/OSGVolumeViewport.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGForeground.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGMaterialDrawable.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGPolygonForeground.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <Tessaly/OSGVolumeNode.h>

#include "VolumeScene.h"
#include "volume/VolumeData.h"
#include "volume/VolumeNodeHandler.h"

using namespace osg;

namespace
{

/// A window of 64 x 48 pixels with a volume viewport and behind it the one that shows the scene.
class Frame
{
  public:
    LogCapture log;
    Held<WindowPtr> window{EGLWindow::create()};
    Held<NodePtr> root{makeCoredNode<Group>()};
    Held<NodePtr> beacon{makeCoredNode<Transform>()};
    Held<PerspectiveCameraPtr> camera{PerspectiveCamera::create()};
    Held<VolumeViewportPtr> volumes{VolumeViewport::create()};
    Held<ViewportPtr> shown{Viewport::create()};
    std::unique_ptr<RenderAction> action{RenderAction::create()};
    std::vector<VolumeNodePtr> nodes;

    explicit Frame(int numVolumes = 1)
    {
        window->resize(64, 48);
        window->init();
        EXPECT_EQ(log.count(LOG_FATAL), 0u) << log.text(LOG_FATAL);
        Matrix place;
        place.setTranslate(0, 0, 5);
        TransformPtr::dcast(beacon->getCore())->setMatrix(place);
        endEditCP(beacon->getCore());
        root->addChild(beacon);
        camera->setBeacon(beacon);
        camera->setFov(1.0f);
        camera->setNear(0.5f);
        camera->setFar(50.0f);
        endEditCP(camera);
        const SolidBackgroundPtr background = SolidBackground::create();
        for(int i = 0; i < numVolumes; ++i)
        {
            const VolumeNodePtr node = VolumeNode::create();
            addRefCP(node);
            nodes.push_back(node);
            node->setVoxels(makeVolume<UInt8>(16, 16, 16, 100));
            standardOutput([&] { endEditCP(node, VolumeNode::VoxelsFieldMask); });
            root->addChild(makeNodeFor(node));
            volumes->getVolumeNodes().push_back(node);
        }
        endEditCP(volumes, VolumeViewport::VolumeNodesFieldMask);
        for(const ViewportPtr &port : {ViewportPtr(volumes.get()), shown.get()})
        {
            port->setCamera(camera);
            port->setRoot(root);
            port->setBackground(background);
            endEditCP(port,
                      Viewport::CameraFieldMask | Viewport::RootFieldMask | Viewport::BackgroundFieldMask);
            window->addPort(port);
        }
        log.clear();
    }
    ~Frame()
    {
        for(const VolumeNodePtr &node : nodes)
        {
            node->setVolume(nullptr);
            subRefCP(node);
        }
        root->subChild(root->findChild(beacon));
    }

    void render() { window->render(action.get()); }
    SHLChunkPtr shader(std::size_t volume = 0) { return nodes[volume]->getVolume()->getShader(); }
    /// The texture that the program of a volume reads in that place.
    TextureChunkPtr texture(UInt32 chunk, std::size_t volume = 0)
    {
        const NodePtr quad = nodes[volume]->getVolume()->getRootNode()->getChild(0);
        const MaterialPtr material = MaterialDrawablePtr::dcast(quad->getCore())->getMaterial();
        return TextureChunkPtr::dcast(ChunkMaterialPtr::dcast(material)->getChunk(chunk));
    }
    bool isAttached(std::size_t volume = 0)
    {
        return nodes[volume]->getVolume()->getRootNode()->getParent() != NullFC;
    }
};

void expectTarget(const TextureChunkPtr &texture, UInt32 imageFormat, UInt32 format, UInt32 external,
                  Int32 width, Int32 height)
{
    ASSERT_TRUE(texture != NullFC);
    EXPECT_EQ(texture->getMinFilter(), 9728u);
    EXPECT_EQ(texture->getMagFilter(), 9728u);
    EXPECT_EQ(texture->getTarget(), 3553u);
    EXPECT_EQ(texture->getInternalFormat(), format);
    EXPECT_EQ(texture->getExternalFormat(), external);
    EXPECT_EQ(texture->getImage()->getPixelFormat(), imageFormat);
    EXPECT_EQ(texture->getImage()->getDataType(), 5121);
    EXPECT_EQ(texture->getImage()->getWidth(), width);
    EXPECT_EQ(texture->getImage()->getHeight(), height);
}

void expectTargets(Frame &frame, Int32 width, Int32 height)
{
    expectTarget(frame.texture(3), 6408, 34836, 0, width, height);
    expectTarget(frame.texture(4), 6408, 34836, 0, width, height);
    expectTarget(frame.texture(5), 6408, 34842, 0, width, height);
    expectTarget(frame.texture(6), 6409, 33190, 6402, width, height);
}

/// DEBUG_VOLUME is set as long as this lives.
struct DebugVolume
{
    DebugVolume() { setenv("DEBUG_VOLUME", "", 1); }
    ~DebugVolume() { unsetenv("DEBUG_VOLUME"); }
};

} // namespace

TEST(VolumeViewportGl, TheFirstFrameOnlyPrepares)
{
    Frame frame;
    ASSERT_TRUE(frame.nodes[0]->getVolume() != nullptr);
    frame.render();
    EXPECT_EQ(frame.log.text(LOG_LOG), "VolumeViewport::initialize()");
    EXPECT_TRUE(frame.log.contains(LOG_NOTICE, "VolumeNode::initVolume()"));
    EXPECT_TRUE(frame.log.contains(LOG_NOTICE, "Initializing Textures and Fbo's...\n"));
    EXPECT_TRUE(frame.log.contains(LOG_NOTICE, "VolumeNode::attachVolume() -> Parent OK!"));
    EXPECT_EQ(frame.log.count(LOG_WARNING), 0u) << frame.log.text(LOG_WARNING);
    EXPECT_TRUE(frame.isAttached());
    expectTargets(frame, 64, 48);
    EXPECT_EQ(frame.texture(3)->getNumTransfers() + frame.texture(4)->getNumTransfers(),
              2u); // by the quad alone
    EXPECT_EQ(frame.volumes->getPixelWidth(), 64);
    EXPECT_EQ(frame.volumes->getPixelHeight(), 48);

    frame.log.clear();
    frame.action->setFrustumCulling(true);
    frame.render();
    EXPECT_TRUE(frame.action->getFrustumCulling());
    EXPECT_EQ(frame.log.text(), "");
    // The passes know the camera.
    const NodePtr exit = frame.nodes[0]->getVolume()->getBackRoot()->getChild(0);
    const Matrix matrix = TransformPtr::dcast(exit->getCore())->getMatrix();
    EXPECT_TRUE((matrix * Pnt3f(0.5f, 0.5f, 0.5f)).equals(Pnt3f(0, 0, 0), 1e-5f));
}

TEST(VolumeViewportGl, TheVolumeIsSeenInTheMiddleAndNotInTheCorners)
{
    Frame frame;
    for(int i = 0; i < 3; ++i)
        frame.render();
    ASSERT_TRUE(frame.window->activate());
    UInt8 middle[4] = {};
    UInt8 corner[4] = {};
    glReadPixels(32, 24, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, middle);
    glReadPixels(1, 1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, corner);
    frame.window->deactivate();
    // Along the ray in the middle, from one step ahead of the front face on: the voxels' 100 / 255, which
    // falls off to the border's 0 over a voxel around the face; a table that is its own argument; opacities
    // per 1/200 of the edge.
    Real32 color = 0.0f;
    Real32 alpha = 0.0f;
    for(int k = 0; alpha < 0.98f; ++k)
    {
        const Real32 depth = 0.004f * Real32(k - 1);
        const Real32 voxel = 100.0f / 255.0f * std::min(1.0f, 0.5f + 16.0f * depth);
        const Real32 opacity = 1.0f - std::pow(1.0f - voxel, 0.8f);
        color += (1.0f - alpha) * voxel * opacity;
        alpha += (1.0f - alpha) * opacity;
    }
    // The table has bytes that are cut, and a ray beside the middle is a little longer.
    const Real32 expected = 255.0f * color * alpha;
    for(int channel = 0; channel < 3; ++channel)
    {
        EXPECT_NEAR(Real32(middle[channel]), expected, 2.0f) << channel;
        EXPECT_EQ(corner[channel], 0) << channel;
    }
    EXPECT_EQ(middle[3], 255);
}

TEST(VolumeViewportGl, FollowsTheLastViewport)
{
    Frame frame;
    frame.render();
    frame.log.clear();
    frame.volumes->resize(64, 48);
    EXPECT_EQ(frame.log.count(), 0u);
    const TextureChunkPtr front = frame.texture(3);
    frame.shown->setSize(0.0f, 0.0f, 31.0f, 23.0f);
    endEditCP(frame.shown);
    frame.render();
    EXPECT_EQ(frame.log.text(LOG_NOTICE), "VolumeViewport::resize(32, 24)");
    EXPECT_TRUE(frame.texture(3) == front);
    expectTargets(frame, 32, 24);
    EXPECT_EQ(frame.volumes->getPixelWidth(), 32);
}

TEST(VolumeViewportGl, FieldChangesTakeEffectWithTheNextFrame)
{
    Frame frame;
    frame.render();
    frame.nodes[0]->setStepSize(0.02f);
    endEditCP(frame.nodes[0], VolumeNode::StepSizeFieldMask);
    frame.volumes->setEnabled(false);
    endEditCP(frame.volumes, VolumeViewport::EnabledFieldMask);
    frame.render();
    EXPECT_EQ(uniform<Real32>(frame.shader(), "stepSize"), 0.004f);
    frame.volumes->setEnabled(true);
    endEditCP(frame.volumes, VolumeViewport::EnabledFieldMask);
    frame.render();
    EXPECT_EQ(uniform<Real32>(frame.shader(), "stepSize"), 0.02f);
}

TEST(VolumeViewportGl, AChangeOfCameraMakesEverythingAnew)
{
    Frame frame;
    frame.render();
    const Held<TextureChunkPtr> front(frame.texture(3));
    frame.log.clear();
    endEditCP(frame.volumes, Viewport::CameraFieldMask);
    frame.render();
    EXPECT_EQ(frame.log.text(LOG_LOG), "VolumeViewport::initialize()");
    EXPECT_FALSE(frame.texture(3) == front.get());
    EXPECT_EQ(front.get().getRefCount(), 1);
    expectTargets(frame, 64, 48);
}

TEST(VolumeViewportGl, ThumbnailsAreShownOnce)
{
    Frame frame;
    frame.render();
    frame.render();
    EXPECT_TRUE(frame.shown->getForegrounds().empty());
    {
        const DebugVolume debug;
        frame.render();
        ASSERT_EQ(frame.shown->getForegrounds().size(), 4u);
        frame.render();
    }
    frame.render();
    ASSERT_EQ(frame.shown->getForegrounds().size(), 4u);
    // The polygons from below, in the order front, back, colour, depth.
    const UInt32 chunks[4] = {3, 4, 5, 6};
    Real32 left = -1.0f;
    for(UInt32 i = 0; i < 4; ++i)
    {
        const PolygonForegroundPtr polygon = PolygonForegroundPtr::dcast(frame.shown->getForegrounds(i));
        ASSERT_TRUE(polygon != NullFC);
        const ChunkMaterialPtr material = ChunkMaterialPtr::dcast(polygon->getMaterial());
        ASSERT_EQ(material->getChunks().size(), 1u);
        EXPECT_TRUE(material->getChunk(0) == frame.texture(chunks[i]));
        EXPECT_TRUE(polygon->getNormalizedX());
        EXPECT_TRUE(polygon->getNormalizedY());
        ASSERT_EQ(polygon->getPositions().size(), 4u);
        ASSERT_EQ(polygon->getTexCoords().size(), 4u);
        left = polygon->getPositions(0)[0];
        EXPECT_TRUE(left == 0.0f || left == 0.75f);
        EXPECT_EQ(polygon->getPositions(0), Pnt2f(left, 0.25f * Real32(i)));
        EXPECT_EQ(polygon->getPositions(1), Pnt2f(left + 0.25f, 0.25f * Real32(i)));
        EXPECT_EQ(polygon->getPositions(2), Pnt2f(left + 0.25f, 0.25f * Real32(i + 1)));
        EXPECT_EQ(polygon->getPositions(3), Pnt2f(left, 0.25f * Real32(i + 1)));
        EXPECT_EQ(polygon->getTexCoords(2), Vec3f(1, 1, 0));
    }
    // Any later strip of the process is at the left.
    const DebugVolume debug;
    Frame second;
    second.render();
    second.render();
    ASSERT_EQ(second.shown->getForegrounds().size(), 4u);
    EXPECT_EQ(PolygonForegroundPtr::dcast(second.shown->getForegrounds(0))->getPositions(0)[0], 0.0f);
}

TEST(VolumeViewportGl, TwoVolumesShareTheTextures)
{
    Frame frame(2);
    frame.render();
    frame.render();
    EXPECT_TRUE(frame.isAttached(0));
    EXPECT_TRUE(frame.isAttached(1));
    for(UInt32 chunk = 3; chunk < 7; ++chunk)
        EXPECT_TRUE(frame.texture(chunk, 0) == frame.texture(chunk, 1));
}

TEST(VolumeViewportGl, WithoutVolumesNothingIsDone)
{
    Frame frame(0);
    frame.render();
    EXPECT_EQ(frame.log.text(), "");
    EXPECT_FALSE(frame.volumes->initialize());
}

TEST(VolumeViewportGl, CoresThatAreNoVolumesAreRefused)
{
    Frame frame;
    frame.volumes->getVolumeNodes().push_back(Group::create());
    endEditCP(frame.volumes, VolumeViewport::VolumeNodesFieldMask);
    frame.render();
    EXPECT_EQ(frame.log.text(LOG_LOG), "");
    EXPECT_FALSE(frame.isAttached());
}

TEST(VolumeViewportGl, AVolumeWithoutVoxelsIsReported)
{
    Frame frame;
    frame.nodes[0]->setVolume(nullptr);
    frame.nodes[0]->setVoxels(NullFC);
    frame.render();
    EXPECT_EQ(frame.log.text(LOG_FATAL), "Error setting the volume!");
    EXPECT_EQ(frame.log.text(LOG_LOG), "");
}

TEST(VolumeViewportGl, NothingIsLeftWhenItIsGone)
{
    const auto show = []
    {
        Frame frame;
        frame.render();
        frame.render();
        endEditCP(frame.volumes, Viewport::CameraFieldMask);
        frame.render();
    };
    show(); // what is made once for all, as default materials
    const UInt32 before = FieldContainerFactory::the()->getNumContainers();
    show();
    EXPECT_EQ(FieldContainerFactory::the()->getNumContainers(), before);
}

TEST(VolumeViewport, AnotherKindOfActionRendersNothing)
{
    const Held<VolumeViewportPtr> viewport(VolumeViewport::create());
    LogCapture log;
    viewport->render(nullptr);
    const std::unique_ptr<RenderAction> action(RenderAction::create());
    viewport->render(action.get());
    EXPECT_EQ(log.count(), 0u);
}
