#include "CoreScene.h"

#include "support/PixelCompare.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGMemoryDataHandler.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGTextureChunk.h>
#include <Tessaly/OSGSkydomeBackground.h>

#include <cmath>

using namespace osg;
using namespace cores_test;

namespace
{

typedef SkydomeBackgroundPtr SkyPtr;

constexpr int size = 64;
constexpr int columns = 16;
constexpr int rows = 8;
constexpr double pi = 3.14159265358979323846;

/// The colour of a texel of the test panorama: no two are the same.
test::RgbaImage::Pixel texel(int column, int row)
{
    return {std::uint8_t(16 * column), std::uint8_t(32 * row + 8),
            std::uint8_t(column % 2 == row % 2 ? 255 : 60), 255};
}

TextureChunkPtr panorama()
{
    const ImagePtr image = Image::create();
    image->set(Image::OSG_RGB_PF, columns, rows);
    UInt8 *data = image->editData();
    for(int row = 0; row < rows; ++row)
        for(int column = 0; column < columns; ++column)
            for(int channel = 0; channel < 3; ++channel)
                *data++ = texel(column, row)[std::size_t(channel)];
    endEditCP(image);
    const TextureChunkPtr texture = TextureChunk::create();
    texture->setImage(image);
    texture->setMinFilter(GL_NEAREST);
    texture->setMagFilter(GL_NEAREST);
    texture->setEnvMode(GL_REPLACE);
    endEditCP(texture);
    return texture;
}

/// What stands in a direction of the world: the panorama begins at +x and reads from left to right for who
/// turns to the right, over +z, -x and -z; its lowest row is at -y. Written down from this meaning and not
/// from matrices.
test::RgbaImage::Pixel texelAt(const Vec3f &direction)
{
    const double length = direction.length();
    double longitude = std::atan2(double(direction[2]), double(direction[0])) / (2 * pi);
    if(longitude < 0)
        longitude += 1;
    const double latitude = std::acos(-double(direction[1]) / length) / pi;
    return texel(std::min(columns - 1, int(longitude * columns)), std::min(rows - 1, int(latitude * rows)));
}

/// The direction of the middle of a texel.
Vec3f middleOf(int column, int row)
{
    const double longitude = 2 * pi * (column + 0.5) / columns;
    const double latitude = pi * (row + 0.5) / rows;
    return Vec3f(Real32(std::sin(latitude) * std::cos(longitude)), Real32(-std::cos(latitude)),
                 Real32(std::sin(latitude) * std::sin(longitude)));
}

/// A matrix whose -z axis is `direction`.
Matrix lookAlong(Vec3f direction, const Vec3f &place = Vec3f())
{
    direction.normalize();
    const Vec3f back(-direction[0], -direction[1], -direction[2]);
    Vec3f right = Vec3f(0, 1, 0).cross(back);
    right.normalize();
    return Matrix(right, back.cross(right), back, place);
}

/// A window with a sky and a camera on a beacon.
class SkyView
{
  public:
    explicit SkyView(const CameraPtr &camera = CameraPtr()) : _action(RenderAction::create())
    {
        _root = makeCoredNode<Group>();
        const NodePtr beacon = makeCoredNode<Transform>(&_eye);
        _root->addChild(beacon);
        endEditCP(_root);
        CameraPtr eye = camera;
        if(eye == NullFC)
        {
            const PerspectiveCameraPtr perspective = PerspectiveCamera::create();
            perspective->setFov(1.0f);
            // The unit sphere lies wholly ahead of the near plane.
            perspective->setNear(5.0f);
            perspective->setFar(50.0f);
            eye = perspective;
        }
        eye->setBeacon(beacon);
        endEditCP(eye);
        sky = SkydomeBackground::create();
        sky->setSphereRes(32);
        sky->setLatlongTexture(panorama());
        endEditCP(sky);
        port = Viewport::create();
        port->setCamera(eye);
        port->setRoot(_root);
        port->setBackground(sky);
        endEditCP(port);
        window = EGLWindow::create();
        addRefCP(window);
        window->resize(size, size);
        window->addPort(port);
        window->init();
    }
    ~SkyView()
    {
        EXPECT_TRUE(window->activate());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << "pending at the end of the view";
        subRefCP(window);
    }
    SkyView(const SkyView &) = delete;
    SkyView &operator=(const SkyView &) = delete;

