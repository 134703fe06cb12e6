#ifndef TESTS_TESSALY_PRIMITIVES_PRIMITIVESCENE_H
#define TESTS_TESSALY_PRIMITIVES_PRIMITIVESCENE_H

/// \file
/// Cores of sorted primitives and windows that show them.

#include "support/Held.h"
#include "support/ReadBack.h"

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoColors4f.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoNormals3f.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGOrthographicCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGSortedPrimitives.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using test::Held;

/// What a class has that is not public.
struct SortedAccess : osg::SortedPrimitives
{
    static osg::Int32 *order(osg::SortedPrimitives &core, osg::DrawActionBase *action, osg::UInt32 &count,
                             osg::Int32 *buffer)
    {
        return (core.*&SortedAccess::calcIndex)(action, count, buffer);
    }
    static osg::PrimitivesDrawerBase *drawer(osg::SortedPrimitives &core)
    {
        return (core.*&SortedAccess::findDrawer)();
    }
    static void adjust(osg::SortedPrimitives &core, osg::Volume &volume)
    {
        (core.*&SortedAccess::adjustVolume)(volume);
    }
};

/// Vertices that come with all that a core must have.
struct Vertices
{
    osg::GeoPositions3fPtr positions = osg::GeoPositions3f::create();
    osg::GeoNormals3fPtr normals = osg::GeoNormals3f::create();
    osg::GeoNormals3fPtr tangents = osg::GeoNormals3f::create();
    osg::GeoColors4fPtr colors = osg::GeoColors4f::create();
    osg::GeoTexCoords2fPtr texCoords = osg::GeoTexCoords2f::create();

    void add(const osg::Pnt3f &position, const osg::Color4f &color,
             const osg::Vec3f &tangent = osg::Vec3f(1.f, 0.f, 0.f))
    {
        positions->addValue(position);
        normals->addValue(osg::Vec3f(0.f, 0.f, 1.f));
        tangents->addValue(tangent);
        colors->editField().push_back(color);
        texCoords->addValue(osg::Vec2f(0.f, 0.f));
    }
    void giveTo(const osg::SortedPrimitivesPtr &core) const
    {
        core->setPositions(positions);
        core->setNormals(normals);
        core->setTangents(tangents);
        core->setColors(colors);
        core->setTexCoords(texCoords);
        for(const osg::FieldContainerPtr &property : std::initializer_list<osg::FieldContainerPtr>{
                positions, normals, tangents, colors, texCoords})
            osg::endEditCP(property);
    }
};

inline osg::GeoPositions3fPtr makePoints(const std::vector<osg::Pnt3f> &points)
{
    const osg::GeoPositions3fPtr property = osg::GeoPositions3f::create();
    for(const osg::Pnt3f &point : points)
        property->addValue(point);
    osg::endEditCP(property);
    return property;
}

/// A square across all of the view for each point, at its depth, of its colour; the points give the order,
/// the mode 1 quads, 0 two triangles each. All are drawn.
inline osg::SortedPrimitivesPtr makeSquares(const std::vector<osg::Pnt3f> &points,
                                            const std::vector<osg::Color4f> &colors, osg::UInt32 mode)
{
    const osg::SortedPrimitivesPtr core = osg::SortedPrimitives::create();
    Vertices vertices;
    std::vector<osg::Int32> indices;
    std::vector<osg::Int32> offsets{0};
    for(std::size_t i = 0; i < points.size(); ++i)
    {
        const osg::Int32 first = osg::Int32(4 * i);
        for(const auto &corner : {osg::Vec2f(-1.f, -1.f), osg::Vec2f(1.f, -1.f), osg::Vec2f(1.f, 1.f),
                                  osg::Vec2f(-1.f, 1.f)})
            vertices.add(osg::Pnt3f(corner[0], corner[1], points[i][2]), colors[i]);
        const std::vector<osg::Int32> corners =
            mode == 1 ? std::vector<osg::Int32>{0, 1, 2, 3} : std::vector<osg::Int32>{0, 1, 2, 0, 2, 3};
        for(const osg::Int32 corner : corners)
            indices.push_back(first + corner);
        offsets.push_back(osg::Int32(indices.size()));
    }
    vertices.giveTo(core);
    core->setRefPoints(makePoints(points));
    core->setIndexArray(&indices);
    core->setOffsetArray(&offsets);
    core->setMode(mode);
    core->setLowerBound(0.f);
    osg::endEditCP(core);
    return core;
}

