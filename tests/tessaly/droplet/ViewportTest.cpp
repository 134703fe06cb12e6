/// \file
/// The viewport that runs the simulation: at which frame what happens, and what each field does.

#include "DropletScene.h"

#include <cstdlib>

#include <OpenSG/OSGTime.h>
#include <Tessaly/OSGDropletFlowViewport.h>

OSG_USING_NAMESPACE
using namespace droplet_test;

namespace
{

/// DEBUG_DROPFLOW is set as long as this lives.
struct DebugDropflow
{
    DebugDropflow() { setenv("DEBUG_DROPFLOW", "", 1); }
    ~DebugDropflow() { unsetenv("DEBUG_DROPFLOW"); }
    DebugDropflow(const DebugDropflow &) = delete;
    DebugDropflow &operator=(const DebugDropflow &) = delete;
};

/// A viewport whose fields are set as if no edit had been ended yet. A step adds -0.125 to the velocity of
/// every empty cell: a force of -0.125 along the bitangent, over a density of 0.01, times 0.01, not damped.
struct Frames
{
    DebugDropflow debug;
    Stage stage;
    Held<ChunkMaterialPtr> material;
    Held<NodePtr> top{makeCoredNode<Group>()};
    NodePtr object = makeObject(material);
    Held<DropletFlowViewportPtr> viewport;

    explicit Frames(int matMode = 0)
    {
        top->addChild(object);
        viewport->setMatMode(matMode);
        viewport->setRoot(object);
        viewport->setMaterial(material);
        viewport->setSurfaceMapSize(Vec2f(16, 16));
        viewport->setPerturbAngle(0.0f);
        viewport->setForce(Vec3f(0, -0.125f, 0));
        viewport->setTimeStep(0.01);
        viewport->setTimeDelay(1.0);
        viewport->setFluidViscosity(1000.0f);
        // The clock is the host's.
        viewport->setDirty(false);
        viewport->setTime(100.0);
        stage.window->addPort(viewport.ptr);
    }
    ~Frames()
    {
        stage.window->subPort(ViewportPtr(viewport.ptr));
        stage.window->activate();
    }

    void frame(int count = 1)
    {
        for(int i = 0; i < count; ++i)
            stage.window->render(stage.action.get());
        stage.window->activate();
    }
    /// The frame that makes the simulation, and the one that bakes and runs the first step.
    void start() { frame(2); }
    void edited(BitVector fields) { endEditCP(viewport.ptr, fields); }
    void setTime(Time time)
    {
        viewport->setTime(time);
        edited(DropletFlowViewport::TimeFieldMask);
    }
    /// The next frame, a second of the host's clock later: one step.
    void secondLater()
    {
        setTime(viewport->getTime() + 1.0);
        frame();
    }

    UInt32 numChunks() { return material->getChunks().size(); }
    /// Of the planes under the top, in their order: first and second surface map, splat, normals, tangents,
    /// noise.
    TextureChunkPtr shown(UInt32 index)
    {
        const NodePtr plane = top->getChild(1 + index)->getChild(0)->getChild(0);
        return TextureChunkPtr::dcast(
            ChunkMaterialPtr::dcast(GeometryPtr::dcast(plane->getCore())->getMaterial())->getChunk(0));
    }
    Map map(UInt32 index) { return stage.read(shown(index)); }
    double speed() { return double(map(0).at(8, 8)[1]); }
    /// How many steps have run, as long as nothing but the clock has changed.
    int steps() { return int(std::lround(speed() / -0.125)); }
};

} // namespace

