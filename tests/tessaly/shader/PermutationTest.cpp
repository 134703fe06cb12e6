#include "PermutationScene.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGOrthographicCamera.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGShaderParameterString.h>
#include <OpenSG/OSGShearedStereoCameraDecorator.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGViewport.h>

#include <memory>

using namespace osg;
using namespace shader_test;

TEST_F(PermutationTest, EveryStateRunsTheProgramMadeForIt)
{
    const Held<ViewportPtr> port;
    const Held<PerspectiveCameraPtr> camera;
    const Held<ShearedStereoCameraDecoratorPtr> stereo;
    stereo->setDecoratee(camera.ptr);
    endEditCP(stereo.ptr);
    UInt32 programs = 0;
    for(int round = 0; round < 2; ++round)
    {
        for(const UInt32 lights : {0u, 1u, 5u, 130u, 255u})
            for(int eye = -1; eye <= 1; ++eye)
                for(int fog = 0; fog < 4; ++fog)
                {
                    action.setLights(lights);
                    stereo->setLeftEye(eye == 1);
                    action.setViewport(port.ptr.getCPtr());
                    action.setCamera(eye < 0 ? static_cast<Camera *>(camera.ptr.getCPtr())
                                             : static_cast<Camera *>(stereo.ptr.getCPtr()));
                    setFog(fog);
                    const Pixel expected{std::uint8_t(lights), std::uint8_t(85 * (eye + 1) + countOf(lights)),
                                         std::uint8_t(64 * fog), 255};
                    EXPECT_EQ(drawn(), expected) << lights << " " << eye << " " << fog;
                    programs += round == 0 ? 1 : 0;
                    EXPECT_EQ(chunk->getNumPermutations(), programs);
                    EXPECT_EQ(find(key())->getNumCompiles(), 1u);
                }
    }
    EXPECT_EQ(programs, 60u);
    EXPECT_EQ(chunk->getNumStateTexts(), 60u);
    EXPECT_EQ(chunk->getNumUniformUpdates(), 120u) << "at each switch";
    setFog(0);
    action.setCamera(nullptr);
    action.setViewport(nullptr);
}

TEST_F(PermutationTest, UniformsOfAllKindsAreHandedOver)
{
    MFInt32 ints;
    ints.push_back(3);
    ints.push_back(-4);
    MFReal32 reals;
    reals.push_back(0.5f);
    MFVec2f twos;
    twos.push_back(Vec2f(1, 2));
    MFVec3f threes;
    threes.push_back(Vec3f(1, 2, 3));
    MFVec4f fours;
    fours.push_back(Vec4f(1, 2, 3, 4));
    MFMatrix matrices;
    matrices.push_back(Matrix());
    Matrix matrix;
    matrix.setTranslate(1, 2, 3);
    chunk->setUniformParameter("b", true);
    chunk->setUniformParameter("i", Int32(-5));
    chunk->setUniformParameter("r", 0.25f);
    chunk->setUniformParameter("v2", Vec2f(1, 2));
    chunk->setUniformParameter("v3", Vec3f(1, 2, 3));
    chunk->setUniformParameter("v4", Vec4f(1, 2, 3, 4));
    chunk->setUniformParameter("m", matrix);
    chunk->setUniformParameter("mi", ints);
    chunk->setUniformParameter("mr", reals);
    chunk->setUniformParameter("mv2", twos);
    chunk->setUniformParameter("mv3", threes);
    chunk->setUniformParameter("mv4", fours);
    chunk->setUniformParameter("mm", matrices);
    // Its name begins as those of the system do, and it is handed over like all others.
    chunk->setUniformParameter("OSGLevel", 0.75f);
    // A kind that no uniform has is passed over in silence.
    const ShaderParameterStringPtr text = ShaderParameterString::create();
    text->setName("text");
    addRefCP(text);
    chunk->editMFParameters()->push_back(text);
    endEditCP(chunk.ptr, PermutationSHLChunk::ParametersFieldMask);
    LogCapture log;
    drawn();
    EXPECT_EQ(log.count(LOG_WARNING), 0u);
    const SHLChunkPtr current = find(key());
    ASSERT_TRUE(current != NullFC);
    EXPECT_EQ(current->getParameters().size(), 15u) << "with level, without the text";
    bool b = false;
    Int32 i = 0;
    Real32 r = 0;
    Vec2f v2;
    Vec3f v3;
    Vec4f v4;
    Matrix m;
    EXPECT_TRUE(current->getUniformParameter("b", b) && b);
    EXPECT_TRUE(current->getUniformParameter("i", i) && i == -5);
    EXPECT_TRUE(current->getUniformParameter("r", r) && r == 0.25f);
    EXPECT_TRUE(current->getUniformParameter("v2", v2) && v2 == Vec2f(1, 2));
    EXPECT_TRUE(current->getUniformParameter("v3", v3) && v3 == Vec3f(1, 2, 3));
    EXPECT_TRUE(current->getUniformParameter("v4", v4) && v4 == Vec4f(1, 2, 3, 4));
    EXPECT_TRUE(current->getUniformParameter("m", m) && m == matrix);
    MFInt32 readInts;
    MFReal32 readReals;
    MFVec2f readTwos;
    MFVec3f readThrees;
    MFVec4f readFours;
    MFMatrix readMatrices;
    EXPECT_TRUE(current->getUniformParameter("mi", readInts) && readInts.getValues() == ints.getValues());
    EXPECT_TRUE(current->getUniformParameter("mr", readReals) && readReals.getValues() == reals.getValues());
    EXPECT_TRUE(current->getUniformParameter("mv2", readTwos) && readTwos.getValues() == twos.getValues());
    EXPECT_TRUE(current->getUniformParameter("mv3", readThrees) &&
                readThrees.getValues() == threes.getValues());
    EXPECT_TRUE(current->getUniformParameter("mv4", readFours) && readFours.getValues() == fours.getValues());
    EXPECT_TRUE(current->getUniformParameter("mm", readMatrices) &&
                readMatrices.getValues() == matrices.getValues());
    EXPECT_TRUE(current->getUniformParameter("OSGLevel", r) && r == 0.75f);
}

