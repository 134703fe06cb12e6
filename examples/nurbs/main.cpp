/// \file
/// A vase of two walls, turned from one NURBS profile; the outer wall is pierced by trimming loops, and a skydome stands
/// around it. Draws to a PNG file, whose name is the argument.

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoPositions2f.h>
#include <OpenSG/OSGGeoPositions4f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGNurbsCurve.h>
#include <Tessaly/OSGNurbsSurface.h>
#include <Tessaly/OSGNurbsTrimmingLoop.h>
#include <Tessaly/OSGSkydomeBackground.h>
#include <Tessaly/Tessaly.h>

#include <cmath>
#include <memory>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

/// Distance from the axis and height: up the outer wall, over the lip, down the inner wall.
const std::vector<Pnt2f> profile = {
    Pnt2f(0.f, 0.f),    Pnt2f(0.5f, 0.f),   Pnt2f(0.55f, 0.08f), Pnt2f(0.35f, 0.3f), Pnt2f(0.95f, 0.7f),  Pnt2f(1.1f, 1.3f),
    Pnt2f(0.85f, 1.9f), Pnt2f(0.3f, 2.2f),  Pnt2f(0.34f, 2.6f),  Pnt2f(0.62f, 2.9f), Pnt2f(0.64f, 2.98f), Pnt2f(0.55f, 2.9f),
    Pnt2f(0.28f, 2.6f), Pnt2f(0.25f, 2.2f), Pnt2f(0.72f, 1.8f),  Pnt2f(0.9f, 1.3f),  Pnt2f(0.75f, 0.8f),  Pnt2f(0.f, 0.4f)};

/// Knots of order 4 from 0 to 1.
std::vector<Real32> profileKnots()
{
    const int inner = int(profile.size()) - 4;
    std::vector<Real32> knots(4, 0.f);
    for(int i = 1; i <= inner; ++i)
        knots.push_back(Real32(i) / Real32(inner + 1));
    knots.insert(knots.end(), 4, 1.f);
    return knots;
}

/// A leaf around (v, u), clockwise, so that what is outside of it stays.
NurbsTrimmingLoopPtr leaf(Real32 v, Real32 u, Real32 halfHeight, Real32 halfWidth)
{
    const GeoPositions2fPtr points = GeoPositions2f::create();
    for(const Pnt2f &p : {Pnt2f(-1, 0), Pnt2f(-0.3f, 1), Pnt2f(0.5f, 1), Pnt2f(1, 0), Pnt2f(0.5f, -1), Pnt2f(-0.3f, -1),
                          Pnt2f(-1, 0)})
        points->getField().push_back(Pnt2f(v + halfHeight * p[0], u + halfWidth * p[1]));

    // Two Bezier curves of order 4, end to end. Long spans of the knots are sampled the more often.
    const NurbsCurvePtr curve = NurbsCurve::create();
    curve->setControlPoint(points);
    curve->setOrder(4);
    curve->editMFKnot()->setValues({0, 0, 0, 0, 10, 10, 10, 20, 20, 20, 20});
    curve->setControlCurve(true);
    endEditCP(curve);

    const NurbsTrimmingLoopPtr loop = NurbsTrimmingLoop::create();
    loop->getTrimmingContour().push_back(curve);
    endEditCP(loop);
    return loop;
}

/// The whole parameter plane, counter-clockwise: V from 0 to 1, U from 0 to 4.
NurbsTrimmingLoopPtr everything()
{
    const GeoPositions2fPtr points = GeoPositions2f::create();
    for(const Pnt2f &p : {Pnt2f(0, 0), Pnt2f(1, 0), Pnt2f(1, 4), Pnt2f(0, 4), Pnt2f(0, 0)})
        points->getField().push_back(p);
    const NurbsCurvePtr curve = NurbsCurve::create();
    curve->setControlPoint(points);
    curve->setControlCurve(true);
    curve->setPolyline(true);
    endEditCP(curve);
    const NurbsTrimmingLoopPtr loop = NurbsTrimmingLoop::create();
    loop->getTrimmingContour().push_back(curve);
    endEditCP(loop);
    return loop;
}

/// Glaze: x goes round the vase, y along the profile.
TextureChunkPtr glaze()
{
    const int size = 512;
    const Color3f cream(0.95f, 0.92f, 0.82f), blue(0.1f, 0.22f, 0.5f), ochre(0.85f, 0.55f, 0.2f);
    std::vector<UInt8> pixels;
    for(int y = 0; y < size; ++y)
        for(int x = 0; x < size; ++x)
        {
            const Real32 s = Real32(x) / size, t = Real32(y) / size;
            const Real32 zigzag = std::fabs(std::fmod(s * 24.f, 2.f) - 1.f);
            Color3f color = cream;
            if(t > 0.58f)
                color = ochre;
            else if(t < 0.13f || std::fabs(t - 0.17f) < 0.006f || std::fabs(t - 0.365f) < 0.006f)
                color = blue;
            else if(t > 0.39f)
                color = std::fabs(t - 0.43f - 0.04f * zigzag) < 0.012f || t > 0.51f ? cream : blue;
            for(int c = 0; c < 3; ++c)
                pixels.push_back(UInt8(255.f * color[c]));
        }
    const ImagePtr image = Image::create();
    image->set(Image::OSG_RGB_PF, size, size, 1, 1, 1, 0.0, pixels.data());
    endEditCP(image);
    const TextureChunkPtr texture = TextureChunk::create();
    texture->setImage(image);
    texture->setEnvMode(GL_MODULATE);
    endEditCP(texture);
    return texture;
}

