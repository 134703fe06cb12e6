#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGVolumeNode.h>
#include <Tessaly/OSGVolumeViewport.h>

OSG_USING_NAMESPACE

namespace
{

constexpr int frames = 9;
constexpr UInt32 side = 48;

struct Shared
{
    EGLWindowPtr window;
    ImagePtr picture;
    std::vector<UInt8> middle[frames];
};

void drawFrames(void *argument)
{
    Shared &shared = *static_cast<Shared *>(argument);
    Barrier *const barrier = Barrier::get("drawing the volume");
    RenderAction *action = nullptr;
    for(int frame = 0; frame < frames; ++frame)
    {
        barrier->enter(2);
        ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
        barrier->enter(2);
        if(action == nullptr)
        {
            action = RenderAction::create();
            shared.window->init();
            shared.window->render(action); // only prepares
        }
        shared.window->render(action);
        const UInt8 *const pixel = shared.picture->getData() + ((side / 2) * side + side / 2) * 3;
        shared.middle[frame].assign(pixel, pixel + 3);
        Thread::getCurrentChangeList()->clearAll();
    }
    delete action;
}

/// A table of one colour, opaque from value 1 on.
TextureChunkPtr paint(UInt8 red, UInt8 green)
{
    std::vector<UInt8> entries(4 * 256, 0);
    for(std::size_t i = 1; i < 256; ++i)
    {
        entries[4 * i] = red;
        entries[4 * i + 1] = green;
        entries[4 * i + 3] = 255;
    }
    const ImagePtr image = Image::create();
    image->set(Image::OSG_RGBA_PF, 256, 1, 1, 1, 1, 0.0, entries.data());
    endEditCP(image);
    const TextureChunkPtr chunk = TextureChunk::create();
    chunk->setImage(image);
    endEditCP(chunk);
    return chunk;
}

// The handler of a volume is made once per aspect, from fields that came through the change list.
TEST(VolumeThreadTest, AnotherAspectDrawsTheVolumeAsTheApplicationChangesIt)
{
    osgInit(0, nullptr);
    Shared shared;
    const ImagePtr scan = Image::create();
    scan->set(Image::OSG_L_PF, 16, 16, 16);
    std::memset(scan->editData(), 200, 16 * 16 * 16);
    endEditCP(scan);
    const TextureChunkPtr voxels = TextureChunk::create();
    voxels->setImage(scan);
    endEditCP(voxels);
    const VolumeNodePtr volume = VolumeNode::create();
    volume->setVoxels(voxels);
    volume->setTransferFunc(paint(255, 0));
    volume->setStepSize(0.02f);
    endEditCP(volume);

    TransformPtr eye;
    const NodePtr beacon = makeCoredNode<Transform>(&eye);
    eye->getMatrix().setTranslate(0, 0, 3);
    endEditCP(eye);
    const NodePtr root = makeCoredNode<Group>();
    addRefCP(root);
    root->addChild(beacon);
    root->addChild(makeNodeFor(volume));
    endEditCP(root);
    const PerspectiveCameraPtr camera = PerspectiveCamera::create();
    camera->setBeacon(beacon);
    camera->setFov(0.6f);
    camera->setNear(0.1f);
    camera->setFar(10);
    endEditCP(camera);
    const SolidBackgroundPtr background = SolidBackground::create();
    const VolumeViewportPtr passes = VolumeViewport::create();
    const ViewportPtr view = Viewport::create();
    for(const ViewportPtr &port : {ViewportPtr(passes), view})
    {
        port->setCamera(camera);
        port->setRoot(root);
        port->setBackground(background);
    }
    passes->getVolumeNodes().push_back(volume);
    endEditCP(passes);
    shared.picture = Image::create();
    addRefCP(shared.picture);
    shared.picture->set(Image::OSG_RGB_PF, side, side);
    endEditCP(shared.picture);
    const GrabForegroundPtr grab = GrabForeground::create();
    grab->setImage(shared.picture);
    endEditCP(grab);
    view->setSize(0, 0, 1, 1);
    view->getForegrounds().push_back(grab);
    endEditCP(view);
    shared.window = EGLWindow::create();
    addRefCP(shared.window);
    shared.window->resize(side, side);
    shared.window->addPort(passes);
    shared.window->addPort(view);
    endEditCP(shared.window);

    Thread *const drawer = Thread::get("drawer of the volume");
    ASSERT_TRUE(drawer->runFunction(&drawFrames, 1, &shared));
    Barrier *const barrier = Barrier::get("drawing the volume");
    for(int frame = 0; frame < frames; ++frame)
    {
        barrier->enter(2);
        barrier->enter(2);
        Thread::getCurrentChangeList()->clearAll();
        // The colour of the next frame, made while this one is drawn.
        beginEditCP(volume, VolumeNode::TransferFuncFieldMask);
        volume->setTransferFunc(frame % 2 == 0 ? paint(0, 255) : paint(255, 0));
        endEditCP(volume, VolumeNode::TransferFuncFieldMask);
    }
    Thread::join(drawer);

    for(int frame = 0; frame < frames; ++frame)
    {
        ASSERT_EQ(shared.middle[frame].size(), 3u);
        const int strong = shared.middle[frame][frame % 2];
        const int weak = shared.middle[frame][1 - frame % 2];
        EXPECT_GT(strong, 240) << "frame " << frame;
        EXPECT_LT(weak, 5) << "frame " << frame;
    }
    subRefCP(shared.window);
    subRefCP(shared.picture);
    volume->setVolume(nullptr);
    subRefCP(root);
    Thread::getCurrentChangeList()->clearAll();
}

} // namespace
