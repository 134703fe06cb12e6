/// \file
/// What a plug-in draws: the shared library "ribbons" beside this program. Draws to a PNG file, whose name is
/// the argument.

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGPrimitiveDrawer.h>
#include <Tessaly/Tessaly.h>

#include <filesystem>
#include <memory>
#include <string>

OSG_USING_NAMESPACE

int main(int argc, char **argv)
{
    initTessalyExtention();
    if(!osgInit(argc, argv))
        return 1;
    bool written = false;
    {
        // The library's file, "#", and what its functions' names begin with.
        const std::string folder = std::filesystem::absolute(argv[0]).parent_path().string();
        const PrimitiveDrawerPtr drawer = PrimitiveDrawer::create();
        drawer->setLibName(folder + "/ribbons#ribbons");
        for(const char *const text : {"ribbons", "7", "turns", "3"})
            drawer->editMFParamDic()->push_back(text);
        const SimpleMaterialPtr material = SimpleMaterial::create();
        material->setSpecular(Color3f(0.6f, 0.6f, 0.6f));
        material->setShininess(50.f);
        material->setColorMaterial(GL_AMBIENT_AND_DIFFUSE);
        endEditCP(material);
        drawer->setMaterial(material);
        endEditCP(drawer);

        Matrix eye;
        MatrixLookAt(eye, Pnt3f(0.f, 2.6f, 3.6f), Pnt3f(0.f, -0.1f, 0.f), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        endEditCP(place);
        const NodePtr beacon = makeNodeFor(place);
        const DirectionalLightPtr light = DirectionalLight::create();
        light->setDirection(Vec3f(-0.6f, 0.6f, 1.f));
        light->setBeacon(beacon);
        endEditCP(light);
        const NodePtr root = makeNodeFor(light);
        root->addChild(beacon);
        root->addChild(makeNodeFor(drawer));
        endEditCP(root);

        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.7f);
        camera->setNear(1.f);
        camera->setFar(10.f);
        endEditCP(camera);
        const SolidBackgroundPtr background = SolidBackground::create();
        background->setColor(Color3f(0.12f, 0.13f, 0.16f));
        endEditCP(background);
        const ImagePtr picture = Image::create();
        picture->set(Image::OSG_RGB_PF, 720, 600);
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
        window->resize(720, 600);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        window->render(action.get());
        written = picture->write(argc > 1 ? argv[1] : "primitive-drawer.png");
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
