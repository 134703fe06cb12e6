/// \file
/// A room of columns as a head-mounted display shows it: one viewport and one filter for each eye, with the
/// colours parted for the lenses. Draws to a PNG file, whose name is the argument, and with the second form of the
/// filter to a second one, NAME-2.png.

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
#include <Tessaly/OSGOculusRiftFilter.h>
#include <Tessaly/OSGOculusRiftFilter2.h>
#include <Tessaly/Tessaly.h>

#include <memory>
#include <string>

OSG_USING_NAMESPACE

namespace
{

NodePtr placed(const GeometryPtr &shape, const Color3f &color, const Vec3f &at)
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    material->setAmbient(Color3f(0.4f * color[0], 0.4f * color[1], 0.4f * color[2]));
    material->setDiffuse(color);
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

/// A chequered floor and two rows of columns, under a light.
NodePtr makeRoom(const DirectionalLightPtr &light)
{
    const NodePtr root = makeNodeFor(light);
    for(int i = -4; i <= 4; ++i)
        for(int j = 0; j < 12; ++j)
            root->addChild(placed(makeBoxGeo(1, 0.1f, 1, 1, 1, 1),
                                  (i + j) % 2 == 0 ? Color3f(0.85f, 0.83f, 0.78f) : Color3f(0.45f, 0.2f, 0.2f),
                                  Vec3f(Real32(i), -1.3f, Real32(-j))));
    for(int j = 1; j < 12; j += 2)
        for(const Real32 x : {-1.7f, 1.7f})
            root->addChild(placed(makeBoxGeo(0.4f, 3.2f, 0.4f, 1, 1, 1), Color3f(0.8f, 0.8f, 0.86f),
                                  Vec3f(x, 0.3f, Real32(-j))));
    root->addChild(placed(makeTorusGeo(0.2f, 0.6f, 30, 60), Color3f(0.9f, 0.7f, 0.2f), Vec3f(0, 0, -5.f)));
    return root;
}

/// Both eyes, through filters of that class.
template <class FilterT>
bool draw(const std::string &fileName)
{
    const DirectionalLightPtr light = DirectionalLight::create();
    light->setDirection(Vec3f(-0.3f, 0.8f, 0.6f));
    endEditCP(light);
    const NodePtr root = makeRoom(light);
    const SolidBackgroundPtr background = SolidBackground::create();
    background->setColor(Color3f(0.55f, 0.7f, 0.85f));
    endEditCP(background);

    const Int32 width = 1280, height = 800;
    const EGLWindowPtr window = EGLWindow::create();
    addRefCP(window);
    window->resize(width, height);
    for(const bool left : {true, false})
    {
        const TransformPtr place = Transform::create();
        place->getMatrix().setTranslate(left ? -0.032f : 0.032f, 0.f, 2.f);
        const NodePtr beacon = makeNodeFor(place);
        root->addChild(beacon);
        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(1.9f);
        camera->setNear(0.1f);
        camera->setFar(30.f);
        endEditCP(camera);
        if(left)
            light->setBeacon(beacon);

        const auto filter = FilterT::create();
        filter->setWidth(width);
        filter->setHeight(height);
        filter->setChromaAbCorrection(Vec4f(0.996f, -0.004f, 1.014f, 0.f));
        filter->setLeftEye(left);
        endEditCP(filter);
        const DisplayFilterForegroundPtr lens = DisplayFilterForeground::create();
        lens->editMFFilter()->push_back(filter);
        endEditCP(lens);

        const ViewportPtr viewport = Viewport::create();
        viewport->setSize(left ? 0.f : 0.5f, 0.f, left ? 0.5f : 1.f, 1.f);
        viewport->setCamera(camera);
        viewport->setRoot(root);
        viewport->setBackground(background);
        viewport->getForegrounds().push_back(lens);
        endEditCP(viewport);
        window->addPort(viewport);
    }

    // A viewport over the whole window, with nothing to draw, grabs both eyes.
    const ImagePtr picture = Image::create();
    picture->set(Image::OSG_RGB_PF, width, height);
    const GrabForegroundPtr grab = GrabForeground::create();
    grab->setImage(picture);
    endEditCP(grab);
    const ViewportPtr whole = Viewport::create();
    whole->setCamera(window->getMFPort()->front()->getCamera());
    whole->setRoot(makeCoredNode<Group>());
    whole->setBackground(PassiveBackground::create());
    whole->getForegrounds().push_back(grab);
    endEditCP(whole);
    window->addPort(whole);

    window->init();
    const std::unique_ptr<RenderAction> action(RenderAction::create());
    window->render(action.get());
    const bool written = picture->write(fileName.c_str());
    subRefCP(window);
    return written;
}

} // namespace

int main(int argc, char **argv)
{
    initTessalyExtention();
    if(!osgInit(argc, argv))
        return 1;
    const std::string name = argc > 1 ? argv[1] : "lens-filter.png";
    const std::string second = name.substr(0, name.rfind('.')) + "-2.png";
    const bool written = draw<OculusRiftFilter>(name) && draw<OculusRiftFilter2>(second);
    osgExit();
    return written ? 0 : 1;
}
