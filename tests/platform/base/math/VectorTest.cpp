/// \file
/// Vectors, points and colours.

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

#include <OpenSG/OSGColor.h>
#include <OpenSG/OSGVector.h>

#include "MathRandom.h"

using namespace osg;

namespace
{

template <class T>
std::string text(const T &value)
{
    std::ostringstream os;
    os << value;
    return os.str();
}

} // namespace

TEST(Vector, IsTheBareArrayOfItsComponents)
{
    const Vec3f v[2] = {Vec3f(1, 2, 3), Vec3f(4, 5, 6)};
    float raw[6];
    static_assert(sizeof v == sizeof raw);
    std::memcpy(raw, v, sizeof raw);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(raw[i], float(i + 1));
    EXPECT_EQ(sizeof(Vec2us), 4u);
    EXPECT_EQ(sizeof(Pnt4d), 32u);
}

TEST(Vector, StartsAtZeroAndTakesComponentsFromArraysAndOtherSizes)
{
    EXPECT_EQ(Vec4f(), Vec4f(0, 0, 0, 0));
    EXPECT_EQ(Vec3f(0), Vec3f::Null);
    EXPECT_EQ(Vec3f(1.0f), Vec3f::One);
    EXPECT_EQ(Vec4f(1, 2), Vec4f(1, 2, 0, 0));
    EXPECT_EQ(Vec4f(Vec3f(1, 2, 3)), Vec4f(1, 2, 3, 0));
    EXPECT_EQ(Vec2f(Vec4f(1, 2, 3, 4)), Vec2f(1, 2));
    EXPECT_EQ(Vec3us(Vec3f(1.9f, 2.1f, 3)), Vec3us(1, 2, 3));
    const float values[3] = {7, 8, 9};
    EXPECT_EQ(Vec3f(values), Vec3f(7, 8, 9));
    Vec3f v;
    v.setValues(1, 2, 3);
    EXPECT_EQ(v.x() + 10 * v.y() + 100 * v.z(), 321);
    v.setValue(values);
    EXPECT_EQ(v[2], 9);
    v.setNull();
    EXPECT_EQ(v, Vec3f::Null);
}

TEST(Vector, OfAPointOfThreeHasTheWeightOne)
{
    EXPECT_EQ(Pnt4f(Pnt3f(1, 2, 3)), Pnt4f(1, 2, 3, 1));
    EXPECT_EQ(Pnt4f(1, 2, 3), Pnt4f(1, 2, 3, 1));
    EXPECT_EQ(Pnt4f(), Pnt4f(0, 0, 0, 0));
    EXPECT_EQ(Vec4f(Pnt3f(1, 2, 3)), Vec4f(1, 2, 3, 0));
}

TEST(Vector, ArithmeticFollowsTheComponents)
{
    const Vec3f a(1, 2, 3);
    const Vec3f b(4, -5, 6);
    EXPECT_EQ(a + b, Vec3f(5, -3, 9));
    EXPECT_EQ(a - b, Vec3f(-3, 7, -3));
    EXPECT_EQ(-a, Vec3f(-1, -2, -3));
    EXPECT_EQ(a * 2, Vec3f(2, 4, 6));
    EXPECT_EQ(2 * a, a * 2.0);
    EXPECT_EQ(b / 2, Vec3f(2, -2.5f, 3));
    EXPECT_EQ(a.dot(b), 12);
    EXPECT_EQ(Vec3f(1, 0, 0).cross(Vec3f(0, 1, 0)), Vec3f(0, 0, 1));
    EXPECT_EQ(a % b, Vec3f(27, 6, -13));
    EXPECT_EQ(Vec4ub(200, 1, 2, 3) + Vec4ub(100, 1, 1, 1), Vec4ub(44, 2, 3, 4));
    Vec3f low(a), high(a);
    low.minInPlace(b);
    high.maxInPlace(b);
    EXPECT_EQ(low, Vec3f(1, -5, 3));
    EXPECT_EQ(high, Vec3f(4, 2, 6));
}

TEST(Vector, PointsDifferByVectors)
{
    const Pnt3f p(1, 2, 3);
    const Pnt3f q(3, 5, 9);
    const Vec3f d = q - p;
    EXPECT_EQ(d, Vec3f(2, 3, 6));
    EXPECT_EQ(p + d, q);
    EXPECT_EQ(q - d, p);
    EXPECT_EQ(p.dist(q), 7);
    EXPECT_EQ(p.subZero(), Vec3f(1, 2, 3));
    EXPECT_EQ(d.addToZero(), Pnt3f(2, 3, 6));
}

TEST(Vector, LengthsAnglesAndProjectionsHaveTheirClosedForms)
{
    EXPECT_EQ(Vec3f(2, 3, 6).length(), 7);
    EXPECT_EQ(Vec3f(2, 3, 6).squareLength(), 49);
    EXPECT_EQ(Vec3s(300, 400, 0).length(), 500);
    Vec3f v(0, 3, 4);
    v.normalize();
    EXPECT_TRUE(v.equals(Vec3f(0, 0.6f, 0.8f), 1e-7f));
    Vec3f null;
    null.normalize();
    EXPECT_EQ(null, Vec3f::Null);
    EXPECT_NEAR(Vec3f(1, 0, 0).enclosedAngle(Vec3f(2, 2, 0)), Pi / 4, 1e-6);
    EXPECT_NEAR(Vec3f(0.1f, 0.2f, 0.3f).enclosedAngle(Vec3f(-0.1f, -0.2f, -0.3f)), Pi, 1e-3);
    Vec3f p(3, 4, 5);
    EXPECT_EQ(p.projectTo(Vec3f(0, -2, 0)), -4);
    EXPECT_EQ(p, Vec3f(0, 4, 0));
}

