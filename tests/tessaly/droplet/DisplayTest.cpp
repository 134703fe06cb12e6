/// \file
/// The liquid as the material shows it, against the lighting worked out on the processor.

#include "DropletScene.h"

#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGViewport.h>

OSG_USING_NAMESPACE
using namespace droplet_test;

namespace
{

typedef std::array<double, 3> Axis;

Axis unit(double x, double y, double z)
{
    const double length = std::sqrt(x * x + y * y + z * z);
    return {x / length, y / length, z / length};
}

double dot(const Axis &a, const Axis &b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

/// The direction to the light in the middle of the object. Directions are those of the vertices, and the
/// middle lies on the edge between the lower left corner of the two triangles and the upper right one, 2 away
/// in x and y each.
Axis lightInTheMiddle()
{
    const Axis low = unit(3 + 2, 1 + 2, 4), high = unit(3 - 2, 1 - 2, 4);
    return unit(low[0] + high[0], low[1] + high[1], low[2] + high[2]);
}

/// The object, lit from one side, seen from straight ahead at a distance of 4.
struct View
{
    Stage stage;
    Held<ChunkMaterialPtr> material;
    NodePtr object = makeObject(material, 4.0f);
    Held<NodePtr> top;
    Held<ViewportPtr> viewport;

    View() : top(lit())
    {
        Matrix away;
        away.setTranslate(0, 0, 4);
        const TransformPtr place = Transform::create();
        place->setMatrix(away);
        endEditCP(place);
        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(makeNodeFor(place));
        camera->setFov(0.5f);
        camera->setNear(1.0f);
        camera->setFar(10.0f);
        endEditCP(camera);
        const SolidBackgroundPtr background = SolidBackground::create();
        background->setColor(Color3f(0.25f, 0.5f, 0.75f));
        endEditCP(background);
        viewport->setCamera(camera);
        viewport->setRoot(top);
        viewport->setBackground(background);
        endEditCP(viewport.ptr);
        stage.window->addPort(viewport);
    }
    ~View() { stage.window->activate(); }

    NodePtr lit()
    {
        const PointLightPtr light = PointLight::create();
        light->setPosition(Pnt3f(3, 1, 4));
        light->setAmbient(Color4f(0.5f, 0.4f, 0.3f, 1));
        light->setDiffuse(Color4f(0.9f, 0.8f, 0.7f, 1));
        light->setSpecular(Color4f(0.6f, 0.7f, 0.8f, 1));
        const NodePtr beacon = makeCoredNode<Group>();
        light->setBeacon(beacon);
        endEditCP(light);
        const NodePtr node = makeNodeFor(light);
        node->addChild(beacon);
        node->addChild(object);
        return node;
    }

    /// A film of that volume in the middle, which grows by the slope with each cell.
    void film(DropletFlow &flow, double volume, double slope)
    {
        Map map(64, 64);
        for(int y = 0; y < 64; ++y)
            for(int x = 0; x < 64; ++x)
                map.at(x, y)[2] = float(volume + slope * (x - 31.5));
        stage.write(flow.getSurfaceMap(0), map);
    }
    std::array<double, 3> middle()
    {
        stage.window->render(stage.action.get());
        stage.window->activate();
        // The middle lies between four pixels.
        UInt8 pixels[2 * 2 * 3] = {};
        glReadPixels(31, 23, 2, 2, GL_RGB, GL_UNSIGNED_BYTE, pixels);
        std::array<double, 3> mean = {0, 0, 0};
        for(std::size_t i = 0; i < 12; ++i)
            mean[i % 3] += pixels[i] / 4.0;
        return mean;
    }
};

struct Film
{
    double volume;
    double slope;
};

const Film films[] = {{0.0, 0.0}, {0.25, 0.0}, {0.25, 0.004}, {0.3, -0.008}, {0.02, 0.0}, {1.0, 0.0}};

} // namespace

TEST(DropletDisplay, ShowsTheLiquidAlone)
{
    View view;
    DropletFlow flow(view.object, view.material, 64, 64, 1, NullFC);
    const double fluid[4] = {0.2, 0.4, 0.7, 0.6};
    flow.setFluidColor(Color4f(0.2f, 0.4f, 0.7f, 0.6f));
    const Axis toEye = {0, 0, 1}, toLight = lightInTheMiddle();
    const double behind[3] = {0.25, 0.5, 0.75};
    for(const Film &film : films)
    {
        SCOPED_TRACE(std::to_string(film.volume) + ", slope " + std::to_string(film.slope));
        view.film(flow, film.volume, film.slope);
        const Axis normal = unit(-film.slope, 0, 0.5);
        const Axis half = unit(toEye[0] + toLight[0], toEye[1] + toLight[1], toEye[2] + toLight[2]);
        const double diffuse = std::max(0.2, 0.1 + dot(normal, toLight));
        const double t = std::clamp(film.volume / 0.05, 0.0, 1.0);
        const double specular = t * t * (3 - 2 * t) * std::pow(std::max(0.2, dot(half, normal)), 30);
        const double edge = 0.1 * std::pow(1 - dot(toEye, normal), 5);
        const double alpha = std::min((std::sqrt(film.volume) + specular) * fluid[3], 1.0);
        const auto shown = view.middle();
        for(std::size_t c = 0; c < 3; ++c)
        {
            const double color = std::min(fluid[c] * diffuse + fluid[c] * edge + specular, 1.0);
            EXPECT_NEAR(shown[c], 255 * (color * alpha + behind[c] * (1 - alpha)), 2.5) << c;
        }
    }
}

TEST(DropletDisplay, ShowsTheLiquidOverTheTexture)
{
    View view;
    const ImagePtr image = Image::create();
    const std::vector<UInt8> pixels = {200, 150, 100};
    image->set(Image::OSG_RGB_PF, 1, 1, 1, 1, 1, 0.0, pixels.data());
    endEditCP(image);
    const TextureChunkPtr texture = TextureChunk::create();
    texture->setImage(image);
    texture->setTarget(GL_TEXTURE_2D); // one texel would make it 1D
    endEditCP(texture);
    view.material->addChunk(texture, 0);
    DropletFlow flow(view.object, view.material, 64, 64, 2, NullFC);
    const double fluid[4] = {0.2, 0.4, 0.7, 0.6};
    flow.setFluidColor(Color4f(0.2f, 0.4f, 0.7f, 0.6f));
    const Axis toEye = {0, 0, 1}, toLight = lightInTheMiddle();
    // Of the material only the diffuse term is the platform's default.
    const double surface[3] = {0.6, 0.6, 0.3}, ambient[3] = {0.5, 0.4, 0.3}, white[3] = {0.9, 0.8, 0.7},
                 shine[3] = {0.6, 0.7, 0.8};
    for(const Film &film : films)
    {
        SCOPED_TRACE(std::to_string(film.volume) + ", slope " + std::to_string(film.slope));
        view.film(flow, film.volume, film.slope);
        const Axis normal = unit(-film.slope, 0, 0.5);
        const Axis half = unit(toEye[0] + toLight[0], toEye[1] + toLight[1], toEye[2] + toLight[2]);
        const double nDotL = std::max(0.2, dot(normal, toLight));
        const double specular = std::pow(std::max(dot(half, normal), 0.2), 80);
        const double t = std::clamp(film.volume / 0.05, 0.0, 1.0), wet = t * t * (3 - 2 * t);
        const double share = std::sqrt(film.volume) * fluid[3];
        const auto shown = view.middle();
        for(std::size_t c = 0; c < 3; ++c)
        {
            const double color = pixels[c] / 255.0 * (1 - share) + fluid[c] * share;
            const double sum = 0.05 * ambient[c] + surface[c] * white[c] * nDotL * color +
                               (wet + 0.2) * shine[c] * specular + 0.05;
            EXPECT_NEAR(shown[c], 255 * std::min(sum, 1.0), 2.5) << c;
        }
    }
}