/// What the draw buffer holds, up to the fill count.
inline std::vector<osg::UInt32> drawn(const osg::SortedPrimitivesPtr &core)
{
    std::vector<osg::UInt32> result;
    for(osg::UInt32 i = 0; i < core->getIndicesSize(); ++i)
        result.push_back(core->getIndices()->getValue(i));
    return result;
}

/// The primitives in the draw buffer, for squares.
inline std::vector<osg::UInt32> drawnSquares(const osg::SortedPrimitivesPtr &core)
{
    std::vector<osg::UInt32> result;
    const osg::UInt32 step = core->getMode() == 1 ? 4 : 6;
    const std::vector<osg::UInt32> indices = drawn(core);
    for(std::size_t i = 0; i < indices.size(); i += step)
        result.push_back(indices[i] / 4);
    return result;
}

/// A window that shows one core below a transform, x and y from -1 to 1, from `eye` on, along -z of its
/// matrix.
class PrimitiveView
{
  public:
    static constexpr int size = 16;

    /// `blend`: what is drawn lets through what is behind it by its alpha; without, what is nearest hides.
    explicit PrimitiveView(const osg::NodeCorePtr &core, bool blend = true)
        : action(osg::RenderAction::create()), root(osg::makeCoredNode<osg::Group>())
    {
        using namespace osg;
        material = ChunkMaterial::create();
        if(blend)
        {
            const BlendChunkPtr chunk = BlendChunk::create();
            chunk->setSrcFactor(GL_SRC_ALPHA);
            chunk->setDestFactor(GL_ONE_MINUS_SRC_ALPHA);
            endEditCP(chunk);
            material->addChunk(chunk);
        }
        endEditCP(material);
        const NodePtr beacon = makeCoredNode<Transform>(&eye);
        const NodePtr mover = makeCoredNode<Transform>(&place);
        node = makeNodeFor(core);
        mover->addChild(node);
        endEditCP(mover);
        root->addChild(beacon);
        root->addChild(mover);
        endEditCP(root.ptr);
        const OrthographicCameraPtr camera = OrthographicCamera::create();
        camera->setBeacon(beacon);
        camera->setVerticalSize(2.f);
        camera->setNear(-100.f);
        camera->setFar(100.f);
        endEditCP(camera);
        viewport = Viewport::create();
        viewport->setCamera(camera);
        viewport->setRoot(root);
        viewport->setBackground(SolidBackground::create());
        endEditCP(viewport);
        window = EGLWindow::create();
        addRefCP(window);
        window->resize(size, size);
        window->addPort(viewport);
        window->init();
        moveEye(0.f);
    }
    ~PrimitiveView()
    {
        EXPECT_TRUE(window->activate());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        osg::subRefCP(window);
    }
    PrimitiveView(const PrimitiveView &) = delete;
    PrimitiveView &operator=(const PrimitiveView &) = delete;

    /// Turned about y by so many half turns, 50 behind the origin.
    void moveEye(float halfTurns)
    {
        osg::Matrix back;
        back.setTranslate(0.f, 0.f, 50.f);
        osg::Matrix matrix;
        matrix.setRotate(osg::Quaternion(osg::Vec3f(0.f, 1.f, 0.f), halfTurns * 3.14159265f));
        matrix.mult(back);
        eye->setMatrix(matrix);
        osg::endEditCP(eye);
    }

    /// Draws a frame and gives the pixel in the middle.
    test::RgbaImage::Pixel render()
    {
        window->render(action.get());
        return read(0.1, 0.1);
    }
    /// The same with the action that does not sort.
    test::RgbaImage::Pixel draw()
    {
        const std::unique_ptr<osg::DrawAction> plain(osg::DrawAction::create());
        window->draw(plain.get());
        return read(0.1, 0.1);
    }
    test::RgbaImage::Pixel read(double x, double y)
    {
        EXPECT_TRUE(window->activate());
        return test::readPixel(int((x + 1) / 2 * size), int((y + 1) / 2 * size));
    }

    std::unique_ptr<osg::RenderAction> action;
    Held<osg::NodePtr> root;
    osg::NodePtr node; ///< has the core
    osg::TransformPtr eye;
    osg::TransformPtr place; ///< above the core
    osg::ChunkMaterialPtr material; ///< for the core to take
    osg::ViewportPtr viewport;
    osg::EGLWindowPtr window;
};

#endif
