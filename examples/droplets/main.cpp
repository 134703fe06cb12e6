/// \file
/// Drops on a glazed vase run down its wall. Draws a short series of frames to PNG files, droplets-0.png to
/// droplets-3.png; the argument is the name of another series.

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoNormals3f.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoPTypesUI8.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGGeoTexCoords3f.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGDropletFlowViewport.h>
#include <Tessaly/Tessaly.h>

#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

template <class PropertyT, class ValueT>
typename PropertyT::Ptr property(const std::vector<ValueT> &values)
{
    const typename PropertyT::Ptr made = PropertyT::create();
    made->getField().setValues(values);
    endEditCP(made);
    return made;
}

/// A vase about the y axis. Texture coordinates 0 unroll the wall, x around and y up, without overlaps;
/// texture coordinates 1 are the tangents, which point where x grows.
GeometryPtr makeVase(const MaterialPtr &material)
{
    const UInt32 columns = 96, rows = 64;
    std::vector<Pnt3f> positions;
    std::vector<Vec3f> normals, tangents;
    std::vector<Vec2f> texCoords;
    std::vector<UInt32> triangles;
    const auto radius = [](Real32 t) { return 0.62f + 0.3f * std::sin(4.4f * t + 0.2f); };
    for(UInt32 row = 0; row <= rows; ++row)
        for(UInt32 column = 0; column <= columns; ++column)
        {
            const Real32 s = Real32(column) / columns, t = Real32(row) / rows;
            // The seam, where the surface map ends, is at the back.
            const Real32 angle = 6.2831853f * (s + 0.5f), c = std::cos(angle), d = std::sin(angle);
            const Real32 slope = (radius(t + 0.001f) - radius(t - 0.001f)) / 0.002f;
            Vec3f normal(d * 2.4f, -slope, c * 2.4f);
            normal.normalize();
            positions.push_back(Pnt3f(radius(t) * d, 2.4f * t, radius(t) * c));
            normals.push_back(normal);
            tangents.push_back(Vec3f(c, 0.f, -d));
            texCoords.push_back(Vec2f(s, t));
            if(row < rows && column < columns)
            {
                const UInt32 at = row * (columns + 1) + column, above = at + columns + 1;
                triangles.insert(triangles.end(), {at, at + 1, above + 1, at, above + 1, above});
            }
        }
    const GeometryPtr vase = Geometry::create();
    vase->setTypes(property<GeoPTypesUI8>(std::vector<UInt8>{GL_TRIANGLES}));
    vase->setLengths(property<GeoPLengthsUI32>(std::vector<UInt32>{UInt32(triangles.size())}));
    vase->setPositions(property<GeoPositions3f>(positions));
    vase->setNormals(property<GeoNormals3f>(normals));
    vase->setTexCoords(property<GeoTexCoords2f>(texCoords));
    vase->setTexCoords1(property<GeoTexCoords3f>(tangents));
    vase->setIndices(property<GeoIndicesUI32>(triangles));
    vase->getIndexMapping().push_back(Geometry::MapPosition | Geometry::MapNormal | Geometry::MapTexCoords |
                                      Geometry::MapTexCoords1);
    vase->setMaterial(material);
    endEditCP(vase);
    return vase;
}

/// Bands and a zigzag around the wall.
TextureChunkPtr glaze()
{
    const int size = 1024;
    std::vector<UInt8> pixels;
    for(int y = 0; y < size; ++y)
        for(int x = 0; x < size; ++x)
        {
            const Real32 s = Real32(x) / size, t = Real32(y) / size;
            const Real32 zigzag = std::fabs(std::fmod(s * 32.f, 2.f) - 1.f);
            const bool band = std::fabs(t - 0.2f) < 0.015f || std::fabs(t - 0.75f) < 0.015f;
            const bool line = std::fabs(t - 0.45f - 0.08f * zigzag) < 0.02f;
            const Color3f color = band   ? Color3f(0.75f, 0.35f, 0.15f)
                                  : line ? Color3f(0.9f, 0.62f, 0.3f)
                                         : Color3f(0.93f, 0.89f, 0.8f);
            for(int c = 0; c < 3; ++c)
                pixels.push_back(UInt8(255.f * color[c]));
        }
    const ImagePtr image = Image::create();
    image->set(Image::OSG_RGB_PF, size, size, 1, 1, 1, 0.0, pixels.data());
    endEditCP(image);
    const TextureChunkPtr texture = TextureChunk::create();
    texture->setImage(image);
    endEditCP(texture);
    return texture;
}

} // namespace