    void look(const Matrix &matrix)
    {
        _eye->setMatrix(matrix);
        endEditCP(_eye);
    }
    test::RgbaImage render()
    {
        window->render(_action.get());
        EXPECT_TRUE(window->activate());
        return test::readPixels(0, 0, size, size);
    }
    test::RgbaImage::Pixel middle() { return render().at(size / 2, size / 2); }
    const NodePtr &root() const { return _root; }

    SkyPtr sky;
    ViewportPtr port;
    EGLWindowPtr window;

  private:
    std::unique_ptr<RenderAction> _action;
    NodePtr _root;
    TransformPtr _eye;
};

std::vector<float> depths()
{
    std::vector<float> result(size * size);
    glReadPixels(0, 0, size, size, GL_DEPTH_COMPONENT, GL_FLOAT, result.data());
    return result;
}

/// The share of a square picture from -2 to 2 that is not black, times its area: the area of what is seen.
double areaSeen(const test::RgbaImage &image)
{
    int covered = 0;
    for(int y = 0; y < image.height; ++y)
        for(int x = 0; x < image.width; ++x)
            covered += image.at(x, y)[2] != 0 ? 1 : 0;
    return 16.0 * covered / (image.width * image.height);
}

} // namespace

TEST(Skydome, EveryTexelStandsInItsDirection)
{
    SkyView view;
    for(int row = 0; row < rows; ++row)
        for(int column = 0; column < columns; ++column)
        {
            view.look(lookAlong(middleOf(column, row)));
            EXPECT_EQ(view.middle(), texel(column, row)) << column << " " << row;
        }
}

TEST(Skydome, TheAxesAreWhereTheyShouldBe)
{
    SkyView view;
    // A little off the seams between texels.
    const Vec3f directions[] = {{1, 0.1f, 0.1f}, {-0.1f, 0.1f, 1}, {-1, 0.1f, -0.1f}, {0.1f, 0.1f, -1}};
    const int expected[] = {0, columns / 4, columns / 2, columns * 3 / 4};
    for(int i = 0; i < 4; ++i)
    {
        view.look(lookAlong(directions[i]));
        EXPECT_EQ(view.middle(), texel(expected[i], rows / 2)) << i;
    }
    view.look(lookAlong(Vec3f(0.05f, 1, -0.05f)));
    EXPECT_EQ(view.middle()[1], texel(0, rows - 1)[1]) << "the last row is above";
    view.look(lookAlong(Vec3f(0.05f, -1, -0.05f)));
    EXPECT_EQ(view.middle()[1], texel(0, 0)[1]) << "the first row is below";
}

TEST(Skydome, RightOfTheMiddleIsRightInTheWorld)
{
    SkyView view;
    view.sky->setSphereRes(64);
    view.look(lookAlong(Vec3f(0, 0, -1)));
    const test::RgbaImage image = view.render();
    const double half = std::tan(0.5);
    int compared = 0;
    for(int y = 4; y < size; y += 8)
        for(int x = 4; x < size; x += 8)
        {
            const Vec3f direction(Real32(half * (2.0 * (x + 0.5) / size - 1)),
                                  Real32(half * (2.0 * (y + 0.5) / size - 1)), -1);
            // Next to a seam the sphere's flat pieces decide.
            const double s = std::atan2(-1.0, double(direction[0])) / (2 * pi) * columns;
            const double t = std::acos(-double(direction[1]) / direction.length()) / pi * rows;
            if(std::abs(s - std::round(s)) < 0.05 || std::abs(t - std::round(t)) < 0.05)
                continue;
            EXPECT_EQ(image.at(x, y), texelAt(direction)) << x << " " << y;
            ++compared;
        }
    EXPECT_GT(compared, 30);
}

