/// \file
/// What each parameter of the viewport does, and at which frame.

#include "ViewportScene.h"

OSG_USING_NAMESPACE
using namespace droplet_test;

TEST(DropletFlowViewport, ParametersActAtTheFrameBehindTheEdit)
{
    Frames f;
    f.start();
    double before = f.speed();
    const auto step = [&](BitVector field) {
        f.edited(field);
        f.secondLater();
        const double difference = f.speed() - before;
        before = f.speed();
        return difference;
    };
    EXPECT_NEAR(step(0), -0.125, 1e-3);
    f.viewport->setForce(Vec3f(0, -0.25f, 0));
    EXPECT_NEAR(step(DropletFlowViewport::ForceFieldMask), -0.25, 1e-3);
    f.viewport->setTimeStep(0.02);
    EXPECT_NEAR(step(DropletFlowViewport::TimeStepFieldMask), -0.5, 2e-3);
    f.viewport->setFluidDensity(4.0f);
    EXPECT_NEAR(step(DropletFlowViewport::FluidDensityFieldMask), -0.125, 2e-3);
    f.viewport->setForce(Vec3f(0, 0, 0));
    EXPECT_NEAR(step(DropletFlowViewport::ForceFieldMask), 0.0, 2e-3);

    // Without a force only the damping is left. It is 1000 * exp(-1 / 0.5), so cut to 1.
    double factor = 1.0;
    f.viewport->setFluidViscosity(1.0f);
    before = f.speed();
    f.edited(DropletFlowViewport::FluidViscosityFieldMask);
    f.secondLater();
    factor = f.speed() / before;
    EXPECT_NEAR(factor, std::exp(-2.0), 1e-3);
    f.viewport->setFrictionSigma(2.0f);
    before = f.speed();
    f.edited(DropletFlowViewport::FrictionSigmaFieldMask);
    f.secondLater();
    EXPECT_NEAR(f.speed() / before, std::exp(-0.5), 2e-3);
    // The exponent only tells where there is liquid: half full, with exponent 1.
    Map half(16, 16);
    half.at(8, 8) = {0, 1, 0.5f, 0};
    f.stage.write(f.shown(1), half);
    f.viewport->setFrictionN(1.0f);
    f.edited(DropletFlowViewport::FrictionNFieldMask);
    f.secondLater();
    EXPECT_NEAR(f.speed(), std::exp(-0.25), 2e-3);

    f.viewport->setTimeDelay(3.0);
    f.edited(DropletFlowViewport::TimeDelayFieldMask);
    before = f.speed();
    f.secondLater();
    f.secondLater();
    EXPECT_EQ(f.speed(), before);
    f.secondLater();
    EXPECT_LT(f.speed(), before);
}

TEST(DropletFlowViewport, SourcesAreStampedOnceAndAnEmptyListWipesTheMap)
{
    Frames f;
    f.start();
    f.viewport->getSources().push_back(Vec3f(0.25f, 0.25f, 0.25f));
    f.viewport->getSources().push_back(Vec3f(0.75f, 0.25f, 0.25f));
    f.viewport->getSources().push_back(Vec3f(0.5f, 0.75f, 0.25f));
    f.edited(DropletFlowViewport::SourcesFieldMask);
    f.frame();
    const double volume = f.map(1).volume();
    // Three half balls of a diameter of 4 cells: 2 / 3 pi r^2 each.
    EXPECT_NEAR(volume, 3 * 2.0 / 3.0 * 3.14159 * 4, 1.5);
    EXPECT_GT(f.map(1).at(4, 4)[2], 0.5f);
    EXPECT_GT(f.map(1).at(8, 12)[2], 0.5f);
    f.frame(3);
    EXPECT_EQ(f.map(1).volume(), volume);
    EXPECT_EQ(f.map(0).volume(), 0.0) << "no step has run";
    f.secondLater();
    EXPECT_NEAR(f.map(0).volume(), volume, 1e-2);

    f.viewport->getSources().clear();
    f.edited(DropletFlowViewport::SourcesFieldMask);
    f.frame();
    for(const auto &cell : f.map(1).cells)
        ASSERT_EQ(cell, (std::array<float, 4>{0, 0, 0, 0}));
    f.secondLater();
    EXPECT_EQ(f.map(0).volume(), 0.0);
    EXPECT_EQ(f.steps(), 1);
}

