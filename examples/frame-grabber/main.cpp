/// \file
/// A ring that turns, grabbed through three buffers in turn: what the image holds in each frame lags the
/// picture by two. Writes a strip of the grabbed frames to a PNG file, whose name is the argument.

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGQuaternion.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGPBOGrabForeground.h>
#include <Tessaly/Tessaly.h>

#include <memory>

OSG_USING_NAMESPACE

namespace
{

constexpr Int32 ring = 3;
constexpr Int32 side = 180;
constexpr Int32 columns = 6;
constexpr Int32 rows = 2;

} // namespace

int main(int argc, char **argv)
{
    initTessalyExtention();
    if(!osgInit(argc, argv))
        return 1;
    bool written = false;
    {
        const SimpleMaterialPtr material = SimpleMaterial::create();
        material->setAmbient(Color3f(0.25f, 0.12f, 0.05f));
        material->setDiffuse(Color3f(0.95f, 0.5f, 0.2f));
        material->setSpecular(Color3f(0.4f, 0.4f, 0.4f));
        material->setShininess(30.f);
        endEditCP(material);
        const GeometryPtr shape = makeTorusGeo(0.22f, 0.55f, 32, 64);
        shape->setMaterial(material);
        endEditCP(shape);
        const TransformPtr turn = Transform::create();
        const NodePtr turned = makeNodeFor(turn);
        turned->addChild(makeNodeFor(shape));

        Matrix eye;
        MatrixLookAt(eye, Pnt3f(0, 0.6f, 2.6f), Pnt3f(0, 0, 0), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        const DirectionalLightPtr light = DirectionalLight::create();
        light->setDirection(Vec3f(-0.5f, 0.6f, 1.f));
        light->setBeacon(beacon);
        endEditCP(light);
        const NodePtr root = makeNodeFor(light);
        root->addChild(beacon);
        root->addChild(turned);
        endEditCP(root);

        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.7f);
        camera->setNear(0.1f);
        camera->setFar(10.f);
        endEditCP(camera);
        const SolidBackgroundPtr background = SolidBackground::create();
        background->setColor(Color3f(0.16f, 0.2f, 0.28f));
        background->setAlpha(1.f);
        endEditCP(background);

        // The image is given the viewport's size and format by the grabber.
        const ImagePtr grabbed = Image::create();
        const PBOGrabForegroundPtr grab = PBOGrabForeground::create();
        grab->setImage(grabbed);
        grab->setNumPBOs(ring);
        endEditCP(grab);
        const ViewportPtr viewport = Viewport::create();
        viewport->setCamera(camera);
        viewport->setRoot(root);
        viewport->setBackground(background);
        viewport->getForegrounds().push_back(grab);
        endEditCP(viewport);
        const EGLWindowPtr window = EGLWindow::create();
        addRefCP(window);
        window->resize(side, side);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());

        const ImagePtr strip = Image::create();
        addRefCP(strip);
        strip->set(Image::OSG_RGBA_PF, columns * side, rows * side);
        for(Int32 frame = 0; frame < columns * rows + ring - 1; ++frame)
        {
            turn->getMatrix().setRotate(Quaternion(Vec3f(1, 0.3f, 0), 0.26f * Real32(frame)));
            endEditCP(turn);
            window->render(action.get());
            // The image now holds frame `frame + 1 - ring`; ahead of the first one it is undefined.
            const Int32 number = frame + 1 - ring;
            if(number >= 0)
                strip->setSubData(number % columns * side, (rows - 1 - number / columns) * side, 0, side,
                                  side, 1, grabbed->getData());
        }
        written = strip->write(argc > 1 ? argv[1] : "frame-grabber.png");
        subRefCP(strip);
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