TEST(DropletFlowViewport, MakesTheSimulationInOneFrameBakesInTheNextAndRunsBehindThat)
{
    Frames f;
    EXPECT_EQ(f.numChunks(), 0u);
    f.frame();
    ASSERT_EQ(f.numChunks(), 1u);
    EXPECT_EQ(f.material->getChunk(0), f.shown(0));
    EXPECT_EQ(f.shown(0)->getImage()->getWidth(), 16);
    EXPECT_EQ(f.steps(), 0);
    EXPECT_EQ(f.map(3).at(3, 3)[2], 0.0f) << "nothing is baked yet";
    f.frame();
    EXPECT_EQ(f.map(3).at(3, 3)[2], 1.0f);
    EXPECT_EQ(f.map(4).at(3, 3)[0], 1.0f);
    EXPECT_EQ(f.steps(), 1) << "enabling the timer costs a step";
    f.frame(3);
    EXPECT_EQ(f.steps(), 1) << "the clock stands still";
    f.secondLater();
    EXPECT_EQ(f.steps(), 2);
}

TEST(DropletFlowViewport, DoesNothingWhileItIsNotEnabled)
{
    Frames f;
    f.viewport->setEnabled(false);
    f.frame(3);
    EXPECT_EQ(f.numChunks(), 0u);
    EXPECT_EQ(f.top->getNChildren(), 1u);
    f.viewport->setEnabled(true);
    f.start();
    EXPECT_EQ(f.steps(), 1);
    f.viewport->setEnabled(false);
    f.secondLater();
    EXPECT_EQ(f.steps(), 1);
    f.viewport->setEnabled(true);
    f.frame();
    EXPECT_EQ(f.steps(), 2);
}

TEST(DropletFlowViewport, DoesNothingWithoutAnActionOrAWindow)
{
    Frames f;
    f.viewport->render(nullptr);
    const std::unique_ptr<RenderAction> other(RenderAction::create());
    f.viewport->render(other.get());
    EXPECT_EQ(f.numChunks(), 0u);
}

TEST(DropletFlowViewport, WaitsForARoot)
{
    Frames f;
    f.viewport->setRoot(NullFC);
    f.frame(3);
    EXPECT_EQ(f.numChunks(), 0u);
    f.viewport->setRoot(f.object);
    f.frame();
    EXPECT_EQ(f.numChunks(), 1u);
    f.frame();
    EXPECT_EQ(f.steps(), 1);
}

TEST(DropletFlowViewport, BitsFromAheadOfTheFirstFrameThrowTheFirstSimulationAway)
{
    for(const int mode : {0, 1, 2})
    {
        Frames f(mode);
        const UInt32 added = mode == 0 ? 1 : 6;
        f.edited(DropletFlowViewport::MaterialFieldMask | DropletFlowViewport::SurfaceMapSizeFieldMask |
                 DropletFlowViewport::MatModeFieldMask);
        f.frame();
        // Held, so that its place in memory is not taken by the next.
        const Held<TextureChunkPtr> first(f.shown(0));
        EXPECT_EQ(f.numChunks(), added);
        f.frame();
        EXPECT_EQ(f.shown(0), first.ptr) << "a simulation that has not baked yet is left alone";
        EXPECT_EQ(f.steps(), 1);
        f.frame();
        EXPECT_EQ(f.numChunks(), added) << "those of the simulation that lives, once";
        EXPECT_EQ(f.top->getNChildren(), 7u);
        const TextureChunkPtr second = f.shown(0);
        EXPECT_NE(second, first.ptr);
        EXPECT_EQ(f.material->getChunk(mode == 0 ? 0 : 1), second);
        EXPECT_EQ(f.steps(), 0);
        f.frame();
        EXPECT_EQ(f.steps(), 1);
        f.frame(3);
        EXPECT_EQ(f.shown(0), second);
        EXPECT_EQ(f.numChunks(), added);
        EXPECT_EQ(f.steps(), 1);
    }
}

