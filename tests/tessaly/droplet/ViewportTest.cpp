/// \file
/// The viewport that runs the simulation: at which frame it is made, thrown away and made anew.

#include "ViewportScene.h"

OSG_USING_NAMESPACE
using namespace droplet_test;

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
    f.viewport->getSources().push_back(Vec3f(0.5f, 0.5f, 0.5f));
    f.edited(DropletFlowViewport::SourcesFieldMask);
    f.frame(3);
    EXPECT_GT(f.map(1).volume(), 5.0);
    const Held<TextureChunkPtr> old(f.shown(0));
    f.viewport->setSurfaceMapSize(Vec2f(32.9f, 8.5f));
    f.frame();
    EXPECT_EQ(f.map(0).width, 16) << "the edit has not ended";
    f.edited(DropletFlowViewport::SurfaceMapSizeFieldMask);
    f.frame();
    EXPECT_EQ(f.map(0).width, 32);
    EXPECT_EQ(f.map(1).height, 8);
    EXPECT_NE(f.shown(0), old.ptr);
    EXPECT_EQ(f.map(1).volume(), 0.0) << "the liquid is gone with its simulation";
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

TEST(DropletFlowViewport, BakesAndStepsInTheWindowOfItsOwnFrameWhereAnotherWasDrawnLast)
{
    Frames first;
    first.start();
    const Map flat = first.map(3);
    Frames second;
    second.start();
    const Map others = second.map(3);
    first.viewport->setPerturbAngle(0.9f);
    first.edited(DropletFlowViewport::PerturbAngleFieldMask);
    first.viewport->setDirty(true);
    first.frame();
    EXPECT_NE(first.map(3).cells, flat.cells);
    EXPECT_EQ(second.map(3).cells, others.cells);
    // The clock has gone over to the system's with a step; the tilted bake came only behind it.
    EXPECT_EQ(first.steps(), 2);
    EXPECT_EQ(second.steps(), 1);
    first.stage.window->activate();
}

TEST(DropletFlowViewport, UsesNoActionOfAnEarlierFrame)
{
    Frames f;
    f.start();
    const Map flat = f.map(3);
    f.stage.action.reset(RenderAction::create());
    f.viewport->setPerturbAngle(0.9f);
    f.edited(DropletFlowViewport::PerturbAngleFieldMask);
    f.frame();
    EXPECT_NE(f.map(3).cells, flat.cells);
    EXPECT_EQ(DropletFlowContext::get()->getAction(), f.stage.action.get());
}
