/// \file
/// A wall of balls, dumped to a PNG file by the name that is put on the queue; the name is the argument.

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGScreenDumpForeground.h>
#include <Tessaly/Tessaly.h>

#include <cmath>
#include <fstream>
#include <memory>

OSG_USING_NAMESPACE

namespace
{

/// A ball at a place of a wavy wall; x and y run from -1 to 1.
NodePtr ball(Real32 x, Real32 y)
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    const Color3f color(0.5f + 0.4f * x, 0.45f + 0.35f * y, 0.6f - 0.3f * x * y);
    material->setAmbient(Color3f(0.3f * color[0], 0.3f * color[1], 0.3f * color[2]));
    material->setDiffuse(color);
    material->setSpecular(Color3f(0.6f, 0.6f, 0.6f));
    material->setShininess(60.f);
    endEditCP(material);
    const GeometryPtr shape = makeLatLongSphereGeo(24, 24, 0.17f);
    shape->setMaterial(material);
    endEditCP(shape);
    const TransformPtr place = Transform::create();
    place->getMatrix().setTranslate(2.2f * x, 1.6f * y,
                                    0.35f * std::sin(4 * x) + 0.35f * std::cos(3 * y + 2 * x));
    endEditCP(place);
    const NodePtr node = makeNodeFor(place);
    node->addChild(makeNodeFor(shape));
    return node;
}

} // namespace

int main(int argc, char **argv)
{
    initTessalyExtention();
    if(!osgInit(argc, argv))
        return 1;
    const std::string name = argc > 1 ? argv[1] : "screen-dump.png";
    {
        Matrix eye;
        MatrixLookAt(eye, Pnt3f(-1.6f, 1.0f, 5.8f), Pnt3f(0, 0, 0), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        const DirectionalLightPtr light = DirectionalLight::create();
        light->setDirection(Vec3f(0.5f, 0.7f, 1.f));
        light->setBeacon(beacon);
        endEditCP(light);
        const NodePtr root = makeNodeFor(light);
        root->addChild(beacon);
        for(int i = -5; i <= 5; ++i)
            for(int j = -4; j <= 4; ++j)
                root->addChild(ball(Real32(i) / 5.f, Real32(j) / 4.f));
        endEditCP(root);

        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.75f);
        camera->setNear(0.1f);
        camera->setFar(20.f);
        endEditCP(camera);
        const SolidBackgroundPtr background = SolidBackground::create();
        background->setColor(Color3f(0.93f, 0.92f, 0.9f));
        endEditCP(background);

        // The next frame goes to the first name on the list, which is then taken off.
        const ScreenDumpForegroundPtr dump = ScreenDumpForeground::create();
        dump->getMFFilenames()->push_back(name);
        endEditCP(dump);
        const ViewportPtr viewport = Viewport::create();
        viewport->setCamera(camera);
        viewport->setRoot(root);
        viewport->setBackground(background);
        viewport->getForegrounds().push_back(dump);
        endEditCP(viewport);

        const EGLWindowPtr window = EGLWindow::create();
        addRefCP(window);
        window->resize(720, 560);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        window->render(action.get());
        subRefCP(window);
    }
    osgExit();
    // A name that can't be opened is dropped without a word, so the file itself is asked.
    return std::ifstream(name).good() ? 0 : 1;
}
