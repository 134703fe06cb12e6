/// \file
/// The chunks of the fixed pipeline, by pixels.

#include <algorithm>
#include <cmath>

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGColorMaskChunk.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGLightChunk.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGPointChunk.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGTransformChunk.h>

#include "StateGlTest.h"

OSG_USING_NAMESPACE

namespace
{

class FixedChunksGlTest : public StateGlTest
{
};

const test::RgbaImage::Pixel black = {0, 0, 0, 0};
const test::RgbaImage::Pixel white = {255, 255, 255, 255};

TEST_F(FixedChunksGlTest, EachDepthFunctionPassesWhatItSays)
{
    struct Case
    {
        GLenum func;
        bool nearer, equal, farther;
    };
    const Case cases[] = {{GL_NEVER, false, false, false},  {GL_LESS, true, false, false},
                          {GL_EQUAL, false, true, false},   {GL_LEQUAL, true, true, false},
                          {GL_GREATER, false, false, true}, {GL_NOTEQUAL, true, false, true},
                          {GL_GEQUAL, false, true, true},   {GL_ALWAYS, true, true, true}};
    Held<DepthChunk> depth;
    for(const Case &one : cases)
    {
        depth->setFunc(one.func);
        const bool expected[3] = {one.nearer, one.equal, one.farther};
        const float z[3] = {0.5f, 0.f, -0.5f};
        for(int i = 0; i < 3; ++i)
        {
            clear();
            glColor4f(0, 0, 0, 0);
            quad(0.f);
            depth->activate(action.get());
            glColor4f(1, 1, 1, 1);
            // quad's z counts towards the eye.
            const Pixel pixel = quad(z[i]);
            depth->deactivate(action.get());
            EXPECT_EQ(expected[i] ? white : black, pixel) << "function " << one.func << ", case " << i;
        }
    }
}

TEST_F(FixedChunksGlTest, AReadOnlyDepthChunkLeavesTheDepthBufferAndTheMaskAsTheyWere)
{
    Held<DepthChunk> depth;
    depth->setReadOnly(true);
    depth->setFunc(GL_ALWAYS);
    depth->activate(action.get());
    quad(0.5f);
    depth->deactivate(action.get());
    GLboolean mask = GL_FALSE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &mask);
    EXPECT_TRUE(mask);
    GLfloat value = 0.f;
    glReadPixels(32, 32, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &value);
    EXPECT_EQ(1.f, value);

    glDepthMask(GL_FALSE);
    depth->activate(action.get());
    depth->deactivate(action.get());
    glGetBooleanv(GL_DEPTH_WRITEMASK, &mask);
    EXPECT_FALSE(mask) << "who had it off still has it off";
    glDepthMask(GL_TRUE);
}

TEST_F(FixedChunksGlTest, WithoutTheDepthTestEverythingIsDrawnAndTheTestComesBack)
{
    glColor4f(1, 0, 0, 1);
    quad(0.5f);
    Held<DepthChunk> depth;
    depth->setEnable(false);
    depth->activate(action.get());
    glColor4f(1, 1, 1, 1);
    EXPECT_EQ(white, quad(-0.5f));
    depth->deactivate(action.get());
    glColor4f(0, 1, 0, 1);
    EXPECT_EQ(white, quad(-0.5f));
}

TEST_F(FixedChunksGlTest, EachColourMaskWritesItsChannelsAndNoOthers)
{
    Held<ColorMaskChunk> mask;
    for(int bits = 0; bits < 16; ++bits)
    {
        mask->setMaskR((bits & 1) != 0);
        mask->setMaskG((bits & 2) != 0);
        mask->setMaskB((bits & 4) != 0);
        mask->setMaskA((bits & 8) != 0);
        clear();
        glColor4f(1, 1, 1, 1);
        const Pixel pixel = quadWith(*mask.ptr);
        for(int channel = 0; channel < 4; ++channel)
            EXPECT_EQ((bits >> channel) & 1 ? 255 : 0, pixel[channel]) << "mask " << bits;
        EXPECT_EQ(white, quad()) << "behind it";
    }
}

TEST_F(FixedChunksGlTest, CullingLeavesOutTheFacesThatItNames)
{
    Held<PolygonChunk> polygon;
    glColor4f(1, 1, 1, 1);
    for(const GLenum front : {GL_CCW, GL_CW})
        for(const GLenum cull : {GL_NONE, GL_FRONT, GL_BACK, GL_FRONT_AND_BACK})
            for(const bool clockwise : {false, true})
            {
                polygon->setCullFace(cull);
                polygon->setFrontFace(front);
                const bool isFront = clockwise == (front == GL_CW);
                const bool drawn =
                    cull == GL_NONE || (cull == GL_FRONT && !isFront) || (cull == GL_BACK && isFront);
                clear();
                polygon->activate(action.get());
                const Pixel pixel = quad(0.f, 0.f, 0.f, 0.f, clockwise);
                polygon->deactivate(action.get());
                EXPECT_EQ(drawn ? white : black, pixel) << "front " << front << ", cull " << cull;
                clear();
                EXPECT_EQ(white, quad(0.f, 0.f, 0.f, 0.f, clockwise)) << "behind it";
                GLint frontBehind = 0;
                glGetIntegerv(GL_FRONT_FACE, &frontBehind);
                EXPECT_EQ(GL_CCW, frontBehind);
            }
}

