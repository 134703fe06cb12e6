/// \file
/// A volcano's cloud of ash: 150 000 soft quads that are blended from far to near. Draws to a PNG file, whose
/// name is the argument.

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoColors4f.h>
#include <OpenSG/OSGGeoNormals3f.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGSortedPrimitives.h>
#include <Tessaly/Tessaly.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

const Vec3f toLight(-0.6f, 0.7f, 0.4f);

/// A ball of the cloud.
struct Puff
{
    Pnt3f centre;
    Real32 radius;
    Real32 age; ///< 0 over the crater, 1 at the top
};

/// A column that leans with the wind, widens and curls into an umbrella.
std::vector<Puff> makePuffs(std::mt19937 &random)
{
    std::uniform_real_distribution<Real32> unit(0.f, 1.f);
    std::vector<Puff> puffs;
    for(int i = 0; i < 500; ++i)
    {
        const Real32 age = std::pow(unit(random), 0.75f);
        const Real32 spread = 0.12f + 0.55f * age + (age > 0.7f ? 3.5f * (age - 0.7f) : 0.f);
        const Real32 turn = 6.2831853f * unit(random);
        const Real32 out = spread * std::sqrt(unit(random));
        const Pnt3f centre(out * std::cos(turn) + 0.9f * age * age, 0.72f + 3.2f * age + 0.15f * unit(random),
                           out * std::sin(turn));
        puffs.push_back({centre, (0.1f + 0.32f * age) * (0.6f + 0.8f * unit(random)), age});
    }
    return puffs;
}

/// What a quad of the cloud looks like: lit from one side, glowing over the crater.
Color4f shade(const Puff &puff, const Vec3f &out)
{
    Vec3f light = toLight;
    light.normalize();
    const Real32 lit = std::max(0.f, 0.35f + 0.65f * out.dot(light));
    const Real32 grey = 0.13f + (0.35f + 0.35f * puff.age) * lit;
    const Real32 glow = std::exp(-7.f * puff.age) * (0.6f - 0.4f * out[1]);
    return Color4f(std::min(1.f, grey * 1.05f + 0.9f * glow), std::min(1.f, grey * 0.97f + 0.35f * glow),
                   std::min(1.f, grey * 0.92f + 0.05f * glow), 0.3f);
}

/// A round spot whose border is transparent.
TextureChunkPtr makeSpot()
{
    const int size = 32;
    std::vector<UInt8> pixels;
    for(int y = 0; y < size; ++y)
        for(int x = 0; x < size; ++x)
        {
            const Real32 dx = (x + 0.5f) / size * 2.f - 1.f;
            const Real32 dy = (y + 0.5f) / size * 2.f - 1.f;
            const Real32 inside = std::max(0.f, 1.f - std::sqrt(dx * dx + dy * dy));
            const Real32 alpha = inside * inside * (3.f - 2.f * inside);
            pixels.insert(pixels.end(), {255, 255, 255, UInt8(255.f * alpha)});
        }
    const ImagePtr image = Image::create();
    image->set(Image::OSG_RGBA_PF, size, size, 1, 1, 1, 0.0, pixels.data());
    endEditCP(image);
    const TextureChunkPtr texture = TextureChunk::create();
    texture->setImage(image);
    texture->setEnvMode(GL_MODULATE);
    texture->setWrapS(GL_CLAMP_TO_EDGE);
    texture->setWrapT(GL_CLAMP_TO_EDGE);
    endEditCP(texture);
    return texture;
}

