#include "PermutationScene.h"

#include <OpenSG/OSGShearedStereoCameraDecorator.h>
#include <OpenSG/OSGViewport.h>

#include <vector>

using namespace osg;
using namespace shader_test;

TEST_F(PermutationTest, TheSameStateTwiceMakesOneProgramAndSendsUniformsOnce)
{
    LogCapture log;
    EXPECT_EQ(drawn(), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(drawn(), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(chunk->getNumPermutations(), 1u);
    EXPECT_EQ(chunk->getNumUniformUpdates(), 1u);
    EXPECT_EQ(chunk->getNumStateTexts(), 1u);
    EXPECT_EQ(log.text(LOG_NOTICE), "PermutationSHLChunk::createPermutation: New permutation created.\n");
    EXPECT_EQ(log.count(), 1u);
    EXPECT_EQ(find(key())->getNumCompiles(), 1u);
    EXPECT_EQ(find(key())->getNumUniformsSent(), 1u);
    EXPECT_EQ(chunk->getNumCompiles(), 0u) << "it never compiles its own";
    EXPECT_EQ(quad(), (Pixel{51, 102, 153, 204})) << "nothing is left active";
}

TEST_F(PermutationTest, SwitchingToAndFroCompilesNothingAndSendsUniformsAgain)
{
    action.setLights(1);
    EXPECT_EQ(drawn()[0], 1);
    action.setLights(2);
    EXPECT_EQ(drawn()[0], 2);
    action.setLights(1);
    EXPECT_EQ(drawn()[0], 1);
    EXPECT_EQ(chunk->getNumPermutations(), 2u);
    EXPECT_EQ(chunk->getNumUniformUpdates(), 3u);
    EXPECT_EQ(find(key())->getNumCompiles(), 1u);
}

TEST_F(PermutationTest, AChangeOfAProgramOrPrefixEmptiesTheCacheAndNothingElseDoes)
{
    const BitVector emptying[] = {PermutationSHLChunk::VertexProgramFieldMask,
                                  PermutationSHLChunk::FragmentProgramFieldMask,
                                  PermutationSHLChunk::GeometryProgramFieldMask,
                                  PermutationSHLChunk::CgFrontEndFieldMask,
                                  PermutationSHLChunk::VertexProgramPrefixFieldMask,
                                  PermutationSHLChunk::FragmentProgramPrefixFieldMask,
                                  PermutationSHLChunk::GeometryProgramPrefixFieldMask};
    const BitVector keeping[] = {
        PermutationSHLChunk::ParametersFieldMask, PermutationSHLChunk::PermutationParametersFieldMask,
        PermutationSHLChunk::IsTransparentFieldMask, PermutationSHLChunk::PointSizeFieldMask};
    drawn();
    for(const BitVector mask : keeping)
    {
        endEditCP(chunk.ptr, mask);
        EXPECT_EQ(chunk->getNumPermutations(), 1u) << mask;
    }
    for(const BitVector mask : emptying)
    {
        drawn();
        const UInt32 containers = FieldContainerFactory::the()->getNumContainers();
        endEditCP(chunk.ptr, mask);
        EXPECT_EQ(chunk->getNumPermutations(), 0u) << mask;
        EXPECT_LT(FieldContainerFactory::the()->getNumContainers(), containers) << "the chunk itself is gone";
    }
    EXPECT_EQ(chunk->getNumStateTexts(), 1u) << "the texts of states are kept";
    chunk->setFragmentProgramPrefix("#define PREFIXED\n");
    chunk->setFragmentProgram("void main()\n{\n#ifdef PREFIXED\n    gl_FragColor = vec4(1.0);\n#endif\n}\n");
    endEditCP(chunk.ptr);
    EXPECT_EQ(drawn(), (Pixel{255, 255, 255, 255}));
}

TEST_F(PermutationTest, TheHundredAndTwentyNinthProgramDropsAllAtTheNextActivation)
{
    chunk->setFragmentProgram(
        "uniform float level;\n"
        "void main()\n{\n    gl_FragColor = vec4(float(N) / 255.0, level, 0.0, 1.0);\n}\n");
    endEditCP(chunk.ptr);
    for(int i = 0; i < 129; ++i)
    {
        chunk->setPermutationParameter("N", std::to_string(i));
        EXPECT_EQ(drawn(), (Pixel{std::uint8_t(i), 255, 0, 255}));
        EXPECT_EQ(chunk->getNumPermutations(), UInt32(i + 1));
    }
    EXPECT_EQ(chunk->getNumUniformUpdates(), 129u);
    // The one in use goes too, is made again, and gets its uniforms wherever its memory lies.
    EXPECT_EQ(drawn(), (Pixel{128, 255, 0, 255}));
    EXPECT_EQ(chunk->getNumPermutations(), 1u);
    EXPECT_EQ(chunk->getNumUniformUpdates(), 130u);
    EXPECT_EQ(find(key())->getNumCompiles(), 1u);
}

TEST_F(PermutationTest, ExactlyAHundredAndTwentyEightAreKept)
{
    chunk->setFragmentProgram("void main()\n{\n    gl_FragColor = vec4(float(N) / 255.0);\n}\n");
    endEditCP(chunk.ptr);
    for(int i = 0; i < 128; ++i)
    {
        chunk->setPermutationParameter("N", std::to_string(i));
        drawn();
    }
    for(int i = 0; i < 128; ++i)
    {
        chunk->setPermutationParameter("N", std::to_string(i));
        EXPECT_EQ(drawn()[0], i);
        EXPECT_EQ(chunk->getNumPermutations(), 128u);
    }
}

TEST_F(PermutationTest, TheTextsOfStatesAreEmptiedBeyondAHundredAndTwentyEight)
{
    for(UInt32 i = 0; i < 129; ++i)
    {
        action.setLights(i);
        key();
        EXPECT_EQ(chunk->getNumStateTexts(), i + 1);
    }
    key();
    EXPECT_EQ(chunk->getNumStateTexts(), 1u) << "emptied ahead of the search, so that the text is made again";
    action.setLights(3);
    EXPECT_NE(key().find("OSG_ACTIVE_LIGHTS_MASK 3\n"), std::string::npos);
    EXPECT_EQ(chunk->getNumStateTexts(), 2u);
    key();
    EXPECT_EQ(chunk->getNumStateTexts(), 2u);
}

TEST_F(PermutationTest, TooManyTextsOfStatesAreEmptiedAlsoWhereNothingElseChanges)
{
    drawn();
    for(UInt32 i = 1; i < 129; ++i)
    {
        action.setLights(i);
        key();
    }
    action.setLights(0);
    EXPECT_EQ(chunk->getNumStateTexts(), 129u);
    EXPECT_EQ(drawn(), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(chunk->getNumStateTexts(), 1u);
    EXPECT_EQ(chunk->getNumPermutations(), 1u);
}

TEST_F(PermutationTest, ALightBeyondTheEighthFallsOntoTheBitsOfTheEye)
{
    action.setLights(0);
    const std::string none = key();
    action.setLights(256);
    const std::string collided = key();
    EXPECT_NE(collided, none);
    const Held<ViewportPtr> port;
    const Held<ShearedStereoCameraDecoratorPtr> stereo;
    stereo->setLeftEye(false);
    action.setLights(0);
    action.setCamera(stereo.ptr.getCPtr());
    action.setViewport(port.ptr.getCPtr());
    EXPECT_EQ(key(), collided) << "meant: the number of the state is the same";
    action.setCamera(nullptr);
    action.setViewport(nullptr);
}

TEST_F(PermutationTest, AProgramThatWasDroppedWhileActiveIsLeft)
{
    deactivate(); // nothing was ever active
    activate();
    EXPECT_EQ(quad(), (Pixel{0, 0, 0, 255}));
    endEditCP(chunk.ptr, PermutationSHLChunk::VertexProgramFieldMask);
    EXPECT_EQ(chunk->getNumPermutations(), 0u);
    // More chunks, so that the memory of the one that is gone is used again.
    std::vector<SHLChunkPtr> others;
    for(int i = 0; i < 64; ++i)
        others.push_back(SHLChunk::create());
    deactivate();
    EXPECT_EQ(quad(), (Pixel{51, 102, 153, 204}));
    for(const SHLChunkPtr &other : others)
        subRefCP(other);
    // The next one gets its uniforms although it may lie where the old one lay.
    for(int i = 0; i < 20; ++i)
    {
        endEditCP(chunk.ptr, PermutationSHLChunk::VertexProgramFieldMask);
        EXPECT_EQ(drawn(), (Pixel{0, 0, 0, 255}));
    }
    EXPECT_EQ(chunk->getNumUniformUpdates(), 21u);
}

TEST_F(PermutationTest, PermutationsOutliveTheChunkUnlessTheyAreDropped)
{
    // Told so: the chunk's end takes no reference of theirs.
    SHLChunkPtr left;
    {
        const Held<PermutationSHLChunkPtr> other;
        other->setFragmentProgram(tellTale);
        endEditCP(other.ptr);
        static_cast<StateChunk *>(other.ptr.getCPtr())->activate(&action, 0);
        left = (other.ptr.getCPtr()->*(&Inner::findPermutation))(key());
        static_cast<StateChunk *>(other.ptr.getCPtr())->deactivate(&action, 0);
    }
    ASSERT_TRUE(left != NullFC);
    EXPECT_EQ(left->getNumCompiles(), 1u);
    subRefCP(left);
}
