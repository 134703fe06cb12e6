/// \file
/// Matrices and their decomposition.

#include <gtest/gtest.h>

#include <sstream>

#include <OpenSG/OSGMatrix.h>

#include "MathRandom.h"

using namespace osg;

namespace
{

/// The product by its definition, in Real64.
Matrix naiveProduct(const Matrix &a, const Matrix &b)
{
    Matrix result;
    for (UInt32 row = 0; row < 4; ++row)
        for (UInt32 column = 0; column < 4; ++column)
        {
            double sum = 0;
            for (UInt32 k = 0; k < 4; ++k)
                sum += static_cast<double>(a[k][row]) * b[column][k];
            result[column][row] = static_cast<float>(sum);
        }
    return result;
}

/// The determinant by expansion along the first row, of the upper left part of n rows.
double naiveDeterminant(const double (&m)[4][4], int n)
{
    if (n == 1)
        return m[0][0];
    double sum = 0;
    for (int skipped = 0; skipped < n; ++skipped)
    {
        double minor[4][4] = {};
        for (int i = 1; i < n; ++i)
            for (int j = 0, to = 0; j < n; ++j)
                if (j != skipped)
                    minor[i - 1][to++] = m[i][j];
        sum += (skipped % 2 ? -1 : 1) * m[0][skipped] * naiveDeterminant(minor, n - 1);
    }
    return sum;
}

Matrix randomFull(MathRandom &random)
{
    Matrix m;
    for (UInt32 i = 0; i < 4; ++i)
        for (UInt32 j = 0; j < 4; ++j)
            m[i][j] = random.real(-2, 2) + (i == j ? 5.0f : 0.0f);
    return m;
}

} // namespace

TEST(Matrix, ReadsRowsAndStoresColumns)
{
    const Matrix m(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
    EXPECT_EQ(m[0], Vec4f(1, 5, 9, 13));
    EXPECT_EQ(m[3], Vec4f(4, 8, 12, 16));
    const float byColumns[16] = {1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 16};
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(m.getValues()[i], byColumns[i]);
    Matrix n;
    n.setValue(byColumns);
    EXPECT_EQ(n, m);
    n.setValueTransposed(byColumns);
    EXPECT_EQ(n, m.transposed());
    n.transpose();
    EXPECT_EQ(n, m);
    std::ostringstream os;
    os << m;
    EXPECT_EQ(os.str(), "1 2 3 4\n5 6 7 8\n9 10 11 12\n13 14 15 16\n");
}

TEST(Matrix, StartsAsTheIdentity)
{
    const Matrix m;
    EXPECT_EQ(m, Matrix::identity());
    EXPECT_EQ(m * Pnt3f(1, 2, 3), Pnt3f(1, 2, 3));
    EXPECT_EQ(m.det(), 1);
}

TEST(Matrix, SetsTranslationRotationAndScaleWithoutTouchingTheRest)
{
    Matrix m;
    m.setTranslate(1, 2, 3);
    m.setScale(2, 3, 4);
    EXPECT_EQ(m, Matrix(2, 0, 0, 1, 0, 3, 0, 2, 0, 0, 4, 3, 0, 0, 0, 1));
    m.setRotate(Quaternion(Vec3f(0, 0, 1), Pi / 2));
    EXPECT_TRUE(m.equals(Matrix(0, -1, 0, 1, 1, 0, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1), 1e-6f));
    m.setTranslate(Vec3f(4, 5, 6));
    EXPECT_EQ(m[3], Vec4f(4, 5, 6, 1));
    m.setTranslate(Pnt3f(7, 8, 9));
    EXPECT_EQ(m[3], Vec4f(7, 8, 9, 1));
}

TEST(Matrix, MovesPointsButNotVectors)
{
    const Matrix m(2, 0, 0, 10, 0, 3, 0, 20, 0, 0, 4, 30, 0, 0, 0, 1);
    Pnt3f p(1, 1, 1);
    m.multMatrixPnt(p, p);
    EXPECT_EQ(p, Pnt3f(12, 23, 34));
    Vec3f v(1, 1, 1);
    m.multMatrixVec(v);
    EXPECT_EQ(v, Vec3f(2, 3, 4));
    EXPECT_EQ(m * Vec4f(1, 1, 1, 2), Vec4f(22, 43, 64, 2));
    Pnt3f to;
    m.mult(Pnt3f(0, 0, 0), to);
    EXPECT_EQ(to, Pnt3f(10, 20, 30));
}

TEST(Matrix, DividesFullPointsByTheirWeight)
{
    const Matrix m(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 2, 0);
    Pnt3f p(2, 4, 1);
    m.multFullMatrixPnt(p);
    EXPECT_EQ(p, Pnt3f(1, 2, 0.5f));
}

TEST(Matrix, MultipliesAsTheDefinitionSaysAndInPlace)
{
    const unsigned seed = 21;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 200; ++i)
    {
        const Matrix a = randomFull(random);
        const Matrix b = randomFull(random);
        Matrix right(a);
        right.mult(b);
        EXPECT_TRUE(right.equals(naiveProduct(a, b), 1e-4f));
        Matrix left(a);
        left.multLeft(b);
        EXPECT_TRUE(left.equals(naiveProduct(b, a), 1e-4f));
        Matrix self(a);
        self.mult(self);
        EXPECT_TRUE(self.equals(naiveProduct(a, a), 1e-4f));
    }
}

