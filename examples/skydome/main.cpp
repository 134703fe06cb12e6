/// \file
/// A panorama around the scene: a sky, a sun and hills, computed texel by texel, behind three balls. The sky
/// turns with a beacon of its own, which brings the sun into the picture. Draws to a PNG file, whose name is
/// the argument.

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGSkydomeBackground.h>
#include <Tessaly/Tessaly.h>

#include <algorithm>
#include <cmath>
#include <memory>

OSG_USING_NAMESPACE

namespace
{

constexpr Real32 pi = 3.14159265f;

Color3f mix(const Color3f &a, const Color3f &b, Real32 share)
{
    return Color3f(a[0] + share * (b[0] - a[0]), a[1] + share * (b[1] - a[1]), a[2] + share * (b[2] - a[2]));
}

/// What is seen at a longitude of 0 to 1 round the horizon and an elevation of -1 (straight down) to 1.
Color3f lookAt(Real32 longitude, Real32 elevation)
{
    const Real32 turn = 2 * pi * longitude;
    const Real32 far =
        0.06f + 0.05f * std::sin(5 * turn) + 0.02f * std::sin(13 * turn + 1) + 0.008f * std::sin(41 * turn);
    const Real32 near =
        -0.02f + 0.04f * std::sin(3 * turn + 2) + 0.012f * std::sin(17 * turn) + 0.004f * std::sin(67 * turn);
    const auto beyond = [elevation](Real32 edge, Real32 softness) {
        return std::clamp((elevation - edge) / softness + 0.5f, 0.f, 1.f);
    };
    // The sun stands at longitude 0.5.
    const Real32 away = std::hypot((longitude - 0.5f) * 4, elevation - 0.15f);
    const Color3f air =
        mix(Color3f(1.0f, 0.82f, 0.62f), Color3f(0.22f, 0.42f, 0.78f), std::sqrt(std::max(elevation, 0.f)));
    const Color3f glow = mix(air, Color3f(1.0f, 0.95f, 0.78f), std::exp(-away * 6) * 0.9f);
    const Color3f sky =
        mix(glow, Color3f(1.0f, 0.99f, 0.94f), std::clamp((0.032f - away) / 0.003f, 0.f, 1.f));
    const Color3f farHills =
        mix(Color3f(0.58f, 0.55f, 0.62f), Color3f(0.36f, 0.39f, 0.52f), (far - elevation) * 8);
    const Real32 depth = std::sqrt(std::max(near - elevation, 0.f));
    const Color3f nearHills = mix(Color3f(0.16f, 0.26f, 0.16f), Color3f(0.34f, 0.40f, 0.22f), depth);
    return mix(nearHills, mix(farHills, sky, beyond(far, 0.0015f)), beyond(near, 0.0015f));
}

TextureChunkPtr makePanorama()
{
    const Int32 width = 4096;
    const Int32 height = 2048;
    const ImagePtr image = Image::create();
    image->set(Image::OSG_RGB_PF, width, height);
    UInt8 *texel = image->editData();
    for(Int32 y = 0; y < height; ++y)
        for(Int32 x = 0; x < width; ++x)
        {
            const Color3f color =
                lookAt((Real32(x) + 0.5f) / Real32(width), 2 * (Real32(y) + 0.5f) / Real32(height) - 1);
            for(UInt32 channel = 0; channel < 3; ++channel)
                *texel++ = UInt8(255.f * std::clamp(color[channel], 0.f, 1.f) + 0.5f);
        }
    endEditCP(image);
    const TextureChunkPtr texture = TextureChunk::create();
    texture->setImage(image);
    texture->setMinFilter(GL_LINEAR);
    texture->setMagFilter(GL_LINEAR);
    texture->setEnvMode(GL_REPLACE);
    endEditCP(texture);
    return texture;
}

NodePtr makeBall(Real32 x, Real32 z, Real32 radius, const Color3f &color)
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    material->setDiffuse(color);
    material->setAmbient(mix(Color3f(0.4f, 0.42f, 0.5f), color, 0.4f));
    material->setSpecular(Color3f(0.6f, 0.6f, 0.5f));
    material->setShininess(40);
    endEditCP(material);
    const GeometryPtr sphere = makeSphereGeo(5, radius);
    sphere->setMaterial(material);
    endEditCP(sphere);
    Matrix matrix;
    matrix.setTranslate(x, radius, z);
    const TransformPtr place = Transform::create();
    place->setMatrix(matrix);
    const NodePtr node = makeNodeFor(place);
    node->addChild(makeNodeFor(sphere));
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
        const DirectionalLightPtr light = DirectionalLight::create();
        const NodePtr root = makeNodeFor(light);
        light->setBeacon(root);
        light->setDirection(Vec3f(-0.7f, 0.6f, 0.1f));
        light->setAmbient(Color4f(0.5f, 0.5f, 0.5f, 1));
        endEditCP(light);
        root->addChild(makeBall(-1.6f, 0, 0.8f, Color3f(0.8f, 0.35f, 0.25f)));
        root->addChild(makeBall(0.2f, -1.5f, 1.1f, Color3f(0.7f, 0.66f, 0.58f)));
        root->addChild(makeBall(1.7f, 0.2f, 0.6f, Color3f(0.3f, 0.5f, 0.6f)));

        // Turned so far, the middle of the panorama, which is at -x, comes to the left half of the picture.
        Matrix turn;
        turn.setRotate(Quaternion(Vec3f(0, 1, 0), -0.42f * pi));
        const TransformPtr skyTurn = Transform::create();
        skyTurn->setMatrix(turn);
        const NodePtr skyBeacon = makeNodeFor(skyTurn);
        root->addChild(skyBeacon);
        const SkydomeBackgroundPtr sky = SkydomeBackground::create();
        sky->setSphereRes(64);
        sky->setLatlongTexture(makePanorama());
        sky->setBeacon(skyBeacon);
        endEditCP(sky);

        Matrix eye;
        MatrixLookAt(eye, Pnt3f(0.f, 1.6f, 6.5f), Pnt3f(0.f, 1.3f, 0.f), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        root->addChild(beacon);
        endEditCP(root);
        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.7f);
        camera->setNear(0.1f);
        camera->setFar(100.f);
        endEditCP(camera);
        const ImagePtr picture = Image::create();
        picture->set(Image::OSG_RGB_PF, 800, 500);
        const GrabForegroundPtr grab = GrabForeground::create();
        grab->setImage(picture);
        endEditCP(grab);
        const ViewportPtr viewport = Viewport::create();
        viewport->setCamera(camera);
        viewport->setRoot(root);
        viewport->setBackground(sky);
        viewport->getForegrounds().push_back(grab);
        endEditCP(viewport);

        const EGLWindowPtr window = EGLWindow::create();
        addRefCP(window);
        window->resize(800, 500);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        window->render(action.get());
        written = picture->write(argc > 1 ? argv[1] : "skydome.png");
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
