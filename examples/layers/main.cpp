/// \file
/// A layer of seven cards and a ray through all of them. Each pick finds the nearest card that can be picked,
/// which is then made unpickable, so that the next pick goes behind it; a ball marks each hit. The second and
/// the fourth card are not drawn, and are hit all the same. The sixth can never be picked. Draws to a PNG
/// file, whose name is the argument.

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGLayer.h>
#include <Tessaly/Tessaly.h>

#include <cstdio>
#include <memory>

OSG_USING_NAMESPACE

namespace
{

constexpr UInt32 numCards = 7;

NodePtr placed(const GeometryPtr &geometry, const Color3f &color, const Pnt3f &position,
               Real32 transparency = 0)
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    material->setDiffuse(color);
    material->setAmbient(color);
    material->setTransparency(transparency);
    endEditCP(material);
    geometry->setMaterial(material);
    endEditCP(geometry);
    Matrix matrix;
    matrix.setTranslate(position[0], position[1], position[2]);
    const TransformPtr place = Transform::create();
    place->setMatrix(matrix);
    const NodePtr node = makeNodeFor(place);
    node->addChild(makeNodeFor(geometry));
    endEditCP(node);
    return node;
}

} // namespace

int main(int argc, char **argv)
{
    initTessalyExtention();
    if(!osgInit(argc, argv))
        return 1;
    bool written = false;
    {
        const SolidBackgroundPtr background = SolidBackground::create();
        background->setColor(Color3f(0.93f, 0.93f, 0.91f));
        endEditCP(background);
        const DirectionalLightPtr light = DirectionalLight::create();
        const NodePtr root = makeNodeFor(light);
        light->setBeacon(root);
        light->setDirection(Vec3f(0.4f, 0.7f, 0.6f));
        light->setAmbient(Color4f(0.35f, 0.35f, 0.35f, 1));
        endEditCP(light);

        const LayerPtr layer = Layer::create();
        const NodePtr cards = makeNodeFor(layer);
        for(UInt32 i = 0; i < numCards; ++i)
        {
            const Real32 share = Real32(i) / Real32(numCards - 1);
            const Color3f color(0.9f - 0.7f * share, 0.35f + 0.2f * share, 0.2f + 0.6f * share);
            cards->addChild(
                placed(makeBoxGeo(0.06f, 2, 2, 1, 1, 1), color, Pnt3f(1.2f * Real32(i) - 3.6f, 0, 0), 0.35f));
            layer->getVisible().push_back(i != 1 && i != 3);
            layer->getPickable().push_back(i != 5);
        }
        endEditCP(cards);
        endEditCP(layer);
        root->addChild(cards);
        endEditCP(root);

        const Line ray(Pnt3f(-5, 0.9f, 0.3f), Vec3f(10, -1.5f, -0.4f));
        const std::unique_ptr<IntersectAction> pick(IntersectAction::create(ray));
        for(pick->apply(cards); layer->getHit() >= 0; pick->apply(cards))
        {
            // The node hit is the box; the card in the layer is what stands above it.
            const UInt32 card = UInt32(cards->findChild(pick->getHitObject()->getParent()));
            std::printf("card %u at distance %.2f%s\n", card, double(layer->getHit()),
                        layer->getVisible(card) != 0 ? "" : ", not drawn");
            root->addChild(placed(makeSphereGeo(3, 0.1f), Color3f(0.1f, 0.1f, 0.1f), pick->getHitPoint()));
            layer->getPickable(card) = 0;
            endEditCP(layer, Layer::PickableFieldMask);
        }
        for(Real32 t = 0; t < 10.6f; t += 0.12f)
            root->addChild(placed(makeSphereGeo(2, 0.025f), Color3f(0.7f, 0.1f, 0.1f),
                                  ray.getPosition() + ray.getDirection() * t));

        Matrix eye;
        MatrixLookAt(eye, Pnt3f(-3.5f, 3.2f, 8.5f), Pnt3f(0.f, 0.f, 0.f), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        root->addChild(beacon);
        endEditCP(root);
        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.55f);
        camera->setNear(0.1f);
        camera->setFar(100.f);
        endEditCP(camera);
        const ImagePtr picture = Image::create();
        picture->set(Image::OSG_RGB_PF, 900, 520);
        const GrabForegroundPtr grab = GrabForeground::create();
        grab->setImage(picture);
        endEditCP(grab);
        const ViewportPtr viewport = Viewport::create();
        viewport->setCamera(camera);
        viewport->setRoot(root);
        viewport->setBackground(background);
        viewport->getForegrounds().push_back(grab);
        endEditCP(viewport);

        const EGLWindowPtr window = EGLWindow::create();
        addRefCP(window);
        window->resize(900, 520);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        window->render(action.get());
        written = picture->write(argc > 1 ? argv[1] : "layers.png");
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