TEST(Matrix, TimesItsInverseIsTheIdentity)
{
    const unsigned seed = 22;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 500; ++i)
    {
        const Matrix m = i % 2 ? random.affine() : randomFull(random);
        Matrix inverse;
        ASSERT_TRUE(m.inverse(inverse));
        EXPECT_TRUE(naiveProduct(m, inverse).equals(Matrix(), 1e-5f));
        EXPECT_TRUE(naiveProduct(inverse, m).equals(Matrix(), 1e-5f));
        Matrix inPlace(m);
        ASSERT_TRUE(inPlace.invert());
        EXPECT_EQ(inPlace, inverse);
        Matrix three;
        ASSERT_TRUE(m.inverse3(three));
        const Vec3f v = random.vec(1);
        EXPECT_TRUE((three * (m * v)).equals(v, 1e-5f));
    }
}

TEST(Matrix, OfTinyScaleCanBeInvertedAndOneOfNoneCannot)
{
    Matrix m;
    m.setScale(1e-6f);
    Matrix inverse;
    ASSERT_TRUE(m.inverse(inverse));
    EXPECT_FLOAT_EQ(inverse[0][0], 1e6f);
    m.setScale(1, 0, 1);
    inverse.setScale(9);
    EXPECT_FALSE(m.inverse(inverse));
    EXPECT_EQ(inverse, Matrix());
    EXPECT_FALSE(m.invert3());
}

TEST(Matrix, HasTheDeterminantOfItsExpansion)
{
    const unsigned seed = 23;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 200; ++i)
    {
        const Matrix m = randomFull(random);
        double plain[4][4];
        for (UInt32 row = 0; row < 4; ++row)
            for (UInt32 column = 0; column < 4; ++column)
                plain[row][column] = m[column][row];
        EXPECT_NEAR(m.det() / naiveDeterminant(plain, 4), 1, 1e-6);
        EXPECT_NEAR(m.det3() / naiveDeterminant(plain, 3), 1, 1e-6);
    }
}

