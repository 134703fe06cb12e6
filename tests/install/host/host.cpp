#include <OpenSG/OSGConfig.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <Tessaly/Tessaly.h>
#include <Tessaly/OSGVolumeNode.h>
#include <Tessaly/OSGVolumeViewport.h>
#include <Tessaly/OSGBasicVolumeShadingStyle.h>

OSG_USING_NAMESPACE

int main(int argc, char **argv)
{
    osgInit(argc, argv);
    initTessalyExtention();

    ImagePtr scan = ImageFileHandler::the().read(argv[1]);
    if(scan == NullFC)
        return 1;

    TextureChunkPtr voxels = TextureChunk::create();
    beginEditCP(voxels);
    voxels->setImage(scan);
    endEditCP(voxels);

    BasicVolumeShadingStylePtr style = BasicVolumeShadingStyle::create();
    beginEditCP(style, BasicVolumeShadingStyle::LightingFieldMask);
    style->setLighting(true);
    endEditCP(style, BasicVolumeShadingStyle::LightingFieldMask);

    VolumeNodePtr volume = VolumeNode::create();
    beginEditCP(volume);
    volume->setVoxels(voxels);
    volume->setShadingStyle(style);
    volume->setDimensions(Vec3f(-1, -1, -1));
    endEditCP(volume);

    NodePtr head = Node::create();
    beginEditCP(head, Node::CoreFieldMask);
    head->setCore(volume);
    endEditCP(head, Node::CoreFieldMask);

    NodePtr bar = makeBox(400, 24, 24, 1, 1, 1);

    Matrix place;
    place.setTranslate(0, 0, 700);
    TransformPtr eye = Transform::create();
    beginEditCP(eye, Transform::MatrixFieldMask);
    eye->setMatrix(place);
    endEditCP(eye, Transform::MatrixFieldMask);
    NodePtr beacon = Node::create();
    beginEditCP(beacon, Node::CoreFieldMask);
    beacon->setCore(eye);
    endEditCP(beacon, Node::CoreFieldMask);

    DirectionalLightPtr sun = DirectionalLight::create();
    beginEditCP(sun);
    sun->setDirection(Vec3f(0.3f, 0.4f, 1));
    sun->setDiffuse(Color4f(1, 1, 1, 1));
    sun->setBeacon(beacon);
    endEditCP(sun);

    NodePtr root = Node::create();
    beginEditCP(root, Node::CoreFieldMask | Node::ChildrenFieldMask);
    root->setCore(sun);
    root->addChild(beacon);
    root->addChild(bar);
    root->addChild(head);
    endEditCP(root, Node::CoreFieldMask | Node::ChildrenFieldMask);

    PerspectiveCameraPtr camera = PerspectiveCamera::create();
    beginEditCP(camera);
    camera->setBeacon(beacon);
    camera->setFov(0.7f);
    camera->setNear(1);
    camera->setFar(2000);
    endEditCP(camera);

    SolidBackgroundPtr sky = SolidBackground::create();
    beginEditCP(sky, SolidBackground::ColorFieldMask);
    sky->setColor(Color3f(0.1f, 0.1f, 0.2f));
    endEditCP(sky, SolidBackground::ColorFieldMask);

    VolumeViewportPtr passes = VolumeViewport::create();
    beginEditCP(passes);
    passes->setCamera(camera);
    passes->setRoot(root);
    passes->setBackground(sky);
    passes->getVolumeNodes().push_back(volume);
    endEditCP(passes);

    ImagePtr picture = Image::create();
    picture->set(Image::OSG_RGB_PF, 640, 480);
    GrabForegroundPtr grab = GrabForeground::create();
    beginEditCP(grab);
    grab->setImage(picture);
    endEditCP(grab);

    ViewportPtr view = Viewport::create();
    beginEditCP(view);
    view->setCamera(camera);
    view->setRoot(root);
    view->setBackground(sky);
    view->setSize(0, 0, 1, 1);
    view->getForegrounds().push_back(grab);
    endEditCP(view);

    EGLWindowPtr window = EGLWindow::create();
    beginEditCP(window);
    window->resize(640, 480);
    window->addPort(passes);
    window->addPort(view);
    endEditCP(window);
    window->init();

    RenderAction *action = RenderAction::create();
    for(int frame = 0; frame < 3; ++frame)
        window->render(action);

    bool written = ImageFileHandler::the().write(picture, argv[2]);
    delete action;
    osgExit();
    return written ? 0 : 1;
}