TEST_F(FixedChunksGlTest, StippleRowsGoFromTheHighestBitAtTheLeft)
{
    Held<PolygonChunk> polygon;
    // Only the leftmost pixel of each row of 32.
    for(int i = 0; i < 32; ++i)
        polygon->getStipple().push_back(Int32(0x80000000u));
    glColor4f(1, 1, 1, 1);
    quadWith(*polygon.ptr);
    EXPECT_EQ(white, test::readPixel(32, 10));
    EXPECT_EQ(black, test::readPixel(33, 10));
    EXPECT_EQ(black, test::readPixel(63, 10));
}

TEST_F(FixedChunksGlTest, LinesOfPolygonsAreDrawnInLineMode)
{
    Held<PolygonChunk> polygon;
    polygon->setFrontMode(GL_LINE);
    polygon->setBackMode(GL_LINE);
    glColor4f(1, 1, 1, 1);
    EXPECT_EQ(black, quadWith(*polygon.ptr));
    EXPECT_EQ(white, quad());
}

TEST_F(FixedChunksGlTest, BlendFactorsWeighSourceAndDestination)
{
    struct Case
    {
        GLenum src, dest, equation;
        float expected; // of red; source is 0.6 with alpha 0.4, destination 0.2, the constant 0.5
    };
    const Case cases[] = {
        {GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_NONE, 0.4f * 0.6f + 0.6f * 0.2f},
        {GL_ONE, GL_ONE, GL_NONE, 0.8f},
        {GL_ZERO, GL_SRC_COLOR, GL_NONE, 0.12f},
        {GL_CONSTANT_COLOR, GL_ZERO, GL_NONE, 0.3f},
        {GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA, GL_NONE, 0.25f * 0.6f + 0.75f * 0.2f},
        {GL_ONE, GL_ONE, GL_FUNC_SUBTRACT, 0.4f},
        {GL_ONE, GL_ONE, GL_MIN, 0.2f},
        {GL_ONE, GL_ONE, GL_MAX, 0.6f}};
    Held<BlendChunk> blend;
    blend->setColor(Color4f(0.5f, 0.5f, 0.5f, 0.25f));
    for(const Case &one : cases)
    {
        blend->setSrcFactor(one.src);
        blend->setDestFactor(one.dest);
        blend->setEquation(one.equation);
        clear();
        glColor4f(0.2f, 0, 0, 1);
        quad();
        glColor4f(0.6f, 0, 0, 0.4f);
        const Pixel pixel = quadWith(*blend.ptr);
        // Two roundings to 8 bits.
        EXPECT_NEAR(one.expected * 255.f, pixel[0], 1.5f)
            << one.src << " " << one.dest << " " << one.equation;
        EXPECT_NEAR(0.6f * 255.f, quad()[0], 0.51f) << "behind it";
    }
}

TEST_F(FixedChunksGlTest, AlphaHasFactorsOfItsOwnWhereTheyAreSet)
{
    Held<BlendChunk> blend;
    blend->setSrcFactor(GL_ONE);
    blend->setDestFactor(GL_ZERO);
    blend->setAlphaSrcFactor(GL_ZERO);
    blend->setAlphaDestFactor(GL_ONE);
    glColor4f(0, 0, 0, 0.6f);
    quad();
    glColor4f(1, 0, 0, 1);
    const Pixel pixel = quadWith(*blend.ptr);
    EXPECT_EQ(255, pixel[0]);
    EXPECT_EQ(153, pixel[3]);
}

TEST_F(FixedChunksGlTest, TheAlphaTestDropsWhatFails)
{
    Held<BlendChunk> blend;
    blend->setAlphaFunc(GL_GREATER);
    blend->setAlphaValue(0.5f);
    glColor4f(1, 1, 1, 0.25f);
    EXPECT_EQ(black, quadWith(*blend.ptr));
    glColor4f(1, 1, 1, 1);
    EXPECT_EQ(white, quadWith(*blend.ptr));
    glColor4f(1, 1, 1, 0);
    EXPECT_EQ(255, quad()[0]) << "behind it";
}

