/// \file
/// The matrices of cameras.

#include <gtest/gtest.h>

#include <OpenSG/OSGMatrixUtility.h>

#include "MathRandom.h"

using namespace osg;

namespace
{

Pnt3f projected(const Matrix &m, float x, float y, float z)
{
    Pnt3f p;
    m.multFullMatrixPnt(Pnt3f(x, y, z), p);
    return p;
}

} // namespace

TEST(MatrixUtility, PerspectiveTakesHalfTheAngleAndMapsNearAndFarToTheCube)
{
    Matrix m;
    const float half = 0.4f, aspect = 1.5f, nearPlane = 0.5f, farPlane = 50;
    MatrixPerspective(m, half, aspect, nearPlane, farPlane);
    EXPECT_TRUE(projected(m, 0, 0, -nearPlane).equals(Pnt3f(0, 0, -1), 1e-5f));
    EXPECT_TRUE(projected(m, 0, 0, -farPlane).equals(Pnt3f(0, 0, 1), 1e-5f));
    for (const float depth : {0.5f, 7.0f, 50.0f})
    {
        const float top = depth * std::tan(half);
        EXPECT_NEAR(projected(m, aspect * top, top, -depth).x(), 1, 1e-5);
        EXPECT_NEAR(projected(m, aspect * top, top, -depth).y(), 1, 1e-5);
        EXPECT_NEAR(projected(m, -aspect * top, -top, -depth).x(), -1, 1e-5);
    }
}

TEST(MatrixUtility, FrustumAndOrthogonalMapTheirCornersToTheCube)
{
    Matrix m;
    MatrixFrustum(m, -1, 3, -2, 1, 2, 10);
    EXPECT_TRUE(projected(m, -1, -2, -2).equals(Pnt3f(-1, -1, -1), 1e-6f));
    EXPECT_TRUE(projected(m, 3, 1, -2).equals(Pnt3f(1, 1, -1), 1e-6f));
    EXPECT_TRUE(projected(m, 15, 5, -10).equals(Pnt3f(1, 1, 1), 1e-6f));
    Matrix same;
    MatrixProjection(same, -1, 3, -2, 1, 2, 10);
    EXPECT_EQ(same, m);
    MatrixOrthogonal(m, -1, 3, -2, 1, 2, 10);
    EXPECT_TRUE(projected(m, -1, -2, -2).equals(Pnt3f(-1, -1, -1), 1e-6f));
    EXPECT_TRUE(projected(m, 3, 1, -10).equals(Pnt3f(1, 1, 1), 1e-6f));
}

TEST(MatrixUtility, LookAtTakesTheCameraIntoTheWorld)
{
    const unsigned seed = 41;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 300; ++i)
    {
        const Pnt3f from = random.pnt(10);
        const Pnt3f at = from + random.direction() * random.real(0.1f, 20);
        const Vec3f up = random.direction();
        const float distance = from.dist(at);
        if (up.cross(at - from).length() < 0.1f * distance)
            continue;
        Matrix m;
        ASSERT_FALSE(MatrixLookAt(m, from, at, up));
        EXPECT_TRUE((m * Pnt3f(0, 0, 0)).equals(from, 1e-6f));
        EXPECT_TRUE((m * Pnt3f(0, 0, -distance)).equals(at, 2e-5f));
        EXPECT_NEAR(m.det3(), 1, 1e-5);
        // up is above the camera and not beside it
        Matrix toCamera;
        ASSERT_TRUE(m.inverse(toCamera));
        EXPECT_NEAR((toCamera * up).x(), 0, 1e-5);
        EXPECT_GT((toCamera * up).y(), 0);
    }
}

TEST(MatrixUtility, LookAtTellsWhenThereIsNoView)
{
    Matrix m;
    EXPECT_TRUE(MatrixLookAt(m, Pnt3f(1, 2, 3), Pnt3f(1, 2, 3), Vec3f(0, 1, 0)));
    EXPECT_TRUE(MatrixLookAt(m, Pnt3f(1, 2, 3), Pnt3f(1, 9, 3), Vec3f(0, 1, 0)));
    EXPECT_EQ(m, Matrix(1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1));
    EXPECT_FALSE(MatrixLookAt(m, 0, 0, 5, 0, 0, 0, 0, 1, 0));
    EXPECT_EQ(m, Matrix(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 5, 0, 0, 0, 1));
}

TEST(MatrixUtility, StereoEyesAgreeInThePlaneOfZeroParallax)
{
    Matrix picture[2];
    for (int eye = 0; eye < 2; ++eye)
    {
        Matrix projection, translation;
        MatrixStereoPerspective(projection, translation, 0.4f, 1.25f, 0.5f, 100, 4, 0.2f, float(eye));
        picture[eye] = projection;
        picture[eye].mult(translation);
        EXPECT_FLOAT_EQ(translation[3][0], eye == 0 ? 0.1f : -0.1f);
    }
    EXPECT_TRUE(projected(picture[0], 0.7f, -0.3f, -4).equals(projected(picture[1], 0.7f, -0.3f, -4), 1e-6f));
    // behind the plane the right eye's picture lies farther right, before it farther left
    EXPECT_GT(projected(picture[1], 0, 0, -40).x(), projected(picture[0], 0, 0, -40).x() + 0.01f);
    EXPECT_LT(projected(picture[1], 0, 0, -1).x(), projected(picture[0], 0, 0, -1).x() - 0.01f);
    // the plane's picture is that of the eye in the middle
    Matrix middle;
    MatrixPerspective(middle, 0.4f, 1.25f, 0.5f, 100);
    EXPECT_TRUE(projected(middle, 0.7f, -0.3f, -4).equals(projected(picture[0], 0.7f, -0.3f, -4), 1e-6f));
}