int main(int argc, char **argv)
{
    initTessalyExtention();
    if(!osgInit(argc, argv))
        return 1;
    bool written = true;
    {
        Matrix eye;
        MatrixLookAt(eye, Pnt3f(0.f, 2.3f, 5.2f), Pnt3f(0.f, 1.2f, 0.f), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        const DirectionalLightPtr light = DirectionalLight::create();
        light->setAmbient(Color4f(1, 1, 1, 1));
        light->setDiffuse(Color4f(1, 1, 1, 1));
        light->setSpecular(Color4f(1, 1, 1, 1));
        light->setDirection(Vec3f(-2.f, 3.f, 4.f));
        light->setBeacon(beacon);
        endEditCP(light);

        // The material brings the texture, on unit 0. The simulation adds what shows the liquid over it.
        const ChunkMaterialPtr material = ChunkMaterial::create();
        material->addChunk(glaze(), 0);
        endEditCP(material);
        const NodePtr vase = makeNodeFor(makeVase(material));
        const NodePtr root = makeNodeFor(light);
        root->addChild(beacon);
        root->addChild(vase);
        endEditCP(root);

        // The simulation stands ahead of the viewport that shows the vase.
        const DropletFlowViewportPtr droplets = DropletFlowViewport::create();
        droplets->setRoot(vase);
        droplets->setMaterial(material);
        droplets->setMatMode(2);
        droplets->setSurfaceMapSize(Vec2f(512, 256));
        droplets->setTimeDelay(0.02);
        droplets->setForce(Vec3f(0.f, -0.08f, 0.f));
        droplets->setPerturbAngle(0.4f);
        droplets->setContactAngle(1.2f);
        droplets->setFluidColor(Color4f(0.15f, 0.35f, 0.85f, 0.85f));
        endEditCP(droplets);

        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.6f);
        camera->setNear(1.f);
        camera->setFar(20.f);
        endEditCP(camera);
        const SolidBackgroundPtr background = SolidBackground::create();
        background->setColor(Color3f(0.28f, 0.31f, 0.34f));
        endEditCP(background);
        const ImagePtr picture = Image::create();
        picture->set(Image::OSG_RGB_PF, 540, 640);
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
        window->resize(540, 640);
        window->addPort(droplets);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());

        // Each frame is a fiftieth of a second later; the first few make the simulation, then drops fall.
        std::string series = argc > 1 ? argv[1] : "droplets.png";
        if(series.size() > 4 && series.compare(series.size() - 4, 4, ".png") == 0)
            series.resize(series.size() - 4);
        std::mt19937 random(3);
        std::uniform_real_distribution<Real32> unit(0.f, 1.f);
        for(int frame = 0; frame <= 246; ++frame)
        {
            if(frame == 5)
            {
                for(int i = 0; i < 90; ++i)
                {
                    const Real32 x = unit(random), y = 0.45f + 0.5f * unit(random);
                    droplets->getSources().push_back(Vec3f(x, y, 0.015f + 0.04f * unit(random)));
                }
                endEditCP(droplets, DropletFlowViewport::SourcesFieldMask);
            }
            droplets->setTime(0.02 * frame + 0.001);
            endEditCP(droplets, DropletFlowViewport::TimeFieldMask);
            window->render(action.get());
            if(frame >= 6 && (frame - 6) % 80 == 0)
                written =
                    picture->write((series + "-" + std::to_string((frame - 6) / 80) + ".png").c_str()) &&
                    written;
        }
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