TEST_F(FixedChunksGlTest, AnUnlitMaterialIsItsDiffuseColourAndALitOneFollowsTheLightingEquation)
{
    Held<MaterialChunk> material;
    material->setDiffuse(Color4f(0.2f, 0.4f, 0.8f, 1.f));
    material->setLit(false);
    const Pixel unlit = quadWith(*material.ptr);
    EXPECT_EQ((Pixel{51, 102, 204, 255}), unlit);

    Held<LightChunk> light;
    light->setPosition(Vec4f(0, 0, 1, 0));
    light->setDiffuse(Color4f(0.5f, 0.5f, 0.5f, 1.f));
    light->setSpecular(Color4f(0, 0, 0, 1));
    material->setLit(true);
    material->setColorMaterial(GL_NONE);
    material->setAmbient(Color4f(0, 0, 0, 1));
    material->setEmission(Color4f(0.1f, 0, 0, 1));
    const GLfloat none[4] = {0, 0, 0, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, none);
    light->activate(action.get(), 2);
    EXPECT_TRUE(glIsEnabled(GL_LIGHT2));
    // Light along the normal at 60 degrees: its cosine is a half.
    glNormal3f(0.f, std::sin(1.0471976f), std::cos(1.0471976f));
    const Pixel lit = quadWith(*material.ptr);
    light->deactivate(action.get(), 2);
    EXPECT_FALSE(glIsEnabled(GL_LIGHT2));
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
    EXPECT_NEAR((0.1f + 0.2f * 0.5f * 0.5f) * 255.f, lit[0], 1.f);
    EXPECT_NEAR(0.4f * 0.25f * 255.f, lit[1], 1.f);
    EXPECT_NEAR(0.8f * 0.25f * 255.f, lit[2], 1.f);
}

TEST_F(FixedChunksGlTest, ATransformChunkMovesAndItsMatrixGoesAgain)
{
    Held<TransformChunk> transform;
    Matrix matrix;
    matrix.setTranslate(1.5f, 0.f, 0.f);
    transform->setMatrix(matrix);
    glColor4f(1, 1, 1, 1);
    EXPECT_EQ(black, quadWith(*transform.ptr)) << "moved to the right";
    EXPECT_EQ(white, test::readPixel(60, 32));
    EXPECT_EQ(white, quad());
}

TEST_F(FixedChunksGlTest, APointHasItsSize)
{
    Held<PointChunk> point;
    point->setSize(9.f);
    point->setMinSize(1.f);
    point->setMaxSize(20.f);
    glColor4f(1, 1, 1, 1);
    point->activate(action.get());
    glBegin(GL_POINTS);
    glVertex3f(1.f / 64.f, 1.f / 64.f, 0.f);
    glEnd();
    point->deactivate(action.get());
    EXPECT_EQ(white, test::readPixel(32 + 4, 32 - 4));
    EXPECT_EQ(black, test::readPixel(32 + 5, 32));
    GLfloat size = 0.f;
    glGetFloatv(GL_POINT_SIZE, &size);
    EXPECT_EQ(1.f, size);
}

TEST_F(FixedChunksGlTest, ChangingStatesUndoesWhatOnlyTheOldOneHas)
{
    Held<ChunkMaterial> masked;
    Held<ChunkMaterial> culled;
    Held<ColorMaskChunk> mask;
    mask->setMaskR(false);
    Held<PolygonChunk> polygon;
    polygon->setCullFace(GL_FRONT);
    masked->addChunk(mask);
    culled->addChunk(polygon);
    glColor4f(1, 1, 1, 1);
    masked->getState()->activate(action.get());
    EXPECT_EQ((Pixel{0, 255, 255, 255}), quad());
    clear();
    culled->getState()->changeFrom(action.get(), masked->getState().get());
    EXPECT_EQ(black, quad());
    EXPECT_EQ(white, quad(0.f, 0.f, 0.f, 0.f, true));
    culled->getState()->deactivate(action.get());
    clear();
    EXPECT_EQ(white, quad());
}

TEST_F(FixedChunksGlTest, AnIgnoredChunkIsLeftOutOfItsState)
{
    Held<ChunkMaterial> material;
    Held<ColorMaskChunk> mask;
    mask->setMaskR(false);
    material->addChunk(mask);
    mask->setIgnore(true);
    glColor4f(1, 1, 1, 1);
    material->getState()->activate(action.get());
    EXPECT_EQ(white, quad());
    material->getState()->deactivate(action.get());
}

TEST_F(FixedChunksGlTest, AMaterialDrawsAFunctorWithItsStateAroundIt)
{
    Held<ChunkMaterial> material;
    Held<ColorMaskChunk> mask;
    mask->setMaskG(false);
    material->addChunk(mask);
    glColor4f(1, 1, 1, 1);
    Pixel pixel = black;
    Material::DrawFunctor functor = [&](DrawActionBase *) {
        pixel = quad();
        return Action::Continue;
    };
    material->draw(functor, action.get());
    EXPECT_EQ((Pixel{255, 0, 255, 255}), pixel);
    EXPECT_EQ(white, quad());
}

} // namespace