TEST(DropletFlowViewport, AnotherSurfaceMapSizeStartsAnew)
{
    Frames f;
    f.start();
    f.viewport->setSurfaceMapSize(Vec2f(32.9f, 8.5f));
    f.frame();
    EXPECT_EQ(f.map(0).width, 16) << "the edit has not ended";
    f.edited(DropletFlowViewport::SurfaceMapSizeFieldMask);
    f.frame();
    EXPECT_EQ(f.map(0).width, 32);
    EXPECT_EQ(f.map(1).height, 8);
    EXPECT_EQ(f.map(0).at(8, 4)[1], 0.0f);
    f.frame();
    EXPECT_NEAR(f.map(0).at(8, 4)[1], -0.125f, 1e-3f);
    EXPECT_EQ(f.numChunks(), 1u);
}

TEST(DropletFlowViewport, AnotherMaterialGetsTheChunksAndTheOldOneLosesThem)
{
    Frames f;
    f.start();
    const Held<ChunkMaterialPtr> other;
    f.viewport->setMaterial(other);
    f.edited(DropletFlowViewport::MaterialFieldMask);
    f.frame();
    EXPECT_EQ(f.numChunks(), 0u);
    EXPECT_EQ(other->getChunks().size(), 1u);
    f.viewport->setMaterial(NullFC);
    f.edited(DropletFlowViewport::MaterialFieldMask);
    LogCapture log;
    f.frame();
    EXPECT_EQ(other->getChunks().size(), 1u) << "the simulation bakes first";
    f.frame(2);
    EXPECT_EQ(other->getChunks().size(), 0u);
    EXPECT_EQ(f.steps(), 1) << "without a material the liquid flows unseen";
    EXPECT_EQ(log.text(LOG_WARNING), "");
}

TEST(DropletFlowViewport, TheFirstOfItsTexturesIsTheMapInMode0Only)
{
    const Held<TextureChunkPtr> texture;
    const Held<ImagePtr> image;
    image->set(6408, 16, 16);
    endEditCP(image.ptr);
    texture->setImage(image);
    texture->setInternalFormat(GL_RGBA16F);
    endEditCP(texture.ptr);
    for(const int mode : {0, 1})
    {
        Frames f(mode);
        f.start();
        f.viewport->getTextures().push_back(texture);
        f.viewport->getTextures().push_back(texture);
        f.edited(DropletFlowViewport::TexturesFieldMask);
        f.frame();
        EXPECT_EQ(f.shown(0) == texture.ptr, mode == 0);
        f.frame();
        EXPECT_EQ(f.steps(), 1);
        f.viewport->getTextures().clear();
        f.edited(DropletFlowViewport::TexturesFieldMask);
        f.frame();
        EXPECT_NE(f.shown(0), texture.ptr);
    }
}

TEST(DropletFlowViewport, AnotherModeActsOnlyWithWhatStartsAnew)
{
    Frames f;
    f.start();
    f.viewport->setMatMode(2);
    f.edited(DropletFlowViewport::MatModeFieldMask);
    f.frame(3);
    EXPECT_EQ(f.numChunks(), 1u);
    f.edited(DropletFlowViewport::SurfaceMapSizeFieldMask);
    f.frame();
    EXPECT_EQ(f.numChunks(), 6u);
    EXPECT_EQ(uniform<Vec4f>(SHLChunkPtr::dcast(f.material->getChunk(0)), "fluidColor"),
              Vec4f(0.1f, 0.2f, 0.9f, 1));
}

TEST(DropletFlowViewport, StepsWithTheHostsClock)
{
    Frames f;
    f.start();
    f.setTime(100.5);
    f.frame();
    EXPECT_EQ(f.steps(), 1);
    f.setTime(101.0);
    f.frame(2);
    EXPECT_EQ(f.steps(), 2);
    f.setTime(111.0);
    f.frame(3);
    EXPECT_EQ(f.steps(), 3) << "what was missed is not made up";
    f.setTime(50.0);
    f.frame();
    EXPECT_EQ(f.steps(), 3);
}