TEST(Skydome, MovingTheCameraWithoutTurningItMovesNothing)
{
    SkyView view;
    const Vec3f direction(0.3f, 0.2f, -1);
    view.look(lookAlong(direction));
    const test::RgbaImage still = view.render();
    for(const Vec3f &place : {Vec3f(100, 0, 0), Vec3f(-3, 70, 0.5f), Vec3f(0, 0, -1000)})
    {
        view.look(lookAlong(direction, place));
        EXPECT_TRUE(test::imagesMatch(view.render(), still));
    }
    view.look(lookAlong(Vec3f(1, 0.2f, 0.4f)));
    EXPECT_FALSE(view.render().bytes == still.bytes) << "turning it does";
}

TEST(Skydome, TheSphereTurnsWithTheBeaconAndDoesNotMoveWithIt)
{
    SkyView view;
    TransformPtr turn;
    const NodePtr beacon = makeCoredNode<Transform>(&turn);
    view.root()->addChild(beacon);
    endEditCP(view.root());
    view.sky->setBeacon(beacon);
    endEditCP(view.sky);
    // Columns are the images of x, y and z: a turn about two axes, and a place far away.
    const Matrix turns[] = {Matrix(Vec3f(0, 0, -1), Vec3f(0, 1, 0), Vec3f(1, 0, 0), Vec3f(500, -20, 3)),
                            Matrix(Vec3f(0, 1, 0), Vec3f(0, 0, 1), Vec3f(1, 0, 0), Vec3f(0, 9, 0))};
    for(const Matrix &matrix : turns)
    {
        turn->setMatrix(matrix);
        endEditCP(turn);
        Matrix back;
        ASSERT_TRUE(matrix.inverse(back));
        for(const auto &[column, row] : {std::pair<int, int>{0, 3}, {4, 4}, {7, 2}, {13, 5}})
        {
            Vec3f direction;
            matrix.multMatrixVec(middleOf(column, row), direction);
            view.look(lookAlong(direction));
            EXPECT_EQ(view.middle(), texel(column, row)) << column << " " << row;
            Vec3f local;
            back.multMatrixVec(direction, local);
            EXPECT_EQ(view.middle(), texelAt(local));
        }
    }
}

TEST(Skydome, EightSlicesAndEightStacks)
{
    const OrthographicCameraPtr camera = OrthographicCamera::create();
    camera->setVerticalSize(4);
    camera->setNear(-10);
    camera->setFar(10);
    SkyView view(camera);
    view.window->resize(512, 512);
    const SkyPtr fresh = SkydomeBackground::create();
    EXPECT_EQ(fresh->getSphereRes(), 8u);
    subRefCP(fresh);
    const std::unique_ptr<RenderAction> action(RenderAction::create());
    const auto areaAlong = [&](const Vec3f &direction) {
        view.look(lookAlong(direction));
        view.window->render(action.get());
        EXPECT_TRUE(view.window->activate());
        return areaSeen(test::readPixels(0, 0, 512, 512));
    };
    for(const UInt32 resolution : {8u, 6u, 12u})
    {
        view.sky->setSphereRes(resolution);
        // From above the outline is a polygon with a corner for each slice; the direction is off the axis so
        // that there is a right side.
        const double slices = resolution / 2.0 * std::sin(2 * pi / resolution);
        EXPECT_NEAR(areaAlong(Vec3f(0.001f, -1, 0)), slices, 0.004 * slices) << resolution;
        // From the side, across corners at +x and -x, it has one for each stack on either side.
        const double stacks = resolution * std::sin(pi / resolution);
        EXPECT_NEAR(areaAlong(Vec3f(0, 0, -1)), stacks, 0.002 * stacks) << resolution;
    }
}

