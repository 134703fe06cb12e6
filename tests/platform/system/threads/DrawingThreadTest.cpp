#include <gtest/gtest.h>

#include <atomic>

#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>

OSG_USING_NAMESPACE

namespace
{

constexpr int frames = 24;
constexpr UInt32 side = 64;

struct Shared
{
    EGLWindowPtr window;
    ImagePtr picture;
    int colour[frames] = {};   ///< of the pixel in the middle, red channel
    int left[frames] = {};     ///< of a pixel at the left
};

/// Draws each state of the scene that the application hands over, while the application makes the next one.
void drawFrames(void *argument)
{
    Shared &shared = *static_cast<Shared *>(argument);
    Barrier *const barrier = Barrier::get("drawing");
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
        }
        shared.window->render(action);
        const UInt8 *const pixels = shared.picture->getData();
        shared.colour[frame] = pixels[((side / 2) * side + side / 2) * 3];
        shared.left[frame] = pixels[((side / 2) * side + 4) * 3];
        Thread::getCurrentChangeList()->clearAll();
    }
    delete action;
    shared.window->deactivate();
}

NodePtr unlitBox(Real32 red)
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    beginEditCP(material);
    material->setLit(false);
    material->setDiffuse(Color3f(red, 0, 0));
    endEditCP(material);
    const GeometryPtr geometry = makeBoxGeo(1, 1, 1, 1, 1, 1);
    beginEditCP(geometry);
    geometry->setMaterial(material);
    endEditCP(geometry);
    return makeNodeFor(geometry);
}

TEST(DrawingThreadTest, AnotherAspectDrawsTheSceneWhileTheApplicationEditsIt)
{
    osgInit(0, nullptr);
    Shared shared;

    TransformPtr place;
    const NodePtr mover = makeCoredNode<Transform>(&place);
    NodePtr box = unlitBox(1.0f);
    const NodePtr root = makeCoredNode<Group>();
    addRefCP(root);
    TransformPtr eye;
    const NodePtr beacon = makeCoredNode<Transform>(&eye);
    Matrix back;
    back.setTranslate(0, 0, 3);
    beginEditCP(eye);
    eye->setMatrix(back);
    endEditCP(eye);
    beginEditCP(mover, Node::ChildrenFieldMask);
    mover->addChild(box);
    endEditCP(mover, Node::ChildrenFieldMask);
    beginEditCP(root, Node::ChildrenFieldMask);
    root->addChild(beacon);
    root->addChild(mover);
    endEditCP(root, Node::ChildrenFieldMask);

    const PerspectiveCameraPtr camera = PerspectiveCamera::create();
    beginEditCP(camera);
    camera->setBeacon(beacon);
    camera->setFov(0.9f);
    camera->setNear(0.1f);
    camera->setFar(10);
    endEditCP(camera);
    const SolidBackgroundPtr background = SolidBackground::create();
    shared.picture = Image::create();
    addRefCP(shared.picture);
    shared.picture->set(Image::OSG_RGB_PF, side, side);
    endEditCP(shared.picture);
    const GrabForegroundPtr grab = GrabForeground::create();
    beginEditCP(grab);
    grab->setImage(shared.picture);
    endEditCP(grab);
    const ViewportPtr view = Viewport::create();
    beginEditCP(view);
    view->setCamera(camera);
    view->setRoot(root);
    view->setBackground(background);
    view->setSize(0, 0, 1, 1);
    view->getForegrounds().push_back(grab);
    endEditCP(view);
    shared.window = EGLWindow::create();
    addRefCP(shared.window);
    beginEditCP(shared.window);
    shared.window->resize(side, side);
    shared.window->addPort(view);
    endEditCP(shared.window);

    Thread *const drawer = Thread::get("drawer of the scene");
    ASSERT_TRUE(drawer->runFunction(&drawFrames, 1, &shared));
    Barrier *const barrier = Barrier::get("drawing");
    for(int frame = 0; frame < frames; ++frame)
    {
        barrier->enter(2);
        barrier->enter(2);
        Thread::getCurrentChangeList()->clearAll();
        // The next state, made while this one is drawn: an other box, and every third frame it stands aside.
        const NodePtr next = unlitBox(Real32(frame + 2) / Real32(frames + 1));
        beginEditCP(mover, Node::ChildrenFieldMask);
        mover->subChild(box);
        mover->addChild(next);
        endEditCP(mover, Node::ChildrenFieldMask);
        box = next;
        Matrix matrix;
        if((frame + 1) % 3 == 0)
            matrix.setTranslate(-1.1f, 0, 0);
        beginEditCP(place, Transform::MatrixFieldMask);
        place->setMatrix(matrix);
        endEditCP(place, Transform::MatrixFieldMask);
    }
    Thread::join(drawer);

    for(int frame = 0; frame < frames; ++frame)
    {
        const bool aside = frame != 0 && frame % 3 == 0;
        const int red = frame == 0 ? 255 : int(255.0f * Real32(frame + 1) / Real32(frames + 1) + 0.5f);
        EXPECT_NEAR(shared.colour[frame], aside ? 0 : red, 1) << "frame " << frame;
        EXPECT_NEAR(shared.left[frame], aside ? red : 0, 1) << "frame " << frame;
    }
    subRefCP(shared.window);
    subRefCP(shared.picture);
    subRefCP(root);
    Thread::getCurrentChangeList()->clearAll();
}

} // namespace
