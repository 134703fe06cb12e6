/// \file
/// A ring of beads, each below one node whose MultiCore is a turn, a shift and a material; the shift, the
/// materials and the shapes are shared by many beads. Draws to a PNG file, whose name is the argument.

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGMultiCore.h>
#include <Tessaly/Tessaly.h>

#include <cmath>
#include <memory>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

constexpr int numBeads = 18;

MaterialGroupPtr makeColor(const Color3f &color)
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    material->setDiffuse(color);
    material->setAmbient(Color3f(0.2f, 0.2f, 0.2f));
    material->setSpecular(Color3f(0.7f, 0.7f, 0.7f));
    material->setShininess(50);
    endEditCP(material);
    const MaterialGroupPtr group = MaterialGroup::create();
    group->setMaterial(material);
    endEditCP(group);
    return group;
}

TransformPtr makeTransform(const Matrix &matrix)
{
    const TransformPtr transform = Transform::create();
    transform->setMatrix(matrix);
    endEditCP(transform);
    return transform;
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
        background->setColor(Color3f(0.96f, 0.94f, 0.90f));
        endEditCP(background);
        const DirectionalLightPtr light = DirectionalLight::create();
        const NodePtr root = makeNodeFor(light);
        light->setBeacon(root);
        light->setDirection(Vec3f(-0.5f, 0.9f, 0.6f));
        light->setAmbient(Color4f(0.6f, 0.6f, 0.6f, 1));
        endEditCP(light);

        const std::vector<NodeCorePtr> shapes = {makeSphereGeo(4, 0.42f),
                                                 makeBoxGeo(0.6f, 0.6f, 0.6f, 1, 1, 1),
                                                 makeTorusGeo(0.14f, 0.32f, 24, 32)};
        const std::vector<NodeCorePtr> colors = {
            makeColor(Color3f(0.80f, 0.25f, 0.20f)), makeColor(Color3f(0.15f, 0.45f, 0.55f)),
            makeColor(Color3f(0.90f, 0.65f, 0.15f)), makeColor(Color3f(0.35f, 0.30f, 0.45f))};
        Matrix outwards;
        outwards.setTranslate(3.f, 0, 0);
        const TransformPtr shift = makeTransform(outwards);
        for(int i = 0; i < numBeads; ++i)
        {
            Matrix turn;
            turn.setRotate(Quaternion(Vec3f(0, 1, 0), 6.2831853f * Real32(i) / Real32(numBeads)));
            const MultiCorePtr bead = MultiCore::create();
            beginEditCP(bead, MultiCore::CoresFieldMask);
            bead->addCore(makeTransform(turn));
            bead->addCore(shift);
            bead->addCore(colors[std::size_t(i) % colors.size()]);
            endEditCP(bead, MultiCore::CoresFieldMask);
            const NodePtr node = makeNodeFor(bead);
            node->addChild(makeNodeFor(shapes[std::size_t(i) % shapes.size()]));
            endEditCP(node);
            root->addChild(node);
        }

        Matrix eye;
        MatrixLookAt(eye, Pnt3f(0.f, 5.f, 8.5f), Pnt3f(0.f, -0.3f, 0.f), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        root->addChild(beacon);
        endEditCP(root);
        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.65f);
        camera->setNear(0.1f);
        camera->setFar(100.f);
        endEditCP(camera);
        const ImagePtr picture = Image::create();
        picture->set(Image::OSG_RGB_PF, 800, 520);
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
        window->resize(800, 520);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        window->render(action.get());
        written = picture->write(argc > 1 ? argv[1] : "multi-core.png");
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