TEST(Skydome, NothingStaysInTheDepthBufferAndTheSceneIsInFront)
{
    SkyView view;
    view.look(lookAlong(Vec3f(0, 0, -1)));
    // A material that writes depth does not change that.
    const ChunkMaterialPtr material = ChunkMaterial::create();
    material->addChunk(panorama(), -2);
    const DepthChunkPtr depth = DepthChunk::create();
    depth->setFunc(GL_ALWAYS);
    endEditCP(depth);
    material->addChunk(depth);
    endEditCP(material);
    for(const bool writes : {false, true})
    {
        if(writes)
        {
            view.sky->setMaterial(material);
            endEditCP(view.sky, SkydomeBackground::MaterialFieldMask);
        }
        view.render();
        for(const float value : depths())
            ASSERT_EQ(value, 1.0f);
    }
    // At 49.9 of 50, and yet in front.
    const NodePtr quad = quadAt(0.0f, -49.9f);
    view.root()->addChild(quad);
    endEditCP(view.root());
    EXPECT_EQ(view.middle(), (test::RgbaImage::Pixel{255, 255, 255, 255}));
}

TEST(Skydome, TheWholeSphereHasOneDepth)
{
    SkyView view;
    view.look(lookAlong(Vec3f(0.2f, 0.1f, -1)));
    const ChunkMaterialPtr material = ChunkMaterial::create();
    material->addChunk(panorama(), -2);
    const DepthChunkPtr depth = DepthChunk::create();
    depth->setEnable(true);
    depth->setFunc(GL_LESS);
    endEditCP(depth);
    material->addChunk(depth);
    endEditCP(material);
    view.sky->setMaterial(material);
    endEditCP(view.sky, SkydomeBackground::MaterialFieldMask);
    ASSERT_TRUE(view.window->activate());
    // Half of the way from the middle of the depth range, 0.5, to its end.
    for(const auto &[cleared, seen] : {std::pair<double, bool>{0.74, false}, {0.76, true}})
    {
        glClearDepth(cleared);
        const test::RgbaImage image = view.render();
        for(int y = 0; y < size; ++y)
            for(int x = 0; x < size; ++x)
                ASSERT_EQ(image.at(x, y)[2] != 0, seen) << x << " " << y << " " << cleared;
    }
    glClearDepth(1.0);
}

TEST(Skydome, StateIsAsBeforeAndTheColourIsWhite)
{
    SkyView view;
    // The material draws lines and lights, which must not show.
    const ChunkMaterialPtr material = ChunkMaterial::create();
    material->addChunk(panorama(), -2);
    const PolygonChunkPtr lines = PolygonChunk::create();
    lines->setFrontMode(GL_LINE);
    lines->setBackMode(GL_LINE);
    endEditCP(lines);
    material->addChunk(lines);
    endEditCP(material);
    view.sky->setMaterial(material);
    endEditCP(view.sky, SkydomeBackground::MaterialFieldMask);
    view.look(lookAlong(middleOf(3, 4)));
    const test::RgbaImage filled = view.render();
    for(int y = 0; y < size; ++y)
        for(int x = 0; x < size; ++x)
            ASSERT_NE(filled.at(x, y)[2], 0) << x << " " << y;

    const std::unique_ptr<DrawAction> action(DrawAction::create());
    action->setWindow(view.window.getCPtr());
    action->setViewport(view.port.getCPtr());
    action->setCamera(view.port->getCamera().getCPtr());
    view.window->frameInit();
    glViewport(0, 0, size, size);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glTranslatef(1, 2, 3);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(4, 5, 6);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glColor3f(0.25f, 0.5f, 0.75f);
    view.sky->clear(action.get(), view.port.getCPtr());

    GLfloat color[4];
    glGetFloatv(GL_CURRENT_COLOR, color);
    for(const GLfloat channel : color)
        EXPECT_EQ(channel, 1.0f);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    GLint mode[2];
    glGetIntegerv(GL_POLYGON_MODE, mode);
    EXPECT_EQ(mode[0], GL_FILL);
    GLint matrixMode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &matrixMode);
    EXPECT_EQ(matrixMode, GL_MODELVIEW);
    GLfloat matrix[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, matrix);
    EXPECT_EQ(matrix[12], 4.0f);
    glGetFloatv(GL_PROJECTION_MATRIX, matrix);
    EXPECT_EQ(matrix[12], 1.0f);
    GLint depth = 0;
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
    EXPECT_EQ(depth, 1);
    glGetIntegerv(GL_PROJECTION_STACK_DEPTH, &depth);
    EXPECT_EQ(depth, 1);
    glGetIntegerv(GL_ATTRIB_STACK_DEPTH, &depth);
    EXPECT_EQ(depth, 0);
    for(const float value : depths())
        ASSERT_EQ(value, 1.0f);
    glDisable(GL_LIGHTING);
    view.window->frameExit();
}