TEST(DropletFlowViewport, DirtySwitchesTheClockToTheSystemsWithOneStep)
{
    Frames f;
    f.viewport->setTimeDelay(1e6);
    f.start();
    EXPECT_EQ(f.steps(), 1);
    f.viewport->setDirty(true);
    f.frame();
    EXPECT_EQ(f.steps(), 2) << "the clock goes over with a step";
    EXPECT_FALSE(f.viewport->getDirty()) << "the frame sets it back";
    f.viewport->setDirty(true);
    f.frame();
    EXPECT_EQ(f.steps(), 2) << "it is the system's already";
    // Back to the host's clock, and over again.
    f.setTime(200.0);
    f.viewport->setDirty(true);
    f.frame();
    EXPECT_EQ(f.steps(), 2) << "a changed time goes ahead of dirty";
    EXPECT_FALSE(f.viewport->getDirty());
    f.viewport->setDirty(true);
    f.frame();
    EXPECT_EQ(f.steps(), 3);
    // While paused the clock goes over without one.
    f.setTime(300.0);
    f.viewport->setPause(true);
    f.edited(DropletFlowViewport::PauseFieldMask);
    f.frame();
    f.viewport->setDirty(true);
    f.frame();
    EXPECT_EQ(f.steps(), 3);
}

TEST(DropletFlowViewport, OnTheSystemsClockStepsFollowTheTimeDelay)
{
    Frames f;
    f.viewport->setTimeDelay(0.02);
    f.start();
    f.viewport->setDirty(true);
    f.frame();
    EXPECT_EQ(f.steps(), 2);
    const Time begin = getSystemTime();
    int frames = 0;
    while(getSystemTime() - begin < 0.2)
    {
        f.viewport->setDirty(true);
        f.frame();
        ++frames;
    }
    const int most = int((getSystemTime() - begin) / 0.02) + 1;
    EXPECT_LE(f.steps() - 2, std::min(most, frames));
    EXPECT_GE(f.steps() - 2, 1);
    const int before = f.steps();
    f.frame(10);
    EXPECT_EQ(f.steps(), before) << "without dirty the clock stands still";
}

TEST(DropletFlowViewport, DirtyFromTheBeginningActsOnceTheSimulationRuns)
{
    Frames f;
    f.viewport->setTimeDelay(1e6);
    f.viewport->setDirty(true);
    f.start();
    EXPECT_EQ(f.steps(), 1);
    EXPECT_TRUE(f.viewport->getDirty());
    f.frame();
    EXPECT_EQ(f.steps(), 2);
    EXPECT_FALSE(f.viewport->getDirty());
}

TEST(DropletFlowViewport, TheDirtyThatItSetsBackIsNoChange)
{
    Frames f;
    f.viewport->setTimeDelay(1e6);
    f.start();
    f.setTime(101.0);
    f.frame();
    // Were the bit of dirty still set, nothing would tell; so the fields are changed without an edit.
    f.viewport->setForce(Vec3f(0, -1, 0));
    f.viewport->setTimeDelay(1.0);
    f.frame();
    EXPECT_EQ(f.steps(), 1);
}

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

