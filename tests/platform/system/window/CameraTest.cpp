/// \file
/// Cameras against closed forms.

#include "Scenes.h"

#include <OpenSG/OSGFrustumVolume.h>
#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGMatrixCamera.h>
#include <OpenSG/OSGOrthographicCamera.h>
#include <OpenSG/OSGShearedStereoCameraDecorator.h>

#include <cmath>

namespace
{

using namespace osg;

class Cameras : public test::OpenSGTest
{
};

/// A node at that place in the world, turned by a quarter about y.
NodePtr makeBeacon(const Vec3f &place)
{
    TransformPtr core;
    const NodePtr node = makeCoredNode<Transform>(&core);
    Matrix matrix;
    matrix.setTransform(place, Quaternion(Vec3f(0, 1, 0), Pi / 2));
    core->setMatrix(matrix);
    endEditCP(core);
    return node;
}

void expectNear(const Matrix &actual, const Matrix &expected, Real32 tolerance)
{
    EXPECT_TRUE(actual.equals(expected, tolerance)) << actual << "\n" << expected;
}

/// A viewport of 100 x 50 pixels at (10, 20) of a window of 200 x 100.
struct Port
{
    Port()
    {
        window = WindowPtr::dcast(FieldContainerFactory::the()->createFieldContainer("PassiveWindow"));
        window->resize(200, 100);
        port = Viewport::create();
        port->setSize(10, 20, 109, 69);
        window->addPort(port);
        addRefCP(window);
    }
    ~Port() { subRefCP(window); }