TEST(Skydome, SettingTheTextureMakesAMaterialThatNobodyCounts)
{
    const Held<SkyPtr> sky;
    const Held<TextureChunkPtr> texture;
    const Held<MaterialPtr> own(SimpleMaterial::create());
    sky->setMaterial(own.ptr);
    endEditCP(sky.ptr, SkydomeBackground::MaterialFieldMask);
    EXPECT_EQ(own.ptr.getRefCount(), 2);

    sky->setLatlongTexture(texture.ptr);
    EXPECT_TRUE(sky->getMaterial() == own.ptr) << "the end of the edit does it";
    endEditCP(sky.ptr, SkydomeBackground::LatlongTextureFieldMask);
    const ChunkMaterialPtr made = ChunkMaterialPtr::dcast(sky->getMaterial());
    ASSERT_TRUE(made != NullFC);
    EXPECT_EQ(made.getRefCount(), 0);
    EXPECT_EQ(own.ptr.getRefCount(), 2) << "nothing is taken off the one that stood there";
    ASSERT_EQ(made->getMFChunks()->size(), 1u);
    EXPECT_TRUE((*made->getMFChunks())[0] == texture.ptr);

    sky->setLatlongTexture(NullFC);
    endEditCP(sky.ptr, SkydomeBackground::LatlongTextureFieldMask);
    EXPECT_TRUE(sky->getMaterial() == made) << "without a texture it stays";

    // Each change makes another one.
    sky->setLatlongTexture(texture.ptr);
    endEditCP(sky.ptr, SkydomeBackground::LatlongTextureFieldMask);
    const MaterialPtr second = sky->getMaterial();
    EXPECT_TRUE(second != made);
    for(const MaterialPtr &material : {MaterialPtr(made), second})
    {
        addRefCP(material);
        subRefCP(material);
    }
    // Nothing is left in the field that is gone.
    sky->setMaterial(own.ptr);
    endEditCP(sky.ptr, SkydomeBackground::MaterialFieldMask);
    EXPECT_EQ(own.ptr.getRefCount(), 2);
}

TEST(Skydome, EachAspectMakesAMaterialOfItsOwn)
{
    const Held<SkyPtr> sky;
    const Held<TextureChunkPtr> texture;
    sky->setLatlongTexture(texture.ptr);
    endEditCP(sky.ptr, SkydomeBackground::LatlongTextureFieldMask);
    const MaterialPtr here = sky->getMaterial();
    onOtherAspect([&] {
        EXPECT_TRUE(sky->getLatlongTexture() == texture.ptr);
        EXPECT_TRUE(sky->getMaterial() != NullFC);
        EXPECT_TRUE(sky->getMaterial() != here);
        addRefCP(sky->getMaterial());
        subRefCP(sky->getMaterial());
    });
    EXPECT_TRUE(sky->getMaterial() == here);
    addRefCP(here);
    subRefCP(here);
    Thread::getCurrentChangeList()->clearAll();
}