TEST(DropletFlowViewport, PauseStopsTheStepsAndItsEndRunsOneAtOnce)
{
    Frames f;
    f.start();
    f.viewport->setPause(true);
    f.edited(DropletFlowViewport::PauseFieldMask);
    f.secondLater();
    f.secondLater();
    EXPECT_EQ(f.steps(), 1);
    // Parameters go on working.
    f.viewport->getSources().push_back(Vec3f(0.5f, 0.5f, 0.5f));
    f.edited(DropletFlowViewport::SourcesFieldMask);
    f.frame();
    EXPECT_GT(f.map(1).volume(), 5.0);
    f.viewport->setPause(false);
    f.edited(DropletFlowViewport::PauseFieldMask);
    f.frame();
    EXPECT_NEAR(f.map(0).at(1, 1)[1], -0.25f, 1e-3f);
    f.frame();
    EXPECT_NEAR(f.map(0).at(1, 1)[1], -0.25f, 1e-3f);

    Frames paused;
    paused.viewport->setPause(true);
    paused.frame(3);
    EXPECT_EQ(paused.steps(), 0);
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

TEST(DropletFlowViewport, HangsSixPlanesUnderTheTopForDebuggingWhileTheSimulationLives)
{
    Frames f;
    f.frame();
    ASSERT_EQ(f.top->getNChildren(), 7u);
    for(UInt32 i = 0; i < 6; ++i)
    {
        const NodePtr node = f.top->getChild(1 + i);
        const TransformPtr place = TransformPtr::dcast(node->getCore());
        ASSERT_TRUE(place != NullFC);
        Matrix expected;
        expected.setTranslate(-10.0f + 5.0f * Real32(i), -10, 10);
        EXPECT_EQ(place->getMatrix(), expected);
        EXPECT_TRUE(GroupPtr::dcast(node->getChild(0)->getCore()) != NullFC);
        Pnt3f low, high;
        node->getChild(0)->getChild(0)->getVolume(true).getBounds(low, high);
        EXPECT_EQ(high[0] - low[0], 5.0f);
        EXPECT_EQ(high[1] - low[1], 5.0f);
    }
    EXPECT_EQ(f.shown(1)->getInternalFormat(), 34842u);
    EXPECT_EQ(f.shown(2)->getImage()->getWidth(), 128);
    EXPECT_EQ(f.shown(3)->getInternalFormat(), 32856u);
    EXPECT_EQ(f.shown(5)->getImage()->getPixelFormat(), 6407u);

    // A root without a parent gets none.
    const Held<NodePtr> alone(makeObject());
    f.viewport->setRoot(alone);
    f.edited(DropletFlowViewport::SurfaceMapSizeFieldMask);
    f.frame(3);
    EXPECT_EQ(f.top->getNChildren(), 1u);
    EXPECT_TRUE(alone->getParent() == NullFC);
    EXPECT_EQ(alone->getNChildren(), 0u);
}

TEST(DropletFlowViewport, HangsNothingUnderTheTopOtherwise)
{
    Frames f;
    unsetenv("DEBUG_DROPFLOW");
    f.start();
    EXPECT_EQ(f.numChunks(), 1u);
    EXPECT_EQ(f.top->getNChildren(), 1u);
}

TEST(DropletFlowViewport, GivesBackWhatItHeldWhenItGoes)
{
    Stage stage;
    const Held<ChunkMaterialPtr> material;
    const Held<NodePtr> object(makeObject(material));
    const Held<TextureChunkPtr> texture;
    {
        Held<DropletFlowViewportPtr> viewport;
        viewport->setRoot(object);
        viewport->setMaterial(material);
        viewport->getTextures().push_back(texture);
        viewport->setMatMode(1);
        viewport->setSurfaceMapSize(Vec2f(8, 8));
        endEditCP(viewport.ptr);
        EXPECT_EQ(texture.ptr.getRefCount(), 2);
        const Held<DropletFlowViewportPtr> copy(DropletFlowViewportPtr::dcast(viewport->shallowCopy()));
        EXPECT_EQ(texture.ptr.getRefCount(), 3);
        for(int i = 0; i < 4; ++i)
            viewport->render(stage.action.get());
        EXPECT_EQ(material->getChunks().size(), 6u);
    }
    EXPECT_EQ(material->getChunks().size(), 0u);
    EXPECT_EQ(material.ptr.getRefCount(), 2) << "the test's and the object's";
    EXPECT_EQ(object.ptr.getRefCount(), 1);
    EXPECT_EQ(texture.ptr.getRefCount(), 1);
}

TEST(DropletFlowViewport, DrawsNothingIntoTheWindow)
{
    Frames f;
    glClearColor(0.25f, 0.5f, 0.75f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    f.start();
    f.secondLater();
    for(int y : {0, 20, 47})
    {
        UInt8 pixel[4] = {};
        glReadPixels(30, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
        EXPECT_EQ(pixel[0], 64);
        EXPECT_EQ(pixel[2], 191);
    }
    glClearColor(0, 0, 0, 0);
}