TEST(Matrix, NormsAndSumsHaveTheirClosedForms)
{
    const Matrix m(1, -2, 0, 0, 3, 4, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    EXPECT_EQ(m.norm1(), 6);
    EXPECT_EQ(m.normInfinity(), 7);
    EXPECT_FLOAT_EQ(m.norm2(), std::sqrt(32.0f));
    Matrix sum(m);
    sum.add(m);
    Matrix twice(m);
    twice.scale(2);
    EXPECT_EQ(sum, twice);
    sum.addScaled(m, -2);
    EXPECT_EQ(sum, Matrix(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(Matrix, SetTransformIsTheProductOfItsSteps)
{
    const unsigned seed = 24;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 200; ++i)
    {
        const Vec3f t = random.vec(5), s = random.vec(2), c = random.vec(3);
        const Quaternion r = random.rotation(), so = random.rotation();
        Matrix translate, center, rotate, orient, scale, orientBack, centerBack;
        translate.setTranslate(t);
        center.setTranslate(c);
        centerBack.setTranslate(-c);
        rotate.setRotate(r);
        orient.setRotate(so);
        orientBack.setRotate(so.inverse());
        scale.setScale(s);
        Matrix expected(translate);
        for (const Matrix &step : {center, rotate, orient, scale, orientBack, centerBack})
            expected = naiveProduct(expected, step);
        Matrix m;
        m.setTransform(t, r, s, so, c);
        EXPECT_TRUE(m.equals(expected, 2e-5f)) << m << expected;

        m.setTransform(t, r, s);
        EXPECT_TRUE(m.equals(naiveProduct(naiveProduct(translate, rotate), scale), 2e-5f));
        m.setTransform(t, r);
        EXPECT_TRUE(m.equals(naiveProduct(translate, rotate), 1e-6f));
    }
}

TEST(Matrix, ComesBackFromGetTransform)
{
    const unsigned seed = 25;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 500; ++i)
    {
        Matrix m = random.affine();
        if (i % 3 == 0)
            m[0] = m[0] * -1.0f; // mirrored
        Vec3f t, s;
        Quaternion r, so;
        m.getTransform(t, r, s, so);
        EXPECT_NEAR(r.length(), 1, 1e-5);
        EXPECT_NEAR(so.length(), 1, 1e-5);
        EXPECT_GT(s.x() * s.y() * s.z() * m.det3(), 0);
        Matrix back;
        back.setTransform(t, r, s, so);
        EXPECT_TRUE(back.equals(m, 1e-5f)) << m << back;

        const Vec3f center = random.vec(3);
        m.getTransform(t, r, s, so, center);
        back.setTransform(t, r, s, so, center);
        EXPECT_TRUE(back.equals(m, 5e-5f)) << m << back;
    }
}

TEST(Matrix, FindsScaleAndRotationThatWerePutIn)
{
    Matrix m;
    const Quaternion rotation(Vec3f(1, 2, 3), 0.7f);
    m.setTransform(Vec3f(1, 2, 3), rotation, Vec3f(2, 3, 0.001f));
    Vec3f t, s;
    Quaternion r, so;
    m.getTransform(t, r, s, so);
    EXPECT_EQ(t, Vec3f(1, 2, 3));
    EXPECT_TRUE(r.equals(rotation, 1e-5f)) << r;
    EXPECT_TRUE(s.equals(Vec3f(2, 3, 0.001f), 1e-5f)) << s;

    m.setTransform(Vec3f(), Quaternion(), Vec3f(2, 3, 4));
    m.getTransform(t, r, s, so);
    EXPECT_TRUE(r.equals(Quaternion(), 1e-6f));
    EXPECT_TRUE(so.equals(Quaternion(), 1e-6f));
    EXPECT_TRUE(s.equals(Vec3f(2, 3, 4), 1e-6f));
}

TEST(Matrix, ThatIsSingularGivesTranslationAndColumnLengths)
{
    const Matrix m(3, 0, 0, 1, 4, 0, 0, 2, 0, 0, 2, 3, 0, 0, 0, 1);
    Vec3f t, s;
    Quaternion r, so;
    m.getTransform(t, r, s, so);
    EXPECT_EQ(t, Vec3f(1, 2, 3));
    EXPECT_EQ(s, Vec3f(5, 0, 2));
    EXPECT_EQ(r, Quaternion());
    Matrix a, b, c;
    EXPECT_FALSE(m.factor(a, s, b, t, c));
}

TEST(Matrix, OfReal64HoldsTheSame)
{
    Matrix4d m;
    m.setTransform(Vec3d(1, 2, 3), Quaterniond(Vec3d(1, 1, 0), 1.0), Vec3d(2, 3, 4),
                   Quaterniond(Vec3d(0, 1, 1), 0.5));
    Vec3d t, s;
    Quaterniond r, so;
    m.getTransform(t, r, s, so);
    Matrix4d back;
    back.setTransform(t, r, s, so);
    EXPECT_TRUE(back.equals(m, 1e-13));
    Matrix4d inverse;
    ASSERT_TRUE(m.inverse(inverse));
    inverse.mult(m);
    EXPECT_TRUE(inverse.equals(Matrix4d(), 1e-14));
}