TEST(Skydome, WhatAHostSetsIsHeldAndLetGo)
{
    const Held<NodePtr> node(makeCoredNode<Group>());
    const Held<NodePtr> sphere(makeCoredNode<Group>());
    const Held<TextureChunkPtr> texture;
    const Held<MaterialPtr> material(SimpleMaterial::create());
    {
        const Held<SkyPtr> sky;
        sky->setBeacon(node.ptr);
        sky->getSphere() = sphere.ptr;
        sky->setMaterial(material.ptr);
        endEditCP(sky.ptr, SkydomeBackground::BeaconFieldMask | SkydomeBackground::SphereFieldMask |
                               SkydomeBackground::MaterialFieldMask);
        EXPECT_EQ(node.ptr.getRefCount(), 2);
        EXPECT_EQ(sphere.ptr.getRefCount(), 2);
        const Held<FieldContainerPtr> copy(sky->shallowCopy());
        EXPECT_EQ(node.ptr.getRefCount(), 3);
        EXPECT_EQ(material.ptr.getRefCount(), 3);
        sky->setBeacon(NullFC);
        EXPECT_EQ(node.ptr.getRefCount(), 2);
    }
    EXPECT_EQ(node.ptr.getRefCount(), 1);
    EXPECT_EQ(sphere.ptr.getRefCount(), 1);
    EXPECT_EQ(material.ptr.getRefCount(), 1);
}

TEST(Skydome, FieldsAreThoseOfTheTable)
{
    const SkyPtr sky = SkyPtr::dcast(FieldContainerFactory::the()->createFieldContainer("SkydomeBackground"));
    ASSERT_TRUE(sky != NullFC);
    const Held<SkyPtr> held(sky);
    const FieldContainerType &type = SkydomeBackground::getClassType();
    EXPECT_STREQ(type.getParent()->getCName(), "Background");
    EXPECT_EQ(type.getNumFieldDescs(), Background::getClassType().getNumFieldDescs() + 5);
    const std::pair<const char *, const char *> fields[] = {{"sphereRes", "SFUInt32"},
                                                            {"latlongTexture", "SFTextureChunkPtr"},
                                                            {"sphere", "SFNodePtr"},
                                                            {"beacon", "SFNodePtr"},
                                                            {"material", "SFMaterialPtr"}};
    for(UInt32 i = 0; i < 5; ++i)
    {
        const FieldDescription *const field = type.getFieldDescription(2 + i);
        ASSERT_NE(field, nullptr);
        EXPECT_STREQ(field->getCName(), fields[i].first);
        EXPECT_STREQ(field->getTypeName(), fields[i].second);
        EXPECT_EQ(field->getFieldMask(), BitVector(4) << i);
        EXPECT_FALSE(field->isInternal());
    }
    EXPECT_EQ(UInt32(SkydomeBackground::NextFieldId), 7u);
    EXPECT_EQ(sky->getSphereRes(), 8u);
    EXPECT_TRUE(sky->getLatlongTexture() == NullFC);
    EXPECT_TRUE(sky->getSphere() == NullFC);
    EXPECT_TRUE(sky->getBeacon() == NullFC);
    EXPECT_TRUE(sky->getMaterial() == NullFC);
    LogCapture log;
    sky->dump();
    EXPECT_EQ(log.text(LOG_LOG), "Dump SkydomeBackground NI\n");
    EXPECT_EQ(log.count(), 1u);

    // Pointers to a sky are kept in multi fields only.
    EXPECT_NE(TypeFactory::the()->findType("MFSkydomeBackgroundPtr"), nullptr);
    EXPECT_EQ(TypeFactory::the()->findType("SFSkydomeBackgroundPtr"), nullptr);
    MFSkydomeBackgroundPtr several;
    several.push_back(sky);
    EXPECT_TRUE(several[0] == sky);
}

TEST(Skydome, BinaryDataBringsTheValuesAcross)
{
    const Held<SkyPtr> source;
    const Held<SkyPtr> target;
    const Held<NodePtr> sphere(makeCoredNode<Group>());
    source->setSphereRes(21);
    source->setSphere(sphere.ptr);
    const BitVector mask = SkydomeBackground::SphereResFieldMask | SkydomeBackground::SphereFieldMask |
                           SkydomeBackground::BeaconFieldMask;
    MemoryDataHandler memory;
    source->copyToBin(memory, mask);
    EXPECT_EQ(memory.getData().size(), 12u);
    EXPECT_EQ(source->getBinSize(mask), 12u);
    target->copyFromBin(memory, mask);
    EXPECT_EQ(target->getSphereRes(), 21u);
    EXPECT_TRUE(target->getSphere() == sphere.ptr);
    EXPECT_TRUE(target->getBeacon() == NullFC);
}