NurbsSurfacePtr makeVase()
{
    // U goes round: a rational circle of nine points. V goes along the profile.
    const Real32 w = std::sqrt(0.5f);
    const Real32 x[9] = {1, 1, 0, -1, -1, -1, 0, 1, 1}, z[9] = {0, 1, 1, 1, 0, -1, -1, -1, 0};
    const GeoPositions4fPtr points = GeoPositions4f::create();
    const GeoTexCoords2fPtr texCoords = GeoTexCoords2f::create();
    for(std::size_t j = 0; j < profile.size(); ++j)
        for(int i = 0; i < 9; ++i)
        {
            const Real32 weight = i % 2 == 0 ? 1.f : w;
            const Real32 radius = profile[j][0];
            points->getField().push_back(
                Pnt4f(weight * radius * x[i], weight * profile[j][1], weight * radius * z[i], weight));
            texCoords->getField().push_back(Vec2f(Real32(i) / 8.f, Real32(j) / Real32(profile.size() - 1)));
        }

    const SimpleMaterialPtr material = SimpleMaterial::create();
    material->setAmbient(Color3f(0.35f, 0.35f, 0.4f));
    material->setDiffuse(Color3f(0.8f, 0.8f, 0.8f));
    material->setSpecular(Color3f(0.5f, 0.5f, 0.5f));
    material->setShininess(40.f);
    material->addChunk(glaze());
    endEditCP(material);

    const NurbsSurfacePtr vase = NurbsSurface::create();
    vase->setControlPoint(points);
    vase->setControlTexCoord(texCoords);
    vase->setUOrder(3);
    vase->setVOrder(4);
    vase->getUKnot().setValues({0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4});
    vase->getVKnot().setValues(profileKnots());
    vase->setUDim(9);
    vase->setVDim(UInt32(profile.size()));
    // Dense enough for the small leaves: where GLU samples contours too coarsely it silently leaves the whole surface away.
    // uTessellation is the density along GLU's first parameter, which is V.
    vase->setUTessellation(400);
    vase->setVTessellation(100);
    vase->getTrimmingLoop().push_back(everything());
    for(int i = 0; i < 16; ++i)
    {
        vase->getTrimmingLoop().push_back(leaf(0.255f, (i + 0.5f) * 0.25f, 0.045f, 0.075f));
        vase->getTrimmingLoop().push_back(leaf(0.33f, (i + (i == 15 ? 0.75f : 1.f)) * 0.25f, 0.022f, 0.035f));
    }
    vase->setMaterial(material);
    endEditCP(vase);
    return vase;
}

/// A studio: a floor that fades into a bright horizon, and a darker ceiling.
SkydomeBackgroundPtr makeSky()
{
    const Int32 height = 512;
    const ImagePtr image = Image::create();
    image->set(Image::OSG_RGB_PF, 4, height);
    UInt8 *texel = image->editData();
    for(Int32 y = 0; y < height; ++y)
    {
        const Real32 elevation = 2.f * (Real32(y) + 0.5f) / Real32(height) - 1.f;
        const Real32 light = elevation < 0.f ? std::exp(3.f * elevation) : std::exp(-1.2f * elevation);
        const UInt8 red = UInt8(40.f + 150.f * light);
        for(Int32 x = 0; x < 4; ++x)
        {
            *texel++ = red;
            *texel++ = UInt8(44.f + 150.f * light);
            *texel++ = UInt8(52.f + 145.f * light);
        }
    }
    endEditCP(image);
    const TextureChunkPtr texture = TextureChunk::create();
    texture->setImage(image);
    texture->setMinFilter(GL_LINEAR);
    texture->setMagFilter(GL_LINEAR);
    texture->setEnvMode(GL_REPLACE);
    endEditCP(texture);
    const SkydomeBackgroundPtr sky = SkydomeBackground::create();
    sky->setSphereRes(48);
    sky->setLatlongTexture(texture);
    endEditCP(sky);
    return sky;
}

} // namespace

int main(int argc, char **argv)
{
    initTessalyExtention();
    if(!osgInit(argc, argv))
        return 1;
    bool written = false;
    {
        // The eye, and with it the light, over the left shoulder.
        Matrix eye;
        MatrixLookAt(eye, Pnt3f(0.f, 4.f, 6.5f), Pnt3f(0.f, 1.4f, 0.f), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        const DirectionalLightPtr light = DirectionalLight::create();
        light->setDirection(Vec3f(-0.7f, 0.5f, 1.f));
        light->setBeacon(beacon);
        endEditCP(light);
        const NodePtr root = makeNodeFor(light);
        root->addChild(beacon);
        root->addChild(makeNodeFor(makeVase()));
        endEditCP(root);

        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.5f);
        camera->setNear(1.f);
        camera->setFar(20.f);
        endEditCP(camera);
        const ImagePtr picture = Image::create();
        picture->set(Image::OSG_RGB_PF, 600, 720);
        const GrabForegroundPtr grab = GrabForeground::create();
        grab->setImage(picture);
        endEditCP(grab);
        const ViewportPtr viewport = Viewport::create();
        viewport->setCamera(camera);
        viewport->setRoot(root);
        viewport->setBackground(makeSky());
        viewport->getForegrounds().push_back(grab);
        endEditCP(viewport);

        const EGLWindowPtr window = EGLWindow::create();
        addRefCP(window);
        window->resize(600, 720);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        window->render(action.get());
        written = picture->write(argc > 1 ? argv[1] : "nurbs.png");
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
