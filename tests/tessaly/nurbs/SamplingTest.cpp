/// \file
/// The numbers behind GLU's sampling, and the check of what GLU would read.

#include "nurbs/NurbsInput.h"
#include "nurbs/NurbsSampling.h"

#include <gtest/gtest.h>

#include <limits>

using namespace osg;
using namespace tessaly;

TEST(NurbsSamplingOfCurves, FromOneOnIsADensityAndBelowAnError)
{
    EXPECT_TRUE(curveSampling(1).domainDistance);
    EXPECT_EQ(curveSampling(1).uStep, 1.f);
    EXPECT_FALSE(curveSampling(0).domainDistance);
    EXPECT_EQ(curveSampling(0).tolerance, 0.f);
    EXPECT_FALSE(curveSampling(-5).domainDistance);
    EXPECT_EQ(curveSampling(-5).tolerance, 5.f);
    EXPECT_EQ(curveSampling(std::numeric_limits<Int32>::min()).tolerance, 2147483648.f);
}

TEST(NurbsSamplingOfSurfaces, StepsFollowTheFieldAndTheNumberOfControlPoints)
{
    EXPECT_EQ(surfaceStep(0, 4), 9.f);
    EXPECT_EQ(surfaceStep(3, 4), 4.f);
    EXPECT_EQ(surfaceStep(-2, 4), 9.f);
    EXPECT_EQ(surfaceStep(-1, 0), 1.f);
    EXPECT_EQ(surfaceStep(std::numeric_limits<Int32>::max(), 4), 2147483648.f);
    EXPECT_EQ(surfaceStep(-1, 0xFFFFFFFFu), 0.f) << "counted in 32 bits";
}

TEST(NurbsSamplingOfSurfaces, EachDirectionHasItsOwnFieldAndCount)
{
    const NurbsSampling sampling = surfaceSampling(true, 3, -2, 4, 5);
    EXPECT_TRUE(sampling.domainDistance);
    EXPECT_EQ(sampling.uStep, 4.f);
    EXPECT_EQ(sampling.vStep, 11.f);
}

TEST(NurbsSamplingOfSurfaces, WithoutFixedStepsBothFieldsMustBePositiveForADensity)
{
    const NurbsSampling density = surfaceSampling(false, 3, 7, 4, 4);
    EXPECT_TRUE(density.domainDistance);
    EXPECT_EQ(density.uStep, 3.f);
    EXPECT_EQ(density.vStep, 7.f);
    EXPECT_FALSE(surfaceSampling(false, 0, 7, 4, 4).domainDistance);
    EXPECT_EQ(surfaceSampling(false, 0, 7, 4, 4).tolerance, 3.f) << "rounded down";
    EXPECT_EQ(surfaceSampling(false, -4, -3, 4, 4).tolerance, 3.f);
    EXPECT_FALSE(surfaceSampling(false, 7, 0, 4, 4).domainDistance);
    const Int32 lowest = std::numeric_limits<Int32>::min();
    EXPECT_EQ(surfaceSampling(false, lowest, lowest, 4, 4).tolerance, 2147483648.f);
}

TEST(GluVersion, OnePointThreeIsTheFirstThatWillDo)
{
    EXPECT_TRUE(isGluTooOld("1.2"));
    EXPECT_TRUE(isGluTooOld("1.2.9"));
    EXPECT_FALSE(isGluTooOld("1.3"));
    EXPECT_FALSE(isGluTooOld("1.3 Brand"));
    EXPECT_FALSE(isGluTooOld("2"));
    EXPECT_TRUE(isGluTooOld("none"));
    EXPECT_TRUE(isGluTooOld(nullptr));
}

namespace
{

const std::vector<Real32> values(100, 0.5f);
const std::vector<Real32> sixKnots = {0, 0, 0, 1, 1, 1};

ControlValues net(UInt64 points, UInt32 dimension, UInt32 components)
{
    ControlValues control;
    control.values = values.data();
    control.points = points;
    control.dimension = dimension;
    control.components = components;
    return control;
}

} // namespace

TEST(NurbsInput, ACurveNeedsAsManyPointsAsItsKnotsTell)
{
    EXPECT_EQ(curveProblem({sixKnots, 3}, net(3, 3, 3)), "");
    EXPECT_EQ(curveProblem({sixKnots, 3}, net(4, 3, 3)), "");
    EXPECT_EQ(curveProblem({sixKnots, 3}, net(2, 3, 3)),
              "there are 2 control points of 3 values, and 3 values are needed up to the one of number 3");
    EXPECT_NE(curveProblem({sixKnots, 3}, net(0, 3, 3)), "");
    // Two floats a point, of which three are read: the last one must be there.
    EXPECT_NE(curveProblem({sixKnots, 3}, net(3, 2, 3)), "");
    EXPECT_EQ(curveProblem({sixKnots, 3}, net(4, 2, 3)), "");
}

TEST(NurbsInput, WhatGluRefusesIsLeftToGlu)
{
    EXPECT_EQ(curveProblem({sixKnots, 0}, net(0, 3, 3)), "");
    EXPECT_EQ(curveProblem({sixKnots, 4}, net(0, 3, 3)), "");
    EXPECT_EQ(curveProblem({sixKnots, 0xFFFFFFFFu}, net(0, 3, 3)), "");
    EXPECT_EQ(curveProblem({{}, 3}, net(3, 3, 3)), "");
}

TEST(NurbsInput, ASurfaceNeedsTheLastPointOfItsLastRow)
{
    const KnotRow row(sixKnots, 3);
    EXPECT_EQ(surfaceProblem(row, row, 3, net(9, 3, 3)), "");
    EXPECT_EQ(surfaceProblem(row, row, 3, net(8, 3, 3)),
              "there are 8 control points of 3 values, and 3 values are needed up to the one of number 9");
    EXPECT_EQ(surfaceProblem(row, row, 4, net(11, 3, 3)), "");
    EXPECT_NE(surfaceProblem(row, row, 5, net(11, 3, 3)), "");
    EXPECT_EQ(surfaceProblem(row, row, 0, net(3, 3, 3)), "") << "all rows the same";
    EXPECT_NE(surfaceProblem(row, row, 0xFFFFFFFFu, net(9, 3, 3)), "");
}

TEST(NurbsInput, NumbersThatAreNoneAreNotSent)
{
    const Real32 nan = std::numeric_limits<Real32>::quiet_NaN();
    const Real32 infinite = std::numeric_limits<Real32>::infinity();
    for(const Real32 bad : {nan, infinite, -infinite})
    {
        EXPECT_EQ(curveProblem({{0, 0, bad, 1, 1, 1}, 3}, net(3, 3, 3)), "a knot is not finite");
        const std::vector<Real32> points = {0, 0, 0, 1, 1, 1, 2, 2, bad};
        ControlValues control = net(3, 3, 3);
        control.values = points.data();
        EXPECT_EQ(curveProblem({sixKnots, 3}, control), "a control point is not finite");
        EXPECT_EQ(polylineProblem(control), "a control point is not finite");
        EXPECT_EQ(surfaceProblem({sixKnots, 3}, {sixKnots, 3}, 0, control), "a control point is not finite");
    }
    EXPECT_EQ(polylineProblem(net(0, 2, 2)), "there are no control points");
    EXPECT_EQ(polylineProblem(net(2, 2, 2)), "");
    ControlValues none = net(3, 3, 3);
    none.values = nullptr;
    EXPECT_EQ(curveProblem({sixKnots, 3}, none), "the control points are no floats");
}