TEST(DropletFlowViewport, SourcesFromAheadOfTheFirstFrameAreStampedWhenTheSimulationRuns)
{
    Frames f;
    f.viewport->getSources().push_back(Vec3f(0.5f, 0.5f, 0.5f));
    f.edited(DropletFlowViewport::SourcesFieldMask);
    f.start();
    EXPECT_EQ(f.map(1).volume(), 0.0);
    f.frame();
    EXPECT_GT(f.map(1).volume(), 5.0);
}

TEST(DropletFlowViewport, TheContactAngleChangesTheProfileOfTheNextDroplets)
{
    Frames f;
    f.start();
    EXPECT_EQ(f.shown(2)->getImage()->getData()[(64 * 128 + 64) * 3 + 2], 254);
    f.viewport->setContactAngle(0.5f);
    f.edited(DropletFlowViewport::ContactAngleFieldMask);
    f.frame();
    EXPECT_EQ(f.shown(2)->getImage()->getData()[(64 * 128 + 64) * 3 + 2], int(255 * std::tan(0.25) - 0.02));
}

TEST(DropletFlowViewport, NoiseSizeAndAngleBakeAnew)
{
    Frames f;
    f.start();
    EXPECT_EQ(f.shown(5)->getImage()->getWidth(), 32);
    const Map flat = f.map(3);
    f.viewport->setPerturbAngle(0.9f);
    f.edited(DropletFlowViewport::PerturbAngleFieldMask);
    f.frame();
    const Map tilted = f.map(3);
    EXPECT_NE(tilted.cells, flat.cells);
    EXPECT_EQ(f.shown(5)->getImage()->getWidth(), 32);
    f.viewport->setNoiseMapSize(Vec2f(8.5f, 4.0f));
    f.edited(DropletFlowViewport::NoiseMapSizeFieldMask);
    f.frame();
    EXPECT_EQ(f.shown(5)->getImage()->getWidth(), 8);
    EXPECT_EQ(f.shown(5)->getImage()->getHeight(), 4);
    EXPECT_NE(f.map(3).cells, tilted.cells);
}

TEST(DropletFlowViewport, TheColourGoesToTheDisplayShader)
{
    Frames f(1);
    f.start();
    const SHLChunkPtr shader = SHLChunkPtr::dcast(f.material->getChunk(0));
    EXPECT_EQ(uniform<Vec4f>(shader, "fluidColor"), Vec4f(0.1f, 0.2f, 0.9f, 1));
    f.viewport->setFluidColor(Color4f(0.5f, 0.25f, 0.125f, 0.75f));
    f.edited(DropletFlowViewport::FluidColorFieldMask);
    EXPECT_EQ(uniform<Vec4f>(shader, "fluidColor"), Vec4f(0.1f, 0.2f, 0.9f, 1));
    f.frame();
    EXPECT_EQ(uniform<Vec4f>(shader, "fluidColor"), Vec4f(0.5f, 0.25f, 0.125f, 0.75f));
}

TEST(DropletFlowViewport, FollowsTheObjectInTheWorld)
{
    Frames f;
    // Turned by 180 degrees about z between the frames: the force points up the object then.
    f.start();
    const TransformPtr turn = Transform::create();
    const NodePtr between = makeNodeFor(turn);
    f.top->insertChild(0, between);
    between->addChild(f.object);
    Matrix half;
    half.setScale(-1, -1, 1);
    turn->setMatrix(half);
    endEditCP(turn);
    f.secondLater();
    EXPECT_NEAR(f.speed(), 0.0, 1e-3);
}
