/// \file
/// A gauge that is drawn into a texture once a frame, and the texture on the sides of a cube. Draws to a PNG
/// file, whose name is the argument.

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGPolygonForeground.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGFBOForeground.h>
#include <Tessaly/OSGForegroundGroup.h>
#include <Tessaly/Tessaly.h>

#include <cmath>
#include <memory>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

PolygonForegroundPtr polygon(const Color3f &color, const std::vector<Pnt2f> &corners)
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    material->setLit(false);
    material->setDiffuse(color);
    endEditCP(material);
    const PolygonForegroundPtr polygon = PolygonForeground::create();
    polygon->setMaterial(material);
    polygon->editMFPositions()->setValues(corners);
    endEditCP(polygon);
    return polygon;
}

/// A piece of a ring around the middle, between two angles of the dial, both 0 to 1.
std::vector<Pnt2f> arc(Real32 from, Real32 to, Real32 inner, Real32 outer)
{
    const auto at = [](Real32 share, Real32 radius) {
        const Real32 angle = 3.14159265f * (1.25f - 1.5f * share);
        return Pnt2f(0.5f + radius * std::cos(angle), 0.5f + radius * std::sin(angle));
    };
    return {at(from, inner), at(to, inner), at(to, outer), at(from, outer)};
}

/// The dial of a gauge that shows a value from 0 to 1: a list of foregrounds, in the place of one.
ForegroundGroupPtr gauge(Real32 value)
{
    const ForegroundGroupPtr group = ForegroundGroup::create();
    const auto add = [&](const Color3f &color, const std::vector<Pnt2f> &corners) {
        group->editMFForegrounds()->push_back(polygon(color, corners));
    };
    add(Color3f(0.08f, 0.1f, 0.14f), {Pnt2f(0, 0), Pnt2f(1, 0), Pnt2f(1, 1), Pnt2f(0, 1)});
    const int pieces = 48;
    for(int i = 0; i < pieces; ++i)
    {
        const Real32 share = Real32(i) / pieces;
        const Color3f lit(0.2f + 0.8f * share, 0.9f - 0.7f * share, 0.3f);
        add(share < value ? lit : Color3f(0.2f, 0.22f, 0.26f),
            arc(share, share + 0.8f / pieces, 0.33f, 0.45f));
    }
    add(Color3f(0.95f, 0.95f, 0.9f), arc(value - 0.012f, value + 0.012f, 0.02f, 0.31f));
    endEditCP(group);
    return group;
}

} // namespace

int main(int argc, char **argv)
{
    initTessalyExtention();
    if(!osgInit(argc, argv))
        return 1;
    bool written = false;
    {
        // The texture, and the foreground that draws into it; its viewport is the texture's size.
        const ImagePtr pixels = Image::create();
        pixels->set(Image::OSG_RGBA_PF, 512, 512);
        const TextureChunkPtr texture = TextureChunk::create();
        texture->setImage(pixels);
        texture->setMinFilter(GL_LINEAR);
        texture->setEnvMode(GL_MODULATE);
        endEditCP(texture);
        const FBOForegroundPtr redirect = FBOForeground::create();
        redirect->setForeground(gauge(0.72f));
        redirect->editMFTextures()->push_back(texture);
        redirect->setOverrideViewport(Vec4f(-1, -1, -1, -1));
        endEditCP(redirect);

        const SimpleMaterialPtr material = SimpleMaterial::create();
        material->setAmbient(Color3f(0.55f, 0.55f, 0.55f));
        material->setDiffuse(Color3f(0.8f, 0.8f, 0.8f));
        material->addChunk(texture);
        endEditCP(material);
        const GeometryPtr cube = makeBoxGeo(1, 1, 1, 1, 1, 1);
        cube->setMaterial(material);
        endEditCP(cube);

        Matrix eye;
        MatrixLookAt(eye, Pnt3f(1.2f, 0.9f, 1.8f), Pnt3f(0, 0, 0), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        const DirectionalLightPtr light = DirectionalLight::create();
        light->setDirection(Vec3f(-0.3f, 0.4f, 1.f));
        light->setBeacon(beacon);
        endEditCP(light);
        const NodePtr root = makeNodeFor(light);
        root->addChild(beacon);
        root->addChild(makeNodeFor(cube));
        endEditCP(root);

        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.75f);
        camera->setNear(0.1f);
        camera->setFar(20.f);
        endEditCP(camera);
        const SolidBackgroundPtr background = SolidBackground::create();
        background->setColor(Color3f(0.75f, 0.78f, 0.8f));
        endEditCP(background);
        const ImagePtr picture = Image::create();
        picture->set(Image::OSG_RGB_PF, 640, 560);
        const GrabForegroundPtr grab = GrabForeground::create();
        grab->setImage(picture);
        endEditCP(grab);
        const ViewportPtr viewport = Viewport::create();
        viewport->setCamera(camera);
        viewport->setRoot(root);
        viewport->setBackground(background);
        viewport->getForegrounds().push_back(redirect);
        viewport->getForegrounds().push_back(grab);
        endEditCP(viewport);

        const EGLWindowPtr window = EGLWindow::create();
        addRefCP(window);
        window->resize(640, 560);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        // Foregrounds follow the scene: the cube shows what was drawn into the texture a frame ago.
        window->render(action.get());
        window->render(action.get());
        written = picture->write(argc > 1 ? argv[1] : "render-to-texture.png");
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
