/// \file
/// Quaternions against matrices and closed forms.

#include <gtest/gtest.h>

#include <sstream>

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGQuaternion.h>

#include "MathRandom.h"

using namespace osg;

namespace
{

/// Rodrigues' formula.
Vec3f turned(const Vec3f &v, const Vec3f &axis, float angle)
{
    return v * std::cos(angle) + axis.cross(v) * std::sin(angle) +
           axis * (axis.dot(v) * (1 - std::cos(angle)));
}

Vec3f turned(const Vec3f &v, const Quaternion &q)
{
    Vec3f result;
    q.multVec(v, result);
    return result;
}

} // namespace

TEST(Quaternion, TurnsAsAxisAndAngleSay)
{
    const unsigned seed = 31;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 500; ++i)
    {
        const Vec3f axis = random.direction();
        const float angle = random.real(-6, 6);
        const Vec3f v = random.vec(3);
        const Quaternion q(axis * random.real(0.1f, 10), angle);
        EXPECT_TRUE(turned(v, q).equals(turned(v, axis, angle), 5e-6f));
        Matrix m;
        q.getValue(m);
        EXPECT_TRUE((m * v).equals(turned(v, axis, angle), 5e-6f));
    }
}

TEST(Quaternion, ComesBackFromItsMatrixUpToTheSign)
{
    const unsigned seed = 32;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 1000; ++i)
    {
        const Quaternion q = i % 4 ? random.rotation() : Quaternion(random.direction(), Pi * 0.9999f);
        Matrix m;
        q.getValue(m);
        const Quaternion back(m);
        const Quaternion negative(-q.x(), -q.y(), -q.z(), -q.w());
        EXPECT_TRUE(back.equals(q, 2e-6f) || back.equals(negative, 2e-6f)) << q << " / " << back;
    }
}

TEST(Quaternion, HalfTurnsAboutEachAxisComeBackFromTheirMatrix)
{
    for (UInt32 axis = 0; axis < 3; ++axis)
    {
        Matrix m;
        m.setScale(-1);
        m[axis][axis] = 1;
        const Quaternion q(m);
        EXPECT_EQ(q[axis], 1);
        EXPECT_EQ(q.w(), 0);
    }
}

TEST(Quaternion, GivesItsAxisAndAngle)
{
    Vec3f axis;
    float angle;
    Quaternion(Vec3f(0, 0, 2), 1.25f).getValueAsAxisRad(axis, angle);
    EXPECT_TRUE(axis.equals(Vec3f(0, 0, 1), 1e-6f));
    EXPECT_NEAR(angle, 1.25f, 1e-6);
    Quaternion q;
    q.setValueAsAxisDeg(1, 0, 0, 90);
    q.getValueAsAxisDeg(axis, angle);
    EXPECT_NEAR(angle, 90, 1e-4);
    Quaternion().getValueAsAxisRad(axis, angle);
    EXPECT_EQ(axis, Vec3f(0, 0, 1));
    EXPECT_EQ(angle, 0);
    q.setValueAsAxisRad(Vec3f(), 1);
    EXPECT_EQ(q, Quaternion::identity());
    q.setValueAsAxisDeg(0, 1, 0, 60);
    q.scaleAngle(0.5f);
    EXPECT_TRUE(q.equals(Quaternion(Vec3f(0, 1, 0), Pi / 6), 1e-6f));
}

TEST(Quaternion, TurnsOneVectorIntoTheOther)
{
    const unsigned seed = 33;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 500; ++i)
    {
        const Vec3f from = random.direction();
        const Vec3f to = i % 5 == 0 ? -from : random.direction();
        const Quaternion q(from * 3.0f, to * 0.5f);
        EXPECT_NEAR(q.length(), 1, 1e-6);
        EXPECT_TRUE(turned(from, q).equals(to, 2e-6f)) << from << " to " << to;
        EXPECT_NEAR(std::abs(2 * std::acos(osgClamp(-1.0f, q.w(), 1.0f))), from.enclosedAngle(to), 2e-3);
    }
    EXPECT_EQ(Quaternion(Vec3f(), Vec3f(1, 0, 0)), Quaternion());
}

TEST(Quaternion, MultiplicationTurnsFirstByTheRightOne)
{
    const unsigned seed = 34;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 200; ++i)
    {
        const Quaternion a = random.rotation(), b = random.rotation();
        const Vec3f v = random.vec(1);
        Quaternion right(a);
        right.mult(b);
        EXPECT_TRUE(turned(v, right).equals(turned(turned(v, b), a), 2e-6f));
        Quaternion left(a);
        left.multLeft(b);
        EXPECT_TRUE(turned(v, left).equals(turned(turned(v, a), b), 2e-6f));
        EXPECT_TRUE((a * a.inverse()).equals(Quaternion(), 1e-6f));
        EXPECT_TRUE(a.inverse().equals(a.conj(), 1e-6f));
    }
}