TEST_F(PermutationTest, UniformsAreSentOnlyWhenThePermutationOrTheFieldChanges)
{
    EXPECT_EQ(drawn()[3], 255);
    chunk->setUniformParameter("level", 0.2f);
    EXPECT_EQ(drawn()[3], 255) << "the edit is still open";
    EXPECT_EQ(chunk->getNumUniformUpdates(), 1u);
    endEditCP(chunk.ptr, PermutationSHLChunk::ParametersFieldMask);
    EXPECT_EQ(drawn()[3], 51);
    EXPECT_EQ(chunk->getNumUniformUpdates(), 2u);
    EXPECT_EQ(drawn()[3], 51);
    EXPECT_EQ(chunk->getNumUniformUpdates(), 2u);
    EXPECT_EQ(find(key())->getNumUniformsSent(), 2u);
    EXPECT_EQ(chunk->getNumPermutations(), 1u);
}

TEST_F(PermutationTest, ChangeFromDeactivatesAndActivatesAlsoFromItself)
{
    const Held<PermutationSHLChunkPtr> other;
    other->setFragmentProgram("void main()\n{\n    gl_FragColor = vec4(0.4);\n}\n");
    endEditCP(other.ptr);
    StateChunk &otherChunk = *other.ptr.getCPtr();
    otherChunk.activate(&action, 0);
    EXPECT_EQ(quad()[0], 102);
    asChunk().changeFrom(&action, &otherChunk, 0);
    EXPECT_EQ(quad(), (Pixel{0, 0, 0, 255}));
    action.setLights(9);
    asChunk().changeFrom(&action, &asChunk(), 0);
    EXPECT_EQ(quad(), (Pixel{9, 2, 0, 255})) << "the state has changed meanwhile";
    // To one without a program that could be used: the old one is left all the same.
    other->setFragmentProgram("nonsense");
    endEditCP(other.ptr);
    {
        LogCapture log;
        otherChunk.changeFrom(&action, &asChunk(), 0);
        EXPECT_EQ(log.count(LOG_WARNING), 1u);
    }
    EXPECT_EQ(quad(), (Pixel{51, 102, 153, 204}));
    otherChunk.deactivate(&action, 0);
    endEditCP(other.ptr);
}

TEST_F(PermutationTest, ChangeFromAnotherClassWarnsAndActivatesNothing)
{
    const Held<SHLChunkPtr> plain;
    LogCapture log;
    for(StateChunk *old :
        {static_cast<StateChunk *>(plain.ptr.getCPtr()), static_cast<StateChunk *>(nullptr)})
    {
        log.clear();
        asChunk().changeFrom(&action, old, 0);
        EXPECT_EQ(log.text(LOG_WARNING),
                  "PermutationSHLChunk::changeFrom: caught non-PermutationSHLChunk!\n");
        EXPECT_EQ(log.count(), 1u);
        EXPECT_EQ(chunk->getNumPermutations(), 0u);
        EXPECT_EQ(quad(), (Pixel{51, 102, 153, 204}));
    }
}

