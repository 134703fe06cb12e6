/// \file
/// One scene in two halves of a window: as it is, and graded by a table that is warm where the picture is
/// bright and cold where it is dark, and darker towards the corners. Draws to a PNG file, whose name is the
/// argument.

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGImprovedColorDisplayFilter.h>
#include <Tessaly/Tessaly.h>

#include <cmath>
#include <memory>

OSG_USING_NAMESPACE

namespace
{

NodePtr coloured(const GeometryPtr &shape, const Color3f &color, const Vec3f &at)
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    material->setAmbient(Color3f(0.35f * color[0], 0.35f * color[1], 0.35f * color[2]));
    material->setDiffuse(color);
    material->setSpecular(Color3f(0.5f, 0.5f, 0.5f));
    material->setShininess(50.f);
    endEditCP(material);
    shape->setMaterial(material);
    endEditCP(shape);
    const TransformPtr place = Transform::create();
    place->getMatrix().setTranslate(at);
    endEditCP(place);
    const NodePtr node = makeNodeFor(place);
    node->addChild(makeNodeFor(shape));
    return node;
}

/// Width across the screen fastest, then height, then the colour value.
void fillTable(const ImprovedColorDisplayFilterPtr &filter)
{
    const UInt32 width = 9, height = 9, depth = 16;
    filter->setWidth(width);
    filter->setHeight(height);
    filter->setDepth(depth);
    for(UInt32 z = 0; z < depth; ++z)
        for(UInt32 y = 0; y < height; ++y)
            for(UInt32 x = 0; x < width; ++x)
            {
                const Real32 s = 2.f * Real32(x) / Real32(width - 1) - 1.f;
                const Real32 t = 2.f * Real32(y) / Real32(height - 1) - 1.f;
                const Real32 value = Real32(z) / Real32(depth - 1);
                const Real32 corners = 1.f - 0.35f * (s * s + t * t) / 2.f;
                const Real32 curve = value * value * (3.f - 2.f * value);
                filter->editMFTable()->push_back(Vec3f(corners * curve, corners * (0.04f + 0.88f * curve),
                                                       corners * (0.14f + 0.66f * std::pow(value, 0.8f))));
            }
}

} // namespace

int main(int argc, char **argv)
{
    initTessalyExtention();
    if(!osgInit(argc, argv))
        return 1;
    bool written = false;
    {
        Matrix eye;
        MatrixLookAt(eye, Pnt3f(0.5f, 1.4f, 4.2f), Pnt3f(0, 0.25f, 0), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        const DirectionalLightPtr light = DirectionalLight::create();
        light->setDirection(Vec3f(-0.6f, 0.7f, 0.9f));
        light->setBeacon(beacon);
        endEditCP(light);
        const NodePtr root = makeNodeFor(light);
        root->addChild(beacon);
        root->addChild(
            coloured(makeBoxGeo(3.4f, 0.1f, 2.4f, 1, 1, 1), Color3f(0.7f, 0.7f, 0.72f), Vec3f(0, -0.4f, 0)));
        root->addChild(coloured(makeLatLongSphereGeo(40, 40, 0.45f), Color3f(0.85f, 0.25f, 0.2f),
                                Vec3f(-0.9f, 0.1f, 0)));
        root->addChild(coloured(makeTorusGeo(0.16f, 0.42f, 30, 60), Color3f(0.25f, 0.7f, 0.3f),
                                Vec3f(0.1f, 0.55f, -0.3f)));
        root->addChild(coloured(makeBoxGeo(0.6f, 0.9f, 0.6f, 1, 1, 1), Color3f(0.25f, 0.4f, 0.85f),
                                Vec3f(1.f, 0.1f, 0)));
        endEditCP(root);

        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.7f);
        camera->setNear(0.1f);
        camera->setFar(20.f);
        endEditCP(camera);
        const SolidBackgroundPtr background = SolidBackground::create();
        background->setColor(Color3f(0.6f, 0.66f, 0.72f));
        endEditCP(background);

        const ImprovedColorDisplayFilterPtr filter = ImprovedColorDisplayFilter::create();
        filter->setGamma(1.f);
        fillTable(filter);
        endEditCP(filter);
        const DisplayFilterForegroundPtr grading = DisplayFilterForeground::create();
        grading->editMFFilter()->push_back(filter);
        endEditCP(grading);

        const EGLWindowPtr window = EGLWindow::create();
        addRefCP(window);
        window->resize(960, 480);
        for(int half = 0; half < 2; ++half)
        {
            const ViewportPtr viewport = Viewport::create();
            viewport->setSize(0.5f * Real32(half), 0.f, 0.5f + 0.5f * Real32(half), 1.f);
            viewport->setCamera(camera);
            viewport->setRoot(root);
            viewport->setBackground(background);
            if(half == 1)
                viewport->getForegrounds().push_back(grading);
            endEditCP(viewport);
            window->addPort(viewport);
        }

        // A viewport over the whole window, with nothing to draw, grabs both halves.
        const ImagePtr picture = Image::create();
        picture->set(Image::OSG_RGB_PF, 960, 480);
        const GrabForegroundPtr grab = GrabForeground::create();
        grab->setImage(picture);
        endEditCP(grab);
        const ViewportPtr whole = Viewport::create();
        whole->setCamera(camera);
        whole->setRoot(makeCoredNode<Group>());
        whole->setBackground(PassiveBackground::create());
        whole->getForegrounds().push_back(grab);
        endEditCP(whole);
        window->addPort(whole);

        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        window->render(action.get());
        written = picture->write(argc > 1 ? argv[1] : "colour-filter.png");
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