/// Quads that face an eye which looks along -z of `eye`.
SortedPrimitivesPtr makeCloud(const Matrix &eye)
{
    std::mt19937 random(79);
    std::uniform_real_distribution<Real32> unit(-1.f, 1.f);
    const Vec3f right(eye[0][0], eye[0][1], eye[0][2]);
    const Vec3f up(eye[1][0], eye[1][1], eye[1][2]);

    const GeoPositions3fPtr points = GeoPositions3f::create(), positions = GeoPositions3f::create();
    const GeoNormals3fPtr normals = GeoNormals3f::create(), tangents = GeoNormals3f::create();
    const GeoColors4fPtr colors = GeoColors4f::create();
    const GeoTexCoords2fPtr texCoords = GeoTexCoords2f::create();
    std::vector<Int32> indices, offsets(1, 0);
    const Vec2f corners[4] = {Vec2f(0, 0), Vec2f(1, 0), Vec2f(1, 1), Vec2f(0, 1)};
    for(const Puff &puff : makePuffs(random))
        for(int i = 0; i < 300; ++i)
        {
            // Most of a puff is at its surface.
            Vec3f out(unit(random), unit(random), unit(random));
            out.normalize();
            const Real32 depth = 1.f - 0.35f * std::fabs(unit(random));
            const Pnt3f centre = puff.centre + out * (puff.radius * depth);
            const Real32 size = puff.radius * (0.2f + 0.12f * std::fabs(unit(random)));
            const Color4f color = shade(puff, out);
            points->addValue(centre);
            for(const Vec2f &corner : corners)
            {
                indices.push_back(Int32(positions->getSize()));
                positions->addValue(centre + right * (size * (2.f * corner[0] - 1.f)) +
                                    up * (size * (2.f * corner[1] - 1.f)));
                normals->addValue(out);
                tangents->addValue(right);
                colors->getField().push_back(color);
                texCoords->addValue(corner);
            }
            offsets.push_back(Int32(indices.size()));
        }

    const BlendChunkPtr blend = BlendChunk::create();
    blend->setSrcFactor(GL_SRC_ALPHA);
    blend->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
    endEditCP(blend);
    const ChunkMaterialPtr material = ChunkMaterial::create();
    material->addChunk(makeSpot());
    material->addChunk(blend);
    endEditCP(material);

    const SortedPrimitivesPtr cloud = SortedPrimitives::create();
    cloud->setRefPoints(points);
    cloud->setPositions(positions);
    cloud->setNormals(normals);
    cloud->setTangents(tangents);
    cloud->setColors(colors);
    cloud->setTexCoords(texCoords);
    cloud->setIndexArray(&indices);
    cloud->setOffsetArray(&offsets);
    cloud->setMode(1);
    cloud->setDrawOrder(1);
    cloud->setThresholdVal(-1.f); // by distance alone
    cloud->setLowerBound(0.f);    // all of them
    cloud->setSize(Vec3f(0.1f, 0.f, 0.f));
    cloud->setMaterial(material);
    endEditCP(cloud);
    return cloud;
}

/// A cone with ridges and a crater, its foot at y = 0.
GeometryPtr makeMountain()
{
    const int steps = 240;
    const GeometryPtr plane = makePlaneGeo(24.f, 24.f, steps, steps);
    const GeoPositionsPtr positions = plane->getPositions();
    const GeoNormalsPtr normals = plane->getNormals();
    const auto height = [](Real32 x, Real32 z) {
        const Real32 radius = std::sqrt(x * x + z * z);
        const Real32 turn = std::atan2(z, x);
        const Real32 ridges =
            std::sin(9.f * turn + 2.f * std::sin(3.f * radius)) + 0.5f * std::sin(23.f * turn);
        const Real32 relief = 0.05f * ridges * std::min(1.f, radius) * std::exp(-0.4f * radius);
        return std::min(1.25f * std::exp(-0.85f * radius) + relief, 0.75f + 0.6f * radius);
    };
    for(UInt32 i = 0; i < positions->getSize(); ++i)
    {
        const Pnt3f flat = positions->getValue(i);
        const Real32 x = flat[0], z = -flat[1], d = 0.02f;
        Vec3f normal(height(x - d, z) - height(x + d, z), 2.f * d, height(x, z - d) - height(x, z + d));
        normal.normalize();
        positions->setValue(Pnt3f(x, height(x, z), z), i);
        normals->setValue(normal, i);
    }
    endEditCP(positions);
    endEditCP(normals);
    const SimpleMaterialPtr rock = SimpleMaterial::create();
    rock->setAmbient(Color3f(0.12f, 0.1f, 0.11f));
    rock->setDiffuse(Color3f(0.34f, 0.27f, 0.24f));
    endEditCP(rock);
    plane->setMaterial(rock);
    endEditCP(plane);
    return plane;
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
        MatrixLookAt(eye, Pnt3f(-1.f, 1.5f, 9.f), Pnt3f(0.45f, 2.3f, 0.f), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        endEditCP(place);
        const NodePtr beacon = makeNodeFor(place);
        const DirectionalLightPtr light = DirectionalLight::create();
        light->setDirection(toLight);
        endEditCP(light);
        const NodePtr root = makeNodeFor(light);
        light->setBeacon(root);
        endEditCP(light);
        root->addChild(beacon);
        root->addChild(makeNodeFor(makeMountain()));
        root->addChild(makeNodeFor(makeCloud(eye)));
        endEditCP(root);

        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.66f);
        camera->setNear(1.f);
        camera->setFar(30.f);
        endEditCP(camera);
        const SolidBackgroundPtr background = SolidBackground::create();
        background->setColor(Color3f(0.55f, 0.67f, 0.82f));
        endEditCP(background);
        const ImagePtr picture = Image::create();
        picture->set(Image::OSG_RGB_PF, 800, 800);
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
        window->resize(800, 800);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        window->render(action.get());
        written = picture->write(argc > 1 ? argv[1] : "sorted-primitives.png");
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