TEST(Quaternion, NormalisesAndInvertsAnyLength)
{
    Quaternion q(0, 0, 3, 4);
    EXPECT_EQ(q.length(), 5);
    EXPECT_TRUE((q * q.inverse()).equals(Quaternion(), 1e-6f));
    q.normalize();
    EXPECT_TRUE(q.equals(Quaternion(0, 0, 0.6f, 0.8f), 1e-6f));
    Quaternion null(0, 0, 0, 0);
    null.normalize();
    EXPECT_EQ(null, Quaternion());
}

TEST(Quaternion, EulerAnglesTurnAboutFixedXThenYThenZ)
{
    const unsigned seed = 35;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 200; ++i)
    {
        const Vec3f angles(random.real(-3, 3), random.real(-1.5f, 1.5f), random.real(-3, 3));
        Quaternion q;
        q.setValue(angles.x(), angles.y(), angles.z());
        const Vec3f v = random.vec(1);
        const Vec3f expected =
            turned(turned(turned(v, Vec3f(1, 0, 0), angles.x()), Vec3f(0, 1, 0), angles.y()), Vec3f(0, 0, 1),
                   angles.z());
        EXPECT_TRUE(turned(v, q).equals(expected, 2e-6f));
        Vec3f back;
        q.getEulerAngleRad(back);
        EXPECT_TRUE(back.equals(angles, 2e-4f)) << angles << " / " << back;
    }
    Quaternion pole;
    pole.setValue(0.5f, Pi / 2, 0);
    Vec3f angles;
    pole.getEulerAngleDeg(angles);
    EXPECT_NEAR(angles.y(), 90, 0.1);
}

TEST(Quaternion, SlerpTurnsAtConstantSpeedAlongTheShorterArc)
{
    const Quaternion a(Vec3f(0, 0, 1), 0.2f), b(Vec3f(0, 0, 1), 1.2f);
    const Quaternion minusB(-b.x(), -b.y(), -b.z(), -b.w());
    for (const float t : {0.0f, 0.25f, 0.5f, 0.9f, 1.0f})
    {
        const Quaternion expected(Vec3f(0, 0, 1), 0.2f + t);
        EXPECT_TRUE(Quaternion::slerp(a, b, t).equals(expected, 1e-6f)) << t;
        EXPECT_TRUE(Quaternion::slerp(a, minusB, t).equals(expected, 1e-6f)) << t;
    }
    EXPECT_TRUE(Quaternion::slerp(a, a, 0.3f).equals(a, 1e-7f));
    Quaternion inPlace(a);
    inPlace.slerpThis(inPlace, b, 0.5f);
    EXPECT_TRUE(inPlace.equals(Quaternion(Vec3f(0, 0, 1), 0.7f), 1e-6f));
}

TEST(Quaternion, IsWrittenAsItsFourNumbers)
{
    std::ostringstream os;
    os << Quaternion();
    EXPECT_EQ(os.str(), "0 0 0 1");
}

TEST(BaseFunctions, KnowPowersOfTwoAndLimits)
{
    EXPECT_TRUE(osgIsPower2(1) && osgIsPower2(64) && osgIsPower2(0x80000000u));
    EXPECT_FALSE(osgIsPower2(0) || osgIsPower2(3) || osgIsPower2(96));
    EXPECT_EQ(osgNextPower2(0), 1u);
    EXPECT_EQ(osgNextPower2(5), 8u);
    EXPECT_EQ(osgNextPower2(64), 64u);
    EXPECT_EQ(osgNextPower2(0x80000001u), 0u);
    EXPECT_EQ(osgClamp(0, 5, 3), 3);
    EXPECT_EQ(osgClamp(0, -5, 3), 0);
    EXPECT_EQ(osgAbs(-2.5f), 2.5f);
    EXPECT_EQ(osgRound2Int(2.5), 3);
    EXPECT_EQ(osgRound2Int(-2.5), -2);
    EXPECT_EQ(osgRound2Int(1e20), std::numeric_limits<Int32>::max());
    EXPECT_EQ(osgRound2Int(std::nan("")), 0);
    EXPECT_FLOAT_EQ(osgDegree2Rad(180.0f), Pi);
    EXPECT_FLOAT_EQ(osgRad2Degree(Pi), 180.0f);
    int a = 1, b = 2;
    osgSwap(a, b);
    EXPECT_EQ(a * 10 + b, 21);
}