    WindowPtr window;
    ViewportPtr port;
};

TEST_F(Cameras, ProjectByTheFullVerticalAngleInRadians)
{
    const PerspectiveCameraPtr camera = test::makeCamera();
    camera->setFov(0.8f);
    camera->setNear(0.5f);
    camera->setFar(20.0f);
    camera->setAspect(1.5f);
    Matrix projection;
    camera->getProjection(projection, 300, 200);
    const Real32 cot = 1.0f / std::tan(0.4f);
    const Real32 aspect = 300.0f / 200.0f * 1.5f;
    expectNear(projection,
               Matrix(cot / aspect, 0, 0, 0, 0, cot, 0, 0, 0, 0, -20.5f / 19.5f, -20.0f / 19.5f, 0, 0, -1, 0),
               1e-5f);
    // The upper edge of what is seen at distance d is at d * tan(fov / 2).
    Pnt3f edge(0, 7 * std::tan(0.4f), -7);
    projection.multFullMatrixPnt(edge);
    EXPECT_NEAR(edge.y(), 1.0f, 1e-5f);
    subRefCP(camera);
}

TEST_F(Cameras, ProjectParallelRaysByTheirHeight)
{
    const OrthographicCameraPtr camera = OrthographicCamera::create();
    camera->setVerticalSize(4.0f);
    camera->setNear(1.0f);
    camera->setFar(5.0f);
    Matrix projection;
    camera->getProjection(projection, 200, 100);
    expectNear(projection, Matrix(0.25f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, -0.5f, -1.5f, 0, 0, 0, 1), 1e-6f);
    subRefCP(camera);
}

TEST_F(Cameras, ProjectNothingOntoAPictureWithoutPixels)
{
    const PerspectiveCameraPtr camera = test::makeCamera();
    Matrix projection(2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2);
    camera->getProjection(projection, 0, 10);
    EXPECT_EQ(projection, Matrix());
    subRefCP(camera);
}

TEST_F(Cameras, ViewFromTheirBeacon)
{
    const PerspectiveCameraPtr camera = test::makeCamera();
    Matrix viewing(0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    camera->getViewing(viewing, 10, 10);
    EXPECT_EQ(viewing, Matrix()) << "without a beacon the world is the eye's space";
    camera->setBeacon(makeBeacon(Vec3f(5, 6, 7)));
    camera->getViewing(viewing, 10, 10);
    // Turned by a quarter about y, the camera looks along -x.
    Pnt3f ahead(4, 6, 7);
    viewing.multMatrixPnt(ahead);
    EXPECT_NEAR(ahead.x(), 0, 1e-5f);
    EXPECT_NEAR(ahead.y(), 0, 1e-5f);
    EXPECT_NEAR(ahead.z(), -1, 1e-5f);
    subRefCP(camera);
}

TEST_F(Cameras, HoldOneReferenceOnTheirBeacon)
{
    const NodePtr first = makeBeacon(Vec3f(0, 0, 0));
    const NodePtr second = makeBeacon(Vec3f(0, 0, 0));
    addRefCP(first);
    addRefCP(second);
    const PerspectiveCameraPtr camera = test::makeCamera();
    addRefCP(camera);
    camera->setBeacon(first);
    camera->setBeacon(first);
    EXPECT_EQ(first.getRefCount(), 2);
    camera->setBeacon(second);
    EXPECT_EQ(first.getRefCount(), 1);
    EXPECT_EQ(second.getRefCount(), 2);
    subRefCP(camera);
    EXPECT_EQ(second.getRefCount(), 1);
    subRefCP(first);
    subRefCP(second);
}

TEST_F(Cameras, SendRaysThroughPixelCentresFromTheEye)
{
    Port place;
    const PerspectiveCameraPtr camera = test::makeCamera();
    camera->setBeacon(makeBeacon(Vec3f(1, 2, 3)));
    Line line;
    // The lower left pixel of the viewport: column 10, and row 20 from below is row 79 from above.
    ASSERT_TRUE(camera->calcViewRay(line, 10, 79, *place.port));
    const Real32 top = std::tan(0.5f);
    Vec3f expected(-2.0f * top * (1.0f - 1.0f / 100.0f), -top * (1.0f - 1.0f / 50.0f), -1.0f);
    expected.normalize();
    // The beacon's quarter turn about y takes (x, y, z) to (z, y, -x).
    EXPECT_NEAR(line.getPosition().x(), 1, 1e-5f);
    EXPECT_NEAR(line.getPosition().y(), 2, 1e-5f);
    EXPECT_NEAR(line.getPosition().z(), 3, 1e-5f);
    EXPECT_NEAR(line.getDirection().x(), expected.z(), 1e-5f);
    EXPECT_NEAR(line.getDirection().y(), expected.y(), 1e-5f);
    EXPECT_NEAR(line.getDirection().z(), -expected.x(), 1e-5f);
    subRefCP(camera);
}

TEST_F(Cameras, SendParallelRaysFromTheNearPlane)
{
    Port place;
    const OrthographicCameraPtr camera = OrthographicCamera::create();
    camera->setVerticalSize(5.0f);
    camera->setNear(2.0f);
    camera->setFar(9.0f);
    Line line;
    ASSERT_TRUE(camera->calcViewRay(line, 109, 30, *place.port));
    EXPECT_NEAR(line.getPosition().x(), 5.0f - 0.05f, 1e-4f);
    EXPECT_NEAR(line.getPosition().y(), 2.5f - 0.05f, 1e-4f);
    EXPECT_NEAR(line.getPosition().z(), -2.0f, 1e-4f);
    EXPECT_NEAR(line.getDirection().z(), -1.0f, 1e-5f);
    subRefCP(camera);
}

TEST_F(Cameras, SeeWhatIsInTheirFrustum)
{
    Port place;
    const PerspectiveCameraPtr camera = test::makeCamera();
    FrustumVolume frustum;
    camera->getFrustum(frustum, *place.port);
    EXPECT_TRUE(frustum.intersect(Pnt3f(0, 0, -5)));
    EXPECT_FALSE(frustum.intersect(Pnt3f(0, 0, -0.9f)));
    EXPECT_FALSE(frustum.intersect(Pnt3f(0, 0, -10.1f)));
    EXPECT_TRUE(frustum.intersect(Pnt3f(0, 4.99f * std::tan(0.5f), -5)));
    EXPECT_FALSE(frustum.intersect(Pnt3f(0, 5.01f * std::tan(0.5f), -5)));
    EXPECT_TRUE(frustum.intersect(Pnt3f(9.98f * std::tan(0.5f), 0, -5)));
    EXPECT_FALSE(frustum.intersect(Pnt3f(10.02f * std::tan(0.5f), 0, -5)));
    subRefCP(camera);
}

TEST_F(Cameras, OfMatricesGiveThemBack)
{
    const MatrixCameraPtr camera = MatrixCamera::create();
    const Matrix some(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17);
    Matrix result(2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2);
    camera->getProjection(result, 1, 1);
    EXPECT_EQ(result, Matrix());
    camera->setProjectionMatrix(some);
    camera->getProjection(result, 1, 1);
    EXPECT_EQ(result, some);
    camera->setModelviewMatrix(some);
    camera->getViewing(result, 1, 1);
    EXPECT_EQ(result, some);
    subRefCP(camera);
}

TEST_F(Cameras, BehindADecoratorAnswerForIt)
{
    const PerspectiveCameraPtr camera = test::makeCamera();
    const ShearedStereoCameraDecoratorPtr eye = ShearedStereoCameraDecorator::create();
    eye->setDecoratee(camera);
    addRefCP(eye);
    EXPECT_EQ(eye->getNear(), 1.0f);
    eye->setFar(33.0f);
    EXPECT_EQ(camera->getFar(), 33.0f);
    const NodePtr beacon = makeBeacon(Vec3f(1, 2, 3));
    addRefCP(beacon);
    eye->setBeacon(beacon);
    EXPECT_EQ(camera->getBeacon(), beacon);
    EXPECT_EQ(beacon.getRefCount(), 2);
    const Camera &constant = *eye;
    EXPECT_EQ(constant.getFar(), 33.0f);
    EXPECT_EQ(eye->getSFNear(), camera->getSFNear());
    Matrix mine;
    Matrix theirs;
    eye->getViewing(mine, 10, 10);
    camera->getViewing(theirs, 10, 10);
    EXPECT_EQ(mine, theirs);
    subRefCP(eye);
    EXPECT_EQ(beacon.getRefCount(), 1) << "the decoratee went with its last reference";
    subRefCP(beacon);
}

TEST_F(Cameras, WithoutADecorateeStandAlone)
{
    const ShearedStereoCameraDecoratorPtr eye = ShearedStereoCameraDecorator::create();
    eye->setNear(3.0f);
    EXPECT_EQ(eye->getNear(), 3.0f);
    Matrix projection(2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2);
    eye->getProjection(projection, 10, 10);
    EXPECT_EQ(projection, Matrix());
    subRefCP(eye);
}

TEST_F(Cameras, OfTwoEyesAgreeOnThePlaneOfZeroParallax)
{
    const PerspectiveCameraPtr camera = test::makeCamera();
    const ShearedStereoCameraDecoratorPtr eye = ShearedStereoCameraDecorator::create();
    eye->setDecoratee(camera);
    eye->setEyeSeparation(0.2f);
    eye->setZeroParallaxDistance(4.0f);
    Pnt3f onPlane[2];
    Pnt3f behind[2];
    Pnt3f mono(0.5f, 0.3f, -4.0f);
    for(int left = 0; left < 2; ++left)
    {
        eye->setLeftEye(left == 1);
        Matrix toClip;
        eye->getWorldToClip(toClip, 200, 100);
        onPlane[left] = Pnt3f(0.5f, 0.3f, -4.0f);
        behind[left] = Pnt3f(0.5f, 0.3f, -8.0f);
        toClip.multFullMatrixPnt(onPlane[left]);
        toClip.multFullMatrixPnt(behind[left]);
    }
    Matrix toClip;
    camera->getWorldToClip(toClip, 200, 100);
    toClip.multFullMatrixPnt(mono);
    EXPECT_NEAR(onPlane[0].x(), onPlane[1].x(), 1e-5f);
    EXPECT_NEAR(onPlane[0].x(), mono.x(), 1e-5f);
    EXPECT_NEAR(onPlane[0].y(), mono.y(), 1e-5f);
    EXPECT_LT(behind[1].x() + 1e-3f, behind[0].x())
        << "what is behind the plane lies farther left for the left eye";
    subRefCP(eye);
}

} // namespace