TEST_F(PermutationTest, AProgramThatDoesNotCompileStaysAndIsReportedOnce)
{
    chunk->setFragmentProgram("void main()\n{\n#if OSG_ACTIVE_LIGHTS_COUNT > 0\n    nonsense\n#endif\n"
                              "    gl_FragColor = vec4(1.0);\n}\n");
    endEditCP(chunk.ptr);
    EXPECT_EQ(drawn()[0], 255);
    action.setLights(1);
    LogCapture log;
    EXPECT_EQ(drawn(), (Pixel{51, 102, 153, 204})) << "the fixed pipeline draws";
    EXPECT_EQ(log.count(LOG_WARNING), 1u);
    drawn();
    EXPECT_EQ(log.count(LOG_WARNING), 1u);
    EXPECT_EQ(chunk->getNumPermutations(), 2u);
    action.setLights(0);
    EXPECT_EQ(drawn()[0], 255);
}

TEST_F(PermutationTest, ChunksAreComparedByIdentity)
{
    const Held<PermutationSHLChunkPtr> other;
    StateChunk &a = asChunk();
    StateChunk &b = *other.ptr.getCPtr();
    EXPECT_TRUE(a == a);
    EXPECT_FALSE(a != a);
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a != b);
    EXPECT_EQ(a < b, &a < &b);
    EXPECT_NE(a < b, b < a);
    EXPECT_FALSE(a < a);
    EXPECT_EQ(a.switchCost(&b), 0.0f);
    EXPECT_FALSE(chunk->isTransparent());
    chunk->setIsTransparent(true);
    EXPECT_TRUE(a.isTransparent());
    a.update(&action);
    EXPECT_EQ(chunk->getNumPermutations(), 0u);
}

TEST_F(PermutationTest, ARenderActionChoosesByTheLightsAboveEachObject)
{
    // Four columns below 0, 1, 2 and 3 lights.
    const Held<NodePtr> root(makeCoredNode<Group>());
    const ChunkMaterialPtr material = ChunkMaterial::create();
    chunk->setFragmentProgram(
        "void main()\n{\n    gl_FragColor = vec4(float(OSG_ACTIVE_LIGHTS_COUNT * 60 + 10) / 255.0,\n"
        "        float(OSG_LIGHT_2_ACTIVE), 0.0, 1.0);\n}\n");
    endEditCP(chunk.ptr);
    material->addChunk(chunk.ptr);
    endEditCP(material);
    for(int lights = 0; lights < 4; ++lights)
    {
        const GeometryPtr quad = makePlaneGeo(1, 1, 1, 1);
        for(UInt32 i = 0; i < quad->getPositions()->getSize(); ++i)
            quad->getPositions()->setValue(
                quad->getPositions()->getValue(i) + Vec3f(Real32(lights) - 1.5f, 0, 0), i);
        quad->setMaterial(material);
        endEditCP(quad);
        NodePtr node = makeNodeFor(quad);
        for(int i = 0; i < lights; ++i)
        {
            const DirectionalLightPtr light = DirectionalLight::create();
            light->setBeacon(root.ptr);
            endEditCP(light);
            const NodePtr above = makeNodeFor(light);
            above->addChild(node);
            endEditCP(above);
            node = above;
        }
        root->addChild(node);
    }
    endEditCP(root.ptr);
    const OrthographicCameraPtr camera = OrthographicCamera::create();
    camera->setVerticalSize(1);
    camera->setNear(-10);
    camera->setFar(10);
    endEditCP(camera);
    const ViewportPtr port = Viewport::create();
    port->setCamera(camera);
    port->setRoot(root.ptr);
    port->setBackground(SolidBackground::create());
    endEditCP(port);
    const Held<EGLWindowPtr> wide;
    wide->resize(64, 16);
    wide->addPort(port);
    wide->init();
    const std::unique_ptr<RenderAction> render(RenderAction::create());
    for(int frame = 0; frame < 2; ++frame)
    {
        wide->render(render.get());
        ASSERT_TRUE(wide->activate());
        for(int lights = 0; lights < 4; ++lights)
        {
            const Pixel pixel = test::readPixel(8 + 16 * lights, 8);
            EXPECT_EQ(int(pixel[0]), 60 * lights + 10);
            EXPECT_EQ(pixel[1], lights > 2 ? 255 : 0);
        }
    }
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    ASSERT_TRUE(window->activate());
}