TEST(Vector, EqualsWithinAToleranceAndNeverWithNaN)
{
    EXPECT_TRUE(Vec2f(1, 2).equals(Vec2f(1.5f, 2), 0.5f));
    EXPECT_FALSE(Vec2f(1, 2).equals(Vec2f(1.5f, 2), 0.4f));
    EXPECT_FALSE(Vec2f(std::nanf(""), 0).equals(Vec2f(0, 0), 1e30f));
    EXPECT_TRUE(Vec2f(1e-7f, 0).isZero());
    EXPECT_FALSE(Vec2f(1e-5f, 0).isZero());
    EXPECT_NE(Vec2f(1, 2), Vec2f(2, 1));
    EXPECT_LT(Vec2f(1, 2), Vec2f(2, 1));
    EXPECT_LT(Vec2f(1, 1), Vec2f(1, 2));
    EXPECT_FALSE(Vec2f(1, 2) < Vec2f(1, 2));
}

TEST(Vector, IsWrittenWithBlanksBetweenNumbers)
{
    EXPECT_EQ(text(Vec3f(1, 2.5f, -3)), "1 2.5 -3");
    EXPECT_EQ(text(Vec4ub(65, 66, 0, 255)), "65 66 0 255");
    EXPECT_EQ(text(Pnt2d(0.5, 1e10)), "0.5 1e+10");
    EXPECT_EQ(text(Color4f(0, 0.5f, 1, 0.25f)), "0 0.5 1 0.25");
    EXPECT_EQ(text(Color3ub(65, 66, 67)), "65 66 67");
}

TEST(Color, PacksRedIntoTheLowestByte)
{
    Color4f c;
    c.setRGBA(0x80402010u);
    EXPECT_EQ(c, Color4f(0x10 / 255.0f, 0x20 / 255.0f, 0x40 / 255.0f, 0x80 / 255.0f));
    EXPECT_EQ(c.getRGBA(), 0x80402010u);
    EXPECT_EQ(Color4ub(1, 2, 3, 4).getRGBA(), 0x04030201u);
    EXPECT_EQ(Color4f(-1, 2, 0.5f, std::nanf("")).getRGBA(), 0x0080ff00u);
    Color3ub three;
    three.setRGB(0xff030201u);
    EXPECT_EQ(three, Color3ub(1, 2, 3));
    EXPECT_EQ(three.getRGB(), 0x00030201u);
}

TEST(Color, KeepsEveryByteThroughReals)
{
    for (UInt32 i = 0; i < 256; ++i)
    {
        Color4f c;
        c.setRGBA(i * 0x01010101u);
        EXPECT_EQ(c.getRGBA(), i * 0x01010101u);
    }
}

TEST(Color, ArithmeticGoesChannelByChannel)
{
    const Color4f a(0.25f, 0.5f, 0.75f, 1);
    EXPECT_EQ(a + a, a * 2);
    EXPECT_EQ(a - a, Color4f::Null);
    EXPECT_EQ(a * a, Color4f(0.0625f, 0.25f, 0.5625f, 1));
    EXPECT_EQ(a / 2, 0.5f * a);
    float r, g, b, alpha;
    a.getValuesRGBA(r, g, b, alpha);
    EXPECT_EQ(Color4f(r, g, b, alpha), a);
    EXPECT_EQ(Color4f(Color3f(1, 0, 0)), Color4f(1, 0, 0, 1));
    EXPECT_EQ(Color4ub(Color3ub(1, 0, 0)), Color4ub(1, 0, 0, 255));
}

TEST(Color, OfHuesIsThatOfTheCircle)
{
    const struct
    {
        float hue;
        Color3f rgb;
    } cases[] = {{0, {1, 0, 0}},   {60, {1, 1, 0}},  {120, {0, 1, 0}},  {180, {0, 1, 1}},  {240, {0, 0, 1}},
                 {300, {1, 0, 1}}, {360, {1, 0, 0}}, {-120, {0, 0, 1}}, {30, {1, 0.5f, 0}}};
    for (const auto &c : cases)
    {
        Color3f color;
        color.setValuesHSV(c.hue, 1, 1);
        EXPECT_TRUE(color.equals(c.rgb, 1e-5f)) << c.hue << " gives " << color;
    }
    Color3f grey;
    grey.setValuesHSV(77, 0, 0.5f);
    EXPECT_EQ(grey, Color3f(0.5f, 0.5f, 0.5f));
    float h, s, v;
    grey.getValuesHSV(h, s, v);
    EXPECT_EQ(h, 0);
    EXPECT_EQ(s, 0);
    EXPECT_EQ(v, 0.5f);
}

TEST(Color, ComesBackFromHueSaturationAndValue)
{
    const unsigned seed = 11;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 2000; ++i)
    {
        const Color3f color(random.real(0, 1), random.real(0, 1), random.real(0, 1));
        float h, s, v;
        color.getValuesHSV(h, s, v);
        EXPECT_GE(h, 0);
        EXPECT_LT(h, 360);
        Color3f back;
        back.setValuesHSV(h, s, v);
        EXPECT_TRUE(back.equals(color, 2e-6f)) << color << " against " << back;
    }
}
